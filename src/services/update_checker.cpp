#include "services/update_checker.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

#include "platform/application.h"
#include "platform/log.h"
#include "platform/platform.h"
#include "platform/user_defaults.h"
#include "platform/workspace.h"
#include "services/web_address.h"

namespace ferrowyn {

namespace {

std::int64_t digitsOf(std::string_view piece) {
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    std::int64_t number = 0;
    for (const char character : piece) {
        if (character < '0' || character > '9') {
            continue;
        }
        const std::int64_t digit = character - '0';
        if (number > (largest - digit) / 10) {
            return largest;
        }
        number = number * 10 + digit;
    }
    return number;
}

std::int64_t componentAt(const std::vector<std::int64_t>& components, std::size_t index) {
    return index < components.size() ? components[index] : 0;
}

}  // namespace

AppVersion::AppVersion(std::string text) : original_(std::move(text)) {
    auto rest = std::string_view(original_);
    rest = rest.substr(0, rest.find('-'));
    while (true) {
        const auto dot = rest.find('.');
        components_.push_back(digitsOf(rest.substr(0, dot)));
        if (dot == std::string_view::npos) {
            return;
        }
        rest.remove_prefix(dot + 1);
    }
}

std::weak_ordering operator<=>(const AppVersion& a, const AppVersion& b) {
    const auto count = std::max(a.components_.size(), b.components_.size());
    for (std::size_t index = 0; index < count; ++index) {
        const auto order = componentAt(a.components_, index) <=> componentAt(b.components_, index);
        if (order != std::strong_ordering::equal) {
            return order;
        }
    }
    return std::weak_ordering::equivalent;
}

namespace {

constexpr std::string_view logCategory = "ui";
/// Seconds since 1970-01-01 00:00 UTC of the last check that received a well-formed manifest.
constexpr std::string_view lastCheckKey = "updates.lastCheck";
constexpr std::string_view manifestPath = "/appcast.json";
constexpr double checkInterval = 86'400;
constexpr Seconds requestTimeout{10.0};
constexpr std::size_t largestManifest = std::size_t{1} << 20U;

std::optional<std::string> textMember(const nlohmann::json& manifest, const char* key) {
    const auto found = manifest.find(key);
    return found != manifest.end() && found->is_string() ? std::optional(found->get<std::string>()) : std::nullopt;
}

/// Whether the text is safe wherever a version is shown: in a log, on a terminal, in a label that reads mark-up.
bool isPresentableVersion(std::string_view version) {
    constexpr std::size_t longest = 64;
    constexpr std::string_view characters = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ .-+_~";
    return version.size() <= longest && version.find_first_not_of(characters) == std::string_view::npos;
}

}  // namespace

std::string_view UpdateChecker::description(UpdateError error) {
    switch (error) {
        case UpdateError::malformedManifest:
            return translatable("Ferrowyn", "The update manifest could not be read.");
    }
    return {};
}

UpdateChecker::UpdateChecker(const Platform& platform, AppVersion currentVersion)
    : mainLoop_(platform.mainLoop),
      log_(platform.log),
      defaults_(platform.userDefaults),
      session_(platform.httpClient),
      workspace_(platform.workspace),
      systemVersion_(platform.application.systemVersion()),
      updateHost_(platform.application.bundleInfo().updateHost.value_or("")),
      homePage_(platform.application.bundleInfo().homePage),
      currentVersion_(std::move(currentVersion)) {}

void UpdateChecker::checkIfDue(bool automaticUpdateChecks) {
    if (!automaticUpdateChecks || !hasServer()) {
        return;
    }
    const double lastCheck = defaults_.real(lastCheckKey);
    if (lastCheck > 0 && mainLoop_.wallTime().time_since_epoch().count() - lastCheck < checkInterval) {
        return;
    }
    check();
}

void UpdateChecker::check() {
    checkTask_.reset();
    state_.set(Checking{});
    const auto address = requestAddress();
    if (!address) {
        state_.set(Failed{{translatable("Ferrowyn", "Could not build the update URL."), {}}});
        return;
    }
    checkTask_ = session_.get({.url = *address, .timeout = requestTimeout, .maximumBodySize = largestManifest},
                              [this](const HttpResult& result) { finish(result); });
}

std::optional<std::string> UpdateChecker::requestAddress() const {
    auto address = fmt::format("https://{}{}?v={}&os={}", updateHost_, manifestPath,
                               percentEncoded(currentVersion_.original()), percentEncoded(systemVersion_));
    return isHttpsAddress(address) ? std::optional(std::move(address)) : std::nullopt;
}

void UpdateChecker::finish(const HttpResult& result) {
    if (const auto* failure = std::get_if<HttpFailure>(&result)) {
        state_.set(Failed{Phrase::verbatim(failure->description)});
        return;
    }
    const auto& response = std::get<HttpResponse>(result);
    if (response.status < 200 || response.status > 299) {
        state_.set(Failed{
            {translatable("Ferrowyn", "The update server replied with %1."), {std::to_string(response.status)}}});
        return;
    }
    auto manifest = parseManifest(response.body);
    if (const auto* error = std::get_if<UpdateError>(&manifest)) {
        state_.set(Failed{{description(*error), {}}});
        return;
    }
    accept(std::get<Release>(std::move(manifest)));
}

std::variant<UpdateChecker::Release, UpdateChecker::UpdateError> UpdateChecker::parseManifest(std::string_view body) {
    const auto manifest = nlohmann::json::parse(body, nullptr, false);
    if (!manifest.is_object()) {
        return UpdateError::malformedManifest;
    }
    auto version = textMember(manifest, "version");
    auto url = textMember(manifest, "url");
    if (!version || !isPresentableVersion(*version) || !url || !isWellFormedAddress(*url)) {
        return UpdateError::malformedManifest;
    }
    return Release{AppVersion(*std::move(version)), *std::move(url), textMember(manifest, "notes")};
}

void UpdateChecker::accept(Release release) {
    const auto now = mainLoop_.wallTime();
    defaults_.set(lastCheckKey, now.time_since_epoch().count());
    if (currentVersion_ < release.version) {
        const auto message = fmt::format("Update available: {}", release.version.original());
        state_.set(UpdateAvailable{std::move(release)});
        log_.write(LogLevel::standard, logCategory, message);
    } else {
        state_.set(UpToDate{now});
    }
}

std::optional<std::string> UpdateChecker::downloadPage() const {
    // The manifest may contain any address. Only an https address is given to the system, which could run a program for
    // others.
    const auto* const available = std::get_if<UpdateAvailable>(&state_.get());
    if (available != nullptr && isHttpsAddress(available->release.downloadURL)) {
        return available->release.downloadURL;
    }
    return homePage_;
}

void UpdateChecker::openDownloadPage() {
    const auto* const available = std::get_if<UpdateAvailable>(&state_.get());
    if (available != nullptr && !isHttpsAddress(available->release.downloadURL)) {
        log_.write(LogLevel::error, logCategory,
                   fmt::format("Not opened: the download address \"{}\" is not an https address",
                               available->release.downloadURL));
    }
    if (const auto address = downloadPage()) {
        workspace_.open(*address);
    }
}

}  // namespace ferrowyn
