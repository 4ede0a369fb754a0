#pragma once

#include "FMWrapper/FMXExtern.h"

#include <exception>
#include <new>

namespace fmx {

/// The error slot, the last argument of every host call. Host functions throw nothing. They put a code here,
/// and the inline classes turn it into an exception.
struct _fmxcpt {
    enum { kBadAlloc = 1, kUnknown = 2 };

    int32 m_vers = 1;
    int32 m_code = 0;

    /// Throws std::bad_alloc for code 1 and std::exception for code 2.
    void Check() const {
        if (m_code == kBadAlloc) throw std::bad_alloc();
        if (m_code == kUnknown) throw std::exception();
    }
};

} // namespace fmx
