// The guide's type ramp and its small building blocks: fonts scaled from the application font,
// secondary text, framed boxes and link-style buttons.
#pragma once

#include <QFont>
#include <QString>

class QLabel;
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

} // namespace glyphmill::welcomeStyle
