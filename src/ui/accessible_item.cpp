#include "ui/accessible_item.h"

#include <QStringList>

#include "core/window_presentation.h"
#include "ui/display_text.h"
#include "ui/row_title.h"
#include "ui/switcher_view.h"

namespace ferrowyn {

namespace {

QString fromView(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

const SwitcherViewModel::Row& rowAt(const SwitcherView& view, int index) {
    return view.viewModel().rows.get().at(static_cast<std::size_t>(index));
}

}  // namespace

bool AccessibleItem::isValid() const {
    if (key_.kind == Kind::message) {
        return !view_.showsRows();
    }
    // The geometry may be behind the rows for a moment: both must know the row.
    const auto rows = static_cast<int>(view_.viewModel().rows.get().size());
    return view_.showsRows() && key_.row < rows && key_.row < view_.geometryNow().rowCount() &&
           (key_.kind == Kind::row || view_.geometryNow().header(key_.row, 0).has_value());
}

QAccessibleInterface* AccessibleItem::parent() const {
    return QAccessible::queryAccessibleInterface(&view_);
}

QString AccessibleItem::text(QAccessible::Text kind) const {
    if (!isValid()) {
        return {};
    }
    switch (key_.kind) {
        case Kind::row:
            if (kind == QAccessible::Description && rowAt(view_, key_.row).isFavourite) {
                return fromView(WindowPresentation::favouriteAccessibilityText);
            }
            return kind == QAccessible::Name ? rowName() : QString();
        case Kind::header: {
            const auto& row = rowAt(view_, key_.row);
            if (kind == QAccessible::Description) {
                return display_text::singleLine(row.window->appName);
            }
            return kind == QAccessible::Name
                       ? QString::fromStdString(WindowPresentation::groupAccessibilityLabel(row.groupSize))
                       : QString();
        }
        case Kind::message:
            if (kind == QAccessible::Description && isPermissionButton()) {
                return fromView(view_.texts().permissionTitle) + QStringLiteral(". ") +
                       fromView(view_.texts().permissionExplanation);
            }
            return kind == QAccessible::Name ? messageName() : QString();
    }
    return {};
}

QString AccessibleItem::rowName() const {
    const auto& row = rowAt(view_, key_.row);
    QStringList parts{row_title::text(row.window), display_text::singleLine(row.window->appName)};
    if (const auto badge = WindowPresentation::badge(row.window, view_.texts())) {
        parts.append(QString::fromStdString(badge->text));
    }
    parts.append(QStringLiteral("%1 of %2").arg(key_.row + 1).arg(view_.viewModel().rows.get().size()));
    return parts.join(QStringLiteral(", "));
}

QString AccessibleItem::messageName() const {
    if (isPermissionButton()) {
        return fromView(view_.texts().permissionButton);
    }
    const auto state = WindowPresentation::emptyState(view_.viewModel().query.get());
    const QString title = display_text::singleLine(state.title);
    return state.detail.empty() ? title : title + QStringLiteral(". ") + display_text::singleLine(state.detail);
}

bool AccessibleItem::isPermissionButton() const {
    return key_.kind == Kind::message && !view_.viewModel().isAccessibilityTrusted.get();
}

QRect AccessibleItem::rect() const {
    if (!isValid()) {
        return {};
    }
    Rect place = view_.geometryNow().body();
    if (key_.kind == Kind::row) {
        place = view_.rowRect(key_.row);
    } else if (key_.kind == Kind::header) {
        place = view_.geometryNow().header(key_.row, view_.scroll()).value_or(place);
    } else if (isPermissionButton()) {
        place = view_.permissionButtonRect();
    }
    const QRect local = toQt(place).toAlignedRect();
    return {view_.mapToGlobal(local.topLeft()), local.size()};
}

QAccessible::Role AccessibleItem::role() const {
    switch (key_.kind) {
        case Kind::row:
            return QAccessible::ListItem;
        case Kind::header:
            return QAccessible::Heading;
        case Kind::message:
            return isPermissionButton() ? QAccessible::Button : QAccessible::StaticText;
    }
    return QAccessible::NoRole;
}

QAccessible::State AccessibleItem::state() const {
    QAccessible::State state;
    if (!isValid()) {
        state.invalid = true;
        return state;
    }
    if (key_.kind == Kind::row) {
        const bool isSelected = view_.viewModel().selectedIndex.get() == key_.row;
        state.selectable = true;
        state.focusable = true;
        state.selected = isSelected;
        state.focused = isSelected && view_.isVisible();
    }
    const QRect visible(view_.mapToGlobal(toQt(view_.geometryNow().body()).toAlignedRect().topLeft()),
                        toQt(view_.geometryNow().body()).toAlignedRect().size());
    state.offscreen = !visible.intersects(rect());
    state.invisible = !view_.isVisible();
    return state;
}

void* AccessibleItem::interface_cast(QAccessible::InterfaceType type) {
    const bool acts = key_.kind == Kind::row || isPermissionButton();
    return type == QAccessible::ActionInterface && acts ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
}

QStringList AccessibleItem::actionNames() const {
    if (!isValid()) {
        return {};
    }
    if (key_.kind == Kind::row) {
        return {pressAction(), toggleAction()};
    }
    return isPermissionButton() ? QStringList{pressAction()} : QStringList{};
}

void AccessibleItem::doAction(const QString& name) {
    if (!actionNames().contains(name)) {
        return;
    }
    if (isPermissionButton()) {
        view_.requestPermissions();
    } else if (name == pressAction()) {
        view_.activateRow(key_.row);
    } else {
        view_.toggleFavourite(key_.row);
    }
}

QString AccessibleItem::localizedActionName(const QString& name) const {
    if (name == toggleAction() && key_.kind == Kind::row && isValid()) {
        return fromView(WindowPresentation::favouriteLabel(rowAt(view_, key_.row).isFavourite));
    }
    return QAccessibleActionInterface::localizedActionName(name);
}

}  // namespace ferrowyn
