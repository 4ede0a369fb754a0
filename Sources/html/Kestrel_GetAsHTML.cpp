#include "Handlers.h"
#include "bridge/HandlerFrame.h"
#include "bridge/HostInterface.h"
#include "bridge/LastError.h"
#include "bridge/StringUtils.h"
#include "bridge/cFMUtils.h"
#include "html/GetAsHTML.h"
#include "html/Output.h"
#include "html/PostProcessing.h"
#include "html/Reading.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace {

const struct {
    const char *formatting, *element;
} kDefaultElements[] = {
    {"bold", "b"},         {"italic", "i"},        {"underline", "u"},   {"strikethrough", "s"},
    {"highlight", "mark"}, {"superscript", "sup"}, {"subscript", "sub"},
};

/// True when the text is an expression with a value that is not empty.
bool hasValue(const fmx::Text& text, const fmx::ExprEnv& env) {
    if (isEmpty(text)) return false;
    fmx::uint16 first = 0;
    text.GetUnicode(&first, 0, 1);
    if (first != '$') return false;
    fmx::TextUniquePtr isEmptyValue;
    evaluateOnFM("isEmpty(", text, ")", env, isEmptyValue);
    return StringFromFmText(*isEmptyValue) == "0";
}

/// One conversion: the parameters, and the state that its paragraphs share.
struct Conversion {
    const fmx::ExprEnv& env;
    ParamVector tagParams, classParams, styleParams;
    ClassMap classMap;
    TextReader reader;
    std::vector<cFragment> fragments; ///< of the paragraph that is read
    fmx::TextUniquePtr body;

    Conversion(const fmx::ExprEnv& environment, const fmx::Text& tags, const fmx::Text& classes,
               const fmx::Text& styles)
        : env(environment), tagParams(parseTagOrClassOrStyleParam(tags, true)),
          classParams(parseTagOrClassOrStyleParam(classes, true)),
          styleParams(parseTagOrClassOrStyleParam(styles, false)), reader(environment) {}

    void endParagraph(const fmx::Text& source, const std::string& alignment) {
        transformRichtextToHTML(source, alignment, tagParams, classParams, styleParams, env, fragments,
                                classMap, body);
        fragments.clear();
    }

    /// Converts the text's own paragraphs. A single paragraph has no element.
    void convertText(const fmx::Text& text) {
        const Units units = unitsFromFMText(text);
        const fmx::TextUniquePtr paragraph;
        for (auto start = units.begin(); start != units.end();) {
            const auto end = std::find(start, units.end(), kReturn);
            const auto next = end == units.end() ? end : end + 1;
            const bool isOnly = start == units.begin() && next == units.end();
            paragraph->SetText(text, static_cast<fmx::uint32>(start - units.begin()),
                               static_cast<fmx::uint32>(end - start));
            reader.extractFragments(*paragraph, fragments);
            endParagraph(*paragraph, isOnly ? "none" : "");
            start = next;
        }
    }

    /// Converts the paragraphs of the expression's value, with the host's alignment.
    void convertValue(const fmx::Text& expression) {
        const Units lineEndings = getLineEndings(expression, env);
        // Every value has at least one line, so there are no fewer line endings than alignments.
        const std::vector<std::string> alignments = getLineAligns(expression, env, lineEndings.size());
        const std::vector<bool> isEnd = determineParagraphEnds(lineEndings, alignments);
        fmx::TextUniquePtr value;
        for (std::size_t k = 0; k < alignments.size(); ++k) {
            evaluateOnFM("GetValue(", expression, ";" + std::to_string(k + 1) + ")", env, value);
            reader.extractFragments(*value, fragments);
            if (isEnd[k] || k + 1 == alignments.size())
                endParagraph(expression,
                             alignments.size() == 1 && alignments[k] == "left" ? "none" : alignments[k]);
            else if (lineEndings[k] != 0 && !fragments.empty())
                fragments.back().addChar(lineEndings[k]);
        }
    }
};

} // namespace

