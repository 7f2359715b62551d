#include "app/TerminationSignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <sys/socket.h>
#include <unistd.h>

#include <csignal>

namespace glyphmill {
namespace {

// A signal handler may only write to a descriptor; the event loop reads the other end.
int signalPipe[2] = {-1, -1};

void forwardSignal(int) {
    const char byte = 1;
    [[maybe_unused]] auto written = ::write(signalPipe[0], &byte, 1);
}

} // namespace

bool quitOnTerminationSignals() {
    if (signalPipe[0] >= 0)
        return true;
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, signalPipe) != 0)
        return false;
    auto *notifier = new QSocketNotifier(signalPipe[1], QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [] {
        char byte;
        [[maybe_unused]] auto read = ::read(signalPipe[1], &byte, 1);
        QCoreApplication::quit();
    });
    struct sigaction action = {};
    action.sa_handler = forwardSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    return ::sigaction(SIGTERM, &action, nullptr) == 0 && ::sigaction(SIGINT, &action, nullptr) == 0;
}

} // namespace glyphmill
