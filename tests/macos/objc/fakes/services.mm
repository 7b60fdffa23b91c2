#import "tests/macos/objc/fakes/services.h"

#include <cstdarg>

#import "tests/macos/objc/fakes/foundation.h"

namespace fake_mac {

Services& services() {
    static Services state;
    return state;
}

}  // namespace fake_mac

@implementation SMAppService
+ (SMAppService*)mainAppService {
    return fake_mac::shared(fake_mac::services().mainService);
}
- (BOOL)answer:(NSError* __autoreleasing*)error becoming:(SMAppServiceStatus)status {
    if (_nextError == nil) {
        _status = status;
        return YES;
    }
    *error = _nextError;
    _nextError = nil;
    return NO;
}
- (BOOL)registerAndReturnError:(NSError* __autoreleasing*)error {
    _calls.emplace_back("register");
    return [self answer:error becoming:SMAppServiceStatusEnabled];
}
- (BOOL)unregisterAndReturnError:(NSError* __autoreleasing*)error {
    _calls.emplace_back("unregister");
    return [self answer:error becoming:SMAppServiceStatusNotRegistered];
}
@end

@interface FakeLog : NSObject <OS_os_log> {
@public
    std::string _subsystem;
    std::string _category;
}
@end

@implementation FakeLog
@end

extern "C" {

os_log_t os_log_create(const char* subsystem, const char* category) {
    FakeLog* const log = [[FakeLog alloc] init];
    log->_subsystem = subsystem;
    log->_category = category;
    ++fake_mac::services().madeLogs;
    return log;
}

void os_log_with_type(os_log_t log, os_log_type_t type, const char* format, ...) {
    auto* const known = static_cast<FakeLog*>(log);
    std::va_list arguments;
    va_start(arguments, format);
    const char* const argument = va_arg(arguments, const char*);
    va_end(arguments);
    const std::string form = format;
    const std::string text = form == "%{public}s" ? argument : form == "%s" ? "<private>" : "?";
    fake_mac::services().logLines.push_back({known->_subsystem, known->_category, type, text});
}
}
