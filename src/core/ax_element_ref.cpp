#include "core/ax_element_ref.h"

namespace ferrowyn {

std::string AXElementRef::description() const {
    return "AXElementRef(" + std::to_string(hash()) + ")";
}

}  // namespace ferrowyn
