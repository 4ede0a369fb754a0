#pragma once

#include <array>

/// Calculations as solutions really write them, one or more a function, over the sample solution of contacts:
/// what is made to fail in turn, and what is called over and over. None reaches beyond this machine, none
/// waits.
inline constexpr std::array realisticCalls{
    R"calc(Kestrel_Version ( "long" ))calc",
    R"calc(Kestrel_Version ( "autoupdate" ) & Kestrel_Version)calc",
    R"calc(Kestrel_Get ( "lastError" ) & Kestrel_Get ( "lastErrorMessage" ))calc",
    R"calc(Kestrel_Get ( "timestamp" ) > Date ( 1 ; 1 ; 2020 ))calc",
    R"calc(Kestrel_Get ( "sort" ; "3¶1¶2.5¶-7¶¶12e3" ))calc",
    R"calc(Kestrel_Get ( "scriptResult" ; "7" ) & Kestrel_Get ( "stderr" ))calc",
    R"calc(Kestrel_Get ( "no such selector" ))calc",
    R"calc(Kestrel_Set ( "globalDieInterval" ; 60 ))calc",
    R"calc(Kestrel_Set ( "inlineDocumentation" ; "off" ) & Kestrel_Set ( "none" ; 1 ))calc",
    R"calc(Kestrel_DoFileMakerScript ( "Greet" ; "Ada" ))calc",
    R"calc(Kestrel_DoFileMakerScript ( "No such script" ; "" ; 1 ))calc",
    R"calc(Kestrel_DoFileMakerScript ( "Greet" ; "" ; Get ( CurrentTimestamp ) + 90000 ))calc",
    R"calc(Kestrel_GetTimestamp - Kestrel_GetTimestamp)calc",
    R"calc(Kestrel_ValueType ( Date ( 2 ; 29 ; 2024 ) ) & Kestrel_ValueType ( "" ))calc",
    R"calc(Let ( [ a = Kestrel_SetGlobal ( "k" ; TextColor ( "v" ; 255 ) ) ; b = Kestrel_SetGlobal ( "k" ; 12.5 ) ] ;
        Kestrel_GetGlobal ( "k" ) & Kestrel_GetGlobal ( "other" ) ))calc",
    R"calc(Kestrel_SetGlobal ( "mine" ; Time ( 1 ; 2 ; 3 ) ; "dieOnClose" ) & Kestrel_SetGlobal ( "mine" ; "" ))calc",
    R"calc(Kestrel_SetGlobal ( "k" ; 1 ; "no such option" ))calc",
    R"calc(Kestrel_ExecuteSQL ( "SELECT name, born FROM contacts WHERE id < 4" ; "|" ; "; " ))calc",
    R"calc(Kestrel_ExecuteSQL ( "SELECT nothing" ))calc",
    R"calc(Kestrel_Encode ( "UTF-8 to Base64" ; "Zoë" ) & Kestrel_Encode ( "rot13" ; "a" ))calc",
    R"calc(Kestrel_Decode ( "Base64 to UTF-8" ; "Wm/Dqw==" ))calc",
    R"calc(Kestrel_MergeText ( TextColor ( "Dear <<Upper ( \"Zoë\" )>>, <<1+>> <<<2>>>" ; 255 ) ))calc",
    R"calc(Kestrel_RegExp_Substitute ( TextColor ( "2024-05-06 x" ; 255 ) ; "(\\d+)-(\\d+)" ; "Y" ; TextStyleAdd ( "M" ; Bold ) ))calc",
    R"calc(Kestrel_RegExp_Substitute ( "xyz" ; "a(b)c" ; "Y" ) & Kestrel_RegExp_Substitute ( "xyz" ; "(" ; "Y" ))calc",
    R"calc(Kestrel_RegExp_Substitute ( TextStyleAdd ( "bold" ; Bold ) ; TextStyleAdd ( "(o)" ; Bold ) ; "0" ))calc",
    R"calc(Kestrel_RegExp_PatternCount ( "abcabc" ; "b." ) & Kestrel_RegExp_PatternCount ( "a" ; "(" ))calc",
    R"calc(Kestrel_GetAsHTML ( TextStyleAdd ( "Hello" ; Bold ) & " world, & ¶" & TextColor ( "red" ; 255 ) ))calc",
    R"calc(Let ( $$note = TextSize ( "a¶b" ; 24 ) ; Kestrel_GetAsHTML ( "$$note" ; "all" ; "right=r¶all" ; "all" ) ))calc",
    R"calc(Kestrel_GetIPforName ( "localhost" ) & Kestrel_GetIPforName ( "no such name" ))calc",
    R"calc(Kestrel_GetNameForIP ( "300.1.1.1" ))calc",
    R"calc(Kestrel_DoSystemScript ( "ls" ; "sh" ) & Kestrel_DoBashCmd ( "ls" ))calc",
    R"calc(Kestrel_GetDefaultPrinter & Kestrel_SetDefaultPrinter ( "none" ) & Kestrel_GetPrinterNames)calc",
};
