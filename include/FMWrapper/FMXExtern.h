#pragma once

/// The interface between a host and a plug-in in C: integer types, the call block, the messages and the two
/// call-backs. A host loads the plug-in and calls its one entry point, FMExternCallProc, with a call block
/// for every message, on one thread, one message at a time.

#include <cstddef>

#define FMX_ENTRYPT
#define FMX_API
#define FMX_PACK __attribute__((packed))
/// The return type of a function that the host calls; the type of a pointer to one.
#define FMX_PROC(T) T
#define FMX_PROCPTR(T, name) typedef T(*name)

namespace fmx {

typedef unsigned char uchar;
typedef short int16;
typedef unsigned short uint16;
typedef int int32;
typedef unsigned int uint32;
#if defined(_LP64) || defined(__LP64__)
typedef long int64;
typedef unsigned long uint64;
typedef uint64 ptrtype;
typedef int32 unusedid;
#else
typedef long long int64;
typedef unsigned long long uint64;
typedef unsigned int ptrtype;
typedef int16 unusedid;
#endif
typedef short errcode;
typedef unsigned short unichar16;

class Text;
class Data;
class ExprEnv;

} // namespace fmx

extern "C" {

typedef fmx::Text FMX_Text;
typedef fmx::Data FMX_Data;
typedef fmx::ExprEnv FMX_ExprEnv;
typedef unsigned char FMX_UChar;
typedef fmx::int16 FMX_Int16;
typedef fmx::uint16 FMX_UInt16;
typedef fmx::int32 FMX_Int32;
typedef fmx::uint32 FMX_UInt32;
typedef fmx::unichar16 FMX_Unichar;
typedef fmx::errcode FMX_ErrorCode;
typedef fmx::ptrtype FMX_PtrType;
typedef char FMX_Char;
typedef char FMX_Boolean;

/// The treatment of a running script when another one is started.
typedef FMX_UChar FMX_ScriptControl;
enum { kFMXT_Halt = 0, kFMXT_Exit = 1, kFMXT_Resume = 2, kFMXT_Pause = 3 };

typedef FMX_UChar FMX_ExternCallSwitch;

struct FMX_ExternCallStruct;
typedef FMX_ExternCallStruct* FMX_ExternCallPtr;
FMX_PROCPTR(void, FMX_ExternCallProc)(FMX_ExternCallPtr);

/// Asks the host to start a script. The caller owns the texts. Returns 0, 100 (no such file) or 104 (no such
/// script).
FMX_PROCPTR(FMX_ErrorCode, FMX_StartScriptCall)
(const FMX_Text* fileName, const FMX_Text* scriptName, FMX_ScriptControl control, const FMX_Data* parameter);
/// Turns a plug-in's environment into that of the front file. Returns 100 when no file is open.
FMX_PROCPTR(FMX_ErrorCode, FMX_CurrentEnvCall)(FMX_ExprEnv* env);

/// The call block. The host owns it. It is valid while the message is handled.
struct FMX_ExternCallStruct {
    FMX_Int16 extnVersion; ///< the host's version
    fmx::unusedid unusedID;
    FMX_ExternCallProc entryPoint; ///< the plug-in's own entry point
    FMX_Boolean unusedFlag;
    FMX_ExternCallSwitch whichCall; ///< the message
    FMX_Boolean unsafeCalls;        ///< true when call-backs must not be called
    FMX_UChar parm1;                ///< the message decides the meaning of the parameters
    FMX_PtrType parm2;
    FMX_PtrType parm3;
    FMX_PtrType instanceID;
    FMX_PtrType result; ///< the plug-in's answer, or the host's buffer for it
    FMX_PtrType unused;
    FMX_StartScriptCall cStartScript;
    FMX_CurrentEnvCall cCurrentEnv;
} FMX_PACK;

/// Host versions. The newest one grows with every release of the host.
enum {
    kBadExtnVersion = -1, ///< answer of init: the host's version does not suit
    kDoNotEnable = -2,    ///< answer of init: do not enable this plug-in
    k70ExtnVersion = 50,
    k80ExtnVersion = 51,
    k110ExtnVersion = 52,
    k120ExtnVersion = 53,
    k130ExtnVersion = 54,
    k140ExtnVersion = 55,
    k150ExtnVersion = 56,
    k160ExtnVersion = 57,
    k170ExtnVersion = 59,
    k180ExtnVersion = 60,
    k190ExtnVersion = 62,
    kCurrentExtnVersion = 71,
    kMinExtnVersion = 4,
    kMaxExtnVersion = 255
};

/// Messages and their parameters.
enum {
    kFMXT_Init = 0, ///< parm1 application, parm2 its version, zero-terminated UTF-16; result: the answer
    kFMXT_Idle = 1, ///< parm1 level, parm2 session
    kFMXT_Shutdown = 4,
    kFMXT_DoAppPreferences = 5,
    kFMXT_GetString = 7, ///< parm1 string, parm2 language, parm3 buffer size in units; result: the buffer
    kFMXT_SessionShutdown = 8, ///< parm2 session
    kFMXT_FileShutdown = 9     ///< parm2 session, parm3 file
};

enum { kFMXT_NameStr = 128, kFMXT_AppConfigStr = 129, kFMXT_OptionsStr = 131, kFMXT_HelpURLStr = 132 };

/// Idle levels. Scripts may be started only at the first.
enum {
    kFMXT_UserIdle = 0,
    kFMXT_UserNotIdle = 1,
    kFMXT_ScriptPaused = 2,
    kFMXT_ScriptRunning = 3,
    kFMXT_Unsafe = 4
};

/// Applications.
enum {
    kFMXT_Developer = 0,
    kFMXT_Pro = 1,
    kFMXT_Runtime = 2,
    kFMXT_Server = 3,
    kFMXT_Web = 4,
    kFMXT_Mobile = 5,
    kFMXT_XDBC = 6,
    kFMXT_SASE = 7
};

/// Errors whose meaning the plug-in chooses; the text of the result describes them.
enum {
    kPluginErrResult1 = 1552,
    kPluginErrResult2 = 1553,
    kPluginErrResult3 = 1554,
    kPluginErrResult4 = 1555,
    kPluginErrResult5 = 1556,
    kPluginErrResult6 = 1557,
    kPluginErrResult7 = 1558,
    kPluginErrResult8 = 1559
};

/// Both are defined by the plug-in: the call block of the current message, and the entry point.
extern FMX_ExternCallPtr gFMX_ExternCallPtr;
void FMX_ENTRYPT FMExternCallProc(FMX_ExternCallPtr pb);

} // extern "C"

