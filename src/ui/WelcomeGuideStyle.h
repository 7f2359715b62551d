// The guide's type ramp and its small building blocks: fonts scaled from the application font,
// secondary text, framed boxes and link-style buttons.
#pragma once

#include <QColor>
#include <QFont>
#include <QString>

#include <functional>

class QLabel;
class QPalette;
class QPushButton;
class QWidget;

namespace glyphmill::welcomeStyle {

enum class TextStyle { title, title2, headline, body, bodyMedium, callout, caption };

QFont font(TextStyle style);
// A word-wrapping label in the style; secondary text is drawn in a paler colour.
QLabel *label(const QString &text, TextStyle style, bool secondary = false, QWidget *parent = nullptr);
void makeSecondary(QLabel &label);
void makeSelectable(QLabel &label);
// A flat button drawn like a link.
QPushButton *linkButton(const QString &title, QWidget *parent = nullptr);
// A rounded box with a one-pixel separator-coloured border, filled with the base (text) or the
// button (control) background colour.
enum class BoxFill { textBackground, controlBackground };
void frameAsBox(QWidget &widget, BoxFill fill);

// Colour helpers for style sheets built from a palette.
QString cssColour(const QColor &colour);
// Window text at the given opacity: hairlines and borders that show in light and dark themes.
QColor separatorColour(const QPalette &palette, double strength);
// Sets a style sheet built from the application palette, and builds it again on every palette
// change.
void followPalette(QWidget &widget, std::function<QString(const QPalette &)> buildStyleSheet);
// Gives the window's push buttons a little more horizontal padding.
void giveButtonsRoom(QWidget &window);

} // namespace glyphmill::welcomeStyle
