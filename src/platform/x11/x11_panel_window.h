#pragma once

#include <xcb/xcb.h>

#include <QImage>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <optional>

#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_screens.h"

namespace ferrowyn {

/// A pixmap in the server that can become a window's background. Main thread.
class X11PanelPixmap {
public:
    /// `depth` is that of the window. The connection outlives this.
    X11PanelPixmap(xcb_connection_t* connection, xcb_window_t root, std::uint8_t depth);
    ~X11PanelPixmap();
    X11PanelPixmap(const X11PanelPixmap&) = delete;
    X11PanelPixmap& operator=(const X11PanelPixmap&) = delete;

    /// Sends the image, 32 bits a pixel in the server's byte order. No round trip.
    void upload(const QImage& image);
    /// XCB_PIXMAP_NONE before the first upload.
    [[nodiscard]] xcb_pixmap_t id() const { return pixmap_; }

private:
    void resize(const QSize& size);
    void release();

    xcb_connection_t* connection_;
    xcb_window_t root_;
    std::uint8_t depth_;
    xcb_pixmap_t pixmap_ = XCB_PIXMAP_NONE;
    xcb_gcontext_t context_ = 0;
    QSize size_;
};

/// The Qt window around the panel's content. It sends its own requests to map and move the window before Qt does. Main
/// thread; owned by `X11Panel`.
///
/// The window's background is the first frame, which the server paints when it maps the window: one request, no round
/// trip, and Qt draws the same picture later. Alternatives measured with 200 windows: keeping the window mapped and
/// moving it in from outside the screen saves up to a fifth of the server's time; an empty shape that is filled, or
/// raising the window from the bottom of the stack, saves nothing. The window is not kept mapped, because assistive
/// programs, screen recorders and managers that stop compositing for full-screen windows would count the invisible
/// panel as visible.
class X11PanelWindow final : public QWidget {
public:
    /// `pressTime` is the server's time of a button press; nullopt for other pointer events.
    using PointerHandler = std::function<void(int rootX, int rootY, std::optional<std::uint32_t> pressTime)>;

    /// `content` fills the window. The window's destructor removes it from the window without destroying it. A
    /// translucent window needs a compositor.
    X11PanelWindow(bool isTranslucent, QWidget& content, PointerHandler onPointer);
    ~X11PanelWindow() override;

    [[nodiscard]] xcb_window_t id() const { return window_; }

    /// Sets the size in Qt. Qt gets the position from the server's events.
    void resizeTo(const X11PixelRect& frame, double scale);
    /// An empty image of this size for the first frame.
    [[nodiscard]] QImage blankImage(const X11PixelRect& frame, double scale) const;
    void drawInto(QImage& image);
    /// Makes the image the window's background, which the server paints when the window is mapped.
    void prime(const QImage& image);

    /// Places, raises and maps the window in the server. Qt does not know until `show` is called.
    void reveal(const X11PixelRect& frame);
    /// Unmaps the window in the server, also when another client maps it later. Qt does not know until `hide` is
    /// called.
    void conceal();
    void raiseToTop();
    /// Moves and resizes the window while it is shown. The server shows a complete picture before and after, however
    /// long Qt takes to draw.
    void resizeShown(const X11PixelRect& frame, double scale);

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool nativeEvent(const QByteArray& type, void* message, qintptr* result) override;

private:
    void describe();
    void place(const X11PixelRect& frame);
    void setBackgroundToPixel();

    QWidget& content_;
    PointerHandler onPointer_;
    bool isTranslucent_;
    xcb_connection_t* connection_ = nullptr;
    xcb_window_t window_ = XCB_WINDOW_NONE;
    std::optional<X11SentEventFilter> sentEventFilter_;
    X11PixelRect frame_;
    /// Between `reveal` and `conceal`.
    bool isRevealed_ = false;
    std::optional<X11PanelPixmap> pixmap_;
    /// The background colour of the panel. It fills what a growing window uncovers until Qt has drawn it.
    std::uint32_t pixel_ = 0;
};

}  // namespace ferrowyn
