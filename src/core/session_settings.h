#pragma once

#include "core/published.h"
#include "core/switcher_layout.h"

namespace ferrowyn {

/// The settings that decide which rows a session shows and in which order, as the preferences publish them. References
/// to their owner's fields, which outlive every session.
struct SessionSettings {
    const Published<bool>& includeMinimized;
    const Published<bool>& includeOtherSpaces;
    const Published<bool>& showActiveAppWindowsFirst;
    const Published<bool>& favouritesFirst;
    const Published<SwitcherLayout>& layout;
};

}  // namespace ferrowyn
