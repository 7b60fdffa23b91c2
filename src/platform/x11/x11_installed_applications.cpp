#include "platform/x11/x11_installed_applications.h"

#include <string_view>

#include "platform/linux/desktop_entries.h"

namespace ferrowyn {
namespace {

DesktopEntries::EntryPtr byFileName(const DesktopEntries& entries, std::string_view name) {
    if (name.empty()) {
        return nullptr;
    }
    return name.starts_with('/') ? entries.byPath(name) : entries.byId(name);
}

}  // namespace

std::optional<X11InstalledApplication> findInstalledApplication(const DesktopEntries& entries,
                                                                const X11ApplicationIdentity& identity) {
    auto entry = byFileName(entries, identity.gtkApplicationId);
    if (entry == nullptr) {
        entry = byFileName(entries, identity.kdeDesktopFile);
    }
    if (entry == nullptr && !(identity.wmClassInstance.empty() && identity.wmClassName.empty())) {
        entry = entries.byWindowClass(identity.wmClassInstance, identity.wmClassName);
    }
    if (entry == nullptr) {
        return std::nullopt;
    }
    return X11InstalledApplication{entry->id, entry->name, entry->path};
}

}  // namespace ferrowyn
