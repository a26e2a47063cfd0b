#pragma once

#include <source_location>
#include <stdexcept>
#include <string>

namespace stavelin::e2e {

/// An expectation that was not met, or a desktop that could not be started. It is thrown, because nothing
/// that comes after it in a test or in the demonstration would mean anything.
class Unmet : public std::runtime_error
{
public:
    explicit Unmet(const std::string &what) : std::runtime_error(what) {}

    /// The same, saying which line of a test expected it.
    Unmet(const std::string &what, const std::source_location &where)
        : std::runtime_error(std::string(where.file_name()) + ":" + std::to_string(where.line()) + ": " +
                             what)
    {}
};

} // namespace stavelin::e2e
