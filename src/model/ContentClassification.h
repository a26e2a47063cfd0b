#pragma once

#include "model/ContentType.h"

#include <optional>
#include <string>

namespace stavelin::model {

struct ContentClassification
{
    ContentType type = ContentType::text;
    std::optional<std::string> metadata; ///< a short label that the badge shows beside the kind

    friend bool operator==(const ContentClassification &, const ContentClassification &) = default;
};

} // namespace stavelin::model
