#pragma once

#include <string>
#include <string_view>

#include "core/texts.h"
#include "core/window_texts.h"
#include "platform/application.h"

/// What the program says of itself. Pure functions; texts are untranslated.
namespace ferrowyn::about_lines {

/// "Ferrowyn" where the installation gives no name.
[[nodiscard]] std::string productName(const BundleInfo& bundle);
/// "1.0" where the installation gives no version.
[[nodiscard]] std::string version(const BundleInfo& bundle);
/// "Version 1.0".
[[nodiscard]] Phrase versionLine(const BundleInfo& bundle, const WindowTexts& texts);
/// What the installation says, else "© 2026 Ferrowyn" in the year 2026.
[[nodiscard]] Phrase copyrightLine(const BundleInfo& bundle, int year, const WindowTexts& texts);
/// What a screen reader says for the whole.
[[nodiscard]] Phrase accessibilitySummary(const BundleInfo& bundle, const WindowTexts& texts);
/// The address as a person would write it: without the scheme.
[[nodiscard]] std::string siteName(std::string_view address);

}  // namespace ferrowyn::about_lines
