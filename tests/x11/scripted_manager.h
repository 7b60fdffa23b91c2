#pragma once

#include <xcb/xcb.h>

#include <string>
#include <vector>

namespace ferrowyn::x11test {

/// Says on the root window what a window manager says, as the test tells it to: for states that no real manager shows
/// on demand. It manages nothing.
class ScriptedManager {
public:
    explicit ScriptedManager(const std::string& display);
    ~ScriptedManager();
    ScriptedManager(const ScriptedManager&) = delete;
    ScriptedManager& operator=(const ScriptedManager&) = delete;

    /// Bottom-most first.
    void publishStacking(const std::vector<xcb_window_t>& windows);
    void publishActive(xcb_window_t window);
    void publishCurrentDesktop(std::uint32_t desktop);
    void publishSupported(const std::vector<std::string>& atoms);
    /// Any property of any window.
    void set(xcb_window_t window, const std::string& property, const std::string& type, std::uint8_t format,
             const void* data, std::uint32_t count);
    void setCardinal(xcb_window_t window, const std::string& property, std::uint32_t value);
    void setAtoms(xcb_window_t window, const std::string& property, const std::vector<std::string>& values);
    void remove(xcb_window_t window, const std::string& property);
    void removeFromRoot(const std::string& property) { remove(root_, property); }
    /// The check window goes, as when the manager is killed; the properties on the root stay.
    void die();
    /// An unmapped window of this client, as plain as can be.
    [[nodiscard]] xcb_window_t createWindow(int x = 0, int y = 0, int width = 200, int height = 100);
    void destroyWindow(xcb_window_t window);
    void mapWindow(xcb_window_t window);
    [[nodiscard]] xcb_window_t root() const { return root_; }
    [[nodiscard]] xcb_connection_t* connection() const { return connection_; }
    [[nodiscard]] xcb_atom_t atom(const std::string& name) const;

private:
    void synchronize() const;

    xcb_connection_t* connection_;
    xcb_window_t root_;
    xcb_window_t checkWindow_;
};

}  // namespace ferrowyn::x11test
