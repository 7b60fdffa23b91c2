#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace ferrowyn::fake {

/// A Core Foundation object of the fake: counted by reference, compared and hashed as its kind says. A reference of the
/// system's types is the address of one. Any thread.
class Object {
public:
    explicit Object(std::string kind);
    virtual ~Object();
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    [[nodiscard]] const std::string& kind() const { return kind_; }
    [[nodiscard]] virtual bool equals(const Object& other) const { return this == &other; }
    [[nodiscard]] virtual std::size_t hash() const { return std::hash<const Object*>{}(this); }

    /// The object as the system's type, with the one reference it was made with.
    template <typename Ref>
    [[nodiscard]] Ref as() {
        return reinterpret_cast<Ref>(this);
    }

private:
    std::string kind_;
};

/// A reference that one object of the fake holds in another.
template <typename Kind>
class Held {
public:
    Held() = default;
    /// Takes over the reference that the object was made with.
    explicit Held(Kind* object) : object_(object) {}
    [[nodiscard]] static Held retaining(Kind* object) {
        CFRetain(object);
        return Held(object);
    }
    Held(Held&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Held& operator=(Held&& other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    ~Held() {
        if (object_ != nullptr) {
            CFRelease(object_);
        }
    }

    [[nodiscard]] Kind* get() const { return object_; }
    Kind* operator->() const { return object_; }
    /// Hands the reference to the caller of a Create or Copy function.
    [[nodiscard]] Kind* release() { return std::exchange(object_, nullptr); }

private:
    Kind* object_ = nullptr;
};

/// All objects of the fake with their reference counts, and the faults in their use. Any thread.
class Objects {
public:
    [[nodiscard]] static Objects& shared();

    void add(Object& object);
    void remove(const Object& object);
    void retain(const void* reference);
    void release(const void* reference);
    /// The object belongs to the system, so that one of its references is not counted.
    void giveToSystem(const Object& object, bool isSystems);

    /// The object behind a reference; null, and a fault, when there is none, it has ended or is of another kind.
    template <typename Kind>
    [[nodiscard]] Kind* find(const void* reference, const char* user) {
        auto* const object = dynamic_cast<Kind*>(findAny(reference, user));
        if (object == nullptr) {
            fault(std::string(user) + " was given an object of another kind");
        }
        return object;
    }
    [[nodiscard]] Object* findAny(const void* reference, const char* user);
    /// The same; ends the program instead of returning null.
    template <typename Kind>
    [[nodiscard]] Kind& get(const void* reference, const char* user) {
        auto* const object = find<Kind>(reference, user);
        if (object == nullptr) {
            endWithFaults();
        }
        return *object;
    }

    /// References that the program holds.
    [[nodiscard]] std::size_t liveCount() const;
    /// Their kinds, for a message; empty when there are none.
    [[nodiscard]] std::string describeLive() const;

    void fault(std::string what);
    [[nodiscard]] std::vector<std::string> takeFaults();

private:
    [[noreturn]] void endWithFaults();

    struct Entry {
        Object* object;
        std::size_t references = 1;
        bool isSystems = false;
    };

    mutable std::mutex lock_;
    std::unordered_map<const void*, Entry> entries_;
    std::vector<std::string> faults_;
};

}  // namespace ferrowyn::fake
