#pragma once

// The same interface as another vendor might write it, here only for compiling.

#define FMX_ENTRYPT
#define FMX_API
#define FMX_PACK __attribute__((packed))
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
typedef FMX_UChar FMX_ScriptControl;
enum { kFMXT_Halt = 0 };

typedef FMX_UChar FMX_ExternCallSwitch;

struct FMX_ExternCallStruct;
typedef FMX_ExternCallStruct* FMX_ExternCallPtr;
FMX_PROCPTR(void, FMX_ExternCallProc)(FMX_ExternCallPtr);
FMX_PROCPTR(FMX_ErrorCode, FMX_StartScriptCall)
(const FMX_Text* fileName, const FMX_Text* scriptName, FMX_ScriptControl control, const FMX_Data* parameter);
FMX_PROCPTR(FMX_ErrorCode, FMX_CurrentEnvCall)(FMX_ExprEnv* env);
struct FMX_ExternCallStruct {
    FMX_Int16 extnVersion;
    fmx::unusedid unusedID;
    FMX_ExternCallProc entryPoint;
    FMX_Boolean unusedFlag;
    FMX_ExternCallSwitch whichCall;
    FMX_Boolean unsafeCalls;
    FMX_UChar parm1;
    FMX_PtrType parm2;
    FMX_PtrType parm3;
    FMX_PtrType instanceID;
    FMX_PtrType result;
    FMX_PtrType unused;
    FMX_StartScriptCall cStartScript;
    FMX_CurrentEnvCall cCurrentEnv;
} FMX_PACK;
enum { kBadExtnVersion = -1, kDoNotEnable = -2 };
enum { kFMXT_Init = 0, kFMXT_Idle = 1, kFMXT_Shutdown = 4, kFMXT_DoAppPreferences = 5, kFMXT_GetString = 7 };

enum { kFMXT_NameStr = 128, kFMXT_AppConfigStr = 129, kFMXT_OptionsStr = 131 };
enum { kFMXT_UserIdle = 0, kFMXT_Unsafe = 4 };
extern FMX_ExternCallPtr gFMX_ExternCallPtr;
void FMX_ENTRYPT FMExternCallProc(FMX_ExternCallPtr pb);

} // extern "C"

#define FMX_StartScript(file, script, control, parameter)                                                    \
    gFMX_ExternCallPtr->cStartScript((file), (script), (control), (parameter))
#define FMX_SetToCurrentEnv(env) gFMX_ExternCallPtr->cCurrentEnv((env))
