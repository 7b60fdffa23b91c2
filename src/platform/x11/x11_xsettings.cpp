#include "platform/x11/x11_xsettings.h"

#include <xcb/xfixes.h>

#include <cstdint>
#include <utility>

#include "platform/x11/x11_connection.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

namespace {

constexpr std::uint32_t longestSettings = 1U << 16U;
constexpr std::string_view themeName = "Net/ThemeName";

/// Reads the value of the property from beginning to end. After a read past the end, `isGood` is false and each further
/// read returns zero or an empty text.
class SettingsReader {
public:
    explicit SettingsReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {
        constexpr std::uint8_t leastSignificantFirst = 0;
        isLittleEndian_ = !bytes.empty() && bytes.front() == leastSignificantFirst;
        skip(headerLength);
    }

    [[nodiscard]] bool isGood() const { return isGood_; }
    std::uint32_t number(std::size_t length) {
        const auto bytes = take(length);
        std::uint32_t value = 0;
        for (std::size_t index = 0; index < bytes.size(); ++index) {
            const std::uint32_t byte = bytes[isLittleEndian_ ? bytes.size() - 1 - index : index];
            value = value << 8U | byte;
        }
        return value;
    }
    std::string_view text(std::size_t length) {
        const auto bytes = take(length);
        skip((unit - length % unit) % unit);
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }
    void skip(std::size_t length) { static_cast<void>(take(length)); }

private:
    static constexpr std::size_t headerLength = 8;
    static constexpr std::size_t unit = 4;

    std::span<const std::uint8_t> take(std::size_t length) {
        if (!isGood_ || length > bytes_.size()) {
            isGood_ = false;
            return {};
        }
        const auto taken = bytes_.first(length);
        bytes_ = bytes_.subspan(length);
        return taken;
    }

    std::span<const std::uint8_t> bytes_;
    bool isLittleEndian_ = true;
    bool isGood_ = true;
};

}  // namespace

std::optional<std::string> xsettingsText(std::span<const std::uint8_t> property, std::string_view name) {
    enum Type : std::uint32_t { integer, string, color };
    constexpr std::size_t colorLength = 8;
    SettingsReader reader(property);
    for (auto left = reader.number(4); left > 0 && reader.isGood(); --left) {
        const auto type = reader.number(1);
        reader.skip(1);
        const auto itsName = reader.text(reader.number(2));
        reader.skip(4);
        switch (type) {
            case integer:
                reader.skip(4);
                break;
            case string: {
                const auto text = reader.text(reader.number(4));
                if (reader.isGood() && itsName == name) {
                    return std::string(text);
                }
                break;
            }
            case color:
                reader.skip(colorLength);
                break;
            default:
                // The length of an unknown type is unknown, so the rest cannot be read.
                return std::nullopt;
        }
    }
    return std::nullopt;
}

X11Xsettings::X11Xsettings(X11EventConnection& events, ThemeHandler onTheme)
    : events_(events), onTheme_(std::move(onTheme)) {
    const std::string selection = "_XSETTINGS_S" + std::to_string(events.connection().screenNumber());
    const auto atoms = events.connection().internAtoms({selection, "_XSETTINGS_SETTINGS"});
    selection_ = atoms[0];
    settings_ = atoms[1];
    fixesFirstEvent_ = events.listenToSelection(selection_).value_or(0);
    eventSubscription_ = events.observe([this](const xcb_generic_event_t& event) { handle(event); });
    findManager();
}

void X11Xsettings::handle(const xcb_generic_event_t& event) {
    const auto type = event.response_type & 0x7FU;
    if (fixesFirstEvent_ != 0 && type == fixesFirstEvent_ + XCB_XFIXES_SELECTION_NOTIFY) {
        if (reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event).selection == selection_) {
            findManager();
        }
    } else if (type == XCB_PROPERTY_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (manager_ != XCB_WINDOW_NONE && change.window == manager_ && change.atom == settings_) {
            readSettings();
        }
    }
}

void X11Xsettings::findManager() {
    const auto cookie = xcb_get_selection_owner(events_.get(), selection_);
    events_.whenAnswered(life_.guard([this, cookie] {
        const XcbReply<xcb_get_selection_owner_reply_t> owner(
            xcb_get_selection_owner_reply(events_.get(), cookie, nullptr));
        manager_ = owner ? owner->owner : xcb_window_t{XCB_WINDOW_NONE};
        if (manager_ == XCB_WINDOW_NONE) {
            onTheme_(std::nullopt);
            return;
        }
        // Selected before the settings are read, so that no change is missed. When the window is gone by now, the event
        // for the selection follows.
        events_.watch(manager_);
        readSettings();
    }));
}

void X11Xsettings::readSettings() {
    const auto cookie = xcb_get_property(events_.get(), 0, manager_, settings_, settings_, 0, longestSettings);
    events_.whenAnswered(life_.guard([this, cookie] {
        const auto property = X11Property::collect(events_.get(), cookie);
        const auto bytes = property.bytes(settings_);
        onTheme_(bytes ? xsettingsText({reinterpret_cast<const std::uint8_t*>(bytes->data()), bytes->size()}, themeName)
                       : std::nullopt);
    }));
}

}  // namespace ferrowyn
