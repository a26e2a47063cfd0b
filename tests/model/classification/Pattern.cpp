#include "model/classification/Pattern.h"

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <cstdio>
#include <cstdlib>

namespace stavelin::testkit {

Pattern::Pattern(std::string_view pattern)
{
    int error = 0;
    PCRE2_SIZE offset = 0;
    m_code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.data()), pattern.size(),
                           PCRE2_UTF | PCRE2_UCP | PCRE2_DOLLAR_ENDONLY, &error, &offset, nullptr);
    if (m_code == nullptr) {
        std::fprintf(stderr, "pattern wrong at %zu\n", offset);
        std::abort();
    }
}

Pattern::~Pattern()
{
    pcre2_code_free(m_code);
}

std::vector<std::string> Pattern::match(const std::string &text) const
{
    const std::unique_ptr<pcre2_match_data, decltype(&pcre2_match_data_free)> data(
        pcre2_match_data_create_from_pattern(m_code, nullptr), &pcre2_match_data_free);
    const int count = pcre2_match(m_code, reinterpret_cast<PCRE2_SPTR>(text.data()), text.size(), 0, 0,
                                  data.get(), nullptr);
    std::vector<std::string> groups;
    const PCRE2_SIZE *places = pcre2_get_ovector_pointer(data.get());
    for (int i = 0; i < count; ++i) {
        const bool tookPart = places[2 * i] != PCRE2_UNSET;
        groups.push_back(tookPart ? text.substr(places[2 * i], places[2 * i + 1] - places[2 * i]) : "");
    }
    return groups;
}

} // namespace stavelin::testkit
