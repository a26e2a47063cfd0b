#pragma once

#include "platform/TerminationSignals.h"
#include "support/WakeUp.h"

namespace stavelin::platform {

/// SIGTERM, SIGINT and SIGHUP. One object at a time; destroying it gives the signals their default action
/// back.
class PosixTerminationSignals final : public TerminationSignals
{
public:
    PosixTerminationSignals();
    ~PosixTerminationSignals() override;
    PosixTerminationSignals(const PosixTerminationSignals &) = delete;
    PosixTerminationSignals &operator=(const PosixTerminationSignals &) = delete;

    [[nodiscard]] int descriptor() const override { return m_wakeUp.descriptor(); }

private:
    support::WakeUp m_wakeUp;
};

} // namespace stavelin::platform
