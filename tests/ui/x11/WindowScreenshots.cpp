// Opens the windows on a real X server, in a light and a dark palette, and checks that no
// control is cut off or squeezed below the size it asks for. When GLYPHMILL_SHOTS_DIR names a
// folder, the windows are also written there as PNG files for a person to look at.
#include "platform/InMemoryHotKeyGrabber.h"
#include "platform/InMemoryLoginItem.h"
#include "platform/InMemoryPasteboard.h"
#include "platform/InMemoryPreferenceStore.h"
#include "platform/PlatformServices.h"
#include "platform/RecordingKeystrokeSender.h"
#include "platform/RecordingUrlOpener.h"
#include "platform/ScriptedDialogs.h"
#include "settings/preferences/ProtectedTermsStore.h"
#include "ui/ProtectedTermsEditor.h"
#include "ui/SettingsWindow.h"
#include "ui/WelcomeGuide.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTableWidget>
#include <QTest>
#include <gtest/gtest.h>

#include "support/ScreenshotSupport.h"
#include "support/SpinUntil.h"

namespace glyphmill {
namespace {

using testSupport::darkPalette;
using testSupport::sideBySide;

QString describe(const QWidget &widget) {
    QString name = QString::fromLatin1(widget.metaObject()->className());
    if (!widget.objectName().isEmpty())
        name += QLatin1Char('#') + widget.objectName();
    QString text = widget.accessibleName();
    if (const auto *label = qobject_cast<const QLabel *>(&widget))
        text = label->text();
    else if (const auto *button = qobject_cast<const QAbstractButton *>(&widget))
        text = button->text();
    if (!text.isEmpty())
        name += QStringLiteral(" \"") + text.left(40) + QLatin1Char('"');
    return name;
}

// The parts composite controls are made of (scroll bars, viewports, a combo box's button) are
// the controls' own business; what a scroll area holds is not.
bool isPartOfAControl(const QWidget &widget, const QWidget &window) {
    for (const QWidget *above = widget.parentWidget(); above && above != &window;
         above = above->parentWidget()) {
        if (qobject_cast<const QComboBox *>(above) || qobject_cast<const QAbstractSpinBox *>(above) ||
            qobject_cast<const QAbstractButton *>(above))
            return true;
        if (qobject_cast<const QAbstractScrollArea *>(above)) {
            const auto *area = qobject_cast<const QScrollArea *>(above);
            const QWidget *content = area ? area->widget() : nullptr;
            if (!content || (content != &widget && !content->isAncestorOf(&widget)))
                return true;
        }
    }
    return false;
}

bool isScrolledContent(const QWidget &widget) {
    const QWidget *viewport = widget.parentWidget();
    const auto *area = viewport ? qobject_cast<const QScrollArea *>(viewport->parentWidget()) : nullptr;
    return area && area->widget() == &widget;
}

// What of the widget its ancestors leave visible; a scroll area's content counts as fully
// visible, since scrolling brings every part of it into view.
QRect visiblePart(const QWidget &widget, const QWidget &window) {
    QRect visible = widget.rect();
    for (const QWidget *inner = &widget; inner != &window && !isScrolledContent(*inner);
         inner = inner->parentWidget()) {
        const QWidget *above = inner->parentWidget();
        visible &= QRect(widget.mapFrom(above, QPoint(0, 0)), above->size());
    }
    return visible;
}

// Every visible control that is smaller than its size hint or cut off by what holds it.
QStringList crampedControls(const QWidget &window) {
    QStringList problems;
    for (const QWidget *widget : window.findChildren<QWidget *>()) {
        if (!widget->isVisibleTo(&window) || isPartOfAControl(*widget, window))
            continue;
        const QRect visible = visiblePart(*widget, window);
        if (visible != widget->rect())
            problems << QStringLiteral("%1 shows %2x%3 of its %4x%5")
                            .arg(describe(*widget))
                            .arg(visible.width())
                            .arg(visible.height())
                            .arg(widget->width())
                            .arg(widget->height());
        // Containers: their controls are checked one by one. Scrolling views show any height.
        if (widget->layout() || qobject_cast<const QAbstractScrollArea *>(widget))
            continue;
        const QSize hint = widget->sizeHint();
        if (!hint.isValid())
            continue;
        const auto *label = qobject_cast<const QLabel *>(widget);
        const bool widthMatters =
            (label && !label->wordWrap()) || qobject_cast<const QAbstractButton *>(widget) != nullptr;
        const int neededHeight =
            widget->hasHeightForWidth() ? widget->heightForWidth(widget->width()) : hint.height();
        if ((widthMatters && widget->width() < hint.width()) || widget->height() < neededHeight)
            problems << QStringLiteral("%1 is %2x%3 but asks for %4x%5")
                            .arg(describe(*widget))
                            .arg(widget->width())
                            .arg(widget->height())
                            .arg(widthMatters ? hint.width() : widget->width())
                            .arg(neededHeight);
    }
    return problems;
}

class WindowScreenshots : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        // Installed once for the whole run: the shared controllers keep what they were given.
        static InMemoryPreferenceStore preferences;
        static InMemoryPasteboard clipboard;
        static ScriptedDialogs dialogs;
        static RecordingKeystrokeSender keystrokes;
        static InMemoryLoginItem loginItem;
        static InMemoryHotKeyGrabber hotKeys;
        static RecordingUrlOpener urls;
        PlatformServices services{&preferences, &clipboard, &dialogs, &keystrokes, &loginItem};
        services.hotKeys = &hotKeys;
        services.urls = &urls;
        installPlatformServices(services);
        userDefaults = &preferences;
    }

