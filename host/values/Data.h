#pragma once

#include "host/values/Binary.h"
#include "host/values/DateTime.h"
#include "host/values/Decimal.h"
#include "host/values/Text.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <variant>
#include <vector>

namespace host {

struct Locale {
    std::int32_t type = 1; ///< fmx::Locale::Type; 1 is the system's
    bool operator==(const Locale&) const = default;
};

/// The interface's type numbers.
enum class DataType : std::uint8_t { invalid, text, number, date, time, timestamp, binary, boolean };
/// "Text", "Number", "Date", "Time", "Timestamp", "Container", "Boolean", "" for invalid.
std::string_view typeWord(DataType type);

/// A typed value with its locale. Reading it as another type converts; what a reading gives by reference
/// stays valid until the value is changed or gone. A value that cannot be read as that type reads as
/// the type's empty value (empty text, zero, day 0, no streams, false).
class Data {
public:
    Data() = default; ///< empty text
    explicit Data(Text text) : value_(std::move(text)), type_(DataType::text) {}
    explicit Data(Decimal number)
        : value_(std::move(number)), type_(DataType::number), held_(DataType::number) {}
    Data(DateTime value, DataType type) { setDateTime(value, type, type); }
    explicit Data(Binary value)
        : value_(std::make_shared<const Binary>(std::move(value))), type_(DataType::binary),
          held_(DataType::binary) {}
    static Data boolean(bool value) { return Data(Decimal(value ? 1 : 0)); } ///< calculations answer 1 and 0
    static Data invalid();

    [[nodiscard]] DataType nativeType() const { return type_; }
    [[nodiscard]] bool isValid() const { return type_ != DataType::invalid; }
    /// True for no characters, no number, no date, no streams.
    [[nodiscard]] bool isEmpty() const;

    /// The text of a container with data is "?".
    [[nodiscard]] const Text& asText() const;
    /// Appends the same text. A text that must be made is not kept with the value.
    void appendTextTo(Text& text) const;
    /// The positions in the text at which its lines begin: 0, and each position after a return. They are
    /// found once and kept with the value.
    [[nodiscard]] const std::vector<std::uint32_t>& lineStarts() const;
    /// A text's digits and its first decimal point; all else is skipped. It is negative when a minus
    /// stands before the first digit, or parentheses around it, and no point before them ("a-5", "(5)"; "5-"
    /// is 5). An exponent after a digit counts ("2e3"). A text without a digit, or one that would reach
    /// 10^400, has no number and asNumber gives 0. A date is its day number, where 0001-01-01 is 1, a time
    /// its seconds, a timestamp its seconds since 0001-01-01 00:00:00.
    [[nodiscard]] const Decimal& asNumber() const;
    [[nodiscard]] std::optional<Decimal> number() const; ///< the same, nothing when there is no number
    [[nodiscard]] const DateTime& asDate() const;
    [[nodiscard]] const DateTime& asTime() const;
    [[nodiscard]] const DateTime& asTimestamp() const;
    [[nodiscard]] std::optional<DateTime> dateTime(DataType wanted) const; ///< date, time or timestamp
    [[nodiscard]] const Binary& asBinary() const;
    [[nodiscard]] bool asBoolean() const; ///< a number other than zero, or a container with data

    [[nodiscard]] const Locale& locale() const { return locale_; }
    void setLocale(Locale locale) { locale_ = locale; }

    /// Each changes value and type, not the locale. `nativeType` is what the value then says it is.
    void setText(Text text, DataType nativeType = DataType::text);
    void setNumber(Decimal number, DataType nativeType = DataType::number);
    /// A date loses its time and a time its date; a timestamp's time past midnight moves its date.
    void setDateTime(DateTime value, DataType type, DataType nativeType);
    void setBinary(Binary value, bool forceBinaryType = true);
    void clear(DataType type = DataType::invalid);
    /// The text that `asText` gives until the value is changed, for a value that holds no text.
    void showAs(Text text);
    /// Converts in place; false (and unchanged) when there is no such reading. A text without a number
    /// becomes an empty number: one that is held as empty text.
    bool convert(DataType type);

    /// Type, content, styles and locale are the same.
    [[nodiscard]] bool isIdenticalTo(const Data& other) const;

private:
    struct Readings;
    /// Containers are rare, and larger than the others by far.
    using Value = std::variant<Text, Decimal, DateTime, std::shared_ptr<const Binary>>;

    void hold(Value value, DataType held, DataType nativeType);
    Readings& readings() const;
    [[nodiscard]] Text newText() const;
    [[nodiscard]] const DateTime& dateTimeReading(DataType wanted) const;

    Value value_;
    DataType type_ = DataType::text; ///< what it says it is
    DataType held_ = DataType::text; ///< how value_ is read: text, number, date, time, timestamp, binary
    Locale locale_;
    mutable std::shared_ptr<Readings> readings_; ///< conversions made so far
};

/// Values of a calculation are shared, never changed once made.
using DataRef = std::shared_ptr<const Data>;
/// An argument vector and a row of an SQL answer.
using DataVect = std::vector<DataRef>;
using RowVect = std::vector<DataVect>;

} // namespace host
