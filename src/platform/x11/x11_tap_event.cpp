#include "platform/x11/x11_tap_event.h"

#include "platform/x11/x11_key_text.h"

namespace ferrowyn {

std::u16string X11TapEvent::text(std::optional<std::uint64_t> withFlags) const {
    if (!typed_) {
        if (keyText_ == nullptr || type_ != Type::keyDown) {
            return {};
        }
        typed_ = keyText_->type(*press_, withFlags);
    }
    return *typed_;
}

}  // namespace ferrowyn
