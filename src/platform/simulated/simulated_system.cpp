#include "platform/simulated/simulated_system.h"

#include <cstddef>

namespace ferrowyn {

void SimulatedLog::write(LogLevel level, std::string_view category, std::string_view message) {
    const std::scoped_lock lock(lock_);
    lines_.push_back({level, std::string(category), std::string(message)});
}

std::vector<SimulatedLogLine> SimulatedLog::take() {
    const std::scoped_lock lock(lock_);
    return std::exchange(lines_, {});
}

void SimulatedUserDefaults::registerDefaults(const std::map<std::string, DefaultsValue>& defaults) {
    for (const auto& [key, value] : defaults) {
        registered_.insert_or_assign(key, value);
    }
}

std::optional<DefaultsValue> SimulatedUserDefaults::value(std::string_view key) const {
    if (const auto stored = stored_.find(key); stored != stored_.end()) {
        return stored->second;
    }
    if (const auto registered = registered_.find(key); registered != registered_.end()) {
        return registered->second;
    }
    return std::nullopt;
}

void SimulatedUserDefaults::set(std::string_view key, DefaultsValue value) {
    writes_.emplace_back(key, value);
    stored_.insert_or_assign(std::string(key), std::move(value));
    if (!writesFail_) {
        written_ = stored_;
    }
}

namespace {

class PlainIcon final : public IconImage {
public:
    explicit PlainIcon(const std::string& subject)
        : colour_(0xFF000000U | static_cast<std::uint32_t>(std::hash<std::string>{}(subject)&0xFFFFFFU)) {}

    [[nodiscard]] PixelBuffer render(int side) const override {
        const auto length = static_cast<std::size_t>(side);
        return {side, side, std::vector<std::uint32_t>(length * length, colour_)};
    }

private:
    std::uint32_t colour_;
};

}  // namespace

std::shared_ptr<const IconImage> SimulatedIcons::iconForFile(std::string_view path) {
    loads_.push_back("file " + std::string(path));
    const auto known = files_.find(path);
    const bool hasIcon = known == files_.end() || known->second;
    return hasIcon ? std::make_shared<PlainIcon>(loads_.back()) : nullptr;
}

std::shared_ptr<const IconImage> SimulatedIcons::iconForProcess(Pid pid) {
    loads_.push_back("process " + std::to_string(pid));
    const auto known = processes_.find(pid);
    const bool hasIcon = known == processes_.end() || known->second;
    return hasIcon ? std::make_shared<PlainIcon>(loads_.back()) : nullptr;
}

std::shared_ptr<const IconImage> SimulatedIcons::genericApplicationIcon(std::string_view name) {
    loads_.push_back("generic " + std::string(name));
    return std::make_shared<PlainIcon>(loads_.back());
}

}  // namespace ferrowyn
