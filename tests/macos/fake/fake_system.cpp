#include "tests/macos/fake/fake_system.h"

#include <Carbon/Carbon.h>
#include <HIServices/HIServices.h>
#include <pthread.h>

#include "tests/macos/fake/fake_core_foundation.h"
#include "tests/macos/fake/fake_objects.h"

namespace ferrowyn::fake {

System& System::shared() {
    static auto* const system = new System;
    return *system;
}

void System::reset() {
    const std::scoped_lock lock(lock_);
    isTrusted = true;
    isSecureInputEnabled = false;
    promptCount = 0;
    holdsThreads_ = false;
    threads_.clear();
}

void System::holdNewThreads() {
    const std::scoped_lock lock(lock_);
    holdsThreads_ = true;
}

void System::letThreadsGo() {
    const std::scoped_lock lock(lock_);
    holdsThreads_ = false;
    letGo_.notify_all();
}

std::vector<System::Thread> System::threads() const {
    const std::scoped_lock lock(lock_);
    return threads_;
}

void System::nameThread(const std::string& name) {
    std::unique_lock lock(lock_);
    threads_.push_back({name});
    letGo_.wait(lock, [this] { return !holdsThreads_; });
}

void System::setQualityOfService(unsigned qualityOfService) {
    const std::scoped_lock lock(lock_);
    threads_.back().qualityOfService = qualityOfService;
}

}  // namespace ferrowyn::fake

using namespace ferrowyn::fake;

const CFStringRef kAXTrustedCheckOptionPrompt = String::constant("AXTrustedCheckOptionPrompt");

Boolean AXIsProcessTrusted() {
    return System::shared().isTrusted;
}

Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options) {
    if (options != nullptr) {
        const auto* const found = Objects::shared().find<Dictionary>(options, "AXIsProcessTrustedWithOptions");
        const auto* const prompt =
            found != nullptr ? dynamic_cast<const Truth*>(found->find("AXTrustedCheckOptionPrompt")) : nullptr;
        if (prompt != nullptr && prompt->value() && !System::shared().isTrusted) {
            ++System::shared().promptCount;
        }
    }
    return System::shared().isTrusted;
}

Boolean IsSecureEventInputEnabled() {
    return System::shared().isSecureInputEnabled;
}

int pthread_setname_np(const char* name) {
    System::shared().nameThread(name);
    return 0;
}

int pthread_set_qos_class_self_np(qos_class_t qosClass, int relativePriority) {
    if (relativePriority != 0) {
        Objects::shared().fault("a thread below its class of service");
    }
    System::shared().setQualityOfService(qosClass);
    return 0;
}
