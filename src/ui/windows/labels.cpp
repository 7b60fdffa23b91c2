#include "ui/windows/labels.h"

#include <QEvent>
#include <QPainter>
#include <cmath>

#include "ui/common/translation.h"
#include "ui/windows/control_style.h"
#include "ui/windows/utility_theme.h"

namespace ferrowyn {

namespace {

constexpr int behindSymbol = 9;

}  // namespace

TextLabel::TextLabel(TextStyle style, Tone tone, QWidget* parent) : QLabel(parent), style_(style), tone_(tone) {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    adopt();
}

TextLabel::TextLabel(const Phrase& text, TextStyle style, Tone tone) : TextLabel(style, tone) {
    setPhrase(text);
}

TextLabel* TextLabel::centred(const Phrase& text, TextStyle style, Tone tone) {
    auto* const label = new TextLabel(text, style, tone);
    label->setAlignment(Qt::AlignHCenter);
    return label;
}

TextLabel* TextLabel::keyCap() {
    constexpr QSize smallest(22, 22);
    auto* const label = new TextLabel(TextStyle::button, Tone::secondary);
    ControlStyle::applyTo(*label);
    label->setFrameShape(QFrame::StyledPanel);
    label->setIndent(0);
    label->setWordWrap(false);
    label->setAlignment(Qt::AlignCenter);
    label->setMinimumSize(smallest);
    label->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    return label;
}

void TextLabel::setPhrase(const Phrase& text) {
    setText(translated(text));
}

void TextLabel::setSymbol(std::string_view name, Tone tone, double points) {
    symbol_ = name;
    symbolTone_ = tone;
    symbolPoints_ = points;
    QMargins margins = contentsMargins();
    const int room = name.empty() ? 0 : static_cast<int>(std::ceil(SymbolImages::boxSide(points))) + behindSymbol;
    margins.setLeft(isRightToLeft() ? 0 : room);
    margins.setRight(isRightToLeft() ? room : 0);
    setContentsMargins(margins);
    update();
}

bool TextLabel::event(QEvent* event) {
    // Only windows get ApplicationPaletteChange. The widgets in them get PaletteChange.
    if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::PaletteChange ||
        event->type() == QEvent::ApplicationFontChange) {
        const bool isHandled = QLabel::event(event);
        adopt();
        return isHandled;
    }
    return QLabel::event(event);
}

void TextLabel::adopt() {
    setFont(fontFor(style_));
    QPalette own;
    own.setColor(QPalette::WindowText, UtilityTheme::current().color(tone_));
    setPalette(own);
}

void TextLabel::paintEvent(QPaintEvent* event) {
    QLabel::paintEvent(event);
    if (symbol_.empty()) {
        return;
    }
    QPainter painter(this);
    // Beside the first line of the text, which is centred vertically.
    const QRectF room = contentsRect();
    const double textHeight =
        fontMetrics().boundingRect(contentsRect(), Qt::TextWordWrap | Qt::AlignLeft, text()).height();
    const double middle = room.center().y() - textHeight / 2 + fontMetrics().height() / 2.0;
    const double side = SymbolImages::boxSide(symbolPoints_);
    const QRectF place = control_painting::mirrored(*this, QRectF(0, middle - side / 2, side, side));
    symbols_.paint(painter, symbol_, place.center().x(), place.center().y(), symbolPoints_,
                   UtilityTheme::current().color(symbolTone_));
}

}  // namespace ferrowyn
