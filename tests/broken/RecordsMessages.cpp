// Keeps the whole contract and lists the messages that it received: "init ", "idle 0 ", "file ", …
#include "SoundPlugIn.h"

#include <string>

namespace {

std::string& messages() {
    static std::string list;
    return list;
}

void record(const FMX_ExternCallStruct& call) {
    switch (call.whichCall) {
    case kFMXT_Init: messages() += "init "; break;
    case kFMXT_Idle: messages() += "idle " + std::to_string(call.parm1) + " "; break;
    case kFMXT_FileShutdown: messages() += "file " + std::to_string(call.parm3) + " "; break;
    case kFMXT_SessionShutdown: messages() += "session "; break;
    case kFMXT_Shutdown: messages() += "shutdown "; break;
    default: break;
    }
}

} // namespace

FMX_ExternCallPtr gFMX_ExternCallPtr = nullptr;

void FMX_ENTRYPT FMExternCallProc(FMX_ExternCallPtr call) {
    record(*call);
    sound::dispatch(call, {});
}

extern "C" __attribute__((visibility("default"))) const char* recordedMessages() {
    return messages().c_str();
}
