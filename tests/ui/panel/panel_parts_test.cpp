#include <cmath>

#include "tests/ui/common/paint_record.h"
#include "ui/panel/footer_view.h"
#include "ui/panel/panel_messages.h"
#include "ui/panel/row_parts.h"
#include "ui/panel/row_views.h"
#include "ui/panel/search_line_view.h"
#include "ui/panel/visual_effect_background.h"

namespace ferrowyn {
namespace {

using test::colorText;
using test::PaintedImage;
using test::PaintedShape;
using test::PaintedText;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using WindowPresentation::Badge;
using WindowPresentation::Tint;

/// Large enough that rounding to device pixels hides nothing.
constexpr double fine = 4;

class PanelPartsTest : public test::PanelPartsFixture {};

TEST_F(PanelPartsTest, ABadgeIsASymbolOfEightPointsAndATextOfTenOnATintOfItsColour) {
    const BadgeView badge{{"Full Screen", "arrow.up.left.and.arrow.down.right", Tint::blue}};
    const Rect rect{40, 100, badge.width(context(fine)), 52};
    const auto painted = paint(badge, rect, fine);
    const PaintedText& text = painted->text("Full Screen");
    expectFont(text, 10, 500);
    EXPECT_EQ(colorText(text.color), colorText("#6FB6FF"));
    const PaintedImage& symbol = painted->symbol("arrow.up.left.and.arrow.down.right", "2.2");
    expectSymbolSize(symbol, 8, fine);
    expectInk(symbol, colorText("#6FB6FF"));

    const auto chips = painted->filledWith(QColor(0x6F, 0xB6, 0xFF, std::lround(0.18 * 255)));
    ASSERT_THAT(chips, SizeIs(1));
    const QRectF chip = chips[0].rect;
    EXPECT_GT(chips[0].cornerRadius, 3);
    EXPECT_NEAR(chip.center().y(), rect.midY(), 0.3) << "centred in the row's height";
    EXPECT_EQ(chip.left(), rect.x);
    EXPECT_EQ(chip.width(), rect.width) << "as wide as it says";
    expectCentredOnLine(text, {chip.x(), chip.y(), chip.width(), chip.height()});
    EXPECT_GT(symbol.rect.left() - chip.left(), 4);
    EXPECT_GT(text.left - symbol.rect.right(), 2);
    EXPECT_GT(chip.right() - text.right, 4);
    EXPECT_LT(chip.right() - text.right, 10);
}

TEST_F(PanelPartsTest, ACompactBadgeHasASymbolOfSevenPointsAndHidesTheIconBelow) {
    const BadgeView badge{{"Minimised", "arrow.down.right.and.arrow.up.left", Tint::orange}, true};
    const auto painted = paint(badge, {40, 100, badge.width(context(fine)), 16}, fine);
    expectFont(painted->text("Minimised"), 10, 500);
    expectSymbolSize(painted->symbol("arrow.down.right.and.arrow.up.left", "2.2"), 7, fine);
    ASSERT_THAT(painted->shapes, SizeIs(1));
    EXPECT_EQ(painted->shapes[0].fill.alpha(), 255) << "no icon shines through";
    EXPECT_LT(painted->shapes[0].rect.height(), 17) << "there is a title below";
}

TEST_F(PanelPartsTest, EveryStateHasItsTintAndOnTheSelectionAllAreWhite) {
    struct Expected {
        Tint tint;
        const char* dark;
    };
    for (const auto& [tint, dark] :
         {Expected{Tint::orange, "#FFB340"}, Expected{Tint::blue, "#6FB6FF"}, Expected{Tint::purple, "#CF9BFF"}}) {
        const Badge badge{"State", "rectangle.on.rectangle", tint};
        const auto atRest = paint(BadgeView{badge}, {40, 100, 90, 52}, fine);
        EXPECT_EQ(colorText(atRest->text("State").color), colorText(dark));
        expectInk(atRest->symbol("rectangle.on.rectangle", "2.2"), colorText(dark));
        const auto selected = paint(BadgeView{badge, false, true}, {40, 100, 90, 52}, fine);
        EXPECT_EQ(colorText(selected->text("State").color), colorText("#FFFFFF"));
        ASSERT_THAT(selected->shapes, SizeIs(1));
        EXPECT_EQ(colorText(selected->shapes[0].fill), colorText("#FFFFFF", 0.18));
    }
}

TEST_F(PanelPartsTest, AGroupHeaderIsIconNameAndABoxedNumber) {
    const Rect rect{8, 64, 624, 28};
    const auto painted = paint(GroupHeaderView{"Writer", tile, 12}, rect, fine);
    ASSERT_THAT(painted->images, SizeIs(1));
    const QRectF icon = painted->images[0].rect;
    EXPECT_EQ(icon.size(), QSizeF(16, 16));
    EXPECT_EQ(icon.left(), rect.x + 12);
    EXPECT_NEAR(icon.center().y(), rect.midY(), 0.2);

    const PaintedText& name = painted->text("Writer");
    expectFont(name, 11, 600);
    EXPECT_EQ(colorText(name.color), colorText("#A4A8B2"));
    EXPECT_GT(name.left - icon.right(), 4);
    expectCentredOnLine(name, rect);

    const PaintedText& number = painted->text("12");
    expectFont(number, 9, 500);
    EXPECT_LT(number.color.lightness(), name.color.lightness()) << "less important than the name";
    ASSERT_THAT(painted->shapes, SizeIs(1));
    const PaintedShape& box = painted->shapes[0];
    EXPECT_EQ(colorText(box.fill), colorText("#F3F4F6", 0.07));
    EXPECT_FALSE(box.stroke.isValid());
    EXPECT_GT(box.cornerRadius, 2);
    EXPECT_GT(box.rect.left(), name.right);
    // Four points beside the number, one above and below its line; the box ends at whole points.
    EXPECT_NEAR(number.left - box.rect.left(), 4, 0.51);
    EXPECT_NEAR(box.rect.right() - number.right, 4, 0.51);
    const QFontMetricsF metrics(number.font);
    EXPECT_NEAR(box.rect.height(), metrics.ascent() + metrics.descent() + 2, 0.51);
    expectCentredOnLine(number, {box.rect.x(), box.rect.y(), box.rect.width(), box.rect.height()});
}

TEST_F(PanelPartsTest, ALongNameInAGroupHeaderLeavesRoomForTheNumber) {
    const Rect rect{8, 64, 300, 28};
    const auto painted = paint(GroupHeaderView{QString(80, u'm'), tile, 3}, rect);
    ASSERT_THAT(painted->texts, SizeIs(2));
    EXPECT_TRUE(painted->texts[0].text.ends_with("…")) << painted->texts[0];
    ASSERT_THAT(painted->shapes, SizeIs(1));
    EXPECT_LT(painted->texts[0].right, painted->shapes[0].rect.left());
    EXPECT_LE(painted->shapes[0].rect.right(), rect.maxX() - 12);
}

TEST_F(PanelPartsTest, AKeyCapIsAsWideAsItsTextAndNeverNarrowerThanHigh) {
    for (const char* const text : {"1", "Alt+Tab"}) {
        const KeyCapView cap{QString::fromUtf8(text)};
        const Rect rect{40, 100, cap.width(context(fine)), 34};
        const auto painted = paint(cap, rect, fine);
        const PaintedText& word = painted->text(text);
        expectFont(word, 10.5, 500);
        EXPECT_EQ(colorText(word.color), colorText("#A4A8B2"));
        const auto fills = painted->filledWith(QColor(255, 255, 255, std::lround(0.08 * 255)));
        ASSERT_THAT(fills, SizeIs(1));
        const QRectF box = fills[0].rect;
        EXPECT_EQ(box.size(), QSizeF(rect.width, 20));
        EXPECT_NEAR(box.center().y(), rect.midY(), 0.2);
        EXPECT_NEAR(word.middle(), box.center().x(), 0.2);
        EXPECT_GE(word.left - box.left(), 5);
        EXPECT_GE(box.width(), box.height());
        expectCentredOnLine(word, {box.x(), box.y(), box.width(), box.height()});
        const auto edges = painted->strokedWith(QColor(255, 255, 255, std::lround(0.10 * 255)));
        ASSERT_THAT(edges, SizeIs(1));
        EXPECT_EQ(edges[0].strokeWidth, 1 / fine);
    }
}

TEST_F(PanelPartsTest, OnTheSelectionAKeyCapIsWhiteWithoutAnEdge) {
    const auto painted = paint(KeyCapView{"3", true}, {40, 100, 20, 52});
    EXPECT_EQ(colorText(painted->text("3").color), colorText("#FFFFFF"));
    ASSERT_THAT(painted->shapes, SizeIs(1));
    EXPECT_EQ(colorText(painted->shapes[0].fill), colorText("#FFFFFF", 0.18));
    EXPECT_FALSE(painted->shapes[0].stroke.isValid());
}

class FooterPartTest : public PanelPartsTest {
protected:
    static constexpr Rect rect{0, 500, 640, 34};
    FooterView footer{WindowPresentation::footerHints(SwitcherModifier::option, SwitcherLayout::list, macTexts()), {}};
};

TEST_F(FooterPartTest, TheHintsStandInTheMiddleInTheirOrder) {
    const auto painted = paint(footer, rect);
    EXPECT_THAT(painted->words(),
                ElementsAre("⌥⇥", "next", "↑", "↓", "navigate", "⏎", "switch", "⌘D", "pin", "esc", "cancel"));
    const auto caps = painted->filledWith(QColor(255, 255, 255, std::lround(0.08 * 255)));
    ASSERT_THAT(caps, SizeIs(6));
    const PaintedText& last = painted->text("cancel");
    EXPECT_NEAR((caps[0].rect.left() + last.right) / 2, rect.midX(), 1);
    for (const char* const label : {"next", "navigate", "switch", "pin", "cancel"}) {
        const PaintedText& text = painted->text(label);
        expectFont(text, 11, 400);
        EXPECT_EQ(colorText(text.color), colorText("#A4A8B2"));
        expectCentredOnLine(text, rect);
    }
    for (const PaintedShape& cap : caps) {
        EXPECT_NEAR(cap.rect.center().y(), rect.midY(), 0.5);
    }
    EXPECT_NEAR(caps[2].rect.left() - caps[1].rect.right(), 3, 0.6) << "between two caps of a hint";
    EXPECT_NEAR(caps[1].rect.left() - painted->text("next").right, 18, 0.6) << "between two hints";
    EXPECT_NEAR(caps[3].rect.left() - painted->text("navigate").right, 18, 0.6);
    const double besideCap = painted->text("navigate").left - caps[2].rect.right();
    EXPECT_GT(besideCap, 3);
    EXPECT_LT(besideCap, 18) << "the label belongs to its caps";
}

TEST_F(FooterPartTest, AHairlineOfHalfAPointOrOneDevicePixelLiesAboveTheHints) {
    for (const double scale : {1.0, 2.0, 3.0, 4.0}) {
        const auto painted = paint(footer, rect, scale);
        const auto hairlines = painted->filledWith(QColor(0xF3, 0xF4, 0xF6, std::lround(0.14 * 255)));
        ASSERT_THAT(hairlines, SizeIs(1)) << "the primary text's colour at 14 %";
        EXPECT_EQ(hairlines[0].rect, QRectF(0, 500, 640, scale == 1 ? 1 : 0.5)) << "at scale " << scale;
    }
}

TEST_F(FooterPartTest, ANoteStandsAtTheEndAndTheHintsMakeRoomForIt) {
    const auto without = paint(footer, rect);
    const auto usualEnd = without->text("cancel").right;
    footer.note = "stays open";
    const Rect narrow{0, 500, usualEnd + 60, 34};
    const auto painted = paint(footer, narrow);
    const PaintedText& note = painted->text("stays open");
    expectFont(note, 11, 400);
    EXPECT_NEAR(narrow.maxX() - note.right, 20, 1);
    EXPECT_EQ(note.baseline, painted->text("next").baseline);
    EXPECT_GE(note.left - painted->text("cancel").right, 19);
}

TEST_F(PanelPartsTest, AnEmptySearchLineHasAMagnifierAPlaceholderAndACaretBeforeIt) {
    const Rect rect{0, 0, 640, 56};
    const auto painted = paint(SearchLineView{"", SwitcherLayout::list, 0, 1}, rect, fine);
    const PaintedImage& magnifier = painted->symbol("magnifyingglass", "2");
    expectSymbolSize(magnifier, 14, fine);
    expectInk(magnifier, colorText("#A4A8B2"));
    EXPECT_NEAR(magnifier.rect.left(), 20, 0.2);
    EXPECT_NEAR(magnifier.rect.center().y(), rect.midY(), 0.2);
    const PaintedText& placeholder = painted->text("Search windows by app or title");
    expectFont(placeholder, 15, 400);
    EXPECT_EQ(colorText(placeholder.color), colorText("#747985"));
    expectCentredOnLine(placeholder, rect);
    EXPECT_GT(placeholder.left, magnifier.rect.right() + 5);
    const auto carets = painted->filledWith(accent);
    ASSERT_THAT(carets, SizeIs(1));
    EXPECT_LE(carets[0].rect.right(), placeholder.left);
    EXPECT_GT(carets[0].rect.left(), magnifier.rect.right() + 5);
    EXPECT_NEAR(carets[0].rect.center().y(), rect.midY(), 0.6);
}

TEST_F(PanelPartsTest, TheCaretFollowsTheQuery) {
    const Rect rect{0, 0, 640, 56};
    const auto empty = paint(SearchLineView{"", SwitcherLayout::list, 0, 1}, rect);
    const auto painted = paint(SearchLineView{"report", SwitcherLayout::list, 3, 1}, rect);
    const PaintedText& query = painted->text("report");
    expectFont(query, 15, 400);
    EXPECT_EQ(colorText(query.color), colorText("#F3F4F6"));
    const auto carets = painted->filledWith(accent);
    ASSERT_THAT(carets, SizeIs(1));
    EXPECT_GE(carets[0].rect.left(), query.right);
    EXPECT_LE(carets[0].rect.left(), query.right + 2.5);
    EXPECT_NEAR(query.left, empty->filledWith(accent).at(0).rect.left(), 0.6) << "typing begins where the caret was";
}

TEST_F(PanelPartsTest, ALongQueryLosesItsBeginningAndKeepsItsCaretInSight) {
    const Rect rect{0, 0, 640, 56};
    const auto painted = paint(SearchLineView{QString(200, u'm'), SwitcherLayout::list, 3, 1}, rect);
    const PaintedText& query = painted->text(std::string(200, 'm'));
    EXPECT_LT(query.left, 0);
    const auto carets = painted->filledWith(accent);
    ASSERT_THAT(carets, SizeIs(1));
    EXPECT_NEAR(carets[0].rect.left(), query.right + 1, 1.5);
    EXPECT_LT(carets[0].rect.right(), painted->text("3").left - 20) << "and the indicator keeps its place";
}

TEST_F(PanelPartsTest, TheLayoutIndicatorIsASymbolOfNinePointsBesideTheNumberOfRows) {
    struct Expected {
        SwitcherLayout layout;
        const char* symbol;
    };
    const Rect rect{0, 0, 640, 56};
    for (const auto& [layout, name] :
         {Expected{SwitcherLayout::list, "list.bullet"}, Expected{SwitcherLayout::grouped, "list.bullet.indent"},
          Expected{SwitcherLayout::grid, "square.grid.3x2"}}) {
        const auto painted = paint(SearchLineView{"", layout, 12345, 1}, rect, fine);
        const PaintedText& number = painted->text("12345");
        expectFont(number, 11, 500);
        EXPECT_EQ(colorText(number.color), colorText("#A4A8B2"));
        EXPECT_NEAR(rect.maxX() - number.right, 20, 0.3);
        expectCentredOnLine(number, rect);
        const PaintedImage& symbol = painted->symbol(name, "2.2");
        expectSymbolSize(symbol, 9, fine);
        expectInk(symbol, colorText("#A4A8B2"));
        EXPECT_LT(symbol.rect.right(), number.left);
        EXPECT_LT(number.left - symbol.rect.right(), 10);
        EXPECT_NEAR(symbol.rect.center().y(), rect.midY(), 0.2);
    }
}

TEST_F(PanelPartsTest, WithoutAMatchALightSymbolAndTwoLinesStandInTheMiddle) {
    const Rect rect{0, 56, 640, 132};
    const auto painted = paint(EmptyStateView{WindowPresentation::emptyState("zzz")}, rect, fine);
    const PaintedImage& symbol = painted->symbol("magnifyingglass", "1.5");
    expectSymbolSize(symbol, 26, fine);
    expectInk(symbol, colorText("#747985"));
    EXPECT_THAT(painted->words(), ElementsAre("No matches for “zzz”", "Press ⌫ to edit your search"));
    const PaintedText& title = painted->texts[0];
    const PaintedText& detail = painted->texts[1];
    expectFont(title, 13, 500);
    EXPECT_EQ(colorText(title.color), colorText("#F3F4F6"));
    expectFont(detail, 11, 400);
    EXPECT_EQ(colorText(detail.color), colorText("#A4A8B2"));
    for (const double middle : {symbol.rect.center().x(), title.middle(), detail.middle()}) {
        EXPECT_NEAR(middle, rect.midX(), 0.3);
    }
    EXPECT_LT(symbol.rect.bottom(), title.baseline - QFontMetricsF(title.font).capHeight());
    EXPECT_GT(detail.baseline, title.baseline + 11);
    const double below = rect.maxY() - detail.baseline - QFontMetricsF(detail.font).descent();
    EXPECT_NEAR(symbol.rect.top() - rect.y, below, 2) << "as far from the top as from the bottom";
}

TEST_F(PanelPartsTest, WithoutWindowsTheSymbolIsAWindowAndThereIsOneLine) {
    const auto painted = paint(EmptyStateView{WindowPresentation::emptyState("")}, {0, 56, 640, 132}, fine);
    expectSymbolSize(painted->symbol("macwindow", "1.5"), 26, fine);
    EXPECT_THAT(painted->words(), ElementsAre("No open windows"));
    expectFont(painted->texts[0], 13, 500);
}

TEST_F(PanelPartsTest, WhatIsMissingIsSaidAboveAButton) {
    const Rect rect{0, 56, 640, 132};
    const auto painted = record(
        [&](QPainter& painter, const PaintContext& with) {
            PaintContext mac{with.theme, macTexts(), with.lines, with.symbols, with.icons, with.devicePixelRatio};
            PermissionStateView{}.paint(painter, rect, mac);
        },
        fine);
    EXPECT_THAT(painted->words(),
                ElementsAre("Accessibility access is required",
                            "Ferrowyn cannot list or focus other apps' windows without it.", "Open System Settings"));
    expectFont(painted->texts[0], 13, 500);
    expectFont(painted->texts[1], 11, 400);
    EXPECT_EQ(colorText(painted->texts[0].color), colorText("#F3F4F6"));
    EXPECT_EQ(colorText(painted->texts[1].color), colorText("#A4A8B2"));
    for (const PaintedText& text : painted->texts) {
        EXPECT_NEAR(text.middle(), rect.midX(), 0.6) << text;
    }
    const PaintedImage& symbol = painted->symbol("lock.shield.fill", "2");
    expectInk(symbol, colorText("#FFB340"));
    EXPECT_GE(symbol.rect.top(), rect.y);
    ASSERT_THAT(painted->shapes, SizeIs(1));
    const QRectF button = painted->shapes[0].rect;
    EXPECT_TRUE(button.contains(painted->texts[2].left, painted->texts[2].baseline));
    EXPECT_GT(button.top(), painted->texts[1].baseline);
    EXPECT_LE(button.bottom(), rect.maxY());
    expectCentredOnLine(painted->texts[2], {button.x(), button.y(), button.width(), button.height()});
}

TEST_F(PanelPartsTest, AnIconIsCentredAndPaleForAMinimisedWindow) {
    for (const bool isDimmed : {false, true}) {
        const auto painted = paint(AppIconView{tile, 32, isDimmed}, {20, 64, 32, 52}, 2);
        ASSERT_THAT(painted->images, SizeIs(1));
        EXPECT_EQ(painted->images[0].rect, QRectF(20, 74, 32, 32));
        EXPECT_EQ(painted->images[0].image.width(), 64) << "sharp at this scale";
        if (isDimmed) {
            EXPECT_LT(painted->images[0].opacity, 0.7);
            EXPECT_GT(painted->images[0].opacity, 0.4);
        } else {
            EXPECT_EQ(painted->images[0].opacity, 1);
        }
    }
    EXPECT_THAT(paint(AppIconView{nullptr, 32, false}, {20, 64, 32, 52})->images, IsEmpty());
}

TEST_F(PanelPartsTest, TheCaretIsALineInTheAccentThatFades) {
    const Rect rect{46, 18.5, 1.5, 19};
    const auto faded =
        record([&](QPainter& painter, const PaintContext& with) { Caret{}.paint(painter, rect, 0.25, with); });
    ASSERT_THAT(faded->shapes, SizeIs(1));
    EXPECT_EQ(faded->shapes[0].rect, QRectF(46, 18.5, 1.5, 19));
    EXPECT_EQ(colorText(faded->shapes[0].fill), colorText(accent, 0.25));
    const auto hidden =
        record([&](QPainter& painter, const PaintContext& with) { Caret{false}.paint(painter, rect, 1, with); });
    EXPECT_THAT(hidden->shapes, IsEmpty());
}

TEST(CaretBlinkTest, FadesInAndOutForEverEachWayInAnEasedHalfSecond) {
    EXPECT_EQ(Caret::opacityAfter(0), 1);
    EXPECT_NEAR(Caret::opacityAfter(0.275), 0.5, 0.001);
    EXPECT_NEAR(Caret::opacityAfter(0.55), 0, 0.001);
    EXPECT_NEAR(Caret::opacityAfter(0.825), 0.5, 0.001);
    EXPECT_NEAR(Caret::opacityAfter(1.1), 1, 0.001);
    EXPECT_NEAR(Caret::opacityAfter(11.55), 0, 0.001);
    // Slow at both ends, quick between them.
    EXPECT_GT(Caret::opacityAfter(0.055), 0.95);
    EXPECT_LT(Caret::opacityAfter(0.495), 0.05);
}

TEST_F(PanelPartsTest, TheStarIsYellowForAFavouriteAndAnOutlineOtherwise) {
    const Rect rect{500, 82, 15, 15};
    const auto favourite = paint(FavouriteButton{true, false, 12.5, {}}, rect, fine);
    expectInk(favourite->symbol("star.fill", "2"), colorText("#FFD20A"));
    expectSymbolSize(favourite->symbol("star.fill", "2"), 12.5, fine);
    EXPECT_NEAR(favourite->symbol("star.fill", "2").rect.center().x(), 507.5, 0.2);
    EXPECT_NEAR(favourite->symbol("star.fill", "2").rect.center().y(), 89.5, 0.2);
    const auto other = paint(FavouriteButton{false, true, 12.5, {}}, rect, fine);
    expectInk(other->symbol("star", "2"), colorText("#FFFFFF"));
}

TEST_F(PanelPartsTest, TheSelectionIsARoundedRectangleInTheAccent) {
    const auto painted = paint(SelectionBackground{true}, {8, 64, 624, 52});
    ASSERT_THAT(painted->shapes, SizeIs(1));
    EXPECT_EQ(painted->shapes[0].rect, QRectF(8, 64, 624, 52));
    EXPECT_EQ(colorText(painted->shapes[0].fill), colorText(accent));
    EXPECT_NEAR(painted->shapes[0].cornerRadius, 9, 0.01);
    EXPECT_THAT(paint(SelectionBackground{false}, {8, 64, 624, 52})->shapes, IsEmpty());
}

TEST_F(PanelPartsTest, TheOutlineIsAHairlineAlongTheRoundedEdge) {
    const VisualEffectBackground background{.blendingMode = VisualEffectBackground::BlendingMode::behindWindow};
    for (const bool isDark : {true, false}) {
        theme = Theme::make(isDark, accent, true);
        const QColor primary = isDark ? QColor(0xF3, 0xF4, 0xF6) : QColor(0x1C, 0x1D, 0x21);
        for (const double scale : {1.0, 2.0, 3.0}) {
            const auto painted = record(
                [&](QPainter& painter, const PaintContext& with) {
                    background.paintOutline(painter, {0, 0, 640, 500}, with);
                },
                scale);
            ASSERT_THAT(painted->shapes, SizeIs(1));
            const PaintedShape& outline = painted->shapes[0];
            const double width = scale == 1 ? 1 : 0.5;
            EXPECT_EQ(outline.strokeWidth, width) << "at scale " << scale;
            EXPECT_EQ(colorText(outline.stroke), colorText(primary, 0.14));
            EXPECT_FALSE(outline.fill.isValid());
            EXPECT_EQ(outline.rect, QRectF(0, 0, 640, 500).adjusted(width / 2, width / 2, -width / 2, -width / 2))
                << "inside the panel";
            EXPECT_NEAR(outline.cornerRadius, 14 - width / 2, 0.01);
        }
    }
}

TEST_F(PanelPartsTest, TheGroundHasTheThemesColour) {
    const VisualEffectBackground background{.blendingMode = VisualEffectBackground::BlendingMode::behindWindow};
    const auto translucent = paint(background, {0, 0, 640, 500});
    EXPECT_THAT(translucent->filledWith(QColor(0x22, 0x23, 0x28, std::lround(0.96 * 255))), SizeIs(3));
    theme = Theme::make(false, accent, false);
    const auto opaque = paint(VisualEffectBackground{}, {0, 0, 640, 500});
    const auto fills = opaque->filledWith(QColor(0xF6, 0xF6, 0xF8));
    ASSERT_THAT(fills, SizeIs(1));
    EXPECT_EQ(fills[0].rect, QRectF(0, 0, 640, 500));
}

TEST(VisualEffectBackgroundTest, IsOfOneColourFromEdgeToEdgeAtEveryScale) {
    const Theme theme = Theme::make(false, Qt::blue, true);
    TextLines lines;
    SymbolImages symbols;
    IconImages icons;
    for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0}) {
        for (int height = 588; height <= 592; ++height) {
            QImage image(20, static_cast<int>(height * scale), QImage::Format_ARGB32_Premultiplied);
            image.setDevicePixelRatio(scale);
            image.fill(Qt::red);
            {
                QPainter painter(&image);
                painter.setRenderHint(QPainter::Antialiasing);
                // Wide enough that the corners lie outside the picture.
                VisualEffectBackground{.blendingMode = VisualEffectBackground::BlendingMode::behindWindow}.paint(
                    painter, {-100, 0, 300, static_cast<double>(height)},
                    PaintContext{theme, macTexts(), lines, symbols, icons, scale});
            }
            const QRgb middle = image.pixel(10, image.height() / 2);
            for (int y = 1; y < image.height() - 1; ++y) {
                ASSERT_EQ(image.pixel(10, y), middle) << "row " << y << " of " << height << " points at " << scale;
            }
        }
    }
}

}  // namespace
}  // namespace ferrowyn
