#pragma once

#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/published.h"
#include "platform/application.h"
#include "platform/http_client.h"
#include "platform/icon_source.h"
#include "platform/log.h"
#include "platform/login_item.h"
#include "platform/trust.h"
#include "platform/user_defaults.h"

namespace ferrowyn {

/// One log message.
struct SimulatedLogLine {
    LogLevel level = LogLevel::standard;
    std::string category;
    std::string message;
    friend bool operator==(const SimulatedLogLine&, const SimulatedLogLine&) = default;
};

/// Keeps every message until a test takes it. Any thread.
class SimulatedLog final : public Log {
public:
    void write(LogLevel level, std::string_view category, std::string_view message) override;

    std::vector<SimulatedLogLine> take();

private:
    std::mutex lock_;
    std::vector<SimulatedLogLine> lines_;
};

/// A store in memory that remembers every write.
class SimulatedUserDefaults final : public UserDefaults {
public:
    void registerDefaults(const std::map<std::string, DefaultsValue>& defaults) override;
    [[nodiscard]] std::optional<DefaultsValue> value(std::string_view key) const override;
    void set(std::string_view key, DefaultsValue value) override;

    [[nodiscard]] const std::vector<std::pair<std::string, DefaultsValue>>& writes() const { return writes_; }

    /// While writing fails, values are kept in memory only. The next write that succeeds writes them all.
    void setWritesFail(bool fail) { writesFail_ = fail; }
    /// Goes back to what was written.
    void forgetUnwritten() { stored_ = written_; }

private:
    std::map<std::string, DefaultsValue, std::less<>> registered_;
    std::map<std::string, DefaultsValue, std::less<>> stored_;
    std::map<std::string, DefaultsValue, std::less<>> written_;
    bool writesFail_ = false;
    std::vector<std::pair<std::string, DefaultsValue>> writes_;
};

/// Sends nothing: a test reads the requests and answers them in any order.
class SimulatedHttpClient final : public HttpClient {
public:
    [[nodiscard]] Subscription get(const HttpRequest& request,
                                   std::function<void(const HttpResult&)> completion) override {
        const std::size_t index = requests_.size();
        requests_.push_back({request, std::move(completion)});
        return Subscription([this, index] { requests_.at(index).completion = nullptr; });
    }

    [[nodiscard]] std::size_t requestCount() const { return requests_.size(); }
    [[nodiscard]] const HttpRequest& request(std::size_t index) const { return requests_.at(index).request; }
    /// Whether the request was cancelled or answered.
    [[nodiscard]] bool hasEnded(std::size_t index) const { return requests_.at(index).completion == nullptr; }
    /// Does nothing for a request that has ended.
    void answer(std::size_t index, const HttpResult& result) {
        if (const auto completion = std::exchange(requests_.at(index).completion, nullptr)) {
            completion(result);
        }
    }

private:
    struct Entry {
        HttpRequest request;
        std::function<void(const HttpResult&)> completion;
    };

    std::deque<Entry> requests_;
};

/// Icons of one plain colour, a different one for each thing asked for. Files and processes have one unless a test says
/// otherwise.
class SimulatedIcons final : public IconSource {
public:
    [[nodiscard]] std::shared_ptr<const IconImage> iconForFile(std::string_view path) override;
    [[nodiscard]] std::shared_ptr<const IconImage> iconForProcess(Pid pid) override;
    [[nodiscard]] std::shared_ptr<const IconImage> genericApplicationIcon(std::string_view name) override;

    [[nodiscard]] Subscription observeProcessIcons(std::function<void(Pid)> handler) override {
        return processChanges_.subscribe([handler = std::move(handler)](const Pid& pid) { handler(pid); });
    }

    [[nodiscard]] bool isObserved() const { return processChanges_.hasSubscribers(); }
    void setFileHasIcon(std::string path, bool hasIcon) { files_.insert_or_assign(std::move(path), hasIcon); }
    void setProcessHasIcon(Pid pid, bool hasIcon) {
        processes_.insert_or_assign(pid, hasIcon);
        processChanges_.send(pid);
    }
    /// "file <path>", "process <pid>" and "generic <name>", in the order in which they were asked for.
    [[nodiscard]] std::vector<std::string> takeLoads() { return std::exchange(loads_, {}); }

private:
    std::map<std::string, bool, std::less<>> files_;
    std::map<Pid, bool> processes_;
    std::vector<std::string> loads_;
    Subject<Pid> processChanges_;
};

/// A login item that registers at once, unless a test sets another result.
class SimulatedLoginItem final : public LoginItem {
public:
    [[nodiscard]] Status status() const override { return current; }
    [[nodiscard]] std::optional<Error> registerProgram() override { return request(true, statusAfterRegistering); }
    [[nodiscard]] std::optional<Error> unregisterProgram() override { return request(false, Status::notRegistered); }

