// The windows behind QtDialogs, built apart from running them so that they can be looked at and
// answered without a modal loop (tests show them and click their buttons).
#pragma once

#include "platform/Dialogs.h"

#include <QDialog>
#include <QIcon>

#include <memory>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QMessageBox;
class QPushButton;

namespace glyphmill {

// The application's window icon, else the "glyphmill" theme icon (which then becomes the window
// icon), else the style's information icon.
QIcon applicationIcon();

// Warning icon, the title as first line, the message below it, one "OK". Application-modal.
std::unique_ptr<QMessageBox> makeAlertBox(std::u16string_view title, std::u16string_view message);

// An alert-shaped prompt: the application icon, the title in bold, the message, one control and
// the accept and "Cancel" buttons. Application-modal; the answer is read after it closed.
class PromptDialog : public QDialog {
public:
    QPushButton *acceptButton() const { return acceptButton_; }
    QPushButton *cancelButton() const { return cancelButton_; }
    // Shows the prompt in front of every window, with the keyboard focus.
    void bringToFront();

protected:
    PromptDialog(std::u16string_view title, std::u16string_view message, const QString &acceptTitle,
                 QWidget *control);
    bool accepted() const { return result() == QDialog::Accepted; }
    QWidget *control() const { return control_; }

private:
    QWidget *control_;
    QPushButton *acceptButton_;
    QPushButton *cancelButton_;
};

class ChoicePrompt final : public PromptDialog {
public:
    // The default index is clamped to the options; the list must not be empty.
    ChoicePrompt(std::u16string_view title, std::u16string_view message,
                 const std::vector<std::u16string> &options, std::ptrdiff_t defaultIndex);
    QComboBox *popUp() const { return popUp_; }
    ChoiceAnswer answer() const;

private:
    QComboBox *popUp_;
};

class TextPrompt final : public PromptDialog {
public:
    TextPrompt(std::u16string_view title, std::u16string_view message, std::u16string_view placeholder);
    QLineEdit *field() const { return field_; }
    std::optional<std::u16string> answer() const;

private:
    QLineEdit *field_;
};

class FindReplacePrompt final : public PromptDialog {
public:
    explicit FindReplacePrompt(bool replaceEnabled);
    QWidget *fieldsPanel() const { return fieldsPanel_; }
    QLineEdit *findField() const { return findField_; }
    QLineEdit *replaceField() const { return replaceField_; }
    QCheckBox *matchCaseBox() const { return matchCaseBox_; }
    std::optional<FindReplaceRequest> answer() const;

protected:
    // Tab and Shift+Tab go back and forth between the two fields.
    bool focusNextPrevChild(bool next) override;

private:
    QWidget *fieldsPanel_;
    QLineEdit *findField_;
    QLineEdit *replaceField_;
    QCheckBox *matchCaseBox_;
};

} // namespace glyphmill
