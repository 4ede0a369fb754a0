// One runtime of exceptions for two libraries. Plug-ins built with GCC bring libstdc++, this program and
// others have libc++, and both libraries use the same names for throwing and catching, so that one of them
// serves the whole process: libstdc++, which this program is linked with before libc++. libc++ keeps
// exceptions (std::exception_ptr) by four functions of its own runtime, which expects exceptions that it has
// made itself. These take their place.

// The C++ ABI gives the names.
#pragma clang diagnostic ignored "-Wreserved-identifier"

extern "C" {

void __cxa_increment_exception_refcount(void* exception) noexcept;
void __cxa_decrement_exception_refcount(void* exception) noexcept;
void* __cxa_current_primary_exception() noexcept;
void __cxa_rethrow_primary_exception(void* exception);

} // extern "C"

namespace host {

/// libstdc++'s std::exception_ptr: a pointer that is passed and returned as an object with a destructor is.
struct ForeignPointer {
    void* exception;
    ~ForeignPointer() {
    } // NOLINT(modernize-use-equals-default): a default one would change the way it is passed
};

// libstdc++'s functions under their names in the machine code.
void keep(void** pointer) noexcept __asm__("_ZNSt15__exception_ptr13exception_ptr9_M_addrefEv");
void release(void** pointer) noexcept __asm__("_ZNSt15__exception_ptr13exception_ptr10_M_releaseEv");
ForeignPointer currentException() noexcept __asm__("_ZSt17current_exceptionv");
[[noreturn]] void rethrowException(ForeignPointer pointer) __asm__(
    "_ZSt17rethrow_exceptionNSt15__exception_ptr13exception_ptrE");

} // namespace host

void __cxa_increment_exception_refcount(void* exception) noexcept {
    if (exception != nullptr) host::keep(&exception);
}

void __cxa_decrement_exception_refcount(void* exception) noexcept {
    if (exception != nullptr) host::release(&exception);
}

/// The exception that is being handled, kept for the caller; null when there is none.
void* __cxa_current_primary_exception() noexcept { return host::currentException().exception; }

void __cxa_rethrow_primary_exception(void* exception) {
    if (exception != nullptr) host::rethrowException({exception});
}
