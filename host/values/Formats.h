#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

struct UCollator;

namespace host {

/// How a file writes numbers, dates and times, and in which order it sorts texts.
struct Formats {
    enum class Part : std::uint8_t { day, month, year };

    std::array<Part, 3> dateOrder{Part::month, Part::day, Part::year};
    bool padsDays = false, padsMonths = false; ///< with a zero to two digits
    char16_t dateSeparator = u'/';
    char16_t decimalPoint = u'.';
    /// After the times of timestamps; empty where these run from 0 to 24 hours.
    std::u16string morning = u"AM", afternoon = u"PM";
    std::string locale = "en_US"; ///< ICU's name

    /// Compares two texts in the order of the language, without regard to case. <0, 0, >0.
    [[nodiscard]] int compare(std::u16string_view left, std::u16string_view right) const;

private:
    mutable std::once_flag opening_; ///< of the collator, which few calculations need
    mutable std::shared_ptr<UCollator> collator_;
};

/// The formats of a locale such as "de_DE" or "en-GB"; null for one that is not known. They live as long as
/// the process.
const Formats* formatsOf(std::string_view locale);

/// The formats that values are written and read with: US English until others are set.
const Formats& formats();
/// Sets the formats of the whole process, on every thread.
void setFormats(const Formats& wanted);
/// Sets those of US English.
void resetFormats();

/// Sets other formats as long as it lives.
class FormatsScope {
public:
    explicit FormatsScope(const Formats& wanted) : outer_(formats()) { setFormats(wanted); }
    ~FormatsScope() { setFormats(outer_); }
    FormatsScope(const FormatsScope&) = delete;
    FormatsScope& operator=(const FormatsScope&) = delete;

private:
    const Formats& outer_;
};

} // namespace host
