#include "ui/accessible_choice_box.h"

#include <QAbstractItemView>
#include <QAccessibleWidget>

#include "ui/choice_box.h"

namespace ferrowyn {

namespace {

class AccessibleChoiceBox final : public QAccessibleWidget {
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
