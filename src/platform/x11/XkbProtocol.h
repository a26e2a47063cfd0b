#pragma once

// xcb's XKB header names a member with a word of C++. Compilers warn about hiding such a word, but not in
// headers that count as the system's.
#pragma GCC system_header

#include <xcb/xcb.h>

#define explicit explicitModifiers
#include <xcb/xkb.h>
#undef explicit
