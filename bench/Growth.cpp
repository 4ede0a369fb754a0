#include "Benchmarks.h"
#include "Conversion.h"
#include "Inputs.h"
#include "Loaded.h"
#include "Measure.h"
#include "StyledInputs.h"

#include "host/app/File.h"
#include "host/values/Encoding.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// The growth of a function's processor time with its input: the same input once, twice and four times.
/// Linear work doubles at each step.

namespace bench {

namespace {

using host::DataVect;
using host::Text;
using Action = std::function<void()>;

struct Growth {
    const char16_t* function;
    const char* unit; ///< unit of the input's size
    std::size_t start;
    DataVect (*arguments)(std::size_t count);
    bool isInPicture = true;
};

std::uint32_t size(std::size_t count) { return static_cast<std::uint32_t>(count); }

constexpr std::array growths{
    Growth{u"Kestrel_Encode", "characters", 200'000,
           [](std::size_t count) { return texts({u"UTF-8 to Base64", repeated(u"größe 12 ", count)}); }},
    Growth{u"Kestrel_Decode", "characters", 200'000,
           [](std::size_t count) {
               return texts({u"Base64 to UTF-8", repeated(u"Z3LDtsOfZSAx", count / 12 * 12)});
           }},
    Growth{u"Kestrel_RegExp_Substitute", "characters", 200'000,
           [](std::size_t count) {
               return texts({repeated(u"call 555-0101 now ", count), u"(\\d+)-\\d+", u"\\1-xxxx"});
           }},
    Growth{u"Kestrel_MergeText", "expressions", 25'000,
           [](std::size_t count) {
               constexpr std::u16string_view greeting = u"Dear <<\"Ada\" & 1 + 2>>, ";
               return texts({repeated(greeting, count * greeting.size())});
           }},
    Growth{u"Kestrel_Get", "lines to sort", 20'000,
           [](std::size_t count) { return texts({u"sort", unsortedNumbers(count)}); }},
    Growth{u"Kestrel_ExecuteSQL", "rows", 10'000,
           [](std::size_t count) {
               return texts({u"SELECT id, name, city, born FROM people WHERE id <= " +
                             host::fromUtf8(std::to_string(count))});
           }},
    Growth{u"Kestrel_GetAsHTML", "characters", 20'000,
           [](std::size_t count) { return conversionOf(ordinaryText(size(count))); }},
    Growth{u"Kestrel_GetAsHTML", "a new style at each", 100'000,
           [](std::size_t count) { return conversionOf(newStyleEachCharacter(size(count))); }, false},
    Growth{u"Kestrel_GetAsHTML", "characters, one run", 250'000,
           [](std::size_t count) { return conversionOf(Text(std::u16string(count, u'x'))); }, false},
    Growth{u"Kestrel_GetAsHTML", "empty paragraphs", 25'000,
           [](std::size_t count) { return conversionOf(Text(std::u16string(count, u'\r'))); }, false},
    Growth{u"Kestrel_GetAsHTML", "classes of one name", 2'500,
           [](std::size_t count) { return conversionOf(newDeclarationsEachCharacter(size(count))); }, false},
    Growth{u"Kestrel_GetAsHTML", "classes of one name", 50'000,
           [](std::size_t count) { return conversionOf(newDeclarationsEachCharacter(size(count))); }, false},
    Growth{u"Kestrel_GetAsHTML", "runs made equal", 25'000,
           [](std::size_t count) { return conversionOf(runsThatBecomeEqual(size(count)), u"bold", u""); },
           false},
    Growth{u"Kestrel_GetAsHTML", "& in a paragraph", 250'000,
           [](std::size_t count) { return conversionOf(Text(std::u16string(count, u'&'))); }, false},
};

constexpr std::size_t kSteps = 3;
constexpr std::size_t kLargest = std::size_t{1} << (kSteps - 1);

/// The file for the points of the plot, if there is one.
class Record {
public:
    explicit Record(const char* path) {
        if (path != nullptr) file_.open(path);
    }

