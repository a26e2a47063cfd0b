#include "daemon/WireDecoder.h"

#include "daemon/ExactJson.h"
#include "daemon/JsonLimits.h"
#include "daemon/RecordReader.h"

#include <utility>

#include <simdjson.h>

namespace stavelin::daemon {

namespace {

namespace dom = simdjson::dom;

/// A value in the fast parser's own memory.
class ParsedView
{
public:
    explicit ParsedView(dom::element element) : m_element(element) {}

    [[nodiscard]] bool isNull() const { return m_element.is_null(); }
    [[nodiscard]] std::optional<bool> boolean() const { return get<bool>(); }
    [[nodiscard]] std::optional<std::int64_t> integer() const
    {
        // get_int64() would also take what the parser holds as unsigned.
        if (m_element.type() != dom::element_type::INT64)
            return std::nullopt;
        return get<std::int64_t>();
    }
    [[nodiscard]] std::optional<std::string> string() const
    {
        std::string_view text;
        if (m_element.get(text) != simdjson::SUCCESS)
            return std::nullopt;
        return std::string(text);
    }
    [[nodiscard]] AnyCodable value() const // the depth is bounded by the parser
    {
        switch (m_element.type()) {
        case dom::element_type::ARRAY: {
            AnyCodable::Array array;
            forEachElement([&array](const ParsedView &element) { array.push_back(element.value()); });
            return {std::move(array)};
        }
        case dom::element_type::OBJECT: {
            AnyCodable::Object object;
            forEachMember([&object](std::string_view name, const ParsedView &member) {
                object.insert_or_assign(std::string(name), member.value());
            });
            return {std::move(object)};
        }
        case dom::element_type::INT64:
            return {*get<std::int64_t>()};
        case dom::element_type::UINT64: // only what does not fit a signed integer
            return {static_cast<double>(*get<std::uint64_t>())};
        case dom::element_type::DOUBLE:
            return {*get<double>()};
        case dom::element_type::STRING:
            return {*string()};
        case dom::element_type::BOOL:
            return {*boolean()};
        case dom::element_type::NULL_VALUE:
            return {};
        }
        return {};
    }
    template <typename Visit>
    bool forEachElement(Visit visit) const
    {
        dom::array array;
        if (m_element.get(array) != simdjson::SUCCESS)
            return false;
        for (const dom::element element : array)
            visit(ParsedView(element));
        return true;
    }
    template <typename Visit>
    bool forEachMember(Visit visit) const
    {
        dom::object object;
        if (m_element.get(object) != simdjson::SUCCESS)
            return false;
        for (const dom::key_value_pair member : object)
            visit(member.key, ParsedView(member.value));
        return true;
    }

private:
    template <typename Value>
    [[nodiscard]] std::optional<Value> get() const
    {
        Value value{};
        if (m_element.get(value) != simdjson::SUCCESS)
            return std::nullopt;
        return value;
    }

    dom::element m_element;
};

/// A value that is decoded already.
class ValueView
{
public:
    explicit ValueView(const AnyCodable &value) : m_value(&value) {}

    [[nodiscard]] bool isNull() const { return std::holds_alternative<AnyCodable::Null>(m_value->value); }
    [[nodiscard]] std::optional<bool> boolean() const { return get<bool>(); }
    [[nodiscard]] std::optional<std::int64_t> integer() const { return get<std::int64_t>(); }
    [[nodiscard]] std::optional<std::string> string() const { return get<std::string>(); }
    [[nodiscard]] AnyCodable value() const { return *m_value; }
    template <typename Visit>
    bool forEachElement(Visit visit) const
    {
        const auto *array = std::get_if<AnyCodable::Array>(&m_value->value);
        if (array == nullptr)
            return false;
        for (const AnyCodable &element : *array)
            visit(ValueView(element));
        return true;
    }
    template <typename Visit>
    bool forEachMember(Visit visit) const
    {
        const auto *object = std::get_if<AnyCodable::Object>(&m_value->value);
        if (object == nullptr)
            return false;
        for (const auto &[name, member] : *object)
            visit(std::string_view(name), ValueView(member));
        return true;
    }

private:
    template <typename Value>
    [[nodiscard]] std::optional<Value> get() const
    {
        const auto *held = std::get_if<Value>(&m_value->value);
        if (held == nullptr)
            return std::nullopt;
        return *held;
    }

