#include "model/classification/Classifier.h"

#include "model/classification/Recognisers.h"
#include "model/classification/UserCharacters.h"
#include "model/classification/WhiteSpace.h"

#include <string>

namespace stavelin::model {

ContentClassification classify(std::string_view utf8)
{
    using namespace classification;

    const std::string_view text = trimmed(utf8);
    if (text.empty()) {
        return {ContentType::text, std::nullopt};
    }
    // A text that fits several kinds is of the first one: a secret is masked whatever else it looks like.
    for (const auto recognise :
         {recogniseSecret, recogniseEmail, recognisePhone, recogniseUrl, recogniseCommand, recogniseCode}) {
        if (auto result = recognise(text)) {
            return *std::move(result);
        }
    }
    return {ContentType::text, std::to_string(countCharacters(text)) + " chars"};
}

} // namespace stavelin::model
