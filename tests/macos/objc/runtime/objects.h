#pragma once

#include <string>

namespace objc_runtime {

/// How many objects and copied blocks there are now.
[[nodiscard]] long liveObjectCount();
/// "class: count" for each class that has any, one a line.
[[nodiscard]] std::string liveObjects();

/// Wraps a callback of the system: objects that were autoreleased within are released at its end.
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
