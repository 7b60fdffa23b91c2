#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "core/prepared_text.h"

namespace ferrowyn {

/// Keeps prepared texts from one keystroke to the next. Bounded: texts not asked for lately are forgotten. One thread;
/// `ofThisThread` gives each thread its own.
class PreparedTextCache {
public:
    /// Enough for the titles, applications and both together of some hundred windows. Up to two generations are kept.
    static constexpr std::size_t generationSize = 2048;
    /// Longer texts are prepared anew each time: they are rare, and a few of them would crowd out the others.
    static constexpr std::size_t longestKeptText = 1024;

    [[nodiscard]] static PreparedTextCache& ofThisThread();

    /// Valid until the next call.
    [[nodiscard]] const PreparedText& prepared(std::string_view text);

    /// Prepares a text that will be asked for, unless it is there already or too long to be kept. Whether there was
    /// anything to do.
    bool prepareAhead(std::string_view text);

    [[nodiscard]] std::size_t size() const { return recent_.size() + older_.size(); }

private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
    };
    using Generation = std::unordered_map<std::string, PreparedText, Hash, std::equal_to<>>;

    Generation recent_;
    Generation older_;
    PreparedText longText_;
};

}  // namespace ferrowyn
