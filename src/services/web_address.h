#pragma once

#include <string>
#include <string_view>

namespace ferrowyn {

/// Whether the text is a URI reference of RFC 3986. Relative ones count too.
[[nodiscard]] bool isWellFormedAddress(std::string_view address);

/// Whether the address is well formed, has the scheme https and has a host.
[[nodiscard]] bool isHttpsAddress(std::string_view address);

/// The text encoded as the value of a query parameter.
[[nodiscard]] std::string percentEncoded(std::string_view text);

}  // namespace ferrowyn
