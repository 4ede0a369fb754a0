#include "patterns/PatternOutline.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace kst {
namespace {

constexpr std::wstring_view kAnyButLineEnds = L"[^\n\r\u2028\u2029]";
constexpr std::wstring_view kNever = L"(?!)";

constexpr double kMostWays = 1e18;

double capped(double ways) { return std::min(ways, kMostWays); }

bool isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

/// What stands between two others: a character, a set, a group, with its quantifier.
struct Item {
    double ways = 1; ///< how it can be passed without comparing a character
    double open = 0; ///< alternatives that it leaves open while it is passed
};

/// A group that is being read.
struct Group {
    double finishedWays = 0; ///< of its finished alternatives
    double ways = 1;         ///< of this one, up to the last item
    Item sinceLastRead;      ///< the same, but from the last item on that compares a character
    Item last;               ///< a quantifier behind it changes it
    double mostOpen = 0;
    double bars = 0;
    bool isAssertion = false;
};

class Reader {
public:
    explicit Reader(std::wstring_view pattern) : pattern_(pattern) {}

    PatternOutline read() {
        groups_.emplace_back();
        while (position_ < pattern_.size())
            readItem();
        endAlternative();
        // Groups may be open still if the pattern is malformed; then it does not matter.
        outline_.openPerCharacter = std::max(openIn(groups_.front()), 1.0);
        return std::move(outline_);
    }

private:
    void readItem() {
        switch (pattern_[position_]) {
        case L'\\': readEscape(); break;
        case L'[': readSet(); break;
        case L'(': beginGroup(); break;
        case L')': endGroup(); break;
        case L'|':
            copy(1);
            endAlternative();
            ++groups_.back().bars;
            ++outline_.branches;
            break;
        case L'*':
        case L'?': repeat(0, true); break;
        case L'+': repeat(1, true); break;
        case L'{': readCounts(); break;
        case L'.':
            replace(kAnyButLineEnds, kAnyButLineEnds);
            addItem(0);
            break;
        case L'^':
            replace(L"^", kNever);
            addItem(1);
            break;
        case L'$':
            copy(1);
            addItem(1);
            break;
        default: copy(1); addItem(0);
        }
    }

    /// The digits of an escape that has some are read as characters of their own; only a reference to a
    /// group needs them, since it may stand for an empty text.
    void readEscape() {
        copy(1);
        if (position_ == pattern_.size()) return;
        const wchar_t kind = pattern_[position_];
        copy(1);
        const bool isReference = isDigit(kind) && kind != L'0';
        while (isReference && position_ < pattern_.size() && isDigit(pattern_[position_]))
            copy(1);
        addItem(isReference || kind == L'b' || kind == L'B' ? 1 : 0);
    }

    /// A set in brackets, to its end as the library sees it: where a range may end, "[" is a character.
    void readSet() {
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
        addItem(0);
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
        const bool isAssertion = at(L"(?=") || at(L"(?!");
        copy(isAssertion || at(L"(?:") ? 3 : 1);
        groups_.emplace_back().isAssertion = isAssertion;
        outline_.depth = std::max(outline_.depth, groups_.size() - 1);
        ++outline_.branches;
    }
    void endGroup() {
        copy(1);
        endAlternative();
        if (groups_.size() == 1) return; // one ")" too many
        const Group group = groups_.back();
        groups_.pop_back();
        addItem(group.isAssertion ? 1 : group.finishedWays, openIn(group));
    }
    static double openIn(const Group& group) { return group.mostOpen + group.bars; }

    void readCounts() {
        double least = 0;
        std::size_t end = position_ + 1;
        for (; end < pattern_.size() && isDigit(pattern_[end]); ++end)
            least = capped(least * 10 + (pattern_[end] - L'0'));
        const bool isExact = end < pattern_.size() && pattern_[end] == L'}';
        end = std::min(pattern_.find(L'}', end), pattern_.size() - 1);
        copy(end - position_);
        repeat(least, !isExact);
    }
    /// Rounds beyond the least number end as soon as one compares nothing.
    void repeat(double least, bool mayBeMore) {
        copy(1);
        if (at(L"?")) copy(1);
        ++outline_.branches;
        ++outline_.repetitions;
        Item& item = groups_.back().last;
        const bool isReading = item.ways == 0;
        item.open = (isReading ? item.open : capped(item.open * std::max(least, 1.0))) + 1;
        if (isReading && least > 0) return;
        if (!isReading) noteWays(least);
        const double more = mayBeMore ? 1 + item.ways : 1;
        item.ways = least > 0 ? capped(std::pow(item.ways, least) * more) : more;
    }

    void addItem(double ways, double open = 0) {
        Group& group = groups_.back();
        finishItem(group);
        group.last = {ways, open};
    }
    void finishItem(Group& group) {
        const Item& last = group.last;
        group.ways = capped(group.ways * last.ways);
        if (last.ways == 0)
            group.sinceLastRead = {1, last.open};
        else
            group.sinceLastRead = {capped(group.sinceLastRead.ways * last.ways),
                                   capped(group.sinceLastRead.open + last.open)};
        group.mostOpen = std::max(group.mostOpen, group.sinceLastRead.open);
        noteWays(group.sinceLastRead.ways);
    }
    void endAlternative() {
        Group& group = groups_.back();
        finishItem(group);
        group.finishedWays = capped(group.finishedWays + group.ways);
        noteWays(group.finishedWays);
        group.ways = 1;
        group.sinceLastRead = group.last = Item();
    }
    void noteWays(double ways) { outline_.waysWithoutReading = std::max(outline_.waysWithoutReading, ways); }

    [[nodiscard]] bool at(std::wstring_view expected) const {
        return pattern_.substr(position_).starts_with(expected);
    }
    /// Takes over the next characters, as many as there are.
    void copy(std::size_t count) {
        const std::wstring_view piece = pattern_.substr(std::min(position_, pattern_.size()), count);
        outline_.atStart += piece;
        outline_.behindStart += piece;
        position_ += piece.size();
    }
    void replace(std::wstring_view atStart, std::wstring_view behindStart) {
        outline_.atStart += atStart;
        outline_.behindStart += behindStart;
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
