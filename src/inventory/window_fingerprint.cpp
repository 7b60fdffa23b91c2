#include "inventory/window_fingerprint.h"

namespace ferrowyn {

namespace {

/// The finalizer of a 64-bit mixing generator: every input bit reaches every output bit.
std::uint64_t mixed(std::uint64_t value) {
    value = (value ^ (value >> 30U)) * 0xbf58476d1ce4e5b9U;
    value = (value ^ (value >> 27U)) * 0x94d049bb133111ebU;
    return value ^ (value >> 31U);
}

}  // namespace

WindowFingerprint WindowFingerprint::of(const std::optional<std::vector<std::optional<WindowId>>>& windowOrder) {
    if (!windowOrder) {
        return {};
    }
    std::uint64_t hash = 0x9e3779b97f4a7c15U;
    for (const auto& id : *windowOrder) {
        hash = mixed(hash ^ id.value_or(0)) + 0x9e3779b97f4a7c15U;
    }
    return {static_cast<std::int64_t>(windowOrder->size()), static_cast<std::int64_t>(hash)};
}

}  // namespace ferrowyn
