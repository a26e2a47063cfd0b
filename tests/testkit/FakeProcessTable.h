#pragma once

#include "platform/ProcessTable.h"

#include <set>
#include <string>

namespace stavelin::testkit {

class FakeProcessTable final : public platform::ProcessTable
{
public:
    std::set<std::string, std::less<>> running;

    [[nodiscard]] bool isProcessRunning(std::string_view exactName) override
    {
        return running.contains(exactName);
    }
};

} // namespace stavelin::testkit
