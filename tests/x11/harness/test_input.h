#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <initializer_list>
#include <string>

namespace ferrowyn::x11test {

/// Key codes of a PC keyboard under X11 (the kernel's code plus 8); physical keys, whatever the layout.
namespace key {
inline constexpr std::uint8_t escape = 9, digit1 = 10, digit2 = 11, digit3 = 12, digit4 = 13, digit9 = 18, digit0 = 19,
                              backspace = 22, tab = 23, q = 24, w = 25, e = 26, r = 27, t = 28, y = 29, u = 30, i = 31,
                              o = 32, p = 33, enter = 36, leftControl = 37, a = 38, s = 39, d = 40, f = 41, g = 42,
                              h = 43, j = 44, k = 45, l = 46, grave = 49, leftShift = 50, z = 52, x = 53, c = 54,
                              v = 55, b = 56, n = 57, m = 58, leftAlt = 64, space = 65, capsLock = 66, numLock = 77,
                              scrollLock = 78, home = 110, up = 111, pageUp = 112, left = 113, right = 114, end = 115,
                              down = 116, pageDown = 117, leftSuper = 133;
}  // namespace key

/// The user's hands: real key and pointer events through XTEST. The server has taken an event when its call returns.
class TestInput {
public:
    explicit TestInput(const std::string& display);
    ~TestInput();
    TestInput(const TestInput&) = delete;
    TestInput& operator=(const TestInput&) = delete;

    void press(std::uint8_t keyCode);
    void release(std::uint8_t keyCode);
    /// Press and release.
    void tap(std::uint8_t keyCode);
    /// Holds the first keys, taps the last, lets go in reverse.
    void chord(std::initializer_list<std::uint8_t> keyCodes);
    /// Until `ungrabServer` no other client is served: what is pressed reaches them together, as one that wakes late
    /// finds it.
    void grabServer();
    void ungrabServer();
    /// Releases everything that is down.
    void releaseAll();

    /// In pixels.
    void movePointer(int x, int y);
    void pressButton(std::uint8_t button = 1);
    void releaseButton(std::uint8_t button = 1);
    void click(int x, int y, std::uint8_t button = 1);

private:
    void send(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0);

    xcb_connection_t* connection_;
    xcb_window_t root_;
};

}  // namespace ferrowyn::x11test
