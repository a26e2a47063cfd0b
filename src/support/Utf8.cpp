#include "support/Utf8.h"

#include <simdjson.h>

namespace stavelin::support {

bool isValidUtf8(std::string_view bytes)
{
    return simdjson::validate_utf8(bytes.data(), bytes.size());
}

} // namespace stavelin::support
