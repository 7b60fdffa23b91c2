#pragma once

#include <memory>

#include "platform/macos/mac_application.h"

namespace ferrowyn {

struct TextTable;
class AppDelegate;
class UserInterface;

/// Passes on what the system tells to the delegate of the program, while there is one. The system can tell before there
/// is, and after, and it tells of the end more than once: the launch happens once, the end is always the same. The
/// pointer outlives what is returned.
[[nodiscard]] MacApplicationEvents passingOnTo(AppDelegate* const& delegate);

/// The menu of the application, which shows the settings while there is a delegate. The texts are those of the status
/// item's menu, and the pointer outlives what is returned.
[[nodiscard]] std::unique_ptr<MacApplicationMenu> makeApplicationMenu(UserInterface& userInterface,
                                                                      const TextTable& texts,
                                                                      AppDelegate* const& delegate);

}  // namespace ferrowyn