    Status current = Status::notRegistered;
    Status statusAfterRegistering = Status::enabled;
    /// While set, every request fails with this error and changes nothing.
    std::optional<Error> error;
    /// The requests in their order: true to register, false to unregister.
    std::vector<bool> requests;

private:
    std::optional<Error> request(bool registers, Status statusOnSuccess) {
        requests.push_back(registers);
        if (!error) {
            current = statusOnSuccess;
        }
        return error;
    }
};

/// Trusted at first. The prompt changes nothing, because the user has not answered it yet.
class SimulatedTrust final : public Trust {
public:
    [[nodiscard]] bool isTrusted() const override { return isTrusted_; }
    [[nodiscard]] bool canBecomeTrusted() const override { return canBecomeTrusted_; }
    bool requestWithPrompt() override {
        ++promptCount_;
        return isTrusted_;
    }
    [[nodiscard]] bool isSecureInputActive() const override { return isSecureInputActive_; }
    [[nodiscard]] Subscription observeChanges(std::function<void()> handler) override {
        return changes_.subscribe([handler = std::move(handler)](const Hint&) { handler(); });
    }

    [[nodiscard]] Subscription observeLostTriggers(std::function<void()> handler) override {
        return lostTriggers_.subscribe([handler = std::move(handler)](const Hint&) { handler(); });
    }

    void setTrusted(bool isTrusted) { isTrusted_ = isTrusted; }
    void makeServerUnusable() { isTrusted_ = canBecomeTrusted_ = false; }
    void setSecureInput(bool isActive) { isSecureInputActive_ = isActive; }
    void announceChange() { changes_.send({}); }
    void loseTrigger() { lostTriggers_.send({}); }
    [[nodiscard]] int promptCount() const { return promptCount_; }
    [[nodiscard]] bool isObserved() const { return changes_.hasSubscribers() || lostTriggers_.hasSubscribers(); }

private:
    struct Hint {};

    bool isTrusted_ = true;
    bool canBecomeTrusted_ = true;
    bool isSecureInputActive_ = false;
    int promptCount_ = 0;
    Subject<Hint> changes_;
    Subject<Hint> lostTriggers_;
};

class SimulatedApplication final : public Application {
public:
    explicit SimulatedApplication(Pid ownPid) : ownPid_(ownPid) {}

    [[nodiscard]] Pid ownPid() const override { return ownPid_; }
    [[nodiscard]] Subscription observeDidBecomeActive(std::function<void()> handler) override {
        return activations_.subscribe([handler = std::move(handler)](const Activation&) { handler(); });
    }

    [[nodiscard]] BundleInfo bundleInfo() const override { return bundle; }
    [[nodiscard]] std::string systemVersion() const override { return version; }
    [[nodiscard]] std::optional<int> calendarYear(WallTime /*moment*/) const override { return year; }
    void setActivationPolicy(ActivationPolicy policy) override { policies.push_back(policy); }
    void activate() override { ++activationCount; }
    void bringToFront(WindowId window) override { broughtToFront.push_back(window); }
    void terminate() override { ++terminationCount; }
    void revealInFileManager() override { ++revealCount; }

    void becomeActive() { activations_.send({}); }
    [[nodiscard]] bool isObserved() const { return activations_.hasSubscribers(); }

    /// A test may change these before the program reads them.
    BundleInfo bundle{.name = "Ferrowyn",
                      .shortVersion = "1.0",
                      .path = "/Applications/Ferrowyn.app",
                      .updateHost = "updates.ferrowyn.example",
                      .homePage = "https://ferrowyn.example"};
    std::string version = "14.5";
    std::optional<int> year;
    /// The calls that the object got, in order.
    std::vector<ActivationPolicy> policies;
    int activationCount = 0;
    std::vector<WindowId> broughtToFront;
    int terminationCount = 0;
    int revealCount = 0;

private:
    struct Activation {};

    Pid ownPid_;
    Subject<Activation> activations_;
};

}  // namespace ferrowyn
