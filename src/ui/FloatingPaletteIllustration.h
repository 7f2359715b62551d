// A still picture of the floating palette at work: an original text, a mock row of the
// palette's buttons with the first one highlighted, and what the first one makes of the text.
#pragma once

#include <QStringList>
#include <QWidget>

class QLabel;

namespace glyphmill {

class FloatingPaletteIllustration final : public QWidget {
    Q_OBJECT
public:
    FloatingPaletteIllustration(const QString &source, const QStringList &labels, QWidget *parent = nullptr);

    void setResult(const QString &result);
    QString result() const;

private:
    QLabel *result_ = nullptr;
};

} // namespace glyphmill
