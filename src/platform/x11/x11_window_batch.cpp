#include "platform/x11/x11_window_batch.h"

#include <utility>

namespace ferrowyn {

X11WindowBatch::X11WindowBatch(xcb_connection_t* connection, const X11RootFacts& root, const X11Atoms& atoms,
                               const X11Owners& owners, const std::vector<xcb_window_t>& windows, Fallbacks fallbacks,
                               const KnownWindows& known)
    : connection_(connection), atoms_(atoms), owners_(owners) {
    requests_.reserve(windows.size());
    std::vector<xcb_window_t> newWindows;
    for (const auto window : windows) {
        const auto found = known.find(window);
        requests_.emplace_back(connection, window, root, atoms, found == known.end() ? nullptr : &found->second);
        if (found == known.end()) {
            newWindows.push_back(window);
        }
        if (fallbacks == Fallbacks::atOnceWithoutTitles) {
            claims_.push_back(owners.requestClaim(window, atoms));
        }
    }
    ownerRequest_ = owners.request(newWindows);
}

X11WindowBatch::Answer X11WindowBatch::collect() {
    Answer answer;
    if (requests_.empty()) {
        return answer;
    }
    ++answer.roundTrips;
    struct Needs {
        bool lacksTitle = false;
        bool isKnown = false;
        std::optional<Pid> claim;
    };
    std::vector<Needs> needs;
    for (std::size_t index = 0; index < requests_.size(); ++index) {
        auto window = requests_[index].collect(connection_, atoms_);
        const auto claim = claims_.empty() ? std::nullopt : owners_.collectClaim(claims_[index]);
        if (window) {
            answer.windows.push_back(std::move(window->facts));
            needs.push_back({window->lacksTitle && claims_.empty(), requests_[index].isKnown(), claim});
        }
    }
    const auto processes = owners_.collect(ownerRequest_);

    std::vector<Fallback> fallbacks;
    for (std::size_t index = 0; index < answer.windows.size(); ++index) {
        auto& window = answer.windows[index];
        const auto process = processes.find(owners_.clientOf(window.id));
        const auto& [lacksTitle, isKnown, claim] = needs[index];
        if (!isKnown) {
            window.process =
                process != processes.end() ? process->second : claim.value_or(owners_.standInFor(window.id));
        }
        Fallback fallback;
        fallback.index = index;
        if (lacksTitle) {
            fallback.title = requestLegacyTitle(connection_, window.id);
        }
        if (!isKnown && process == processes.end() && claims_.empty()) {
            fallback.claim = owners_.requestClaim(window.id, atoms_);
        }
        if (fallback.title || fallback.claim) {
            fallbacks.push_back(fallback);
        }
    }
    if (!fallbacks.empty()) {
        ++answer.roundTrips;
        collectFallbacks(fallbacks, answer.windows);
    }
    return answer;
}

void X11WindowBatch::collectFallbacks(const std::vector<Fallback>& fallbacks,
                                      std::vector<X11WindowFacts>& windows) const {
    for (const auto& fallback : fallbacks) {
        auto& window = windows[fallback.index];
        if (fallback.title) {
            window.title = collectLegacyTitle(connection_, *fallback.title, atoms_);
        }
        if (fallback.claim) {
            window.process = owners_.collectClaim(*fallback.claim).value_or(window.process);
        }
    }
}

}  // namespace ferrowyn
