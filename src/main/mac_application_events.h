#pragma once

#include <memory>

#include "platform/macos/mac_application.h"

namespace ferrowyn {

struct TextTable;
class AppDelegate;
class UserInterface;

/// Passes the system's events to the delegate, while there is one. Events may come before it exists and after it is
/// gone, and the end may be reported several times. The launch is passed on only once. The pointer outlives the result.
[[nodiscard]] MacApplicationEvents passingOnTo(AppDelegate* const& delegate);

/// The menu of the application, which shows the settings while there is a delegate. It uses the texts of the status
/// item's menu. The pointer outlives the result.
[[nodiscard]] std::unique_ptr<MacApplicationMenu> makeApplicationMenu(UserInterface& userInterface,
                                                                      const TextTable& texts,
                                                                      AppDelegate* const& delegate);

}  // namespace ferrowyn
