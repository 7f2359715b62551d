// The content of the settings window: seven sections, each a header, a group of controls and a
// footer, laid out top to bottom in a form. Every control is bound to the settings both ways.
#pragma once

#include <QPushButton>
#include <QString>

#include <functional>
#include <string>

class QWidget;

namespace glyphmill {

class AppSettings;
class ProtectedTermsStore;
class ShortcutRecordingMonitor;

// Where the About section's links lead; an empty address leaves its link disabled.
struct AboutLinks {
    std::string reviewUrl;
    std::string feedbackAddress; // a mail address, opened as "mailto:" + address
    std::string websiteUrl;
};

struct SettingsFormContext {
    ProtectedTermsStore &terms;
    AppSettings &settings;
    ShortcutRecordingMonitor &monitor;
    AboutLinks links;
    QString version;
    std::function<void()> showProtectedTermsList;
};

// The whole form, ready to be put in a scroll area.
QWidget *buildSettingsForm(const SettingsFormContext &context);

// A full-width, left-aligned button on a rounded, lightly bordered background that leads to
// another view.
class SettingsNavigationButton final : public QPushButton {
    Q_OBJECT
public:
    SettingsNavigationButton(const QString &title, std::function<void()> action, QWidget *parent = nullptr);
};

} // namespace glyphmill
