#include "host/values/Data.h"

#include "host/values/Formats.h"

#include <algorithm>
#include <array>
#include <utility>

namespace host {

namespace {

constexpr std::array<std::string_view, 8> typeWords{"",     "Text",      "Number",    "Date",
                                                    "Time", "Timestamp", "Container", "Boolean"};

bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

/// The exponent that stands directly after a digit, "e-5", empty where none stands. More than three digits
/// are no exponent: no number is so large or small.
std::u16string_view exponentAt(std::u16string_view rest) {
    constexpr std::size_t mostDigits = 3;
    if (!rest.starts_with(u'e') && !rest.starts_with(u'E')) return {};
    const std::size_t sign = rest.size() > 1 && (rest[1] == u'-' || rest[1] == u'+') ? 1 : 0;
    std::size_t end = 1 + sign;
    while (end < rest.size() && isDigit(rest[end]))
        ++end;
    const std::size_t digits = end - 1 - sign;
    return digits == 0 || digits > mostDigits ? std::u16string_view() : rest.substr(0, end);
}

/// Whether the first digit of a text has a minus before it or stands in parentheses. Both count only without
/// a point before them.
bool isNegative(std::u16string_view text, char16_t point) {
    bool isOpen = false, hasPoint = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char16_t unit = text[at];
        if (unit == u'-' && !hasPoint) return true;
        if (isDigit(unit)) return isOpen && text.find(u')', at) != std::u16string_view::npos;
        if (unit == u'(' || unit == u')') isOpen = unit == u'(' && !hasPoint;
        hasPoint = hasPoint || unit == point;
    }
    return false;
}

/// The digits and the first decimal point; the rest is skipped, and so are digits after the 800th.
std::optional<Decimal> numberIn(std::u16string_view text) {
    constexpr std::size_t mostDigits = 800;
    const char16_t point = formats().decimalPoint;
    std::u16string digits;
    bool hasPoint = false, hasDigit = false;
    for (std::size_t at = 0; at < text.size() && digits.size() <= mostDigits; ++at) {
        if (isDigit(text[at])) {
            digits += text[at];
            hasDigit = true;
            const std::u16string_view exponent = exponentAt(text.substr(at + 1));
            if (exponent.empty()) continue;
            digits += exponent;
            break;
        }
        if (text[at] != point || std::exchange(hasPoint, true)) continue;
        digits += u'.';
    }
    if (!hasDigit) return std::nullopt;
    if (isNegative(text, point)) digits.insert(0, 1, u'-');
    return Decimal::parse(digits);
}

/// The number as the file writes numbers.
std::u16string textOf(const Decimal& number) {
    std::u16string text = number.text();
    if (formats().decimalPoint != u'.') std::replace(text.begin(), text.end(), u'.', formats().decimalPoint);
    return text;
}

/// A reference to a file is its name. Data itself has no text.
const Text& textOf(const Binary& container) {
    static const Text none(u"?");
    return container.streams().empty() ? container.fileName() : none;
}

Decimal secondsOf(std::int64_t micros) {
    return Decimal(micros).dividedBy(Decimal(DateTime::microsPerSecond)).value_or(Decimal());
}

/// std::nullopt for seconds beyond those of all values.
std::optional<std::int64_t> microsOf(const Decimal& seconds) {
    constexpr std::int64_t most = (DateTime::lastDay + 1) * 86'400;
    if (seconds > Decimal(most) || seconds < Decimal(-most)) return std::nullopt;
    return seconds.times(Decimal(DateTime::microsPerSecond)).rounded(0).toInt64();
}

std::optional<DateTime> dateTimeOf(const Decimal& number, DataType wanted) {
    if (wanted == DataType::date) {
        const DateTime day = DateTime::fromDayNumber(number.toInt64());
        return day.hasValidDate() ? std::optional(day) : std::nullopt;
    }
    const auto micros = microsOf(number);
    if (!micros) return std::nullopt;
    if (wanted == DataType::time) return DateTime{.days = 0, .micros = *micros};
    const DateTime moment = DateTime::fromMicrosSinceEpoch(*micros);
    return moment.hasValidDate() ? std::optional(moment) : std::nullopt;
}

std::optional<DateTime> dateTimeIn(std::u16string_view text, DataType wanted) {
    switch (wanted) {
    case DataType::date: {
        if (const auto date = DateTime::parseDate(text)) return date;
        const auto moment = DateTime::parseTimestamp(text);
        return moment ? std::optional(DateTime{.days = moment->days, .micros = 0}) : std::nullopt;
    }
    case DataType::time: {
        if (const auto time = DateTime::parseTime(text)) return time;
        if (DateTime::parseDate(text)) return std::nullopt; // as a timestamp it would be midnight
        const auto moment = DateTime::parseTimestamp(text);
        return moment ? std::optional(DateTime{.days = 0, .micros = moment->micros}) : std::nullopt;
    }
    default: {
        const auto moment = DateTime::parseTimestamp(text);
        return moment ? moment : DateTime::parseDate(text); // a date with blanks between its parts
    }
    }
}

bool isDateTime(DataType type) {
    return type == DataType::date || type == DataType::time || type == DataType::timestamp;
}

} // namespace

