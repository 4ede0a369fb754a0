// Never answers the request for the options string.
#include "SoundPlugIn.h"

namespace {
void answerButOptions(FMX_ExternCallPtr call) {
    if (call->parm1 != kFMXT_OptionsStr) sound::answerString(call);
}
} // namespace

SAMPLE_PLUG_IN({.answer = answerButOptions})
