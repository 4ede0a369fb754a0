#include "host/calc/Stack.h"

#include <algorithm>
#include <cstdint>
#include <pthread.h>
#include <sys/resource.h>

namespace host::calc {

namespace {

constexpr std::size_t kWantedStack = std::size_t{64} << 20U;
/// Sanitizers make frames larger.
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr std::size_t kKeptFree = std::size_t{7} << 20U;
#else
constexpr std::size_t kKeptFree = std::size_t{3} << 20U;
#endif

/// The lowest address of the thread's stack; 0 when it is not known.
std::uintptr_t lowestAddress() {
    pthread_attr_t attributes;
    if (::pthread_getattr_np(::pthread_self(), &attributes) != 0) return 0;
    void* lowest = nullptr;
    std::size_t size = 0;
    const int status = ::pthread_attr_getstack(&attributes, &lowest, &size);
    ::pthread_attr_destroy(&attributes);
    return status == 0 ? reinterpret_cast<std::uintptr_t>(lowest) : 0;
}

} // namespace

void enlargeStack() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_STACK, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return;
    const rlim_t wanted = std::min<rlim_t>(kWantedStack, limit.rlim_max);
    if (wanted <= limit.rlim_cur) return;
    limit.rlim_cur = wanted;
    ::setrlimit(RLIMIT_STACK, &limit);
}

bool hasStack() {
    thread_local const std::uintptr_t lowest = lowestAddress();
    const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    return here > lowest && here - lowest > kKeptFree;
}

} // namespace host::calc
