#pragma once

#include <functional>
#include <string>

#include "core/texts.h"
#include "platform/status_item.h"

namespace ferrowyn {

class AppServices;

/// Puts a text into the language of the user.
using Translator = std::function<std::string(const Phrase&)>;

/// The whole menu of the status item, as things stand at this moment.
[[nodiscard]] StatusMenu makeStatusMenu(AppServices& services, const TextTable& texts,
                                        const std::string& applicationName, const Translator& translate);

}  // namespace ferrowyn
