#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/user_interface.h"
#include "platform/macos/mac_status_item.h"
#include "tests/input/panel_doubles.h"

namespace ferrowyn::test {

/// The system's own status item, and windows that only note what is done to them.
class StubUserInterface final : public UserInterface {
public:
    [[nodiscard]] std::string translated(const Phrase& phrase) override { return phrase.untranslated(); }
    [[nodiscard]] SwitcherContentFactory switcherContentFactory() override { return stubContentFactory(content); }
    [[nodiscard]] std::unique_ptr<OnDemandWindow> makeOnboardingWindow(const WindowOptions& /*options*/,
                                                                       AppServices& /*services*/,
                                                                       std::function<void()> /*onDone*/) override {
        return std::make_unique<Window>(steps, "setup");
    }
    [[nodiscard]] std::unique_ptr<OnDemandWindow> makeSettingsWindow(const WindowOptions& /*options*/,
                                                                     AppServices& /*services*/) override {
        return std::make_unique<Window>(steps, "settings");
    }
    [[nodiscard]] std::unique_ptr<OnDemandWindow> makeProgressWindow(const WindowOptions& /*options*/) override {
        return std::make_unique<Window>(steps, "progress");
    }
    [[nodiscard]] std::unique_ptr<OnDemandWindow> makeAboutWindow(const WindowOptions& options,
                                                                  std::function<void()> /*onClose*/) override {
        return std::make_unique<Window>(steps, options.title.untranslated());
    }
    [[nodiscard]] std::unique_ptr<StatusItem> makeStatusItem() override { return std::make_unique<MacStatusItem>(); }

    /// "show setup" and so on.
    [[nodiscard]] std::vector<std::string> takeSteps() { return std::exchange(steps, {}); }

    std::vector<std::string> steps;
    SwitcherContentCallbacks content;

private:
    class Window final : public OnDemandWindow {
    public:
        Window(std::vector<std::string>& steps, std::string name) : steps_(steps), name_(std::move(name)) {}
        void show() override { steps_.push_back("show " + name_); }
        void close() override { steps_.push_back("close " + name_); }

    private:
        std::vector<std::string>& steps_;
        std::string name_;
    };
};

}  // namespace ferrowyn::test
