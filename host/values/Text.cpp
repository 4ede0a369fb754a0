#include "host/values/Text.h"

#include "host/values/Encoding.h"
#include "host/values/Search.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace host {

namespace {

constexpr std::size_t kMostUnits = 0x7FFFFFFF;

/// The run that holds a position (the last one that starts at or before it).
template<class Runs>
auto runAt(Runs&& runs, std::uint32_t position) {
    return std::prev(std::upper_bound(runs.begin(), runs.end(), position,
                                      [](std::uint32_t at, const Text::Run& run) { return at < run.start; }));
}

/// Adds a run unless it continues the last one.
void addTo(std::vector<Text::Run>& runs, std::uint32_t start, const RunStyle& formatting) {
    if (runs.empty() || runs.back().formatting != formatting) runs.push_back({start, formatting});
}

/// Puts `with`, which covers the same units, in the place of the runs from `first` up to `last`, and joins
/// what is alike at both seams. Runs elsewhere are only moved, so that styling a text piece by piece stays
/// cheap.
void replaceRuns(std::vector<Text::Run>& runs, std::ptrdiff_t first, std::ptrdiff_t last,
                 std::vector<Text::Run> with) {
    const auto begin = runs.begin();
    if (last < std::ssize(runs) && begin[last].formatting == with.back().formatting) ++last;
    if (first > 0 && begin[first - 1].formatting == with.front().formatting) with.erase(with.begin());
    const std::ptrdiff_t kept = std::min(std::ssize(with), last - first);
    const auto at = std::copy_n(with.begin(), kept, begin + first);
    if (kept < last - first)
        runs.erase(at, begin + last);
    else
        runs.insert(at, with.begin() + kept, with.end());
}

void checkSize(std::size_t units) {
    if (units > kMostUnits) throw std::length_error("a text would outgrow 2^31 units");
}

} // namespace

const Text::Run Text::plainRun{};

Text::Text(std::u16string units) : units_(std::move(units)) { checkSize(units_.size()); }

Text::Text(std::u16string units, const RunStyle& formatting) : Text(std::move(units)) {
    if (!empty()) addRun(0, formatting);
}

Text Text::fromUtf8(std::string_view bytes) { return {host::fromUtf8(bytes)}; }
std::string Text::utf8() const { return toUtf8(units_); }

const RunStyle& Text::formattingAt(std::uint32_t position) const {
    return position < size() ? runAt(runs(), position)->formatting : plainRun.formatting;
}

/// Adds a run at the end of the text, unless it continues the last one.
void Text::addRun(std::uint32_t start, const RunStyle& formatting) {
    if (!runs_) {
        if (formatting == plainRun.formatting) return;
        runs_.reset(new std::vector<Run>(start > 0 ? 1 : 0, plainRun));
    }
    addTo(*runs_, start, formatting);
}

/// Calls `change` with the runs of a text that is not empty, the default formatting among them.
template<class Change>
void Text::changeRuns(const Change& change) {
    if (!runs_) runs_.reset(new std::vector<Run>(1, plainRun));
    change(*runs_);
    leaveOutPlain();
}

/// One run of the default formatting is not kept.
void Text::leaveOutPlain() {
    if (runs_->empty() || (runs_->size() == 1 && runs_->front() == plainRun)) runs_.reset();
}

Text Text::substring(std::uint32_t position, std::uint32_t size) const {
    Text result;
    result.append(*this, position, size);
    return result;
}

void Text::append(const Text& source, std::uint32_t position, std::uint32_t size) {
    if (&source == this) return append(Text(source), position, size);
    if (position >= source.size() || size == 0) return;
    size = std::min(size, source.size() - position);
    checkSize(units_.size() + size);
    const std::uint32_t base = this->size();
    units_.append(source.units_, position, size);
    if (isPlain() && source.isPlain()) return;
    const std::span<const Run> runs = source.runs();
    if (runs.size() == 1) return addRun(base, runs.front().formatting);
    for (auto run = runAt(runs, position); run != runs.end() && run->start < position + size; ++run)
        addRun(base + std::max(run->start, position) - position, run->formatting);
}

