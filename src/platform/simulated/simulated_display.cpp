#include "platform/simulated/simulated_display.h"

#include <fmt/format.h>

#include <cassert>

namespace ferrowyn {

void SimulatedPanel::setContent(std::unique_ptr<PanelContent> content) {
    assert(!content_ && "the content is set once");
    content_ = std::move(content);
}

void SimulatedPanel::setFrame(const Rect& frame) {
    state_.frame = frame;
    state_.calls.push_back(fmt::format("setFrame {} {} {} {}", frame.x, frame.y, frame.width, frame.height));
}

void SimulatedPanel::layOutContent() {
    synchronizeContent();
    ++state_.layoutCount;
    state_.calls.emplace_back("layOutContent");
}

void SimulatedPanel::prepare(const Rect&) {
    synchronizeContent();
}

void SimulatedPanel::orderFront() {
    show("orderFront");
}

void SimulatedPanel::orderFrontRegardless() {
    show("orderFrontRegardless");
}

void SimulatedPanel::orderOut() {
    state_.isVisible = false;
    state_.calls.emplace_back("orderOut");
}

void SimulatedPanel::show(std::string call) {
    synchronizeContent();
    state_.isVisible = true;
    ++state_.orderFrontCount;
    state_.calls.push_back(std::move(call));
}

void SimulatedPanel::synchronizeContent() {
    if (content_) {
        content_->synchronize();
    }
}

}  // namespace ferrowyn
