// Opens the floating palette next to the pointer, transforms the clipboard with the chosen
// button and closes it again. One panel at a time, built anew at every opening; while it is
// open an application event filter closes it on Escape and on a click outside it.
#pragma once

#include "transform/TextTransformer.h"

#include <QObject>
#include <QPoint>
#include <QPointer>

#include <functional>
#include <vector>

namespace glyphmill {

class ClipboardManager;
class ClipboardMonitor;
class FloatingPalettePanel;
class ProtectedTermsStore;

// Whether the clipboard holds text worth transforming: a non-blank plain or rich text, else any
// text at all (HTML included) that is not only white space and line breaks.
bool clipboardHasText(const ClipboardManager &manager);

class FloatingPaletteController final : public QObject {
    Q_OBJECT

public:
    using AnchorPoint = std::function<QPoint()>;

    // The transforms the palette offers, in order; Capitalize Words is left to the menu.
    static const std::vector<TextTransformKind> &modes();

    // The anchor is where the palette opens, in global coordinates; by default the pointer.
    FloatingPaletteController(ClipboardManager &manager, ClipboardMonitor &monitor,
                              AnchorPoint anchorPoint = pointerPosition, QObject *parent = nullptr);
    ~FloatingPaletteController() override;

    // Made on first use over the shared clipboard controllers; never destroyed.
    static FloatingPaletteController &shared();

    static QPoint pointerPosition();

    // Without a store the terms are read from the preference store at each transform.
    void setTermsStore(const ProtectedTermsStore *termsStore) { termsStore_ = termsStore; }
    const ProtectedTermsStore *termsStore() const { return termsStore_; }
    // What "How to Use Services…" runs; the palette stays open meanwhile.
    void setServicesHelp(std::function<void()> showServicesHelp) {
        showServicesHelp_ = std::move(showServicesHelp);
    }

    // Opens a fresh palette, closing any earlier one.
    void show();
    // Safe when nothing is open.
    void close();
    // Queues the transform; it runs once the button press has been handled.
    void applyTransform(TextTransformKind kind);

    FloatingPalettePanel *panel() const;
    bool isFilteringEvents() const { return filteringEvents_; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void transformNow(TextTransformKind kind);
    void stopFilteringEvents();

    ClipboardManager &manager_;
    ClipboardMonitor &monitor_;
    AnchorPoint anchorPoint_;
    const ProtectedTermsStore *termsStore_ = nullptr;
    std::function<void()> showServicesHelp_;
    QPointer<FloatingPalettePanel> panel_;
    bool filteringEvents_ = false;
};

} // namespace glyphmill
