#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/user_defaults.h"

namespace ferrowyn {

/// The text of an INI file, kept as lines so that a change preserves comments, unknown entries and the order. A key's
/// group is the part before its first dot: "switcher.layout" is "layout" under "[switcher]".
///
/// Values are `true`, `false`, an integer, a real with a point or exponent, `"text"` with \" \\ \n \xHH, or
/// `["a", "b"]`. Any other value without quotes is read as a text, because users edit the file by hand.
class IniDocument {
public:
    /// nullopt when the content is not an INI file (binary, cut off, not UTF-8).
    [[nodiscard]] static std::optional<IniDocument> parse(std::string_view content);

    [[nodiscard]] std::map<std::string, DefaultsValue, std::less<>> values() const;
    void set(std::string_view key, const DefaultsValue& value);
    [[nodiscard]] std::string text() const;

private:
    struct Line {
        std::string text;
        /// The carriage returns before the line feed, which files from other systems have.
        std::string end;
        /// The group that the line belongs to or opens.
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
