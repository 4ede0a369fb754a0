#pragma once

#include <array>

struct RealisticCall {
    const char* calculation;
    const char* result; ///< as text; "error N" for a calculation that fails
};

/// Calculations like those of real solutions, at least one for each function, over the sample solution of
/// contacts. The failing-host test and the soak run them. The clock is held, and the network is the tests'
/// own, whose services answer `realisticAnswer`: no call leaves this machine or waits.
inline constexpr std::array realisticCalls = std::to_array<RealisticCall>({
    {R"calc(Kestrel_Version ( "long" ))calc", "Vex Kestrel Plug-In 3.1"},
    {R"calc(Kestrel_Version ( "autoupdate" ) & Kestrel_Version)calc", "030100043.1"},
    {R"calc(Kestrel_Encode ( "rot13" ; "a" ) & Kestrel_Get ( "lastError" ) & Kestrel_Get ( "lastErrorMessage" ))calc",
     "-50-50Unrecognized selector"},
    {R"calc(Kestrel_Get ( "timestamp" ) > Date ( 1 ; 1 ; 2020 ))calc", "1"},
    {R"calc(Kestrel_Get ( "sort" ; "3¶1¶2.5¶-7¶¶12e3" ))calc", "-7\r-7\r1\r2.5\r3\r12000\r"},
    {R"calc(Kestrel_Get ( "scriptResult" ; "no such id" ) & Kestrel_Get ( "stderr" ))calc",
     "?No Error Message"},
    {R"calc(Kestrel_Get ( "no such selector" ))calc", "-50"},
    {R"calc(Kestrel_Set ( "globalDieInterval" ; 60 ))calc", "60"},
    {R"calc(Kestrel_Set ( "inlineDocumentation" ; "off" ) & Kestrel_Set ( "none" ; 1 ))calc", "-50"},
    {R"calc(Kestrel_DoFileMakerScript ( "Greet" ; "Ada" ))calc", "0"},
    {R"calc(Kestrel_DoFileMakerScript ( "Greet" ; "Ada" ; 60 ))calc", "0"},
    {R"calc(Kestrel_DoFileMakerScript ( "No such script" ; "" ; 1 ))calc", "-50"},
    {R"calc(Kestrel_DoFileMakerScript ( "Greet" ; "" ; Get ( CurrentTimestamp ) + 90000 ))calc",
     "error -1001"},
    {R"calc(Kestrel_GetTimestamp - Kestrel_GetTimestamp)calc", "0"},
    {R"calc(Kestrel_ValueType ( Date ( 2 ; 29 ; 2024 ) ) & Kestrel_ValueType ( "" ))calc", "DateText"},
    {R"calc(Let ( [ a = Kestrel_SetGlobal ( "k" ; TextColor ( "v" ; 255 ) ) ; b = Kestrel_SetGlobal ( "k" ; 12.5 ) ] ;
        Kestrel_GetGlobal ( "k" ) & Kestrel_GetGlobal ( "other" ) ))calc",
     "12.5"},
    {R"calc(Kestrel_SetGlobal ( "mine" ; Time ( 1 ; 2 ; 3 ) ; "dieOnClose" ) & Kestrel_SetGlobal ( "mine" ; "" ))calc",
     "1:02:03"},
    {R"calc(Kestrel_SetGlobal ( "k" ; 1 ; "no such option" ))calc", "-50"},
    {R"calc(Kestrel_ExecuteSQL ( "SELECT name, born FROM contacts WHERE id < 4" ; "|" ; "; " ))calc",
     "Ada Brandström|2/29/1984;Benoît Lefèvre|7/14/1971;Chidi Okonkwo|11/3/1990"},
    {R"calc(Kestrel_ExecuteSQL ( "SELECT nothing" ))calc", "8310"},
    {R"calc(Kestrel_Encode ( "UTF-8 to Base64" ; "Zoë" ))calc", "Wm/Dqw=="},
    {R"calc(Kestrel_Decode ( "Base64 to UTF-8" ; "Wm/Dqw==" ))calc", "Zoë"},
    {R"calc(Kestrel_MergeText ( TextColor ( "Dear <<Upper ( \"Zoë\" )>>, <<1+>> <<<2>>>" ; 255 ) ))calc",
     "Dear ZOË, <<1+>> <2>"},
    {R"calc(Kestrel_RegExp_Substitute ( TextColor ( "2024-05-06 x" ; 255 ) ; "(\\d+)-(\\d+)" ; "Y" ; TextStyleAdd ( "M" ; Bold ) ))calc",
     "Y-M-06 x"},
    {R"calc(Kestrel_RegExp_Substitute ( "xyz" ; "a(b)c" ; "Y" ) & Kestrel_RegExp_Substitute ( "xyz" ; "(" ; "Y" ))calc",
     "cxyz2400"},
    {R"calc(Kestrel_RegExp_Substitute ( TextStyleAdd ( "bold" ; Bold ) ; TextStyleAdd ( "(o)" ; Bold ) ; "0" ))calc",
     "b0ld"},
    {R"calc(Kestrel_RegExp_PatternCount ( "abcabc" ; "b." ) & Kestrel_RegExp_PatternCount ( "a" ; "(" ))calc",
     "20"},
    {R"calc(Kestrel_GetAsHTML ( TextStyleAdd ( "Hello" ; Bold ) & " world, & ¶" & TextColor ( "red" ; 255 ) ))calc",
     "<style type=\"text/css\">\r.kst { color:#0000ff; }\r</style>\r"
     "<p><b>Hello</b> world, &amp; </p>\r<p class=\"kst\">red</p>\r"},
    {R"calc(Kestrel_GetAsHTML ( TextStyleAdd ( "a¶&" ; Bold ) & TextColor ( " b" ; 255 ) ; "all" ; "color=red¶all" ; "all" ))calc",
     "<style type=\"text/css\">\r.red { color:#0000ff; }\r</style>\r<p><b>a</b></p>\r<p><b>&amp;</b><span "
     "class=\"red\"> b</span></p>\r"},
    {R"calc(Let ( $$note = TextSize ( "a¶b" ; 24 ) ; Kestrel_GetAsHTML ( "$$note" ; "all" ; "right=r¶all" ; "all" ) ))calc",
     "<style type=\"text/css\">\r.kst { font-size:24px; }\r</style>\r"
     "<p class=\"kst\">a</p>\r<p class=\"kst\">b</p>\r"},
    {R"calc(Kestrel_GetIPforName ( "localhost" ) & Kestrel_GetIPforName ( "no such name" ))calc",
     "127.0.0.1Cannot retrieve IP for host"},
    {R"calc(Kestrel_GetNameForIP ( "127.0.0.1" ) & Kestrel_GetNameForIP ( "::1" ) & Kestrel_GetNameForIP ( "300.1.1.1" ))calc",
     "localhostInvalid IP addressInvalid IP address"},
    {R"calc(Kestrel_GetClientPublicIPAddress)calc", "203.0.113.7"},
    {R"calc(Kestrel_GetSpecialWindows & Kestrel_SetScriptShortcut ( "F1" ; "Greet" ; "Ada" ))calc", "-4-4"},
    {R"calc(Kestrel_DoSystemScript ( "ls" ; "sh" ) & Kestrel_DoBashCmd ( "ls" ))calc", "-4"},
    {R"calc(Kestrel_GetDefaultPrinter & Kestrel_SetDefaultPrinter ( "none" ) & Kestrel_GetPrinterNames)calc",
     "-4-4-4"},
});

inline constexpr const char* realisticAnswer = "\r\n\r\n203.0.113.7";
