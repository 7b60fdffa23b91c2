#include "ui/switcher_content.h"

#include <memory>
#include <utility>

#include "ui/switcher_view.h"

namespace ferrowyn {

SwitcherContentFactory switcherContentFactory(const TextTable& texts) {
    return [&texts](SwitcherViewModel& viewModel, Preferences& preferences, SwitcherContentCallbacks callbacks) {
        return std::unique_ptr<PanelContent>(
            std::make_unique<SwitcherView>(viewModel, preferences, texts, std::move(callbacks)));
    };
}

}  // namespace ferrowyn
