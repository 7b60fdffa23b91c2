#pragma once

#include <QString>
#include <filesystem>
#include <functional>

class QDBusConnection;

namespace ferrowyn {

/// Shows the file, selected, in the desktop's file manager. Where none takes such requests on the bus, or the bus is
/// missing, `openAddress` gets the address of the file's folder instead, later on the main loop. Main thread, with a
/// QCoreApplication; never waits.
void revealInFileManager(const QDBusConnection& bus, const std::filesystem::path& file,
                         std::function<void(const QString& address)> openAddress);

}  // namespace ferrowyn
