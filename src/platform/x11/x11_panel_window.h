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

/// A picture kept in the server, ready to become a window's background. Main thread.
class X11PanelPixmap {
public:
    /// `depth` is the window's. The connection outlives this.
    X11PanelPixmap(xcb_connection_t* connection, xcb_window_t root, std::uint8_t depth);
    ~X11PanelPixmap();
    X11PanelPixmap(const X11PanelPixmap&) = delete;
    X11PanelPixmap& operator=(const X11PanelPixmap&) = delete;

    /// Sends the picture; 32 bits a pixel, in the server's byte order. Without a round trip.
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

/// The toolkit's window around the panel's content, and the requests that put it on the screen ahead of the toolkit.
/// Main thread.
///
/// The window is mapped and unmapped with the first frame as its background, which the server paints while it maps: one
/// request, nothing to wait for, and what the toolkit draws later is the same picture. Measured beside it in one run,
/// with 200 windows: keeping the window mapped and moving it in from off the screen saves up to a fifth of the server's
/// time, an empty shape that is filled and raising from the bottom of the stack save nothing. Staying mapped
/// would have assistive programs, screen recorders and managers that stop compositing under full-screen windows see a
/// panel that nobody sees, so it is not done. The rest is the server clipping what lies below.
class X11PanelWindow final : public QWidget {
public:
    /// `pressTime` is the server's, when a button went down.
    using PointerHandler = std::function<void(int rootX, int rootY, std::optional<std::uint32_t> pressTime)>;

    /// `content` fills the window, and is let go, not destroyed, with it. A translucent window needs a compositor.
    X11PanelWindow(bool isTranslucent, QWidget& content, PointerHandler onPointer);
    ~X11PanelWindow() override;

    [[nodiscard]] xcb_window_t id() const { return window_; }

    /// Gives the toolkit the extent; it learns the place from the server.
    void resizeTo(const X11PixelRect& frame, double scale);
    /// An image of this extent to draw a first frame into.
    [[nodiscard]] QImage blankImage(const X11PixelRect& frame, double scale) const;
    /// Draws the content as it is now.
    void drawInto(QImage& image);
    /// Makes the image what the server shows as soon as the window is revealed.
    void prime(const QImage& image);

    /// On the screen, above everything, as far as the server is concerned; the toolkit is told by `show`.
    void reveal(const X11PixelRect& frame);
    void conceal();
    void raiseToTop();
    /// Changes the place and the extent of a window that people are looking at: it goes from one whole picture to the
    /// next, however long the toolkit takes to follow.
    void resizeShown(const X11PixelRect& frame, double scale);

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

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
    std::optional<X11PanelPixmap> pixmap_;
    /// A colour of the picture, for what a growing window uncovers before the toolkit has drawn it.
    std::uint32_t pixel_ = 0;
};

}  // namespace ferrowyn
