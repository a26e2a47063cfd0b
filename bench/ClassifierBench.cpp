// Measures the classifier beside two plain ways through the same texts: one that only looks for a byte that
// is not there (memchr, the least that reading a text costs) and one that searches for each marker by itself.
// Ends with 1 when a budget is missed; ratios within the run hold on any machine, the times are those asked
// of a usual one.
#include "model/classification/Classifier.h"
#include "model/classification/LanguageMarkers.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <span>
#include <string>

namespace {

using namespace stavelin::model;

constexpr std::size_t megabyte = 1'000'000;

std::string repeated(std::string_view piece, std::size_t size = megabyte)
{
    std::string text;
    while (text.size() + piece.size() <= size) {
        text += piece;
    }
    return text;
}

const std::map<std::string, std::string> &shortTexts()
{
    static const std::map<std::string, std::string> texts{
        {"word", "hello"},
        {"sentence", "The quick brown fox jumps over a lazy dog, and then it rests."},
        {"token", "9f86d081884c7d659a2feaa0c55ad015a3bf4f1b2b0b822cd15d6c15b0f00a08"},
        {"email", "someone.somewhere@mail.example.org"},
        {"phone", "+44 20 7946 0958"},
        {"url", "https://www.a-rather-long-host.example.org/some/path?query=1"},
        {"command", "sudo apt-get install something"},
        {"code", "for (int i = 0; i < count; ++i) {\n    total += values[i];\n}"},
        {"cyrillic", "Съешь же ещё этих мягких французских булок"},
        {"emoji", "👩‍👩‍👧‍👦 see you at 🇩🇪 8 o'clock 👍🏽"},
    };
    return texts;
}

const std::map<std::string, std::string> &longTexts()
{
    // None of them has a sign of a language, so that none lets the classifier stop early.
    static const std::map<std::string, std::string> texts{
        {"prose", repeated("A walk by the sea is what many of us want.\n")},
        {"prose_on_one_line", repeated("A walk by the sea is what many of us want. ") + "x"},
        {"one_word", repeated("abcdefghijklm")},
        {"one_word_of_punctuation", repeated("a.+*/,")},
        {"cyrillic", repeated("Съешь же ещё этих мягких булок\n")},
        {"chinese", repeated("天地玄黃宇宙洪荒")},
        {"hindi", repeated("सभी मनुष्यों को गौरव\n")},
        {"korean", repeated("모든 인간은 태어날 때부터\n")},
        {"emoji", repeated("👩‍👩‍👧‍👦👍🏽🇩🇪\n")},
        {"almost_code", repeated("selec con le va func clas impor {: ; }\n")},
        {"broken_bytes", repeated("\xFF\xC3 \xE2\x82 x\n")},
    };
    return texts;
}

const std::string &textOf(const std::string &name, bool isLong)
{
    return (isLong ? longTexts() : shortTexts()).at(name);
}

void runClassifier(benchmark::State &state, const std::string &text)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(classify(text));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

void runMemchr(benchmark::State &state, const std::string &text)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::memchr(text.data(), '\x01', text.size()));
    }
}

void runSearchPerMarker(benchmark::State &state, const std::string &text)
{
    using namespace classification;
    const std::span<const std::string_view> tables[]{
        typeScriptMarkers, javaScriptMarkers, pythonMarkers,    swiftMarkers, rustMarkers, goMarkers,
        kotlinMarkers,     javaMarkers,       cPlusPlusMarkers, cMarkers,     rubyMarkers, htmlMarkers,
        cssMarkers,        yamlMarkers,       sqlMarkers,       shellMarkers};
    for (auto _ : state) {
        std::size_t found = 0;
        for (const auto table : tables) {
            for (const std::string_view marker : table) {
                found += text.find(marker) != std::string::npos;
            }
        }
        benchmark::DoNotOptimize(found);
    }
}

/// Prints as usual and keeps the processor times, in nanoseconds by name: the best of the repetitions, since
/// whatever else runs on the machine only ever adds to them.
class KeepingReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.run_type == Run::RT_Iteration) {
                const double time = run.cpu_accumulated_time / static_cast<double>(run.iterations) * 1e9;
                const auto [kept, isFirst] = m_times.try_emplace(run.run_name.function_name, time);
                kept->second = std::min(kept->second, time);
            }
        }
    }

    [[nodiscard]] double time(const std::string &name) const { return m_times.at(name); }

private:
    std::map<std::string, double> m_times;
};

class Budgets
{
public:
    void atMost(const std::string &what, double measured, double allowed, const char *unit)
    {
        const bool kept = measured <= allowed;
        std::printf("%-6s %-62s %10.2f %s, allowed %.2f\n", kept ? "kept" : "MISSED", what.c_str(), measured,
                    unit, allowed);
        m_allKept = m_allKept && kept;
    }
    [[nodiscard]] bool allKept() const { return m_allKept; }

private:
    bool m_allKept = true;
};

} // namespace

int main(int argc, char **argv)
{
    constexpr int repetitions = 3;
    constexpr double seconds = 0.05;
    const auto add = [](const std::string &name, auto run, const std::string &text) {
        benchmark::RegisterBenchmark(name.c_str(), run, text)->Repetitions(repetitions)->MinTime(seconds);
    };
    for (const bool isLong : {false, true}) {
        const std::string size = isLong ? "1MB/" : "short/";
        for (const auto &[name, text] : isLong ? longTexts() : shortTexts()) {
            add("classify/" + size + name, runClassifier, textOf(name, isLong));
        }
    }
    const std::string &prose = textOf("prose", true);
    add("memchr/1MB/prose", runMemchr, prose);
    add("search_per_marker/1MB/prose", runSearchPerMarker, prose);
    add("classify/2MB/prose", runClassifier, prose + prose);

    benchmark::Initialize(&argc, argv);
    KeepingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    std::printf("\n");
    Budgets budgets;
    for (const auto &[name, text] : shortTexts()) {
        const std::string run = "classify/short/" + name;
        budgets.atMost(run, reporter.time(run) / 1e3, 2.0, "us");
    }
    for (const auto &[name, text] : longTexts()) {
        const std::string run = "classify/1MB/" + name;
        // Text from the daemon is well-formed; of what is not, it matters only that it does no harm.
        budgets.atMost(run, reporter.time(run) / 1e6, name == "broken_bytes" ? 10.0 : 5.0, "ms");
    }
    const double proseTime = reporter.time("classify/1MB/prose");
    budgets.atMost("classify/1MB/prose against memchr", proseTime / reporter.time("memchr/1MB/prose"), 600,
                   "times");
    budgets.atMost("classify/1MB/prose against search_per_marker",
                   proseTime / reporter.time("search_per_marker/1MB/prose"), 0.25, "times");
    budgets.atMost("twice the text against once", reporter.time("classify/2MB/prose") / proseTime, 2.6,
                   "times");
    return budgets.allKept() ? 0 : 1;
}
