#include "platform/x11/x11_xsettings.h"

#include <vector>

namespace ferrowyn {
namespace {

/// Builds the value of the manager's property.
class Settings {
public:
    explicit Settings(bool isLittleEndian) : isLittleEndian_(isLittleEndian) {}

    Settings& addInteger(const std::string& name, std::uint32_t value) {
        begin(0, name);
        put(value, 4);
        return *this;
    }
    Settings& addText(const std::string& name, const std::string& text) {
        begin(1, name);
        put(static_cast<std::uint32_t>(text.size()), 4);
        putPadded(text);
        return *this;
    }
    Settings& addColor(const std::string& name) {
        begin(2, name);
        put(0x11112222, 4);
        put(0x33334444, 4);
        return *this;
    }
    Settings& addUnknown(const std::string& name) {
        begin(9, name);
        put(0, 4);
        return *this;
    }
    [[nodiscard]] std::vector<std::uint8_t> bytes() const {
        Settings header(isLittleEndian_);
        header.body_ = {static_cast<std::uint8_t>(isLittleEndian_ ? 0 : 1), 0, 0, 0};
        header.put(77, 4);
        header.put(count_, 4);
        auto all = header.body_;
        all.insert(all.end(), body_.begin(), body_.end());
        return all;
    }

private:
    void begin(std::uint32_t type, const std::string& name) {
        ++count_;
        put(type, 1);
        put(0, 1);
        put(static_cast<std::uint32_t>(name.size()), 2);
        putPadded(name);
        put(5, 4);
    }
    void put(std::uint32_t value, int length) {
        for (int index = 0; index < length; ++index) {
            const int byte = isLittleEndian_ ? index : length - 1 - index;
            body_.push_back(static_cast<std::uint8_t>(value >> (8 * byte)));
        }
    }
    void putPadded(const std::string& text) {
        body_.insert(body_.end(), text.begin(), text.end());
        body_.resize((body_.size() + 3) / 4 * 4);
    }

    bool isLittleEndian_;
    std::uint32_t count_ = 0;
    std::vector<std::uint8_t> body_;
};

Settings everyKind(bool isLittleEndian) {
    return Settings(isLittleEndian)
        .addInteger("Net/CursorBlink", 1)
        .addColor("Some/Color")
        .addText("Gtk/FontName", "Sans 10")
        .addText("Net/ThemeName", "Adwaita-dark");
}

TEST(XsettingsTest, FindsATextBehindSettingsOfEveryKindInEitherByteOrder) {
    for (const bool isLittleEndian : {true, false}) {
        const auto bytes = everyKind(isLittleEndian).bytes();
        EXPECT_EQ(xsettingsText(bytes, "Net/ThemeName"), "Adwaita-dark");
        EXPECT_EQ(xsettingsText(bytes, "Gtk/FontName"), "Sans 10");
        EXPECT_EQ(xsettingsText(bytes, "Net/CursorBlink"), std::nullopt) << "no text";
        EXPECT_EQ(xsettingsText(bytes, "Net/IconThemeName"), std::nullopt);
    }
}

TEST(XsettingsTest, ADamagedValueSaysNothingAndIsNotReadBeyondItsEnd) {
    const auto whole = everyKind(true).bytes();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        // Memory of just this size, so that a sanitizer sees a read beyond it.
        const std::vector<std::uint8_t> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_EQ(xsettingsText(cut, "Net/ThemeName"), std::nullopt) << length;
    }
    auto endless = whole;
    endless[8] = endless[9] = endless[10] = endless[11] = 0xFF;
    EXPECT_EQ(xsettingsText(endless, "Net/ThemeName"), "Adwaita-dark");
    EXPECT_EQ(xsettingsText(endless, "Net/IconThemeName"), std::nullopt);
}

TEST(XsettingsTest, WhatFollowsASettingOfAnUnknownKindCannotBeRead) {
    const auto bytes = Settings(true).addText("A", "1").addUnknown("B").addText("Net/ThemeName", "Adwaita").bytes();
    EXPECT_EQ(xsettingsText(bytes, "A"), "1");
    EXPECT_EQ(xsettingsText(bytes, "Net/ThemeName"), std::nullopt);
}

}  // namespace
}  // namespace ferrowyn
