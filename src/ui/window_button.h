#pragma once

#include <QPushButton>
#include <string>
#include <string_view>

#include "core/texts.h"
#include "ui/symbol_images.h"
#include "ui/window_theme.h"

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
    /// Only a symbol; the name is for the tooltip and for screen readers.
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

}  // namespace ferrowyn
