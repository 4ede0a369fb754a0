#include "html/ClassMap.h"
#include "html/Fragment.h"
#include "html/Output.h"
#include "html/PostProcessing.h"

#include "StringUtils.h"
#include "cFMUtils.h"
#include "host/fmwrapper/Bridge.h"
#include "host/values/Text.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

/// The stages on the way from styled text to HTML, each on its own.

namespace {

using Names = std::vector<std::string>;

Formattings flags(const Names& names) {
    Formattings formattings;
    for (const std::string& name : names)
        formattings[name];
    return formattings;
}

cFragment run(const std::string& characters, Names tags = {}, Names classes = {}, InlineStyles styles = {}) {
    cFragment fragment;
    fragment.characters.assign(characters.begin(), characters.end());
    fragment.narrowText = characters;
    fragment.length = characters.size();
    fragment.tags = std::move(tags);
    fragment.cssClasses = std::move(classes);
    fragment.inlineStyles = std::move(styles);
    return fragment;
}

std::string charactersOf(const cFragment& fragment) {
    return {fragment.characters.begin(), fragment.characters.end()};
}

std::string utf8(const fmx::Text& text) { return host::bridge::in<host::Text>(&text).utf8(); }

TEST(Fragment, tradesFormattingsForElementsAllOrNone) {
    const struct {
        const char *combination, *element;
        bool succeeds;
        Names left, tags;
    } cases[] = {
        {"bold", "b", true, {"italic"}, {"b"}},
        {"bold+italic", "strong", true, {}, {"strong"}},
        {"bold+bold", "b", true, {"italic"}, {"b"}},
        {"bold+", "b", true, {"italic"}, {"b"}},
        {"bold++italic", "b", false, {"bold", "italic"}, {}},
        {"bold+underline", "b", false, {"bold", "italic"}, {}},
        {"all", "b", false, {"bold", "italic"}, {}},
        {"", "b", false, {"bold", "italic"}, {}},
        {"bold", "", false, {"bold", "italic"}, {}},
    };
    for (const auto& [combination, element, succeeds, left, tags] : cases) {
        cFragment fragment;
        fragment.formattings = flags({"bold", "italic"});
        EXPECT_EQ(fragment.extractFormattingCombinationToCreateTag(combination, element), succeeds)
            << combination;
        EXPECT_EQ(fragment.formattings, flags(left)) << combination;
        EXPECT_EQ(fragment.tags, tags) << combination;
    }
}

TEST(Fragment, tradesFormattingsForClasses) {
    ClassMap classes;
    const auto classFor = [&](const Names& formattings, const char* combination, std::string name) {
        cFragment fragment;
        fragment.formattings = flags(formattings);
        const bool succeeded = fragment.extractFormattingCombinationToCreateClass(combination, name, classes);
        EXPECT_NE(succeeded, fragment.cssClasses.empty());
        if (!succeeded) EXPECT_EQ(fragment.formattings, flags(formattings));
        return fragment.getInlineCSSClasses() + "/" + std::to_string(fragment.formattings.size());
    };
    EXPECT_EQ(classFor({"bold"}, "bold", ""), "kst/0");
    EXPECT_EQ(classFor({"italic", "bold"}, "italic", "kst"), "kst1/1");
    EXPECT_EQ(classFor({"bold", "italic"}, "all", ""), "kst2/0");
    EXPECT_EQ(classFor({"bold"}, "all", "other"), "kst/0");
    EXPECT_EQ(classFor({"small"}, "all", "none"), "/1"); // shows nothing
    EXPECT_EQ(classFor({}, "all", "none"), "/0");
    EXPECT_EQ(classFor({"bold"}, "bold+italic", "none"), "/1");
    EXPECT_EQ(classFor({"bold"}, "", "none"), "/1");
    EXPECT_EQ(classFor({"underline"}, "underline", "kst1"), "kst11/0");
    ASSERT_EQ(classes.size(), 4U);
    EXPECT_EQ(std::prev(classes.end())->second, "font-style:italic;font-weight:bold;");

    std::string overwritten;
    cFragment().extractFormattingCombinationToCreateClass("bold", overwritten, classes);
    EXPECT_EQ(overwritten, "kst");
}

TEST(Fragment, isAValueThatIsEmptyAfterMoving) {
    cFragment fragment = run("text", {"b", "i", "b"}, {"a", "b"}, {{"z", "1"}, {"color", "#ff0000"}});
    fragment.formattings = flags({"bold", "size"});
    fragment.addChar(0x2028);
    EXPECT_EQ(fragment.narrowText, "text(");
    EXPECT_EQ(fragment.length, 4U);
    EXPECT_EQ(fragment.getInlineCSS(), "color:#ff0000;z:1;");
    EXPECT_EQ(serialize_CSS(fragment.inlineStyles, " "), "color:#ff0000; z:1; ");
    EXPECT_EQ(fragment.getInlineCSSClasses(), "a b");
    EXPECT_EQ(cFragment().getInlineCSSClasses() + cFragment().getInlineCSS(), "");
    fragment.removeTag("b");
    EXPECT_EQ(fragment.tags, Names{"i"});
    EXPECT_EQ(fragment.filterFormattings({{"color", "1"}, {"size", "1"}}), 1U);

    cFragment copy = fragment;
    const cFragment& same = copy;
    copy = same;
    EXPECT_TRUE(fragmentsHaveEqualAppearance(copy, fragment));
    cFragment moved;
    moved = std::move(copy);
    EXPECT_EQ(moved.characters, fragment.characters);
    EXPECT_EQ(moved.formattings, flags({"size"}));
    // NOLINTNEXTLINE(bugprone-use-after-move): that is what is asked
    EXPECT_TRUE(copy.characters.empty() && copy.narrowText.empty() && copy.formattings.empty() &&
                copy.tags.empty() && copy.cssClasses.empty() && copy.inlineStyles.empty());
}

TEST(PostProcessing, declaresFormattings) {
    const struct {
        Formattings formattings;
        const char* css;
    } cases[] = {
        {flags({"underline", "strikethrough"}), "text-decoration:underline line-through;"},
        {flags({"strikethrough"}), "text-decoration:line-through;"},
        {flags({"doubleunderline", "strikethrough"}),
         "-webkit-text-decoration-style:double;text-decoration:underline line-through;"
         "text-decoration-style:double;"},
        {flags({"condense", "extend"}), "letter-spacing:2px;"},
        {flags({"superscript", "subscript"}), "vertical-align:sub;"},
        {flags({"uppercase", "lowercase", "titlecase"}), "text-transform:capitalize;"},
        {flags({"highlight", "smallcaps"}), "background-color:#FFFF00;font-variant:small-caps;"},
        {{{"size", "12px"}, {"font", "Helvetica"}, {"color", "#ff0080"}, {"blink", ""}},
         "color:#ff0080;font-family:Helvetica;font-size:12px;"},
    };
    for (const auto& [formattings, css] : cases)
        EXPECT_EQ(serialize_CSS(CSSFromFormattings(formattings), ""), css);
}

TEST(PostProcessing, sendsEveryFormattingToOnePlace) {
    const struct {
        const char* what;
        ParamVector tags, classes, styles;
        const char* expected; // elements / classes / declarations of a run that is bold, italic and red
    } cases[] = {
        {"earlier pairs win",
         {{"bold", "b"}, {"bold+italic", "strong"}},
         {},
         {{"all", "1"}},
         "b//color:#ff0000;font-style:italic;"},
        {"elements, then classes, then declarations",
         {{"bold", "b"}},
         {{"italic", "slanted"}},
         {{"color", "1"}},
         "b/slanted/color:#ff0000;"},
        {"nothing behind all", {}, {{"all", "kst"}, {"bold", "never"}}, {}, "/kst/"},
        {"all of what is left", {}, {{"bold", "loud"}, {"all", "rest"}}, {}, "/loud rest/"},
        {"nowhere", {}, {}, {{"color", "1"}}, "//color:#ff0000;"},
        {"nowhere at all", {}, {}, {}, "//"},
    };
    for (const auto& [what, tags, classes, styles, expected] : cases) {
        Conversion conversion{tags, classes, styles, {}, {}};
        std::vector<cFragment> fragments(2);
        for (cFragment& fragment : fragments) {
            fragment.formattings = flags({"bold", "italic"});
            fragment.formattings["color"] = "#ff0000";
        }
        fragmentsPostProcessing(fragments, conversion);
        for (const cFragment& fragment : fragments) {
            std::string elements;
            for (const std::string& tag : fragment.tags)
                elements += tag;
            EXPECT_EQ(elements + "/" + fragment.getInlineCSSClasses() + "/" + fragment.getInlineCSS(),
                      expected)
                << what;
            EXPECT_TRUE(fragment.formattings.empty());
        }
    }
}

TEST(PostProcessing, movesTextIntoTheLastOfEqualRuns) {
    std::vector<cFragment> fragments{run("ab", {"b"}), run("c", {"b"}), run("", {"b"}),
                                     run("d", {"b"}),  run("e", {"i"}), run("f")};
    std::uint64_t start = 0;
    for (cFragment& fragment : fragments)
        fragment.start = std::exchange(start, start + fragment.length);
    EXPECT_EQ(mergeFragments(fragments), 3);
    const char* const expected[] = {"", "", "", "abcd", "e", "f"};
    for (std::size_t i = 0; i < fragments.size(); ++i) {
        EXPECT_EQ(charactersOf(fragments[i]), expected[i]) << i;
        EXPECT_EQ(fragments[i].length, fragments[i].characters.size()) << i;
        EXPECT_EQ(fragments[i].tags.size(), i < 5 ? 1U : 0U) << i;
    }
    EXPECT_EQ(fragments[3].start, 0U);

    const cFragment plain = run("", {"b"}, {"c"}, {{"color", "#000000"}});
    EXPECT_TRUE(fragmentsHaveEqualAppearance(plain, run("x", {"b"}, {"c"}, {{"color", "#000000"}})));
    for (const cFragment& other :
         {run("", {"b", "i"}, {"c"}, {{"color", "#000000"}}), run("", {"b"}, {"d"}, {{"color", "#000000"}}),
          run("", {"b"}, {"c"}, {{"color", "#000001"}}), run("", {"b"}, {"c"})})
        EXPECT_FALSE(fragmentsHaveEqualAppearance(plain, other));
}

TEST(PostProcessing, logsMergesOnRequestOnly) {
    const auto logged = [](const char* wanted) {
        ::setenv("KESTREL_LOG", wanted, 1);
        std::vector<cFragment> fragments{run("a"), run("b"), run("c")};
        testing::internal::CaptureStdout();
        EXPECT_EQ(mergeFragments(fragments), 2);
        ::unsetenv("KESTREL_LOG");
        return testing::internal::GetCapturedStdout();
    };
    EXPECT_EQ(logged(""), "");
    EXPECT_EQ(logged("1"), "Merging 2 fragments: 'a' + 'ab' \nMerging 2 fragments: 'ab' + 'abc' \n");
}

TEST(PostProcessing, liftsWhatAllRunsShare) {
    const struct {
        const char* what;
        Names paragraph;
        std::vector<Names> runs;
        Names paragraphAfter;
        std::vector<Names> runsAfter;
    } blocks[] = {
        {"one run", {"p"}, {{"b", "h2"}}, {"h2"}, {{"b"}}},
        {"every run", {"p"}, {{"h2", "h2"}, {"i", "h2"}}, {"h2"}, {{}, {"i"}}},
        {"not every run", {"p"}, {{"h2"}, {}}, {"p"}, {{"h2"}, {}}},
        {"the first that all have", {"p"}, {{"h1", "div"}, {"div"}}, {"div"}, {{"h1"}, {}}},
        {"no block", {"p"}, {{"b"}}, {"p"}, {{"b"}}},
        {"case counts", {"p"}, {{"H1"}}, {"p"}, {{"H1"}}},
        {"not a p", {"div"}, {{"h2"}}, {"div"}, {{"h2"}}},
        {"no element", {}, {{"h2"}}, {}, {{"h2"}}},
        {"no runs", {"p"}, {}, {"p"}, {}},
    };
    for (const auto& [what, paragraphTags, runs, paragraphAfter, runsAfter] : blocks) {
        cFragment paragraph = run("", paragraphTags);
        std::vector<cFragment> fragments;
        fragments.reserve(runs.size());
        for (const Names& tags : runs)
            fragments.push_back(run("x", tags));
        escalateSharedBlockElement(paragraph, fragments);
        EXPECT_EQ(paragraph.tags, paragraphAfter) << what;
        for (std::size_t i = 0; i < fragments.size(); ++i)
            EXPECT_EQ(fragments[i].tags, runsAfter[i]) << what;
    }

    cFragment paragraph = run("", {"p"}, {"own"}, {{"color", "old"}});
    // The emptied run takes part.
    std::vector<cFragment> fragments{
        run("x", {}, {"a", "b", "c"}, {{"color", "red"}, {"font-size", "12px"}, {"x", "1"}}),
        run("", {}, {"c", "a"}, {{"color", "red"}, {"font-size", "13px"}, {"x", "1"}})};
    escalateSharedCssClasses(paragraph, fragments);
    escalateSharedCssStyles(paragraph, fragments);
    EXPECT_EQ(paragraph.getInlineCSSClasses(), "own a c");
    EXPECT_EQ(paragraph.getInlineCSS(), "color:red;x:1;");
    EXPECT_EQ(fragments[0].getInlineCSSClasses() + fragments[0].getInlineCSS(), "bfont-size:12px;");
    EXPECT_EQ(fragments[1].getInlineCSSClasses() + fragments[1].getInlineCSS(), "font-size:13px;");
}

TEST(Output, opensParagraphsByTheirAlignment) {
    const struct {
        const char* alignment;
        ParamVector tags, classes, styles;
        const char* expected; // the opening tag
        const char* declared; // of the class
    } cases[] = {
        {"none", {{"none", "div"}}, {}, {{"all", "1"}}, "", ""},
        {"left", {}, {{"all", "kst"}}, {{"all", "1"}}, "<p>", ""},
        {"", {}, {{"all", "kst"}}, {{"all", "1"}}, "<p>", ""},
        {"right", {{"right", "div"}, {"right", "h1"}}, {{"all", "kst"}}, {{"all", "1"}}, "<div>", ""},
        {"center", {}, {{"all", "kst"}}, {{"all", "1"}}, "<p class=\"kst\">", "text-align:center;"},
        {"center", {}, {{"all", "kst"}, {"center", "mid"}}, {}, "<p class=\"mid\">", "text-align:center;"},
        {"center", {}, {{"center", ""}}, {{"all", "1"}}, "<p>", ""},
        {"full", {}, {}, {{"all", "1"}}, "<p style=\"text-align:justify;\">", ""},
        {"full", {}, {}, {{"full", "1"}}, "<p style=\"text-align:justify;\">", ""},
        {"right", {}, {{"bold", "x"}}, {{"left", "1"}}, "<p>", ""},
    };
    for (const auto& [alignment, tags, classes, styles, expected, declared] : cases) {
        Conversion conversion{tags, classes, styles, {}, {}};
        const cFragment paragraph = createParagraphFragment(alignment, conversion);
        EXPECT_EQ(paragraph.tags.empty() ? ""
                                         : createTag(paragraph.tags.front(), paragraph.getInlineCSSClasses(),
                                                     paragraph.getInlineCSS()),
                  expected);
        EXPECT_EQ(conversion.classMap.empty() ? "" : conversion.classMap.begin()->second, declared);
    }
}

TEST(Output, writesRuns) {
    const InlineStyles red{{"color", "#ff0000"}};
    const struct {
        cFragment run;
        const char* html;
    } cases[] = {
        {run("x", {"b", "i"}, {}, red), "<b><i style=\"color:#ff0000;\">x</i></b>"},
        {run("x", {}, {"kst"}), "<span class=\"kst\">x</span>"},
        {run("x", {}, {"kst", "a"}, red), "<span class=\"kst a\" style=\"color:#ff0000;\">x</span>"},
        {run("a<b & c\n>\"'\r"), "a&lt;b &amp; c<br/>\r&gt;\"'\r"},
        {run("", {"b"}), ""},
    };
    for (const auto& [fragment, html] : cases) {
        fmx::TextUniquePtr output;
        std::vector<cFragment> fragments{fragment};
        produceHTMLfromFragments({}, fragments, output);
        EXPECT_EQ(utf8(*output), html);
    }
    fmx::TextUniquePtr output;
    std::vector<cFragment> none;
    produceHTMLfromFragments(run("", {"p"}), none, output);
    EXPECT_EQ(utf8(*output), "<p></p>\r");
}

TEST(Output, escapesOnce) {
    const struct {
        const char *text, *html;
    } cases[] = {
        {"&lt;", "&amp;lt;"},
        {"\u00A0\u2028\n", "&nbsp;<br/>\r<br/>\r"},
        {"\u0126\u013C\u0A26\U0001F600\u20A0", "\u0126\u013C\u0A26\U0001F600\u20A0"}, // low bytes of escapes
        {"", ""},
    };
    for (const auto& [plain, html] : cases) {
        const fmx::TextUniquePtr text = cFMUtils::getUTF16data(plain);
        addEntitiesAndFixEndlines(*text);
        EXPECT_EQ(utf8(*text), html);
    }
    cFragment fragment = run("ab");
    fragment.addChar(0xD83D);
    fragment.addChar(0);
    const fmx::TextUniquePtr text = cFMUtils::getUTF16data("before");
    fragment.getText(*text);
    EXPECT_EQ(UnitsFromFMText(*text), fragment.characters);
}

TEST(Output, writesTheStyleBlockInNameOrder) {
    ClassMap classes;
    fmx::TextUniquePtr output;
    appendCssClasses(classes, "x", output);
    EXPECT_EQ(utf8(*output), "");
    get_or_create_class("b:2;", "z", classes);
    get_or_create_class("a:1;", "kst", classes);
    appendCssClasses(classes, "/**/", output);
    EXPECT_EQ(utf8(*output), "<style type=\"text/css\">/**/\r.kst { a:1; }\r.z { b:2; }\r</style>\r");
}

} // namespace
