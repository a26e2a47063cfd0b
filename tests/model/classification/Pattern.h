#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct pcre2_real_code_8;

namespace stavelin::testkit {

/// A regular expression over well-formed UTF-8, with Unicode's digits, letters and white space.
class Pattern
{
public:
    /// `pattern` must be right; a wrong one ends the test program.
    explicit Pattern(std::string_view pattern);
    ~Pattern();
    Pattern(const Pattern &) = delete;
    Pattern &operator=(const Pattern &) = delete;

    /// The whole match and its groups, a group that took no part as an empty text; empty when nothing
    /// matches.
    [[nodiscard]] std::vector<std::string> match(const std::string &text) const;
    [[nodiscard]] bool matches(const std::string &text) const { return !match(text).empty(); }

private:
    pcre2_real_code_8 *m_code;
};

} // namespace stavelin::testkit
