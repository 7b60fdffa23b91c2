#pragma once

#include <QString>
#include <string_view>

#include "core/texts.h"

namespace ferrowyn {

/// The text in the user's language, or as it was written where no translation is installed. Main thread.
[[nodiscard]] QString translated(std::string_view text);
/// The same with what is put into it, which stays as it is.
[[nodiscard]] QString translated(const Phrase& phrase);

}  // namespace ferrowyn
