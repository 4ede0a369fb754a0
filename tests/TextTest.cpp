#include "host/values/Text.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <chrono>
#include <gtest/gtest.h>
#include <random>
#include <vector>

/// Texts with formatting, case rules and encodings, and the cost of reading a text step by step.

namespace {

using host::CharacterStyle;
using host::Encoding;
using host::RunStyle;
using host::Text;

const RunStyle bold = [] {
    RunStyle formatting;
    formatting.style.setFaces(host::face::bold);
    return formatting;
}();

RunStyle randomFormatting(std::mt19937& random) {
    RunStyle formatting;
    if (random() % 2 == 0)
        formatting.style.setFaces(random() % 2 == 0 ? host::face::bold : host::face::italic);
    if (random() % 4 == 0) formatting.style.setSize(12);
    if (random() % 4 == 0) formatting.alignment = host::Alignment::center;
    return formatting;
}

/// Comparison with a text without runs, which has a unit and a style for every character. The number of runs
/// stays as small as possible.
TEST(TextSeams, areFewestAfterEveryChange) {
    using Model = std::vector<std::pair<char16_t, RunStyle>>;
    for (unsigned seed = 0; seed < 3000; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        Text text;
        Model model;
        for (int step = 0; step < 30 && model.size() < 500; ++step) {
            const auto position = static_cast<std::uint32_t>(random() % (model.size() + 2));
            const std::uint32_t size =
                random() % 8 == 0 ? Text::end : static_cast<std::uint32_t>(random() % 6);
            const auto first = model.begin() + std::min<std::ptrdiff_t>(position, std::ssize(model));
            const auto last = first + std::min<std::ptrdiff_t>(size, model.end() - first);
            const RunStyle formatting = randomFormatting(random);
            switch (random() % 7) {
            case 0: {
                Text source(std::u16string(1, static_cast<char16_t>(u'a' + random() % 26)));
                source.append(std::u16string_view(u"-"), formatting);
                text.insert(source, position);
                model.insert(first, {{source.units()[0], {}}, {u'-', formatting}});
                break;
            }
            case 1: {
                const Model copy = model;
                text.insert(text, position); // inserts the text into itself
                model.insert(first, copy.begin(), copy.end());
                break;
            }
            case 2: {
                const Model cut(first, last);
                const bool ofItself = random() % 2 == 0;
                ofItself ? text.append(text, position, size) : text.append(text.substring(position, size));
                model.insert(model.end(), cut.begin(), cut.end());
                break;
            }
            case 3:
                text.erase(position, size);
                model.erase(first, last);
                break;
            case 4:
                text.applyStyle(formatting.style, position, size);
                std::for_each(first, last, [&](auto& unit) { unit.second.style.apply(formatting.style); });
                break;
            case 5:
                text.removeStyle(formatting.style);
                for (auto& [unit, of] : model)
                    of.style.remove(formatting.style);
                break;
            default:
                text.setAlignment(formatting.alignment, position, size);
                std::for_each(first, last, [&](auto& unit) { unit.second.alignment = formatting.alignment; });
            }
            std::u16string units;
            std::vector<Text::Run> runs;
            for (const auto& [unit, of] : model) {
                if (runs.empty() || runs.back().formatting != of)
                    runs.push_back({static_cast<std::uint32_t>(units.size()), of});
                units += unit;
            }
            ASSERT_EQ(text.units(), units) << "step " << step;
            ASSERT_TRUE(std::ranges::equal(text.runs(), runs)) << "step " << step;
            for (std::uint32_t i = 0; i < text.size(); ++i)
                ASSERT_TRUE(text.formattingAt(i) == model[i].second) << "step " << step << ", unit " << i;
        }
    }
}

TEST(TextCase, seesAcrossRunsAndKeepsFormatting) {
    const struct {
        Text::Case wanted;
        const char16_t *plain, *bold; ///< two parts of one text
        const char16_t *plainAfter, *boldAfter;
    } cases[] = {
        {Text::Case::title, u"he", u"LLO \u00DF", u"He", u"llo Ss"},
        {Text::Case::title, u"\u00DF", u"\u00DF", u"Ss", u"\u00DF"},
        {Text::Case::title, u"\u0149\u0149", u"x \u0130\u0130", u"\u02BCN\u0149", u"x \u0130i\u0307"},
        {Text::Case::title, u"stra\u00DFe can'", u"t", u"Stra\u00DFe Can'", u"t"},
        {Text::Case::lower, u"\u039F\u03A3", u"\u039F\u03A3 \u0130", u"\u03BF\u03C3",
         u"\u03BF\u03C2 i\u0307"},
        {Text::Case::upper, u"\uFB03", u"\u0390z", u"FFI", u"\u0399\u0308\u0301Z"},
        {Text::Case::upper, u"stra\u00DFe ", u"\u00DFx \u01C6\U00010428", u"STRASSE ",
         u"SSX \u01C4\U00010400"},
        {Text::Case::upper, u"\xD801", u"\xDC28\u00DF", u"\xD801",
         u"\xDC00SS"}, // formatting changes inside a surrogate pair
    };
    for (const auto& row : cases) {
        Text text(row.plain);
        text.append(std::u16string_view(row.bold), bold);
        Text expected(row.plainAfter);
        expected.append(std::u16string_view(row.boldAfter), bold);
        EXPECT_TRUE(text.withCase(row.wanted).isIdenticalTo(expected)) << text.utf8();
    }
}

TEST(TextFind, agreesWithTryingEveryPosition) {
    static constexpr std::u16string_view letters[] = {u"a",
                                                      u"A",
                                                      u"s",
                                                      u"\u00DF",
                                                      u"\u1E9E",
                                                      u"\uFB03",
                                                      u"f",
                                                      u"\xD801\xDC28",
                                                      u"\xD801\xDC00",
                                                      u"\xDC00",
                                                      u"\u03A3",
                                                      u"\u03C2"};
    for (unsigned seed = 0; seed < 300; ++seed) {
        std::mt19937 random(seed);
        const auto write = [&](std::size_t characters) {
            std::u16string units;
            while (characters-- > 0)
                units += letters[random() % std::size(letters)];
            return units;
        };
        // Long parts without a match, so that the search must continue past its first piece.
        const std::u16string units = write(4) + std::u16string(random() % 900, u'.') + write(30) +
                                     std::u16string(random() % 900, u'.') + write(4);
        const std::u16string wanted = write(1 + random() % 3);
        const auto isBoundary = [&](std::size_t at) {
            return at == 0 || at == units.size() || (units[at] & 0xFC00) != 0xDC00 ||
                   (units[at - 1] & 0xFC00) != 0xD800;
        };
        std::vector<std::uint32_t> matches;
        for (std::size_t at = 0; at < units.size(); ++at)
            for (std::size_t size = 1; size <= 9 && at + size <= units.size() && isBoundary(at); ++size)
                if (isBoundary(at + size) &&
                    host::compareIgnoringCase(std::u16string_view(units).substr(at, size), wanted) == 0)
                    matches.push_back(static_cast<std::uint32_t>(at));
        const Text text(units);
        for (std::uint32_t at = 0; at < units.size() + 2; at += 1 + random() % 40) {
            if (!isBoundary(std::min<std::size_t>(at, units.size()))) continue;
            const auto next = std::lower_bound(matches.begin(), matches.end(), at);
            const auto behind = std::upper_bound(matches.begin(), matches.end(), at);
            EXPECT_EQ(text.findIgnoringCase(Text(wanted), at), next == matches.end() ? Text::end : *next)
                << "seed " << seed << " at " << at;
            EXPECT_EQ(text.findBackwardIgnoringCase(Text(wanted), at),
                      behind == matches.begin() ? Text::end : *std::prev(behind))
                << "seed " << seed << " at " << at;
        }
    }
}

/// Long patterns of few letters, which end like their own beginnings.
TEST(TextFind, agreesWithTheLibraryOnLongPatterns) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        std::mt19937 random(seed);
        std::u16string units;
        while (units.size() < 600)
            units += random() % 12 == 0 ? u"b" : u"aa";
        const std::size_t start = random() % 500, size = 33 + random() % 60;
        const std::u16string wanted = units.substr(start, size) + (random() % 2 == 0 ? u"" : u"b");
        for (std::uint32_t at = 0; at < units.size() + 2; at += 1 + random() % 40) {
            const std::size_t found = units.find(wanted, at);
            EXPECT_EQ(Text(units).find(Text(wanted), at),
                      found == std::u16string::npos ? Text::end : static_cast<std::uint32_t>(found))
                << "seed " << seed << " at " << at;
        }
    }
}

