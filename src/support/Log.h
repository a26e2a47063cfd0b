#pragma once

#include <string_view>

namespace stavelin::support {

/// Where the program says what went wrong: one line per message, no levels, never a slot's text.
class Log
{
public:
    virtual ~Log() = default;

    /// Writes one line; line breaks inside `text` become spaces. Any thread.
    virtual void line(std::string_view text) = 0;
};

/// Lines on standard output, each written whole and at once.
class StandardOutputLog final : public Log
{
public:
    void line(std::string_view text) override;
};

} // namespace stavelin::support
