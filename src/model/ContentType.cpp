#include "model/ContentType.h"

namespace stavelin::model {

std::string_view rawValue(ContentType type)
{
    switch (type) {
    case ContentType::code:
        return "code";
    case ContentType::url:
        return "url";
    case ContentType::command:
        return "command";
    case ContentType::email:
        return "email";
    case ContentType::phone:
        return "phone";
    case ContentType::apiKey:
        return "apiKey";
    case ContentType::text:
        return "text";
    }
    return {};
}

std::optional<ContentType> contentTypeFromRawValue(std::string_view raw)
{
    for (const ContentType type : allContentTypes) {
        if (rawValue(type) == raw)
            return type;
    }
    return std::nullopt;
}

} // namespace stavelin::model
