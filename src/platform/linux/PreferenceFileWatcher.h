// Keeps a running program's preference store in step with its file: when another program
// (the command line, another copy of a window) replaces the file, the store reloads it and
// announces the change to its observers. Writes replace the file by renaming, so the folder is
// watched rather than the file.
#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

namespace glyphmill {

class JsonFilePreferenceStore;

class PreferenceFileWatcher final : public QObject {
    Q_OBJECT

public:
    explicit PreferenceFileWatcher(JsonFilePreferenceStore &store, QObject *parent = nullptr);

private:
    void watch();

    JsonFilePreferenceStore &store_;
    QFileSystemWatcher watcher_;
    // Gathers the burst of events one write makes (temporary file, rename) into one reload.
    QTimer settle_;
};

} // namespace glyphmill
