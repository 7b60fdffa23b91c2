#include "ui/menu/status_menu_popup.h"

#include <QAccessible>
#include <QApplication>
#include <QCursor>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QStyleHints>
#include <QToolTip>
#include <QWheelEvent>
#include <QWindow>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

#include "ui/common/display_text.h"
#include "ui/common/translation.h"
#include "ui/menu/accessible_status_menu.h"
#include "ui/menu/menu_geometry.h"
#include "ui/menu/menu_row_views.h"

namespace ferrowyn {

namespace {

constexpr double cornerRadius = 10;
/// Longer titles are elided.
constexpr double widestMenu = 420;

double neededHeaderWidth(const MenuHeader& header, TextLines& lines) {
    const auto width = [&](const std::string& text, TextStyle style) {
        return lines.line(display_text::singleLine(text), style, TextLine::unlimitedWidth).width();
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

namespace {

constexpr std::chrono::milliseconds inputRetryInterval{20};
/// Two seconds. After that the popup does without the input that it did not get.
constexpr int mostInputRetries = 100;

}  // namespace

void StatusMenuPopup::showEvent(QShowEvent* event) {
    pointerAtShow_ = QCursor::pos();
    isArmed_ = false;
    QWidget::showEvent(event);
    setFocus(Qt::PopupFocusReason);
    inputRetriesLeft_ = mostInputRetries;
    inputTimer_.start(inputRetryInterval);
    announceMenu(*this, true);
}

void StatusMenuPopup::hideEvent(QHideEvent* event) {
    inputTimer_.stop();
    QToolTip::hideText();
    if (QWindow* const window = windowHandle()) {
        window->setMouseGrabEnabled(false);
        window->setKeyboardGrabEnabled(false);
    }
    QWidget::hideEvent(event);
    announceMenu(*this, false);
    if (const auto handler = std::exchange(onClosed_, nullptr)) {
        handler();
    }
}

/// Some trays report the press while they still hold the pointer, and no event says when they release it, so this is
/// repeated. Without the pointer a click elsewhere would not close the menu; without the keyboard no key would reach
/// it. Each is taken alone, because another program, such as a password prompt, may hold only the keyboard.
void StatusMenuPopup::takeInput() {
    QWindow* const window = windowHandle();
    const bool isLast = --inputRetriesLeft_ <= 0;
    const bool hasPointer = window != nullptr && window->setMouseGrabEnabled(true);
    const bool hasKeyboard = window != nullptr && window->setKeyboardGrabEnabled(true);
    if (isLast || window == nullptr || (hasPointer && hasKeyboard)) {
        inputTimer_.stop();
    }
}

std::optional<int> StatusMenuPopup::itemUnder(const QPointF& position) const {
    const auto index = rowUnder(position);
    const bool isItem = index && rowAt(*index).kind == MenuRow::Kind::item && isSelectable(*index);
    return isItem ? index : std::nullopt;
}

void StatusMenuPopup::pointTo(const QPointF& position) {
    isSelectedByKeyboard_ = false;
    const auto under = rowUnder(position);
    bool isChanged = false;
    if (under && rowAt(*under).kind == MenuRow::Kind::header) {
        isChanged = header_.pointerMoved(gearRect(*under), {position.x(), position.y()});
    } else {
        isChanged = header_.pointerExited();
    }
    select(itemUnder(position));
    if (isChanged) {
        update();
    }
}

void StatusMenuPopup::mouseMoveEvent(QMouseEvent* event) {
    const QPoint moved = event->globalPosition().toPoint() - pointerAtShow_;
    if (!isArmed_ && moved.manhattanLength() < QGuiApplication::styleHints()->startDragDistance()) {
        return;
    }
    isArmed_ = true;
    pointTo(event->position());
}

void StatusMenuPopup::mousePressEvent(QMouseEvent* event) {
    if (!rect().contains(event->position().toPoint())) {
        close();
        return;
    }
    isArmed_ = true;
    pointTo(event->position());
}

void StatusMenuPopup::mouseReleaseEvent(QMouseEvent* event) {
    if (!isArmed_) {
        return;
    }
    const auto under = rowUnder(event->position());
    if (!under) {
        return;
    }
    const Point point{event->position().x(), event->position().y()};
    const bool isHeader = rowAt(*under).kind == MenuRow::Kind::header;
    if (!isHeader || gearRect(*under).contains(point)) {
        choose(*under);
    }
}

void StatusMenuPopup::wheelEvent(QWheelEvent* event) {
    scrollTo(scroll_ - event->angleDelta().y() / double{QWheelEvent::DefaultDeltasPerStep} * MenuGeometry::rowHeight);
    pointTo(event->position());
    event->accept();
}

void StatusMenuPopup::leaveEvent(QEvent* event) {
    if (header_.pointerExited()) {
        update();
    }
    if (!isSelectedByKeyboard_) {
        select(std::nullopt);
    }
    QWidget::leaveEvent(event);
}

bool StatusMenuPopup::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto* const help = static_cast<QHelpEvent*>(event);
        showToolTip(help->pos(), help->globalPos());
        return true;
    }
    // Keys belong to the menu: they are no shortcuts of other windows, and Tab does not move the focus.
    if (event->type() == QEvent::ShortcutOverride) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

void StatusMenuPopup::showToolTip(const QPoint& position, const QPoint& globalPosition) {
    const auto index = rowUnder(position);
    if (!index || rowAt(*index).tooltip.empty()) {
        QToolTip::hideText();
        return;
    }
    QToolTip::showText(globalPosition, display_text::singleLine(rowAt(*index).tooltip).toHtmlEscaped(), this,
                       toQt(rowRect(*index)).toRect());
}

void StatusMenuPopup::keyPressEvent(QKeyEvent* event) {
    event->accept();
    if (const auto row = rowWithKey(*event)) {
        choose(*row);
        return;
    }
    switch (event->key()) {
        case Qt::Key_Escape:
            close();
            return;
        case Qt::Key_Down:
        case Qt::Key_Tab:
            moveSelection(1);
            return;
        case Qt::Key_Up:
        case Qt::Key_Backtab:
            moveSelection(-1);
            return;
        case Qt::Key_Home:
        case Qt::Key_PageUp:
            selectEdge(1);
            return;
        case Qt::Key_End:
        case Qt::Key_PageDown:
            selectEdge(-1);
            return;
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Space:
            if (selected_) {
                choose(*selected_);
            }
            return;
        default:
            typeAhead(event->text());
    }
}

std::optional<int> StatusMenuPopup::rowWithKey(const QKeyEvent& event) const {
    const auto modifiers = event.modifiers() & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
    if (modifiers != Qt::ControlModifier) {
        return std::nullopt;
    }
    for (int index = 0; index < geometry_.rowCount(); ++index) {
        const QString key = QString::fromStdString(rowAt(index).keyEquivalent).toUpper();
        if (key.size() == 1 && event.key() == key.front().unicode() && isSelectable(index)) {
            return index;
        }
    }
    return std::nullopt;
}

/// Moves the selection and wraps around. Without one it goes to the first or last item, never to the header.
void StatusMenuPopup::moveSelection(int step) {
    const int count = geometry_.rowCount();
    isSelectedByKeyboard_ = true;
    if (!selected_) {
        for (int index = step > 0 ? 0 : count - 1; index >= 0 && index < count; index += step) {
            if (rowAt(index).kind == MenuRow::Kind::item && isSelectable(index)) {
                select(index);
                return;
            }
        }
        return;
    }
    for (int tried = 1; tried <= count; ++tried) {
        const int index = ((*selected_ + step * tried) % count + count) % count;
        if (isSelectable(index)) {
            select(index);
            update();
            return;
        }
    }
}

void StatusMenuPopup::selectEdge(int step) {
    const int count = geometry_.rowCount();
    isSelectedByKeyboard_ = true;
    for (int index = step > 0 ? 0 : count - 1; index >= 0 && index < count; index += step) {
        if (isSelectable(index)) {
            select(index);
            update();
            return;
        }
    }
}

/// Selects the next row whose title begins with the typed text.
void StatusMenuPopup::typeAhead(const QString& text) {
    if (text.isEmpty() || !text.front().isPrint() || text.front().isSpace()) {
        return;
    }
    const int count = geometry_.rowCount();
    const int start = selected_.value_or(-1);
    for (int tried = 1; tried <= count; ++tried) {
        const int index = (start + tried) % count;
        const MenuRow& row = rowAt(index);
        if (row.kind == MenuRow::Kind::item && isSelectable(index) &&
            display_text::singleLine(row.title).startsWith(text, Qt::CaseInsensitive)) {
            isSelectedByKeyboard_ = true;
            select(index);
            return;
        }
    }
}

}  // namespace ferrowyn
