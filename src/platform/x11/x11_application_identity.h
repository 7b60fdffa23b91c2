#pragma once

#include <string>

namespace ferrowyn {

/// By what a window says which application it belongs to; empty is what it does not say.
struct X11ApplicationIdentity {
    /// The application's own idea of its desktop file's name, without the suffix (GTK).
    std::string gtkApplicationId;
    /// The same by Qt and KDE, with or without path and suffix.
    std::string kdeDesktopFile;
    std::string wmClassInstance;
    std::string wmClassName;

    friend bool operator==(const X11ApplicationIdentity&, const X11ApplicationIdentity&) = default;
};

}  // namespace ferrowyn