void Text::append(std::u16string_view units, const RunStyle& formatting) {
    if (units.empty()) return;
    checkSize(units_.size() + units.size());
    const std::uint32_t base = size();
    units_.append(units);
    addRun(base, formatting);
}

void Text::insert(const Text& source, std::uint32_t position) {
    if (position >= size()) return append(source);
    if (source.empty()) return;
    if (&source == this) return insert(Text(source), position);
    checkSize(units_.size() + source.units_.size());
    units_.insert(position, source.units_);
    changeRuns([&](std::vector<Run>& runs) {
        const auto split = runAt(runs, position);
        std::vector<Run> around;
        around.reserve(source.runs().size() + 2);
        if (split->start < position) around.push_back(*split);
        for (const Run& run : source.runs())
            addTo(around, position + run.start, run.formatting);
        addTo(around, position + source.size(), split->formatting);
        std::for_each(std::next(split), runs.end(), [&](Run& run) { run.start += source.size(); });
        const std::ptrdiff_t index = split - runs.begin();
        replaceRuns(runs, index, index + 1, std::move(around));
    });
}

void Text::erase(std::uint32_t position, std::uint32_t size) {
    if (position >= this->size() || size == 0) return;
    size = std::min(size, this->size() - position);
    const Text tail = substring(position + size);
    units_.resize(position);
    if (runs_) {
        while (!runs_->empty() && runs_->back().start >= position)
            runs_->pop_back();
        leaveOutPlain();
    }
    append(tail);
}

template<class Change>
void Text::changeRange(std::uint32_t position, std::uint32_t size, const Change& change) {
    if (position >= this->size() || size == 0) return;
    size = std::min(size, this->size() - position);
    const std::uint32_t stop = position + size;
    changeRuns([&](std::vector<Run>& runs) {
        const auto first = runAt(runs, position);
        const auto last = std::next(runAt(runs, stop - 1));
        std::vector<Run> changed;
        if (first->start < position) changed.push_back(*first);
        for (auto run = first; run != last; ++run) {
            RunStyle formatting = run->formatting;
            change(formatting);
            addTo(changed, std::max(run->start, position), formatting);
        }
        const std::uint32_t lastEnd = last == runs.end() ? this->size() : last->start;
        if (stop < lastEnd) addTo(changed, stop, std::prev(last)->formatting);
        replaceRuns(runs, first - runs.begin(), last - runs.begin(), std::move(changed));
    });
}

void Text::applyStyle(const CharacterStyle& style, std::uint32_t position, std::uint32_t size) {
    changeRange(position, size, [&](RunStyle& formatting) { formatting.style.apply(style); });
}

void Text::removeStyle(const CharacterStyle& style) {
    changeRange(0, end, [&](RunStyle& formatting) { formatting.style.remove(style); });
}

void Text::removeAllStyles() {
    changeRange(0, end, [](RunStyle& formatting) { formatting.style.disableAll(); });
}

void Text::setAlignment(Alignment alignment, std::uint32_t position, std::uint32_t size) {
    changeRange(position, size, [&](RunStyle& formatting) { formatting.alignment = alignment; });
}

std::uint32_t Text::find(const Text& wanted, std::uint32_t position) const {
    const std::size_t found = findUnits(units_, wanted.units_, position);
    return found == std::u16string::npos ? end : static_cast<std::uint32_t>(found);
}

std::uint32_t Text::findBackward(const Text& wanted, std::uint32_t position) const {
    if (wanted.empty()) return end;
    const std::size_t found = units_.rfind(wanted.units_, position);
    return found == std::u16string::npos ? end : static_cast<std::uint32_t>(found);
}

} // namespace host
