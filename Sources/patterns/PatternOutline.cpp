#include "patterns/PatternOutline.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

/// The bound of open alternatives and of steps. A search is a walk through a tree: an alternative or a
/// repetition makes it branch. Its course after a comparison of a character depends on the text. For each
/// part P of a pattern the reader knows two passages, s(P) from its start and r(P) from a comparison in it. A
/// passage ends at the next comparison or at the end of the part, and has
///
///   ways    the number that reach the end,
///   steps   the number on all ways together,
///   open    the open alternatives of the way that has the most.
///
/// One passage after another, X Y, and one beside another, X|Y:
///
///   ways(X Y) = ways(X) · ways(Y)                   ways(X|Y) = ways(X) + ways(Y)
///   steps(X Y) = steps(X) + ways(X) · steps(Y)      steps(X|Y) = 1 + steps(X) + steps(Y)
///   open(X Y) = open(X) + open(Y), if X has a way   open(X|Y) = 1 + the larger of the two
///
/// A character has s = no way and r = one way; an anchor has s = one way and r = no way. An assertion is
/// passed at most once and consumes no character, so it has s = r = one way, with the steps of its content.
/// With "max" for the larger number of each kind:
///
///   s(PQ) = s(P) s(Q)                       r(PQ) = max(r(P) s(Q), r(Q))
///   s(P|Q) = s(P)|s(Q)                      r(P|Q) = max(r(P), r(Q))
///   s(P{n}) = s(P) s(P) … n times           r(P{n}) = r(P) max(s(P{n-1}), nothing)
///   s(P{n,}) = s(P{n}), n > 0               r(P{n,}) = r(P) max(s(P{n-1}), nothing|s(P))
///   s(P*) = nothing|s(P)                    r(P*) = r(P) s(P*)
///
/// The last two lines hold because after n rounds the library begins no further one after an empty one. The
/// whole pattern's bound is max(s, r).

namespace kst {
namespace {

constexpr std::wstring_view kAnyButLineEnds = L"[^\n\r\u2028\u2029]";
constexpr std::wstring_view kNever = L"(?!)";

/// Numbers grow no further, so that none becomes infinite.
constexpr double kMost = 1e18;

/// Steps, in units of the cheapest.
constexpr double kStepsOfAnchor = 8;
constexpr double kStepsOfAssertion = 4;
constexpr double kStepsOfMember = 0.25; // of a set, for each character that it takes in the pattern

bool isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

struct Passage {
    double ways = 0, steps = 0, open = 0;
};

constexpr Passage kNothing{1, 0, 0};

Passage capped(const Passage& passage) {
    return {std::min(passage.ways, kMost), std::min(passage.steps, kMost), std::min(passage.open, kMost)};
}
Passage inSequence(const Passage& first, const Passage& second) {
    return capped({first.ways * second.ways, first.steps + first.ways * second.steps,
                   first.open + (first.ways > 0 ? second.open : 0)});
}
Passage beside(const Passage& first, const Passage& second) {
    return capped(
        {first.ways + second.ways, 1 + first.steps + second.steps, 1 + std::max(first.open, second.open)});
}
Passage larger(const Passage& first, const Passage& second) {
    return {std::max(first.ways, second.ways), std::max(first.steps, second.steps),
            std::max(first.open, second.open)};
}
/// A passage repeated `count` times. Each round is a step.
Passage rounds(const Passage& passage, double count) {
    const double ways = std::pow(passage.ways, count);
    const double begun = passage.ways == 1 ? count : (ways - 1) / (passage.ways - 1);
    return capped({ways, (1 + passage.steps) * begun,
                   passage.open * (passage.ways > 0 ? count : std::min(count, 1.0))});
}

struct Part {
    Passage fromStart = kNothing, fromComparison;
};

constexpr Part kCharacter{{}, kNothing};
constexpr Part kAnchor{{1, kStepsOfAnchor, 0}, {}};
/// A reference, which may stand for an empty text.
constexpr Part kReference{{1, kStepsOfAnchor, 0}, kNothing};
constexpr Part kEdgeOfGroup{{1, 1, 0}, {}};

Part sequence(const Part& first, const Part& second) {
    return {inSequence(first.fromStart, second.fromStart),
            larger(inSequence(first.fromComparison, second.fromStart), second.fromComparison)};
}
Part alternatives(const Part& first, const Part& second) {
    return {beside(first.fromStart, second.fromStart), larger(first.fromComparison, second.fromComparison)};
}
Part repeated(const Part& part, double least, bool mayBeMore) {
    const Passage& round = part.fromStart;
    const Passage oneMore = mayBeMore ? beside(kNothing, round) : kNothing;
    if (least == 0) return {oneMore, inSequence(part.fromComparison, oneMore)};
    return {rounds(round, least), inSequence(part.fromComparison, larger(rounds(round, least - 1), oneMore))};
}

enum class Kind { capture, group, assertion };

struct Opening {
    std::wstring_view text;
    Kind kind;
};
constexpr Opening kOpenings[] = {
    {L"(?:", Kind::group}, {L"(?=", Kind::assertion}, {L"(?!", Kind::assertion}, {L"(", Kind::capture}};

/// The part that a group is, its parentheses included.
Part grouped(Kind kind, Part inner) {
    if (kind == Kind::group) return inner;
    if (kind == Kind::capture) return sequence(sequence(kEdgeOfGroup, inner), kEdgeOfGroup);
    inner.fromStart.ways = inner.fromComparison.ways = 1;
    inner.fromStart.steps += kStepsOfAssertion;
    return inner;
}

/// A group that is being read.
struct Group {
    Kind kind = Kind::group;
    std::optional<Part> finished; ///< its finished alternatives
    Part alternative;             ///< this one, up to the last item
    Part last;                    ///< a quantifier after it changes it
};

class Reader {
public:
    explicit Reader(std::wstring_view pattern) : pattern_(pattern) {}

