#import "tests/macos/objc/fakes/foundation.h"

#include <stdexcept>
#include <utility>

#include "core/text_encoding.h"

using fake_mac::foundation;
using fake_mac::string;
using fake_mac::utf8;

extern "C" void objc_msgSend();

namespace fake_mac {

Foundation& foundation() {
    static Foundation state;
    return state;
}

std::string utf8(NSString* string) {
    const char* const bytes = string.UTF8String;
    return bytes == nullptr ? "" : bytes;
}

NSString* string(const std::string& utf8) {
    return [[NSString alloc] initWithBytes:utf8.data() length:utf8.size() encoding:NSUTF8StringEncoding];
}

}  // namespace fake_mac

namespace {

/// What the compiler makes of a literal.
struct ConstantString {
    static constexpr std::uint64_t isUtf16 = 0x10;

    void* isa;
    std::uint64_t flags;
    const void* characters;
    long length;
};

}  // namespace

@implementation NSString {
    std::string _text;
}
- (instancetype)initWithBytes:(const void*)bytes length:(NSUInteger)length encoding:(NSStringEncoding)encoding {
    self = [super init];
    _text.assign(static_cast<const char*>(bytes), length);
    return encoding == NSUTF8StringEncoding && ferrowyn::text::isValidUtf8(_text) ? self : nil;
}
- (const char*)UTF8String {
    return _text.c_str();
}
- (BOOL)isEqualToString:(NSString*)other {
    return utf8(self) == utf8(other);
}
- (NSString*)stringByAppendingString:(NSString*)end {
    return string(utf8(self) + utf8(end));
}
@end

@interface NSConstantString : NSString
@end

@implementation NSConstantString
- (const char*)UTF8String {
    static std::map<const void*, std::string> converted;
    NSConstantString* __unsafe_unretained unowned = self;
    const auto* const literal = __builtin_bit_cast(const ConstantString*, unowned);
    if ((literal->flags & ConstantString::isUtf16) == 0) {
        return static_cast<const char*>(literal->characters);
    }
    const std::u16string_view units(static_cast<const char16_t*>(literal->characters),
                                    static_cast<std::size_t>(literal->length));
    return converted.try_emplace(literal, ferrowyn::text::utf8FromUtf16(units)).first->second.c_str();
}
@end

/// Booleans are numbers of another class.
@interface FakeBoolean : NSNumber
@end

@implementation NSNumber
+ (NSNumber*)numberOfType:(const char*)type whole:(long long)whole real:(double)real {
    NSNumber* const number = [[self alloc] init];
    number->_objCType = type;
    number->_boolValue = whole != 0;
    number->_longLongValue = whole;
    number->_doubleValue = real;
    return number;
}
+ (NSNumber*)numberWithBool:(BOOL)value {
    return [FakeBoolean numberOfType:"c" whole:value ? 1 : 0 real:0];
}
+ (NSNumber*)numberWithInt:(int)value {
    return [self numberOfType:"i" whole:value real:value];
}
+ (NSNumber*)numberWithLongLong:(long long)value {
    return [self numberOfType:"q" whole:value real:static_cast<double>(value)];
}
+ (NSNumber*)numberWithDouble:(double)value {
    return [self numberOfType:"d" whole:static_cast<long long>(value) real:value];
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
        dictionary->_objects[utf8(static_cast<NSString*>(keys[index]))] = objects[index];
    }
    return dictionary;
}
- (id)objectForKey:(id)key {
    const auto found = _objects.find(utf8(key));
    return found == _objects.end() ? nil : found->second;
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
    _objects[utf8(key)] = object;
}
@end

@implementation NSURL
+ (instancetype)URLWithString:(NSString*)address {
    if (utf8(address).empty() || utf8(address).find(' ') != std::string::npos) {
        return nil;
    }
    NSURL* const url = [[self alloc] init];
    url->_absoluteString = address;
    return url;
}
- (NSString*)path {
    const std::string address = utf8(_absoluteString);
    return string(address.substr(address.find("://") + 3));
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
    throw std::runtime_error(utf8(name) + ": " + utf8(format));
}
@end

@implementation NSBundle {
    NSDictionary* _info;
}
+ (NSBundle*)mainBundle {
    if (foundation().mainBundle == nil) {
        foundation().mainBundle = [[NSBundle alloc] initWithPath:@"/usr/local/bin"
                                                      identifier:nil
                                                            info:[NSDictionary dictionary]];
    }
    return foundation().mainBundle;
}
+ (instancetype)bundleWithURL:(NSURL*)url {
    const auto found = foundation().bundlesByPath.find(utf8(url.path));
    return found == foundation().bundlesByPath.end() ? nil : found->second;
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
    return fake_mac::shared(foundation().processInfo);
}
- (int)processIdentifier {
    return fake_mac::ownPid;
}
- (NSOperatingSystemVersion)operatingSystemVersion {
    return foundation().systemVersion;
}
- (id<NSObject>)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString*)reason {
    foundation().activities.push_back(options);
    return [[NSObject alloc] init];
}
- (void)endActivity:(id<NSObject>)activity {
    if (activity == nil || foundation().activities.empty()) {
        throw std::logic_error("an activity ends that never began");
    }
    foundation().activities.pop_back();
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
    const auto year = 1970 + static_cast<NSInteger>(date.timeIntervalSince1970 / secondsPerYear);
    return unit == NSCalendarUnitYear ? year + foundation().calendarYearsAhead : 0;
}
@end