std::string_view typeWord(DataType type) {
    const auto index = static_cast<std::size_t>(type);
    return index < typeWords.size() ? typeWords[index] : std::string_view();
}

/// Conversions that have been asked for, kept so that references to them stay good. Most are texts of numbers
/// and dates, so the others have memory of their own.
struct Data::Readings {
    struct Others {
        std::optional<Decimal> number;
        std::array<std::optional<DateTime>, 3> dateTimes; ///< date, time, timestamp
        std::vector<std::uint32_t> lineStarts;            ///< empty: not asked for yet
    };
    Others& others() {
        if (!rare) rare = std::make_unique<Others>();
        return *rare;
    }

    std::optional<Text> text;
    std::unique_ptr<Others> rare;
};

Data Data::invalid() {
    Data data;
    data.clear(DataType::invalid);
    return data;
}

Data::Readings& Data::readings() const {
    if (!readings_) readings_ = std::make_shared<Readings>();
    return *readings_;
}

bool Data::isEmpty() const {
    switch (held_) {
    case DataType::text: return std::get<Text>(value_).empty();
    case DataType::binary: {
        const Binary& binary = asBinary();
        return binary.streams().empty() && binary.fileName().empty();
    }
    default: return false;
    }
}

const Text& Data::asText() const {
    if (held_ == DataType::text) return std::get<Text>(value_);
    if (held_ == DataType::binary) return textOf(asBinary());
    auto& reading = readings().text;
    if (!reading) reading = newText();
    return *reading;
}

/// The text of a value that is neither a text nor a container.
Text Data::newText() const {
    if (held_ == DataType::number) return Text(textOf(std::get<Decimal>(value_)));
    const auto& value = std::get<DateTime>(value_);
    if (held_ == DataType::date) return Text(value.dateText());
    return Text(held_ == DataType::time ? value.timeText() : value.timestampText());
}

void Data::appendTextTo(Text& text) const {
    const bool isThere =
        held_ == DataType::text || held_ == DataType::binary || (readings_ && readings_->text);
    isThere ? text.append(asText()) : text.append(newText());
}

const std::vector<std::uint32_t>& Data::lineStarts() const {
    std::vector<std::uint32_t>& starts = readings().others().lineStarts;
    if (starts.empty()) {
        const std::u16string_view units = asText().units();
        starts.push_back(0);
        for (std::size_t end = units.find(u'\r'); end != std::u16string_view::npos;
             end = units.find(u'\r', end + 1))
            starts.push_back(static_cast<std::uint32_t>(end + 1));
    }
    return starts;
}

std::optional<Decimal> Data::number() const {
    switch (held_) {
    case DataType::text: return numberIn(std::get<Text>(value_).units());
    case DataType::number: return std::get<Decimal>(value_);
    case DataType::date: return Decimal(std::get<DateTime>(value_).dayNumber());
    case DataType::time: return secondsOf(std::get<DateTime>(value_).micros);
    case DataType::timestamp: return secondsOf(std::get<DateTime>(value_).microsSinceEpoch());
    default: return std::nullopt;
    }
}

const Decimal& Data::asNumber() const {
    if (held_ == DataType::number) return std::get<Decimal>(value_);
    auto& reading = readings().others().number;
    if (!reading) reading = number().value_or(Decimal());
    return *reading;
}

