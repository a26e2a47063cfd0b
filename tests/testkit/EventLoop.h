#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

#include <functional>

namespace stavelin::testkit {

/// Runs the event loop until the condition holds; false when it does not within ten seconds.
inline bool runEventLoopUntil(const std::function<bool()> &condition)
{
    const QDeadlineTimer deadline(10'000);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        QThread::usleep(200);
    }
    return true;
}

} // namespace stavelin::testkit
