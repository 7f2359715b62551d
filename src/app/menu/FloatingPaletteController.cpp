#include "app/menu/FloatingPaletteController.h"

#include "app/menu/FloatingPalettePanel.h"
#include "app/menu/PalettePlacement.h"
#include "clipboard/ClipboardManager.h"
#include "clipboard/ClipboardMonitor.h"
#include "clipboard/text/TextClasses.h"

#include <QCoreApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QMouseEvent>

namespace glyphmill {

bool clipboardHasText(const ClipboardManager &manager) {
    auto text = manager.readText(true);
    if (!text)
        text = manager.readText(false);
    return text && !textClasses::isBlank(*text);
}

const std::vector<TextTransformKind> &FloatingPaletteController::modes() {
    static const std::vector<TextTransformKind> offered = {
        TextTransformKind::smartCase, TextTransformKind::titleCase, TextTransformKind::uppercase,
        TextTransformKind::lowercase};
    return offered;
}

FloatingPaletteController::FloatingPaletteController(ClipboardManager &manager, ClipboardMonitor &monitor,
                                                     AnchorPoint anchorPoint, QObject *parent)
    : QObject(parent), manager_(manager), monitor_(monitor), anchorPoint_(std::move(anchorPoint)) {}

FloatingPaletteController::~FloatingPaletteController() {
    close();
}

FloatingPaletteController &FloatingPaletteController::shared() {
    static FloatingPaletteController *instance =
        new FloatingPaletteController(ClipboardManager::shared(), ClipboardMonitor::shared());
    return *instance;
}

FloatingPalettePanel *FloatingPaletteController::panel() const {
    return panel_;
}

QPoint FloatingPaletteController::pointerPosition() {
    return QCursor::pos();
}

void FloatingPaletteController::show() {
    monitor_.refresh();
    const bool hasText = clipboardHasText(manager_);

    // The actions reach the controller through a guard, so a panel outliving it does nothing.
    QPointer<FloatingPaletteController> self(this);
    FloatingPaletteView view{
        hasText,
        [self](TextTransformKind kind) {
            if (self)
                self->applyTransform(kind);
        },
        [self] {
            if (self)
                self->close();
        },
        [self] {
            if (self && self->showServicesHelp_)
                self->showServicesHelp_();
        },
        modes(),
    };
    auto *panel = new FloatingPalettePanel(std::move(view));
    const QPoint anchor = anchorPoint_();
    const QRect area = paletteArea(anchor, currentScreenAreas(), primaryScreenArea());
    panel->placeAt(palettePosition(anchor, panel->size(), area));
    panel->show();
    panel->raise();
    panel->activateWindow();

    if (panel_) {
        panel_->close();
        panel_->deleteLater();
    }
    panel_ = panel;

    stopFilteringEvents();
    QCoreApplication::instance()->installEventFilter(this);
    filteringEvents_ = true;
}

void FloatingPaletteController::close() {
    stopFilteringEvents();
    if (panel_) {
        panel_->close();
        // Later, because close may run from one of the panel's own buttons.
        panel_->deleteLater();
    }
    panel_ = nullptr;
}

void FloatingPaletteController::stopFilteringEvents() {
    if (filteringEvents_ && QCoreApplication::instance())
        QCoreApplication::instance()->removeEventFilter(this);
    filteringEvents_ = false;
}

void FloatingPaletteController::applyTransform(TextTransformKind kind) {
    QMetaObject::invokeMethod(
        this, [this, kind] { transformNow(kind); }, Qt::QueuedConnection);
}

void FloatingPaletteController::transformNow(TextTransformKind kind) {
    // Only plain or rich text counts here; the palette stays open when there is none.
    if (!manager_.readText(true)) {
        monitor_.refresh();
        return;
    }
    manager_.transformClipboard(kind, termsStore_, false);
    close();
}

bool FloatingPaletteController::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
        close();
        return true;
    }
    if (event->type() != QEvent::MouseButtonPress)
        return QObject::eventFilter(watched, event);
    const auto *press = static_cast<QMouseEvent *>(event);
    if (press->button() != Qt::LeftButton && press->button() != Qt::RightButton)
        return QObject::eventFilter(watched, event);
    if (panel_) {
        // The click's position in the window that received it, taken as a position in the
        // palette: the same reading whichever window or widget sees the event first.
        const QPoint inWindow = press->scenePosition().toPoint();
        if (!panel_->rect().contains(inWindow))
            close();
    }
    return QObject::eventFilter(watched, event);
}

} // namespace glyphmill
