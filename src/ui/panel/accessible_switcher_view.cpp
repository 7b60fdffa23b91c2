#include "ui/panel/accessible_switcher_view.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QStringList>
#include <algorithm>
#include <compare>
#include <map>

#include "core/window_presentation.h"
#include "ui/common/accessibility.h"
#include "ui/common/display_text.h"
#include "ui/panel/row_views.h"
#include "ui/panel/switcher_view.h"

namespace ferrowyn {

/// A row, a group header or the message in place of rows, for assistive technology. It reads the view each time it is
/// asked. Main thread.
class AccessibleItem final : public AccessibleLeaf {
public:
    enum class Kind { row, header, message };
    struct Key {
        Kind kind = Kind::row;
        /// The row itself or, for a header, the row below it.
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

namespace {

const SwitcherViewModel::Row& rowAt(const SwitcherView& view, int index) {
    return view.viewModel().rows.get().at(static_cast<std::size_t>(index));
}

}  // namespace

bool AccessibleItem::isValid() const {
    if (key_.kind == Kind::message) {
        return !view_.showsRows();
    }
    // The geometry may lag behind the rows: both must contain the row.
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
                return display_text::fromUtf8(WindowPresentation::favouriteAccessibilityText);
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
                return display_text::fromUtf8(view_.texts().permissionTitle) + QStringLiteral(". ") +
                       display_text::fromUtf8(view_.texts().permissionExplanation);
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
        return display_text::fromUtf8(view_.texts().permissionButton);
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
        return display_text::fromUtf8(WindowPresentation::favouriteLabel(rowAt(view_, key_.row).isFavourite));
    }
    return QAccessibleActionInterface::localizedActionName(name);
}

namespace {

/// The panel's content for assistive technology: a list. Its children are made on request and live as long as the list.
/// Group headers stand among the rows, in reading order.
class AccessibleSwitcherView final : public QAccessibleWidget {
public:
    explicit AccessibleSwitcherView(SwitcherView& view) : QAccessibleWidget(&view, QAccessible::List), view_(view) {}
    ~AccessibleSwitcherView() override {
        for (const auto& [key, id] : items_) {
            QAccessible::deleteAccessibleInterface(id);
        }
    }
    AccessibleSwitcherView(const AccessibleSwitcherView&) = delete;
    AccessibleSwitcherView& operator=(const AccessibleSwitcherView&) = delete;

    int childCount() const override {
        if (!view_.showsRows()) {
            return 1;
        }
        return view_.geometryNow().rowCount() + view_.geometryNow().headerCount();
    }

    QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= childCount()) {
            return nullptr;
        }
        return item(keyAt(index));
    }

    int indexOfChild(const QAccessibleInterface* child) const override {
        const auto* const candidate = dynamic_cast<const AccessibleItem*>(child);
        if (candidate == nullptr || !candidate->isValid()) {
            return -1;
        }
        const auto [kind, row] = candidate->key();
        if (kind == AccessibleItem::Kind::message) {
            return 0;
        }
        const PanelGeometry& geometry = view_.geometryNow();
        return row + geometry.headersUpTo(row) - (kind == AccessibleItem::Kind::header ? 1 : 0);
    }

    QAccessibleInterface* childAt(int x, int y) const override {
        if (!view_.showsRows()) {
            QAccessibleInterface* const message = child(0);
            return message->rect().contains(x, y) ? message : nullptr;
        }
        const QPointF local = view_.mapFromGlobal(QPointF(x, y));
        const Point point{local.x(), local.y()};
        const PanelGeometry& geometry = view_.geometryNow();
        if (const auto row = geometry.rowAt(point, view_.scroll())) {
            return rowItem(*row);
        }
        return geometry.body().contains(point) ? headerAt(point) : nullptr;
    }

    QAccessibleInterface* focusChild() const override { return rowItem(view_.viewModel().selectedIndex.get()); }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.focusable = true;
        return state;
    }

    [[nodiscard]] QAccessibleInterface* rowItem(int row) const {
        const bool exists = view_.showsRows() && row >= 0 && row < view_.geometryNow().rowCount();
        return exists ? item({AccessibleItem::Kind::row, row}) : nullptr;
    }

private:
    /// Looks only at the visible rows: screen readers ask at every motion of the pointer, and there may be thousands of
    /// rows.
    [[nodiscard]] QAccessibleInterface* headerAt(const Point& point) const {
        const auto [first, last] = view_.geometryNow().visibleRows(view_.scroll());
        for (int row = first; row < last; ++row) {
            const auto header = view_.geometryNow().header(row, view_.scroll());
            if (header && header->contains(point)) {
                return item({AccessibleItem::Kind::header, row});
            }
        }
        return nullptr;
    }

    [[nodiscard]] AccessibleItem::Key keyAt(int index) const {
        if (!view_.showsRows()) {
            return {AccessibleItem::Kind::message, 0};
        }
        const PanelGeometry& geometry = view_.geometryNow();
        // Finds the first row at this index or after it. The index before a row may be that of its header.
        int low = 0;
        int high = geometry.rowCount() - 1;
        while (low < high) {
            const int middle = low + (high - low) / 2;
            if (middle + geometry.headersUpTo(middle) >= index) {
                high = middle;
            } else {
                low = middle + 1;
            }
        }
        const bool isRow = low + geometry.headersUpTo(low) == index;
        return {isRow ? AccessibleItem::Kind::row : AccessibleItem::Kind::header, low};
    }

    [[nodiscard]] QAccessibleInterface* item(const AccessibleItem::Key& key) const {
        const auto found = items_.find(key);
        if (found != items_.end()) {
            return QAccessible::accessibleInterface(found->second);
        }
        auto* const made = new AccessibleItem(view_, key);  // NOLINT: Qt's registry owns it from the next line on.
        items_.emplace(key, QAccessible::registerAccessibleInterface(made));
        return made;
    }

    SwitcherView& view_;
    mutable std::map<AccessibleItem::Key, QAccessible::Id> items_;
};

QAccessibleInterface* makeInterface(const QString& className, QObject* object) {
    if (className != QLatin1String(SwitcherView::staticMetaObject.className())) {
        return nullptr;
    }
    auto* const view = qobject_cast<SwitcherView*>(object);
    return view == nullptr ? nullptr : new AccessibleSwitcherView(*view);  // NOLINT: Qt takes ownership.
}

}  // namespace

void installSwitcherAccessibility() {
    // Qt ignores a factory that is already installed.
    QAccessible::installFactory(makeInterface);
}

void announceSwitcherChanges(SwitcherView& view, bool rowsChanged, bool selectionChanged,
                             const AccessibilityAnnouncer& announce) {
    if (rowsChanged) {
        QAccessibleEvent reordered(&view, QAccessible::ObjectReorder);
        announce(reordered);
    }
    const auto* const list = dynamic_cast<AccessibleSwitcherView*>(QAccessible::queryAccessibleInterface(&view));
    if (!selectionChanged || list == nullptr) {
        return;
    }
    if (QAccessibleInterface* const row = list->rowItem(view.viewModel().selectedIndex.get())) {
        // Screen readers speak the focused item. The panel itself never has the keyboard focus.
        QAccessibleEvent selected(row, QAccessible::Selection);
        announce(selected);
        QAccessibleEvent focused(row, QAccessible::Focus);
        announce(focused);
    }
}

}  // namespace ferrowyn
