#pragma once

#include <string_view>

/// Where the product lives on the web. Both are said once, when the build is configured.
namespace ferrowyn::product_site {

/// The host, with a port where it needs one, that serves the update manifest over HTTPS.
inline constexpr std::string_view updateHost = FERROWYN_UPDATE_HOST;
/// An https address.
inline constexpr std::string_view homePage = FERROWYN_HOME_PAGE;

}  // namespace ferrowyn::product_site
