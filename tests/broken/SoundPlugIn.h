#pragma once

#include "FMWrapper/FMXBinaryData.h"
#include "FMWrapper/FMXCalcEngine.h"
#include "FMWrapper/FMXData.h"
#include "FMWrapper/FMXExtern.h"
#include "FMWrapper/FMXFixPt.h"
#include "FMWrapper/FMXText.h"
#include "FMWrapper/FMXTypes.h"

#include <cstddef>
#include <exception>

/// A small plug-in that keeps the host's contract. A broken plug-in replaces one part of its behaviour.
namespace sound {

using Handler = fmx::ExtPluginType;

inline fmx::QuadCharUniquePtr owner() { return {'B', 'R', 'K', 'N'}; }

inline void write(FMX_PtrType buffer, const char* text) {
    auto* units = reinterpret_cast<fmx::unichar16*>(buffer);
    std::size_t i = 0;
    for (; text[i] != '\0'; ++i)
        units[i] = static_cast<unsigned char>(text[i]);
    units[i] = 0;
}

inline void answerString(FMX_ExternCallPtr call) {
    switch (call->parm1) {
    case kFMXT_NameStr: return write(call->result, "Sample");
    case kFMXT_AppConfigStr: return write(call->result, "A sample plug-in.");
    case kFMXT_OptionsStr: return write(call->result, "BRKN1YnYYYn");
    default: return;
    }
}

inline FMX_PROC(fmx::errcode)
    handle(short, const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data& result) try {
    const fmx::FixPtUniquePtr one(1);
    result.SetAsNumber(*one);
    return 0;
} catch (const std::exception&) {
    return 1200;
}

inline fmx::errcode registerOne(short id, const char* name, Handler handler) {
    const fmx::TextUniquePtr text;
    text->Assign(name);
    return fmx::ExprEnv::RegisterExternalFunction(*owner(), id, *text, *text, 0, 1, 0xFF01, handler);
}

/// The parts that a broken plug-in may replace.
struct Behaviour {
    Handler handler = handle;
    FMX_PtrType initAnswer = k190ExtnVersion;
    void (*answer)(FMX_ExternCallPtr) = answerString;
    short secondId = 2;
};

inline void dispatch(FMX_ExternCallPtr call, const Behaviour& behaviour) {
    gFMX_ExternCallPtr = call;
    switch (call->whichCall) {
    case kFMXT_Init:
        registerOne(1, "Sample_First", behaviour.handler);
        registerOne(behaviour.secondId, "Sample_Second", handle);
        call->result = behaviour.initAnswer;
        return;
    case kFMXT_Shutdown:
        for (short id = 1; id <= 2; ++id)
            fmx::ExprEnv::UnRegisterExternalFunction(*owner(), id);
        return;
    case kFMXT_GetString: return behaviour.answer(call);
    default: return;
    }
}

} // namespace sound

#define SAMPLE_PARAMETERS short, const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data&
#define SAMPLE_PLUG_IN(...)                                                                                  \
    FMX_ExternCallPtr gFMX_ExternCallPtr = nullptr;                                                          \
    void FMX_ENTRYPT FMExternCallProc(FMX_ExternCallPtr call) { sound::dispatch(call, __VA_ARGS__); }