    void add(const std::string& name, std::size_t count, double nanoseconds) {
        constexpr double perMillisecond = 1e6;
        file_ << name << '\t' << count << '\t' << nanoseconds / perMillisecond << '\n';
    }
    void endBlock() { file_ << "\n\n"; }

private:
    std::ofstream file_;
};

/// The sizes alternate, so that all have the same conditions. A ratio is the median of the rounds' ratios.
void growthRow(const std::string& name, std::size_t start, const std::array<Action, kSteps>& actions,
               Record* record) {
    constexpr int rounds = 7;
    std::array<std::size_t, kSteps> calls{};
    std::array<std::vector<double>, kSteps> times, ratios;
    for (std::size_t step = 0; step < kSteps; ++step)
        calls[step] = callsForABatch(actions[step]);
    for (int round = 0; round < rounds; ++round)
        for (std::size_t step = 0; step < kSteps; ++step) {
            times[step].push_back(nanosecondsPerCall<ProcessorClock>(actions[step], calls[step]));
            ratios[step].push_back(times[step].back() / times[step == 0 ? 0 : step - 1].back());
        }
    const Spread time(times[0]), twice(ratios[1]), fourTimes(ratios[2]);
    std::printf("  %-50s %10.3f ms;  twice %.2f x [%.2f .. %.2f], four times %.2f x [%.2f .. %.2f]\n",
                name.c_str(), time.median / 1e6, twice.median, twice.least, twice.most, fourTimes.median,
                fourTimes.least, fourTimes.most);
    std::fflush(stdout);
    if (record == nullptr) return;
    for (std::size_t step = 0; step < kSteps; ++step)
        record->add(name, start << step, Spread(times[step]).median);
    record->endBlock();
}

void benchFunction(const Loaded& plugIn, const Growth& growth, Record& record) {
    const host::RegisteredFunction& function = plugIn.function(growth.function);
    std::array<Action, kSteps> actions;
    for (std::size_t step = 0; step < kSteps; ++step)
        actions[step] = [&plugIn, &function, arguments = growth.arguments(growth.start << step)] {
            host::Data result;
            plugIn.call(function, arguments, result);
            keep(result);
        };
    growthRow(host::toUtf8(growth.function) + ", " + std::to_string(growth.start) + " " + growth.unit,
              growth.start, actions, growth.isInPicture ? &record : nullptr);
}

/// Globals are stored, read once each, and cleared.
void benchGlobalsStored(const Loaded& plugIn, Record& record) {
    constexpr std::size_t start = 10'000;
    const auto &set = plugIn.function(u"Kestrel_SetGlobal"), &get = plugIn.function(u"Kestrel_GetGlobal");
    std::vector<DataVect> stores, reads;
    for (std::size_t key = 0; key < start * kLargest; ++key) {
        stores.push_back(texts({u"invoice total " + host::fromUtf8(std::to_string(key)), u"a value"}));
        reads.push_back({stores.back().front()});
    }
    const DataVect clear = texts({u"", u""});
    std::array<Action, kSteps> actions;
    for (std::size_t step = 0; step < kSteps; ++step)
        actions[step] = [&, count = start << step] {
            host::Data result;
            for (std::size_t key = 0; key < count; ++key)
                plugIn.call(set, stores[key], result);
            for (std::size_t key = 0; key < count; ++key)
                plugIn.call(get, reads[key], result);
            plugIn.call(set, clear, result);
        };
    growthRow("Kestrel_SetGlobal, _GetGlobal, " + std::to_string(start) + " keys", start, actions, &record);
}

/// Every line of a variable is a request to the host, which searches from the start of the text each time.
void benchLinesOfVariables(const Loaded& plugIn) {
    constexpr std::uint32_t start = 2'500;
    const host::RegisteredFunction& function = plugIn.function(u"Kestrel_GetAsHTML");
    std::array<Action, kSteps> actions;
    for (std::size_t step = 0; step < kSteps; ++step) {
        const std::u16string variable = u"lines" + host::fromUtf8(std::to_string(step));
        host::Session::current()->front()->fileVariables().set(variable, 1,
                                                               shared(styledLines(start << step)));
        actions[step] = [&plugIn, &function, arguments = conversionOf(Text(u"$$" + variable))] {
            host::Data result;
            plugIn.call(function, arguments, result);
            keep(result);
        };
    }
    growthRow("Kestrel_GetAsHTML, 2500 lines of a variable", start, actions, nullptr);
}

} // namespace

void benchGrowth() {
    Record record(std::getenv("KESTREL_GROWTH"));
    host::Solution solution = solutionWithFonts();
    constexpr int mostRows = 40'000;
    solution.schema = peopleInTable(mostRows);
    const Loaded plugIn(std::move(solution));
    benchGlobalsStored(plugIn, record);
    for (const Growth& growth : growths)
        benchFunction(plugIn, growth, record);
    benchLinesOfVariables(plugIn);
}

} // namespace bench
