#include "daemon/ExactJson.h"

#include "daemon/JsonLimits.h"

#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace stavelin::daemon {

namespace {

/// Builds the value from the inside outwards as the parser reports what it reads.
class ValueBuilder : public nlohmann::json_sax<nlohmann::json>
{
public:
    AnyCodable takeResult() { return std::move(m_result); }

    bool null() override { return add({}); }
    bool boolean(bool value) override { return add({value}); }
    bool number_integer(number_integer_t value) override { return add({std::int64_t{value}}); }
    bool number_unsigned(number_unsigned_t value) override
    {
        if (value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
            return add({static_cast<std::int64_t>(value)});
        return add({static_cast<double>(value)});
    }
    bool number_float(number_float_t value, const string_t & /*digits*/) override { return add({value}); }
    bool string(string_t &value) override { return add({std::move(value)}); }
    bool binary(binary_t & /*value*/) override { return false; }
    bool start_object(std::size_t /*size*/) override { return open({AnyCodable::Object{}}); }
    bool key(string_t &name) override
    {
        m_open.back().name = std::move(name);
        return true;
    }
    bool end_object() override { return close(); }
    bool start_array(std::size_t /*size*/) override { return open({AnyCodable::Array{}}); }
    bool end_array() override { return close(); }
    bool parse_error(std::size_t /*position*/, const std::string & /*token*/,
                     const nlohmann::detail::exception & /*error*/) override
    {
        return false;
    }

private:
    struct Container
    {
        AnyCodable value;
        std::string name; // of the object's member that comes next
    };

    bool open(AnyCodable value)
    {
        if (m_open.size() > maximumJsonDepth)
            return false;
        m_open.push_back({.value = std::move(value), .name = {}});
        return true;
    }
    bool close()
    {
        AnyCodable closed = std::move(m_open.back().value);
        m_open.pop_back();
        return add(std::move(closed));
    }
    bool add(AnyCodable value)
    {
        if (m_open.empty()) {
            m_result = std::move(value);
            return true;
        }
        // An empty container counts as no level of its own, as in the fast parser.
        if (m_open.size() > maximumJsonDepth)
            return false;
        Container &container = m_open.back();
        if (auto *array = std::get_if<AnyCodable::Array>(&container.value.value))
            array->push_back(std::move(value));
        else
            std::get<AnyCodable::Object>(container.value.value)
                .insert_or_assign(std::move(container.name), std::move(value));
        return true;
    }

    std::vector<Container> m_open;
    AnyCodable m_result;
};

} // namespace

std::expected<AnyCodable, DecodingError> parseExactJson(std::string_view json)
{
    // This parser takes a NUL for the end and skips a byte-order mark: neither may stand in JSON.
    if (json.starts_with(byteOrderMark) || json.contains('\0'))
        return std::unexpected(DecodingError{"not well-formed JSON"});
    ValueBuilder builder;
    if (!nlohmann::json::sax_parse(json, &builder))
        return std::unexpected(DecodingError{"not well-formed JSON"});
    return builder.takeResult();
}

} // namespace stavelin::daemon
