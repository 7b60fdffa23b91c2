#include "ui/windows/controls.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QAccessibleWidget>
#include <QEvent>
#include <QLineEdit>
#include <QStyleOption>
#include <algorithm>

#include "ui/common/translation.h"
#include "ui/windows/control_style.h"
#include "ui/windows/settings_form.h"
#include "ui/windows/utility_theme.h"

namespace ferrowyn {

namespace {

QPushButton* finished(QPushButton* button) {
    button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    // Return presses the focused button, as Space does.
    button->setAutoDefault(true);
    ControlStyle::applyTo(*button);
    return button;
}

}  // namespace

QPushButton* makeButton(const Phrase& text) {
    return finished(new QPushButton(translated(text)));
}

QPushButton* makePrimaryButton(const Phrase& text) {
    QPushButton* const button = makeButton(text);
    ControlStyle::setPrimary(*button);
    return button;
}

QPushButton* makeLink(const Phrase& text) {
    auto* const button = new QPushButton(translated(text));
    button->setFlat(true);
    button->setCursor(Qt::PointingHandCursor);
    return finished(button);
}

QPushButton* makeSymbolButton(const QString& name, std::string_view symbol) {
    auto* const button = new QPushButton;
    button->setAccessibleName(name);
    button->setToolTip(name);
    ControlStyle::setSymbol(*button, symbol);
    return finished(button);
}

QRadioButton* makeSegment(std::string_view symbol, const Phrase& title) {
    auto* const button = new QRadioButton(translated(title));
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    ControlStyle::setSymbol(*button, symbol);
    ControlStyle::applyTo(*button);
    return button;
}

QSpinBox* makeStepper(int minimum, int maximum) {
    auto* const box = new QSpinBox;
    box->setRange(minimum, maximum);
    box->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    box->setContextMenuPolicy(Qt::NoContextMenu);
    ControlStyle::applyTo(*box);
    // The style paints the number, because the text field would accept incomplete numbers.
    auto* const field = box->findChild<QLineEdit*>();
    field->setReadOnly(true);
    field->hide();
    return box;
}

SwitchRow::SwitchRow(const Phrase& text) : QCheckBox(translated(text)) {
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    ControlStyle::applyTo(*this);
}

QSize SwitchRow::minimumSizeHint() const {
    constexpr int narrowestText = 120;
    QStyleOptionButton option;
    initStyleOption(&option);
    return style()->sizeFromContents(QStyle::CT_CheckBox, &option, QSize(narrowestText, 0), this);
}

int SwitchRow::heightForWidth(int width) const {
    QStyleOptionButton option;
    initStyleOption(&option);
    option.rect = QRect(0, 0, width, group_metrics::rowHeight);
    const int textWidth = style()->subElementRect(QStyle::SE_CheckBoxContents, &option, this).width();
    const int textHeight = fontMetrics().boundingRect(QRect(0, 0, textWidth, 1), Qt::TextWordWrap, text()).height();
    return std::max(group_metrics::rowHeight, textHeight + 2 * group_metrics::rowPadding);
}

namespace {

/// The value is a readable text as well, because screen readers on Linux get it no other way.
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
    setSizeAdjustPolicy(AdjustToContents);
    // Qt itself ignores a factory that is installed already.
    QAccessible::installFactory(makeInterface);
    // Announce the new value: the toolkit announces only a new name.
    connect(this, &QComboBox::currentIndexChanged, this, [this] {
        QAccessibleValueChangeEvent event(this, currentText());
        QAccessible::updateAccessibility(&event);
    });
    ControlStyle::applyTo(*this);
    adopt();
}

void ChoiceBox::adopt() {
    const UtilityTheme theme = UtilityTheme::current();
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

bool ChoiceBox::event(QEvent* event) {
    const bool isHandled = QComboBox::event(event);
    if (event->type() == QEvent::ApplicationFontChange || event->type() == QEvent::ApplicationPaletteChange ||
        event->type() == QEvent::PaletteChange) {
        adopt();
    }
    return isHandled;
}

}  // namespace ferrowyn
