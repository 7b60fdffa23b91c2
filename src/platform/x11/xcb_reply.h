#pragma once

#include <cstdlib>
#include <memory>

namespace ferrowyn {

/// What xcb allocates with malloc and hands over: replies, errors and events.
struct XcbFree {
    void operator()(void* memory) const { std::free(memory); }  // NOLINT(cppcoreguidelines-no-malloc): xcb's contract
};

template <typename Reply>
using XcbReply = std::unique_ptr<Reply, XcbFree>;

}  // namespace ferrowyn
