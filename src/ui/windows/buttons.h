#pragma once

#include <QCheckBox>
#include <QPushButton>
#include <QRadioButton>
#include <string>
#include <string_view>

#include "core/texts.h"
#include "ui/common/images.h"
#include "ui/windows/window_theme.h"

namespace ferrowyn {

/// A push button of the windows. Main thread.
class WindowButton final : public QPushButton {
    Q_OBJECT

public:
    enum class Look {
        standard,
        /// What the user most likely wants.
        primary,
        /// Text in the colour of links.
        link,
    };

    explicit WindowButton(const Phrase& text, Look look = Look::standard);
    /// A button with only a symbol; the name is for the tooltip and for screen readers.
    WindowButton(const QString& name, std::string_view symbol);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void adopt();
    void paintSymbolButton(QPainter& painter, const WindowTheme& theme);
    void paintLink(QPainter& painter, const WindowTheme& theme);
    void paintBoxedButton(QPainter& painter, const WindowTheme& theme);

    Look look_ = Look::standard;
    std::string symbol_;
    SymbolImages symbols_;
};

/// One of several choices side by side, with its symbol above its title. The arrow keys choose the neighbours. Main
/// thread.
class SegmentButton final : public QRadioButton {
    Q_OBJECT

public:
    SegmentButton(std::string_view symbol, const Phrase& title);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] const std::string& symbol() const { return symbol_; }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& position) const override { return rect().contains(position); }

private:
    std::string symbol_;
    SymbolImages symbols_;
};

/// One row of a group: a text and, at the right edge, a switch. The whole row can be clicked. Main thread.
class SwitchRow final : public QCheckBox {
    Q_OBJECT

public:
    explicit SwitchRow(const Phrase& text);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& position) const override { return rect().contains(position); }

private:
    [[nodiscard]] QRectF switchRect() const;
    /// The width that a row of this width leaves for the text, and the height of the text then.
    [[nodiscard]] int textWidth(int width) const;
    [[nodiscard]] int textHeight(int width) const;
};

}  // namespace ferrowyn
