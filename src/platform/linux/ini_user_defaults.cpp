#include "platform/linux/ini_user_defaults.h"

#include <string>
#include <utility>

#include "platform/linux/ini_file_writer.h"

namespace ferrowyn {

IniUserDefaults::IniUserDefaults(const std::filesystem::path& file, Log& log)
    : writer_(std::make_unique<IniFileWriter>(file, log)) {
    stored_ = writer_->read();
}

IniUserDefaults::~IniUserDefaults() = default;

void IniUserDefaults::registerDefaults(const std::map<std::string, DefaultsValue>& defaults) {
    for (const auto& [key, value] : defaults) {
        registered_.insert_or_assign(key, value);
    }
}

std::optional<DefaultsValue> IniUserDefaults::value(std::string_view key) const {
    for (const auto* domain : {&stored_, &registered_}) {
        if (const auto found = domain->find(key); found != domain->end()) {
            return found->second;
        }
    }
    return std::nullopt;
}

void IniUserDefaults::set(std::string_view key, DefaultsValue value) {
    writer_->store(key, value);
    stored_.insert_or_assign(std::string(key), std::move(value));
}

void IniUserDefaults::flush() {
    writer_->flush();
}

}  // namespace ferrowyn
