#include "platform/macos/mac_user_defaults.h"

#import <Foundation/Foundation.h>

#include <cstring>

#include "platform/macos/mac_strings.h"

namespace ferrowyn {

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
    // Numbers know their types, but a Boolean's is that of a small integer: only its class tells it.
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

}  // namespace ferrowyn
