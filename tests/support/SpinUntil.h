// Waiting for something another process or the X server does, with the event loop running.
#pragma once

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <functional>

namespace glyphmill {

// Runs the event loop until the condition holds. The deadline only keeps a broken run from
// hanging; it says nothing about speed.
inline bool spinUntil(const std::function<bool()> &condition) {
    QDeadlineTimer deadline(std::chrono::seconds(30));
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QEventLoop loop;
        QTimer::singleShot(10, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return true;
}

} // namespace glyphmill
