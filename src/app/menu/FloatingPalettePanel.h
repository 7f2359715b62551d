// The floating palette's window: a frameless tool window on top of the others, with a header,
// a hint line and one button per transform. Built anew at every opening.
#pragma once

#include "transform/TextTransformer.h"

#include <QPoint>
#include <QWidget>

#include <functional>
#include <vector>

class QAbstractButton;
class QLabel;
class QPushButton;
class QVBoxLayout;

namespace glyphmill {

struct FloatingPaletteView {
    bool hasText = false;
    std::function<void(TextTransformKind)> onTransform;
    std::function<void()> onDismiss;
    std::function<void()> onServicesHelp;
    std::vector<TextTransformKind> modes;
};

class FloatingPalettePanel final : public QWidget {
    Q_OBJECT

public:
    static constexpr int panelWidth = 280;
    static constexpr int heightWithText = 220;
    static constexpr int heightWithoutText = 250;

    static const QString title;

    explicit FloatingPalettePanel(FloatingPaletteView view);

    static QSize sizeFor(bool hasText);
    // The help text and tooltip of a mode button.
    static QString helpText(TextTransformKind kind);

    // Window managers may move a frameless window or report it at the origin; the palette
    // keeps where it was meant to be and goes back there whenever it is shown.
    void placeAt(QPoint topLeft);
    QPoint intendedPosition() const { return intendedPosition_; }

    const std::vector<QPushButton *> &modeButtons() const { return modeButtons_; }
    QAbstractButton *closeButton() const { return closeButton_; }
    QAbstractButton *servicesHelpButton() const { return servicesHelpButton_; }
    QLabel *hintLabel() const { return hintLabel_; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void buildHeader(QVBoxLayout &layout);
    void buildHint(QVBoxLayout &layout);
    void buildModeButtons(QVBoxLayout &layout);

    FloatingPaletteView view_;
    QPoint intendedPosition_;
    std::vector<QPushButton *> modeButtons_;
    QAbstractButton *closeButton_ = nullptr;
    QAbstractButton *servicesHelpButton_ = nullptr;
    QLabel *hintLabel_ = nullptr;
};

} // namespace glyphmill
