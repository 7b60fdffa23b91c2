#pragma once

#include <QElapsedTimer>
#include <QImage>
#include <QTimer>
#include <QVariantAnimation>
#include <QWidget>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/published.h"
#include "core/switcher_view_model.h"
#include "core/texts.h"
#include "input/switcher_panel.h"
#include "platform/panel.h"
#include "ui/panel/accessible_switcher_view.h"
#include "ui/panel/panel_scene.h"

namespace ferrowyn {

class Preferences;

/// The content of the switcher panel: shows what the view model publishes, reports what the pointer does, and decides
/// nothing. It fills the size that it is given. While it is hidden it runs no timer and changes of the model cost next
/// to nothing. Main thread; the panel owns it.
class SwitcherView final : public QWidget, public PanelContent {
    Q_OBJECT

public:
    /// All references outlive the view.
    SwitcherView(SwitcherViewModel& viewModel, Preferences& preferences, const TextTable& texts,
                 SwitcherContentCallbacks callbacks);
    ~SwitcherView() override;

    [[nodiscard]] QWidget* widget() override { return this; }
    void synchronize() override;
    void setBackground(PanelBackground background) override;
    void renderPreview(QImage& target) override;
    [[nodiscard]] bool matchesPreview() const override;

    /// For tests and benchmarks: how many rows the last frame painted, and how many lines of text were shaped since the
    /// view was made.
    [[nodiscard]] int paintedRowCount() const { return paintedRowCount_; }
    [[nodiscard]] int shapedLineCount() const { return lines_.shapedLineCount(); }
    [[nodiscard]] const Theme& theme() const { return theme_; }
    [[nodiscard]] bool isAnimating() const;
    [[nodiscard]] double scroll() const { return scroll_; }
    [[nodiscard]] const QVariantAnimation& scrollAnimation() const { return scrollAnimation_; }

    /// For accessibility: what is shown and where, in the widget's coordinates.
    [[nodiscard]] const SwitcherViewModel& viewModel() const { return viewModel_; }
    [[nodiscard]] const TextTable& texts() const { return texts_; }
    [[nodiscard]] SwitcherLayout layoutMode() const;
    /// Whether releasing the trigger does not switch.
    [[nodiscard]] bool staysOpen() const;
    [[nodiscard]] bool showsRows() const { return scene().showsRows(); }
    [[nodiscard]] const PanelGeometry& geometryNow() const { return geometry_; }
    [[nodiscard]] Rect rowRect(int index) const { return geometry_.row(index, scroll_); }
    [[nodiscard]] Rect permissionButtonRect();
    void activateRow(int index);
    void toggleFavourite(int index);
    void requestPermissions();

    /// For tests: replaces the toolkit's accessibility bridge, which is active only on some platforms and while a
    /// client listens.
    void setAnnouncer(AccessibilityAnnouncer announcer) { announcer_ = std::move(announcer); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    /// What a press or a click can hit.
    struct Target {
        enum class Kind { nothing, row, favouriteButton, permissionButton };
        Kind kind = Kind::nothing;
        int row = -1;
        friend bool operator==(const Target&, const Target&) = default;
    };

    void subscribe();
    void modelChanged();
    void applyModel();
    void resetTransientState();
    void updateGeometry();
    void loadTheme();
    void reloadTheme();
    [[nodiscard]] PanelScene scene() const;
    /// The first frame of a session with these rows.
    [[nodiscard]] PanelScene firstFrame(const std::vector<SwitcherViewModel::Row>& rows, int selectedIndex,
                                        const Size& size) const;
    [[nodiscard]] PaintContext paintContext(double devicePixelRatio);
    void scrollToSelection(bool isAnimated);
    /// Limits the position to what the rows allow; there may be fewer of them than before.
    void setScroll(double scroll);
    void restartCaret();
    void caretTick();
    [[nodiscard]] Target targetAt(const QPointF& position);
    void setButtonHovered(bool isHovered);
    void announceChanges(bool rowsChanged, bool selectionChanged);

    SwitcherViewModel& viewModel_;
    Preferences& preferences_;
    const TextTable& texts_;
    SwitcherContentCallbacks callbacks_;

    PanelBackground background_ = PanelBackground::opaque;
    Theme theme_;
    TextLines lines_;
    SymbolImages symbols_;
    IconImages icons_;

    PanelGeometry geometry_;
    bool isStale_ = true;
    bool rowsAreStale_ = true;
    int shownSelection_ = -1;
    int shownToken_ = -1;
    std::string shownQuery_;

    double scroll_ = 0;
    QVariantAnimation scrollAnimation_;
    QTimer caretTimer_;
    QElapsedTimer caretClock_;
    double caretOpacity_ = 1;

    Target pressed_;
    bool isButtonHovered_ = false;

    AccessibilityAnnouncer announcer_;
    std::optional<PreviewRecord> preview_;
    int paintedRowCount_ = 0;
    std::vector<Subscription> subscriptions_;
};

/// Makes the content that the switcher controller hands to the panel, with this desktop's texts. The table outlives
/// the content. Main thread.
[[nodiscard]] SwitcherContentFactory switcherContentFactory(const TextTable& texts);

}  // namespace ferrowyn
