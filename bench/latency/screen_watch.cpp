#include "bench/latency/screen_watch.h"

#include <poll.h>
#include <xcb/damage.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "platform/x11/xcb_reply.h"

namespace ferrowyn::latency {

ScreenWatch::ScreenWatch(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
    if (xcb_connection_has_error(connection_) != 0) {
        throw std::runtime_error("no display " + display);
    }
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    const XcbReply<xcb_intern_atom_reply_t> atom(
        xcb_intern_atom_reply(connection_, xcb_intern_atom(connection_, 0, 18, "_NET_ACTIVE_WINDOW"), nullptr));
    activeWindowAtom_ = atom->atom;
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &mask);
    const XcbReply<xcb_damage_query_version_reply_t> version(
        xcb_damage_query_version_reply(connection_, xcb_damage_query_version(connection_, 1, 1), nullptr));
    damage_ = xcb_generate_id(connection_);
    xcb_damage_create(connection_, damage_, root_, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    xcb_flush(connection_);
}

ScreenWatch::~ScreenWatch() {
    xcb_disconnect(connection_);
}

void ScreenWatch::look(const Place& place) {
    points_.clear();
    for (int row = 1; row <= 3; ++row) {
        for (int column = 1; column <= 3; ++column) {
            points_.emplace_back(static_cast<std::int16_t>(place.x + place.width * column / 4),
                                 static_cast<std::int16_t>(place.y + place.height * row / 4));
        }
    }
}

ScreenWatch::Picture ScreenWatch::picture() {
    std::vector<xcb_get_image_cookie_t> cookies;
    for (const auto& [x, y] : points_) {
        cookies.push_back(xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root_, x, y, 1, 1, ~0U));
    }
    Picture result;
    for (const auto cookie : cookies) {
        const XcbReply<xcb_get_image_reply_t> image(xcb_get_image_reply(connection_, cookie, nullptr));
        std::uint32_t pixel = 0;
        if (image && xcb_get_image_data_length(image.get()) >= 4) {
            std::memcpy(&pixel, xcb_get_image_data(image.get()), 4);
        }
        result.push_back(pixel & 0xFFFFFFU);
    }
    return result;
}

xcb_window_t ScreenWatch::activeWindow() {
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_, xcb_get_property(connection_, 0, root_, activeWindowAtom_, XCB_ATOM_WINDOW, 0, 1), nullptr));
    if (!reply || xcb_get_property_value_length(reply.get()) < 4) {
        return XCB_WINDOW_NONE;
    }
    return *static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
}

std::vector<ScreenWatch::Moment> ScreenWatch::changes(std::chrono::milliseconds duration) {
    const auto end = Clock::now() + duration;
    std::vector<Moment> moments;
    do {
        // Subtracted first, so that what is painted after the look is told again.
        xcb_damage_subtract(connection_, damage_, XCB_NONE, XCB_NONE);
        auto now = picture();
        if (moments.empty() || moments.back().picture != now) {
            moments.push_back({Clock::now(), std::move(now)});
        }
    } while (waitForEvent(std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now())) && Clock::now() < end);
    return moments;
}

std::optional<Clock::time_point> ScreenWatch::activationAfter(xcb_window_t previous, std::chrono::milliseconds budget) {
    const auto end = Clock::now() + budget;
    while (Clock::now() < end) {
        // Some managers pass through None.
        if (const auto active = activeWindow(); active != previous && active != XCB_WINDOW_NONE) {
            return Clock::now();
        }
        waitForEvent(std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()));
    }
    return std::nullopt;
}

bool ScreenWatch::waitForEvent(std::chrono::milliseconds budget) {
    xcb_flush(connection_);
    bool hasEvent = false;
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
        hasEvent = true;
    }
    if (hasEvent) {
        return true;
    }
    pollfd waiting{xcb_get_file_descriptor(connection_), POLLIN, 0};
    return poll(&waiting, 1, static_cast<int>(std::max<std::chrono::milliseconds::rep>(budget.count(), 0))) > 0;
}

}  // namespace ferrowyn::latency
