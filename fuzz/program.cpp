#include "host/app/File.h"
#include "host/app/LoadedPlugIn.h"
#include "host/fmwrapper/Faults.h"
#include "host/fmwrapper/ObjectCounts.h"
#include "host/values/Clock.h"
#include "host/values/Data.h"
#include "host/values/Encoding.h"
#include "support/EndOfDay.h"
#include "support/InputTime.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fuzzer/FuzzedDataProvider.h>
#include <span>
#include <string>
#include <string_view>

/// Runs a program: calls of the functions with values of every type, messages, files that open and close, a
/// clock that jumps and host calls that fail, in any order. No exception may leave the plug-in, and it must
/// keep nothing at the end. The seeds are programs about the functions in their names.

namespace {

using Bytes = FuzzedDataProvider;

// Words that functions look for in their arguments. The fuzzer mixes them with its own texts.
constexpr std::array vocabulary{
    "",
    "last error",
    "last error message",
    "version",
    "timestamp",
    "number_sort",
    "inline documentation",
    "long",
    "autoupdate",
    "temp folder",
    "script status",
    "Key",
    "$variable",
    "$$variable",
    "Untitled",
    "Second",
    "Remind",
    "Again",
    "0",
    "1",
    "-1",
    "nan",
    "1.5¶-2¶0x1p3¶inf",
    "¶",
    "B64",
    "Base64",
    "S2VzdHJlbA==",
    "(a|b)*c",
    "^(\\w+)\\s(\\d)?$",
    "$1\\1$0",
    "i",
    "<<Get ( UserName )>>",
    "<<",
    ">>",
    "SELECT * FROM t",
    "SELECT a FROM t WHERE b = ?",
    "h1=Heading¶p=body",
    "b=strong.bold",
    "font-weight: bold;",
    "127.0.0.1",
    "Hello, \xE2\x82\xAC \xF0\x9F\x98\x80 & <world>",
};

host::Text someText(Bytes& bytes) {
    host::Text text =
        host::Text::fromUtf8(bytes.ConsumeBool() ? std::string(bytes.PickValueInArray(vocabulary))
                                                 : bytes.ConsumeRandomLengthString(80));
    // Some texts are longer than the part that functions read.
    for (int doublings = bytes.ConsumeIntegralInRange(-10, 6); doublings > 0; --doublings)
        text.append(text);
    for (int runs = bytes.ConsumeIntegralInRange(0, 3); runs > 0; --runs) {
        const auto start = bytes.ConsumeIntegralInRange<std::uint32_t>(0, text.size());
        const auto size = bytes.ConsumeIntegralInRange<std::uint32_t>(0, text.size());
        const auto font = bytes.ConsumeIntegralInRange<std::uint16_t>(0, 3);
        const auto faces = bytes.ConsumeIntegral<std::uint16_t>();
        text.applyStyle({font,
                         faces,
                         bytes.ConsumeIntegralInRange<std::uint16_t>(0, 64),
                         {.red = bytes.ConsumeIntegral<std::uint8_t>()}},
                        start, size);
        text.setAlignment(bytes.PickValueInArray({host::Alignment::left, host::Alignment::center,
                                                  host::Alignment::right, host::Alignment::full}),
                          start, size);
    }
    return text;
}

/// A number of up to some 400 digits, before or after the point.
host::Decimal someNumber(Bytes& bytes) {
    constexpr int mostPlaces = 410, mostZeros = 380;
    const std::string digits = std::to_string(bytes.ConsumeIntegral<std::int64_t>());
    const std::string power = std::to_string(bytes.ConsumeIntegralInRange(-mostPlaces, mostZeros));
    host::Decimal number = host::Decimal::parse(host::fromUtf8(digits + "e" + power)).value_or(0);
    number.setPrecision(
        bytes.ConsumeIntegralInRange(host::Decimal::minimumPrecision, host::Decimal::maximumPrecision));
    return number;
}

host::Data someDateOrTime(Bytes& bytes) {
    constexpr std::int64_t longestSpan = 400 * host::DateTime::microsPerDay;
    constexpr std::array types{host::DataType::date, host::DataType::time, host::DataType::timestamp};
    const host::DataType type = bytes.PickValueInArray(types);
    host::DateTime value;
    value.days = bytes.ConsumeIntegralInRange<std::int64_t>(0, host::DateTime::lastDay);
    value.micros = type == host::DataType::time
                       ? bytes.ConsumeIntegralInRange(-longestSpan, longestSpan)
                       : bytes.ConsumeIntegralInRange<std::int64_t>(0, host::DateTime::microsPerDay - 1);
    return {value, type};
}

/// A container: a picture, a file, or streams of unknown types.
host::Data someContainer(Bytes& bytes) {
    constexpr std::array kinds{"FNAM", "MAIN", "FILE", "PDF ", "JPEG", "PNGf", "SIZE"};
    constexpr std::size_t longest = 80;
    host::Binary container;
    container.setFileName(host::Text::fromUtf8(bytes.ConsumeRandomLengthString(longest)));
    for (int streams = bytes.ConsumeIntegralInRange(0, 3); streams > 0; --streams) {
        const std::string_view kind = bytes.PickValueInArray(kinds);
        host::QuadChar type;
        std::copy(kind.begin(), kind.end(), type.bytes.begin());
        type.bytes[0] ^= bytes.ConsumeIntegral<std::uint8_t>();
        const std::string content = bytes.ConsumeRandomLengthString(longest);
        container.add(type, std::as_bytes(std::span(content)));
    }
    return host::Data(container);
}

/// A text converted to another type, where that is possible.
host::Data someConverted(Bytes& bytes) {
    constexpr std::array types{host::DataType::number, host::DataType::date, host::DataType::time,
                               host::DataType::timestamp, host::DataType::binary};
    host::Data value(someText(bytes));
    value.convert(bytes.PickValueInArray(types));
    return value;
}

host::Data someValue(Bytes& bytes) {
    switch (bytes.ConsumeIntegralInRange(0, 9)) {
    case 0: return host::Data(host::Decimal(bytes.ConsumeIntegral<std::int64_t>()));
    case 1: return host::Data(host::Decimal(bytes.ConsumeIntegralInRange(-3, 30)));
    case 2: return someConverted(bytes);
    case 3: return host::Data::invalid();
    case 4: return host::Data(someNumber(bytes));
    case 5: return someDateOrTime(bytes);
    case 6: return someContainer(bytes);
    default: return host::Data(someText(bytes));
    }
}

class Day {
public:
    explicit Day(host::LoadedPlugIn& loaded)
        : loaded_(loaded), session_(loaded.session()), plugIn_(loaded.plugIn()) {}

