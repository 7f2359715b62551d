// One Glyphmill per session: the first process owns the bus name, later ones hand their request
// to it and end.
#pragma once

#include "cli/AppCommandLine.h"

#include <QDBusConnection>
#include <QString>

#include <optional>

namespace glyphmill::singleInstance {

enum class Claim { owned, heldByAnother, failed };

// Asks for the name without queueing: a process that does not get it at once never will.
Claim claimServiceName(QDBusConnection &bus);
bool isRunning(QDBusConnection &bus);

// Hands the request to the running instance and waits until it has been carried out (a line
// tool's question may keep it a while). None when it was; otherwise why not, in one line.
std::optional<QString> forwardRequest(QDBusConnection &bus, const appCommands::Request &request);

} // namespace glyphmill::singleInstance
