// Waiting for something another process or the X server does, with the event loop running.
#pragma once

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <functional>

namespace glyphmill {

// How long a test waits for what it expects before it gives up. It only keeps a broken run from
// hanging and says nothing about speed: a sanitizer build on a machine busy with something else
// may take many seconds for what takes milliseconds otherwise.
inline constexpr std::chrono::milliseconds waitDeadline{std::chrono::seconds(60)};
// The same for QTest's waits, which take a count of milliseconds.
inline constexpr int waitDeadlineMilliseconds = static_cast<int>(waitDeadline.count());

// Runs the event loop until the condition holds, and says whether it did before the deadline.
inline bool spinUntil(const std::function<bool()> &condition) {
    QDeadlineTimer deadline(waitDeadline);
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
