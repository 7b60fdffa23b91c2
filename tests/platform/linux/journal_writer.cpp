// Writes one message of each level to the journal, as the program does: for check_journal.py.
#include "platform/linux/journal_log.h"

int main() {
    using namespace ferrowyn;
    JournalLog log(LogLevel::debug, JournalLog::Mirror::never);
    log.write(LogLevel::debug, "windows", "details");
    log.write(LogLevel::standard, "permissions", "Services active");
    log.write(LogLevel::error, "input", "two\nlines");
}
