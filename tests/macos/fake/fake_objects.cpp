#include "tests/macos/fake/fake_objects.h"

#include <cstdio>
#include <cstdlib>

namespace ferrowyn::fake {

Object::Object(std::string kind) : kind_(std::move(kind)) {
    Objects::shared().add(*this);
}

Object::~Object() {
    Objects::shared().remove(*this);
}

Objects& Objects::shared() {
    // Never destroyed: constants of the fake outlive every order of static destruction.
    static auto* const objects = new Objects;
    return *objects;
}

void Objects::add(Object& object) {
    const std::scoped_lock lock(lock_);
    entries_.emplace(&object, Entry{&object});
}

void Objects::remove(const Object& object) {
    const std::scoped_lock lock(lock_);
    entries_.erase(&object);
}

void Objects::retain(const void* reference) {
    const std::scoped_lock lock(lock_);
    const auto found = entries_.find(reference);
    if (found == entries_.end()) {
        faults_.push_back("CFRetain of something that is no object any more");
        return;
    }
    ++found->second.references;
}

void Objects::release(const void* reference) {
    Object* ended = nullptr;
    {
        const std::scoped_lock lock(lock_);
        const auto found = entries_.find(reference);
        if (found == entries_.end()) {
            faults_.push_back("CFRelease of something that is no object any more");
            return;
        }
        Entry& entry = found->second;
        if (entry.isSystems && entry.references == 1) {
            faults_.push_back("CFRelease of a " + entry.object->kind() + " that belongs to the system");
            return;
        }
        if (--entry.references == 0) {
            ended = entry.object;
            entries_.erase(found);
        }
    }
    // Without the lock: what it holds is released in turn.
    delete ended;
}

void Objects::giveToSystem(const Object& object, bool isSystems) {
    const std::scoped_lock lock(lock_);
    entries_.at(&object).isSystems = isSystems;
}

Object* Objects::findAny(const void* reference, const char* user) {
    const std::scoped_lock lock(lock_);
    const auto found = entries_.find(reference);
    if (found == entries_.end()) {
        faults_.push_back(std::string(user) +
                          (reference == nullptr ? " was given nothing" : " was given an object that has ended"));
        return nullptr;
    }
    return found->second.object;
}

std::size_t Objects::liveCount() const {
    const std::scoped_lock lock(lock_);
    std::size_t count = 0;
    for (const auto& [reference, entry] : entries_) {
        count += entry.isSystems ? entry.references - 1 : 1;
    }
    return count;
}

std::string Objects::describeLive() const {
    const std::scoped_lock lock(lock_);
    std::string kinds;
    for (const auto& [reference, entry] : entries_) {
        if (!entry.isSystems || entry.references > 1) {
            kinds += entry.object->kind() + " held " + std::to_string(entry.references) + " times; ";
        }
    }
    return kinds;
}

void Objects::fault(std::string what) {
    const std::scoped_lock lock(lock_);
    faults_.push_back(std::move(what));
}

void Objects::endWithFaults() {
    for (const auto& fault : takeFaults()) {
        std::fprintf(stderr, "%s\n", fault.c_str());
    }
    std::abort();
}

std::vector<std::string> Objects::takeFaults() {
    const std::scoped_lock lock(lock_);
    return std::exchange(faults_, {});
}

}  // namespace ferrowyn::fake

using ferrowyn::fake::Object;
using ferrowyn::fake::Objects;

CFTypeRef CFRetain(CFTypeRef object) {
    Objects::shared().retain(object);
    return object;
}

void CFRelease(CFTypeRef object) {
    Objects::shared().release(object);
}

CFTypeID CFGetTypeID(CFTypeRef object) {
    return std::hash<std::string>{}(Objects::shared().get<Object>(object, "CFGetTypeID").kind());
}

Boolean CFEqual(CFTypeRef first, CFTypeRef second) {
    const auto& a = Objects::shared().get<Object>(first, "CFEqual");
    const auto& b = Objects::shared().get<Object>(second, "CFEqual");
    return a.kind() == b.kind() && a.equals(b);
}

CFHashCode CFHash(CFTypeRef object) {
    return Objects::shared().get<Object>(object, "CFHash").hash();
}
