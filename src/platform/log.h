#pragma once

#include <string_view>

namespace ferrowyn {

/// In the order of rising severity; `standard` is the system log's default level.
enum class LogLevel { debug, standard, error };

/// The system log. The categories are "input", "ui", "activation", "permissions" and "windows". A message must not
/// contain a window title, because logs are attached to bug reports.
class Log {
public:
    virtual ~Log() = default;

    /// From any thread. Does not wait for a slow reader.
    virtual void write(LogLevel level, std::string_view category, std::string_view message) = 0;
};

}  // namespace ferrowyn
