#include "input/switching_health.h"

#include "platform/log.h"

namespace ferrowyn {

namespace {

using Problem = SwitchingHealth::Problem;

std::string_view message(std::optional<Problem> problem) {
    if (!problem) {
        return "Switching works again";
    }
    switch (*problem) {
        case Problem::triggerAnsweredElsewhere:
            return "Another program answers the shortcut";
        case Problem::activationsUnconfirmed:
            return "The chosen windows do not come to the front";
    }
    return {};
}

}  // namespace

void SwitchingHealth::noteActivation(bool isConfirmed, Pid application) {
    if (isConfirmed) {
        unconfirmedApplications_.clear();
    } else {
        unconfirmedApplications_.insert(application);
    }
    publish();
}

void SwitchingHealth::noteTriggerAnsweredElsewhere() {
    ++lostTriggers_;
    publish();
}

void SwitchingHealth::noteTrigger() {
    forgetTriggers();
}

void SwitchingHealth::forgetTriggers() {
    lostTriggers_ = 0;
    publish();
}

void SwitchingHealth::forgetAll() {
    unconfirmedApplications_.clear();
    forgetTriggers();
}

void SwitchingHealth::publish() {
    std::optional<Problem> problem;
    if (lostTriggers_ > toleratedInARow) {
        problem = Problem::triggerAnsweredElsewhere;
    } else if (unconfirmedApplications_.size() > toleratedInARow) {
        problem = Problem::activationsUnconfirmed;
    }
    if (problem != problem_.get()) {
        log_.write(LogLevel::standard, "input", message(problem));
        problem_.set(problem);
    }
}

}  // namespace ferrowyn
