#include <benchmark/benchmark.h>

#include <optional>
#include <string_view>
#include <vector>

#include "bench/sample_windows.h"
#include "core/switcher_view_model.h"
#include "tests/core/session_doubles.h"

/// What the user waits for at a keystroke: matching, ranking, rows and their publication, with 500 windows.
namespace ferrowyn {
namespace {

constexpr std::size_t windowCount = 500;

struct Session {
    explicit Session(std::vector<AppWindow> list) : windows(std::move(list)) {
        favourites.identifiers.set({"org.example.Terminal", "org.example.Signal"});
        model.bind(windows, status);
        model.beginSession(false);
    }

    Published<std::vector<AppWindow>> windows;
    Published<AccessibilityStatus> status{AccessibilityStatus::trusted};
    SettingsDouble settings;
    FavouritesDouble favourites;
    IconProvider icons;
    SwitcherViewModel model{settings.references(), icons, favourites, [] { return std::optional<Pid>(1001); },
                            [](const auto&) {}};
    /// As the panel listens: a subscriber makes no copy of its own.
    std::size_t seenRows = 0;
    Subscription panel = model.rows.subscribeToChanges([this](const auto& rows) { seenRows += rows.size(); });
};

/// Types one character and takes it back: two rebuilds, of which the first is the keystroke that is measured.
void keystroke(benchmark::State& state, const std::vector<AppWindow>& windows, std::string_view before,
               std::string_view typed) {
    Session session(windows);
    session.model.insertText(before);
    for (auto _ : state) {
        session.model.insertText(typed);
        state.PauseTiming();
        state.counters["rows"] = static_cast<double>(session.model.rows.get().size());
        session.model.deleteBackward();
        state.ResumeTiming();
    }
}

void beginSession(benchmark::State& state, const std::vector<AppWindow>& windows) {
    Session session(windows);
    for (auto _ : state) {
        session.model.beginSession(false);
        session.model.endSession();
    }
}

BENCHMARK_CAPTURE(keystroke, ascii_first_letter, asciiWindows(windowCount), "", "e")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(keystroke, ascii_third_letter, asciiWindows(windowCount), "re", "p")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(keystroke, ascii_no_match, asciiWindows(windowCount), "zz", "q")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(keystroke, mixed_first_letter, mixedWindows(windowCount), "", "e")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(keystroke, mixed_third_letter, mixedWindows(windowCount), "re", "p")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(beginSession, ascii, asciiWindows(windowCount))->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace ferrowyn

BENCHMARK_MAIN();
