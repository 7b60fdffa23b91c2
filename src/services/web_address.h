#pragma once

#include <string>
#include <string_view>

namespace ferrowyn {

/// Whether the text is an address as RFC 3986 writes them, relative ones included.
[[nodiscard]] bool isWellFormedAddress(std::string_view address);

/// Whether the address is well formed, says https and names a host.
[[nodiscard]] bool isHttpsAddress(std::string_view address);

/// The text as the value of a query parameter.
[[nodiscard]] std::string percentEncoded(std::string_view text);

}  // namespace ferrowyn
