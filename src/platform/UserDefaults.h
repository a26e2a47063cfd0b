#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace stavelin::platform {

/// The user's settings of this application. Every write is on disk when the call returns.
class UserDefaults
{
public:
    virtual ~UserDefaults() = default;

    /// 0 when the key is absent or holds no integer.
    [[nodiscard]] virtual std::int64_t integer(std::string_view key) const = 0;
    virtual void setInteger(std::string_view key, std::int64_t value) = 0;
    /// Empty when the key is absent.
    [[nodiscard]] virtual std::string string(std::string_view key) const = 0;
    virtual void setString(std::string_view key, std::string_view value) = 0;
};

} // namespace stavelin::platform
