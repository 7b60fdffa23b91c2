#import "tests/macos/objc/fakes/foundation.h"

#include <stdexcept>
#include <vector>

namespace {

struct FoundationState {
    NSBundle* mainBundle;
    std::map<std::string, NSBundle*> installed;
    NSProcessInfo* processInfo;
    NSOperatingSystemVersion systemVersion{};
    NSUserDefaults* defaults;
    int yearsAhead = 0;
    std::vector<NSActivityOptions> activities;
};

FoundationState state;

std::string text(NSString* string) {
    return string.UTF8String == nullptr ? "" : string.UTF8String;
}

/// What the compiler makes of a literal.
struct ConstantString {
    void* isa;
    std::uint64_t flags;
    const void* characters;
    long length;
};

constexpr std::uint32_t utf16Flag = 0x10;

std::string utf8FromUtf16(const char16_t* units, long count) {
    std::string result;
    for (long index = 0; index < count; ++index) {
        const char16_t unit = units[index];
        if (unit < 0x80) {
            result += static_cast<char>(unit);
        } else if (unit < 0x800) {
            result += static_cast<char>(0xC0 | (unit >> 6));
            result += static_cast<char>(0x80 | (unit & 0x3F));
        } else {
            result += static_cast<char>(0xE0 | (unit >> 12));
            result += static_cast<char>(0x80 | ((unit >> 6) & 0x3F));
            result += static_cast<char>(0x80 | (unit & 0x3F));
        }
    }
    return result;
}

}  // namespace

@implementation NSString {
    std::string _text;
}
- (instancetype)initWithBytes:(const void*)bytes length:(NSUInteger)length encoding:(NSStringEncoding)encoding {
    self = [super init];
    if (encoding != NSUTF8StringEncoding) {
        return nil;
    }
    _text.assign(static_cast<const char*>(bytes), length);
    // Continuation bytes without a beginning are enough to tell what is no UTF-8 in these tests.
    return !_text.empty() && (static_cast<unsigned char>(_text.front()) & 0xC0U) == 0x80U ? nil : self;
}
- (const char*)UTF8String {
    return _text.c_str();
}
- (NSUInteger)length {
    return text(self).size();
}
- (BOOL)isEqualToString:(NSString*)string {
    return text(self) == text(string);
}
- (BOOL)isEqual:(id)object {
    return [object isKindOfClass:[NSString class]] && [self isEqualToString:object];
}
- (NSString*)stringByAppendingString:(NSString*)string {
    const std::string sum = text(self) + text(string);
    return [[NSString alloc] initWithBytes:sum.data() length:sum.size() encoding:NSUTF8StringEncoding];
}
- (id)copyWithZone:(void*)zone {
    return self;
}
@end

@interface NSConstantString : NSString
@end

@implementation NSConstantString
- (const char*)UTF8String {
    static std::map<const void*, std::string> converted;
    NSConstantString* __unsafe_unretained unowned = self;
    const auto* const literal = __builtin_bit_cast(const ConstantString*, unowned);
    if ((literal->flags & utf16Flag) == 0) {
        return static_cast<const char*>(literal->characters);
    }
    auto& result = converted[literal];
    if (result.empty()) {
        result = utf8FromUtf16(static_cast<const char16_t*>(literal->characters), literal->length);
    }
    return result.c_str();
}
@end

/// Booleans are numbers of another class.
@interface FakeBoolean : NSNumber
@end

@implementation NSNumber {
@public
    const char* _type;
    long long _integer;
    double _real;
}
+ (NSNumber*)numberWithBool:(BOOL)value {
    FakeBoolean* const number = [[FakeBoolean alloc] init];
    number->_type = "c";
    number->_integer = value ? 1 : 0;
    return number;
}
+ (NSNumber*)numberWithInt:(int)value {
    NSNumber* const number = [self numberWithLongLong:value];
    number->_type = "i";
    return number;
}
+ (NSNumber*)numberWithLong:(long)value {
    return [self numberWithLongLong:value];
}
+ (NSNumber*)numberWithLongLong:(long long)value {
    NSNumber* const number = [[NSNumber alloc] init];
    number->_type = "q";
    number->_integer = value;
    number->_real = static_cast<double>(value);
    return number;
}
+ (NSNumber*)numberWithDouble:(double)value {
    NSNumber* const number = [[NSNumber alloc] init];
    number->_type = "d";
    number->_integer = static_cast<long long>(value);
    number->_real = value;
    return number;
}
- (const char*)objCType {
    return _type;
}
- (BOOL)boolValue {
    return _integer != 0;
}
- (int)intValue {
    return static_cast<int>(_integer);
}
- (long long)longLongValue {
    return _integer;
}
- (double)doubleValue {
    return _real;
}
- (id)copyWithZone:(void*)zone {
    return self;
}
@end

