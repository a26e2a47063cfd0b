#pragma once

#include <QSocketNotifier>

#include "support/HandOver.h"

namespace stavelin::platform::qt {

/// Runs a queue's tasks in the event loop of the thread that makes this object. The queue outlives it.
class HandOverNotifier final
{
public:
    explicit HandOverNotifier(support::HandOver &handOver);

private:
    QSocketNotifier m_notifier;
};

} // namespace stavelin::platform::qt
