#include "ui/status_menu_popup.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <utility>

#include "core/texts.h"
#include "ui/accessible_status_menu.h"
#include "ui/display_text.h"
#include "ui/menu_placement.h"
#include "ui/menu_row_view.h"
#include "ui/translated.h"

namespace ferrowyn {

namespace {

constexpr double cornerRadius = 10;
/// Longer titles are elided: a menu is no page.
constexpr double widestMenu = 420;
constexpr double unboundedWidth = 10000;

double neededHeaderWidth(const MenuHeader& header, TextLines& lines) {
    const auto width = [&](const std::string& text, TextStyle style) {
        return lines.line(display_text::singleLine(text), style, unboundedWidth).width();
    };
    const double room = MenuGeometry::minimumWidth -
                        MenuHeaderView::titleRect({0, 0, MenuGeometry::minimumWidth, MenuGeometry::headerHeight}).width;
    return std::ceil(room + std::max(width(header.title, TextStyle::menuHeaderTitle),
                                     width(header.subtitle, TextStyle::menuHeaderSubtitle)));
}

bool doTheSame(const MenuRow& one, const MenuRow& other) {
    return one.kind == other.kind && one.action == other.action && one.representedValue == other.representedValue;
}

}  // namespace

StatusMenuPopup::StatusMenuPopup(StatusMenu menu, const TextTable& texts, bool isTranslucent)
    : QWidget(nullptr, Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint),
      menu_(std::move(menu)),
      texts_(texts),
      isTranslucent_(isTranslucent) {
    installStatusMenuAccessibility();
    const auto name = translated(texts_.statusItem.programName);
    setWindowTitle(name);
    setAccessibleName(name);
    setAttribute(Qt::WA_X11NetWmWindowTypePopupMenu);
    setAttribute(isTranslucent_ ? Qt::WA_TranslucentBackground : Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    QObject::connect(&inputTimer_, &QTimer::timeout, this, [this] { takeInput(); });
    QObject::connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this](const QWindow* focused) {
        if (isVisible() && focused != nullptr && focused != windowHandle()) {
            close();
        }
    });
    reloadTheme();
    layOut();
}

StatusMenuPopup::~StatusMenuPopup() = default;

void StatusMenuPopup::setMenu(StatusMenu menu) {
    std::optional<int> selected;
    if (selected_) {
        const auto same = std::find_if(menu.begin(), menu.end(),
                                       [this](const MenuRow& row) { return doTheSame(row, rowAt(*selected_)); });
        if (same != menu.end()) {
            selected = static_cast<int>(same - menu.begin());
        }
    }
    menu_ = std::move(menu);
    selected_.reset();
    layOut();
    if (isVisible()) {
        place();
    }
    if (selected && isSelectable(*selected)) {
        selected_ = selected;
    }
    update();
    QAccessibleEvent reordered(this, QAccessible::ObjectReorder);
    QAccessible::updateAccessibility(&reordered);
}

void StatusMenuPopup::popUp(const QRect& anchor) {
    anchor_ = anchor;
    place();
    show();
}

bool StatusMenuPopup::isSelectable(int index) const {
    if (index < 0 || index >= geometry_.rowCount()) {
        return false;
    }
    const MenuRow& row = rowAt(index);
    return row.kind == MenuRow::Kind::header || (row.kind == MenuRow::Kind::item && row.isEnabled);
}

void StatusMenuPopup::select(std::optional<int> index) {
    if (index && !isSelectable(*index)) {
        index.reset();
    }
    if (std::exchange(selected_, index) == index) {
        return;
    }
    update();
    if (index) {
        scrollToSelection();
        announceSelectedRow(*this, *index);
    }
}

void StatusMenuPopup::choose(int index) {
    if (!isSelectable(index)) {
        return;
    }
    MenuRow row = rowAt(index);
    if (row.kind == MenuRow::Kind::header) {
        row.action = MenuRow::Action::openSettings;
    }
    const auto handler = std::exchange(onChosen_, nullptr);
    close();
    if (handler) {
        handler(row);
    }
}

