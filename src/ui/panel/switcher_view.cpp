#include "ui/panel/switcher_view.h"

#include <QAccessible>
#include <QEvent>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>
#include <algorithm>

#include "core/window_presentation.h"
#include "services/preferences.h"
#include "ui/common/desktop_looks.h"
#include "ui/common/display_text.h"
#include "ui/panel/panel_messages.h"
#include "ui/panel/row_parts.h"
#include "ui/panel/search_line_view.h"

namespace ferrowyn {

namespace {

constexpr int scrollMilliseconds = 100;
/// 30 frames a second: a fade of half a second looks smooth.
constexpr int caretFrameMilliseconds = 33;

}  // namespace

SwitcherView::SwitcherView(SwitcherViewModel& viewModel, Preferences& preferences, const TextTable& texts,
                           SwitcherContentCallbacks callbacks)
    : viewModel_(viewModel), preferences_(preferences), texts_(texts), callbacks_(std::move(callbacks)) {
    installSwitcherAccessibility();
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setFocusPolicy(Qt::NoFocus);
    setCursor(Qt::ArrowCursor);
    setAccessibleName(QStringLiteral("Windows"));
    scrollAnimation_.setDuration(scrollMilliseconds);
    scrollAnimation_.setEasingCurve(QEasingCurve::OutQuad);
    connect(&scrollAnimation_, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& value) { setScroll(value.toDouble()); });
    caretTimer_.setInterval(caretFrameMilliseconds);
    connect(&caretTimer_, &QTimer::timeout, this, &SwitcherView::caretTick);
    reloadTheme();
    subscribe();
}

SwitcherView::~SwitcherView() = default;

void SwitcherView::subscribe() {
    const auto follow = [this](const auto& published) {
        subscriptions_.push_back(published.subscribeToChanges([this](const auto& /*value*/) { modelChanged(); }));
    };
    subscriptions_.push_back(viewModel_.rows.subscribeToChanges([this](const auto& /*rows*/) {
        rowsAreStale_ = true;
        modelChanged();
    }));
    follow(viewModel_.selectedIndex);
    follow(viewModel_.query);
    follow(viewModel_.isPinned);
    follow(viewModel_.isAccessibilityTrusted);
    follow(viewModel_.sessionToken);
    follow(preferences_.layout.published());
    follow(preferences_.modifier.published());
    follow(preferences_.confirmOnModifierRelease.published());
    follow(preferences_.showShortcutHints.published());
}

void SwitcherView::modelChanged() {
    isStale_ = true;
    // Nothing is painted while hidden; the next show synchronizes.
    update();
}

void SwitcherView::synchronize() {
    applyModel();
    update();
}

void SwitcherView::applyModel() {
    if (!isStale_) {
        return;
    }
    isStale_ = false;
    updateGeometry();
    const bool isNewSession =
        std::exchange(shownToken_, viewModel_.sessionToken.get()) != viewModel_.sessionToken.get();
    const bool queryChanged = std::exchange(shownQuery_, viewModel_.query.get()) != viewModel_.query.get();
    const int selection = viewModel_.selectedIndex.get();
    const bool selectionChanged = std::exchange(shownSelection_, selection) != selection;
    if (isNewSession) {
        resetTransientState();
        scrollToSelection(false);
    } else {
        // The query may have left fewer rows than were scrolled past.
        setScroll(scroll_);
        if (queryChanged || selectionChanged) {
            scrollToSelection(true);
        }
    }
    if (queryChanged || isNewSession) {
        restartCaret();
    }
    announceChanges(std::exchange(rowsAreStale_, false), selectionChanged || isNewSession);
}

void SwitcherView::resetTransientState() {
    scrollAnimation_.stop();
    scroll_ = 0;
    pressed_ = {};
    isButtonHovered_ = false;
}

SwitcherLayout SwitcherView::layoutMode() const {
    return preferences_.layout.get();
}

bool SwitcherView::staysOpen() const {
    return viewModel_.isPinned.get() || !preferences_.confirmOnModifierRelease.get();
}

PanelScene SwitcherView::scene() const {
    PanelScene scene{viewModel_.rows.get(), viewModel_.iconProvider()};
    scene.selectedIndex = viewModel_.selectedIndex.get();
    scene.query = viewModel_.query.get();
    scene.isAccessibilityTrusted = viewModel_.isAccessibilityTrusted.get();
    scene.layout = layoutMode();
    scene.modifier = preferences_.modifier.get();
    scene.showsHints = preferences_.showShortcutHints.get();
    scene.staysOpen = staysOpen();
    scene.scroll = scroll_;
    scene.caretOpacity = caretOpacity_;
    scene.isButtonHovered = isButtonHovered_;
    scene.isButtonPressed = pressed_.kind == Target::Kind::permissionButton;
    scene.onToggleFavourite = callbacks_.onToggleFavourite;
    return scene;
}

