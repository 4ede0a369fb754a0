#include "Registry.h"

#include "Handlers.h"
#include "bridge/cFMUtils.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

namespace {

constexpr unsigned kEverywhere = 0xFF01; // in all of the host's dialogs, and evaluated on a server
constexpr unsigned kHidden = 0x0001;     // evaluated on a server, in no dialog
constexpr short kNoLimit = -1;
/// Shutdown withdraws all functions up to this one.
constexpr short kLastWithdrawn = 25;

constexpr unsigned long kStringIdOfFunction0 = 100;
constexpr std::size_t kMostUnits = 1024;

struct Function {
    short id;
    std::string_view prototype;
    short minArgs, maxArgs;
    unsigned flags;
    fmx::ExtPluginType handler;
};

/// The order is the order of registration and of the identifiers. Counts and prototypes that do not agree
/// (functions 22 to 26) stay, because existing solutions rely on them.
constexpr Function kFunctions[] = {
    {1, "Kestrel_Version( { versionFormat } )", 0, kNoLimit, kEverywhere, Kestrel_Version},
    {2, "Kestrel_Get( selector { ; moreOptions } )", 0, kNoLimit, kEverywhere, Kestrel_Get},
    {3, "Kestrel_Set( selector ; newValue )", 2, kNoLimit, kEverywhere, Kestrel_Set},
    {4, "Kestrel_ExecuteSQL( SQLCommand { ; fieldSeparator { ; recordSeparator } } )", 1, kNoLimit,
     kEverywhere, Kestrel_ExecuteSQL},
    {5, "Kestrel_Encode( encoding ; text )", 2, 2, kEverywhere, Kestrel_Encode},
    {6, "Kestrel_Decode( encoding ; text )", 2, 2, kEverywhere, Kestrel_Decode},
    {7, "Kestrel_MergeText( text )", 1, kNoLimit, kEverywhere, Kestrel_MergeText},
    {8, "Kestrel_DoFileMakerScript( scriptName { ; scriptParameter } { ; delayOrTime } )", 1, kNoLimit,
     kEverywhere, Kestrel_DoFileMakerScript},
    {9, "Kestrel_DoSystemScript( scriptText ; scriptInterpreter )", 2, kNoLimit, kEverywhere,
     Kestrel_DoSystemScript},
    {10, "Kestrel_GetDefaultPrinter", 0, kNoLimit, kEverywhere, Kestrel_GetDefaultPrinter},
    {11, "Kestrel_SetDefaultPrinter( printerName )", 1, kNoLimit, kEverywhere, Kestrel_SetDefaultPrinter},
    {12, "Kestrel_GetPrinterNames", 0, kNoLimit, kEverywhere, Kestrel_GetPrinterNames},
    {13, "Kestrel_RegExp_Substitute( text ; searchPattern ; replaceString1 { ; replaceString2 ... } )", 3,
     kNoLimit, kEverywhere, Kestrel_RegExp_Substitute},
    {14, "Kestrel_RegExp_PatternCount( text ; searchPattern )", 2, kNoLimit, kEverywhere,
     Kestrel_RegExp_PatternCount},
    {15, "Kestrel_GetClientPublicIPAddress", 0, kNoLimit, kEverywhere, Kestrel_GetClientPublicIPAddress},
    {17, "Kestrel_GetNameForIP( hostIP )", 1, kNoLimit, kEverywhere, Kestrel_GetNameForIP},
    {18, "Kestrel_GetIPforName( hostName )", 1, kNoLimit, kEverywhere, Kestrel_GetIPforName},
    {19, "Kestrel_GetSpecialWindows", 0, kNoLimit, kEverywhere, Kestrel_GetSpecialWindows},
    {20, "Kestrel_SetScriptShortcut( key ; scriptName { ; scriptParameter } { ; scriptControl } )", 2,
     kNoLimit, kEverywhere, Kestrel_SetScriptShortcut},
    {21, "Kestrel_ValueType( value )", 1, 1, kEverywhere, Kestrel_ValueType},
    {22, "Kestrel_GetTimestamp", 0, 1, kEverywhere, Kestrel_GetTimestamp},
    {23, "Kestrel_SetGlobal( key ; value { ; moreOptions } )", 0, kNoLimit, kEverywhere, Kestrel_SetGlobal},
    {24, "Kestrel_GetGlobal( key )", 0, kNoLimit, kEverywhere, Kestrel_GetGlobal},
    {25, "Kestrel_GetAsHTML( key )", 0, kNoLimit, kEverywhere, Kestrel_GetAsHTML},
    {26, "Kestrel_DoBashCmd", 1, 1, kHidden, Kestrel_DoBashCmd},
};

static_assert(std::all_of(std::begin(kFunctions), std::end(kFunctions),
                          [](const Function& function) { return function.prototype.size() < kMostUnits; }));
static_assert(std::is_sorted(std::begin(kFunctions), std::end(kFunctions),
                             [](const Function& a, const Function& b) { return a.id < b.id; }));

/// True from the first start. The host may still have functions of an earlier start, at least 26, and would
/// refuse to register them again.
bool gHasStarted = false;

/// A new object for each call: no object of the host is kept between messages.
fmx::QuadCharUniquePtr creatorId() { return fmx::QuadCharUniquePtr('K', 'S', 'T', 'R'); }

/// Errors and exceptions are ignored, so that the remaining functions are withdrawn too.
void withdraw(short id) noexcept {
    try {
        UnRegisterExternalFunction(id);
    } catch (...) {
        return;
    }
}

/// Withdraws the functions of the first `rows` rows, the last row first.
void withdrawRows(std::size_t rows) noexcept {
    while (rows-- > 0)
        withdraw(kFunctions[rows].id);
}

} // namespace

