#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace ferrowyn::simulation {

/// SplitMix64: a counter whose bits are mixed. The standard library's engines are the same everywhere, but its
/// distributions are not, and a seed must mean the same everywhere.
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    [[nodiscard]] std::uint64_t next() {
        state_ += 0x9e3779b97f4a7c15U;
        std::uint64_t value = state_;
        value = (value ^ (value >> 30U)) * 0xbf58476d1ce4e5b9U;
        value = (value ^ (value >> 27U)) * 0x94d049bb133111ebU;
        return value ^ (value >> 31U);
    }

    /// 0 to `count` - 1. The remainder's tiny preference for small numbers does not matter here.
    [[nodiscard]] std::int64_t below(std::size_t count) { return static_cast<std::int64_t>(next() % count); }
    /// From `least` to `most`, both included.
    [[nodiscard]] std::int64_t between(std::int64_t least, std::int64_t most) {
        return least + below(static_cast<std::size_t>(most - least + 1));
    }
    /// True this many times in a thousand.
    [[nodiscard]] bool chance(std::size_t perThousand) { return next() % 1000 < perThousand; }

    /// One of the values, which must not be empty.
    template <typename Values>
    [[nodiscard]] auto pick(const Values& values) {
        return values[static_cast<std::size_t>(below(values.size()))];
    }

private:
    std::uint64_t state_;
};

}  // namespace ferrowyn::simulation
