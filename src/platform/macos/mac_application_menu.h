#pragma once

#include <functional>
#include <memory>
#include <string>

namespace ferrowyn {

/// What the rows of the application's menu say.
struct MacApplicationMenuTitles {
    std::string settings;
    std::string quit;
};

/// The menu under the application's name, which the menu bar shows while one of the program's windows is in front: the
/// settings (Command and comma) and the end of the program (Command and Q). The application's main menu for as long as
/// this lives. Main thread, made after the application object.
class MacApplicationMenu {
public:
    MacApplicationMenu(const MacApplicationMenuTitles& titles, std::function<void()> onOpenSettings);
    ~MacApplicationMenu();
    MacApplicationMenu(const MacApplicationMenu&) = delete;
    MacApplicationMenu& operator=(const MacApplicationMenu&) = delete;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace ferrowyn
