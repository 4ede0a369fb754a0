#include "FunctionCalls.h"

#include "platform/Matches.h"
#include "platform/Platform.h"

#include <chrono>
#include <random>
#include <string>

/// Counting matches through the loaded library, compared with the platform's own count.

namespace {

using host::Data;

class PatternCount : public FunctionCalls {
protected:
    std::string count(const std::u16string& text, const std::u16string& pattern) {
        return call(u"Kestrel_RegExp_PatternCount", {Data(text), Data(pattern)}).value.asText().utf8();
    }
};

TEST_F(PatternCount, readsTheFirst1023Bytes) {
    const struct {
        const char* what;
        std::u16string text, pattern;
        const char* result;
    } rows[] = {
        {"the last byte", std::u16string(1022, u'a') + u"b", u"b", "1"},
        {"beyond it", std::u16string(1023, u'a') + u"b", u"b", "0"},
        {"all of them", std::u16string(5000, u'a'), u"a", "1023"},
        {"a character of two bytes that is cut", std::u16string(1022, u'a') + u"\u00E9", u".", "1022"},
        {"the same, whole", std::u16string(1021, u'a') + u"\u00E9", u".", "1022"},
        {"of three bytes, cut after two", std::u16string(1021, u'a') + u"\u20AC", u".", "1021"},
        {"the same, whole", std::u16string(1020, u'a') + u"\u20AC", u".", "1021"},
        {"of four bytes, cut after three", std::u16string(1020, u'a') + u"\U0001F600", u".", "1020"},
        {"the same, whole", std::u16string(1019, u'a') + u"\U0001F600", u".", "1020"},
        {"of three bytes throughout", times(600, u"\u20AC"), u"\u20AC", "341"},
        {"outside the basic plane", u"\U0001F600x\U0001F600", u"\U0001F600", "2"},
        {"a pattern that is cut", u"ab", u"a" + times(1022, u"?") + u")", "0"},
        {"a pattern whose last character is cut", u"ab", u"b{1}" + times(509, u"c?") + u"\u00E9", "1"},
        {"up to a zero", std::u16string(u"a\0a", 3), u"a", "1"},
        {"half of a pair", std::u16string(u"a\xD83Dz"), u"[az]", "2"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(count(row.text, row.pattern), row.result) << row.what;
    EXPECT_EQ(lastError(), " ");
}

TEST_F(PatternCount, endsForEveryPattern) {
    const std::u16string as(1000, u'a');
    const struct {
        const char16_t* pattern;
        std::u16string text;
    } rows[] = {
        {u"(a+)+b", as},
        {u"(.*)(.*)(.*)x", as},
        {u"(?:a|a)*(?:a|a)*(?:a|a)*c", as},
        {u"(a*)*b", as.substr(0, 40)},
        // Earlier matches do not hide the failure.
        {u"(a+)+b", u"abaab" + as},
    };
    for (const auto& row : rows) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(count(row.text, row.pattern), "2400") << host::toUtf8(row.pattern);
        EXPECT_EQ(lastError(), "2400 The complexity of an attempted match against a regular expression "
                               "exceeded a pre-set level.");
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    }
    EXPECT_EQ(count(as, u"(a|b)*"), "2");
}

platform::Units unitsOf(const std::u16string& text) { return {text.begin(), text.end()}; }

TEST(PlatformMatches, agreeWithThePlatformsOwnCount) {
    const std::u16string as(1000, u'a');
    std::vector<std::pair<std::u16string, std::u16string>> cases{
        {as, u"a"},
        {as, u"a*"},
        {as, u"(?=a)"},
        {as, u"(a|b)*c"},
        {as, u"a*b"},
        {u"", u"x*"},
        {u"\U0001F600", u"."},
        {u"\u00E9e", u"\\w"},
        {u"a\r\nb\nc", u"(?m)^."},
        {u"aXbX", u"(?i)x"},
        {u"2024-05-06", u"\\d+"},
        {u"caf\u0065\u0301", u"\\p{L}"},
    };
    std::mt19937 engine(7);
    const auto pick = [&](int most) { return std::uniform_int_distribution<>(0, most)(engine); };
    constexpr const char16_t* pieces[] = {u"a", u"b", u".", u"[ab]", u"(",   u")",   u"*",   u"+",   u"?",
                                          u"|", u"^", u"$", u"\\b",  u"\\d", u"(?:", u"(?=", u"{2}", u"\\1"};
    for (int round = 0; round < 3000; ++round) {
        std::u16string text, pattern;
        for (int size = pick(30); size > 0; --size)
            text += u"aab \n1"[pick(5)];
        for (int size = 1 + pick(6); size > 0; --size)
            pattern += pieces[pick(std::size(pieces) - 1)];
        cases.emplace_back(text, pattern);
    }
    int found = 0;
    for (const auto& [text, pattern] : cases) {
        std::string count;
        ASSERT_EQ(platform::countMatches(unitsOf(text), unitsOf(pattern), count), platform::Counted::all)
            << host::toUtf8(pattern) << " in " << host::toUtf8(text);
        EXPECT_EQ(count, std::to_string(matchesFoundAtOnce(unitsOf(text), unitsOf(pattern))))
            << host::toUtf8(pattern) << " in " << host::toUtf8(text);
        found += count == "0" ? 0 : 1;
    }
    EXPECT_GT(found, 300);
}

} // namespace
