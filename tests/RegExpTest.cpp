#include "FunctionCalls.h"
#include "StyledTexts.h"

#include "host/values/Style.h"

#include <algorithm>
#include <ctime>
#include <optional>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

/// Replacement of patterns through the loaded library.

namespace {

using host::Data;
using host::Text;

constexpr const char* kTooComplex =
    "2400 The complexity of an attempted match against a regular expression exceeded a pre-set level.";
constexpr const char* kNoRoom = "2400 There was insufficient memory to determine whether the regular "
                                "expression could match the specified character sequence.";
constexpr const char* kPatternTooLong = "2400 There was insufficient memory to convert the expression into a "
                                        "finite state machine.";

/// A second implementation of the rules, on plain strings with the standard library: slow, and without a time
/// limit for some patterns.
std::wstring substitutedSlowly(const std::wstring& text, const std::wstring& pattern,
                               const std::vector<std::wstring>& replacements) {
    const std::wregex expression(pattern);
    const std::size_t end = pattern.rfind(L')');
    const std::wstring tail = end == pattern.npos ? L"" : pattern.substr(end + 1);
    std::wstring out;
    long position = 0;
    auto flags = std::regex_constants::match_default;
    for (auto from = text.cbegin();;) {
        std::wsmatch match;
        if (!std::regex_search(from, text.cend(), match, expression, flags)) break;
        if (match.size() == 1 || !match[1].matched || match[1].first == match[1].second) break;
        for (std::size_t k = 1; k < match.size() && k <= replacements.size(); ++k) {
            if (!match[k].matched) continue;
            const long start = match[k].first - text.cbegin();
            if (start > position) out += text.substr(position, start - position);
            out += replacements[k - 1];
            position = match[k].second - text.cbegin();
        }
        position = match[0].second - text.cbegin();
        from = match[0].second;
        flags = std::regex_constants::match_prev_avail;
        if (match[0].first != match[0].second) continue;
        if (from == text.cend()) break;
        ++from;
    }
    return out + tail + text.substr(position);
}

class RegExp : public FunctionCalls {
protected:
    Text substituted(const Text& text, const Text& pattern, const Text& replacement = u"X") {
        return call(u"Kestrel_RegExp_Substitute", {Data(text), Data(pattern), Data(replacement)})
            .value.asText();
    }
    /// The last error of a call that is expected to fail with 2400.
    std::string failure(const std::u16string& text, const std::u16string& pattern) {
        textOf("Let ( [ $$Kestrel_LastError = \"\" ; $$Kestrel_LastErrorMessage = \"\" ] ; \"\" )");
        const std::string result = substituted(text, pattern).utf8();
        return result == "2400" ? lastError() : "no failure: " + result.substr(0, 40);
    }
};

TEST_F(RegExp, handlesUnusualGroups) {
    const struct {
        const char16_t *text, *pattern;
        const char* result;
    } rows[] = {
        // Nested groups: the inner group begins before the position that is reached.
        {u"-ab-", u"((a)b)", "-12-"},
        {u"-abcd-", u"((a)b(c))d", "-12b3d-"},
        // Groups that matched nothing.
        {u"ac", u"(a)(b)?(c)", "13"},
        {u"ac", u"(b)?(a)(c)", "ac"},
        // A group in a lookahead, which is not part of the match.
        {u"aab", u"(?=(a))", "1a1ab"},
        {u"ab", u"a(?=(b))", "a1b"},
        // Anchors and word boundaries take the preceding text into account.
        {u"aaa", u"^(a)", "1aa"},
        {u"aaa", u"(a)$", "aa1$"},
        {u"aa a", u"\\b(a)", "1a 1"},
        {u"a.a\n", u"(.)", "111\n"},
        {u"aB", u"([[:lower:]])", "1B"},
        {u"a:b.", u"([[:alpha:].])", "1:11"},
        {u"a.-_", u"([^-[:alpha:].])", "a.-1"},
        {u"abab", u"(ab)\\1", "1\\1"},
        // A match may be half of a surrogate pair.
        {u"\xD83D\xDE00", u"(\\uDE00)", "\uFFFD1"},
    };
    for (const auto& [text, pattern, result] : rows)
        EXPECT_EQ(call(u"Kestrel_RegExp_Substitute",
                       {Data(text), Data(pattern), Data(u"1"), Data(u"2"), Data(u"3")})
                      .value.asText()
                      .utf8(),
                  result)
            << host::toUtf8(pattern);
}

/// Random patterns of a few characters, most of them well-formed.
class RandomPatterns {
public:
    std::wstring pattern(int depth = 0) {
        std::wstring made;
        for (int items = pick(1, 4); items > 0; --items) {
            const int kind = pick(0, depth < 3 ? 13 : 8);
            if (kind <= 8) made += kPieces[pick(0, std::size(kPieces) - 1)];
            if (kind >= 9) made += kOpenings[pick(0, std::size(kOpenings) - 1)] + pattern(depth + 1) + L")";
            if (pick(0, 3) == 0) made += kQuantifiers[pick(0, std::size(kQuantifiers) - 1)];
            if (pick(0, 9) == 0) made += L"|";
        }
        return made;
    }
    std::wstring text(int most) {
        std::wstring made;
        for (int size = pick(0, most); size > 0; --size)
            made += L"aaabbc.-^ \n"[pick(0, 10)];
        return made;
    }
    int pick(int least, int most) { return std::uniform_int_distribution<>(least, most)(engine_); }

private:
    static constexpr const wchar_t* kPieces[] = {
        L"a",     L"b",      L"c",      L"ab",   L".",     L"[ab]",  L"[^a.]", L"[[:alpha:].]",
        L"\\w",   L"\\s",    L"\\D",    L"\\.",  L"\\b",   L"\\B",   L"$",     L"\\1",
        L"[.-^]", L"[\\].]", L"[a-c^]", L"\\^-", L"(a|.)", L"(b*)c", L"(.+)",  L"(a)?",
    };
    static constexpr const wchar_t* kOpenings[] = {L"(", L"(", L"(", L"(?:", L"(?=", L"(?!"};
    static constexpr const wchar_t* kQuantifiers[] = {L"*", L"+", L"?", L"*?", L"{2}", L"{1,2}"};
    std::mt19937 engine_{20'250'101};
};

std::u16string narrow(const std::wstring& wide) { return {wide.begin(), wide.end()}; }

TEST_F(RegExp, agreesWithASlowImplementation) {
    RandomPatterns random;
    int replaced = 0, malformed = 0;
    for (int round = 0; round < 8'000; ++round) {
        const std::wstring pattern = (round % 4 == 0 ? L"" : L"(a|b|\\.)") + random.pattern();
        const std::wstring text = random.text(12);
        std::vector<std::wstring> replacements;
        std::vector<Data> arguments{Data(narrow(text)), Data(narrow(pattern))};
        for (int count = random.pick(1, 4); count > 0; --count) {
            replacements.push_back(L"<" + std::to_wstring(count) + L">");
            arguments.emplace_back(narrow(replacements.back()));
        }
        std::u16string expected;
        try {
            expected = narrow(substitutedSlowly(text, pattern, replacements));
            replaced += expected.find(u'<') != std::u16string::npos ? 1 : 0;
        } catch (const std::regex_error&) {
            expected = u"2400";
            ++malformed;
        }
        const Answer answer = call(u"Kestrel_RegExp_Substitute", arguments);
        ASSERT_EQ(answer.value.asText().utf8(), host::toUtf8(expected))
            << "round " << round << ": " << host::toUtf8(narrow(pattern)) << " in "
            << host::toUtf8(narrow(text));
    }
    EXPECT_GT(replaced, 1000);
    EXPECT_LT(malformed, 5000);
}

TEST_F(RegExp, reportsMalformedPatterns) {
    std::istringstream patterns(
        R"~(( ) a) [ [a [[:nothing:]] [b- * (a)** a{2,1} a{ \ \2(a) (?<n>a) \99999999999
                                    (a){99999999999} [[.nothing.]] [[:alpha (? (?=)~");
    for (std::string pattern; patterns >> pattern;) {
        const std::string error = failure(u"some text", host::fromUtf8(pattern));
        EXPECT_TRUE(error.starts_with("2400 ")) << pattern << ": " << error;
    }
}

TEST_F(RegExp, endsForEveryPattern) {
    const std::u16string as(4'000, u'a');
    const struct {
        const char* what;
        std::u16string text, pattern;
        const char* error;
    } rows[] = {
        {"a repetition in another", as.substr(0, 200), u"(a+)+b", kTooComplex},
        {"any characters", as.substr(0, 400), u"(.*)(.*)(.*)x", kTooComplex},
        {"looking ahead", as.substr(0, 200), u"(?=(a+)+b)", kTooComplex},
        {"references", as.substr(0, 400), u"(a*)(a*)\\1\\2b", kTooComplex},
        {"sets", as.substr(0, 400), u"([ab]*)([^b]*)(\\w*)x", kTooComplex},
        {"little at each of many positions", as, times(300, u"(?=)") + u"([^b]*)b", kTooComplex},
        {"a set of many ranges", as, u"([" + times(3'000, u"0-9") + u"a]*)b", kTooComplex},
        {"many groups", as.substr(0, 1'600), u"(a*)b" + times(500, u"(b)"), kTooComplex},
        {"many groups in each of many attempts", std::u16string(100'000, u'a'),
         u"(" + times(40, u"a") + u"b)" + times(500, u"(b)"), kTooComplex},
        {"a long text", std::u16string(5'000'000, u'a'), u"([^b]*)b", kNoRoom},
        {"many rounds that may be empty", as, u"((?:a?){1000})b", kNoRoom},
        {"groups in groups", as, times(100'000, u"(") + times(100'000, u")"), kPatternTooLong},
        {"groups in groups", as, times(201, u"(") + times(201, u")"), kPatternTooLong},
        {"looking ahead in looking ahead", as, times(2'000, u"(?=") + times(2'000, u")"), kPatternTooLong},
        {"many alternatives", as, times(3'000, u"a|"), kPatternTooLong},
        {"many repetitions", as, times(3'000, u"b*"), kPatternTooLong},
        {"many characters", as, times(10'001, u"b"), kPatternTooLong},
    };
    for (const auto& row : rows)
        EXPECT_EQ(failure(row.text, row.pattern), row.error) << row.what;
    // The limits are higher than realistic patterns need.
    EXPECT_EQ(substituted(u"a", times(200, u"(") + u"a" + times(200, u")")).utf8(), "X");
    EXPECT_EQ(substituted(u"ab", u"(b)" + times(900, u"c?|a")).units().substr(0, 1), u"c");
    EXPECT_EQ(substituted(std::u16string(10'000, u'a'), u"(" + times(9'998, u"a") + u")").utf8(), "Xaa");
    EXPECT_EQ(substituted(std::u16string(10'000, u'a'), u"((?:a|b){9998})").utf8(), "Xaa");
    EXPECT_EQ(substituted(u"1234", u"(" + times(80, u"\\d?") + u")").utf8(), "X");
}

/// Without the guard the library takes billions of steps for these before its own limit, or never ends.
TEST_F(RegExp, refusesPatternsWithTooFewComparisonsAtOnce) {
    const std::u16string million(1'000'000, u'a');
    const struct {
        const char* what;
        std::u16string pattern;
    } rows[] = {
        {"assertions", u"(" + times(1'500, u"(?=)") + u")x"},
        {"assertions that fail", u"(" + times(1'500, u"(?=)") + u"(?!))"},
        {"empty alternatives", times(40, u"(|)") + u"$^"},
        {"empty alternatives, repeated", times(40, u"(|){1,2}") + u"$^"},
        {"empty alternatives in and after a group", u"(a(|){15})(|){15}$^"},
        {"empty rounds", u"(){2000000000}b"},
        {"empty rounds of no capture", u"(?:){2000000000}b"},
        {"empty rounds in rounds", u"(((){1000}){1000}){1000}b"},
        {"rounds that may be empty", u"((a?){1000}){1000}b$"},
    };
    for (const auto& row : rows) {
        const std::clock_t start = std::clock();
        EXPECT_EQ(failure(million, row.pattern), kTooComplex) << row.what;
        EXPECT_LT(std::clock() - start, 2 * CLOCKS_PER_SEC) << row.what;
    }
}

TEST_F(RegExp, replacesInLongTexts) {
    const std::u16string text = times(50'000, u"lorem 12 ipsum dolor\r");
    const std::string result = substituted(text, u"(\\d+) ", u"n").utf8();
    EXPECT_EQ(result.size(), text.size() / 21 * 19 + 1);
    EXPECT_TRUE(result.starts_with("lorem nipsum dolor\rlorem nipsum"));
    // The first match is so far away that the search continues step by step.
    const std::u16string far = std::u16string(1'100'000, u'x') + u"a1 a1a";
    EXPECT_EQ(substituted(far, u"(?:^|\\b)(a)(?=\\d)").units().substr(1'100'000), u"a1 X1a");
    // One match covers the whole text.
    EXPECT_EQ(substituted(std::u16string(200'000, u'a'), u"(.*)").utf8(), "X");
}

/// Patterns that people write, on texts of the length that they have.
TEST_F(RegExp, answersPatternsThatGoBackOften) {
#if __has_feature(address_sanitizer)
    constexpr int part = 10; // the sanitizers take the time of the rest
#else
    constexpr int part = 1;
#endif
    const std::u16string paragraph = times(49, u"lorem ipsum dolor 20") + u"lorem ipsum dolor!\r";
    const std::u16string paragraphs = times(9 / part, paragraph) + u"an invoice" + paragraph;
    EXPECT_EQ(substituted(paragraphs, u"(.*invoice.*)").utf8(),
              host::toUtf8(times(9 / part, paragraph)) + "X\r");

    const std::u16string line = u"1042,\"Smith, John\",London,\"12, High Street\",45.00\r";
    const std::u16string outside = u"1042X\"Smith, John\"XLondonX\"12, High Street\"X45.00\r";
    EXPECT_EQ(substituted(times(600 / part, line), u"(,)(?=(?:[^\"]*\"[^\"]*\")*[^\"]*$)").utf8(),
              host::toUtf8(times(600 / part, outside)));

    std::mt19937 engine(7);
    std::u16string base64;
    while (base64.size() < 100'000 / part)
        base64 += u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"[engine() % 64];
    EXPECT_EQ(substituted(base64 + u"/ada@example.com", u"([\\w.+-]+@[\\w-]+(?:\\.[\\w-]+)+)").utf8(),
              host::toUtf8(base64) + "/X");

    // As many assertions as a pattern may have, one after the other.
    const std::u16string as(10'000 / part, u'a');
    EXPECT_EQ(substituted(as, u"(" + times(1'500, u"(?=)") + u"x)").utf8(), host::toUtf8(as));
}

/// Every style in turn: on the pattern and on the middle of the text.
std::vector<host::CharacterStyle> allStyles() {
    std::vector<host::CharacterStyle> styles(3);
    styles[0].setFont(1);
    styles[1].setSize(24);
    styles[2].setColor({255, 0, 0, 255});
    for (const std::uint16_t face : everyFace)
        styles.emplace_back().setFaces(face);
    return styles;
}

Text withStyle(const char16_t* units, const host::CharacterStyle& style, std::uint32_t from = 0,
               std::uint32_t size = Text::end) {
    Text text(units);
    text.applyStyle(style, from, size);
    return text;
}

TEST_F(RegExp, replacesOnlyInThePatternsStyle) {
    const std::vector<host::CharacterStyle> styles = allStyles();
    host::CharacterStyle ofReplacement;
    ofReplacement.setSize(7);
    const Text replacement = withStyle(u"XY", ofReplacement);
    for (std::size_t i = 0; i < styles.size(); ++i) {
        const Text text = withStyle(u"a1 a2 a3", styles[i], 3, 2);
        // Only the formatting of the pattern's first character matters.
        Text pattern = withStyle(u"a(\\d)", styles[i], 0, 1);
        Text expected = withStyle(u"a1 a", styles[i], 3, 1);
        expected.append(replacement);
        expected.append(Text(u" a3"));
        EXPECT_TRUE(substituted(text, pattern, replacement).isIdenticalTo(expected)) << i;

        // A match with another style, additional formatting, or the style only later is copied unchanged.
        for (const host::CharacterStyle& other : {styles[(i + 1) % styles.size()], ofReplacement}) {
            EXPECT_TRUE(substituted(text, withStyle(u"a(\\d)", other), replacement).isIdenticalTo(text)) << i;
            Text more = withStyle(u"a1", other);
            more.applyStyle(styles[i]);
            const bool isTheSame = more.formattingAt(0).style == styles[i];
            EXPECT_TRUE(isTheSame || substituted(more, pattern, replacement).isIdenticalTo(more)) << i;
        }
        const Text late = withStyle(u"a1", styles[i], 1, 1);
        EXPECT_TRUE(substituted(late, pattern, replacement).isIdenticalTo(late)) << i;

        // A plain pattern matches text of any style.
        Text everywhere;
        for (const Text& before : {Text(u"a"), withStyle(u" a", styles[i], 1, 1), Text(u" a")}) {
            everywhere.append(before);
            everywhere.append(replacement);
        }
        EXPECT_TRUE(substituted(text, Text(u"a(\\d)"), replacement).isIdenticalTo(everywhere)) << i;
    }
}

TEST_F(RegExp, addsTheEndOfThePatternWithoutItsStyle) {
    host::CharacterStyle bold;
    bold.setFaces(host::face::bold);
    Text expected(u"b");
    expected.append(withStyle(u"xyz", bold));
    EXPECT_TRUE(
        substituted(withStyle(u"xyz", bold), withStyle(u"(a)b", bold), Text(u"X")).isIdenticalTo(expected));
}

} // namespace
