#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/published.h"
#include "core/texts.h"
#include "platform/http_client.h"
#include "platform/main_loop.h"

namespace ferrowyn {

class Log;
class UserDefaults;
class Workspace;
struct Platform;

/// A dotted version number. The part from the first "-" on (a pre-release tag) is ignored, and missing components count
/// as 0, so 1.2 equals 1.2.0 and 1.2-beta.
class AppVersion {
public:
    /// Accepts any text: a component without a digit is 0, too large a number is the largest one.
    explicit AppVersion(std::string text);

    /// Most significant first.
    [[nodiscard]] const std::vector<std::int64_t>& components() const { return components_; }
    /// The text as it was given, for display.
    [[nodiscard]] const std::string& original() const { return original_; }

    friend std::weak_ordering operator<=>(const AppVersion& a, const AppVersion& b);
    friend bool operator==(const AppVersion& a, const AppVersion& b) { return std::is_eq(a <=> b); }

private:
    std::vector<std::int64_t> components_;
    std::string original_;
};

/// Finds out whether a newer release exists; it downloads and installs nothing. At most one check runs at a time. Main
/// thread; AppServices owns it, and the platform outlives it.
class UpdateChecker {
public:
    struct Release {
        AppVersion version;
        /// A well-formed address, not necessarily an https one.
        std::string downloadURL;
        /// As the server wrote them. Untrusted: they must be shown as plain text.
        std::optional<std::string> notes;

        friend bool operator==(const Release&, const Release&) = default;
    };

    /// The last check found no newer release.
    struct UpToDate {
        WallTime checkedAt;

        friend bool operator==(const UpToDate&, const UpToDate&) = default;
    };
    struct UpdateAvailable {
        Release release;

        friend bool operator==(const UpdateAvailable&, const UpdateAvailable&) = default;
    };
    /// The last check failed. The text is for the user. Two are equal when their texts are equal.
    struct Failed {
        Phrase text;

        friend bool operator==(const Failed& a, const Failed& b) {
            return a.text.untranslated() == b.text.untranslated();
        }
    };
    /// No check has run yet.
    struct Idle {
        friend bool operator==(const Idle&, const Idle&) = default;
    };
    struct Checking {
        friend bool operator==(const Checking&, const Checking&) = default;
    };
    using State = std::variant<UpToDate, UpdateAvailable, Failed, Idle, Checking>;

    enum class UpdateError { malformedManifest };
    /// The text for the user.
    [[nodiscard]] static std::string_view description(UpdateError error);

    /// The manifest is "/appcast.json" on the host in the program's `BundleInfo`.
    UpdateChecker(const Platform& platform, AppVersion currentVersion);

    [[nodiscard]] const Published<State>& state() const { return state_; }
    [[nodiscard]] const AppVersion& currentVersion() const { return currentVersion_; }
    /// Whether an update server is configured.
    [[nodiscard]] bool hasServer() const { return !updateHost_.empty(); }

    /// Called when the program starts. Checks when there is a server, automatic checks are allowed, and the last check
    /// is at least a day old.
    void checkIfDue(bool automaticUpdateChecks);
    /// Checks now. Cancels a check that is still running.
    void check();
    /// Opens the download address of the available release if it is an https address, else the home page if there is
    /// one.
    void openDownloadPage();
    /// Whether `openDownloadPage` has a page to open now.
    [[nodiscard]] bool hasDownloadPage() const { return downloadPage().has_value(); }

private:
    [[nodiscard]] std::optional<std::string> downloadPage() const;
    [[nodiscard]] std::optional<std::string> requestAddress() const;
    void finish(const HttpResult& result);
    [[nodiscard]] static std::variant<Release, UpdateError> parseManifest(std::string_view body);
    void accept(Release release);

    MainLoop& mainLoop_;
    Log& log_;
    UserDefaults& defaults_;
    HttpClient& session_;
    Workspace& workspace_;
    std::string systemVersion_;
    std::string updateHost_;
    std::optional<std::string> homePage_;
    AppVersion currentVersion_;
    Published<State> state_{Idle{}};
    Subscription checkTask_;
};

}  // namespace ferrowyn
