#include "platform/macos/mac_system_services.h"

#import <Foundation/Foundation.h>
#import <ServiceManagement/ServiceManagement.h>
#include <os/log.h>

#include <cstring>
#include <map>
#include <mutex>
#include <string>

#include "platform/macos/cocoa.h"

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
        const std::scoped_lock lock(mutex);
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
    // The log needs a text that ends with a zero.
    const std::string text(message);
    os_log_with_type(parts_->log(category), typeOf(level), "%{public}s", text.c_str());
}

namespace {

/// A value as an object that a property list can hold.
struct MakeObject {
    id operator()(bool flag) const { return [NSNumber numberWithBool:flag]; }
    id operator()(std::int64_t number) const { return [NSNumber numberWithLongLong:number]; }
    id operator()(double number) const { return [NSNumber numberWithDouble:number]; }
    id operator()(const std::string& text) const { return nsString(text); }
    id operator()(const std::vector<std::string>& list) const {
        auto* const objects = [NSMutableArray<NSString*> arrayWithCapacity:list.size()];
        for (const std::string& text : list) {
            [objects addObject:nsString(text)];
        }
        return objects;
    }
};

DefaultsValue fromNumber(NSNumber* number) {
    // A Boolean has the type code of a small integer: only its class tells them apart.
    if ([number isKindOfClass:[[NSNumber numberWithBool:YES] class]]) {
        return number.boolValue != NO;
    }
    const bool isReal =
        std::strcmp(number.objCType, @encode(double)) == 0 || std::strcmp(number.objCType, @encode(float)) == 0;
    return isReal ? DefaultsValue(number.doubleValue) : DefaultsValue(std::int64_t{number.longLongValue});
}

std::optional<DefaultsValue> fromArray(NSArray* array) {
    std::vector<std::string> list;
    for (id element in array) {
        auto text = stringOrNothing(element);
        if (!text) {
            return std::nullopt;
        }
        list.push_back(*text);
    }
    return list;
}

}  // namespace

void MacUserDefaults::registerDefaults(const std::map<std::string, DefaultsValue>& defaults) {
    auto* const dictionary = [NSMutableDictionary<NSString*, id> dictionaryWithCapacity:defaults.size()];
    for (const auto& [key, value] : defaults) {
        [dictionary setObject:std::visit(MakeObject(), value) forKey:nsString(key)];
    }
    [NSUserDefaults.standardUserDefaults registerDefaults:dictionary];
}

std::optional<DefaultsValue> MacUserDefaults::value(std::string_view key) const {
    const id object = [NSUserDefaults.standardUserDefaults objectForKey:nsString(key)];
    if ([object isKindOfClass:[NSNumber class]]) {
        return fromNumber(object);
    }
    if ([object isKindOfClass:[NSArray class]]) {
        return fromArray(object);
    }
    return stringOrNothing(object);
}

void MacUserDefaults::set(std::string_view key, DefaultsValue value) {
    [NSUserDefaults.standardUserDefaults setObject:std::visit(MakeObject(), value) forKey:nsString(key)];
}

namespace {

LoginItem::Error describe(NSError* error) {
    return {.domain = utf8(error.domain),
            .code = static_cast<int>(error.code),
            .localizedDescription = utf8(error.localizedDescription)};
}

}  // namespace

LoginItem::Status MacLoginItem::status() const {
    switch (SMAppService.mainAppService.status) {
        case SMAppServiceStatusNotRegistered:
            return Status::notRegistered;
        case SMAppServiceStatusEnabled:
            return Status::enabled;
        case SMAppServiceStatusRequiresApproval:
            return Status::requiresApproval;
        case SMAppServiceStatusNotFound:
            return Status::notFound;
    }
    // A value that a later system may add.
    return Status::notRegistered;
}

std::optional<LoginItem::Error> MacLoginItem::registerProgram() {
    NSError* error = nil;
    return [SMAppService.mainAppService registerAndReturnError:&error] ? std::nullopt : std::optional(describe(error));
}

std::optional<LoginItem::Error> MacLoginItem::unregisterProgram() {
    NSError* error = nil;
    return [SMAppService.mainAppService unregisterAndReturnError:&error] ? std::nullopt
                                                                         : std::optional(describe(error));
}

}  // namespace ferrowyn
