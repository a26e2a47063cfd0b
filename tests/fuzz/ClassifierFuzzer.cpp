// Compares the classifier with the slow one on whatever the fuzzer comes up with.
#include "model/classification/Classifier.h"
#include "model/classification/Described.h"
#include "model/classification/ReferenceClassifier.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using namespace stavelin;
    const std::string text(reinterpret_cast<const char *>(data), size);
    const std::string said = described(model::classify(text));
    const std::string expected = described(testkit::referenceClassify(text));
    if (said != expected) {
        std::fprintf(stderr, "said %s, expected %s\n", said.c_str(), expected.c_str());
        std::abort();
    }
    return 0;
}
