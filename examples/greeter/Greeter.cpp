// A small plug-in: a function that greets, and a script step that does the same.
#include "FMWrapper/FMXTypes.h"

#include "FMWrapper/FMXCalcEngine.h"
#include "FMWrapper/FMXData.h"
#include "FMWrapper/FMXExtern.h"
#include "FMWrapper/FMXText.h"

FMX_ExternCallPtr gFMX_ExternCallPtr = nullptr;

namespace {

constexpr short kGreet = 0, kGreetStep = 0;

/// A text of the host from characters in UTF-8.
struct Words : fmx::TextUniquePtr {
    explicit Words(const char* utf8) { (*this)->Assign(utf8, fmx::Text::kEncoding_UTF8); }
};

fmx::QuadCharUniquePtr identifier() { return {'G', 'R', 'E', 'T'}; }

FMX_PROC(fmx::errcode)
greet(short, const fmx::ExprEnv&, const fmx::DataVect& arguments, fmx::Data& result) try {
    const fmx::TextUniquePtr greeting;
    const bool hasName = arguments.AtAsText(0).GetSize() > 0;
    greeting->SetText(*Words(hasName ? "Hello, " : "Nobody is there."));
    if (hasName) greeting->AppendText(arguments.AtAsText(0));
    result.SetAsText(*greeting, arguments.At(0).GetLocale());
    return hasName ? 0 : kPluginErrResult1;
} catch (...) {
    return 1200;
}

FMX_PtrType init() {
    const auto id = identifier();
    const char* const step =
        "<PluginStep><Parameter Type=\"calc\" ID=\"1\" Label=\"Name\" DataType=\"text\"/>"
        "<Parameter Type=\"target\" ID=\"2\" Label=\"Result\"/></PluginStep>";
    fmx::ExprEnv::RegisterExternalFunctionEx(*id, kGreet, *Words("Greet"), *Words("Greet( name )"),
                                             *Words("hello welcome|Greets somebody."), 1, 1,
                                             fmx::ExprEnv::kDisplayInAllDialogs, greet);
    fmx::ExprEnv::RegisterScriptStep(*id, kGreetStep, *Words("Greet Somebody"), *Words(step),
                                     *Words("Greets."), fmx::ExprEnv::kDisplayInAllDialogs, greet);
    return k190ExtnVersion;
}

void shutDown() {
    fmx::ExprEnv::UnRegisterExternalFunction(*identifier(), kGreet);
    fmx::ExprEnv::UnRegisterScriptStep(*identifier(), kGreetStep);
}

void answerString(FMX_ExternCallPtr call) {
    const char* text = call->parm1 == kFMXT_NameStr        ? "Greeter"
                       : call->parm1 == kFMXT_AppConfigStr ? "Greets people."
                       : call->parm1 == kFMXT_OptionsStr   ? "GRET1nnYnnn"
                                                           : "";
    auto* units = reinterpret_cast<fmx::unichar16*>(call->result);
    for (; *text != '\0'; ++text)
        *units++ = static_cast<unsigned char>(*text);
    *units = 0;
}

} // namespace

void FMX_ENTRYPT FMExternCallProc(FMX_ExternCallPtr call) {
    gFMX_ExternCallPtr = call;
    switch (call->whichCall) {
    case kFMXT_GetString: return answerString(call);
    case kFMXT_Init: call->result = init(); return;
    case kFMXT_Shutdown: return shutDown();
    default: return;
    }
}
