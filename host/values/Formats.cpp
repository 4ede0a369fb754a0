#include "host/values/Formats.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <stdexcept>
#include <unicode/ucol.h>
#include <unicode/udat.h>
#include <unicode/uloc.h>
#include <unicode/unum.h>
#include <utility>
#include <vector>

namespace host {

namespace {

/// Runs an ICU function that writes units into a buffer.
template<class Write>
std::u16string written(const Write& write) {
    constexpr std::int32_t longest = 100;
    std::u16string buffer(longest, u'\0');
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t size = write(buffer.data(), longest, &status);
    buffer.resize(U_FAILURE(status) ? 0 : static_cast<std::size_t>(std::min(size, longest)));
    return buffer;
}

using DateFormat = std::unique_ptr<UDateFormat, decltype(&udat_close)>;
using NumberFormat = std::unique_ptr<UNumberFormat, decltype(&unum_close)>;

DateFormat shortFormat(const char* locale, UDateFormatStyle time, UDateFormatStyle date) {
    UErrorCode status = U_ZERO_ERROR;
    return {udat_open(time, date, locale, nullptr, 0, nullptr, 0, &status), udat_close};
}

std::u16string patternOf(const UDateFormat* format) {
    return written([format](char16_t* buffer, std::int32_t size, UErrorCode* status) {
        return udat_toPattern(format, 0, buffer, size, status);
    });
}

/// A pattern as "dd.MM.yy": the order of the parts, their widths and the sign between them.
void readDatePattern(std::u16string_view pattern, Formats& formats) {
    constexpr std::u16string_view letters = u"dMy"; // in the order of Formats::Part
    std::vector<Formats::Part> order;
    bool hasSeparator = false;
    for (std::size_t at = 0; at < pattern.size();) {
        const std::size_t letter = letters.find(pattern[at]);
        if (letter == std::u16string_view::npos) {
            if (order.size() == 1 && pattern[at] < 0x80 && !std::exchange(hasSeparator, true))
                formats.dateSeparator = pattern[at];
            ++at;
            continue;
        }
        const std::size_t end = std::min(pattern.find_first_not_of(pattern[at], at), pattern.size());
        order.push_back(static_cast<Formats::Part>(letter));
        if (order.back() == Formats::Part::day) formats.padsDays = end - at > 1;
        if (order.back() == Formats::Part::month) formats.padsMonths = end - at > 1;
        at = end;
    }
    if (order.size() == formats.dateOrder.size())
        std::copy(order.begin(), order.end(), formats.dateOrder.begin());
}

std::u16string halfOfDay(const UDateFormat* format, std::int32_t index) {
    return written([=](char16_t* buffer, std::int32_t size, UErrorCode* status) {
        return udat_getSymbols(format, UDAT_AM_PMS, index, buffer, size, status);
    });
}

char16_t decimalPointOf(const char* locale) {
    UErrorCode status = U_ZERO_ERROR;
    const NumberFormat format(unum_open(UNUM_DECIMAL, nullptr, 0, locale, nullptr, &status), unum_close);
    if (!format) return u'.';
    const std::u16string sign = written([&](char16_t* buffer, std::int32_t size, UErrorCode* problem) {
        return unum_getSymbol(format.get(), UNUM_DECIMAL_SEPARATOR_SYMBOL, buffer, size, problem);
    });
    return sign == u"," ? u',' : u'.';
}

std::shared_ptr<UCollator> collatorOf(const char* locale) {
    UErrorCode status = U_ZERO_ERROR;
    std::shared_ptr<UCollator> collator(ucol_open(locale, &status), ucol_close);
    if (U_FAILURE(status)) throw std::runtime_error("ICU has no collation");
    ucol_setStrength(collator.get(), UCOL_SECONDARY); // accents count, case does not
    return collator;
}

void readFormats(Formats& formats) {
    const char* locale = formats.locale.c_str();
    formats.decimalPoint = decimalPointOf(locale);
    if (const DateFormat date = shortFormat(locale, UDAT_NONE, UDAT_SHORT))
        readDatePattern(patternOf(date.get()), formats);
    const DateFormat time = shortFormat(locale, UDAT_SHORT, UDAT_NONE);
    const bool isHalved = time && patternOf(time.get()).find(u'a') != std::u16string::npos;
    formats.morning = isHalved ? halfOfDay(time.get(), 0) : u"";
    formats.afternoon = isHalved ? halfOfDay(time.get(), 1) : u"";
}

/// The name that ICU gives a locale; empty for one whose language it does not know.
std::string canonical(std::string_view locale) {
    constexpr std::int32_t longest = ULOC_FULLNAME_CAPACITY;
    std::string name(longest, '\0'), language(longest, '\0');
    UErrorCode status = U_ZERO_ERROR;
    const std::string given(locale);
    name.resize(static_cast<std::size_t>(
        std::clamp(uloc_canonicalize(given.c_str(), name.data(), longest, &status), 0, longest)));
    language.resize(static_cast<std::size_t>(
        std::clamp(uloc_getLanguage(name.c_str(), language.data(), longest, &status), 0, longest)));
    if (U_FAILURE(status) || language.empty()) return {};
    for (std::int32_t i = 0; i < uloc_countAvailable(); ++i)
        if (language == uloc_getAvailable(i)) return name;
    return {};
}

std::atomic<const Formats*> gFormats = nullptr; ///< null: US English

} // namespace

const Formats* formatsOf(std::string_view locale) {
    static std::mutex guard;
    static std::map<std::string, Formats> known;
    const std::string name = canonical(locale);
    if (name.empty()) return nullptr;
    const std::lock_guard lock(guard);
    const auto [row, isNew] = known.try_emplace(name);
    if (isNew) {
        row->second.locale = name;
        readFormats(row->second);
    }
    return &row->second;
}

const Formats& formats() {
    static const Formats usEnglish;
    const Formats* set = gFormats.load(std::memory_order_acquire);
    return set != nullptr ? *set : usEnglish;
}

void setFormats(const Formats& wanted) { gFormats.store(&wanted, std::memory_order_release); }

void resetFormats() { gFormats.store(nullptr, std::memory_order_release); }

int Formats::compare(std::u16string_view left, std::u16string_view right) const {
    if (left == right) return 0;
    // ICU takes no null pointer, which an empty view may hold.
    if (left.empty() || right.empty())
        return static_cast<int>(right.empty()) - static_cast<int>(left.empty());
    std::call_once(opening_, [this] { collator_ = collatorOf(locale.c_str()); });
    return ucol_strcoll(collator_.get(), left.data(), static_cast<std::int32_t>(left.size()), right.data(),
                        static_cast<std::int32_t>(right.size()));
}

} // namespace host