    const AnyCodable *m_value;
};

template <typename View>
std::expected<WireDecoder::Frame, DecodingError> readFrame(const View &view)
{
    using Reader = RecordReader<View>;
    auto envelope = Reader::message(view, false);
    if (!envelope)
        return std::unexpected(std::move(envelope).error());
    if (envelope->type == MessageType::event && envelope->method == "state.updated") {
        if (const auto payload = Reader::payload(view)) {
            if (auto state = Reader::state(*payload))
                return *std::move(state);
        }
        return *std::move(envelope);
    }
    if (const auto payload = Reader::payload(view); payload && !payload->isNull())
        envelope->payload = payload->value();
    return *std::move(envelope);
}

} // namespace

class WireDecoder::Impl
{
public:
    explicit Impl(Reader reader) : m_isAlwaysExact(reader == Reader::exact)
    {
        // The parser counts the document itself as a level.
        m_isReady = m_parser.allocate(0, maximumJsonDepth + 1) == simdjson::SUCCESS;
    }

    /// Hands the decoded value to `read`, as one view or the other.
    template <typename Record, typename Read>
    std::expected<Record, DecodingError> decode(std::string_view json, Read read)
    {
        if (m_isAlwaysExact || !m_isReady)
            return decodeExactly<Record>(json, read);
        if (json.starts_with(byteOrderMark))
            return std::unexpected(DecodingError{"not well-formed JSON"});
        dom::element root;
        const simdjson::error_code error = m_parser.parse(json.data(), json.size()).get(root);
        // This parser holds 64-bit numbers only; a larger integer is legal all the same.
        if (error == simdjson::NUMBER_ERROR || error == simdjson::NUMBER_OUT_OF_RANGE)
            return decodeExactly<Record>(json, read);
        if (error != simdjson::SUCCESS)
            return std::unexpected(DecodingError{"not well-formed JSON"});
        return read(ParsedView(root));
    }

private:
    template <typename Record, typename Read>
    std::expected<Record, DecodingError> decodeExactly(std::string_view json, Read read)
    {
        const auto value = parseExactJson(json);
        if (!value)
            return std::unexpected(value.error());
        return read(ValueView(*value));
    }

    dom::parser m_parser;
    bool m_isReady = false;
    bool m_isAlwaysExact;
};

WireDecoder::WireDecoder(Reader reader) : m_impl(std::make_unique<Impl>(reader)) {}
WireDecoder::~WireDecoder() = default;
WireDecoder::WireDecoder(WireDecoder &&) noexcept = default;
WireDecoder &WireDecoder::operator=(WireDecoder &&) noexcept = default;

std::expected<ProtocolMessage, DecodingError> WireDecoder::decodeMessage(std::string_view json)
{
    return m_impl->decode<ProtocolMessage>(
        json, []<typename View>(const View &view) { return RecordReader<View>::message(view); });
}

std::expected<StatePayload, DecodingError> WireDecoder::decodeState(std::string_view json)
{
    return m_impl->decode<StatePayload>(
        json, []<typename View>(const View &view) { return RecordReader<View>::state(view); });
}

std::expected<WireDecoder::Frame, DecodingError> WireDecoder::decodeFrame(std::string_view json)
{
    return m_impl->decode<Frame>(json, []<typename View>(const View &view) { return readFrame(view); });
}

std::expected<AnyCodable, DecodingError> WireDecoder::decodeValue(std::string_view json)
{
    auto value = m_impl->decode<AnyCodable>(json, []<typename View>(const View &view) {
        return std::expected<AnyCodable, DecodingError>(view.value());
    });
    if (!value)
        return std::unexpected(DecodingError{"Unable to decode value"});
    return value;
}

std::expected<StatePayload, DecodingError> decodeState(const AnyCodable &value)
{
    return RecordReader<ValueView>::state(ValueView(value));
}

std::expected<AnyCodable, DecodingError> decodeValue(std::string_view json)
{
    return WireDecoder().decodeValue(json);
}

} // namespace stavelin::daemon
