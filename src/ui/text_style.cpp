#include "ui/text_style.h"

#include <QGuiApplication>
#include <QScreen>

namespace ferrowyn {

namespace {

struct Description {
    double size;
    QFont::Weight weight;
};

Description describe(TextStyle style) {
    switch (style) {
        case TextStyle::searchText:
            return {15, QFont::Normal};
        case TextStyle::rowTitle:
            return {13.5, QFont::DemiBold};
        case TextStyle::rowAppName:
        case TextStyle::hint:
        case TextStyle::emptyDetail:
        case TextStyle::menuHeaderSubtitle:
            return {11, QFont::Normal};
        case TextStyle::menuItem:
        case TextStyle::menuHeaderTitle:
            return {13, QFont::Normal};
        case TextStyle::menuSectionTitle:
            return {10, QFont::Normal};
        case TextStyle::cardOrdinal:
        case TextStyle::badge:
            return {10, QFont::Medium};
        case TextStyle::groupName:
            return {11, QFont::DemiBold};
        case TextStyle::groupCount:
            return {9, QFont::Medium};
        case TextStyle::rowCount:
            return {11, QFont::Medium};
        case TextStyle::keyCap:
            return {10.5, QFont::Medium};
        case TextStyle::emptyTitle:
            return {13, QFont::Medium};
        case TextStyle::button:
            return {12, QFont::Medium};
        case TextStyle::paneTitle:
            return {17, QFont::Bold};
        case TextStyle::sectionTitle:
            return {12, QFont::DemiBold};
        case TextStyle::body:
            return {13, QFont::Normal};
        case TextStyle::bodyEmphasised:
            return {13, QFont::DemiBold};
        case TextStyle::note:
            return {11, QFont::Normal};
        case TextStyle::productName:
            return {20, QFont::Bold};
    }
    return {12, QFont::Normal};
}

}  // namespace

QFont fontFor(TextStyle style) {
    constexpr double pointsPerInch = 72;
    const auto [size, weight] = describe(style);
    QFont font = QGuiApplication::font();
    // Pixel sizes are whole numbers in QFont's interface; point sizes are not, and there is one resolution for all
    // fonts of the program.
    const QScreen* const screen = QGuiApplication::primaryScreen();
    const double resolution = screen != nullptr ? screen->logicalDotsPerInchY() : pointsPerInch;
    font.setPointSizeF(size * pointsPerInch / resolution);
    font.setWeight(weight);
    font.setItalic(false);
    // Widths stay proportional at these small, fractional sizes, while stems still stand on whole pixels.
    font.setHintingPreference(QFont::PreferVerticalHinting);
    return font;
}

QFont::Weight emphasisedWeight() {
    return QFont::ExtraBold;
}

}  // namespace ferrowyn
