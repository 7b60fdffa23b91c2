#include "input/session_preparation.h"

#include <utility>

#include "inventory/window_index.h"
#include "platform/platform.h"
#include "platform/screens.h"
#include "platform/workspace.h"
#include "services/accessibility_authorizer.h"
#include "services/favourites_store.h"
#include "services/preferences.h"

namespace ferrowyn {

SessionPreparation::SessionPreparation(const Platform& platform, const Sources& sources, std::function<void()> prepare)
    : mainLoop_(platform.mainLoop), preparation_(postTo(platform.mainLoop), [this, prepare = std::move(prepare)] {
          delayed_.reset();
          prepare();
      }) {
    observe(platform, sources);
    request();
}

void SessionPreparation::observe(const Platform& platform, const Sources& sources) {
    const auto follow = [this](const auto& published) {
        subscriptions_.push_back(published.subscribeToChanges([this](const auto&) { request(); }));
    };
    follow(sources.windowIndex.windows());
    follow(sources.authorizer.status());
    follow(sources.favourites.bundleIdentifiers());
    follow(sources.preferences.includeMinimized.published());
    follow(sources.preferences.includeOtherSpaces.published());
    follow(sources.preferences.showShortcutHints.published());
    follow(sources.preferences.maximumVisibleRows.published());
    follow(sources.preferences.layout.published());
    // The panel's footer names the trigger.
    follow(sources.preferences.modifier.published());
    follow(sources.preferences.showActiveAppWindowsFirst.published());
    follow(sources.preferences.favouritesFirst.published());
    subscriptions_.push_back(platform.workspace.observe([this](const WorkspaceEvent& event) {
        // Which application is in front decides the order, the screens decide the place.
        if (event.kind == WorkspaceEvent::Kind::didActivate ||
            event.kind == WorkspaceEvent::Kind::screenParametersDidChange) {
            request();
        }
    }));
    // The desktop may say so before the screens' new extents are known, and says nothing of a dock that came or went.
    subscriptions_.push_back(platform.screens.observe([this] { request(); }));
}

void SessionPreparation::requestAfterSession() {
    // A request from the session's time may run before the activation does.
    preparation_.cancel();
    delayed_ = mainLoop_.after(delayAfterSession, [this] { request(); });
}

}  // namespace ferrowyn
