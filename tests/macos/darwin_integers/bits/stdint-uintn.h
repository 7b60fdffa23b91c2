// See stdint-intn.h.
#pragma once

#include <bits/types.h>

typedef __uint8_t uint8_t;
typedef __uint16_t uint16_t;
typedef __uint32_t uint32_t;
typedef unsigned long long uint64_t;
