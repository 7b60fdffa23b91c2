#pragma once

#include <string_view>

#include "core/phrase.h"

/// What several tables of a Linux desktop say in the same words.
namespace ferrowyn::linux_words {

inline constexpr std::string_view windowManagerRequired = translatable("Ferrowyn", "A window manager is required");
/// The display server lacks what the program needs.
inline constexpr std::string_view serverUnusable = translatable("Ferrowyn", "This X server cannot be used");
inline constexpr std::string_view windowManagerRuns = translatable("Ferrowyn", "A window manager is running");
inline constexpr std::string_view openSetup = translatable("Ferrowyn", "Open Setup");

}  // namespace ferrowyn::linux_words
