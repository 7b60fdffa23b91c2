#pragma once

#include <string>

namespace objc_runtime {

/// How many objects and copied blocks there are now.
[[nodiscard]] long liveObjectCount();
/// "class: count" for each class that has any, one a line.
[[nodiscard]] std::string liveObjects();

/// What a callback of the system is wrapped in: whatever was autoreleased within goes when it ends.
class AutoreleasePool {
public:
    AutoreleasePool();
    ~AutoreleasePool();
    AutoreleasePool(const AutoreleasePool&) = delete;
    AutoreleasePool& operator=(const AutoreleasePool&) = delete;

private:
    void* pool_;
};

}  // namespace objc_runtime
