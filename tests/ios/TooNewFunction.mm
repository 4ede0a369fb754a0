// A function of libc++ that is newer than iOS 16.0, declared as in a newer SDK's headers. The plug-in uses
// other members of its class.

extern "C" void* fromNative(void*) __asm__("__ZNSt13exception_ptr31__from_native_exception_pointerEPv");

extern "C" __attribute__((used)) void* pointer(void* exception) { return fromNative(exception); }
