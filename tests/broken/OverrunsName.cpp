// Writes its name past the end of the host's buffer.
#include "SoundPlugIn.h"

SAMPLE_PLUG_IN({.answer = [](FMX_ExternCallPtr call) {
    sound::answerString(call);
    if (call->parm1 != kFMXT_NameStr) return;
    auto* units = reinterpret_cast<fmx::unichar16*>(call->result);
    for (FMX_PtrType i = 0; i < call->parm3 + 8; ++i)
        units[i] = 'x';
}})
