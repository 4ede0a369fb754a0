#include "host/values/Text.h"

#include "host/values/Encoding.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace host {

namespace {

constexpr std::size_t mostUnits = 0x7FFFFFFF;

const RunStyle defaultLook{};

/// The run that holds a position (the last one that starts at or before it).
template<class Runs>
auto runAt(Runs& runs, std::uint32_t position) {
    return std::prev(std::upper_bound(runs.begin(), runs.end(), position,
                                      [](std::uint32_t at, const Text::Run& run) { return at < run.start; }));
}

void checkSize(std::size_t units) {
    if (units > mostUnits) throw std::length_error("a text would outgrow 2^31 units");
}

} // namespace

Text::Text(std::u16string units, const RunStyle& look) : units_(std::move(units)) {
    checkSize(units_.size());
    if (!units_.empty()) runs_.push_back({0, look});
}

Text Text::fromUtf8(std::string_view bytes) { return {host::fromUtf8(bytes)}; }
std::string Text::utf8() const { return toUtf8(units_); }

bool Text::isPlain() const {
    return runs_.empty() || (runs_.size() == 1 && runs_.front().look == defaultLook);
}

const RunStyle& Text::lookAt(std::uint32_t position) const {
    return position < size() ? runAt(runs_, position)->look : defaultLook;
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
    for (auto run = runAt(source.runs_, position); run != source.runs_.end() && run->start < position + size;
         ++run)
        if (runs_.empty() || runs_.back().look != run->look)
            runs_.push_back({base + std::max(run->start, position) - position, run->look});
}

void Text::append(std::u16string_view units, const RunStyle& look) {
    if (units.empty()) return;
    checkSize(units_.size() + units.size());
    if (runs_.empty() || runs_.back().look != look) runs_.push_back({size(), look});
    units_.append(units);
}

void Text::insert(const Text& source, std::uint32_t position) {
    if (position >= size()) return append(source);
    Text whole = substring(0, position);
    whole.append(source);
    whole.append(*this, position);
    *this = std::move(whole);
}

void Text::erase(std::uint32_t position, std::uint32_t size) {
    if (position >= this->size() || size == 0) return;
    size = std::min(size, this->size() - position);
    const Text tail = substring(position + size);
    units_.resize(position);
    while (!runs_.empty() && runs_.back().start >= position)
        runs_.pop_back();
    append(tail);
}

template<class Change>
void Text::changeRange(std::uint32_t position, std::uint32_t size, const Change& change) {
    if (position >= this->size() || size == 0) return;
    size = std::min(size, this->size() - position);
    const std::uint32_t stop = position + size;
    std::vector<Run> changed;
    changed.reserve(runs_.size() + 2);
    const auto add = [&](std::uint32_t start, const RunStyle& look) {
        if (changed.empty() || changed.back().look != look) changed.push_back({start, look});
    };
    for (std::size_t i = 0; i < runs_.size(); ++i) {
        const std::uint32_t start = runs_[i].start;
        const std::uint32_t runEnd = i + 1 < runs_.size() ? runs_[i + 1].start : this->size();
        if (start < position) add(start, runs_[i].look);
        if (runEnd > position && start < stop) {
            RunStyle look = runs_[i].look;
            change(look);
            add(std::max(start, position), look);
        }
        if (runEnd > stop) add(std::max(start, stop), runs_[i].look);
    }
    runs_ = std::move(changed);
}

void Text::applyStyle(const CharacterStyle& style, std::uint32_t position, std::uint32_t size) {
    changeRange(position, size, [&](RunStyle& look) { look.style.apply(style); });
}

void Text::removeStyle(const CharacterStyle& style) {
    changeRange(0, end, [&](RunStyle& look) { look.style.remove(style); });
}

void Text::removeAllStyles() {
    changeRange(0, end, [](RunStyle& look) { look.style.disableAll(); });
}

void Text::setAlignment(Alignment alignment, std::uint32_t position, std::uint32_t size) {
    changeRange(position, size, [&](RunStyle& look) { look.alignment = alignment; });
}

std::uint32_t Text::find(const Text& wanted, std::uint32_t position) const {
    if (wanted.empty()) return end;
    const std::size_t found = units_.find(wanted.units_, position);
    return found == std::u16string::npos ? end : static_cast<std::uint32_t>(found);
}

std::uint32_t Text::findBackward(const Text& wanted, std::uint32_t position) const {
    if (wanted.empty()) return end;
    const std::size_t found = units_.rfind(wanted.units_, position);
    return found == std::u16string::npos ? end : static_cast<std::uint32_t>(found);
}

} // namespace host
