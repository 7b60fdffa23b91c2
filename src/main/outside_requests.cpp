#include "main/outside_requests.h"

#include <fmt/format.h>

#include <string_view>
#include <utility>

#include "app/app_delegate.h"
#include "main/command_line.h"
#include "platform/log.h"
#include "platform/platform.h"

namespace ferrowyn {

namespace {

constexpr std::string_view logCategory = "ui";

}  // namespace

OutsideRequests::OutsideRequests(const Platform& platform, AppDelegate& delegate, const CommandLine& line)
    : platform_(platform), delegate_(delegate), awaitsOpening_(line.isStartedByBus) {
    if (line.request) {
        perform(*line.request);
    }
}

void OutsideRequests::perform(ProgramRequest request) {
    awaitsOpening_ = false;
    platform_.log.write(LogLevel::standard, logCategory, fmt::format("Asked from outside: {}", nameOf(request)));
    delegate_.perform(request);
}

void OutsideRequests::activate() {
    // For a program that the bus has just started, this request is part of the start.
    if (std::exchange(awaitsOpening_, false)) {
        return;
    }
    platform_.log.write(LogLevel::standard, logCategory, "Opened again");
    delegate_.applicationShouldHandleReopen(false);
}

}  // namespace ferrowyn
