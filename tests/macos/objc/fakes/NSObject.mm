// Compiled without automatic reference counting, which stands upon it.
#import <Foundation/Foundation.h>

extern "C" {
id class_createInstance(Class type);
void object_dispose(id object);
Class objc_opt_class(id object);
bool objc_opt_isKindOfClass(id object, Class type);
bool objc_opt_respondsToSelector(id object, SEL selector);
void* _Block_copy(const void* block);
}

@implementation NSObject

+ (instancetype)alloc {
    return class_createInstance(self);
}
+ (instancetype)new {
    return [[self alloc] init];
}
- (instancetype)init {
    return self;
}
- (void)dealloc {
    object_dispose(self);
}
- (id)copy {
    return [static_cast<id<NSCopying>>(self) copyWithZone:nullptr];
}
+ (Class)class {
    return self;
}
- (Class)class {
    return objc_opt_class(self);
}
+ (Class)superclass {
    return Nil;
}
- (Class)superclass {
    return Nil;
}
- (BOOL)isEqual:(id)object {
    return self == object;
}
- (NSUInteger)hash {
    return reinterpret_cast<NSUInteger>(self);
}
- (BOOL)isKindOfClass:(Class)aClass {
    return objc_opt_isKindOfClass(self, aClass);
}
- (BOOL)respondsToSelector:(SEL)aSelector {
    return objc_opt_respondsToSelector(self, aSelector);
}
+ (BOOL)instancesRespondToSelector:(SEL)aSelector {
    return NO;
}
- (NSString*)description {
    return @"";
}

@end

@implementation NSCoder
@end

/// The classes of blocks: on the stack, without captures, and copied to the heap.
@interface FakeBlock : NSObject <NSCopying>
@end
@interface FakeStackBlock : FakeBlock
@end
@interface FakeGlobalBlock : FakeBlock
@end
@interface FakeMallocBlock : FakeBlock
@end

@implementation FakeBlock
- (id)copyWithZone:(void*)zone {
    return static_cast<id>(_Block_copy(self));
}
@end
@implementation FakeStackBlock
@end
@implementation FakeGlobalBlock
@end
@implementation FakeMallocBlock
@end
