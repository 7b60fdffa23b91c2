#pragma once

#include <xcb/xcb.h>

#include <optional>
#include <unordered_map>
#include <vector>

#include "platform/x11/x11_owners.h"
#include "platform/x11/x11_window_facts.h"
#include "platform/x11/x11_window_requests.h"

namespace ferrowyn {

/// The facts of many windows at once: everything is asked for when this is made, and waited for when it is collected.
class X11WindowBatch {
public:
    /// When to ask for what only few windows need: the title and the process number in their old forms.
    enum class Fallbacks {
        /// After the answers that show which windows need them: one more round trip, and far fewer requests.
        whenNeeded,
        /// With everything else, and the process number alone, so that collecting never waits a second time.
        atOnceWithoutTitles,
    };

    using KnownWindows = std::unordered_map<xcb_window_t, X11WindowFacts>;

    /// `known` as in `X11WindowRequests`; it outlives this.
    X11WindowBatch(xcb_connection_t* connection, const X11RootFacts& root, const X11Atoms& atoms,
                   const X11Owners& owners, const std::vector<xcb_window_t>& windows, Fallbacks fallbacks,
                   const KnownWindows& known);

    struct Answer {
        /// In the order of the windows asked for, without those that have vanished.
        std::vector<X11WindowFacts> windows;
        int roundTrips = 0;
    };
    /// Once.
    [[nodiscard]] Answer collect();

private:
    /// A window that needs one of the old forms: where it is in the answer, and what was asked.
    struct Fallback {
        std::size_t index = 0;
        std::optional<xcb_get_property_cookie_t> title;
        std::optional<X11Owners::Claim> claim;
    };
    void collectFallbacks(const std::vector<Fallback>& fallbacks, std::vector<X11WindowFacts>& windows) const;

    xcb_connection_t* connection_;
    const X11Atoms& atoms_;
    const X11Owners& owners_;
    std::vector<X11WindowRequests> requests_;
    std::optional<xcb_res_query_client_ids_cookie_t> ownerRequest_;
    std::vector<X11Owners::Claim> claims_;
};

}  // namespace ferrowyn
