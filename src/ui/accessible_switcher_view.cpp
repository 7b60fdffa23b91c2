#include "ui/accessible_switcher_view.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <algorithm>
#include <map>

#include "core/window_presentation.h"
#include "ui/accessible_item.h"
#include "ui/display_text.h"
#include "ui/switcher_view.h"

namespace ferrowyn {

namespace {

/// The panel's content as assistive technology sees it: a list whose children are made when somebody asks for them and
/// live as long as the list. Group headers stand among the rows, in reading order.
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
    /// Only what can be seen is looked at: readers ask at every motion of the pointer, with thousands of rows or with
    /// few.
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
        // The first row that stands at this index or behind it; the place before it may be its header.
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
    // Qt itself ignores a factory that is installed already.
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
        // Focus is what screen readers speak; the panel itself never has the keyboard focus.
        QAccessibleEvent selected(row, QAccessible::Selection);
        announce(selected);
        QAccessibleEvent focused(row, QAccessible::Focus);
        announce(focused);
    }
}

}  // namespace ferrowyn
