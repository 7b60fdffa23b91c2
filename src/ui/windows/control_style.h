#pragma once

#include <QProxyStyle>
#include <string>
#include <string_view>

#include "ui/common/images.h"

class QAbstractButton;
class QPushButton;

namespace ferrowyn {

/// Draws the toolkit's own controls in the utility windows: push buttons, radio buttons as segments, check boxes as
/// rows with a switch, combo boxes, spin boxes, scroll bars and the frames of key caps. The sizes do not depend on the
/// desktop's style, the colours are those of `UtilityTheme`. Main thread.
class ControlStyle final : public QProxyStyle {
    Q_OBJECT

public:
    /// Lets the style draw the control. From then on the control also has the desktop's font in its own size, and the
    /// wheel passes by it. A push button that is flat is drawn as a link.
    static void applyTo(QWidget& control);

    /// Has a button drawn as what the user most likely wants. `QPushButton::setDefault` would not do: outside a dialog
    /// the toolkit sets it for each button that has the focus.
    static void setPrimary(QPushButton& button);
    /// A push button with a symbol shows nothing else; a segment shows it above its title.
    static void setSymbol(QAbstractButton& button, std::string_view name);
    /// Empty where the button has none.
    [[nodiscard]] static std::string symbol(const QAbstractButton& button);

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    [[nodiscard]] QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                         const QWidget* widget) const override;
    [[nodiscard]] QRect subElementRect(SubElement element, const QStyleOption* option,
                                       const QWidget* widget) const override;
    [[nodiscard]] QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                       const QWidget* widget) const override;
    [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    [[nodiscard]] int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                                QStyleHintReturn* result) const override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    ControlStyle();

    /// Its key is part of what the images are kept by, so one store serves all controls.
    mutable SymbolImages symbols_;
};

}  // namespace ferrowyn
