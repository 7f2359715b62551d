// The protected terms sheet over a store of its own and scripted dialogs, driven through its
// buttons and keys as the user would.
#include "ui/ProtectedTermsEditor.h"
#include "platform/InMemoryLoginItem.h"
#include "platform/InMemoryPasteboard.h"
#include "platform/InMemoryPreferenceStore.h"
#include "platform/PlatformServices.h"
#include "platform/RecordingKeystrokeSender.h"
#include "platform/ScriptedDialogs.h"
#include "settings/preferences/ProtectedTermsStore.h"
#include "support/SpinUntil.h"
#include "ui/TermOrdering.h"

#include <QApplication>
#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace glyphmill {
namespace {

using Terms = std::vector<std::u16string>;

// The services live as long as the process, as the installed ones must; each test reads only
// the prompts shown since it started.
ScriptedDialogs &installedDialogs() {
    static InMemoryPreferenceStore preferences;
    static InMemoryPasteboard clipboard;
    static ScriptedDialogs dialogs;
    static RecordingKeystrokeSender keystrokes;
    static InMemoryLoginItem loginItem;
    installPlatformServices({&preferences, &clipboard, &dialogs, &keystrokes, &loginItem});
    return dialogs;
}

class ProtectedTermsEditorTest : public ::testing::Test {
protected:
    ProtectedTermsEditorTest() : dialogs(installedDialogs()), promptsBefore(dialogs.shown().size()) {}

    QToolButton *controlButton(const char *name) const {
        for (QToolButton *button : editor->findChildren<QToolButton *>())
            if (button->accessibleName() == QLatin1String(name))
                return button;
        ADD_FAILURE() << "no button " << name;
        return nullptr;
    }
    QToolButton *addButton() const { return controlButton("Add term"); }
    QToolButton *removeButton() const { return controlButton("Remove selected terms"); }
    QPushButton *pushButton(const char *title) const {
        for (QPushButton *button : editor->findChildren<QPushButton *>())
            if (button->text() == QLatin1String(title))
                return button;
        ADD_FAILURE() << "no button " << title;
        return nullptr;
    }
    QTableWidget *table() const { return editor->findChild<QTableWidget *>(); }
    void selectRowsOf(std::initializer_list<std::u16string_view> terms) {
        const Terms shown = editor->displayedTerms();
        for (std::u16string_view term : terms) {
            const auto found = std::find(shown.begin(), shown.end(), term);
            ASSERT_NE(found, shown.end());
            table()->selectionModel()->select(table()->model()->index(int(found - shown.begin()), 0),
                                              QItemSelectionModel::Select | QItemSelectionModel::Rows);
        }
    }
    std::size_t promptsShown() const { return dialogs.shown().size() - promptsBefore; }

