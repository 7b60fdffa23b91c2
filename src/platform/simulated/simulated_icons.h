#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "core/published.h"
#include "platform/icon_source.h"

namespace ferrowyn {

/// Icons of one plain colour, a different one for each thing asked for. Files and processes have one unless a test says
/// otherwise.
class SimulatedIcons final : public IconSource {
public:
    [[nodiscard]] std::shared_ptr<const IconImage> iconForFile(std::string_view path) override;
    [[nodiscard]] std::shared_ptr<const IconImage> iconForProcess(Pid pid) override;
    [[nodiscard]] std::shared_ptr<const IconImage> genericApplicationIcon(std::string_view name) override;

    [[nodiscard]] Subscription observeProcessIcons(std::function<void(Pid)> handler) override {
        return processChanges_.subscribe([told = std::move(handler)](const Pid& pid) { told(pid); });
    }

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

}  // namespace ferrowyn