std::optional<DateTime> Data::dateTime(DataType wanted) const {
    if (!isDateTime(wanted)) return std::nullopt;
    if (held_ == wanted) return std::get<DateTime>(value_);
    if (held_ == DataType::text) return dateTimeIn(std::get<Text>(value_).units(), wanted);
    if (held_ == DataType::number) return dateTimeOf(std::get<Decimal>(value_), wanted);
    if (held_ == DataType::binary) return std::nullopt;
    const DateTime& value = std::get<DateTime>(value_);
    if (held_ == DataType::timestamp)
        return wanted == DataType::date ? DateTime{.days = value.days, .micros = 0}
                                        : DateTime{.days = 0, .micros = value.micros};
    if (held_ == DataType::date && wanted == DataType::timestamp) return value;
    return std::nullopt;
}

const DateTime& Data::dateTimeReading(DataType wanted) const {
    if (held_ == wanted) return std::get<DateTime>(value_);
    auto& reading = readings().others().dateTimes[static_cast<std::size_t>(wanted) -
                                                  static_cast<std::size_t>(DataType::date)];
    if (!reading) reading = dateTime(wanted).value_or(DateTime());
    return *reading;
}

const DateTime& Data::asDate() const { return dateTimeReading(DataType::date); }
const DateTime& Data::asTime() const { return dateTimeReading(DataType::time); }
const DateTime& Data::asTimestamp() const { return dateTimeReading(DataType::timestamp); }

const Binary& Data::asBinary() const {
    static const Binary none;
    const auto* binary = std::get_if<std::shared_ptr<const Binary>>(&value_);
    return binary != nullptr && *binary ? **binary : none;
}

bool Data::asBoolean() const {
    if (held_ == DataType::binary) return !isEmpty();
    const auto value = number();
    return value && !value->isZero();
}

void Data::hold(Value value, DataType held, DataType nativeType) {
    value_ = std::move(value);
    held_ = held;
    type_ = nativeType;
    readings_.reset();
}

void Data::setText(Text text, DataType nativeType) { hold(std::move(text), DataType::text, nativeType); }
void Data::setNumber(Decimal number, DataType nativeType) {
    hold(std::move(number), DataType::number, nativeType);
}

void Data::setDateTime(DateTime value, DataType type, DataType nativeType) {
    if (type == DataType::date) value.micros = 0;
    if (type == DataType::time) value.days = 0;
    // A time past midnight belongs to another day, as far as the calendar goes.
    if (value.hasValidDate() && (!isDateTime(type) || type == DataType::timestamp))
        if (const auto moment = DateTime::fromMicrosSinceEpoch(value.microsSinceEpoch());
            moment.hasValidDate())
            value = moment;
    hold(value, isDateTime(type) ? type : DataType::timestamp, nativeType);
}

void Data::setBinary(Binary value, bool forceBinaryType) {
    hold(std::make_shared<const Binary>(std::move(value)), DataType::binary,
         forceBinaryType ? DataType::binary : type_);
}

void Data::showAs(Text text) { readings().text = std::move(text); }

void Data::clear(DataType type) { hold(Text(), DataType::text, type); }

bool Data::convert(DataType type) {
    if (type != DataType::invalid && typeWord(type).empty()) return false;
    if (type == DataType::text) {
        setText(Text(asText()));
    } else if (isDateTime(type)) {
        const auto value = dateTime(type);
        if (!value) return false;
        setDateTime(*value, type, type);
    } else if (type == DataType::boolean) {
        setNumber(Decimal(asBoolean() ? 1 : 0), DataType::boolean);
    } else if (type == DataType::number) {
        // A text without a number is an empty number.
        auto value = number();
        value ? setNumber(std::move(*value)) : clear(DataType::number);
    } else if (type == DataType::binary && held_ != DataType::binary) {
        return false;
    } else {
        type_ = type;
    }
    return true;
}

bool Data::isIdenticalTo(const Data& other) const {
    if (type_ != other.type_ || held_ != other.held_ || !(locale_ == other.locale_)) return false;
    if (held_ == DataType::text) return std::get<Text>(value_).isIdenticalTo(std::get<Text>(other.value_));
    if (held_ == DataType::binary) return asBinary() == other.asBinary();
    return value_ == other.value_;
}

} // namespace host
