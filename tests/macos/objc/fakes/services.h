#pragma once

#import <ServiceManagement/ServiceManagement.h>

#include <os/log.h>
#include <string>
#include <vector>

// What a test scripts in the fake service management and the fake unified log, and reads from them.

@interface SMAppService ()
@property(readwrite) SMAppServiceStatus status;
/// The error of the next request, which succeeds without one.
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
    /// As shown to a reader who may not see private arguments.
    std::string text;
};
[[nodiscard]] std::vector<LogLine>& logLines();
/// How many logs have been made.
[[nodiscard]] int logCount();

}  // namespace fake_mac