TEST(TextCompare, takesEmptyTexts) {
    for (const Text& text : {Text(), Text(u"abc")}) {
        EXPECT_EQ(text.findIgnoringCase(Text(), 0), Text::end);
        EXPECT_EQ(text.findBackwardIgnoringCase(Text(), 100), Text::end);
    }
    EXPECT_EQ(Text().findIgnoringCase(Text(u"a"), 0), Text::end);
    EXPECT_EQ(host::compareIgnoringCase({}, {}), 0);
    EXPECT_LT(host::compareIgnoringCase({}, u"a"), 0);
    EXPECT_GT(host::compareIgnoringCase(u"a", {}), 0);
    EXPECT_EQ(host::compareIgnoringCase(u"STRASSE", u"stra\u00DFe"), 0);
    EXPECT_EQ(host::compareIgnoringCase(u"\u0391\u03A3", u"\u03B1\u03C2"), 0);
    EXPECT_LT(host::compareIgnoringCase(u"\uFFEE", u"\U0001F600"), 0); // compares code points, not units
}

TEST(Style, clearsTheCaseBitsTogether) {
    CharacterStyle style;
    style.setFaces(host::face::titlecase | host::face::bold);
    style.disableFace(host::face::uppercase);
    EXPECT_EQ(style, bold.style);
}

