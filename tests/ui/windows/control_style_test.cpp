#include "ui/windows/control_style.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QMouseEvent>
#include <QScrollBar>
#include <array>
#include <memory>

#include "ui/windows/controls.h"
#include "ui/windows/labels.h"
#include "ui/windows/utility_window.h"

namespace ferrowyn {
namespace {

void send(QWidget& widget, QEvent::Type type, double x, double y) {
    const QPointF position(x, y);
    const bool isRelease = type == QEvent::MouseButtonRelease;
    QMouseEvent event(type, position, widget.mapToGlobal(position),
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                      isRelease ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
}

TEST(ControlStyleTest, ControlsFollowTheDesktopsFontInTheirOwnSizes) {
    const QFont before = QApplication::font();
    const Phrase text{"Check Now", {}};
    const std::array<QWidget*, 7> controls{makeButton(text),   makeLink(text),      makeSegment("list.bullet", text),
                                           makeStepper(4, 16), new SwitchRow(text), new ChoiceBox,
                                           TextLabel::keyCap()};
    // In a window, where the toolkit tells the controls nothing.
    auto content = std::make_unique<QWidget>();
    for (auto* const control : controls) {
        control->setParent(content.get());
    }
    UtilityWindow window(std::move(content), true);
    window.show();
    std::array<double, 7> sizes{};
    for (std::size_t index = 0; index < controls.size(); ++index) {
        sizes.at(index) = controls.at(index)->font().pointSizeF();
    }
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans Mono"), 30));
    QCoreApplication::processEvents();
    for (std::size_t index = 0; index < controls.size(); ++index) {
        const QFont font = controls.at(index)->font();
        EXPECT_EQ(font.family(), QStringLiteral("DejaVu Sans Mono")) << index;
        EXPECT_EQ(font.pointSizeF(), sizes.at(index)) << index;
    }
    QApplication::setFont(before);
    QCoreApplication::processEvents();
}

TEST(ControlStyleTest, AClickOnAStepperIsOneStepAlsoWithControl) {
    const std::unique_ptr<QSpinBox> stepper(makeStepper(4, 16));
    stepper->setValue(8);
    stepper->resize(stepper->sizeHint());
    const QPointF position(stepper->width() - 6, stepper->height() / 2.0);
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, position, stepper->mapToGlobal(position), Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::ControlModifier);
        QApplication::sendEvent(stepper.get(), &event);
    }
    EXPECT_EQ(stepper->value(), 9);
}

class ScrollBarTest : public testing::Test {
protected:
    ScrollBarTest() {
        ControlStyle::applyTo(bar);
        bar.setRange(0, 1000);
        bar.setPageStep(100);
        bar.resize(bar.sizeHint().width(), 208);
    }

    QScrollBar bar{Qt::Vertical};
};

TEST_F(ScrollBarTest, TheThumbIsDragged) {
    // The thumb is 28 high on a track of 200 that begins at 4.
    send(bar, QEvent::MouseButtonPress, 6, 4 + 14);
    EXPECT_EQ(bar.value(), 0) << "a press on the thumb alone moves nothing";
    send(bar, QEvent::MouseMove, 6, 4 + 14 + 86);
    EXPECT_EQ(bar.value(), 500);
    send(bar, QEvent::MouseMove, 6, 300);
    EXPECT_EQ(bar.value(), 1000);
    send(bar, QEvent::MouseButtonRelease, 6, 300);
    EXPECT_FALSE(bar.isSliderDown());
}

TEST_F(ScrollBarTest, APressBesideTheThumbScrollsByAPage) {
    for (const auto& [y, value] : {std::pair(206, 100), std::pair(206, 200), std::pair(1, 100)}) {
        send(bar, QEvent::MouseButtonPress, 6, y);
        send(bar, QEvent::MouseButtonRelease, 6, y);
        EXPECT_EQ(bar.value(), value);
    }
}

}  // namespace
}  // namespace ferrowyn
