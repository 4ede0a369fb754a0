#include "Benchmarks.h"
#include "Loaded.h"
#include "Measure.h"

#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

/// How the work of a function grows with its input: the same input once, twice and four times. What grows as
/// it should takes twice the time each time; the figure is the time for twice the input over the time for it.

namespace bench {

namespace {

using host::Data;
using host::DataVect;
using host::Text;

host::DataRef shared(Data value) { return std::make_shared<const Data>(std::move(value)); }
host::DataRef words(std::u16string text) { return shared(Data(Text(std::move(text)))); }

std::u16string repeated(std::u16string_view part, std::size_t count) {
    std::u16string all;
    all.reserve(part.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        all += part;
    return all;
}

/// Runs of twenty characters in twelve styles, paragraphs of four hundred.
Text styled(std::size_t runs) {
    constexpr std::size_t styles = 12, runsPerParagraph = 20;
    Text text;
    for (std::size_t run = 0; run < runs; ++run) {
        const bool endsParagraph = run % runsPerParagraph == runsPerParagraph - 1;
        const host::CharacterStyle style(0, static_cast<std::uint16_t>((run % 4) << 8U),
                                         static_cast<std::uint16_t>(10 + run % styles));
        text.append(endsParagraph ? u"nineteen characters\r" : u"twenty characters & ", {.style = style});
    }
    return text;
}

std::u16string numbers(std::size_t lines) {
    std::u16string list;
    for (std::size_t line = 0; line < lines; ++line) {
        const std::string number = std::to_string(line * 7'919 % lines) + "\r";
        list.append(number.begin(), number.end());
    }
    return list;
}

struct Growth {
    const char16_t* function;
    const char* unit; ///< what is counted
    std::size_t start;
    DataVect (*arguments)(std::size_t count);
};

constexpr std::array growths{
    Growth{u"Kestrel_GetAsHTML", "characters", 20'000,
           [](std::size_t count) { return DataVect{shared(Data(styled(count / 20)))}; }},
    Growth{u"Kestrel_Encode", "characters", 200'000,
           [](std::size_t count) {
               return DataVect{words(u"UTF-8 to Base64"), words(repeated(u"größe 12 ", count / 9))};
           }},
    Growth{u"Kestrel_Decode", "characters", 200'000,
           [](std::size_t count) {
               return DataVect{words(u"Base64 to UTF-8"), words(repeated(u"Z3LDtsOfZSAx", count / 12))};
           }},
    Growth{u"Kestrel_RegExp_Substitute", "characters", 200'000,
           [](std::size_t count) {
               return DataVect{words(repeated(u"call 555-0101 now ", count / 18)), words(u"(\\d+)-\\d+"),
                               words(u"\\1-xxxx")};
           }},
    Growth{u"Kestrel_MergeText", "expressions", 1'000,
           [](std::size_t count) { return DataVect{words(repeated(u"Dear <<\"Ada\" & 1 + 2>>, ", count))}; }},
    Growth{u"Kestrel_Get", "lines to sort", 20'000,
           [](std::size_t count) { return DataVect{words(u"sort"), words(numbers(count))}; }},
};

} // namespace

void benchGrowth() {
    std::FILE* const record = []() -> std::FILE* {
        const char* path = std::getenv("KESTREL_GROWTH");
        return path == nullptr ? nullptr : std::fopen(path, "w");
    }();
    const Loaded plugIn;
    for (const auto& [name, unit, start, argumentsFor] : growths) {
        constexpr int steps = 3;
        const auto& function = plugIn.function(name);
        const std::string shown = host::toUtf8(name) + ", " + std::to_string(start) + " " + unit;
        std::array<double, steps> times{};
        for (int step = 0; step < steps; ++step) {
            const std::size_t count = start << static_cast<unsigned>(step);
            const DataVect arguments = argumentsFor(count);
            Data result;
            const auto call = [&] { plugIn.call(function, arguments, result); };
            // The best of several: what others on the machine do can only add to it.
            double& best = times.at(static_cast<std::size_t>(step));
            const std::size_t calls = callsForABatch(call);
            for (int round = 0; round < 5; ++round) {
                const double time = nanosecondsPerCall(call, calls);
                best = best == 0 ? time : std::min(best, time);
            }
            if (record != nullptr) std::fprintf(record, "%s\t%zu\t%g\n", shown.c_str(), count, best / 1e6);
        }
        if (record != nullptr) std::fputs("\n\n", record);
        std::printf("%-58s %9.3f ms;  twice that %5.2f x, four times %5.2f x the time of half\n",
                    shown.c_str(), times[0] / 1e6, times[1] / times[0], times[2] / times[1]);
        std::fflush(stdout);
    }
    if (record != nullptr) std::fclose(record);
}

} // namespace bench
