#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <variant>
#include <vector>

namespace stavelin::daemon {

/// Any JSON value. A number is an integer when it is written without fraction or exponent and fits 64 bits,
/// else a double (so 3 is an integer; 3.0, 3.5 and 9223372036854775808 are doubles).
struct AnyCodable
{
    using Null = std::monostate;
    using Array = std::vector<AnyCodable>;
    using Object = std::map<std::string, AnyCodable, std::less<>>;
    using Value = std::variant<Null, bool, std::int64_t, double, std::string, Array, Object>;

    Value value;

    friend bool operator==(const AnyCodable &, const AnyCodable &) = default;
};

} // namespace stavelin::daemon
