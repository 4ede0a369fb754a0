#pragma once

#include "FMWrapper/FMXExtern.h"

// As another vendor might write the interface, as far as the plug-in's sources use it.

namespace fmx {

/// Nobody but the host makes or copies objects.
struct Opaque {
    Opaque() = delete;
    Opaque(const Opaque&) = delete;
    void operator=(const Opaque&) = delete;
    static void operator delete(void*);
};

struct _fmxcpt {
    int32 m_vers;
    int32 m_code;
    _fmxcpt();
    void Check();
};

} // namespace fmx
