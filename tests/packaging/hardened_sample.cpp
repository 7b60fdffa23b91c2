// Has something for each measure that a release build is hardened with, so that the executable shows whether it was
// taken. Never run.

#include <cstdio>
#include <cstring>

namespace {

/// An array of characters on the stack, and a copy into it whose length only the run tells.
void copyToTheStack(const char* text, std::size_t length) {
    char buffer[64];
    std::memcpy(buffer, text, length);
    std::puts(buffer);
}

/// A frame of many pages.
void useALargeFrame(const char* text) {
    char large[1 << 18];
    std::snprintf(large, sizeof large, "%s", text);
    std::puts(large);
}

}  // namespace

int main(int count, char** arguments) {
    copyToTheStack(arguments[0], static_cast<std::size_t>(count));
    useALargeFrame(arguments[0]);
    return 0;
}