@implementation FakeBoolean
@end

@implementation NSArray {
@public
    std::vector<id> _objects;
}
+ (instancetype)array {
    return [[self alloc] init];
}
+ (instancetype)arrayWithObjects:(const id[])objects count:(NSUInteger)count {
    NSArray* const array = [[self alloc] init];
    array->_objects.assign(objects, objects + count);
    return array;
}
- (NSUInteger)count {
    return _objects.size();
}
- (id)objectAtIndex:(NSUInteger)index {
    return _objects.at(index);
}
- (id)objectAtIndexedSubscript:(NSUInteger)index {
    return _objects.at(index);
}
- (id)firstObject {
    return _objects.empty() ? nil : _objects.front();
}
- (id)copyWithZone:(void*)zone {
    NSArray* const copy = [[NSArray alloc] init];
    copy->_objects = _objects;
    return copy;
}
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)enumeration
                                  objects:(id __unsafe_unretained[])buffer
                                    count:(NSUInteger)length {
    static unsigned long neverMutated = 0;
    NSUInteger filled = 0;
    while (filled < length && enumeration->state < _objects.size()) {
        buffer[filled++] = _objects[enumeration->state++];
    }
    enumeration->itemsPtr = buffer;
    enumeration->mutationsPtr = &neverMutated;
    return filled;
}
@end

@implementation NSMutableArray
+ (instancetype)arrayWithCapacity:(NSUInteger)capacity {
    return [[self alloc] init];
}
- (void)addObject:(id)object {
    _objects.push_back(object);
}
@end

@implementation NSDictionary {
@public
    std::map<std::string, id> _objects;
}
+ (instancetype)dictionary {
    return [[self alloc] init];
}
+ (instancetype)dictionaryWithObjects:(const id[])objects forKeys:(const id<NSCopying>[])keys count:(NSUInteger)count {
    NSDictionary* const dictionary = [[self alloc] init];
    for (NSUInteger index = 0; index < count; ++index) {
        dictionary->_objects[text(static_cast<NSString*>(keys[index]))] = objects[index];
    }
    return dictionary;
}
- (NSUInteger)count {
    return _objects.size();
}
- (NSArray*)allKeys {
    NSMutableArray* const keys = [NSMutableArray arrayWithCapacity:_objects.size()];
    for (const auto& [key, object] : _objects) {
        [keys addObject:[[NSString alloc] initWithBytes:key.data() length:key.size() encoding:NSUTF8StringEncoding]];
    }
    return keys;
}
- (id)objectForKey:(id)key {
    const auto found = _objects.find(text(key));
    return found == _objects.end() ? nil : found->second;
}
- (id)objectForKeyedSubscript:(id)key {
    return [self objectForKey:key];
}
- (id)copyWithZone:(void*)zone {
    NSDictionary* const copy = [[NSDictionary alloc] init];
    copy->_objects = _objects;
    return copy;
}
@end

@implementation NSMutableDictionary
+ (instancetype)dictionaryWithCapacity:(NSUInteger)capacity {
    return [[self alloc] init];
}
- (void)setObject:(id)object forKey:(id)key {
    _objects[text(key)] = object;
}
@end

@implementation NSURL {
    NSString* _address;
}
+ (instancetype)URLWithString:(NSString*)string {
    const std::string address = text(string);
    if (address.empty() || address.find(' ') != std::string::npos) {
        return nil;
    }
    NSURL* const url = [[self alloc] init];
    url->_address = string;
    return url;
}
- (NSString*)absoluteString {
    return _address;
}
- (NSString*)path {
    const std::string address = text(_address);
    const std::string path = address.substr(address.find("://") + 3);
    return [[NSString alloc] initWithBytes:path.data() length:path.size() encoding:NSUTF8StringEncoding];
}
- (id)copyWithZone:(void*)zone {
    return self;
}
@end

@implementation NSError
- (instancetype)initWithDomain:(NSString*)domain code:(NSInteger)code text:(NSString*)description {
    self = [super init];
    _domain = domain;
    _code = code;
    _localizedDescription = description;
    return self;
}
@end

NSExceptionName const NSInternalInconsistencyException = @"NSInternalInconsistencyException";

@implementation NSException
+ (void)raise:(NSExceptionName)name format:(NSString*)format, ... {
    throw std::runtime_error(text(name) + ": " + text(format));
}
@end

