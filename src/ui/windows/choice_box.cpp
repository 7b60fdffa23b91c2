#include "ui/windows/choice_box.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QAccessibleWidget>
#include <QPainter>
#include <QPolygonF>
#include <QWheelEvent>
#include <algorithm>

#include "ui/common/text_line.h"
#include "ui/windows/window_theme.h"

namespace ferrowyn {

namespace {

constexpr int padding = 10;
constexpr int arrowsWidth = 22;
constexpr double arrowsSide = 8;
constexpr double cornerRadius = 6;

void paintArrows(QPainter& painter, const QPointF& middle, const QColor& color) {
    constexpr double halfWidth = 3;
    constexpr double tip = 5.5;
    constexpr double foot = 2.5;
    painter.setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    for (const double direction : {-1.0, 1.0}) {
        painter.drawPolyline(QPolygonF{{middle.x() - halfWidth, middle.y() + direction * foot},
                                       {middle.x(), middle.y() + direction * tip},
                                       {middle.x() + halfWidth, middle.y() + direction * foot}});
    }
}

/// Keeps the name of the control and gives the chosen text as its value; the toolkit would make the text its name. The
/// value is a readable text as well, because screen readers on Linux get it no other way.
class AccessibleChoiceBox final : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    explicit AccessibleChoiceBox(ChoiceBox& box) : QAccessibleWidget(&box, QAccessible::ComboBox), box_(box) {}

    int childCount() const override { return 1; }
    QAccessibleInterface* child(int index) const override {
        return index == 0 ? QAccessible::queryAccessibleInterface(box_.view()) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        return child != nullptr && child->object() == box_.view() ? 0 : -1;
    }

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? box_.currentText() : QAccessibleWidget::text(kind);
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::TextInterface ? static_cast<QAccessibleTextInterface*>(this)
                                                  : QAccessibleWidget::interface_cast(type);
    }
    QString text(int start, int end) const override { return box_.currentText().mid(start, end - start); }
    int characterCount() const override { return static_cast<int>(box_.currentText().size()); }
    QRect characterRect(int /*offset*/) const override { return rect(); }
    int offsetAtPoint(const QPoint& /*point*/) const override { return 0; }
    QString attributes(int /*offset*/, int* start, int* end) const override {
        *start = 0;
        *end = characterCount();
        return {};
    }
    // Nothing of it can be selected, and it has no cursor.
    int selectionCount() const override { return 0; }
    void selection(int /*index*/, int* start, int* end) const override { *start = *end = 0; }
    void addSelection(int /*start*/, int /*end*/) override {}
    void removeSelection(int /*index*/) override {}
    void setSelection(int /*index*/, int /*start*/, int /*end*/) override {}
    int cursorPosition() const override { return 0; }
    void setCursorPosition(int /*position*/) override {}
    void scrollToSubstring(int /*start*/, int /*end*/) override {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.expandable = true;
        state.expanded = box_.view()->isVisible();
        return state;
    }

    QStringList actionNames() const override { return {showMenuAction(), pressAction()}; }
    void doAction(const QString& name) override {
        if (name != showMenuAction() && name != pressAction()) {
            return;
        }
        if (box_.view()->isVisible()) {
            box_.hidePopup();
        } else {
            box_.showPopup();
        }
    }

private:
    ChoiceBox& box_;
};

QAccessibleInterface* makeInterface(const QString& className, QObject* object) {
    auto* const box = className == QLatin1String(ChoiceBox::staticMetaObject.className())
                          ? qobject_cast<ChoiceBox*>(object)
                          : nullptr;
    return box == nullptr ? nullptr : new AccessibleChoiceBox(*box);  // NOLINT: Qt takes ownership.
}

}  // namespace

ChoiceBox::ChoiceBox() {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
    // Qt itself ignores a factory that is installed already.
    QAccessible::installFactory(makeInterface);
    // Announce the new value: the toolkit announces only a new name.
    connect(this, &QComboBox::currentIndexChanged, this, [this] {
        QAccessibleValueChangeEvent event(this, currentText());
        QAccessible::updateAccessibility(&event);
    });
    adopt();
}

void ChoiceBox::adopt() {
    setFont(fontFor(TextStyle::body));
    const WindowTheme theme = WindowTheme::current();
    QPalette own;
    own.setColor(QPalette::Base, theme.groupFill);
    own.setColor(QPalette::Window, theme.groupFill);
    own.setColor(QPalette::Button, theme.groupFill);
    own.setColor(QPalette::Text, theme.textPrimary);
    own.setColor(QPalette::WindowText, theme.textPrimary);
    own.setColor(QPalette::Highlight, theme.accent);
    own.setColor(QPalette::HighlightedText, theme.accentText);
    view()->setPalette(own);
    view()->setFont(font());
    view()->window()->setPalette(own);
}

QSize ChoiceBox::sizeHint() const {
    int widest = 0;
    for (int index = 0; index < count(); ++index) {
        widest = std::max(widest, fontMetrics().horizontalAdvance(itemText(index)) + 1);
    }
    return {widest + 2 * padding + arrowsWidth, control_painting::controlHeight(fontMetrics())};
}

bool ChoiceBox::event(QEvent* event) {
    const bool isHandled = QComboBox::event(event);
    if (event->type() == QEvent::ApplicationFontChange || event->type() == QEvent::ApplicationPaletteChange ||
        event->type() == QEvent::PaletteChange) {
        adopt();
        updateGeometry();
    }
    return isHandled;
}

void ChoiceBox::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const WindowTheme theme = WindowTheme::current();
    control_painting::paintBox(painter, rect(), cornerRadius,
                               underMouse() ? theme.controlFillHovered : theme.controlFill, theme.controlEdge);
    const QRectF arrows(width() - padding - arrowsSide, (height() - arrowsSide) / 2, arrowsSide, arrowsSide);
    const QRectF textRect(padding, 0, width() - 2 * padding - arrowsWidth + 6, height());
    control_painting::paintText(painter, *this, control_painting::mirrored(*this, textRect), currentText(), font(),
                                theme.textPrimary);
    paintArrows(painter, control_painting::mirrored(*this, arrows).center(), theme.textSecondary);
    if (control_painting::showsFocus(*this)) {
        constexpr double inset = 3;
        control_painting::paintFocusRing(painter, QRectF(rect()).adjusted(inset, inset, -inset, -inset),
                                         cornerRadius - 2, theme.focusRing);
    }
}

/// The wheel scrolls the pane and must not change a choice on the way.
void ChoiceBox::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

}  // namespace ferrowyn
