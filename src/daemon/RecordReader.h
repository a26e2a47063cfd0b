#pragma once

#include "daemon/ProtocolMessage.h"
#include "daemon/RecordMembers.h"
#include "daemon/StatePayload.h"
#include "daemon/WireError.h"

#include <array>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace stavelin::daemon {

// How the records are read from a decoded JSON value, whichever library decoded it. A View is a cheap handle
// of one value with:
//     bool isNull(); std::optional<bool> boolean(); std::optional<std::int64_t> integer();
//     std::optional<std::string> string(); AnyCodable value();
//     bool forEachElement(f(View));                          false when it is no array
//     bool forEachMember(f(std::string_view name, View));    false when it is no object

template <typename View>
class RecordReader
{
public:
    template <typename Record>
    using Result = std::expected<Record, DecodingError>;

    static Result<StatePayload> state(const View &view)
    {
        auto members = RecordMembers<View, 2>::of(view, {"clipboard_slots", "file_references"}, "state");
        if (!members)
            return std::unexpected(std::move(members).error());
        StatePayload state{.clipboard_slots = records<ClipboardSlotData>(*members, 0, slot),
                           .file_references = records<FileReferenceData>(*members, 1, file)};
        return finish(*members, std::move(state));
    }

    /// `readPayload` says whether the payload is read too: a large state is read by other means.
    static Result<ProtocolMessage> message(const View &view, bool readPayload = true)
    {
        auto members =
            RecordMembers<View, 5>::of(view, {"id", "type", "method", "payload", "error"}, "message");
        if (!members)
            return std::unexpected(std::move(members).error());
        ProtocolMessage message;
        message.id = members->required(0, string);
        const std::string type = members->required(1, string);
        if (const auto known = messageTypeFromRawValue(type))
            message.type = *known;
        else
            members->fail({"unknown message type"});
        message.method = members->optional(2, string);
        if (readPayload)
            message.payload =
                members->optional(3, [](const View &payload) { return std::optional(payload.value()); });
        message.error = members->optional(4, error);
        return finish(*members, std::move(message));
    }

    /// The payload of a message that message() could read.
    static std::optional<View> payload(const View &view)
    {
        const auto members = RecordMembers<View, 1>::of(view, {"payload"}, "message");
        return members ? members->view(0) : std::nullopt;
    }

private:
    static std::optional<std::string> string(const View &view) { return view.string(); }
    static std::optional<std::int64_t> integer(const View &view) { return view.integer(); }
    static std::optional<bool> boolean(const View &view) { return view.boolean(); }

    static std::optional<ErrorPayload> error(const View &view)
    {
        auto members = RecordMembers<View, 2>::of(view, {"code", "message"}, "error");
        if (!members)
            return std::nullopt;
        ErrorPayload error{.code = members->required(0, string), .message = members->required(1, string)};
        if (members->takeError())
            return std::nullopt;
        return error;
    }

    static Result<ClipboardSlotData> slot(const View &view)
    {
        auto members = RecordMembers<View, 3>::of(view, {"slot_index", "content", "updated_at"}, "slot");
        if (!members)
            return std::unexpected(std::move(members).error());
        ClipboardSlotData slot{.slot_index = members->required(0, integer),
                               .content = members->required(1, string),
                               .updated_at = members->required(2, string)};
        return finish(*members, std::move(slot));
    }

    static Result<FileReferenceData> file(const View &view)
    {
        auto members = RecordMembers<View, 9>::of(view,
                                                  {"id", "file_path", "file_name", "file_size", "file_type",
                                                   "is_image", "thumbnail", "sort_order", "added_at"},
                                                  "file reference");
        if (!members)
            return std::unexpected(std::move(members).error());
        FileReferenceData file{.id = members->required(0, string),
                               .file_path = members->required(1, string),
                               .file_name = members->required(2, string),
                               .file_size = members->optional(3, integer),
                               .file_type = members->optional(4, string),
                               .is_image = members->required(5, boolean),
                               .thumbnail = members->optional(6, string),
                               .sort_order = members->required(7, integer),
                               .added_at = members->required(8, string)};
        return finish(*members, std::move(file));
    }

    template <typename Record, std::size_t count, typename ReadOne>
    static std::vector<Record> records(RecordMembers<View, count> &members, std::size_t member,
                                       ReadOne readOne)
    {
        return members.required(member, [&members, readOne](const View &array) {
            std::optional<std::vector<Record>> read(std::in_place);
            const bool isArray = array.forEachElement([&](const View &element) {
                Result<Record> record = readOne(element);
                if (record)
                    read->push_back(*std::move(record));
                else
                    members.fail(std::move(record).error());
            });
            if (!isArray)
                read.reset();
            return read;
        });
    }

    template <typename Record, std::size_t count>
    static Result<Record> finish(RecordMembers<View, count> &members, Record record)
    {
        if (auto failure = members.takeError())
            return std::unexpected(*std::move(failure));
        return record;
    }
};

} // namespace stavelin::daemon
