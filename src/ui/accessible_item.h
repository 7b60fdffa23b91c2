#pragma once

#include <QAccessible>
#include <compare>

#include "ui/accessible_leaf.h"

namespace ferrowyn {

class SwitcherView;

/// A row, a group header, or what stands in the place of rows, as assistive technology sees it. It is no object of its
/// own: it reads the view whenever it is asked. Main thread.
class AccessibleItem final : public AccessibleLeaf {
public:
    enum class Kind { row, header, message };
    struct Key {
        Kind kind = Kind::row;
        /// The row, or the row under the header.
        int row = 0;
        friend auto operator<=>(const Key&, const Key&) = default;
    };

    AccessibleItem(SwitcherView& view, Key key) : view_(view), key_(key) {}

    [[nodiscard]] const Key& key() const { return key_; }

    [[nodiscard]] bool isValid() const override;
    [[nodiscard]] QAccessibleInterface* parent() const override;
    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    [[nodiscard]] QRect rect() const override;
    [[nodiscard]] QAccessible::Role role() const override;
    [[nodiscard]] QAccessible::State state() const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

    [[nodiscard]] QStringList actionNames() const override;
    void doAction(const QString& name) override;
    [[nodiscard]] QString localizedActionName(const QString& name) const override;
    [[nodiscard]] QStringList keyBindingsForAction(const QString& /*name*/) const override { return {}; }

private:
    [[nodiscard]] QString rowName() const;
    [[nodiscard]] QString messageName() const;
    [[nodiscard]] bool isPermissionButton() const;

    SwitcherView& view_;
    Key key_;
};

}  // namespace ferrowyn
