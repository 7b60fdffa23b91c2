#include <string>
#include <utility>
#include <vector>

#import "tests/macos/objc/fakes/foundation.h"

extern "C" void objc_msgSend();

namespace {

struct Centres {
    NSNotificationCenter* local;
    NSDistributedNotificationCenter* distributed;
    NSOperationQueue* mainQueue;
};

Centres centres;

}  // namespace

namespace fake_mac {

void forgetNotificationCentres() {
    centres = {};
}

}  // namespace fake_mac

@interface FakeObservation : NSObject
@property(copy) NSNotificationName name;
@property(weak) id observer;
@property SEL selector;
@property(strong) NSOperationQueue* queue;
@property(copy) void (^block)(NSNotification*);
- (void)deliver:(NSNotification*)notification;
@end

@implementation FakeObservation
- (void)deliver:(NSNotification*)notification {
    if (self.block == nil) {
        const id observer = self.observer;
        using Send = void (*)(id, SEL, NSNotification*);
        reinterpret_cast<Send>(objc_msgSend)(observer, self.selector, notification);
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

@interface NSNotification ()
- (instancetype)initWithName:(NSNotificationName)name userInfo:(NSDictionary*)userInfo;
@end

@implementation NSNotification
- (instancetype)initWithName:(NSNotificationName)name userInfo:(NSDictionary*)userInfo {
    self = [super init];
    _name = name;
    _userInfo = userInfo;
    return self;
}
- (id)copyWithZone:(void*)zone {
    return self;
}
@end

@implementation NSNotificationCenter {
    std::vector<FakeObservation*> _observations;
}
+ (NSNotificationCenter*)defaultCenter {
    if (centres.local == nil) {
        centres.local = [[NSNotificationCenter alloc] init];
    }
    return centres.local;
}
- (void)addObserver:(id)observer selector:(SEL)selector name:(NSNotificationName)name object:(id)object {
    FakeObservation* const observation = [[FakeObservation alloc] init];
    observation.name = name;
    observation.observer = observer;
    observation.selector = selector;
    _observations.push_back(observation);
}
- (id<NSObject>)addObserverForName:(NSNotificationName)name
                            object:(id)object
                             queue:(NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification*))block {
    FakeObservation* const observation = [[FakeObservation alloc] init];
    observation.name = name;
    observation.queue = queue;
    observation.block = block;
    _observations.push_back(observation);
    return observation;
}
- (void)removeObserver:(id)observer {
    std::erase_if(_observations, [observer](FakeObservation* observation) {
        return observation == observer || (observation.block == nil && observation.observer == observer);
    });
}
- (void)removeObserver:(id)observer name:(NSNotificationName)name object:(id)object {
    [self removeObserver:observer];
}
- (void)post:(NSNotificationName)name userInfo:(NSDictionary*)userInfo {
    @autoreleasepool {
        NSNotification* const notification = [[NSNotification alloc] initWithName:name userInfo:userInfo];
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
    if (centres.distributed == nil) {
        centres.distributed = [[NSDistributedNotificationCenter alloc] init];
    }
    return centres.distributed;
}
- (void)addObserver:(id)observer selector:(SEL)selector name:(NSNotificationName)name object:(NSString*)object {
    [super addObserver:observer selector:selector name:name object:object];
}
- (void)removeObserver:(id)observer name:(NSNotificationName)name object:(NSString*)object {
    [super removeObserver:observer name:name object:object];
}
@end

@implementation NSOperationQueue {
    std::vector<void (^)(void)> _waiting;
}
+ (NSOperationQueue*)mainQueue {
    if (centres.mainQueue == nil) {
        centres.mainQueue = [[NSOperationQueue alloc] init];
    }
    return centres.mainQueue;
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
