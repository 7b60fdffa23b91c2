#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tests/x11/harness/test_window.h"

/// An application for tests. The first argument is its name; it opens a window for each further one, prints the
/// windows' XIDs, one on each line, and runs until it is ended. Windows after "--name NAME" have the WM_CLASS of that
/// other application, as in an office suite.
int main(int argumentCount, char** arguments) {
    using ferrowyn::x11test::TestWindow;
    const std::span<char*> all(arguments, static_cast<std::size_t>(argumentCount));
    const char* const display = std::getenv("DISPLAY");
    if (all.size() < 3 || display == nullptr) {
        std::fprintf(stderr, "usage: DISPLAY=… ferrowyn_test_application NAME TITLE…\n");
        return 2;
    }
    std::vector<std::unique_ptr<TestWindow>> windows;
    std::string name = all[1];
    for (std::size_t index = 2; index < all.size(); ++index) {
        if (std::string_view(all[index]) == "--name" && index + 1 < all.size()) {
            name = all[++index];
            continue;
        }
        windows.push_back(std::make_unique<TestWindow>(
            display,
            TestWindow::Options{.title = all[index], .className = name, .x = 60 * static_cast<int>(all.size())}));
        std::printf("window %u\n", windows.back()->id());
    }
    std::printf("ready\n");
    std::fflush(stdout);
    pause();
    return 0;
}
