#pragma once

#include <array>

/// Calculations as solutions really write them, one or more a function, over the sample solution of contacts:
/// what is made to fail in turn, and what is called over and over. None reaches beyond this machine, none
/// waits.
inline constexpr std::array realisticCalls{
    R"(Kestrel_Version ( "long" ))",
    R"(Kestrel_Version ( "autoupdate" ) & Kestrel_Version)",
    R"(Kestrel_Get ( "lastError" ) & Kestrel_Get ( "lastErrorMessage" ))",
    R"(Kestrel_Get ( "timestamp" ) > Date ( 1 ; 1 ; 2020 ))",
    R"(Kestrel_Get ( "sort" ; "3¶1¶2.5¶-7¶¶12e3" ))",
    R"(Kestrel_Get ( "scriptResult" ; "7" ) & Kestrel_Get ( "stderr" ))",
    R"(Kestrel_Get ( "no such selector" ))",
    R"(Kestrel_Set ( "globalDieInterval" ; 60 ))",
    R"(Kestrel_Set ( "inlineDocumentation" ; "off" ) & Kestrel_Set ( "none" ; 1 ))",
    R"(Kestrel_DoFileMakerScript ( "Greet" ; "Ada" ))",
    R"(Kestrel_DoFileMakerScript ( "No such script" ; "" ; 1 ))",
    R"(Kestrel_DoFileMakerScript ( "Greet" ; "" ; Get ( CurrentTimestamp ) + 90000 ))",
    R"(Kestrel_GetTimestamp - Kestrel_GetTimestamp)",
    R"(Kestrel_ValueType ( Date ( 2 ; 29 ; 2024 ) ) & Kestrel_ValueType ( "" ))",
    R"(Let ( [ a = Kestrel_SetGlobal ( "k" ; TextColor ( "v" ; 255 ) ) ; b = Kestrel_SetGlobal ( "k" ; 12.5 ) ] ;
        Kestrel_GetGlobal ( "k" ) & Kestrel_GetGlobal ( "other" ) ))",
    R"(Kestrel_SetGlobal ( "mine" ; Time ( 1 ; 2 ; 3 ) ; "dieOnClose" ) & Kestrel_SetGlobal ( "mine" ; "" ))",
    R"(Kestrel_SetGlobal ( "k" ; 1 ; "no such option" ))",
    R"(Kestrel_ExecuteSQL ( "SELECT name, born FROM contacts WHERE id < 4" ; "|" ; "; " ))",
    R"(Kestrel_ExecuteSQL ( "SELECT nothing" ))",
    R"(Kestrel_Encode ( "UTF-8 to Base64" ; "Zoë" ) & Kestrel_Encode ( "rot13" ; "a" ))",
    R"(Kestrel_Decode ( "Base64 to UTF-8" ; "Wm/Dqw==" ))",
    R"(Kestrel_MergeText ( TextColor ( "Dear <<Upper ( \"Zoë\" )>>, <<1+>> <<<2>>>" ; 255 ) ))",
    R"(Kestrel_DoSystemScript ( "ls" ; "sh" ) & Kestrel_DoBashCmd ( "ls" ))",
    R"(Kestrel_GetDefaultPrinter & Kestrel_SetDefaultPrinter ( "none" ) & Kestrel_GetPrinterNames)",
};
