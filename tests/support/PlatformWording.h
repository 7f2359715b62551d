// Finds the texts of a window that speak of another platform: its computer, its settings app,
// its store, its menu bar, or its modifier keys and their glyphs.
#pragma once

#include <QAbstractButton>
#include <QLabel>
#include <QRegularExpression>
#include <QStringList>
#include <QWidget>

namespace glyphmill::testing {

// Everything a user of the window reads or hears: titles, labels, button texts, and the names,
// descriptions and tool tips that assistive technology announces.
inline QStringList textsShownBy(const QWidget &root) {
    QStringList texts{root.windowTitle()};
    QList<const QWidget *> widgets{&root};
    for (const QWidget *child : root.findChildren<QWidget *>())
        widgets.append(child);
    for (const QWidget *widget : widgets) {
        texts << widget->accessibleName() << widget->accessibleDescription() << widget->toolTip();
        if (const auto *label = qobject_cast<const QLabel *>(widget))
            texts << label->text();
        if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
            texts << button->text();
    }
    texts.removeAll(QString());
    texts.removeDuplicates();
    return texts;
}

inline QStringList textsNamingAnotherPlatform(const QStringList &texts) {
    static const QRegularExpression otherPlatform(
        QStringLiteral("\\b(?:Mac|macOS|App Store|System Settings|(?i:menu bar)|Command|Option)\\b|[⌘⌥⌃⇧]"));
    QStringList found;
    for (const QString &text : texts)
        if (otherPlatform.match(text).hasMatch())
            found << text;
    return found;
}

} // namespace glyphmill::testing
