#pragma once

#include "daemon/WireError.h"

#include <array>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace stavelin::daemon {

/// The members of one object that a record has, looked up in one pass. Of equal names the last one counts.
template <typename View, std::size_t count>
class RecordMembers
{
public:
    static std::expected<RecordMembers, DecodingError>
    of(const View &object, const std::array<std::string_view, count> &names, std::string_view what)
    {
        RecordMembers members(names);
        const bool isObject = object.forEachMember([&members](std::string_view name, const View &value) {
            for (std::size_t i = 0; i < count; ++i) {
                if (members.m_names[i] == name)
                    members.m_values[i] = value;
            }
        });
        if (!isObject)
            return std::unexpected(DecodingError{"not an object: " + std::string(what)});
        return members;
    }

    /// `get` reads a value as the type that the record has, or yields nothing. The first member that does not
    /// fit is kept as the error.
    template <typename Get>
    auto required(std::size_t member, Get get)
    {
        using Value = typename decltype(get(std::declval<const View &>()))::value_type;
        if (!m_values[member] || m_values[member]->isNull()) {
            fail("missing member: ", member);
            return Value{};
        }
        auto value = get(*m_values[member]);
        if (!value) {
            fail("member of the wrong type: ", member);
            return Value{};
        }
        return *std::move(value);
    }
    template <typename Get>
    auto optional(std::size_t member, Get get)
    {
        using Value = decltype(get(std::declval<const View &>()));
        if (!m_values[member] || m_values[member]->isNull())
            return Value{};
        auto value = get(*m_values[member]);
        if (!value)
            fail("member of the wrong type: ", member);
        return value;
    }
    [[nodiscard]] const std::optional<View> &view(std::size_t member) const { return m_values[member]; }
    [[nodiscard]] std::optional<DecodingError> takeError() { return std::move(m_error); }
    void fail(DecodingError error)
    {
        if (!m_error)
            m_error = std::move(error);
    }

private:
    explicit RecordMembers(const std::array<std::string_view, count> &names) : m_names(names) {}
    void fail(const char *what, std::size_t member) { fail({what + std::string(m_names[member])}); }

    std::array<std::string_view, count> m_names;
    std::array<std::optional<View>, count> m_values{};
    std::optional<DecodingError> m_error;
};

} // namespace stavelin::daemon
