#pragma once

#include "FMWrapper/FMXExtern.h"

namespace fmx {

struct _fmxcpt {
    int32 m_vers;
    int32 m_code;
    _fmxcpt();
    void Check();
};

} // namespace fmx