@implementation NSUserDefaults {
    NSMutableDictionary* _stored;
    NSDictionary* _registered;
}
+ (NSUserDefaults*)standardUserDefaults {
    return fake_mac::shared(foundation().defaults);
}
- (id)objectForKey:(NSString*)key {
    return [self storedObjectForKey:key] ?: [_registered objectForKey:key];
}
- (id)storedObjectForKey:(NSString*)key {
    return [_stored objectForKey:key];
}
- (void)setObject:(id)value forKey:(NSString*)key {
    if (_stored == nil) {
        _stored = [[NSMutableDictionary alloc] init];
    }
    // A property list is a copy of what it is given.
    [_stored setObject:[value copy] forKey:key];
}
- (void)registerDefaults:(NSDictionary<NSString*, id>*)defaults {
    _registered = [defaults copy];
}
@end

@implementation NSAttributedString {
@public
    NSString* _string;
    NSMutableArray<NSAttributedString*>* _appended;
}
- (instancetype)initWithString:(NSString*)string attributes:(NSDictionary*)attributes {
    self = [super init];
    _string = string;
    _attributes = attributes;
    _appended = [NSMutableArray array];
    return self;
}
- (NSString*)string {
    NSString* all = _string;
    for (NSAttributedString* run in _appended) {
        all = [all stringByAppendingString:run.string];
    }
    return all;
}
- (NSArray*)runs {
    return _appended;
}
@end

@implementation NSMutableAttributedString
- (void)appendAttributedString:(NSAttributedString*)string {
    [_appended addObject:string];
}
- (id)copyWithZone:(void*)zone {
    NSAttributedString* const copy = [[NSAttributedString alloc] initWithString:_string attributes:self.attributes];
    for (NSAttributedString* run in _appended) {
        [copy->_appended addObject:run];
    }
    return copy;
}
@end

/// An observer with a selector, or a block and its queue.
@interface FakeObservation : NSObject
@property(copy) NSNotificationName name;
@property(weak) id observer;
@property SEL selector;
@property(strong) NSOperationQueue* queue;
@property(copy) void (^block)(NSNotification*);
@end

@implementation FakeObservation
- (void)deliver:(NSNotification*)notification {
    if (self.block == nil) {
        using Send = void (*)(id, SEL, NSNotification*);
        reinterpret_cast<Send>(objc_msgSend)(self.observer, self.selector, notification);
        return;
    }
    const auto block = self.block;
    if (self.queue == nil) {
        block(notification);
    } else {
        [self.queue add:^{
          block(notification);
        }];
    }
}
@end

@implementation NSNotification {
@public
    NSNotificationName _name;
    NSDictionary* _userInfo;
}
@synthesize name = _name, userInfo = _userInfo;
@end

@implementation NSNotificationCenter {
    std::vector<FakeObservation*> _observations;
}
+ (NSNotificationCenter*)defaultCenter {
    return fake_mac::shared(foundation().localCenter);
}
- (FakeObservation*)observationOf:(NSNotificationName)name {
    FakeObservation* const observation = [[FakeObservation alloc] init];
    observation.name = name;
    _observations.push_back(observation);
    return observation;
}
- (void)addObserver:(id)observer selector:(SEL)selector name:(NSNotificationName)name object:(id)object {
    FakeObservation* const observation = [self observationOf:name];
    observation.observer = observer;
    observation.selector = selector;
}
- (id<NSObject>)addObserverForName:(NSNotificationName)name
                            object:(id)object
                             queue:(NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification*))block {
    FakeObservation* const observation = [self observationOf:name];
    observation.queue = queue;
    observation.block = block;
    return observation;
}
- (void)removeObserver:(id)observer {
    std::erase_if(_observations, [observer](FakeObservation* observation) {
        return observation == observer || (observation.block == nil && observation.observer == observer);
    });
}
- (void)post:(NSNotificationName)name userInfo:(NSDictionary*)userInfo {
    @autoreleasepool {
        NSNotification* const notification = [[NSNotification alloc] init];
        notification->_name = name;
        notification->_userInfo = userInfo;
        const auto observations = _observations;
        for (FakeObservation* observation : observations) {
            if ([observation.name isEqualToString:name]) {
                [observation deliver:notification];
            }
        }
    }
}
- (NSUInteger)observerCount {
    return _observations.size();
}
@end

@implementation NSDistributedNotificationCenter
+ (NSDistributedNotificationCenter*)defaultCenter {
    return fake_mac::shared(foundation().distributedCenter);
}
@end

@implementation NSOperationQueue {
    std::vector<void (^)(void)> _waiting;
}
+ (NSOperationQueue*)mainQueue {
    return fake_mac::shared(foundation().mainQueue);
}
- (void)add:(void (^)(void))operation {
    if (_isDeferring) {
        _waiting.push_back([operation copy]);
    } else {
        operation();
    }
}
- (void)drain {
    const auto operations = std::exchange(_waiting, {});
    for (const auto& operation : operations) {
        @autoreleasepool {
            operation();
        }
    }
}
@end
