#include "ui/common/colors.h"

#include <cmath>

namespace ferrowyn {

namespace contrast {

namespace {

double linear(double component) {
    return component <= 0.04045 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

}  // namespace

QColor withAlpha(QColor color, double alpha) {
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

QColor blended(const QColor& top, const QColor& ground) {
    const double alpha = top.alphaF();
    const auto mix = [alpha](int over, int under) {
        return static_cast<int>(std::lround(over * alpha + under * (1 - alpha)));
    };
    return {mix(top.red(), ground.red()), mix(top.green(), ground.green()), mix(top.blue(), ground.blue())};
}

double ratio(const QColor& a, const QColor& b) {
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor darkenedFor(const QColor& ground, const QColor& text, double minimumRatio) {
    constexpr int steps = 100;
    QColor result = ground;
    for (int step = 1; step <= steps && ratio(text, result) < minimumRatio; ++step) {
        const double kept = 1 - static_cast<double>(step) / steps;
        const auto scaled = [kept](int component) { return static_cast<int>(component * kept); };
        result = QColor(scaled(ground.red()), scaled(ground.green()), scaled(ground.blue()));
    }
    return result;
}

}  // namespace contrast

}  // namespace ferrowyn
