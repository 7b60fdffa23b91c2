#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/app_services.h"
#include "app/user_interface.h"
#include "platform/simulated/simulated_system.h"
#include "tests/input/panel_doubles.h"

namespace ferrowyn {

/// Notes what is made and shown, in order, and plays the views' part.
class RecordedInterface : public UserInterface {
public:
    [[nodiscard]] std::string translated(const Phrase& phrase) override { return phrase.untranslated(); }
    [[nodiscard]] SwitcherContentFactory switcherContentFactory() override { return stubContentFactory(content); }
    [[nodiscard]] std::unique_ptr<OnDemandWindow> makeOnboardingWindow(const WindowOptions& options,
                                                                       AppServices& services,
                                                                       std::function<void()> onDone) override {
        onboardingDone = std::move(onDone);
        wasActiveAtFirstWindow = services.isActive();
        return make(options, "setup");
    }
    [[nodiscard]] std::unique_ptr<OnDemandWindow> makeSettingsWindow(const WindowOptions& options,
                                                                     AppServices& /*services*/) override {
        return make(options, "settings");
    }
    [[nodiscard]] std::unique_ptr<OnDemandWindow> makeProgressWindow(const WindowOptions& options) override {
        return make(options, "progress");
    }
    [[nodiscard]] std::unique_ptr<OnDemandWindow> makeAboutWindow(const WindowOptions& options,
                                                                  std::function<void()> onClose) override {
        aboutClosed = std::move(onClose);
        return make(options, "about");
    }
    [[nodiscard]] std::unique_ptr<StatusItem> makeStatusItem() override {
        steps.emplace_back("make status item");
        whileTheStatusItemIsMade();
        auto made = std::make_unique<SimulatedStatusItem>();
        statusItem = made.get();
        return made;
    }

    std::vector<std::string> takeSteps() { return std::exchange(steps, {}); }

    /// For a desktop on which it takes time to make a status item.
    std::function<void()> whileTheStatusItemIsMade = [] {};
    std::vector<std::string> steps;
    SwitcherContentCallbacks content;
    std::function<void()> onboardingDone;
    std::function<void()> aboutClosed;
    bool wasActiveAtFirstWindow = false;
    SimulatedStatusItem* statusItem = nullptr;

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

    std::unique_ptr<OnDemandWindow> make(const WindowOptions& options, const std::string& name) {
        steps.push_back("make \"" + options.title.untranslated() + "\"" + (options.isResizable ? " resizable" : ""));
        return std::make_unique<Window>(steps, name);
    }
};

}  // namespace ferrowyn
