// The guide's bottom row: Back, the page dots, Open Settings on the last page and the primary
// button, which answers Return wherever Return is not needed for typing.
#pragma once

#include <QWidget>

class QPushButton;
class QShortcut;

namespace glyphmill {

// Return and Enter press a button while enabled; otherwise the keys go where focus is.
class DefaultActionShortcut final : public QObject {
    Q_OBJECT
public:
    explicit DefaultActionShortcut(QPushButton &button);
    void setEnabled(bool enabled);
    bool isEnabled() const { return enabled_; }

private:
    QPushButton &button_;
    QShortcut *returnKey_ = nullptr;
    QShortcut *enterKey_ = nullptr;
    bool enabled_ = true;
};

// Four dots with the current page filled in; read as "Step N of 4".
class PageDots final : public QWidget {
    Q_OBJECT
public:
    PageDots(int pageCount, QWidget *parent = nullptr);
    void setPage(int page);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int pageCount_;
    int page_ = 0;
};

class WelcomeGuideFooter final : public QWidget {
    Q_OBJECT
public:
    static constexpr int pageCount = 4;

    explicit WelcomeGuideFooter(QWidget *parent = nullptr);

    // Sets the titles, visibility and the Return binding for the page.
    void setPage(int page);

    QPushButton &backButton() const { return *back_; }
    QPushButton &openSettingsButton() const { return *openSettings_; }
    QPushButton &primaryButton() const { return *primary_; }
    const PageDots &dots() const { return *dots_; }
    bool primaryIsDefault() const { return defaultAction_->isEnabled(); }

signals:
    void backRequested();
    void openSettingsRequested();
    void primaryRequested();

private:
    QPushButton *back_ = nullptr;
    PageDots *dots_ = nullptr;
    QPushButton *openSettings_ = nullptr;
    QPushButton *primary_ = nullptr;
    DefaultActionShortcut *defaultAction_ = nullptr;
};

} // namespace glyphmill
