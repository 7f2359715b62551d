#include "ui/DesktopMotionSetting.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QString>

namespace glyphmill {

namespace {

// gsettings answers at once; a hung D-Bus must not keep a window from opening.
constexpr int gsettingsTimeoutMs = 1000;

bool gnomeAnimationsDisabled() {
    const QString gsettings = QStandardPaths::findExecutable(QStringLiteral("gsettings"));
    if (gsettings.isEmpty())
        return false;
    QProcess process;
    process.start(gsettings, {QStringLiteral("get"), QStringLiteral("org.gnome.desktop.interface"),
                              QStringLiteral("enable-animations")});
    if (!process.waitForFinished(gsettingsTimeoutMs)) {
        process.kill();
        process.waitForFinished(gsettingsTimeoutMs);
        return false;
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return false;
    return gnomeSettingDisablesAnimations(QString::fromUtf8(process.readAllStandardOutput()));
}

QString kdeGlobalsPath() {
    QString configHome = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (configHome.isEmpty())
        configHome = QDir::homePath() + QStringLiteral("/.config");
    return configHome + QStringLiteral("/kdeglobals");
}

bool kdeAnimationsDisabled() {
    QFile file(kdeGlobalsPath());
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    return kdeGlobalsDisableAnimations(QString::fromUtf8(file.readAll()));
}

} // namespace

bool gnomeSettingDisablesAnimations(QStringView gsettingsOutput) {
    return gsettingsOutput.trimmed() == QLatin1String("false");
}

bool kdeGlobalsDisableAnimations(QStringView kdeglobalsText) {
    bool inKdeGroup = false;
    for (const QStringView rawLine : kdeglobalsText.split(QLatin1Char('\n'))) {
        const QStringView line = rawLine.trimmed();
        if (line.startsWith(QLatin1Char('['))) {
            inKdeGroup = line == QLatin1String("[KDE]");
            continue;
        }
        if (!inKdeGroup)
            continue;
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        if (equals < 0 || line.first(equals).trimmed() != QLatin1String("AnimationDurationFactor"))
            continue;
        bool isNumber = false;
        const double factor = line.sliced(equals + 1).trimmed().toDouble(&isNumber);
        return isNumber && factor == 0.0;
    }
    return false;
}

bool desktopPrefersReducedMotion() {
    return kdeAnimationsDisabled() || gnomeAnimationsDisabled();
}

} // namespace glyphmill
