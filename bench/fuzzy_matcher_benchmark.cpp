#include <benchmark/benchmark.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "bench/sample_windows.h"
#include "core/fuzzy_matcher.h"
#include "core/prepared_text.h"
#include "tests/core/reference_fuzzy_matcher.h"

/// Nanoseconds a window, beside the plain implementation of the same rules in the same run.
namespace ferrowyn {
namespace {

constexpr std::size_t windowCount = 500;
/// Some match nearly all windows, some a few, some none; the last two are not ASCII.
constexpr std::array<std::string_view, 6> queries{"e", "term", "report", "zzq", "ü", "отч"};

void countWindows(benchmark::State& state) {
    const auto windows =
        static_cast<double>(state.iterations() * static_cast<std::int64_t>(windowCount * queries.size()));
    state.counters["window"] = benchmark::Counter(windows, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void score(benchmark::State& state, const std::vector<AppWindow>& windows, bool startsCold) {
    std::vector<std::int32_t> titleIndices;
    for (auto _ : state) {
        if (startsCold) {
            state.PauseTiming();
            PreparedTextCache::ofThisThread() = {};
            state.ResumeTiming();
        }
        for (const auto query : queries) {
            const FuzzyMatcher::Query prepared(query);
            for (const AppWindow& window : windows) {
                benchmark::DoNotOptimize(FuzzyMatcher::score(prepared, window, titleIndices));
            }
        }
    }
    countWindows(state);
}

/// The reference also has to find the title's own positions, which the fast one does on the way.
void scoreWithReference(benchmark::State& state, const std::vector<AppWindow>& windows) {
    for (auto _ : state) {
        for (const auto query : queries) {
            const std::string text(query);
            for (const AppWindow& window : windows) {
                benchmark::DoNotOptimize(ReferenceFuzzyMatcher::match(text, window));
            }
        }
    }
    countWindows(state);
}

BENCHMARK_CAPTURE(scoreWithReference, ascii, asciiWindows(windowCount))->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(score, ascii, asciiWindows(windowCount), false)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(scoreWithReference, mixed, mixedWindows(windowCount))->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(score, mixed, mixedWindows(windowCount), false)->Unit(benchmark::kMicrosecond);
/// As after a change of every title: the six queries share what the first of them prepares.
BENCHMARK_CAPTURE(score, mixed_cold, mixedWindows(windowCount), true)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace ferrowyn

BENCHMARK_MAIN();
