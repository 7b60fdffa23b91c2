#include "platform/x11/x11_panel_window.h"

#include <QGuiApplication>
#include <QResizeEvent>
#include <QSinglePointEvent>
#include <QWindow>
#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

X11PanelPixmap::X11PanelPixmap(xcb_connection_t* connection, xcb_window_t root, std::uint8_t depth)
    : connection_(connection), root_(root), depth_(depth) {}

X11PanelPixmap::~X11PanelPixmap() {
    release();
}

void X11PanelPixmap::upload(const QImage& image) {
    if (image.isNull()) {
        return;
    }
    if (image.size() != size_) {
        resize(image.size());
    }
    // In strips, because the length of a request is limited. One row less leaves room for the request's header.
    const auto rowBytes = static_cast<std::uint32_t>(image.bytesPerLine());
    const std::uint64_t longest = std::uint64_t{xcb_get_maximum_request_length(connection_)} * 4;
    const int rows = static_cast<int>(std::max<std::uint64_t>(longest / rowBytes, 2) - 1);
    for (int top = 0; top < image.height(); top += rows) {
        const int count = std::min(rows, image.height() - top);
        xcb_put_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap_, context_,
                      static_cast<std::uint16_t>(image.width()), static_cast<std::uint16_t>(count), 0,
                      static_cast<std::int16_t>(top), 0, depth_, rowBytes * static_cast<std::uint32_t>(count),
                      image.constScanLine(top));
    }
}

void X11PanelPixmap::resize(const QSize& size) {
    release();
    pixmap_ = xcb_generate_id(connection_);
    xcb_create_pixmap(connection_, depth_, pixmap_, root_, static_cast<std::uint16_t>(size.width()),
                      static_cast<std::uint16_t>(size.height()));
    context_ = xcb_generate_id(connection_);
    xcb_create_gc(connection_, context_, pixmap_, 0, nullptr);
    size_ = size;
}

void X11PanelPixmap::release() {
    if (pixmap_ != XCB_PIXMAP_NONE) {
        xcb_free_gc(connection_, context_);
        xcb_free_pixmap(connection_, pixmap_);
        pixmap_ = XCB_PIXMAP_NONE;
    }
}

namespace {

xcb_connection_t* toolkitConnection() {
    auto* const application = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return application != nullptr ? application->connection() : nullptr;
}

QSize sizeInPoints(const X11PixelRect& frame, double scale) {
    const auto points = [scale](int pixels) { return static_cast<int>(std::lround(pixels / scale)); };
    return {points(frame.width), points(frame.height)};
}

}  // namespace

X11PanelWindow::X11PanelWindow(bool isTranslucent, QWidget& content, PointerHandler onPointer)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint | Qt::WindowDoesNotAcceptFocus),
      content_(content),
      onPointer_(std::move(onPointer)),
      isTranslucent_(isTranslucent),
      connection_(toolkitConnection()) {
    setWindowTitle(QStringLiteral("Ferrowyn"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_X11DoNotAcceptFocus);
    setAttribute(Qt::WA_TranslucentBackground, isTranslucent);
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_QuitOnClose, false);
    setFocusPolicy(Qt::NoFocus);
    content_.setParent(this);
    content_.show();
    window_ = static_cast<xcb_window_t>(winId());
    sentEventFilter_.emplace(window_);
    windowHandle()->installEventFilter(this);
    describe();
}

X11PanelWindow::~X11PanelWindow() {
    if (content_.parentWidget() == this) {
        content_.setParent(nullptr);
    }
}

void X11PanelWindow::resizeTo(const X11PixelRect& frame, double scale) {
    resize(sizeInPoints(frame, scale));
}

