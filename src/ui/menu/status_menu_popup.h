#pragma once

#include <QPoint>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <optional>

#include "core/texts.h"
#include "platform/status_item.h"
#include "ui/menu/menu_geometry.h"
#include "ui/menu/menu_row_views.h"

namespace ferrowyn {

/// The menu, as a popup beside the tray icon. It paints a `StatusMenu` and reports the chosen row. Each opening makes a
/// new one. Main thread.
class StatusMenuPopup final : public QWidget {
    Q_OBJECT

public:
    /// `texts` outlives the popup. A translucent popup has round corners and needs a compositor.
    StatusMenuPopup(StatusMenu menu, const TextTable& texts, bool isTranslucent);
    ~StatusMenuPopup() override;

    /// Replaces the rows, also while the popup is open. The selection stays on the row with the same action.
    void setMenu(StatusMenu menu);
    /// Opens beside this rectangle, which is in the toolkit's coordinates.
    void popUp(const QRect& anchor);

    /// Called once, after the popup has closed, with the row that was chosen; for the header it is `openSettings`.
    void setChosenHandler(std::function<void(const MenuRow&)> handler) { onChosen_ = std::move(handler); }
    /// Called when the popup has closed, for whatever reason and before the chosen handler.
    void setClosedHandler(std::function<void()> handler) { onClosed_ = std::move(handler); }

    /// For accessibility and tests: what is shown and where, in the widget's coordinates.
    [[nodiscard]] const StatusMenu& menu() const { return menu_; }
    [[nodiscard]] const MenuRow& rowAt(int index) const { return menu_.at(static_cast<std::size_t>(index)); }
    [[nodiscard]] const MenuGeometry& geometryNow() const { return geometry_; }
    /// The row's rectangle now: the menu scrolls on a screen that is too small for it.
    [[nodiscard]] Rect rowRect(int index) const;
    /// The rectangle of a header's gear now.
    [[nodiscard]] Rect gearRect(int header) const;
    [[nodiscard]] std::optional<int> rowUnder(const QPointF& position) const;
    [[nodiscard]] const MenuColors& colors() const { return colors_; }
    [[nodiscard]] const TextTable& texts() const { return texts_; }
    [[nodiscard]] bool isHoveringGear() const { return header_.isHoveringGear(); }
    /// The row that the pointer or the keyboard has selected.
    [[nodiscard]] std::optional<int> selectedRow() const { return selected_; }
    /// Whether the row can be chosen: enabled items, and the header for its gear.
    [[nodiscard]] bool isSelectable(int index) const;
    void select(std::optional<int> index);
    /// Closes the popup and reports the row. Does nothing when the row cannot be chosen.
    void choose(int index);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;

private:
    void reloadTheme();
    void layOut();
    void place();
    [[nodiscard]] PaintContext paintContext(double devicePixelRatio);
    [[nodiscard]] std::optional<int> itemUnder(const QPointF& position) const;
    void pointTo(const QPointF& position);
    void moveSelection(int step);
    void selectEdge(int step);
    void typeAhead(const QString& text);
    [[nodiscard]] std::optional<int> rowWithKey(const QKeyEvent& event) const;
    void showToolTip(const QPoint& position, const QPoint& globalPosition);
    void takeInput();
    void scrollTo(double scroll);
    void scrollToSelection();

    StatusMenu menu_;
    const TextTable& texts_;
    bool isTranslucent_;
    std::function<void(const MenuRow&)> onChosen_;
    std::function<void()> onClosed_;

    Theme theme_;
    MenuColors colors_;
    MenuGeometry geometry_;
    MenuHeaderView header_;
    TextLines lines_;
    SymbolImages symbols_;
    IconImages icons_;

    QRect anchor_;
    double scroll_ = 0;
    std::optional<int> selected_;
    /// Whether the arrow keys, not the pointer, chose the row.
    bool isSelectedByKeyboard_ = false;
    /// The position of the pointer when the popup opened. Small motions away from it do not count.
    QPoint pointerAtShow_;
    /// Whether releasing the button chooses a row: it was pressed in the popup, or dragged into it from the icon.
    bool isArmed_ = false;
    /// Repeats the grab while the tray still holds the input.
    QTimer inputTimer_;
    int inputRetriesLeft_ = 0;
};

}  // namespace ferrowyn
