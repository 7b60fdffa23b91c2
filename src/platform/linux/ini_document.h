#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/user_defaults.h"

namespace ferrowyn {

/// The text of an INI file as lines, so that everything this program does not write itself (comments, unknown entries,
/// the order) survives a change. The group of a key is what stands before its first dot: "switcher.layout" is "layout"
/// under "[switcher]".
///
/// Values are `true`, `false`, an integer, a real with a point or exponent, `"text"` with \" \\ \n \xHH, or
/// `["a", "b"]`. Any other text without quotes is read as a text, for the sake of people who write by hand.
class IniDocument {
public:
    /// Nothing when this is not such a file (binary, cut off, not UTF-8).
    [[nodiscard]] static std::optional<IniDocument> parse(std::string_view content);

    [[nodiscard]] std::map<std::string, DefaultsValue, std::less<>> values() const;
    void set(std::string_view key, const DefaultsValue& value);
    [[nodiscard]] std::string text() const;

private:
    struct Line {
        std::string text;
        /// The carriage returns before the line feed: other systems write one.
        std::string end;
        /// The group that the line stands in, or opens.
        std::string group;
        bool opensGroup = false;
        /// The key within the group, when the line holds an entry.
        std::optional<std::string> name;
        DefaultsValue value;

        [[nodiscard]] std::string fullKey() const { return group.empty() ? *name : group + "." + *name; }
    };

    [[nodiscard]] static std::optional<Line> parseLine(std::string_view text, const std::string& currentGroup);
    void add(std::string_view group, std::string_view name, const DefaultsValue& value);

    std::vector<Line> lines_;
};

}  // namespace ferrowyn
