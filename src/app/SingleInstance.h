// One Glyphmill per session: the first process owns the bus name, later ones hand their request
// to it and end.
#pragma once

#include "cli/AppCommandLine.h"

#include <QDBusConnection>
#include <QString>

#include <chrono>

namespace glyphmill::singleInstance {

enum class Claim { owned, heldByAnother, failed };

// Asks for the name without queueing: a process that does not get it at once never will.
Claim claimServiceName(QDBusConnection &bus);
bool isRunning(QDBusConnection &bus);

// What the running instance answered: done; declined (it ran the request but found nothing to
// do or could not write the clipboard); failed (not delivered, or the piece is not available).
struct Answer {
    enum class Kind { done, declined, failed };
    Kind kind = Kind::done;
    QString message; // one line, unless done
};

// Hands the request to the running instance and waits until it has been carried out (a line
// tool's question may keep it a while).
Answer forwardRequest(QDBusConnection &bus, const appCommands::Request &request);

// Waits until some process owns the bus name, or the process `child` (a Glyphmill just started)
// has ended, or the deadline has passed. True when the name is owned.
bool waitForServiceName(QDBusConnection &bus, qint64 child, std::chrono::milliseconds deadline);

} // namespace glyphmill::singleInstance