/// The call-backs of the current call block. They belong to the host's thread, and must not be called while
/// unsafeCalls is set.
#define FMX_StartScript(file, script, control, parameter)                                                    \
    gFMX_ExternCallPtr->cStartScript((file), (script), (control), (parameter))
#define FMX_SetToCurrentEnv(env) gFMX_ExternCallPtr->cCurrentEnv((env))

#if defined(_LP64) || defined(__LP64__)
static_assert(sizeof(FMX_ExternCallStruct) == 74);
static_assert(offsetof(FMX_ExternCallStruct, extnVersion) == 0);
static_assert(offsetof(FMX_ExternCallStruct, unusedID) == 2);
static_assert(offsetof(FMX_ExternCallStruct, entryPoint) == 6);
static_assert(offsetof(FMX_ExternCallStruct, unusedFlag) == 14);
static_assert(offsetof(FMX_ExternCallStruct, whichCall) == 15);
static_assert(offsetof(FMX_ExternCallStruct, unsafeCalls) == 16);
static_assert(offsetof(FMX_ExternCallStruct, parm1) == 17);
static_assert(offsetof(FMX_ExternCallStruct, parm2) == 18);
static_assert(offsetof(FMX_ExternCallStruct, parm3) == 26);
static_assert(offsetof(FMX_ExternCallStruct, instanceID) == 34);
static_assert(offsetof(FMX_ExternCallStruct, result) == 42);
static_assert(offsetof(FMX_ExternCallStruct, unused) == 50);
static_assert(offsetof(FMX_ExternCallStruct, cStartScript) == 58);
static_assert(offsetof(FMX_ExternCallStruct, cCurrentEnv) == 66);
#endif
