#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <memory>
#include <vector>

#include "tests/ui/interface_models.h"
#include "ui/panel/switcher_view.h"

namespace ferrowyn::test {

class SwitcherViewFixture : public testing::Test {
protected:
    SwitcherViewFixture() {
        model.show(PanelModel::windows(9, 3));
        model.viewModel.beginSession(false);
        view.resize(640, 56 + 16 + 9 * 52 + 8 + 34);
        view.synchronize();
    }

    QImage picture() {
        QImage image(view.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::magenta);
        view.render(&image);
        return image;
    }

    static QPointF centre(const Rect& rect) { return {rect.midX(), rect.midY()}; }

    void send(QEvent::Type type, const QPointF& position, Qt::MouseButton button) {
        QMouseEvent event(type, position, view.mapToGlobal(position), button,
                          type == QEvent::MouseButtonPress ? button : Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&view, &event);
    }
    void move(const QPointF& position) { send(QEvent::MouseMove, position, Qt::NoButton); }
    void press(const QPointF& position) { send(QEvent::MouseButtonPress, position, Qt::LeftButton); }
    void release(const QPointF& position) { send(QEvent::MouseButtonRelease, position, Qt::LeftButton); }
    void click(const QPointF& position) {
        press(position);
        release(position);
    }

    PanelModel model;
    std::vector<WindowId> activated;
    std::vector<int> hovered;
    std::vector<WindowId> toggled;
    int permissionRequests = 0;
    int appearanceChanges = 0;
    SwitcherView view{model.viewModel,
                      model.preferences,
                      linuxTexts(),
                      {[this](const AppWindow& window) { activated.push_back(window.id); },
                       [this](int index) { hovered.push_back(index); },
                       [this](const AppWindow& window) { toggled.push_back(window.id); },
                       [this] { ++permissionRequests; }, [this] { ++appearanceChanges; }}};
};

}  // namespace ferrowyn::test