PanelScene SwitcherView::firstFrame(const std::vector<SwitcherViewModel::Row>& rows, int selectedIndex,
                                    const Size& size) const {
    PanelScene frame{rows, viewModel_.iconProvider()};
    frame.selectedIndex = selectedIndex;
    frame.query = viewModel_.isInSession() ? viewModel_.query.get() : std::string();
    frame.isAccessibilityTrusted = viewModel_.isAccessibilityTrusted.get();
    frame.layout = layoutMode();
    frame.modifier = preferences_.modifier.get();
    frame.showsHints = preferences_.showShortcutHints.get();
    frame.staysOpen = staysOpen();
    frame.scroll = frame.geometry(size).scrollShowing(selectedIndex, 0);
    return frame;
}

void SwitcherView::renderPreview(QImage& target) {
    const double scale = target.devicePixelRatio();
    const Size size{target.width() / scale, target.height() / scale};
    const auto preview = viewModel_.previewSession(false);
    const PanelScene frame = firstFrame(preview.rows, preview.selectedIndex, size);
    const PanelGeometry geometry = frame.geometry(size);
    target.fill(Qt::transparent);
    QPainter painter(&target);
    frame.paint(painter, geometry, {0, 0, size.width, size.height}, paintContext(scale));
    preview_.emplace(frame, geometry, theme_);
}

bool SwitcherView::matchesPreview() const {
    return preview_ && preview_->matches(
                           firstFrame(viewModel_.rows.get(), viewModel_.selectedIndex.get(), preview_->size()), theme_);
}

PaintContext SwitcherView::paintContext(double devicePixelRatio) {
    return {theme_, texts_, lines_, symbols_, icons_, devicePixelRatio};
}

void SwitcherView::paintEvent(QPaintEvent* event) {
    applyModel();
    QPainter painter(this);
    // The widget may be rendered into an image of another resolution than its window's.
    const double scale = painter.deviceTransform().m11();
    paintedRowCount_ = scene().paint(painter, geometry_, fromQt(event->rect()), paintContext(scale));
}

void SwitcherView::updateGeometry() {
    geometry_ = scene().geometry({static_cast<double>(width()), static_cast<double>(height())});
}

void SwitcherView::resizeEvent(QResizeEvent* /*event*/) {
    applyModel();
    updateGeometry();
    setScroll(scroll_);
    // A query resizes the panel while the selection is still scrolling into view: the animation continues.
    scrollToSelection(scrollAnimation_.state() == QAbstractAnimation::Running);
}

void SwitcherView::setBackground(PanelBackground background) {
    if (std::exchange(background_, background) != background) {
        loadTheme();
        update();
    }
}

void SwitcherView::loadTheme() {
    theme_ = Theme::fromPalette(palette(), background_ != PanelBackground::opaque);
    if (background_ == PanelBackground::material) {
        theme_.background.setAlpha(0);
    }
}

void SwitcherView::reloadTheme() {
    loadTheme();
    lines_.clear();
    // The frame that was rendered in advance has the old colours and fonts.
    preview_.reset();
    update();
    if (callbacks_.onAppearanceChanged) {
        callbacks_.onAppearanceChanged();
    }
}

void SwitcherView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange ||
        event->type() == QEvent::StyleChange) {
        reloadTheme();
    }
    QWidget::changeEvent(event);
}

void SwitcherView::showEvent(QShowEvent* /*event*/) {
    synchronize();
    // The model was applied before the panel was visible, when nothing is announced. A screen reader must begin with
    // what the session opens with.
    announceChanges(true, true);
    restartCaret();
}

void SwitcherView::hideEvent(QHideEvent* /*event*/) {
    scrollAnimation_.stop();
    caretTimer_.stop();
    pressed_ = {};
    isButtonHovered_ = false;
}

bool SwitcherView::isAnimating() const {
    return caretTimer_.isActive() || scrollAnimation_.state() == QAbstractAnimation::Running;
}

void SwitcherView::scrollToSelection(bool isAnimated) {
    const double target = geometry_.scrollShowing(viewModel_.selectedIndex.get(), scroll_);
    scrollAnimation_.stop();
    if (target == scroll_) {
        return;
    }
    if (!isAnimated || !isVisible() || prefersReducedMotion(*this)) {
        setScroll(target);
        return;
    }
    scrollAnimation_.setStartValue(scroll_);
    scrollAnimation_.setEndValue(target);
    scrollAnimation_.start();
}

void SwitcherView::setScroll(double scroll) {
    const double shown = std::clamp(scroll, 0.0, geometry_.maximumScroll());
    if (scroll_ != shown) {
        scroll_ = shown;
        update();
    }
}

void SwitcherView::restartCaret() {
    caretOpacity_ = 1;
    caretTimer_.stop();
    if (isVisible() && !prefersReducedMotion(*this)) {
        caretClock_.start();
        caretTimer_.start();
    }
}

void SwitcherView::caretTick() {
    caretOpacity_ = Caret::opacityAfter(static_cast<double>(caretClock_.elapsed()) / 1000);
    const SearchLineView line{display_text::singleLine(viewModel_.query.get()), layoutMode(), 0, 1};
    const Rect caret = line.caretRect(geometry_.searchLine(), paintContext(devicePixelRatioF()));
    update(toQt(caret).toAlignedRect().adjusted(-1, -1, 1, 1));
}

