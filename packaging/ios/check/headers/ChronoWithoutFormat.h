#pragma once

/// Included before every C++ source of the check. In the stand-in's release of libc++, std::format is unfinished
/// and unavailable on Apple's systems, but <chrono> includes it, which a current Clang refuses. This header
/// removes the restriction. A call of std::format still leads to undefined symbols that are on no list.

#ifdef __cplusplus
#include <__availability>
#undef _LIBCPP_AVAILABILITY_FORMAT
#define _LIBCPP_AVAILABILITY_FORMAT
#endif
