#include "e2e/Witness.h"

#include <nlohmann/json.hpp>

#include <sstream>

namespace stavelin::e2e {

namespace {

// Within a text the quotation marks of this would be escaped.
constexpr const char *textReport = R"({"event":"text",)";

std::vector<nlohmann::json> reports(const std::string &output)
{
    std::vector<nlohmann::json> found;
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        // A warning of the toolkit, or a line that is being written.
        nlohmann::json report = nlohmann::json::parse(line, nullptr, false);
        if (report.is_object()) {
            found.push_back(std::move(report));
        }
    }
    return found;
}

} // namespace

std::string Witness::text()
{
    // The last report that is complete; the text may be large, so the ones before it are left alone.
    const std::string output = process().output();
    const auto end = output.rfind('\n');
    const auto begin = output.rfind(textReport, end);
    if (end == std::string::npos || begin == std::string::npos) {
        return {};
    }
    return nlohmann::json::parse(output.substr(begin, output.find('\n', begin) - begin)).at("text");
}

std::vector<std::string> Witness::keys() const
{
    std::vector<std::string> keys;
    for (const nlohmann::json &report : reports(process().output())) {
        if (report.at("event") != "key") {
            continue;
        }
        const std::string key = report.at("key");
        if (key != "Key_Control" && key != "Key_Shift" && key != "Key_Alt" && key != "Key_Meta" &&
            key != "Key_Super_L") {
            keys.push_back(key);
        }
    }
    return keys;
}

} // namespace stavelin::e2e
