#include "Benchmarks.h"
#include "Inputs.h"
#include "Loaded.h"
#include "Measure.h"

#include "FMWrapper/FMXCalcEngine.h"
#include "FMWrapper/FMXData.h"
#include "FMWrapper/FMXDateTime.h"
#include "FMWrapper/FMXFixPt.h"
#include "FMWrapper/FMXText.h"
#include "host/app/File.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// The functions with little work of their own. The floor of each is an empty call through the host, a copy
/// of the same result by the host, and the necessary work of the platform or the host.

namespace bench {

namespace {

using host::bridge::out;

constexpr std::size_t kLinesToSort = 1'000;

/// Copies a function's result with the host's own types.
void copy(const fmx::Data& from, fmx::Data& to) {
    switch (from.GetNativeType()) {
    case fmx::Data::kDTNumber: return to.SetAsNumber(from.GetAsNumber());
    case fmx::Data::kDTTimeStamp: return to.SetAsTimeStamp(from.GetAsTimeStamp());
    default: to.SetAsText(from.GetAsText(), from.GetLocale());
    }
}

void nothing(const Loaded&) {}

void evaluate(const Loaded& loaded, const char* calculation) {
    const fmx::TextUniquePtr expression;
    expression->Assign(calculation);
    const fmx::DataUniquePtr value;
    keep(loaded.environment().Evaluate(*expression, *value));
}

/// Sets the last error. It is in variables of the solution, which only a calculation can set or read.
void recordError(const Loaded& loaded) {
    evaluate(loaded, R"(Let ( [ $$Kestrel_LastError = 3 ; $$Kestrel_LastErrorMessage = "message" ] ; "" ))");
}
void readErrorMessage(const Loaded& loaded) {
    evaluate(loaded,
             R"(If ( IsEmpty ( $$Kestrel_LastErrorMessage ) ; "none" ; $$Kestrel_LastErrorMessage ))");
}

/// Lowers a word with the host's function, as matching in any case requires.
void lowerWord(const Loaded&) {
    const fmx::TextUniquePtr word;
    word->Assign("globalDieInterval");
    word->Lowercase();
}

/// Reads the local time, and the system's time zone, which may have changed since the last call.
void readLocalTime(const Loaded&) {
    const std::time_t now = std::time(nullptr);
    keep(std::localtime(&now));
}

void sortNumbers(const Loaded&) {
    static const std::string lines = host::toUtf8(unsortedNumbers(kLinesToSort));
    std::vector<double> numbers;
    for (const char* at = lines.c_str(); *at != '\0'; ++at) {
        char* end = nullptr;
        numbers.push_back(std::strtod(at, &end));
        at = end;
    }
    std::sort(numbers.begin(), numbers.end());
    std::array<char, 32> digits{};
    for (const double number : numbers)
        keep(std::snprintf(digits.data(), digits.size(), "%g\r", number));
}

/// A function with its arguments, each a calculation, and the necessary work of any implementation.
struct PlainCall {
    const char* name;
    std::vector<std::u16string> arguments;
    void (*work)(const Loaded&) = nothing;
    const char* workName = "";
};

const std::vector<PlainCall>& plainCalls() {
    static constexpr const char *word = ", a word in lower case", *record = ", a variable set";
    static const std::vector<PlainCall> calls{
        {"Kestrel_Version", {u"\"long\""}, lowerWord, word},
        {"Kestrel_Get", {u"\"lastErrorMessage\""}, readErrorMessage, ", a variable read"},
        {"Kestrel_Get", {u"\"sort\"", u"$$numbers"}, sortNumbers, ", strtod, sort, snprintf"},
        {"Kestrel_Set", {u"\"globalDieInterval\"", u"60"}, lowerWord, word},
        {"Kestrel_DoSystemScript", {u"\"ls\"", u"\"sh\""}, recordError, record},
        {"Kestrel_GetDefaultPrinter", {}, recordError, record},
        {"Kestrel_SetDefaultPrinter", {u"\"Laser\""}, recordError, record},
        {"Kestrel_GetPrinterNames", {}, recordError, record},
        {"Kestrel_GetSpecialWindows", {}, recordError, record},
        {"Kestrel_SetScriptShortcut", {u"\"F1\"", u"\"Greet\""}, recordError, record},
        {"Kestrel_ValueType", {u"Date ( 2 ; 29 ; 2024 )"}},
        {"Kestrel_GetTimestamp", {}, readLocalTime, ", localtime"},
    };
    return calls;
}

void benchPlainCall(const Loaded& loaded, const PlainCall& plain) {
    const host::RegisteredFunction& function = loaded.function(host::fromUtf8(plain.name));
    const host::RegisteredFunction& empty = loaded.function(u"Kestrel_DoBashCmd");
    host::DataVect arguments;
    for (const std::u16string& calculation : plain.arguments)
        arguments.push_back(host::Session::current()->evaluate(calculation).value);
    host::Data result, given, copied, ignored;
    loaded.call(function, arguments, given);
    std::string name = plain.name;
    if (!arguments.empty() && name == "Kestrel_Get") name += ", " + arguments.front()->asText().utf8();
    row(
        name, [&] { loaded.call(function, arguments, result); },
        std::string("empty call, host copy") + plain.workName,
        [&] {
            loaded.call(empty, arguments, ignored);
            plain.work(loaded);
            copy(out<fmx::Data>(given), out<fmx::Data>(copied));
        });
}

/// The started scripts run at once, so that the queue stays short.
void benchStartOfScript(const Loaded& loaded) {
    host::Session& session = *host::Session::current();
    const host::RegisteredFunction& function = loaded.function(u"Kestrel_DoFileMakerScript");
    const host::DataVect arguments = texts({u"Greet", u"a parameter"});
    host::Data result;
    row(
        "Kestrel_DoFileMakerScript",
        [&] {
            loaded.call(function, arguments, result);
            keep(session.runWaitingScripts());
        },
        "variable set, ScriptNames, start, run",
        [&] {
            recordError(loaded);
            keep(session.evaluate(u"ScriptNames ( \"\" )").error);
            keep(session.startScript(session.front()->name(), u"Greet", arguments.back()));
            keep(session.runWaitingScripts());
        });
}

/// Calls a function in a calculation, as solutions do. The floor finds the same handler by its name and calls
/// it.
void benchEmptyCall(const Loaded& loaded) {
    host::Session& session = *host::Session::current();
    const host::calc::Environment environment = session.environment(session.front());
    const auto parsed = host::calc::parse(u"Kestrel_DoBashCmd ( 1 )", session.functions());
    std::map<std::u16string, const host::RegisteredFunction*, std::less<>> table;
    for (const host::RegisteredFunction& function : loaded.functions())
        table[function.name] = &function;
    const host::DataVect arguments{shared(host::Data(host::Decimal(1)))};
    host::Data result;
    row(
        "Kestrel_DoBashCmd, in a calculation",
        [&] { keep(host::calc::evaluate(*parsed.expression, environment).error); }, "name found, empty call",
        [&] { loaded.call(*table.find(u"Kestrel_DoBashCmd")->second, arguments, result); });
}

} // namespace

void benchPlainCalls() {
    host::Solution solution;
    solution.scripts.push_back({u"Greet", {}});
    const Loaded loaded(std::move(solution));
    host::Session& session = *host::Session::current();
    session.front()->fileVariables().set(u"numbers", 1, shared(host::Text(unsortedNumbers(kLinesToSort))));
    benchEmptyCall(loaded);
    for (const PlainCall& plain : plainCalls())
        benchPlainCall(loaded, plain);
    benchStartOfScript(loaded);
}

void requireRowsForAllFunctions() {
    const Loaded loaded;
    for (const host::RegisteredFunction& function : loaded.functions()) {
        const std::string name = host::toUtf8(function.name);
        const auto& rows = rowNames();
        if (std::none_of(rows.begin(), rows.end(), [&](const std::string& shown) {
                return shown == name || shown.starts_with(name + ",");
            }))
            throw std::runtime_error(name + " has no row");
    }
}

} // namespace bench
