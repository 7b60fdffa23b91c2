#pragma once

#include <gtest/gtest.h>

#include <QMouseEvent>
#include <QPainter>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/panel.h"
#include "platform/x11/x11_panel.h"
#include "platform/x11/x11_pointer.h"
#include "platform/x11/x11_screens.h"
#include "tests/x11/adapter/toolkit_session.h"

namespace ferrowyn::x11test {

inline constexpr std::uint32_t borderColour = 0x225588;

/// A widget with a border and a ground of the colour that its model holds.
class TestWidget final : public QWidget {
public:
    QColor ground{0xCC3366};
    int presses = 0;
    int wheelSteps = 0;
    int moves = 0;
    int paints = 0;

    void paint(QPainter& painter, const QRectF& area) const {
        painter.fillRect(area, QColor(borderColour));
        painter.fillRect(area.adjusted(4, 4, -4, -4), ground);
        painter.setPen(Qt::white);
        painter.drawText(area, Qt::AlignCenter, QStringLiteral("Ferrowyn"));
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        ++paints;
        QPainter painter(this);
        paint(painter, rect());
    }
    void mousePressEvent(QMouseEvent* /*event*/) override { ++presses; }
    void mouseMoveEvent(QMouseEvent* /*event*/) override { ++moves; }
    void wheelEvent(QWheelEvent* /*event*/) override { ++wheelSteps; }
};

/// What a user interface would hand over, with a model of one colour.
class TestContent final : public PanelContent {
public:
    TestContent() { widget_.setMouseTracking(true); }

    QColor model{0xCC3366};
    bool isTranslucent = false;
    TestWidget& view() { return widget_; }

    QWidget* widget() override { return &widget_; }
    void synchronize() override {
        if (widget_.ground != model) {
            widget_.ground = model;
            widget_.update();
        }
    }
    void setBackground(PanelBackground background) override {
        isTranslucent = background == PanelBackground::translucent;
    }
    void renderPreview(QImage& target) override {
        TestWidget picture;
        picture.ground = model;
        QPainter painter(&target);
        picture.paint(painter, QRectF(QPointF(), target.deviceIndependentSize()));
        previewed_ = model;
    }
    bool matchesPreview() const override { return previewed_ == model; }

private:
    TestWidget widget_;
    std::optional<QColor> previewed_;
};

/// The panel's side of the adapter in this process, on a private desktop.
class PanelRig : public ToolkitSession {
public:
    struct Options {
        std::vector<std::string> screens{"1280x800x24"};
        std::string manager = "openbox";
        std::string scale = "1";
    };

    PanelRig() : PanelRig(Options{}) {}
    explicit PanelRig(const Options& options)
        : ToolkitSession(options.manager, {.screens = options.screens, .monitors = {}}, options.scale) {
        events = std::make_unique<X11EventConnection>(X11Connection::open(server.display().c_str()));
        screens = std::make_unique<X11Screens>(*events);
        compositor = std::make_unique<X11Compositor>(*events);
        pointer = std::make_unique<X11Pointer>(*events, *screens, context);
        panel = std::make_unique<X11Panel>(*events, *screens, *compositor, *pointer);
        auto owned = std::make_unique<TestContent>();
        content = owned.get();
        panel->setContent(std::move(owned));
    }

    X11InputContext context;
    std::unique_ptr<X11EventConnection> events;
    std::unique_ptr<X11Screens> screens;
    std::unique_ptr<X11Compositor> compositor;
    std::unique_ptr<X11Pointer> pointer;
    std::unique_ptr<X11Panel> panel;
    TestContent* content = nullptr;

    void show(const Rect& frame) {
        panel->setFrame(frame);
        panel->orderFrontRegardless();
    }

    /// Lets everything that is under way arrive, both ways.
    void settle() {
        for (int round = 0; round < 3; ++round) {
            (void)desktop.activeWindow();  // an answer means that the server has done what was asked before
            QCoreApplication::processEvents();
        }
    }

    /// The picture that the content would draw for this extent.
    [[nodiscard]] std::vector<std::uint32_t> expectedPixels(int width, int height, double scale) const {
        QImage image(width, height, QImage::Format_RGB32);
        image.setDevicePixelRatio(scale);
        TestWidget picture;
        picture.ground = content->model;
        QPainter painter(&image);
        picture.paint(painter, QRectF(QPointF(), image.deviceIndependentSize()));
        painter.end();
        const auto* const bits = reinterpret_cast<const std::uint32_t*>(image.constBits());
        return {bits, bits + static_cast<std::ptrdiff_t>(width) * height};
    }
};

}  // namespace ferrowyn::x11test
