#pragma once

#include "support/Log.h"

#include <mutex>
#include <string>
#include <vector>

namespace stavelin::testkit {

/// Keeps the lines instead of writing them.
class RecordingLog final : public support::Log
{
public:
    void line(std::string_view text) override
    {
        const std::lock_guard lock(m_mutex);
        m_lines.emplace_back(text);
    }
    [[nodiscard]] std::vector<std::string> lines() const
    {
        const std::lock_guard lock(m_mutex);
        return m_lines;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_lines;
};

} // namespace stavelin::testkit
