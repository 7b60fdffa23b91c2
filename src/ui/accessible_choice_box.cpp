#include "ui/accessible_choice_box.h"

#include <QAbstractItemView>
#include <QAccessibleWidget>

#include "ui/choice_box.h"

namespace ferrowyn {

namespace {

/// What is chosen as a text that can be read, for there is no other way to tell screen readers on Linux of it.
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

void installChoiceBoxAccessibility() {
    // Qt itself ignores a factory that is installed already.
    QAccessible::installFactory(makeInterface);
}

}  // namespace ferrowyn
