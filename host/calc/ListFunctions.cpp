#include "host/calc/Arguments.h"
#include "host/calc/BuiltIns.h"
#include "host/calc/Pieces.h"

#include <algorithm>
#include <array>

/// Parts of texts that are counted in words and in the values of lists.

namespace host::calc {

namespace {

/// `count` pieces from `first` (from 0), held within what there is.
std::span<const Piece> cut(const std::vector<Piece>& pieces, std::int64_t first, std::int64_t count) {
    const auto size = static_cast<std::int64_t>(pieces.size());
    const std::int64_t from = std::clamp<std::int64_t>(first, 0, size);
    const std::int64_t to = std::clamp<std::int64_t>(first + count, from, size);
    return std::span(pieces).subspan(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from));
}

using Split = std::vector<Piece> (*)(std::u16string_view);
using Answer = DataRef (*)(const Text&, std::span<const Piece>);

template<Split split, Answer answer>
DataRef leftOf(Arguments arguments) {
    const Text& text = arguments[0]->asText();
    return answer(text, cut(split(text.units()), 0, std::max<std::int64_t>(whole(arguments[1]), 0)));
}

template<Split split, Answer answer>
DataRef rightOf(Arguments arguments) {
    const Text& text = arguments[0]->asText();
    const std::vector<Piece> pieces = split(text.units());
    const std::int64_t size = static_cast<std::int64_t>(pieces.size());
    const std::int64_t count = std::clamp<std::int64_t>(whole(arguments[1]), 0, size);
    return answer(text, cut(pieces, size - count, count));
}

template<Split split, Answer answer>
DataRef middleOf(Arguments arguments) {
    const Text& text = arguments[0]->asText();
    const std::int64_t first = std::max<std::int64_t>(whole(arguments[1]), 1) - 1;
    return answer(text, cut(split(text.units()), first, std::max<std::int64_t>(whole(arguments[2]), 0)));
}

template<Split split>
DataRef countOf(Arguments arguments) {
    return numberResult(static_cast<std::int64_t>(split(arguments[0]->asText().units()).size()));
}

/// Solutions walk long lists with it, so the value remembers where its lines begin.
DataRef getValue(Arguments arguments) {
    const Text& text = arguments[0]->asText();
    const std::vector<std::uint32_t>& starts = arguments[0]->lineStarts();
    const std::int64_t wanted = whole(arguments[1]);
    if (wanted < 1 || wanted > std::ssize(starts)) return textResult({});
    const auto line = static_cast<std::size_t>(wanted - 1);
    const std::uint32_t end = line + 1 < starts.size() ? starts[line + 1] - 1 : text.size();
    return textResult(text.substring(starts[line], end - starts[line]));
}

constexpr std::array rows{
    EagerRow{u"LeftWords", leftOf<wordsOf, wordsResult>},
    EagerRow{u"RightWords", rightOf<wordsOf, wordsResult>},
    EagerRow{u"MiddleWords", middleOf<wordsOf, wordsResult>},
    EagerRow{u"WordCount", countOf<wordsOf>},
    EagerRow{u"LeftValues", leftOf<valuesOf, valuesResult>},
    EagerRow{u"RightValues", rightOf<valuesOf, valuesResult>},
    EagerRow{u"MiddleValues", middleOf<valuesOf, valuesResult>},
    EagerRow{u"ValueCount", countOf<valuesOf>},
    EagerRow{u"GetValue", getValue},
};

} // namespace

void addListFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
