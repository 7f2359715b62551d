#include "platform/linux/QtDialogs.h"
#include "platform/linux/PromptDialogs.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

namespace glyphmill {
namespace {

// Answers the next modal window once its modal loop runs, so the blocking calls can be tested.
class ModalAnswerer {
public:
    explicit ModalAnswerer(std::function<void(QWidget *)> answer) {
        QObject::connect(&timer_, &QTimer::timeout, [this, answer] {
            if (QWidget *modal = QApplication::activeModalWidget()) {
                timer_.stop();
                answered = true;
                answer(modal);
            }
        });
        timer_.start(0);
    }
    bool answered = false;

private:
    QTimer timer_;
};

void sendKey(QWidget *target, Qt::Key key, const QString &text = {}) {
    QKeyEvent press(QEvent::KeyPress, key, key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier, text);
    QApplication::sendEvent(target, &press);
}

void type(QWidget *field, const QString &text) {
    sendKey(field, Qt::Key_unknown, text);
}

const std::vector<std::u16string> styles = {u"1. 2. 3.", u"1) 2) 3)", u"a. b. c."};

TEST(ChoicePrompt, OffersTheOptionsWithTheDefaultClampedAndOkBeforeCancel) {
    ChoicePrompt prompt(u"Number Lines", u"Choose a numbering style.", styles, 7);
    prompt.show();
    EXPECT_EQ(prompt.popUp()->size(), QSize(280, 26));
    EXPECT_EQ(prompt.popUp()->count(), 3);
    EXPECT_EQ(prompt.popUp()->currentIndex(), 2);
    EXPECT_EQ(ChoicePrompt(u"t", u"m", styles, -1).popUp()->currentIndex(), 0);
    EXPECT_EQ(prompt.acceptButton()->text(), "OK");
    EXPECT_EQ(prompt.cancelButton()->text(), "Cancel");
    EXPECT_LT(prompt.acceptButton()->x(), prompt.cancelButton()->x());
}

TEST(ChoicePrompt, AnswersTheSelectionOnOkOnly) {
    ChoicePrompt chosen(u"t", u"m", styles, 0);
    chosen.popUp()->setCurrentIndex(1);
    chosen.acceptButton()->click();
    EXPECT_EQ(chosen.answer(), (ChoiceAnswer{1, false}));

    ChoicePrompt cancelled(u"t", u"m", styles, 0);
    cancelled.popUp()->setCurrentIndex(1);
    cancelled.cancelButton()->click();
    EXPECT_EQ(cancelled.answer(), (ChoiceAnswer{0, true}));

    ModalAnswerer answerer([](QWidget *modal) { modal->close(); });
    EXPECT_EQ(QtDialogs().promptForChoice(u"t", u"m", {}, 0), (ChoiceAnswer{0, true}));
    QApplication::processEvents();
    EXPECT_FALSE(answerer.answered) << "an empty list showed a prompt";
}

TEST(TextPrompt, GivesTheTextExactlyAsTypedOrNone) {
    ModalAnswerer answerer([](QWidget *modal) {
        auto *prompt = dynamic_cast<TextPrompt *>(modal);
        ASSERT_NE(prompt, nullptr);
        EXPECT_EQ(prompt->field()->size(), QSize(260, 24));
        EXPECT_EQ(prompt->field()->placeholderText(), "|");
        EXPECT_EQ(prompt->focusWidget(), prompt->field());
        type(prompt->field(), "  a - b  ");
        sendKey(prompt->field(), Qt::Key_Return);
    });
    EXPECT_EQ(QtDialogs().promptForText(u"Custom Delimiter", u"Enter the text to split on.", u"|"),
              u"  a - b  ");

    TextPrompt empty(u"t", u"m", u"@");
    empty.acceptButton()->click();
    EXPECT_EQ(empty.answer(), u"");
    TextPrompt cancelled(u"t", u"m", u"@");
    type(cancelled.field(), "x");
    cancelled.cancelButton()->click();
    EXPECT_EQ(cancelled.answer(), std::nullopt);
}

TEST(FindReplacePrompt, LaysOutItsFiveControlsInsideThePanel) {
    FindReplacePrompt prompt(true);
    prompt.show();
    QWidget *panel = prompt.fieldsPanel();
    EXPECT_EQ(panel->size(), QSize(320, 94));
    const auto labels = panel->findChildren<QLabel *>();
    ASSERT_EQ(labels.size(), 2);
    QLabel *findLabel = labels[0]->text() == "Find:" ? labels[0] : labels[1];
    QLabel *replaceLabel = findLabel == labels[0] ? labels[1] : labels[0];
    EXPECT_EQ(replaceLabel->text(), "Replace With:");
    EXPECT_EQ(findLabel->geometry().topLeft(), QPoint(0, 2));
    EXPECT_EQ(replaceLabel->width(), 108);
    EXPECT_EQ(replaceLabel->y(), findLabel->y() + findLabel->height() + 12);

    QLineEdit *find = prompt.findField(), *replace = prompt.replaceField();
    EXPECT_EQ(find->placeholderText(), "Find");
    EXPECT_EQ(replace->placeholderText(), "Replace With");
    EXPECT_EQ(prompt.matchCaseBox()->text(), "Match Case");
    EXPECT_EQ(find->x(), 108 + 8);
    EXPECT_LE(std::abs(replace->geometry().center().y() - replaceLabel->geometry().center().y()), 1);
    EXPECT_EQ(prompt.matchCaseBox()->x(), find->x());
    EXPECT_EQ(prompt.matchCaseBox()->y(), replaceLabel->y() + replaceLabel->height() + 12);
    for (const QWidget *control : panel->findChildren<QWidget *>(Qt::FindDirectChildrenOnly))
        EXPECT_TRUE(panel->rect().contains(control->geometry())) << control->metaObject()->className();
}

TEST(FindReplacePrompt, TabGoesBackAndForthBetweenTheFields) {
    FindReplacePrompt prompt(true);
    prompt.show();
    EXPECT_EQ(prompt.focusWidget(), prompt.findField());
    sendKey(prompt.findField(), Qt::Key_Tab);
    EXPECT_EQ(prompt.focusWidget(), prompt.replaceField());
    sendKey(prompt.replaceField(), Qt::Key_Tab);
    EXPECT_EQ(prompt.focusWidget(), prompt.findField());
    sendKey(prompt.findField(), Qt::Key_Backtab);
    EXPECT_EQ(prompt.focusWidget(), prompt.replaceField());
}

TEST(FindReplacePrompt, AnswersBothFieldsAsTypedOnReplaceAllOnly) {
    FindReplacePrompt prompt(true);
    EXPECT_EQ(prompt.acceptButton()->text(), "Replace All");
    EXPECT_FALSE(FindReplacePrompt(false).acceptButton()->isEnabled());
    type(prompt.findField(), "  Foo ");
    prompt.matchCaseBox()->setChecked(true);
    prompt.acceptButton()->click();
    EXPECT_EQ(prompt.answer(), (FindReplaceRequest{u"  Foo ", u"", true}));

    ModalAnswerer answerer([](QWidget *modal) {
        auto *cancelled = dynamic_cast<FindReplacePrompt *>(modal);
        ASSERT_NE(cancelled, nullptr);
        EXPECT_TRUE(cancelled->acceptButton()->isEnabled());
        type(cancelled->findField(), "a");
        cancelled->cancelButton()->click();
    });
    EXPECT_EQ(QtDialogs().promptFindReplace(true), std::nullopt);
}

TEST(Alert, IsAWarningWithTheTitleLineAndOneOk) {
    ModalAnswerer answerer([](QWidget *modal) {
        auto *box = qobject_cast<QMessageBox *>(modal);
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->text(), "Glyphmill");
        EXPECT_EQ(box->informativeText(), "Clipboard does not contain text.");
        EXPECT_EQ(box->icon(), QMessageBox::Warning);
        ASSERT_EQ(box->buttons().size(), 1);
        EXPECT_EQ(box->buttons().front()->text().remove(u'&'), "OK");
        box->buttons().front()->click();
    });
    QtDialogs().showAlert(u"Glyphmill", u"Clipboard does not contain text.");
    EXPECT_TRUE(answerer.answered);
}

} // namespace
} // namespace glyphmill
