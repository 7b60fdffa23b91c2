#include "ui/about_lines.h"

#include <string_view>

namespace ferrowyn::about_lines {

std::string productName(const BundleInfo& bundle) {
    return bundle.name.value_or("Ferrowyn");
}

std::string version(const BundleInfo& bundle) {
    return bundle.shortVersion.value_or("1.0");
}

Phrase versionLine(const BundleInfo& bundle, const WindowTexts& texts) {
    return {texts.about.version, {version(bundle)}};
}

Phrase copyrightLine(const BundleInfo& bundle, int year, const WindowTexts& texts) {
    return bundle.copyright ? Phrase::verbatim(*bundle.copyright)
                            : Phrase{texts.about.copyright, {std::to_string(year)}};
}

Phrase accessibilitySummary(const BundleInfo& bundle, const WindowTexts& texts) {
    return {texts.about.summary, {productName(bundle), version(bundle)}};
}

std::string siteName(std::string_view address) {
    constexpr std::string_view scheme = "https://";
    if (address.starts_with(scheme)) {
        address.remove_prefix(scheme.size());
    }
    while (address.ends_with('/')) {
        address.remove_suffix(1);
    }
    return std::string(address);
}

}  // namespace ferrowyn::about_lines