    PatternOutline read() {
        groups_.emplace_back();
        while (position_ < pattern_.size())
            readItem();
        // Groups may still be open if the pattern is malformed; then the bound does not matter.
        const Part whole = endAlternatives();
        const Passage bound = larger(whole.fromStart, whole.fromComparison);
        outline_.open = std::max(bound.open, 1.0);
        outline_.steps = bound.steps;
        return std::move(outline_);
    }

private:
    void readItem() {
        static constexpr struct {
            wchar_t first;
            void (Reader::*read)();
        } kRules[] = {
            {L'\\', &Reader::readEscape},   {L'[', &Reader::readSet},
            {L'(', &Reader::beginGroup},    {L')', &Reader::endGroup},
            {L'|', &Reader::readBar},       {L'*', &Reader::readAnyNumber},
            {L'?', &Reader::readAnyNumber}, {L'+', &Reader::readAtLeastOne},
            {L'{', &Reader::readCounts},    {L'.', &Reader::readAnyCharacter},
            {L'^', &Reader::readStart},     {L'$', &Reader::readEnd},
        };
        for (const auto& [first, read] : kRules)
            if (pattern_[position_] == first) return (this->*read)();
        copy(1);
        addItem(kCharacter);
    }

    void readAnyCharacter() {
        replace(kAnyButLineEnds, kAnyButLineEnds);
        addItem(kCharacter);
    }
    void readStart() {
        replace(L"^", kNever);
        addItem(kAnchor);
    }
    void readEnd() {
        copy(1);
        addItem(kAnchor);
    }

    /// The digits of a reference to a group belong to it; those of any other escape are read as characters.
    void readEscape() {
        copy(1);
        if (position_ == pattern_.size()) return;
        const wchar_t kind = pattern_[position_];
        copy(1);
        const bool isReference = isDigit(kind) && kind != L'0';
        while (isReference && position_ < pattern_.size() && isDigit(pattern_[position_]))
            copy(1);
        addItem(isReference ? kReference : kind == L'b' || kind == L'B' ? kAnchor : kCharacter);
    }

