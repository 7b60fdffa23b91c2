#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <string>
#include <thread>

namespace ferrowyn::x11test {

/// Key codes of a PC keyboard under X11 (the kernel's code plus 8). They name physical keys, independent of the layout.
namespace key {
inline constexpr std::uint8_t escape = 9, digit1 = 10, digit2 = 11, digit3 = 12, digit4 = 13, digit9 = 18, digit0 = 19,
                              backspace = 22, tab = 23, q = 24, w = 25, e = 26, r = 27, t = 28, y = 29, u = 30, i = 31,
                              o = 32, p = 33, enter = 36, leftControl = 37, a = 38, s = 39, d = 40, f = 41, g = 42,
                              h = 43, j = 44, k = 45, l = 46, grave = 49, leftShift = 50, z = 52, x = 53, c = 54,
                              v = 55, b = 56, n = 57, m = 58, leftAlt = 64, space = 65, capsLock = 66, numLock = 77,
                              scrollLock = 78, home = 110, up = 111, pageUp = 112, left = 113, right = 114, end = 115,
                              down = 116, pageDown = 117, leftSuper = 133;
}  // namespace key

/// Real key and pointer events through XTEST. The server has taken an event when its call returns.
class TestInput {
public:
    explicit TestInput(const std::string& display);
    ~TestInput();
    TestInput(const TestInput&) = delete;
    TestInput& operator=(const TestInput&) = delete;

    void press(std::uint8_t keyCode);
    void release(std::uint8_t keyCode);
    /// Presses and releases the key.
    void tap(std::uint8_t keyCode);
    /// Presses the keys in this order and releases them in reverse order.
    void chord(std::initializer_list<std::uint8_t> keyCodes);
    /// Until `ungrabServer` the server serves no other client. What is pressed meanwhile reaches the others all at
    /// once, as it reaches a client that wakes late.
    void grabServer();
    void ungrabServer();
    /// Releases all keys that are down.
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

/// Presses keys on the server's physical slave keyboard instead of the XTEST keyboard. The user's keyboard is such a
/// device: a key that is down on it is not released by the XTEST keyboard.
class TapPhysicalKeyboard {
public:
    explicit TapPhysicalKeyboard(const std::string& display);
    ~TapPhysicalKeyboard();
    TapPhysicalKeyboard(const TapPhysicalKeyboard&) = delete;
    TapPhysicalKeyboard& operator=(const TapPhysicalKeyboard&) = delete;

    [[nodiscard]] bool isThere() const { return device_ != 0; }
    void press(std::uint8_t keyCode);
    void release(std::uint8_t keyCode);
    void tap(std::uint8_t keyCode);
    /// Taps keys while the server serves no other client, and keeps serving none for this long afterwards.
    void tapUnheard(std::initializer_list<std::uint8_t> keyCodes, std::chrono::milliseconds silence);

private:
    void send(std::uint8_t type, std::uint8_t keyCode);

    xcb_connection_t* connection_;
    std::uint8_t firstEvent_ = 0;
    std::uint8_t device_ = 0;
};

/// Presses the trigger as fast as a person can. The pauses between the keys are part of the input; they wait for
/// nothing.
class Hands {
public:
    explicit Hands(TestInput& input) : input_(input) {}

    /// Holds Alt, taps Tab `tabs` times and releases Alt, at random before or after the last Tab.
    void toggle(int tabs = 1) {
        input_.press(key::leftAlt);
        for (int tab = 1; tab < tabs; ++tab) {
            pause();
            input_.press(key::tab);
            pause();
            input_.release(key::tab);
        }
        pause();
        input_.press(key::tab);
        pause();
        const bool tabFirst = random_() % 2 == 0;
        input_.release(tabFirst ? key::tab : key::leftAlt);
        pause();
        input_.release(tabFirst ? key::leftAlt : key::tab);
    }
    /// A random number from 1 to `most`.
    int someTabs(int most) { return std::uniform_int_distribution(1, most)(random_); }

private:
    void pause() {
        std::uniform_real_distribution<double> length(0.3, 30);
        std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(length(random_)));
    }

    TestInput& input_;
    // A fixed seed: the same pauses in each run.
    std::mt19937 random_{20240817};
};

}  // namespace ferrowyn::x11test
