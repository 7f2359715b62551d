// The sheet that lists the protected terms and lets the user add, remove and restore them. It
// shows the store's terms in a localized order and follows every change the store announces.
#pragma once

#include <QDialog>

#include <string>
#include <vector>

class QPushButton;
class QTableWidget;
class QToolButton;

namespace glyphmill {

class ProtectedTermsStore;

class ProtectedTermsEditor : public QDialog {
    Q_OBJECT
public:
    ProtectedTermsEditor(ProtectedTermsStore &store, QWidget *parent);
    ~ProtectedTermsEditor() override;

    // The terms as the table shows them, top to bottom.
    std::vector<std::u16string> displayedTerms() const;

private:
    void reload(const std::vector<std::u16string> &terms);
    void updateRemoveButton();
    void addTerm();
    void removeSelectedTerms();
    void restoreDefaults();

    ProtectedTermsStore &store_;
    int observerToken_ = 0;
    QTableWidget *table_ = nullptr;
    QToolButton *addButton_ = nullptr;
    QToolButton *removeButton_ = nullptr;
    QPushButton *restoreButton_ = nullptr;
    QPushButton *doneButton_ = nullptr;
};

} // namespace glyphmill