    ScriptedDialogs &dialogs;
    std::size_t promptsBefore;
    InMemoryPreferenceStore userDefaults;
    ProtectedTermsStore store{userDefaults};
    std::unique_ptr<ProtectedTermsEditor> editor = std::make_unique<ProtectedTermsEditor>(store, nullptr);
};

TEST_F(ProtectedTermsEditorTest, ShowsTheStoreTermsInDisplayOrderUnderAnAscendingTermHeader) {
    EXPECT_EQ(editor->size(), QSize(480, 380));
    EXPECT_GE(table()->minimumHeight(), 280);
    EXPECT_EQ(table()->model()->headerData(0, Qt::Horizontal).toString(), QStringLiteral("Term"));
    EXPECT_EQ(table()->horizontalHeader()->sortIndicatorOrder(), Qt::AscendingOrder);
    EXPECT_EQ(editor->displayedTerms(), termOrdering::sortedForDisplay(ProtectedTermsStore::defaultTerms()));
    EXPECT_EQ(store.terms(), ProtectedTermsStore::defaultTerms());
    EXPECT_FALSE(removeButton()->isEnabled());
}

TEST_F(ProtectedTermsEditorTest, AddPromptsAndHandsTheAnswerToTheStore) {
    dialogs.answerText(u"  Kubernetes \n");
    addButton()->click();

    ASSERT_EQ(promptsShown(), 1u);
    const ScriptedDialogs::Shown &prompt = dialogs.shown().back();
    EXPECT_EQ(prompt.kind, ScriptedDialogs::Shown::Kind::text);
    EXPECT_EQ(prompt.title, u"Add Protected Term");
    EXPECT_EQ(prompt.message, u"Enter a word or phrase to keep exactly as written during transforms.");
    EXPECT_EQ(prompt.placeholder, u"LLC");
    EXPECT_EQ(store.terms().back(), u"Kubernetes");
    EXPECT_EQ(editor->displayedTerms(), termOrdering::sortedForDisplay(store.terms()));
    EXPECT_EQ(userDefaults.stringArrayValue(ProtectedTermsStore::preferenceKey), store.terms());
}

TEST_F(ProtectedTermsEditorTest, ADuplicateInAnyCaseOrACancelledPromptChangesNothing) {
    dialogs.answerText(u"  llc  ");
    addButton()->click();
    dialogs.cancelText();
    addButton()->click();

    EXPECT_EQ(promptsShown(), 2u);
    EXPECT_EQ(store.terms(), ProtectedTermsStore::defaultTerms());
    EXPECT_EQ(userDefaults.writeCount(), 0);
}

TEST_F(ProtectedTermsEditorTest, RemovesEverySelectedTermAndThenHasNothingToRemove) {
    selectRowsOf({u"iPhone", u"NY"});
    ASSERT_TRUE(removeButton()->isEnabled());
    removeButton()->click();

    Terms expected = ProtectedTermsStore::defaultTerms();
    std::erase(expected, u"iPhone");
    std::erase(expected, u"NY");
    EXPECT_EQ(store.terms(), expected);
    EXPECT_EQ(editor->displayedTerms(), termOrdering::sortedForDisplay(expected));
    EXPECT_FALSE(table()->selectionModel()->hasSelection());
    EXPECT_FALSE(removeButton()->isEnabled());
}

TEST_F(ProtectedTermsEditorTest, RestoreDefaultsUndoesEveryEditAndStoresTheDefaults) {
    store.addTerm(u"Kubernetes");
    store.removeTerm(u"LLC");
    selectRowsOf({u"Kubernetes"});
    pushButton("Restore Defaults")->click();

    EXPECT_EQ(store.terms(), ProtectedTermsStore::defaultTerms());
    EXPECT_EQ(userDefaults.stringArrayValue("protectedTerms"), ProtectedTermsStore::defaultTerms());
    EXPECT_EQ(editor->displayedTerms(), termOrdering::sortedForDisplay(ProtectedTermsStore::defaultTerms()));
    EXPECT_FALSE(removeButton()->isEnabled());
}

TEST_F(ProtectedTermsEditorTest, FollowsChangesMadeElsewhereAndKeepsTheSelectionOfRemainingRows) {
    selectRowsOf({u"PDF"});
    store.addTerm(u"Item 10");
    store.addTerm(u"Item 9");

    const Terms shown = editor->displayedTerms();
    const auto position = [&](std::u16string_view term) {
        return std::find(shown.begin(), shown.end(), term);
    };
    ASSERT_NE(position(u"Item 10"), shown.end());
    EXPECT_LT(position(u"Item 9"), position(u"Item 10"));
    // The store keeps the order the terms came in.
    EXPECT_EQ(store.terms().back(), u"Item 9");
    const QModelIndexList selected = table()->selectionModel()->selectedRows();
    ASSERT_EQ(selected.size(), 1);
    EXPECT_EQ(selected.front().data().toString(), QStringLiteral("PDF"));
    EXPECT_TRUE(removeButton()->isEnabled());
}

TEST_F(ProtectedTermsEditorTest, ReturnPressesDoneEvenFromTheTable) {
    editor->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(editor.get(), waitDeadlineMilliseconds));
    table()->setFocus();
    bool finished = false;
    QObject::connect(editor.get(), &QDialog::accepted, [&] { finished = true; });
    QTest::keyClick(table(), Qt::Key_Return);

    EXPECT_TRUE(finished);
    EXPECT_FALSE(editor->isVisible());
}

TEST_F(ProtectedTermsEditorTest, ForgetsTheStoreWhenClosed) {
    editor.reset();
    store.addTerm(u"Kubernetes"); // would reach a destroyed table if still observed
    EXPECT_EQ(store.terms().back(), u"Kubernetes");
}

TEST(TermOrdering, NumbersByValueAndCaseOnlyBetweenOtherwiseEqualTerms) {
    EXPECT_EQ(termOrdering::sortedForDisplay({u"Item 10", u"item 9", u"Item 9", u"ábc", u"abd", u"Abc"}),
              (Terms{u"Abc", u"ábc", u"abd", u"item 9", u"Item 9", u"Item 10"}));
}

TEST(TermOrdering, KeepsTheGivenOrderOfIndistinguishableTerms) {
    const Terms same{u"e\u0301", u"\u00e9"}; // one letter, composed and decomposed
    EXPECT_EQ(termOrdering::sortedForDisplay(same), same);
    EXPECT_EQ(termOrdering::sortedForDisplay({u"\u00e9", u"e\u0301"}), (Terms{u"\u00e9", u"e\u0301"}));
}

} // namespace
} // namespace glyphmill
