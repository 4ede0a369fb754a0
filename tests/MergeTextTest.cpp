#include "FunctionCalls.h"

#include <array>
#include <random>

/// Templates filled in by the loaded library, compared with a merge that works character by character.

namespace {

using host::CharacterStyle;
using host::Data;
using host::Text;

CharacterStyle faces(std::uint16_t which) {
    CharacterStyle style;
    style.setFaces(which);
    return style;
}

/// A slow and simple merge.
class SlowMerge {
public:
    explicit SlowMerge(host::Session& session) : session_(session) {}

    Text operator()(const Text& source) const {
        const std::u16string_view units = source.units();
        const auto isPair = [&](std::u16string_view pair, std::size_t at) {
            return at < units.size() && units.substr(at, 2) == pair;
        };
        Text output;
        const auto copy = [&](std::size_t from, std::size_t to) {
            output.append(source, static_cast<std::uint32_t>(from), static_cast<std::uint32_t>(to - from));
        };
        std::size_t at = 0;
        for (;;) {
            const std::size_t open = units.find(u"<<", at), close = units.find(u">>", at);
            if (open == units.npos || close == units.npos) break;
            if (open > close) {
                copy(at, open + 2);
                at = open + 2;
                continue;
            }
            std::size_t begin = open;
            while (isPair(u"<<", begin + 1))
                ++begin;
            copy(at, begin);
            const auto first = static_cast<std::uint32_t>(begin + 2);
            output.append(filled(source.substring(first, static_cast<std::uint32_t>(close) - first),
                                 source.formattingAt(first).style));
            std::size_t end = close;
            for (; isPair(u">>", end + 1); ++end)
                copy(end, end + 1);
            at = end + 2;
        }
        copy(at, source.size());
        return output;
    }

private:
    Text filled(const Text& expression, const CharacterStyle& formatting) const {
        const host::calc::Result result = session_.evaluate(expression.units());
        Text text(u"<<");
        if (result.error == 0) {
            text = result.value->asText();
            if (!text.empty() && !text.formattingAt(0).style.isAllDisabled()) return text;
        } else {
            text.append(expression);
            text.append(Text(u">>"));
        }
        text.applyStyle(formatting);
        return text;
    }