/// Reads a text step by step. The test would take minutes if a step cost as much as the whole text.
TEST(TextCost, ofAStepIsIndependentOfTheLength) {
    constexpr std::size_t steps = 150'000;
    const auto begun = std::chrono::steady_clock::now();
    Text text(std::u16string(2 * steps, u'a'));
    for (std::uint32_t i = 0; i < 2 * steps; i += 2)
        text.applyStyle(bold.style, i, 1);
    EXPECT_EQ(text.runs().size(), 2 * steps);
    for (std::size_t i = 0; i < steps; ++i)
        text.insert(Text(u"b"), text.size() - 1);
    Text copy;
    for (std::uint32_t i = 0; i < text.size(); ++i)
        copy.append(text.substring(i, 1));
    EXPECT_TRUE(copy.isIdenticalTo(text));
    std::size_t found = 0;
    for (std::uint32_t at = 0; (at = text.findIgnoringCase(Text(u"B"), at)) != Text::end; ++at)
        ++found;
    EXPECT_EQ(found, steps);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(60));
}

TEST(Encoding, keepsAsciiAndReplacesMalformedBytes) {
    for (std::int32_t number = 1; number <= 36; ++number) {
        const Encoding encoding = host::encodingFromNumber(number);
        SCOPED_TRACE(number);
        for (int byte = 0; byte < 0x80; ++byte) {
            const std::string bytes(1, static_cast<char>(byte));
            EXPECT_EQ(host::decode(bytes, encoding), std::u16string(1, static_cast<char16_t>(byte)));
            EXPECT_EQ(host::encode(std::u16string(1, static_cast<char16_t>(byte)), encoding), bytes);
        }
        EXPECT_EQ(host::encode(u"\xD800", encoding), encoding == Encoding::utf8 ? "\xEF\xBF\xBD" : "?");
        EXPECT_EQ(host::decode({}, encoding), u"");
        EXPECT_EQ(host::encode({}, encoding), "");
    }
    EXPECT_EQ(host::decode("\xFF", Encoding::utf8), u"\uFFFD");
    EXPECT_EQ(host::decode("a\xF0\x9F", Encoding::utf8), u"a\uFFFD"); // truncated inside a character
    EXPECT_EQ(host::decode("\x81", Encoding::shiftJisWin), u"\uFFFD");
    EXPECT_EQ(host::decode("\x93\xFA\x96{", Encoding::shiftJisMac), u"\u65E5\u672C");
    for (const std::int32_t unknown : {-1, 37, 1000})
        EXPECT_EQ(host::encodingFromNumber(unknown), Encoding::native);
}

/// Texts are converted in pieces; a character that spans two pieces must not be lost.
TEST(Encoding, convertsLongTexts) {
    for (std::size_t shift = 0; shift < 4; ++shift) {
        std::u16string units(shift, u'x'), kanji(shift, u'x');
        for (int i = 0; i < 5000; ++i) {
            units += u"\U0001F600\u20AC";
            kanji += u"\u65E5\x1A";
        }
        EXPECT_EQ(host::decode(host::encode(units, Encoding::utf8), Encoding::utf8), units);
        EXPECT_EQ(host::decode(host::encode(kanji, Encoding::shiftJisWin), Encoding::shiftJisWin), kanji);
        EXPECT_EQ(host::encode(units, Encoding::utf8).size(), shift + 35'000);
    }
}

} // namespace
