#pragma once

#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "tests/macos/fake/fake_object.h"

namespace ferrowyn::fake {

/// Every object of the fake and how often it is referred to, with what was done wrong to any of them. Any thread.
class Objects {
public:
    [[nodiscard]] static Objects& shared();

    void add(Object& object);
    void remove(const Object& object);
    void retain(const void* reference);
    void release(const void* reference);
    /// The object belongs to the system and lives on without the program: one of its references is not counted.
    void giveToSystem(const Object& object, bool isSystems);

    /// The object behind a reference; null, and a fault, when it is none, has ended or is of another kind.
    template <typename Kind>
    [[nodiscard]] Kind* find(const void* reference, const char* user) {
        auto* const object = dynamic_cast<Kind*>(findAny(reference, user));
        if (object == nullptr) {
            fault(std::string(user) + " was given an object of another kind");
        }
        return object;
    }
    [[nodiscard]] Object* findAny(const void* reference, const char* user);

    /// References that the program holds.
    [[nodiscard]] std::size_t liveCount() const;
    /// Their kinds, for a message.
    [[nodiscard]] std::string describeLive() const;

    void fault(std::string what);
    [[nodiscard]] std::vector<std::string> takeFaults();

private:
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
