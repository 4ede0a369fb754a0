#pragma once

/// Read before every C++ source of the check. The stand-in's libc++ is of a release in which std::format was
/// unfinished and barred on Apple's systems; its <chrono> includes it all the same, which today's Clang
/// refuses. The bar is lifted; a call of std::format shows up as undefined symbols that are on no list.

#ifdef __cplusplus
#include <__availability>
#undef _LIBCPP_AVAILABILITY_FORMAT
#define _LIBCPP_AVAILABILITY_FORMAT
#endif