ParamVector parseTagOrClassOrStyleParam(const fmx::Text& text, bool hasValues) {
    ParamVector params;
    if (isEmpty(text)) return params;
    for (std::string& line : explode(StringFromFmText(text), '\r')) {
        if (!hasValues) {
            params.emplace_back(toLower(line), "1");
            continue;
        }
        const std::vector<std::string> pieces = explode(toLower(line) == "all" ? "all=kst" : line, '=');
        if (pieces.size() >= 2) params.emplace_back(toLower(pieces[0]), pieces[1]);
    }
    return params;
}

void addDefaultFormattingsForTag(ParamVector& tagParams) {
    for (const auto& [formatting, element] : kDefaultElements)
        if (!paramVectorHasKey(tagParams, formatting)) tagParams.emplace_back(formatting, element);
}

std::vector<bool> determineParagraphEnds(const Units& lineEndings,
                                         const std::vector<std::string>& alignments) {
    std::vector<bool> isEnd(std::max(lineEndings.size(), alignments.size()));
    std::transform(lineEndings.begin(), lineEndings.end(), isEnd.begin(),
                   [](fmx::uint16 ending) { return ending == kReturn; });
    for (std::size_t i = 1; i < alignments.size(); ++i)
        if (alignments[i] != alignments[i - 1]) isEnd[i - 1] = true;
    return isEnd;
}

// NOLINTBEGIN(performance-unnecessary-value-param): the interface passes the lists by value.
void transformRichtextToHTML(const fmx::Text& source, const std::string& alignment, ParamVector tagParams,
                             ParamVector classParams, ParamVector styleParams, const fmx::ExprEnv&,
                             std::vector<cFragment>& fragments, ClassMap& classMap,
                             fmx::TextAutoPtr& output) {
    fragmentsPostProcessing(fragments, classMap, tagParams, classParams, styleParams);
    mergeFragments(fragments);
    cFragment paragraph = createParagraphFragment(alignment, tagParams, classParams, styleParams, classMap);
    produceHTMLfromFragments(source, paragraph, fragments, classMap, output);
}
// NOLINTEND(performance-unnecessary-value-param)

void transformRichtextToHTMLWithEvaluate(const fmx::Text& text, const fmx::Text& tags,
                                         const fmx::Text& classes, const fmx::Text& styles,
                                         const fmx::ExprEnv& env, fmx::TextAutoPtr& output) {
    Conversion conversion(env, tags, classes, styles);
    if (paramVectorHasKey(conversion.tagParams, "all")) {
        paramVectorEraseKey(conversion.tagParams, "all");
        addDefaultFormattingsForTag(conversion.tagParams);
    }
    if (hasValue(text, env))
        conversion.convertValue(text);
    else
        conversion.convertText(text);
    appendCssClasses(conversion.classMap, "", output);
    output->AppendText(*conversion.body);
}

FMX_PROC(fmx::errcode)
Kestrel_GetAsHTML(short, const fmx::ExprEnv& env, const fmx::DataVect& parameters, fmx::Data& result) {
    return kst::runHandler(env, result, [&] {
        const fmx::uint32 count = parameters.Size();
        if (count == 0)
            return kst::answerWithError(kst::kWrongParameter, "Input parameter is missing", result, env);
        const char* const defaults[] = {"all", "all=kst", "all"};
        fmx::TextUniquePtr lists[std::size(defaults)];
        for (fmx::uint32 i = 0; i < std::size(defaults); ++i) {
            if (i + 1 < count)
                lists[i]->SetText(parameters.AtAsText(i + 1));
            else
                lists[i]->Assign(defaults[i]);
        }
        fmx::TextUniquePtr html;
        transformRichtextToHTMLWithEvaluate(parameters.AtAsText(0), *lists[0], *lists[1], *lists[2], env,
                                            html);
        cFMUtils::resultFromText(*html, result);
        return fmx::errcode{0};
    });
}
