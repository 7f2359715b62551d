// The pieces of the guide's pages and the three pages without a sample: the introduction, the
// floating palette with Services, and the closing page. The pages that show the palette
// shortcut follow the settings as they change.
#pragma once

#include <QWidget>

class QLabel;

namespace glyphmill {

struct OnboardingContext;
class FloatingPaletteIllustration;
class WelcomeFeatureRow;

class WelcomeGuideHeader final : public QWidget {
    Q_OBJECT
public:
    WelcomeGuideHeader(const QString &title, const QString &subtitle, bool showsIcon,
                       QWidget *parent = nullptr);
};

// iconName is a freedesktop icon-theme name; without a matching theme icon the column stays blank.
class WelcomeFeatureRow final : public QWidget {
    Q_OBJECT
public:
    WelcomeFeatureRow(const QString &iconName, const QString &title, const QString &message,
                      QWidget *parent = nullptr);

    void setMessage(const QString &message);
    QString message() const;

private:
    QString title_;
    QLabel *message_ = nullptr;
};

QWidget *makeIntroductionPage(QWidget *parent = nullptr);

// Page 2: the palette illustration, the palette shortcut (or why it is missing) and Services.
class PaletteAndServicesPage final : public QWidget {
    Q_OBJECT
public:
    PaletteAndServicesPage(const OnboardingContext &context, QWidget *parent = nullptr);
    ~PaletteAndServicesPage() override;

    QString shortcutHeading() const;
    QString shortcutMessage() const;
    QString exampleResult() const;

private:
    void refresh();

    const OnboardingContext &context_;
    int observerToken_ = 0;
    FloatingPaletteIllustration *illustration_ = nullptr;
    QLabel *heading_ = nullptr;
    QLabel *message_ = nullptr;
};

// Page 3: where to find everything once the guide is closed.
class ReadyPage final : public QWidget {
    Q_OBJECT
public:
    ReadyPage(const OnboardingContext &context, QWidget *parent = nullptr);

    QString paletteRowMessage() const;

private:
    void refresh();

    const OnboardingContext &context_;
    WelcomeFeatureRow *paletteRow_ = nullptr;
};

} // namespace glyphmill
