#include "platform/linux/PreferenceFileWatcher.h"

#include "platform/JsonFilePreferenceStore.h"

#include <QFileInfo>

namespace glyphmill {

namespace {
constexpr int settleMilliseconds = 100;
}

PreferenceFileWatcher::PreferenceFileWatcher(JsonFilePreferenceStore &store, QObject *parent)
    : QObject(parent), store_(store) {
    settle_.setSingleShot(true);
    settle_.setInterval(settleMilliseconds);
    connect(&settle_, &QTimer::timeout, this, [this] {
        watch();
        store_.reload();
    });
    auto changed = [this] { settle_.start(); };
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, changed);
    connect(&watcher_, &QFileSystemWatcher::fileChanged, this, changed);
    // The folder is made now if it is missing, so a file that appears later is seen too.
    store_.createDirectory();
    watch();
}

void PreferenceFileWatcher::watch() {
    const QString file = QString::fromStdString(store_.path());
    const QString folder = QFileInfo(file).absolutePath();
    if (!watcher_.directories().contains(folder))
        watcher_.addPath(folder);
    // The file itself too, for editors and tools that rewrite it in place; a replaced file
    // drops out of the watch and is added again here.
    if (!watcher_.files().contains(file) && QFileInfo::exists(file))
        watcher_.addPath(file);
}

} // namespace glyphmill
