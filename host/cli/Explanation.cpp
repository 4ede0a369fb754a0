#include "host/cli/Explanation.h"

#include "host/cli/OpenParts.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <nlohmann/json.hpp>
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

namespace host::cli {

namespace {

constexpr std::u16string_view kLineEnds = u"\r\n";

bool isWordPart(UChar32 point) {
    return u_isalnum(point) != 0 || point == '_' || point == '$' || point == ':' || point == '.' ||
           point == '~';
}

/// The word that begins at a position; one character where none does; empty at the end.
std::u16string_view wordAt(std::u16string_view source, std::size_t position) {
    std::size_t end = position;
    while (end < source.size()) {
        UChar32 point = 0;
        std::size_t next = end;
        U16_NEXT(source.data(), next, source.size(), point);
        if (!isWordPart(point)) {
            if (end == position) end = next;
            break;
        }
        end = next;
    }
    return source.substr(std::min(position, source.size()), end - position);
}

/// A habit from other languages or word processors.
struct Habit {
    std::u16string_view characters; ///< one of them begins the offending part
    std::string_view hint;
};
constexpr std::array kHabits{
    Habit{u"«»‘’‚'", "text stands between straight quotation marks, \"…\""},
    Habit{u"!", "\"not equal\" is written ≠ or <>, the negation of a value is not"},
    Habit{u"&|", "texts are joined by one &; the logical operators are and, or, xor, not"},
    Habit{u"=", "equality is written with one ="},
};

std::string placeInWords(std::u16string_view source, std::size_t position);

std::string hintFor(std::u16string_view source, std::size_t position, std::u16string_view near) {
    const std::vector<OpenPart> open = openParts(source);
    if (!open.empty() && (open.back().mark == u'"' || open.back().mark == u'*')) {
        const OpenPart& part = open.back();
        const std::string mark = part.mark == u'*' ? "/*" : toUtf8(std::u16string_view(&part.mark, 1));
        return "the " + mark + " in " + placeInWords(source, part.position) + " is not closed";
    }
    if (near.empty()) return {};
    if (near == u")" && openParts(source.substr(0, position)).empty())
        return "this bracket closes nothing that is open";
    for (const Habit& habit : kHabits)
        if (habit.characters.find(near.front()) != std::u16string_view::npos) return std::string(habit.hint);
    return {};
}

struct Line {
    std::size_t number = 1; ///< from 1
    std::size_t start = 0;
    std::u16string_view text;
};

/// The line of a position. A line ends at a return, a line feed, or both in this order.
Line lineOf(std::u16string_view source, std::size_t position) {
    Line line;
    for (std::size_t at = 0; at < position; ++at) {
        const bool isPair = source[at] == u'\r' && at + 1 < source.size() && source[at + 1] == u'\n';
        if (kLineEnds.find(source[at]) == std::u16string_view::npos || isPair) continue;
        ++line.number;
        line.start = at + 1;
    }
    const std::size_t end = std::min(source.find_first_of(kLineEnds, line.start), source.size());
    line.text = source.substr(line.start, std::max(end, position) - line.start);
    return line;
}

std::size_t columnOf(const Line& line, std::size_t position) {
    const std::u16string_view before = line.text.substr(0, position - line.start);
    return 1 +
           static_cast<std::size_t>(u_countChar32(before.data(), static_cast<std::int32_t>(before.size())));
}

std::string placeInWords(std::u16string_view source, std::size_t position) {
    const Line line = lineOf(source, position);
    const std::string column = "column " + std::to_string(columnOf(line, position));
    return source.find_first_of(kLineEnds) == std::u16string_view::npos
               ? column
               : "line " + std::to_string(line.number) + ", " + column;
}

/// The columns of a terminal that characters take; a tab keeps its place by a tab.
std::string blanksFor(std::u16string_view text, char fill) {
    std::string blanks;
    for (std::size_t at = 0; at < text.size();) {
        UChar32 point = 0;
        U16_NEXT(text.data(), at, text.size(), point);
        const int width = point == '\t' ? 1 : ::wcwidth(static_cast<wchar_t>(point));
        if (point == '\t')
            blanks += '\t';
        else
            blanks.append(static_cast<std::size_t>(std::max(width, 0)), fill);
    }
    return blanks;
}

/// Control characters would move the caret away.
std::u16string printable(std::u16string_view text) {
    std::u16string result(text);
    std::replace_if(
        result.begin(), result.end(),
        [](char16_t unit) { return unit != u'\t' && (unit < u' ' || unit == 0x7F); }, u' ');
    return result;
}

/// The line with a caret under the word, cut around it where it is long.
std::string excerptOf(const Line& line, std::size_t position, std::size_t wordSize) {
    constexpr std::size_t before = 60, after = 40;
    const std::size_t at = position - line.start;
    std::size_t first = at > before ? at - before : 0;
    std::size_t last = std::min(line.text.size(), at + wordSize + after);
    // A pair of surrogates is not cut.
    if (first > 0 && U16_IS_TRAIL(line.text[first])) ++first;
    if (last < line.text.size() && U16_IS_TRAIL(line.text[last])) ++last;
    const std::u16string left = (first > 0 ? u"…" : u"") + printable(line.text.substr(first, at - first));
    const std::u16string word = printable(line.text.substr(at, wordSize));
    const std::size_t wordEnd = std::min(at + wordSize, line.text.size());
    const std::u16string right = printable(line.text.substr(wordEnd, last - wordEnd));
    std::string carets = blanksFor(word, '^');
    if (carets.empty()) carets = "^";
    return "    " + toUtf8(left + word + right) + (last < line.text.size() ? "…" : "") + "\n    " +
           blanksFor(left, ' ') + carets + "\n";
}

std::string messageFor(const calc::Result& result) {
    if (calc::areCalculationsStopped()) return "the calculation was stopped";
    return result.problem.message.empty() ? std::string(calc::errorMessage(result.error))
                                          : result.problem.message;
}

} // namespace

Explanation explain(const calc::Result& result, std::u16string_view source,
                    const std::shared_ptr<const calc::FunctionTable>& functions) {
    const calc::Problem& problem = result.problem;
    const std::size_t position = std::min<std::size_t>(problem.position, source.size());
    const std::u16string_view near =
        problem.length > 0 ? source.substr(position, problem.length) : wordAt(source, position);
    // An error of evaluation may have no place; one of parsing always has.
    const bool hasPlace = problem.length > 0 || position > 0 || calc::parse(source, functions).error != 0;
    Explanation explanation{.code = result.error, .message = {}, .hint = {}, .place = {}};
    explanation.message = messageFor(result);
    if (!hasPlace) return explanation;
    explanation.hint = hintFor(source, position, near);
    const Line line = lineOf(source, position);
    explanation.place = Explanation::Place{.line = line.number,
                                           .column = columnOf(line, position),
                                           .near = toUtf8(near),
                                           .excerpt = excerptOf(line, position, near.size())};
    return explanation;
}

std::string textOf(const Explanation& explanation, std::string_view where) {
    std::string text =
        std::string(where) + "error " + std::to_string(explanation.code) + ": " + explanation.message + "\n";
    if (explanation.place) text += explanation.place->excerpt;
    if (!explanation.hint.empty()) text += "    hint: " + explanation.hint + "\n";
    return text;
}

void addTo(nlohmann::ordered_json& object, const Explanation& explanation) {
    object["error"] = explanation.code;
    object["message"] = explanation.message;
    if (!explanation.place) return;
    object["line"] = explanation.place->line;
    object["column"] = explanation.place->column;
    object["near"] = explanation.place->near;
}

} // namespace host::cli
