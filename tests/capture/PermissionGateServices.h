// The in-memory system that the permission gate reads, installed for a test's lifetime. An
// explanation panel the test left open is closed, and its deletion carried out, at the end.
#pragma once

#include "capture/ScreenRecordingPermission.h"
#include "platform/InMemoryLoginItem.h"
#include "platform/InMemoryPasteboard.h"
#include "platform/InMemoryPreferenceStore.h"
#include "platform/PlatformServices.h"
#include "platform/RecordingKeystrokeSender.h"
#include "platform/RecordingUrlOpener.h"
#include "platform/ScreenCaptureAccess.h"
#include "platform/ScriptedDialogs.h"

#include <QCoreApplication>
#include <QDialog>

namespace glyphmill {

struct PermissionGateServices {
    PermissionGateServices() {
        installPlatformServices({.preferences = &userDefaults,
                                 .pasteboard = &clipboard,
                                 .dialogs = &dialogs,
                                 .keystrokes = &keystrokes,
                                 .loginItem = &loginItem,
                                 .urls = &urls,
                                 .screenAccess = &access});
    }
    ~PermissionGateServices() {
        if (QDialog *panel = screenRecordingExplanationPanel())
            panel->reject();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    PermissionGateServices(const PermissionGateServices &) = delete;
    PermissionGateServices &operator=(const PermissionGateServices &) = delete;

    InMemoryPreferenceStore userDefaults;
    InMemoryPasteboard clipboard;
    ScriptedDialogs dialogs;
    RecordingKeystrokeSender keystrokes;
    InMemoryLoginItem loginItem;
    RecordingUrlOpener urls;
    InMemoryScreenCaptureAccess access;
};

} // namespace glyphmill