    void SetUp() override {
        directory = qEnvironmentVariable("GLYPHMILL_SHOTS_DIR");
        if (!directory.isEmpty())
            QDir().mkpath(directory);
        lightPalette = QApplication::palette();
    }
    void TearDown() override { QApplication::setPalette(lightPalette); }

    static void useDarkPalette() {
        QApplication::setPalette(darkPalette());
        QCoreApplication::processEvents();
    }
    static void showAndSettle(QWidget &window) {
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window, waitDeadlineMilliseconds));
        QCoreApplication::processEvents();
    }
    // Checks the window as it is now; the name says which state of which window failed.
    static QPixmap checkedPicture(QWidget &window, const char *state) {
        QCoreApplication::processEvents();
        const QStringList problems = crampedControls(window);
        EXPECT_TRUE(problems.isEmpty()) << state << ":\n" << problems.join(QLatin1Char('\n')).toStdString();
        return window.grab();
    }
    void save(const std::vector<QPixmap> &pictures, const QString &name) const {
        if (directory.isEmpty())
            return;
        EXPECT_TRUE(sideBySide(pictures).save(directory + QLatin1Char('/') + name));
    }

    static inline InMemoryPreferenceStore *userDefaults = nullptr;
    QString directory;
    QPalette lightPalette;
};

TEST_F(WindowScreenshots, ProtectedTermsSheet) {
    ProtectedTermsStore store(*userDefaults);
    store.addTerm(u"Item 10");
    store.addTerm(u"Item 9");
    QWidget host;
    host.resize(520, 680);
    showAndSettle(host);
    auto *sheet = new ProtectedTermsEditor(store, &host);
    sheet->setWindowModality(Qt::WindowModal);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->open();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(sheet, waitDeadlineMilliseconds));
    // A selected row, so the enabled remove button shows too.
    auto *table = sheet->findChild<QTableWidget *>();
    ASSERT_NE(table, nullptr);
    table->selectRow(2);

    const QPixmap light = checkedPicture(*sheet, "light");
    useDarkPalette();
    const QPixmap dark = checkedPicture(*sheet, "dark");
    save({light, dark}, QStringLiteral("protected-terms.png"));
}

// The window is built once and kept, so it must also follow a theme switch while it exists:
// built in the dark, then switched to light and back.
TEST_F(WindowScreenshots, SettingsWindowAtTopAndBottom) {
    static ProtectedTermsStore store(*userDefaults);
    useDarkPalette();
    showSettingsWindow(store);
    QWidget *window = existingSettingsWindow();
    ASSERT_NE(window, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window, waitDeadlineMilliseconds));
    auto *scroll = window->findChild<QScrollArea *>();
    ASSERT_NE(scroll, nullptr);
    QScrollBar *bar = scroll->verticalScrollBar();

    const struct {
        bool dark;
        const char *state;
        QString file;
    } stages[] = {{true, "dark as built", QStringLiteral("settings-dark.png")},
                  {false, "switched to light", QStringLiteral("settings-light.png")},
                  {true, "switched back to dark", QStringLiteral("settings-dark-after-switch.png")}};
    for (const auto &stage : stages) {
        if (stage.dark)
            useDarkPalette();
        else
            QApplication::setPalette(lightPalette);
        bar->setValue(bar->minimum());
        const QPixmap top = checkedPicture(*window, stage.state);
        bar->setValue(bar->maximum());
        save({top, window->grab()}, stage.file);
    }
    window->close();
}

TEST_F(WindowScreenshots, WelcomeGuidePages) {
    static ProtectedTermsStore store(*userDefaults);
    std::vector<std::vector<QPixmap>> pages(4);
    for (const bool dark : {false, true}) {
        setWelcomeGuideEnvironment({.reduceMotion = true});
        if (dark)
            useDarkPalette();
        showWelcomeGuide(&store);
        QWidget *window = existingWelcomeWindow();
        ASSERT_NE(window, nullptr);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window, waitDeadlineMilliseconds));
        for (std::size_t page = 0; page < pages.size(); ++page) {
            const std::string state = (dark ? "dark, page " : "light, page ") + std::to_string(page + 1);
            pages[page].push_back(checkedPicture(*window, state.c_str()));
            if (page + 1 == pages.size())
                break;
            QPushButton *next = nullptr;
            for (QPushButton *button : window->findChildren<QPushButton *>())
                if (button->isVisible() && button->text() == QStringLiteral("Continue"))
                    next = button;
            ASSERT_NE(next, nullptr) << state;
            next->click();
        }
        window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    for (std::size_t page = 0; page < pages.size(); ++page)
        save(pages[page], QStringLiteral("welcome-page%1.png").arg(page + 1));
}

} // namespace
} // namespace glyphmill
