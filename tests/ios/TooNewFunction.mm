// A function of libc++ that came with a later iOS than 16.0, as a newer SDK's headers would declare it: a member of
// a class of which the plug-in uses others.

extern "C" void* fromNative(void*) __asm__("__ZNSt13exception_ptr31__from_native_exception_pointerEPv");

extern "C" __attribute__((used)) void* pointer(void* exception) { return fromNative(exception); }