void SwitcherView::announceChanges(bool rowsChanged, bool selectionChanged) {
    if (!isVisible()) {
        return;
    }
    if (announcer_) {
        announceSwitcherChanges(*this, rowsChanged, selectionChanged, announcer_);
    } else if (QAccessible::isActive()) {
        announceSwitcherChanges(*this, rowsChanged, selectionChanged,
                                [](QAccessibleEvent& event) { QAccessible::updateAccessibility(&event); });
    }
}

Rect SwitcherView::permissionButtonRect() {
    return PermissionStateView::button(geometry_.body(), paintContext(devicePixelRatioF()));
}

namespace {

bool contains(const Rect& rect, const QPointF& position) {
    return rect.contains({position.x(), position.y()});
}

}  // namespace

SwitcherView::Target SwitcherView::targetAt(const QPointF& position) {
    applyModel();
    if (!viewModel_.isAccessibilityTrusted.get()) {
        return contains(permissionButtonRect(), position) ? Target{Target::Kind::permissionButton, -1} : Target{};
    }
    const auto row = geometry_.rowAt({position.x(), position.y()}, scroll_);
    if (!row) {
        return {};
    }
    const auto star = scene().favouriteButton(*row, rowRect(*row));
    if (star && contains(FavouriteButton::hitArea(*star), position)) {
        return {Target::Kind::favouriteButton, *row};
    }
    return {Target::Kind::row, *row};
}

void SwitcherView::mouseMoveEvent(QMouseEvent* event) {
    const Target target = targetAt(event->position());
    setButtonHovered(target.kind == Target::Kind::permissionButton);
    if (target.row >= 0 && callbacks_.onHover) {
        callbacks_.onHover(target.row);
    }
}

void SwitcherView::mousePressEvent(QMouseEvent* event) {
    pressed_ = event->button() == Qt::LeftButton ? targetAt(event->position()) : Target{};
    if (pressed_.kind == Target::Kind::permissionButton) {
        setButtonHovered(true);
        update();
    }
}

void SwitcherView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        return;
    }
    const Target pressed = std::exchange(pressed_, Target{});
    if (pressed.kind == Target::Kind::permissionButton) {
        update();
    }
    if (pressed != targetAt(event->position())) {
        return;
    }
    switch (pressed.kind) {
        case Target::Kind::nothing:
            return;
        case Target::Kind::row:
            activateRow(pressed.row);
            return;
        case Target::Kind::favouriteButton:
            toggleFavourite(pressed.row);
            return;
        case Target::Kind::permissionButton:
            requestPermissions();
            return;
    }
}

void SwitcherView::leaveEvent(QEvent* /*event*/) {
    setButtonHovered(false);
}

void SwitcherView::wheelEvent(QWheelEvent* event) {
    applyModel();
    const double distance =
        event->pixelDelta().isNull()
            ? event->angleDelta().y() / double{QWheelEvent::DefaultDeltasPerStep} * rowRect(0).height
            : event->pixelDelta().y();
    scrollAnimation_.stop();
    setScroll(scroll_ - distance);
    event->accept();
}

bool SwitcherView::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) {
        return QWidget::event(event);
    }
    const auto* const help = static_cast<QHelpEvent*>(event);
    const Target target = targetAt(help->pos());
    if (target.kind == Target::Kind::favouriteButton) {
        const auto text =
            WindowPresentation::favouriteHelp(viewModel_.rows.get()[static_cast<std::size_t>(target.row)].isFavourite);
        QToolTip::showText(help->globalPos(), display_text::fromUtf8(text), this);
    } else {
        QToolTip::hideText();
    }
    return true;
}

void SwitcherView::setButtonHovered(bool isHovered) {
    if (isButtonHovered_ != isHovered) {
        isButtonHovered_ = isHovered;
        update();
    }
}

void SwitcherView::activateRow(int index) {
    const auto& rows = viewModel_.rows.get();
    if (index >= 0 && static_cast<std::size_t>(index) < rows.size() && callbacks_.onActivate) {
        // A copy, because activation ends the session and may clear the rows.
        const AppWindow window = rows[static_cast<std::size_t>(index)].window;
        callbacks_.onActivate(window);
    }
}

void SwitcherView::toggleFavourite(int index) {
    const auto& rows = viewModel_.rows.get();
    if (index >= 0 && static_cast<std::size_t>(index) < rows.size() && callbacks_.onToggleFavourite) {
        const AppWindow window = rows[static_cast<std::size_t>(index)].window;
        callbacks_.onToggleFavourite(window);
    }
}

void SwitcherView::requestPermissions() {
    if (callbacks_.onRequestPermissions) {
        callbacks_.onRequestPermissions();
    }
}

SwitcherContentFactory switcherContentFactory(const TextTable& texts) {
    return [&texts](SwitcherViewModel& viewModel, Preferences& preferences, SwitcherContentCallbacks callbacks) {
        return std::unique_ptr<PanelContent>(
            std::make_unique<SwitcherView>(viewModel, preferences, texts, std::move(callbacks)));
    };
}

}  // namespace ferrowyn
