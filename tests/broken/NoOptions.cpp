// Never answers the request for the options string.
#include "SoundPlugIn.h"

SAMPLE_PLUG_IN({.answer = [](FMX_ExternCallPtr call) {
    if (call->parm1 != kFMXT_OptionsStr) sound::answerString(call);
}})