void Do_GetString(unsigned long stringId, fmx::TextUniquePtr& out, bool nameOnly) {
    const auto* const function =
        std::find_if(std::begin(kFunctions), std::end(kFunctions), [stringId](const Function& candidate) {
            return kStringIdOfFunction0 + static_cast<unsigned long>(candidate.id) == stringId;
        });
    const std::string literal(function == std::end(kFunctions) ? "ERROR" : function->prototype);
    const fmx::TextUniquePtr prototype = cFMUtils::FMXTextUniquePtrFromString(literal);

    std::array<fmx::uint16, kMostUnits> units{};
    const auto size = std::min<std::size_t>(prototype->GetSize(), units.size() - 1);
    prototype->GetUnicode(units.data(), 0, static_cast<fmx::uint32>(size));
    out->AssignUnicode(units.data());

    if (nameOnly) {
        const fmx::TextUniquePtr parenthesis;
        parenthesis->Assign("(");
        const fmx::uint32 end = out->Find(*parenthesis, 0);
        if (end != fmx::Text::kSize_Invalid) out->DeleteText(end);
    }
}

fmx::errcode RegisterExternalFunction(short id, short minArgs, short maxArgs, unsigned flags,
                                      fmx::ExtPluginType handler) {
    const fmx::QuadCharUniquePtr creator = creatorId();
    const unsigned long stringId = kStringIdOfFunction0 + static_cast<unsigned long>(id);
    fmx::TextUniquePtr name;
    Do_GetString(stringId, name, true);
    fmx::TextUniquePtr prototype;
    Do_GetString(stringId, prototype, false);
    return fmx::ExprEnv::RegisterExternalFunction(*creator, id, *name, *prototype, minArgs, maxArgs, flags,
                                                  handler);
}

fmx::errcode UnRegisterExternalFunction(short id) {
    return fmx::ExprEnv::UnRegisterExternalFunction(*creatorId(), id);
}

bool RegisterExternalFunctions() {
    if (gHasStarted) withdrawRows(std::size(kFunctions));
    gHasStarted = true;
    std::size_t row = 0;
    try {
        for (; row < std::size(kFunctions); ++row) {
            const auto& [id, prototype, minArgs, maxArgs, flags, handler] = kFunctions[row];
            if (RegisterExternalFunction(id, minArgs, maxArgs, flags, handler) == 0) continue;
            withdrawRows(row);
            return false;
        }
    } catch (...) {
        withdrawRows(row);
        throw;
    }
    return true;
}

void UnRegisterExternalFunctions() noexcept {
    for (short id = kLastWithdrawn; id > 0; --id)
        withdraw(id);
}
