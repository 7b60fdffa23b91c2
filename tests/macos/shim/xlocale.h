// libc++ looks for a header that musl does without: what it declares stands in <locale.h> there.
#include <locale.h>
