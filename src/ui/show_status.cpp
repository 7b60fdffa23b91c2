#include "ui/show_status.h"

namespace ferrowyn {

namespace {

Tone toneOf(settings_lines::StatusLine::Tint tint) {
    switch (tint) {
        case settings_lines::StatusLine::Tint::good:
            return Tone::success;
        case settings_lines::StatusLine::Tint::attention:
            return Tone::warning;
        case settings_lines::StatusLine::Tint::none:
            break;
    }
    return Tone::secondary;
}

}  // namespace

void showStatus(TextLabel& label, const settings_lines::StatusLine& line) {
    label.setSymbol(line.symbol, toneOf(line.tint));
    label.setPhrase(line.text);
}

}  // namespace ferrowyn
