#include "app/qt_user_interface.h"

#include <utility>

#include "core/text_table.h"
#include "platform/log.h"
#include "platform/platform.h"
#include "ui/switcher_content.h"

namespace ferrowyn {

namespace {

/// Until the windows are there, says which was asked for.
class MissingWindow final : public OnDemandWindow {
public:
    MissingWindow(Log& log, Phrase title) : log_(log), title_(std::move(title)) {}

    void show() override { log_.write(LogLevel::standard, "ui", "Not there yet: " + title_.untranslated()); }
    void close() override {}

private:
    Log& log_;
    Phrase title_;
};

}  // namespace

QtUserInterface::QtUserInterface(const Platform& platform, StatusItemFactory makeStatusItem)
    : platform_(platform), makeStatusItem_(std::move(makeStatusItem)) {}

std::string QtUserInterface::translated(const Phrase& phrase) {
    return phrase.untranslated();
}

SwitcherContentFactory QtUserInterface::switcherContentFactory() {
    return ferrowyn::switcherContentFactory(platform_.texts);
}

std::unique_ptr<OnDemandWindow> QtUserInterface::makeOnboardingWindow(const WindowOptions& options,
                                                                      AppServices& /*services*/,
                                                                      std::function<void()> /*onDone*/) {
    return std::make_unique<MissingWindow>(platform_.log, options.title);
}

std::unique_ptr<OnDemandWindow> QtUserInterface::makeSettingsWindow(const WindowOptions& options,
                                                                    AppServices& /*services*/) {
    return std::make_unique<MissingWindow>(platform_.log, options.title);
}

std::unique_ptr<OnDemandWindow> QtUserInterface::makeAboutWindow(const WindowOptions& options,
                                                                 std::function<void()> /*onClose*/) {
    return std::make_unique<MissingWindow>(platform_.log, options.title);
}

}  // namespace ferrowyn
