#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QCursor>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <memory>
#include <string>
#include <vector>

#include "tests/ui/status_menu_model.h"
#include "ui/menu/status_menu_popup.h"

namespace ferrowyn::test {

/// An open menu, and the pointer and keys upon it.
class StatusMenuFixture : public testing::Test {
protected:
    StatusMenuFixture() { open(statusMenu(Health::ready)); }

    void open(const StatusMenu& menu) {
        popup = std::make_unique<StatusMenuPopup>(menu, linuxTexts(), false);
        popup->setPalette(paletteOf(isDark));
        popup->setClosedHandler([this] { happened.emplace_back("closed"); });
        popup->setChosenHandler([this](const MenuRow& row) {
            happened.emplace_back("chosen");
            chosen.push_back(row);
        });
        popup->popUp(QRect(400, 10, 22, 22));
    }
    static QPalette paletteOf(bool dark) {
        QPalette palette;
        palette.setColor(QPalette::Window, dark ? QColor(0x2A, 0x2A, 0x2E) : QColor(0xF4, 0xF4, 0xF4));
        return palette;
    }

    [[nodiscard]] int row(const std::string& title) const { return rowTitled(popup->menu(), title); }
    [[nodiscard]] std::string selectedTitle() const {
        return popup->selectedRow() ? popup->rowAt(*popup->selectedRow()).title : "none";
    }
    [[nodiscard]] QPointF centreOf(const std::string& title) const {
        const Rect place = popup->geometryNow().row(row(title));
        return {place.midX(), place.midY()};
    }
    [[nodiscard]] QPointF gear() const {
        const Rect area = MenuHeaderView::gearArea(popup->geometryNow().row(0));
        return {area.midX(), area.midY()};
    }

    void send(QEvent::Type type, const QPointF& position, Qt::MouseButton button) const {
        QMouseEvent event(type, position, popup->mapToGlobal(position), button,
                          type == QEvent::MouseButtonPress ? button : Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(popup.get(), &event);
    }
    void move(const QPointF& position) const { send(QEvent::MouseMove, position, Qt::NoButton); }
    void press(const QPointF& position) const { send(QEvent::MouseButtonPress, position, Qt::LeftButton); }
    void release(const QPointF& position) const { send(QEvent::MouseButtonRelease, position, Qt::LeftButton); }
    void click(const QPointF& position) const {
        press(position);
        release(position);
    }
    void key(int code, const QString& text = {}, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
        QKeyEvent event(QEvent::KeyPress, code, modifiers, text);
        QApplication::sendEvent(popup.get(), &event);
    }

    [[nodiscard]] QImage picture(double scale = 1) const {
        QImage image((QSizeF(popup->size()) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(scale);
        image.fill(Qt::magenta);
        popup->render(&image);
        return image;
    }
    /// Whether any pixel in the rectangle (points) has exactly this colour.
    [[nodiscard]] static bool shows(const QImage& image, const Rect& rect, const QColor& color) {
        const double scale = image.devicePixelRatio();
        for (int y = static_cast<int>(rect.minY() * scale); y < static_cast<int>(rect.maxY() * scale); ++y) {
            for (int x = static_cast<int>(rect.minX() * scale); x < static_cast<int>(rect.maxX() * scale); ++x) {
                if (image.pixelColor(x, y) == color) {
                    return true;
                }
            }
        }
        return false;
    }

    bool isDark = true;
    std::unique_ptr<StatusMenuPopup> popup;
    std::vector<MenuRow> chosen;
    std::vector<std::string> happened;
};

}  // namespace ferrowyn::test
