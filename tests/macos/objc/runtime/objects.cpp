#include "tests/macos/objc/runtime/objects.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <new>
#include <set>
#include <utility>
#include <vector>

#include "tests/macos/objc/runtime/classes.h"

using namespace objc_abi;

extern "C" {
extern Class _NSConcreteStackBlock[];
extern Class _NSConcreteGlobalBlock[];
extern Class _NSConcreteMallocBlock[];
extern Class __CFConstantStringClassReference[];
Object* objc_retain(Object* object);
void objc_release(Object* object);
}

namespace {

/// Stands before each object on the heap.
struct alignas(16) Header {
    std::atomic<long> referenceCount;
};

struct World {
    std::recursive_mutex mutex;
    std::map<const Class*, long> liveCounts;
    /// The places that hold an object weakly.
    std::map<Object*, std::set<Object**>> weakPlaces;
};

World& world() {
    // Never destroyed: objects may still be released while the program ends.
    static auto* const shared = new World;
    return *shared;
}

thread_local std::vector<Object*> autoreleased;

Header& headerOf(Object* object) {
    return *(reinterpret_cast<Header*>(object) - 1);
}

/// Classes, constant strings and blocks that were never copied are not on the heap.
bool isOnHeap(const Object* object) {
    const Class* const type = object->isa;
    return (type->data->flags & ClassData::isMeta) == 0 && type != __CFConstantStringClassReference &&
           type != _NSConcreteStackBlock && type != _NSConcreteGlobalBlock;
}

Object* allocate(Class* type, std::size_t size) {
    void* const memory = std::calloc(1, sizeof(Header) + size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    auto* const header = new (memory) Header{1};
    auto* const object = reinterpret_cast<Object*>(header + 1);
    object->isa = type;
    const std::scoped_lock lock(world().mutex);
    ++world().liveCounts[type];
    return object;
}

void clearWeakPlaces(Object* object) {
    const std::scoped_lock lock(world().mutex);
    for (Object** const place : std::exchange(world().weakPlaces[object], {})) {
        *place = nullptr;
    }
    world().weakPlaces.erase(object);
}

void freeMemory(Object* object) {
    {
        const std::scoped_lock lock(world().mutex);
        --world().liveCounts[object->isa];
    }
    std::free(&headerOf(object));
}

void deallocate(Object* object) {
    // An object that is retained and released while it is deallocated must not be deallocated twice.
    constexpr long whileDeallocating = -(1L << 40);
    headerOf(object).referenceCount = whileDeallocating;
    clearWeakPlaces(object);
    if (object->isa == _NSConcreteMallocBlock) {
        const auto* const block = reinterpret_cast<Block*>(object);
        if ((block->flags & Block::hasCopyDispose) != 0) {
            block->descriptor->dispose(block);
        }
        freeMemory(object);
        return;
    }
    const char* const selector = uniqueSelector("dealloc");
    reinterpret_cast<void (*)(Object*, const char*)>(methodOf(object->isa, selector))(object, selector);
}

}  // namespace

namespace objc_runtime {

long liveObjectCount() {
    const std::scoped_lock lock(world().mutex);
    long sum = 0;
    for (const auto& [type, count] : world().liveCounts) {
        sum += count;
    }
    return sum;
}

std::string liveObjects() {
    const std::scoped_lock lock(world().mutex);
    std::string text;
    for (const auto& [type, count] : world().liveCounts) {
        if (count != 0) {
            text += std::string(type->data->name) + ": " + std::to_string(count) + "\n";
        }
    }
    return text;
}

}  // namespace objc_runtime

// What the compiler calls.
extern "C" {

Object* class_createInstance(Class* type) {
    Object* const object = allocate(type, type->data->instanceSize);
    callOwnMethods(object, type, ".cxx_construct", true);
    return object;
}

/// The end of every -dealloc.
void object_dispose(Object* object) {
    callOwnMethods(object, object->isa, ".cxx_destruct", false);
    freeMemory(object);
}

Object* objc_retain(Object* object) {
    if (object != nullptr && isOnHeap(object)) {
        headerOf(object).referenceCount.fetch_add(1);
    }
    return object;
}

void objc_release(Object* object) {
    if (object != nullptr && isOnHeap(object) && headerOf(object).referenceCount.fetch_sub(1) == 1) {
        deallocate(object);
    }
}

Object* objc_autorelease(Object* object) {
    if (object != nullptr) {
        autoreleased.push_back(object);
    }
    return object;
}

void* objc_autoreleasePoolPush() {
    return reinterpret_cast<void*>(autoreleased.size() + 1);
}

void objc_autoreleasePoolPop(void* pool) {
    const auto size = reinterpret_cast<std::size_t>(pool) - 1;
    while (autoreleased.size() > size) {
        Object* const object = autoreleased.back();
        autoreleased.pop_back();
        objc_release(object);
    }
}

Object* objc_autoreleaseReturnValue(Object* object) {
    return objc_autorelease(object);
}
Object* objc_retainAutorelease(Object* object) {
    return objc_autorelease(objc_retain(object));
}
Object* objc_retainAutoreleaseReturnValue(Object* object) {
    return objc_autorelease(objc_retain(object));
}
Object* objc_retainAutoreleasedReturnValue(Object* object) {
    return objc_retain(object);
}
Object* objc_unsafeClaimAutoreleasedReturnValue(Object* object) {
    return object;
}

void objc_storeStrong(Object** place, Object* object) {
    Object* const previous = *place;
    objc_retain(object);
    *place = object;
    objc_release(previous);
}

Object* objc_storeWeak(Object** place, Object* object) {
    const std::scoped_lock lock(world().mutex);
    if (const auto found = world().weakPlaces.find(*place); found != world().weakPlaces.end()) {
        found->second.erase(place);
        if (found->second.empty()) {
            world().weakPlaces.erase(found);
        }
    }
    // An object that is being deallocated cannot be retained any more.
    if (object != nullptr && isOnHeap(object) && headerOf(object).referenceCount <= 0) {
        object = nullptr;
    }
    *place = object;
    if (object != nullptr && isOnHeap(object)) {
        world().weakPlaces[object].insert(place);
    }
    return object;
}

Object* objc_initWeak(Object** place, Object* object) {
    *place = nullptr;
    return objc_storeWeak(place, object);
}

void objc_destroyWeak(Object** place) {
    objc_storeWeak(place, nullptr);
}

Object* objc_loadWeakRetained(Object** place) {
    const std::scoped_lock lock(world().mutex);
    Object* const object = *place;
    if (object == nullptr || (isOnHeap(object) && headerOf(object).referenceCount <= 0)) {
        return nullptr;
    }
    return objc_retain(object);
}

Object* objc_loadWeak(Object** place) {
    return objc_autorelease(objc_loadWeakRetained(place));
}

void objc_copyWeak(Object** to, Object** from) {
    Object* const object = objc_loadWeakRetained(from);
    objc_initWeak(to, object);
    objc_release(object);
}

void objc_moveWeak(Object** to, Object** from) {
    objc_copyWeak(to, from);
    objc_destroyWeak(from);
}

void* _Block_copy(const void* literal) {
    auto* const block = static_cast<Block*>(const_cast<void*>(literal));
    if (block == nullptr || block->isa != _NSConcreteStackBlock) {
        return objc_retain(reinterpret_cast<Object*>(block));
    }
    auto* const copy = reinterpret_cast<Block*>(allocate(_NSConcreteMallocBlock, block->descriptor->size));
    std::memcpy(copy, block, block->descriptor->size);
    copy->isa = _NSConcreteMallocBlock;
    if ((block->flags & Block::hasCopyDispose) != 0) {
        block->descriptor->copy(copy, block);
    }
    return copy;
}

void* objc_retainBlock(const void* block) {
    return _Block_copy(block);
}

/// For what a block captures: objects (3) and blocks (7).
void _Block_object_assign(void* place, const void* object, int flags) {
    constexpr int isBlock = 7;
    constexpr int isVariable = 8;
    if ((flags & isVariable) != 0) {
        std::fprintf(stderr, "__block variables are not part of this runtime\n");
        std::abort();
    }
    *static_cast<void**>(place) = (flags & isBlock) == isBlock
                                      ? _Block_copy(object)
                                      : objc_retain(static_cast<Object*>(const_cast<void*>(object)));
}

void _Block_object_dispose(const void* object, int /*flags*/) {
    objc_release(static_cast<Object*>(const_cast<void*>(object)));
}

void objc_enumerationMutation(Object* collection) {
    std::fprintf(stderr, "%s changed while it was gone through\n", collection->isa->data->name);
    std::abort();
}

// Shortcuts for the usual messages.
Object* objc_alloc(Class* type) {
    return class_createInstance(type);
}

Object* objc_alloc_init(Class* type) {
    const char* const selector = uniqueSelector("init");
    using Initializer = Object* (*)(Object*, const char*);
    return reinterpret_cast<Initializer>(methodOf(type, selector))(class_createInstance(type), selector);
}

Object* objc_opt_new(Class* type) {
    return objc_alloc_init(type);
}

Class* objc_opt_class(Object* object) {
    if (object == nullptr) {
        return nullptr;
    }
    const bool isClass = (object->isa->data->flags & ClassData::isMeta) != 0;
    return isClass ? reinterpret_cast<Class*>(object) : object->isa;
}

Object* objc_opt_self(Object* object) {
    return object;
}

bool objc_opt_isKindOfClass(Object* object, Class* type) {
    return object != nullptr && isClassOrBelow(object->isa, type);
}

bool objc_opt_respondsToSelector(Object* object, const char* selector) {
    return object != nullptr && methodOf(object->isa, selector) != nullptr;
}

// Properties that are objects.
namespace {
Object** propertyAt(Object* self, std::ptrdiff_t offset) {
    return reinterpret_cast<Object**>(reinterpret_cast<char*>(self) + offset);
}

void storeCopy(Object** place, Object* value) {
    const char* const selector = uniqueSelector("copyWithZone:");
    using Copier = Object* (*)(Object*, const char*, void*);
    Object* const copy =
        value == nullptr ? nullptr : reinterpret_cast<Copier>(methodOf(value->isa, selector))(value, selector, nullptr);
    objc_release(std::exchange(*place, copy));
}
}  // namespace

Object* objc_getProperty(Object* self, const char* /*selector*/, std::ptrdiff_t offset, bool /*isAtomic*/) {
    return objc_autorelease(objc_retain(*propertyAt(self, offset)));
}
#define SETTER(_name, _set)                                                                    \
    void _name(Object* self, const char* /*selector*/, Object* value, std::ptrdiff_t offset) { \
        _set(propertyAt(self, offset), value);                                                 \
    }
SETTER(objc_setProperty_nonatomic, objc_storeStrong)
SETTER(objc_setProperty_atomic, objc_storeStrong)
SETTER(objc_setProperty_nonatomic_copy, storeCopy)
SETTER(objc_setProperty_atomic_copy, storeCopy)
void objc_copyStruct(void* to, const void* from, std::ptrdiff_t size, bool /*isAtomic*/, bool /*hasStrong*/) {
    std::memmove(to, from, static_cast<std::size_t>(size));
}

void objc_copyCppObjectAtomic(void* to, const void* from, void (*copy)(void*, const void*)) {
    copy(to, from);
}

/// Stands in every class where a cache of methods would.
void* _objc_empty_cache = nullptr;

}  // extern "C"

namespace objc_runtime {

AutoreleasePool::AutoreleasePool() : pool_(objc_autoreleasePoolPush()) {}
AutoreleasePool::~AutoreleasePool() {
    objc_autoreleasePoolPop(pool_);
}

}  // namespace objc_runtime
