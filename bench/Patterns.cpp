#include "Benchmarks.h"
#include "Inputs.h"
#include "Loaded.h"
#include "Measure.h"

#include <regex>
#include <string>
#include <string_view>
#include <unicode/uregex.h>
#include <utility>

/// Replacement and counting of patterns. The floor is the search by the standard library or ICU alone.

namespace bench {
namespace {

using host::Data;

/// A call of a function, for a benchmark to repeat.
auto callOf(const Loaded& loaded, std::u16string_view name, host::DataVect arguments) {
    return [&loaded, &function = loaded.function(name), arguments = std::move(arguments)] {
        Data result;
        loaded.call(function, arguments, result);
        keep(result);
    };
}

void substituteRow(const Loaded& loaded, const char* name, const char16_t* piece, const char16_t* pattern,
                   std::size_t size) {
    const std::u16string text = repeated(piece, size);
    host::DataVect arguments = texts({u"", pattern, u"X"});
    arguments.front() = shared(host::Text(text));

    const std::u16string_view units(pattern);
    const std::wstring wideText(text.begin(), text.end());
    const std::wregex expression(std::wstring(units.begin(), units.end()));
    row(
        name, callOf(loaded, u"Kestrel_RegExp_Substitute", arguments), "the library's search",
        [&] {
            std::wcmatch match;
            auto flags = std::regex_constants::match_default;
            const wchar_t* const end = wideText.data() + wideText.size();
            for (const wchar_t* at = wideText.data(); std::regex_search(at, end, match, expression, flags);) {
                at = match[0].second;
                flags = std::regex_constants::match_prev_avail;
            }
            keep(match);
        },
        static_cast<double>(size), "char");
}

void countRow(const Loaded& loaded, const char* name, const char16_t* pattern) {
    const std::u16string text = repeated(u"lorem 12 ipsum dolor ", 1023);
    host::DataVect arguments = texts({u"", pattern});
    arguments.front() = shared(host::Text(text));
    row(name, callOf(loaded, u"Kestrel_RegExp_PatternCount", arguments), "ICU", [&] {
        UErrorCode status = U_ZERO_ERROR;
        URegularExpression* const expression = uregex_open(pattern, -1, 0, nullptr, &status);
        uregex_setText(expression, text.data(), static_cast<int32_t>(text.size()), &status);
        int count = 0;
        while (uregex_findNext(expression, &status) != 0)
            ++count;
        uregex_close(expression);
        keep(count);
    });
}

} // namespace

void benchPatterns() {
    const Loaded loaded;
    constexpr std::size_t tenMillion = 10'000'000;
    substituteRow(loaded, "Kestrel_RegExp_Substitute, numbers, 10 million", u"call 555-1234 or ", u"(\\d+)-",
                  tenMillion);
    substituteRow(loaded, "Kestrel_RegExp_Substitute, a point, 10 million", u"lorem ipsum dolor sit ",
                  u"d(.)l", tenMillion);
    substituteRow(loaded, "Kestrel_RegExp_Substitute, words, a million", u"lorem ipsum dolor sit ", u"(\\w+)",
                  1'000'000);
    substituteRow(loaded, "Kestrel_RegExp_Substitute, 100 characters", u"call 555-1234 or ", u"(\\d+)-", 100);
    countRow(loaded, "Kestrel_RegExp_PatternCount, 49 matches", u"\\d+");
    countRow(loaded, "Kestrel_RegExp_PatternCount, 1023 matches", u".");
}

} // namespace bench
