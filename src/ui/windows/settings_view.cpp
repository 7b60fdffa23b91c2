#include "ui/windows/settings_view.h"

#include <QEvent>
#include <QFontMetricsF>
#include <QHBoxLayout>
#include <QPainter>
#include <QStackedWidget>
#include <QStyledItemDelegate>
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "core/texts.h"
#include "platform/platform.h"
#include "ui/common/colors.h"
#include "ui/common/images.h"
#include "ui/common/text_line.h"
#include "ui/common/translation.h"
#include "ui/windows/favourites_pane.h"
#include "ui/windows/settings_panes.h"
#include "ui/windows/utility_theme.h"

namespace ferrowyn {

namespace {

constexpr int sideMargin = 10;
constexpr int topMargin = 14;
constexpr int rowHeight = 30;
constexpr double rowGap = 1;
constexpr double cornerRadius = 6;
constexpr double symbolCentre = 18;
constexpr double symbolPoints = 13;
constexpr double textLeft = 35;
constexpr double textRight = 8;

SettingsPane paneAt(int row) {
    return allSettingsPanes[static_cast<std::size_t>(std::max(row, 0))];
}

/// Paints a row of the toolkit's list. No other control looks like it, so it is not in `ControlStyle`.
class RowDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& /*index*/) const override {
        constexpr int aroundText = 12;
        return {SettingsSidebar::barWidth - 2 * sideMargin,
                std::max(rowHeight, option.fontMetrics.height() + aroundText)};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const UtilityTheme theme = UtilityTheme::current();
        const auto& list = *static_cast<const QWidget*>(option.widget);
        const QRectF row = QRectF(option.rect).adjusted(0, rowGap, 0, -rowGap);
        const bool isSelected = option.state.testFlag(QStyle::State_Selected);
        const bool isActive = isSelected && list.window()->isActiveWindow();
        painter->setPen(Qt::NoPen);
        if (isSelected) {
            painter->setBrush(isActive ? theme.accent : theme.selectionInactive);
            painter->drawRoundedRect(row, cornerRadius, cornerRadius);
        } else if (option.state.testFlag(QStyle::State_MouseOver)) {
            painter->setBrush(theme.rowHovered);
            painter->drawRoundedRect(row, cornerRadius, cornerRadius);
        }
        const QColor ink = isActive ? theme.accentText : theme.textPrimary;
        const bool isMirrored = list.isRightToLeft();
        symbols_.paint(*painter, symbol(paneAt(index.row())),
                       isMirrored ? row.right() - symbolCentre : row.left() + symbolCentre, row.center().y(),
                       symbolPoints, ink, SymbolWeight::regular);
        const QRectF textRect =
            isMirrored ? row.adjusted(textRight, 0, -textLeft, 0) : row.adjusted(textLeft, 0, -textRight, 0);
        control_painting::paintText(*painter, list, textRect, index.data(Qt::DisplayRole).toString(), list.font(), ink);
        if (isSelected && control_painting::showsFocus(list)) {
            constexpr double inset = 4;
            control_painting::paintFocusRing(*painter, row.adjusted(inset, inset, -inset, -inset), cornerRadius - 3,
                                             theme.accentText);
        }
        painter->restore();
    }

private:
    mutable SymbolImages symbols_;
};

}  // namespace

SettingsSidebar::SettingsSidebar(const UtilityTexts& texts) {
    for (const auto pane : allSettingsPanes) {
        addItem(translated(title(pane, texts)));
    }
    setItemDelegate(new RowDelegate(this));
    setFrameShape(QFrame::NoFrame);
    setViewportMargins(sideMargin, topMargin, sideMargin, 0);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMouseTracking(true);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(SingleSelection);
    viewport()->setAutoFillBackground(false);
    setAttribute(Qt::WA_MacShowFocusRect, false);
    setAccessibleName(translated(texts.settings.sidebarName));
    adopt();
    select(SettingsPane::general);
}

