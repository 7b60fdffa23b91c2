#include "platform/macos/mac_log.h"

#import <Foundation/Foundation.h>
#include <os/log.h>

#include <map>
#include <mutex>
#include <string>

#include "platform/macos/mac_strings.h"

namespace ferrowyn {

namespace {

os_log_type_t typeOf(LogLevel level) {
    switch (level) {
        case LogLevel::debug:
            return OS_LOG_TYPE_DEBUG;
        case LogLevel::standard:
            return OS_LOG_TYPE_DEFAULT;
        case LogLevel::error:
            return OS_LOG_TYPE_ERROR;
    }
    return OS_LOG_TYPE_DEFAULT;
}

}  // namespace

struct MacLog::Parts {
    std::string subsystem;
    std::mutex mutex;
    std::map<std::string, os_log_t, std::less<>> logs;

    os_log_t log(std::string_view category) {
        const std::lock_guard lock(mutex);
        const auto found = logs.find(category);
        if (found != logs.end()) {
            return found->second;
        }
        const std::string name(category);
        const os_log_t made = os_log_create(subsystem.c_str(), name.c_str());
        logs.emplace(name, made);
        return made;
    }
};

MacLog::MacLog() : parts_(std::make_unique<Parts>()) {
    parts_->subsystem = optionalUtf8(NSBundle.mainBundle.bundleIdentifier).value_or("com.larkmoor.Ferrowyn");
}

MacLog::~MacLog() = default;

void MacLog::write(LogLevel level, std::string_view category, std::string_view message) {
    // The log takes what ends with a zero.
    const std::string text(message);
    os_log_with_type(parts_->log(category), typeOf(level), "%{public}s", text.c_str());
}

}  // namespace ferrowyn