    /// A set in brackets, up to the end that the library finds: where a range may end, "[" is a character.
    void readSet() {
        const std::size_t begin = position_;
        copy(1);
        if (at(L"^")) copy(1);
        while (position_ < pattern_.size() && !at(L"]")) {
            if (at(L"[:") || at(L"[=")) {
                copyNamed();
                continue;
            }
            copyMember();
            if (at(L"-") && !at(L"-]")) {
                copy(1);
                copyMember();
            }
        }
        copy(1);
        addItem({{0, kStepsOfMember * static_cast<double>(position_ - begin), 0}, kNothing});
    }
    void copyMember() {
        if (at(L"[."))
            copyNamed();
        else
            copy(at(L"\\") ? 2 : 1);
    }
    /// "[:alpha:]" and its like.
    void copyNamed() {
        const wchar_t end[] = {pattern_[position_ + 1], L']', L'\0'};
        const std::size_t found = pattern_.find(end, position_ + 2);
        copy(found == std::wstring_view::npos ? pattern_.size() - position_ : found + 2 - position_);
    }

    void beginGroup() {
        const auto& [opening, kind] =
            *std::ranges::find_if(kOpenings, [&](const Opening& each) { return at(each.text); });
        copy(opening.size());
        groups_.emplace_back().kind = kind;
        outline_.depth = std::max(outline_.depth, groups_.size() - 1);
        ++outline_.branches;
    }
    void endGroup() {
        copy(1);
        if (groups_.size() == 1) return; // one ")" too many
        const Part inner = endAlternatives();
        const Kind kind = groups_.back().kind;
        groups_.pop_back();
        addItem(grouped(kind, inner));
    }
    void readBar() {
        copy(1);
        Group& group = groups_.back();
        group.finished = endAlternatives();
        group.alternative = group.last = Part();
        ++outline_.branches;
    }
    /// All alternatives of the innermost group, the last included.
    Part endAlternatives() {
        const Group& group = groups_.back();
        const Part ended = sequence(group.alternative, group.last);
        return group.finished ? alternatives(*group.finished, ended) : ended;
    }
    void addItem(const Part& part) {
        Group& group = groups_.back();
        group.alternative = sequence(group.alternative, group.last);
        group.last = part;
    }

    void readAnyNumber() { repeat(0, true); }
    void readAtLeastOne() { repeat(1, true); }
    void readCounts() {
        double least = 0;
        std::size_t end = position_ + 1;
        for (; end < pattern_.size() && isDigit(pattern_[end]); ++end)
            least = std::min(least * 10 + (pattern_[end] - L'0'), kMost);
        const bool isExact = end < pattern_.size() && pattern_[end] == L'}';
        end = std::min(pattern_.find(L'}', end), pattern_.size() - 1);
        copy(end - position_);
        repeat(least, !isExact);
    }
    void repeat(double least, bool mayBeMore) {
        copy(1);
        if (at(L"?")) copy(1);
        ++outline_.branches;
        ++outline_.repetitions;
        Part& last = groups_.back().last;
        last = repeated(last, least, mayBeMore);
    }

    [[nodiscard]] bool at(std::wstring_view expected) const {
        return pattern_.substr(position_).starts_with(expected);
    }
    /// Takes over the next characters, as many as there are.
    void copy(std::size_t count) {
        const std::wstring_view piece = pattern_.substr(std::min(position_, pattern_.size()), count);
        outline_.atStart += piece;
        outline_.afterStart += piece;
        position_ += piece.size();
    }
    void replace(std::wstring_view atStart, std::wstring_view afterStart) {
        outline_.atStart += atStart;
        outline_.afterStart += afterStart;
        ++position_;
    }

    std::wstring_view pattern_;
    std::size_t position_ = 0;
    std::vector<Group> groups_;
    PatternOutline outline_;
};

} // namespace

PatternOutline outlineOf(std::wstring_view pattern) { return Reader(pattern).read(); }

} // namespace kst