    void live(Bytes& bytes, const InputTime& time) {
        for (int steps = 0; steps < 60 && bytes.remaining_bytes() > 0 && !time.isUp(); ++steps)
            step(bytes);
    }

private:
    void step(Bytes& bytes) {
        switch (bytes.ConsumeIntegralInRange(0, 15)) {
        case 0: return openOrClose();
        case 1:
            host::clock().advance(std::chrono::seconds(bytes.ConsumeIntegralInRange(-200'000, 200'000)));
            return;
        case 2: return failHostCalls(bytes);
        case 3: plugIn_.idle(bytes.ConsumeIntegral<unsigned char>()); return;
        case 4: session_.turn(); return;
        case 5: plugIn_.preferences(); return;
        case 6: plugIn_.sessionShutdown(); return;
        case 7:
            plugIn_.readString(bytes.ConsumeIntegralInRange(0, 300),
                               bytes.ConsumeIntegralInRange<std::uint32_t>(1, 64));
            return;
        case 8: session_.evaluate(host::fromUtf8(bytes.ConsumeRandomLengthString(120))); return;
        default: return callSomething(bytes);
        }
    }

    void callSomething(Bytes& bytes) {
        const auto& functions = plugIn_.functions();
        if (functions.empty()) return;
        const host::RegisteredFunction& function =
            functions[bytes.ConsumeIntegralInRange<std::size_t>(0, functions.size() - 1)];
        const int most = function.maximum < 0 ? 6 : function.maximum;
        host::DataVect arguments;
        for (int count = bytes.ConsumeIntegralInRange<int>(function.minimum, most); count > 0; --count)
            arguments.push_back(std::make_shared<const host::Data>(someValue(bytes)));
        host::Data result;
        loaded_.call(function, arguments, result);
    }

    void openOrClose() {
        if (session_.files().size() > 1) {
            session_.close(session_.files().back()->id());
            return;
        }
        host::Solution second;
        second.name = u"Second";
        second.scripts = {{u"Remind", {u"Kestrel_DoFileMakerScript ( \"Again\" ; 1 ; 0 )"}},
                          {u"Again", {u"1"}}};
        session_.open(second);
    }

    static void failHostCalls(Bytes& bytes) {
        constexpr std::uint64_t furthest = 400;
        const auto nth = bytes.ConsumeIntegralInRange<std::uint64_t>(0, furthest);
        if (nth == 0) return host::faults().disarm();
        host::faults().arm(nth,
                           bytes.ConsumeBool() ? host::Faults::Kind::badAlloc : host::Faults::Kind::unknown,
                           bytes.ConsumeBool());
    }

    host::LoadedPlugIn& loaded_;
    host::Session& session_;
    host::PlugIn& plugIn_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto exampleSolution = [] {
        host::Solution solution;
        solution.fonts = {u"Helvetica", u"Times New Roman"};
        solution.scripts = {{u"Remind", {u"Kestrel_GetGlobal ( \"Key\" )"}}};
        solution.schema = "CREATE TABLE t (a TEXT, b NUMERIC); INSERT INTO t VALUES ('x', 1), ('y', 2);";
        return solution;
    };
    static host::LoadedPlugIn loaded(KESTREL_PLUGIN_PATH, {exampleSolution()},
                                     host::LoadedPlugIn::Start::later);

    const host::ObjectCounts before = host::objectCounts();
    loaded.start();
    Bytes bytes(data, size);
    const InputTime time;
    Day(loaded).live(bytes, time);
    endDay(loaded);
    if (!(host::objectCounts() == before) || !loaded.plugIn().violations().empty()) std::abort();
    return time.answer();
}