QImage X11PanelWindow::blankImage(const X11PixelRect& frame, double scale) const {
    QImage image(frame.width, frame.height,
                 isTranslucent_ ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(isTranslucent_ ? Qt::transparent : Qt::black);
    return image;
}

void X11PanelWindow::drawInto(QImage& image) {
    render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
}

void X11PanelWindow::prime(const QImage& image) {
    if (image.isNull()) {
        return;
    }
    pixmap_->upload(image);
    const xcb_pixmap_t picture = pixmap_->id();
    xcb_change_window_attributes(connection_, window_, XCB_CW_BACK_PIXMAP, &picture);
    xcb_flush(connection_);
    // A pixel near the middle of the lower edge, where the panel shows only its background.
    pixel_ =
        reinterpret_cast<const std::uint32_t*>(image.constScanLine(std::max(image.height() - 3, 0)))[image.width() / 2];
}

void X11PanelWindow::reveal(const X11PixelRect& frame) {
    isRevealed_ = true;
    place(frame);
    xcb_map_window(connection_, window_);
    // The picture is painted now. As a background it would be tiled over the area that a larger panel uncovers.
    setBackgroundToPixel();
    xcb_flush(connection_);
}

void X11PanelWindow::conceal() {
    isRevealed_ = false;
    xcb_unmap_window(connection_, window_);
    xcb_flush(connection_);
}

void X11PanelWindow::place(const X11PixelRect& frame) {
    frame_ = frame;
    const std::array<std::uint32_t, 5> values{static_cast<std::uint32_t>(frame.x), static_cast<std::uint32_t>(frame.y),
                                              static_cast<std::uint32_t>(std::max(frame.width, 1)),
                                              static_cast<std::uint32_t>(std::max(frame.height, 1)),
                                              XCB_STACK_MODE_ABOVE};
    xcb_configure_window(connection_, window_,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT | XCB_CONFIG_WINDOW_STACK_MODE,
                         values.data());
}

void X11PanelWindow::resizeShown(const X11PixelRect& frame, double scale) {
    if (frame.width != frame_.width || frame.height != frame_.height) {
        // Only the content is resized here. Resizing the Qt window would resize the X window at once, over the old
        // picture and at the position that Qt knew last; Qt follows when the server reports the new size.
        content_.setGeometry(QRect(QPoint(), sizeInPoints(frame, scale)));
        QImage image = blankImage(frame, scale);
        content_.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        prime(image);
    }
    place(frame);
    setBackgroundToPixel();
    xcb_flush(connection_);
}

void X11PanelWindow::raiseToTop() {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(connection_, window_, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_flush(connection_);
}

/// Metacity, where it hears of the panel only after the panel has gone again, takes it for a window to be shown and
/// maps it. The event may also be that of the panel's own appearance; then unmapping it once more changes nothing.
bool X11PanelWindow::nativeEvent(const QByteArray& type, void* message, qintptr* result) {
    if (type == "xcb_generic_event_t" && !isRevealed_ &&
        typeOf(*static_cast<const xcb_generic_event_t*>(message)) == XCB_MAP_NOTIFY) {
        conceal();
    }
    return QWidget::nativeEvent(type, message, result);
}

void X11PanelWindow::resizeEvent(QResizeEvent* event) {
    content_.setGeometry(QRect(QPoint(), event->size()));
}

/// Reports pointer events before the content handles them, so that its handlers find the pointer's position up to date.
bool X11PanelWindow::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::Enter:
        case QEvent::MouseMove:
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease: {
            const QPointF inPoints = static_cast<const QSinglePointEvent*>(event)->position();
            const double scale = devicePixelRatioF();
            std::optional<std::uint32_t> pressTime;
            if (event->type() == QEvent::MouseButtonPress) {
                pressTime = static_cast<std::uint32_t>(static_cast<const QInputEvent*>(event)->timestamp());
            }
            onPointer_(frame_.x + static_cast<int>(std::lround(inPoints.x() * scale)),
                       frame_.y + static_cast<int>(std::lround(inPoints.y() * scale)), pressTime);
            break;
        }
        default:
            break;
    }
    return QWidget::eventFilter(watched, event);
}

/// Sets the properties that window managers, compositors and pagers read also from an override-redirect window.
void X11PanelWindow::describe() {
    if (connection_ == nullptr) {
        return;
    }
    const auto atoms =
        internAtoms(connection_, {"_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_UTILITY", "_NET_WM_STATE",
                                  "_NET_WM_STATE_ABOVE", "_NET_WM_STATE_STICKY", "_NET_WM_STATE_SKIP_TASKBAR",
                                  "_NET_WM_STATE_SKIP_PAGER", "_NET_WM_DESKTOP", "_COMPTON_SHADOW"});
    // With this gravity a resized window shows its background everywhere and keeps no part of the old picture.
    const std::uint32_t forget = XCB_GRAVITY_BIT_FORGET;
    xcb_change_window_attributes(connection_, window_, XCB_CW_BIT_GRAVITY, &forget);
    const auto set = [this](xcb_atom_t name, xcb_atom_t type, const std::vector<std::uint32_t>& values) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, name, type, 32,
                            static_cast<std::uint32_t>(values.size()), values.data());
    };
    constexpr std::uint32_t allDesktops = 0xFFFFFFFF;
    set(atoms[0], XCB_ATOM_ATOM, {atoms[1]});
    set(atoms[2], XCB_ATOM_ATOM, {atoms[3], atoms[4], atoms[5], atoms[6]});
    set(atoms[7], XCB_ATOM_CARDINAL, {allDesktops});
    set(atoms[8], XCB_ATOM_CARDINAL, {1});
    constexpr std::string_view instanceAndClass{"ferrowyn\0ferrowyn\0", 18};
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(instanceAndClass.size()), instanceAndClass.data());
    const XcbReply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window_), nullptr));
    if (geometry) {
        pixmap_.emplace(connection_, geometry->root, geometry->depth);
    }
}

void X11PanelWindow::setBackgroundToPixel() {
    xcb_change_window_attributes(connection_, window_, XCB_CW_BACK_PIXEL, &pixel_);
}

}  // namespace ferrowyn
