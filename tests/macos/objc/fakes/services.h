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

struct LogLine {
    std::string subsystem;
    std::string category;
    os_log_type_t type;
    /// As shown to a reader who may not see private arguments.
    std::string text;
};

struct Services {
    SMAppService* mainService;
    std::vector<LogLine> logLines;
    int madeLogs = 0;
};
[[nodiscard]] Services& services();

}  // namespace fake_mac