void SettingsSidebar::adopt() {
    setFont(fontFor(TextStyle::body));
    QPalette own;
    own.setColor(QPalette::Base, Qt::transparent);
    own.setColor(QPalette::Window, Qt::transparent);
    setPalette(own);

    double widest = 0;
    for (int row = 0; row < count(); ++row) {
        widest = std::max(widest, QFontMetricsF(font()).horizontalAdvance(item(row)->text()));
    }
    const int needed = static_cast<int>(std::ceil(widest + textLeft + textRight)) + 2 * sideMargin;
    setFixedWidth(std::clamp(needed, barWidth, widestBar));
}

SettingsPane SettingsSidebar::selection() const {
    return paneAt(currentRow());
}

void SettingsSidebar::select(SettingsPane pane) {
    const auto* const found = std::ranges::find(allSettingsPanes, pane);
    setCurrentRow(static_cast<int>(found - allSettingsPanes.begin()));
}

QItemSelectionModel::SelectionFlags SettingsSidebar::selectionCommand(const QModelIndex& index,
                                                                      const QEvent* /*event*/) const {
    // Otherwise a click beside the rows, or one with Control, would select nothing.
    return index.isValid() ? QItemSelectionModel::ClearAndSelect : QItemSelectionModel::NoUpdate;
}

bool SettingsSidebar::event(QEvent* event) {
    const bool isHandled = QListWidget::event(event);
    if (event->type() == QEvent::ApplicationFontChange) {
        adopt();
    } else if (event->type() == QEvent::WindowActivate || event->type() == QEvent::WindowDeactivate) {
        viewport()->update();
    }
    return isHandled;
}

void SettingsSidebar::focusInEvent(QFocusEvent* event) {
    QListWidget::focusInEvent(event);
    viewport()->update();
}

void SettingsSidebar::focusOutEvent(QFocusEvent* event) {
    QListWidget::focusOutEvent(event);
    viewport()->update();
}

namespace {

constexpr QSize firstSize(720, 500);
constexpr QSize leastSize(560, 340);

}  // namespace

SettingsView::SettingsView(const Platform& platform, const SettingsServices& services) {
    const UtilityTexts& texts = platform.texts.utility;
    sidebar_ = new SettingsSidebar(texts);
    panes_ = new QStackedWidget;
    // In the order of the sidebar.
    panes_->addWidget(new GeneralPane(texts, services));
    panes_->addWidget(new ShortcutPane(platform.texts, services.preferences));
    panes_->addWidget(new AppearancePane(texts, services.preferences));
    panes_->addWidget(new WindowsPane(texts, services.preferences));
    panes_->addWidget(new FavouritesPane(platform, services));
    panes_->addWidget(new AboutPane(platform));

    auto* const line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(1);
    line->addWidget(sidebar_);
    line->addWidget(panes_, 1);
    connect(sidebar_, &QListWidget::currentRowChanged, panes_, &QStackedWidget::setCurrentIndex);
    setFocusProxy(sidebar_);
}

SettingsView::~SettingsView() = default;

SettingsPane SettingsView::selection() const {
    return sidebar_->selection();
}

void SettingsView::select(SettingsPane pane) {
    sidebar_->select(pane);
}

QSize SettingsView::sizeHint() const {
    return firstSize.expandedTo(minimumSizeHint());
}

QSize SettingsView::minimumSizeHint() const {
    // The panes scroll only vertically.
    return leastSize.expandedTo(layout()->minimumSize());
}

void SettingsView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const UtilityTheme theme = UtilityTheme::current();
    painter.fillRect(rect(), theme.ground);
    const QRectF sidebar(sidebar_->x(), 0, sidebar_->width(), height());
    painter.fillRect(sidebar, theme.sidebar);
    const double line = hairline::width(painter.deviceTransform().m11());
    painter.fillRect(QRectF(isRightToLeft() ? sidebar.left() - line : sidebar.right(), 0, line, height()),
                     theme.hairline);
}

}  // namespace ferrowyn
