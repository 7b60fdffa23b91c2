#pragma once

#include <cstdint>

/// What the compiler writes into an object file for each class (64 bits, the runtime of macOS 10.5 and later), as far
/// as the runtime of these tests reads it.
namespace objc_abi {

using Implementation = void (*)();

struct Method {
    /// The name; a pointer that stands for the selector once the class has been read.
    const char* name;
    const char* types;
    Implementation implementation;
};

template <typename Entry>
struct List {
    std::uint32_t entrySize;
    std::uint32_t count;
    Entry entries[1];
};

struct InstanceVariable {
    /// Where the offset is kept that the code reads.
    long* offset;
    const char* name;
    const char* type;
    std::uint32_t alignment;
    std::uint32_t size;
};

struct ClassData {
    static constexpr std::uint32_t isMeta = 1;

    std::uint32_t flags;
    std::uint32_t instanceStart;
    std::uint32_t instanceSize;
    const void* ivarLayout;
    const char* name;
    List<Method>* methods;
    const void* protocols;
    List<InstanceVariable>* ivars;
    const void* weakIvarLayout;
    const void* properties;
};

struct Class {
    Class* isa;
    Class* superclass;
    void* cache;
    void* table;
    ClassData* data;
};

struct Object {
    Class* isa;
};

struct Super {
    Object* receiver;
    Class* current;
};

struct Category {
    const char* name;
    Class* extended;
    List<Method>* instanceMethods;
    List<Method>* classMethods;
};

struct BlockDescriptor {
    unsigned long reserved;
    unsigned long size;
    void (*copy)(void*, const void*);
    void (*dispose)(const void*);
};

struct Block {
    static constexpr int hasCopyDispose = 1 << 25;
    static constexpr int isGlobal = 1 << 28;

    Class* isa;
    int flags;
    int reserved;
    Implementation invoke;
    BlockDescriptor* descriptor;
};

// The classes as the runtime has read them.

/// The one pointer that stands for this selector.
const char* uniqueSelector(const char* name);
/// Null when neither the class nor a superclass has the method.
Implementation methodOf(const Class* type, const char* selector);
/// Calls the method of each class from the root down to this one that implements it, or in the opposite order.
void callOwnMethods(Object* object, Class* type, const char* name, bool isRootFirst);
bool isClassOrBelow(const Class* type, const Class* ancestor);

}  // namespace objc_abi
