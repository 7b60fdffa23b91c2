#pragma once

namespace ferrowyn {

/// How an application takes part in the desktop; the values are the raw values of the policies.
enum class ActivationPolicy { regular = 0, accessory = 1, prohibited = 2 };

}  // namespace ferrowyn