void StatusMenuPopup::reloadTheme() {
    theme_ = Theme::fromPalette(palette(), isTranslucent_);
    colors_ = MenuColors::fromTheme(theme_);
    update();
}

void StatusMenuPopup::layOut() {
    const PaintContext context = paintContext(devicePixelRatioF());
    double width = MenuGeometry::minimumWidth;
    for (const auto& row : menu_) {
        const bool isHeader = row.kind == MenuRow::Kind::header;
        width =
            std::max(width, isHeader ? neededHeaderWidth(row.header, lines_) : MenuRowView{row}.neededWidth(context));
    }
    geometry_ = MenuGeometry(menu_, std::min(width, widestMenu));
    resize(static_cast<int>(std::ceil(geometry_.width())), static_cast<int>(std::ceil(geometry_.height())));
}

void StatusMenuPopup::place() {
    const QScreen* screen = QGuiApplication::screenAt(anchor_.isEmpty() ? anchor_.topLeft() : anchor_.center());
    screen = screen != nullptr ? screen : QGuiApplication::primaryScreen();
    if (screen == nullptr) {
        return;
    }
    const Rect available = fromQt(screen->availableGeometry());
    const Size size{geometry_.width(), std::min(geometry_.height(), available.height)};
    setGeometry(toQt(menuPlacement(fromQt(anchor_), size, fromQt(screen->geometry()), available)).toRect());
    scrollTo(scroll_);
}

Rect StatusMenuPopup::rowRect(int index) const {
    Rect rect = geometry_.row(index);
    rect.y -= scroll_;
    return rect;
}

Rect StatusMenuPopup::gearRect(int header) const {
    const Rect row = rowRect(header);
    const Rect gear = MenuHeaderView::gearArea(row);
    return isRightToLeft() ? MenuGeometry::mirrored(row, gear) : gear;
}

std::optional<int> StatusMenuPopup::rowUnder(const QPointF& position) const {
    return geometry_.rowAt({position.x(), position.y() + scroll_});
}

void StatusMenuPopup::scrollTo(double scroll) {
    const double most = std::max(geometry_.height() - height(), 0.0);
    const double kept = std::clamp(scroll, 0.0, most);
    if (std::exchange(scroll_, kept) != kept) {
        update();
    }
}

void StatusMenuPopup::scrollToSelection() {
    if (selected_) {
        const Rect row = geometry_.row(*selected_);
        const double below = row.maxY() + MenuGeometry::padding - height();
        scrollTo(std::min(std::max(scroll_, below), row.minY() - MenuGeometry::padding));
    }
}

PaintContext StatusMenuPopup::paintContext(double devicePixelRatio) {
    return {theme_, texts_, lines_, symbols_, icons_, devicePixelRatio, isRightToLeft()};
}

void StatusMenuPopup::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double scale = painter.deviceTransform().m11();
    // The outline lies on whole device pixels.
    const double half = 0.5 / scale;
    const QRectF frame = QRectF(rect()).adjusted(half, half, -half, -half);
    painter.setPen(QPen(colors_.edge, 2 * half));
    painter.setBrush(colors_.background);
    if (isTranslucent_) {
        painter.drawRoundedRect(frame, cornerRadius, cornerRadius);
    } else {
        painter.drawRect(frame);
    }
    const PaintContext context = paintContext(scale);
    for (int index = 0; index < geometry_.rowCount(); ++index) {
        const MenuRow& row = rowAt(index);
        const bool isSelected = selected_ == index;
        if (row.kind == MenuRow::Kind::header) {
            header_.paint(painter, rowRect(index), row.header, isSelected && isSelectedByKeyboard_, colors_, context);
        } else {
            MenuRowView{row, isSelected}.paint(painter, rowRect(index), colors_, context);
        }
    }
}

void StatusMenuPopup::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ApplicationPaletteChange) {
        reloadTheme();
    } else if (event->type() == QEvent::FontChange || event->type() == QEvent::ApplicationFontChange) {
        lines_.clear();
        layOut();
    }
    QWidget::changeEvent(event);
}

}  // namespace ferrowyn
