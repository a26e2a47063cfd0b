#include "daemon/WireEncoder.h"

#include "support/Utf8.h"

#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>
#include <utility>

namespace stavelin::daemon {

namespace {

/// Writes JSON into one string and remembers where it is, so that what cannot be written can be named.
class Writer
{
public:
    [[nodiscard]] std::expected<std::string, EncodingError> take()
    {
        if (m_error)
            return std::unexpected(*std::move(m_error));
        return std::move(m_json);
    }

    void write(AnyCodable::Null) { m_json += "null"; }
    void write(bool value) { m_json += value ? "true" : "false"; }
    void write(std::int64_t value)
    {
        char digits[24];
        const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
        m_json.append(digits, end);
    }
    void write(double value)
    {
        if (!std::isfinite(value))
            return fail();
        char digits[40];
        const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
        const std::string_view shortest(digits, end);
        m_json += shortest;
        if (shortest.find_first_of(".e") == std::string_view::npos)
            m_json += ".0"; // so that it is read as a double again
    }
    void write(const std::string &text)
    {
        if (!support::isValidUtf8(text))
            return fail();
        writeString(text);
    }
    void write(const AnyCodable::Array &array)
    {
        m_json += '[';
        std::size_t index = 0;
        for (const AnyCodable &element : array)
            writeElement(index++, element);
        m_json += ']';
    }
    void write(const AnyCodable::Object &object)
    {
        bool isFirst = true;
        m_json += '{';
        for (const auto &[name, value] : object)
            writeMember(isFirst, name, value);
        m_json += '}';
    }
    void write(const AnyCodable &value)
    {
        std::visit([this](const auto &held) { write(held); }, value.value);
    }
    void write(const ErrorPayload &error)
    {
        bool isFirst = true;
        m_json += '{';
        writeMember(isFirst, "code", error.code);
        writeMember(isFirst, "message", error.message);
        m_json += '}';
    }
    void write(const ProtocolMessage &message)
    {
        bool isFirst = true;
        m_json += '{';
        writeMember(isFirst, "id", message.id);
        writeMember(isFirst, "type", std::string(rawValue(message.type)));
        writeMember(isFirst, "method", message.method);
        writeMember(isFirst, "payload", message.payload);
        writeMember(isFirst, "error", message.error);
        m_json += '}';
    }
    void write(const ClipboardSlotData &slot)
    {
        bool isFirst = true;
        m_json += '{';
        writeMember(isFirst, "slot_index", slot.slot_index);
        writeMember(isFirst, "content", slot.content);
        writeMember(isFirst, "updated_at", slot.updated_at);
        m_json += '}';
    }
    void write(const FileReferenceData &file)
    {
        bool isFirst = true;
        m_json += '{';
        writeMember(isFirst, "id", file.id);
        writeMember(isFirst, "file_path", file.file_path);
        writeMember(isFirst, "file_name", file.file_name);
        writeMember(isFirst, "file_size", file.file_size);
        writeMember(isFirst, "file_type", file.file_type);
        writeMember(isFirst, "is_image", file.is_image);
        writeMember(isFirst, "thumbnail", file.thumbnail);
        writeMember(isFirst, "sort_order", file.sort_order);
        writeMember(isFirst, "added_at", file.added_at);
        m_json += '}';
    }
    template <typename Record>
    void write(const std::vector<Record> &records)
    {
        m_json += '[';
        std::size_t index = 0;
        for (const Record &record : records)
            writeElement(index++, record);
        m_json += ']';
    }
    void write(const StatePayload &state)
    {
        bool isFirst = true;
        m_json += '{';
        writeMember(isFirst, "clipboard_slots", state.clipboard_slots);
        writeMember(isFirst, "file_references", state.file_references);
        m_json += '}';
    }
    void writeStateEvent(const std::string &id, const StatePayload &state)
    {
        bool isFirst = true;
        m_json += '{';
        writeMember(isFirst, "id", id);
        writeMember(isFirst, "type", std::string(rawValue(MessageType::event)));
        writeMember(isFirst, "method", std::string("state.updated"));
        writeMember(isFirst, "payload", state);
        m_json += '}';
    }

private:
    template <typename Value>
    void writeElement(std::size_t index, const Value &value)
    {
        if (index > 0)
            m_json += ',';
        m_path.push_back(std::to_string(index));
        write(value);
        m_path.pop_back();
    }
    template <typename Value>
    void writeMember(bool &isFirst, const std::string &name, const Value &value)
    {
        if (!std::exchange(isFirst, false))
            m_json += ',';
        m_path.push_back(name);
        write(name);
        m_json += ':';
        write(value);
        m_path.pop_back();
    }
    template <typename Value>
    void writeMember(bool &isFirst, const std::string &name, const std::optional<Value> &value)
    {
        if (value)
            writeMember(isFirst, name, *value);
    }

    void writeString(std::string_view text)
    {
        static constexpr std::string_view hexDigits = "0123456789abcdef";
        m_json += '"';
        std::size_t copied = 0;
        for (std::size_t i = 0; i < text.size(); ++i) {
            const auto byte = static_cast<unsigned char>(text[i]);
            if (byte >= 0x20 && byte != '"' && byte != '\\')
                continue;
            m_json.append(text, copied, i - copied);
            copied = i + 1;
            switch (byte) {
            case '"':
            case '\\':
                m_json += '\\';
                m_json += static_cast<char>(byte);
                break;
            case '\n':
                m_json += "\\n";
                break;
            case '\r':
                m_json += "\\r";
                break;
            case '\t':
                m_json += "\\t";
                break;
            default:
                m_json += "\\u00";
                m_json += hexDigits[byte >> 4U];
                m_json += hexDigits[byte & 0xFU];
            }
        }
        m_json.append(text, copied);
        m_json += '"';
    }

    /// The first one counts.
    void fail()
    {
        if (!m_error)
            m_error = EncodingError{.description = "Unable to encode value", .codingPath = m_path};
    }

    std::string m_json;
    std::vector<std::string> m_path;
    std::optional<EncodingError> m_error;
};

template <typename Value>
std::expected<std::string, EncodingError> encodeWhole(const Value &value)
{
    Writer writer;
    writer.write(value);
    return writer.take();
}

} // namespace

std::expected<std::string, EncodingError> encode(const AnyCodable &value)
{
    return encodeWhole(value);
}

std::expected<std::string, EncodingError> encode(const ProtocolMessage &message)
{
    return encodeWhole(message);
}

std::expected<std::string, EncodingError> encode(const StatePayload &state)
{
    return encodeWhole(state);
}

std::expected<std::string, EncodingError> encodeStateEvent(const std::string &id, const StatePayload &state)
{
    Writer writer;
    writer.writeStateEvent(id, state);
    return writer.take();
}

} // namespace stavelin::daemon
