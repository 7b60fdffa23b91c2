// Compiled without automatic reference counting, which stands upon it.
#import <Foundation/Foundation.h>

extern "C" {
id objc_retain(id object);
void object_dispose(id object);
Class objc_opt_class(id object);
bool objc_opt_isKindOfClass(id object, Class type);
bool objc_opt_respondsToSelector(id object, SEL selector);
void* _Block_copy(const void* block);
}

@implementation NSObject
- (instancetype)init {
    return self;
}
- (void)dealloc {
    object_dispose(self);
}
- (id)copy {
    return [static_cast<id<NSCopying>>(self) copyWithZone:nullptr];
}
/// Most classes of the frameworks that can be copied never change.
- (id)copyWithZone:(void*)zone {
    return objc_retain(self);
}
+ (Class)class {
    return self;
}
- (Class)class {
    return objc_opt_class(self);
}
- (BOOL)isKindOfClass:(Class)aClass {
    return objc_opt_isKindOfClass(self, aClass);
}
- (BOOL)respondsToSelector:(SEL)aSelector {
    return objc_opt_respondsToSelector(self, aSelector);
}
@end

@implementation NSCoder
@end

/// The classes of blocks: on the stack, without captures, and copied to the heap.
@interface FakeBlock : NSObject <NSCopying>
@end
@implementation FakeBlock
- (id)copyWithZone:(void*)zone {
    return static_cast<id>(_Block_copy(self));
}
@end

#define FAKE_BLOCK(_name)        \
    @interface _name : FakeBlock \
    @end                         \
    @implementation _name        \
    @end
FAKE_BLOCK(FakeStackBlock)
FAKE_BLOCK(FakeGlobalBlock)
FAKE_BLOCK(FakeMallocBlock)