@implementation NSBundle {
    NSDictionary* _info;
}
+ (NSBundle*)mainBundle {
    if (state.mainBundle == nil) {
        state.mainBundle = [[NSBundle alloc] initWithPath:@"/usr/local/bin"
                                               identifier:nil
                                                     info:[NSDictionary dictionary]];
    }
    return state.mainBundle;
}
+ (instancetype)bundleWithURL:(NSURL*)url {
    const auto found = state.installed.find(text(url.path));
    return found == state.installed.end() ? nil : found->second;
}
- (instancetype)initWithPath:(NSString*)path identifier:(NSString*)identifier info:(NSDictionary*)info {
    self = [super init];
    _bundlePath = path;
    _bundleIdentifier = identifier;
    _info = info;
    return self;
}
- (NSURL*)bundleURL {
    return [NSURL URLWithString:[@"file://" stringByAppendingString:_bundlePath]];
}
- (id)objectForInfoDictionaryKey:(NSString*)key {
    return [_info objectForKey:key];
}
@end

@implementation NSProcessInfo
+ (NSProcessInfo*)processInfo {
    if (state.processInfo == nil) {
        state.processInfo = [[NSProcessInfo alloc] init];
    }
    return state.processInfo;
}
- (int)processIdentifier {
    return fake_mac::ownPid;
}
- (NSOperatingSystemVersion)operatingSystemVersion {
    return state.systemVersion;
}
- (id<NSObject>)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString*)reason {
    state.activities.push_back(options);
    return [[NSObject alloc] init];
}
- (void)endActivity:(id<NSObject>)activity {
    if (activity == nil || state.activities.empty()) {
        throw std::logic_error("an activity ends that never began");
    }
    state.activities.pop_back();
}
@end

@implementation NSDate
+ (instancetype)dateWithTimeIntervalSince1970:(NSTimeInterval)secs {
    NSDate* const date = [[NSDate alloc] init];
    date->_timeIntervalSince1970 = secs;
    return date;
}
@end

@implementation NSCalendar
+ (NSCalendar*)currentCalendar {
    return [[NSCalendar alloc] init];
}
- (NSInteger)component:(NSCalendarUnit)unit fromDate:(NSDate*)date {
    constexpr double secondsPerYear = 365.2425 * 86400;
    if (unit != NSCalendarUnitYear) {
        return 0;
    }
    return 1970 + static_cast<NSInteger>(date.timeIntervalSince1970 / secondsPerYear) + state.yearsAhead;
}
@end

@implementation NSUserDefaults {
    std::map<std::string, id> _stored;
    std::map<std::string, id> _registered;
}
+ (NSUserDefaults*)standardUserDefaults {
    if (state.defaults == nil) {
        state.defaults = [[NSUserDefaults alloc] init];
    }
    return state.defaults;
}
- (id)objectForKey:(NSString*)key {
    const id stored = [self storedObjectForKey:key];
    const auto registered = _registered.find(text(key));
    return stored != nil ? stored : registered == _registered.end() ? nil : registered->second;
}
- (id)storedObjectForKey:(NSString*)key {
    const auto stored = _stored.find(text(key));
    return stored == _stored.end() ? nil : stored->second;
}
- (void)setObject:(id)value forKey:(NSString*)key {
    // A property list is a copy of what it is given.
    _stored[text(key)] = [value copy];
}
- (void)registerDefaults:(NSDictionary<NSString*, id>*)defaults {
    for (NSString* key in defaults.allKeys) {
        _registered[text(key)] = [defaults objectForKey:key];
    }
}
@end

@implementation NSAttributedString {
@public
    NSMutableArray<NSAttributedString*>* _runs;
    NSString* _string;
    NSDictionary* _attributes;
}
- (instancetype)initWithString:(NSString*)string attributes:(NSDictionary*)attributes {
    self = [super init];
    _string = string;
    _attributes = attributes;
    _runs = [NSMutableArray array];
    return self;
}
- (NSString*)string {
    NSString* all = _string;
    for (NSAttributedString* run in _runs) {
        all = [all stringByAppendingString:run.string];
    }
    return all;
}
- (NSDictionary*)attributes {
    return _attributes;
}
- (NSArray*)runs {
    return _runs;
}
- (id)copyWithZone:(void*)zone {
    NSAttributedString* const copy = [[NSAttributedString alloc] initWithString:_string attributes:_attributes];
    for (NSAttributedString* run in _runs) {
        [copy->_runs addObject:run];
    }
    return copy;
}
@end

@implementation NSMutableAttributedString
- (void)appendAttributedString:(NSAttributedString*)string {
    [_runs addObject:string];
}
@end

namespace fake_mac {

void forgetFoundation() {
    state = {};
    forgetNotificationCentres();
}

void setMainBundle(NSBundle* bundle) {
    state.mainBundle = bundle;
}

void installBundle(NSBundle* bundle) {
    state.installed[text(bundle.bundlePath)] = bundle;
}

void setCalendarAhead(int years) {
    state.yearsAhead = years;
}

std::vector<NSActivityOptions> activities() {
    return state.activities;
}

void setSystemVersion(NSInteger major, NSInteger minor, NSInteger patch) {
    state.systemVersion = {major, minor, patch};
}

}  // namespace fake_mac
