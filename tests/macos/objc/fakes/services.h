#pragma once

#import <ServiceManagement/ServiceManagement.h>

#include <os/log.h>
#include <string>
#include <vector>

// What a test says to the fake service management and the fake unified log, and asks them.

@interface SMAppService ()
@property(readwrite) SMAppServiceStatus status;
/// What the next request fails with; it succeeds without one.
@property(strong) NSError* nextError;
@property(readonly) std::vector<std::string> calls;
@end

namespace fake_mac {

void forgetServices();

struct LogLine {
    std::string subsystem;
    std::string category;
    os_log_type_t type;
    std::string format;
    /// As a reader who may not see private arguments sees it.
    std::string text;
};
[[nodiscard]] std::vector<LogLine>& logLines();
/// How many logs have been made.
[[nodiscard]] int logCount();

}  // namespace fake_mac
