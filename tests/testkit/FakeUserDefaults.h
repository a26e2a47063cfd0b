#pragma once

#include "platform/UserDefaults.h"

#include <charconv>
#include <map>
#include <utility>
#include <vector>

namespace stavelin::testkit {

/// Settings in memory, kept as texts like those in a file.
class FakeUserDefaults final : public platform::UserDefaults
{
public:
    [[nodiscard]] std::int64_t integer(std::string_view key) const override
    {
        const std::string text = string(key);
        std::int64_t value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        return error == std::errc() && end == text.data() + text.size() ? value : 0;
    }
    void setInteger(std::string_view key, std::int64_t value) override
    {
        integersWritten.emplace_back(key, value);
        setString(key, std::to_string(value));
    }
    [[nodiscard]] std::string string(std::string_view key) const override
    {
        const auto found = m_values.find(key);
        return found == m_values.end() ? std::string() : found->second;
    }
    void setString(std::string_view key, std::string_view value) override
    {
        m_values.insert_or_assign(std::string(key), std::string(value));
    }

    std::vector<std::pair<std::string, std::int64_t>> integersWritten; ///< calls of setInteger(), in order

private:
    std::map<std::string, std::string, std::less<>> m_values;
};

} // namespace stavelin::testkit
