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

/// A dotted version number. What follows the first "-" (a pre-release tag) does not count, and missing components count
/// as 0, so 1.2 equals 1.2.0 and 1.2-beta.
class AppVersion {
public:
    /// Never fails: a piece without a digit reads as 0, a number beyond all bounds as the largest one.
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

/// Tells the user when a newer release exists; it downloads and installs nothing. At most one check is in flight. Main
/// thread. The platform outlives it.
class UpdateChecker {
public:
    struct Release {
        AppVersion version;
        /// A well-formed address, not necessarily an https one.
        std::string downloadURL;
        /// As the server wrote them: whoever shows them must not trust them.
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
    /// The last check failed; the text is for the user as it stands. Two are equal when they say the same.
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
    /// For the user.
    [[nodiscard]] static std::string_view description(UpdateError error);

    /// The manifest is "/appcast.json" on the host that the bundle names.
    UpdateChecker(const Platform& platform, AppVersion currentVersion);

    [[nodiscard]] const Published<State>& state() const { return state_; }
    [[nodiscard]] const AppVersion& currentVersion() const { return currentVersion_; }
    /// Whether there is anything to ask.
    [[nodiscard]] bool hasServer() const { return !updateHost_.empty(); }

    /// Checks when there is a server, automatic checks are allowed and the last one is a day old. For the start of the
    /// program.
    void checkIfDue(bool automaticUpdateChecks);
    /// Checks now; a check that is still in flight is cancelled, and its result dropped.
    void check();
    /// Opens the release's download address when one is available and safe to open, else the maker's home page, where
    /// there is one.
    void openDownloadPage();
    /// Whether there is a page to open now.
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
