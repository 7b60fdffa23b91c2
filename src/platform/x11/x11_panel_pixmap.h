#pragma once

#include <xcb/xcb.h>

#include <QImage>
#include <cstdint>

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

}  // namespace ferrowyn