    host::Session& session_;
};

class MergeText : public FunctionCalls {
protected:
    Text merged(const Text& text) {
        Answer answer = call(u"Kestrel_MergeText", {Data(text)});
        EXPECT_EQ(answer.error, 0);
        EXPECT_EQ(answer.value.nativeType(), host::DataType::text);
        return answer.value.asText();
    }
};

TEST_F(MergeText, agreesWithASlowMergeOnRandomTemplates) {
    const std::u16string half{0xD83D}, boldFirst = u"TextStyleAdd ( \"ab\" ; Bold ) & \"c\"",
                                       boldLast = u"\"c\" & TextStyleAdd ( \"ab\" ; Bold )";
    const std::u16string pieces[] = {
        u"<",     u"<",     u">",      u">",         u"+",          u" ",      half,     u"<<",
        u"<<",    u">>",    u">>",     u"\r",        u"1+2",        u"\"\"",   u"text",  u"\"x\"",
        u"$none", u"<<1>>", u"\"<<\"", u"<<\"é\">>", u"\U0001F600", boldFirst, boldLast,
    };
    const CharacterStyle formattings[] = {{},
                                          faces(host::face::bold),
                                          faces(host::face::italic),
                                          CharacterStyle(3, host::face::plain, 24, {255, 0, 0})};
    std::mt19937 random(3);
    const SlowMerge slowly(session);
    int evaluations = 0;
    for (int round = 0; round < 6'000; ++round) {
        Text source;
        const CharacterStyle* formatting = formattings;
        for (std::size_t count = random() % 12; count > 0; --count) {
            if (random() % 3 == 0) formatting = &formattings[random() % std::size(formattings)];
            source.append(Text(pieces[random() % std::size(pieces)], {*formatting, {}}));
        }
        const Text expected = slowly(source), answer = merged(source);
        ASSERT_TRUE(answer.isIdenticalTo(expected))
            << source.utf8() << "\ngives " << answer.utf8() << "\nnot   " << expected.utf8();
        evaluations += answer == source ? 0 : 1;
    }
    EXPECT_GT(evaluations, 1'000);
}

TEST_F(MergeText, keepsAndAppliesFormatting) {
    const CharacterStyle none, bold = faces(host::face::bold), italic = faces(host::face::italic);
    CharacterStyle both = bold;
    both.apply(italic);
    struct Span {
        const char16_t* units;
        CharacterStyle formatting;
    };
    const struct {
        std::vector<Span> source, result;
    } cases[] = {
        {{{u"plain ", none}, {u"bold ", bold}, {u"slanted", italic}},
         {{u"plain ", none}, {u"bold ", bold}, {u"slanted", italic}}},
        // The expression's first character decides, not the delimiters or what follows.
        {{{u"<<", italic}, {u"1", bold}, {u"+1>>!", none}}, {{u"2", bold}, {u"!", none}}},
        {{{u"<<", italic}, {u"1", none}, {u"+1>>!", bold}}, {{u"2", none}, {u"!", bold}}},
        // A value that begins with formatting keeps its own; any other value gets the formatting of the
        // expression throughout.
        {{{u"<<TextStyleAdd ( \"a\" ; Bold ) & \"b\">>", italic}}, {{u"a", bold}, {u"b", none}}},
        {{{u"<<\"a\" & TextStyleAdd ( \"b\" ; Bold )>>", italic}}, {{u"a", italic}, {u"b", both}}},
        // An invalid expression gets the formatting of its first character added throughout.
        {{{u"<<", none}, {u"1", bold}, {u"+", italic}, {u">>", none}},
         {{u"<<1", bold}, {u"+", both}, {u">>", bold}}},
        {{{u"<<", bold}, {u"1", none}, {u"+", italic}, {u">>", bold}},
         {{u"<<1", none}, {u"+", italic}, {u">>", none}}},
        // Delimiters that are left over keep their formatting.
        {{{u"<", bold}, {u"<<1>", none}, {u">", none}, {u">", italic}}, {{u"<", bold}, {u"1>", none}}},
        {{{u"<<1", none}, {u">", bold}, {u">", italic}, {u">", none}}, {{u"1", none}, {u">", bold}}},
        {{{u">>", bold}, {u"<<1>>", italic}}, {{u">>", bold}, {u"<<1>>", italic}}},
    };
    const auto join = [](const std::vector<Span>& spans) {
        Text text;
        for (const Span& span : spans)
            text.append(span.units, {span.formatting, {}});
        return text;
    };
    for (const auto& [source, result] : cases)
        EXPECT_TRUE(merged(join(source)).isIdenticalTo(join(result))) << join(source).utf8();
}

TEST_F(MergeText, copiesAlignmentAsWell) {
    Text source(u"left<<1>>\rright", {});
    source.setAlignment(host::Alignment::right, 10);
    Text expected(u"left1\rright", {});
    expected.setAlignment(host::Alignment::right, 6);
    EXPECT_TRUE(merged(source).isIdenticalTo(expected));
}

TEST_F(MergeText, endsWhenATemplateCallsItself) {
    const host::calc::Result result =
        evaluate("Let ( $$t = \"<<Kestrel_MergeText ( $$t )>>\" ; Kestrel_MergeText ( $$t ) )");
    EXPECT_NE(result.error, 0);
    EXPECT_EQ(textOf("Kestrel_MergeText ( \"<<1>>\" )"), "1");
    textOf("Let ( $$t = \"\" ; $$t )");
}

TEST_F(MergeText, readsItsFirstParameterAndLeavesTheLastErrorAlone) {
    textOf("Let ( [ $$Kestrel_LastError = 7 ; $$Kestrel_LastErrorMessage = \"kept\" ] ; \"\" )");
    EXPECT_EQ(textOf("Kestrel_MergeText ( \"<<1+>>\" )"), "<<1+>>");
    EXPECT_EQ(call(u"Kestrel_MergeText", {Data(u"<<1>>"), Data(u"<<2>>")}).value.asText().utf8(), "1");
    EXPECT_EQ(lastError(), "7 kept");
}

} // namespace
