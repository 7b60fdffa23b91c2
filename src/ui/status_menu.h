#pragma once

#include <string>

#include "platform/status_item.h"

namespace ferrowyn {

struct TextTable;
class AppServices;

/// The whole menu of the status item, as things stand at this moment.
[[nodiscard]] StatusMenu makeStatusMenu(AppServices& services, const TextTable& texts,
                                        const std::string& applicationName);

}  // namespace ferrowyn
