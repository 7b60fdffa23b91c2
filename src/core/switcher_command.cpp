#include "core/switcher_command.h"

namespace ferrowyn {

std::optional<int> digitOrdinal(std::uint16_t keyCode) {
    // The codes of an ANSI keyboard are not in the order of the digits.
    switch (keyCode) {
        case 18:
            return 1;
        case 19:
            return 2;
        case 20:
            return 3;
        case 21:
            return 4;
        case 23:
            return 5;
        case 22:
            return 6;
        case 26:
            return 7;
        case 28:
            return 8;
        case 25:
            return 9;
        default:
            return std::nullopt;
    }
}

}  // namespace ferrowyn
