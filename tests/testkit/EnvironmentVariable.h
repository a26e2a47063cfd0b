#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace stavelin::testkit {

/// Sets or removes a variable of this process's environment; what it was comes back when the object goes.
class EnvironmentVariable
{
public:
    EnvironmentVariable(std::string name, const std::optional<std::string> &value) : m_name(std::move(name))
    {
        if (const char *previous = std::getenv(m_name.c_str()))
            m_previous = previous;
        set(value);
    }
    ~EnvironmentVariable() { set(m_previous); }
    EnvironmentVariable(const EnvironmentVariable &) = delete;
    EnvironmentVariable &operator=(const EnvironmentVariable &) = delete;

private:
    void set(const std::optional<std::string> &value) const
    {
        if (value)
            ::setenv(m_name.c_str(), value->c_str(), 1);
        else
            ::unsetenv(m_name.c_str());
    }

    std::string m_name;
    std::optional<std::string> m_previous;
};

} // namespace stavelin::testkit
