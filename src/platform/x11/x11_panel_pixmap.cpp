#include "platform/x11/x11_panel_pixmap.h"

#include <algorithm>

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
    // In strips, as the server bounds the length of a request; its 24 or 32 bytes of header are well within the row.
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

}  // namespace ferrowyn
