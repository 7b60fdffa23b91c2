#pragma once

#include <cstdlib>
#include <memory>

namespace ferrowyn {

/// Frees replies, errors and events, which xcb allocates with malloc.
struct XcbFree {
    void operator()(void* memory) const { std::free(memory); }  // NOLINT(cppcoreguidelines-no-malloc): xcb's contract
};

template <typename Reply>
using XcbReply = std::unique_ptr<Reply, XcbFree>;

}  // namespace ferrowyn
