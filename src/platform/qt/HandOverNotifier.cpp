#include "platform/qt/HandOverNotifier.h"

namespace stavelin::platform::qt {

HandOverNotifier::HandOverNotifier(support::HandOver &handOver)
    : m_notifier(handOver.descriptor(), QSocketNotifier::Read)
{
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [&handOver] { handOver.run(); });
}

} // namespace stavelin::platform::qt
