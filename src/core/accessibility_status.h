#pragma once

namespace ferrowyn {

/// Whether this process may read and drive other applications' windows.
enum class AccessibilityStatus { trusted, notTrusted };

}  // namespace ferrowyn
