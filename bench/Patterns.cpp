#include "Benchmarks.h"
#include "Loaded.h"
#include "Measure.h"

#include <memory>
#include <regex>
#include <string>
#include <unicode/uregex.h>

/// Replacing and counting by patterns, each beside the library's or ICU's search alone.

namespace bench {
namespace {

using host::Data;

host::DataVect values(std::initializer_list<const char16_t*> texts) {
    host::DataVect made;
    for (const char16_t* text : texts)
        made.push_back(std::make_shared<const Data>(Data(text)));
    return made;
}

std::u16string repeated(std::u16string_view piece, std::size_t size) {
    std::u16string text;
    while (text.size() < size)
        text += piece;
    text.resize(size);
    return text;
}

void substituteRow(const Loaded& loaded, const char* name, const char16_t* piece, const char16_t* pattern,
                   std::size_t size) {
    const auto& function = loaded.function(u"Kestrel_RegExp_Substitute");
    const std::u16string text = repeated(piece, size);
    host::DataVect arguments = values({u"", pattern, u"X"});
    arguments.front() = std::make_shared<const Data>(Data(host::Text(text)));

    const std::u16string_view units(pattern);
    const std::wstring wideText(text.begin(), text.end());
    const std::wregex expression(std::wstring(units.begin(), units.end()));
    row(
        name,
        [&] {
            Data result;
            loaded.call(function, arguments, result);
            keep(result);
        },
        "the library's search",
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
    const auto& function = loaded.function(u"Kestrel_RegExp_PatternCount");
    const std::u16string text = repeated(u"lorem 12 ipsum dolor ", 1023);
    host::DataVect arguments = values({u"", pattern});
    arguments.front() = std::make_shared<const Data>(Data(host::Text(text)));
    row(
        name,
        [&] {
            Data result;
            loaded.call(function, arguments, result);
            keep(result);
        },
        "ICU",
        [&] {
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
    substituteRow(loaded, "substitute numbers, 10 million characters", u"call 555-1234 or ", u"(\\d+)-",
                  tenMillion);
    substituteRow(loaded, "substitute any character, 10 million", u"lorem ipsum dolor sit ", u"d(.)l",
                  tenMillion);
    substituteRow(loaded, "substitute words, a million characters", u"lorem ipsum dolor sit ", u"(\\w+)",
                  1'000'000);
    substituteRow(loaded, "substitute, a text of 100 characters", u"call 555-1234 or ", u"(\\d+)-", 100);
    countRow(loaded, "count numbers in 1023 bytes", u"\\d+");
    countRow(loaded, "count characters in 1023 bytes", u".");
}

} // namespace bench
