#pragma once

#include "model/ContentClassification.h"

#include <optional>
#include <string>

namespace stavelin::model {

/// A classification in one line, for comparing: "command [git]", "email".
inline std::string described(const ContentClassification &classification)
{
    std::string line(rawValue(classification.type));
    if (classification.metadata) {
        line += " [" + *classification.metadata + "]";
    }
    return line;
}

inline std::string described(const std::optional<ContentClassification> &classification)
{
    return classification ? described(*classification) : "nothing";
}

} // namespace stavelin::model
