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
#include <cstdlib>
#include <ctime>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// The functions whose work is small: each beside a call through the host that does nothing, a copy by the
/// host of the same result, and what the platform or the host must do besides.

namespace bench {

namespace {

using host::bridge::out;

constexpr std::size_t kLinesToSort = 1'000;

/// In the host's own types, a value as a function gives it.
void copy(const fmx::Data& from, fmx::Data& to) {
    switch (from.GetNativeType()) {
    case fmx::Data::kDTNumber: return to.SetAsNumber(from.GetAsNumber());
    case fmx::Data::kDTTimeStamp: return to.SetAsTimeStamp(from.GetAsTimeStamp());
    default: to.SetAsText(from.GetAsText(), from.GetLocale());
    }
}

void readClock() {
    std::timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    keep(now);
}

void sortNumbers() {
    static const std::string lines = host::toUtf8(unsortedNumbers(kLinesToSort));
    std::vector<double> numbers;
    for (const char* at = lines.c_str(); *at != '\0'; ++at) {
        char* end = nullptr;
        numbers.push_back(std::strtod(at, &end));
        at = end;
    }
    std::sort(numbers.begin(), numbers.end());
    keep(numbers.data());
}

void nothing() {}

/// A function with its arguments, each a calculation, and what any implementation does besides the call.
struct PlainCall {
    const char* name;
    std::vector<std::u16string> arguments;
    void (*work)() = nothing;
    const char* workName = "";
};

const std::vector<PlainCall>& plainCalls() {
    static const std::vector<PlainCall> calls{
        {"Kestrel_Version", {u"\"long\""}},
        {"Kestrel_Get", {u"\"lastErrorMessage\""}},
        {"Kestrel_Get", {u"\"sort\"", u"$$numbers"}, sortNumbers, ", sorting"},
        {"Kestrel_Set", {u"\"globalDieInterval\"", u"60"}},
        {"Kestrel_DoSystemScript", {u"\"ls\"", u"\"sh\""}},
        {"Kestrel_GetDefaultPrinter", {}},
        {"Kestrel_SetDefaultPrinter", {u"\"Laser\""}},
        {"Kestrel_GetPrinterNames", {}},
        {"Kestrel_GetSpecialWindows", {}},
        {"Kestrel_SetScriptShortcut", {u"\"F1\"", u"\"Greet\""}},
        {"Kestrel_ValueType", {u"Date ( 2 ; 29 ; 2024 )"}},
        {"Kestrel_GetTimestamp", {}, readClock, ", clock_gettime"},
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
        std::string("an empty call, a host copy") + plain.workName,
        [&] {
            loaded.call(empty, arguments, ignored);
            plain.work();
            copy(out<fmx::Data>(given), out<fmx::Data>(copied));
        });
}

/// The scripts that a call starts run at once, so that they do not pile up.
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
        "ScriptNames, start and run by the host",
        [&] {
            keep(session.evaluate(u"ScriptNames ( \"\" )").error);
            keep(session.startScript(session.front()->name(), u"Greet", arguments.back()));
            keep(session.runWaitingScripts());
        });
}

/// Calls through a calculation, as solutions make them.
void benchEmptyCall(const Loaded& loaded) {
    const host::RegisteredFunction& function = loaded.function(u"Kestrel_DoBashCmd");
    host::Session& session = *host::Session::current();
    const host::calc::Environment environment = session.environment(session.front());
    const auto parsed = host::calc::parse(u"Kestrel_DoBashCmd ( 1 )", session.functions());
    const host::DataVect arguments{shared(host::Data(host::Decimal(1)))};
    host::Data result;
    row(
        "Kestrel_DoBashCmd, which is empty, in a calculation",
        [&] { keep(host::calc::evaluate(*parsed.expression, environment).error); }, "an empty call",
        [&] { loaded.call(function, arguments, result); });
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
