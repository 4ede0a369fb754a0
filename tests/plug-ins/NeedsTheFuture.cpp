// Needs two functions of the interface that no host has.
#include "FMWrapper/FMXExtern.h"

extern "C" void FM_Text_Foresee();
extern "C" void FM_Data_Foresee();

void FMX_ENTRYPT FMExternCallProc(FMX_ExternCallPtr) {
    FM_Text_Foresee();
    FM_Data_Foresee();
}
