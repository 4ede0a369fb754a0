#include "host/fmwrapper/GetNumbers.h"

#include <algorithm>
#include <array>

namespace host {

namespace {

struct GetNumber {
    int number;
    std::u16string_view name;
};
/// The rows are in the order of the numbers.
constexpr std::array getNumbers{
    GetNumber{1001, u"ApplicationVersion"},
    GetNumber{1002, u"CurrentDate"},
    GetNumber{1003, u"LastError"},
    GetNumber{1004, u"ActiveFieldName"},
    GetNumber{1005, u"FileName"},
    GetNumber{1006, u"FileSize"},
    GetNumber{1007, u"FoundCount"},
    GetNumber{1008, u"HostName"},
    GetNumber{1009, u"LayoutCount"},
    GetNumber{1010, u"LayoutName"},
    GetNumber{1011, u"LayoutNumber"},
    GetNumber{1012, u"SystemLanguage"},
    GetNumber{1013, u"WindowMode"},
    GetNumber{1014, u"MultiUserState"},
    GetNumber{1015, u"PageNumber"},
    GetNumber{1016, u"SystemPlatform"},
    GetNumber{1017, u"ActivePortalRowNumber"},
    GetNumber{1018, u"PrinterName"},
    GetNumber{1019, u"TotalRecordCount"},
    GetNumber{1020, u"RecordNumber"},
    GetNumber{1021, u"ActiveRepetitionNumber"},
    GetNumber{1022, u"RequestCount"},
    GetNumber{1023, u"ScreenDepth"},
    GetNumber{1024, u"ScreenHeight"},
    GetNumber{1025, u"ScreenWidth"},
    GetNumber{1026, u"ScriptName"},
    GetNumber{1027, u"SortState"},
    GetNumber{1028, u"SystemVersion"},
    GetNumber{1029, u"CurrentTime"},
    GetNumber{1030, u"UserCount"},
    GetNumber{1031, u"UserName"},
    GetNumber{1032, u"AccountName"},
    GetNumber{1033, u"LastMessageChoice"},
    GetNumber{1034, u"CurrentPrivilegeSetName"},
    GetNumber{1035, u"ActiveModifierKeys"},
    GetNumber{1036, u"NetworkProtocol"},
    GetNumber{1037, u"RecordID"},
    GetNumber{1038, u"RecordModificationCount"},
    GetNumber{1039, u"ActiveFieldContents"},
    GetNumber{1040, u"FilePath"},
    GetNumber{1041, u"LastExternalErrorDetail"},
    GetNumber{1042, u"LayoutAccess"},
    GetNumber{1043, u"RecordAccess"},
    GetNumber{1048, u"WindowName"},
    GetNumber{1054, u"SystemNICAddress"},
    GetNumber{1055, u"SystemIPAddress"},
    GetNumber{1059, u"ApplicationLanguage"},
    GetNumber{1060, u"CurrentHostTimestamp"},
    GetNumber{1061, u"LayoutTableName"},
    GetNumber{1062, u"ScriptParameter"},
    GetNumber{1063, u"CurrentTimestamp"},
    GetNumber{1068, u"CalculationRepetitionNumber"},
    GetNumber{1069, u"CurrentExtendedPrivileges"},
    GetNumber{1070, u"AllowAbortState"},
    GetNumber{1071, u"ErrorCaptureState"},
    GetNumber{1072, u"DesktopPath"},
    GetNumber{1073, u"DocumentsPath"},
    GetNumber{1074, u"FileMakerPath"},
    GetNumber{1075, u"HostIPAddress"},
    GetNumber{1077, u"PreferencesPath"},
    GetNumber{1080, u"ScriptResult"},
    GetNumber{1081, u"SystemDrive"},
    GetNumber{1089, u"TemporaryPath"},
    GetNumber{1090, u"HostApplicationVersion"},
    GetNumber{1094, u"AccountPrivilegeSetName"},
    GetNumber{1095, u"AccountExtendedPrivileges"},
    GetNumber{1100, u"InstalledFMPlugins"},
    GetNumber{1101, u"UUID"},
    GetNumber{1102, u"PersistentID"},
    GetNumber{1103, u"ConnectionState"},
    GetNumber{1104, u"CurrentTimeUTCMilliseconds"},
    GetNumber{1105, u"Device"},
    GetNumber{1110, u"ModifiedFields"},
    GetNumber{1115, u"ApplicationArchitecture"},
    GetNumber{1121, u"ActiveRecordNumber"},
    GetNumber{1122, u"UUIDNumber"},
    GetNumber{1124, u"AccountType"},
    GetNumber{1126, u"SystemLocaleElements"},
    GetNumber{1127, u"FileLocaleElements"},
    GetNumber{1128, u"InstalledFMPluginsAsJSON"},
    GetNumber{1129, u"SessionIdentifier"},
    GetNumber{1132, u"TransactionState"},
    GetNumber{1134, u"LastErrorLocation"},
};

} // namespace

std::u16string_view getFunctionName(int number) {
    const auto* row = std::ranges::lower_bound(getNumbers, number, {}, &GetNumber::number);
    return row == getNumbers.end() || row->number != number ? std::u16string_view() : row->name;
}

} // namespace host
