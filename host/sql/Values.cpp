#include "host/sql/Values.h"

#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <variant>

namespace host {

namespace {

constexpr int fractionDigits = 6;

std::u16string widen(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

/// The shortest decimal number that reads back as the same binary number.
std::optional<Decimal> fromDouble(double value) {
    std::array<char, 64> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return Decimal::parse(widen({digits.data(), end}));
}

std::string isoDate(const DateTime& value) {
    const DateTime::Date date = value.date();
    std::array<char, 48> text{};
    const int size =
        std::snprintf(text.data(), text.size(), "%04d-%02d-%02d", date.year, date.month, date.day);
    return {text.data(), static_cast<std::size_t>(size)};
}

std::string isoTime(const DateTime& value) {
    const long long hour = std::llabs(value.hour());
    const int fraction = std::abs(value.microsecond());
    std::array<char, 64> text{};
    int size = std::snprintf(text.data(), text.size(), "%s%02lld:%02d:%02d", value.micros < 0 ? "-" : "",
                             hour, std::abs(value.minute()), std::abs(value.second()));
    if (fraction != 0)
        size += std::snprintf(text.data() + size, text.size() - static_cast<std::size_t>(size), ".%0*d",
                              fractionDigits, fraction);
    return {text.data(), static_cast<std::size_t>(size)};
}

/// Reads the parts of an ISO date or time from the front of a text.
class IsoReader {
public:
    explicit IsoReader(std::u16string_view text) : rest_(text) {}

    [[nodiscard]] bool atEnd() const { return rest_.empty(); }

    bool take(char16_t wanted) {
        if (rest_.empty() || rest_.front() != wanted) return false;
        rest_.remove_prefix(1);
        return true;
    }

    std::optional<std::int64_t> digits(std::size_t fewest, std::size_t most) {
        std::int64_t value = 0;
        std::size_t count = 0;
        for (; count < most && !rest_.empty() && rest_.front() >= u'0' && rest_.front() <= u'9'; ++count) {
            value = value * 10 + (rest_.front() - u'0');
            rest_.remove_prefix(1);
        }
        if (count < fewest) return std::nullopt;
        return value;
    }

    std::optional<DateTime> date() {
        const auto year = digits(4, 4);
        if (!year || !take(u'-')) return std::nullopt;
        const auto month = digits(2, 2);
        if (!month || !take(u'-')) return std::nullopt;
        const auto day = digits(2, 2);
        if (!day || *month < 1 || *month > 12 || *day < 1 || *day > 31) return std::nullopt;
        const auto value = DateTime::fromDate(*year, *month, *day);
        if (!value || value->date().day != *day) return std::nullopt;
        return value;
    }

    /// [-]H:MM[:SS[.fraction]]
    std::optional<std::int64_t> micros() {
        constexpr std::size_t mostHourDigits = 9;
        constexpr std::int64_t sixty = 60;
        const bool isNegative = take(u'-');
        const auto hour = digits(1, mostHourDigits);
        const auto minute = hour && take(u':') ? digits(2, 2) : std::nullopt;
        if (!minute || *minute >= sixty) return std::nullopt;
        const auto seconds = take(u':') ? secondMicros() : 0;
        if (!seconds) return std::nullopt;
        const std::int64_t total = (*hour * sixty + *minute) * sixty * DateTime::microsPerSecond + *seconds;
        return isNegative ? -total : total;
    }

    /// SS[.fraction]
    std::optional<std::int64_t> secondMicros() {
        const auto second = digits(2, 2);
        if (!second || *second >= 60) return std::nullopt;
        const auto micros = take(u'.') ? fractionMicros() : 0;
        if (!micros) return std::nullopt;
        return *second * DateTime::microsPerSecond + *micros;
    }

    /// Digits after the sixth do not count.
    std::optional<std::int64_t> fractionMicros() {
        const std::size_t before = rest_.size();
        auto fraction = digits(1, fractionDigits);
        if (!fraction) return std::nullopt;
        for (std::size_t place = before - rest_.size(); place < fractionDigits; ++place)
            *fraction *= 10;
        rest_.remove_prefix(std::min(rest_.find_first_not_of(u"0123456789"), rest_.size()));
        return fraction;
    }

private:
    std::u16string_view rest_;
};

/// A value in the store's own types; nothing is NULL. The bytes of a container are its own.
using Stored = std::variant<std::monostate, std::int64_t, double, std::string, std::span<const std::byte>>;

Stored storedNumber(const Decimal& number) {
    const std::int64_t whole = number.toInt64();
    if (number == Decimal(whole)) return whole;
    const double real = number.toDouble();
    if (std::isfinite(real) && fromDouble(real) == number) return real;
    const std::u16string digits = number.text();
    return std::string(digits.begin(), digits.end());
}

Stored stored(const Data& value) {
    const DataType type = value.nativeType();
    switch (type) {
    case DataType::text:
        // UTF-8, because the engine takes a leading U+FEFF of a UTF-16 text for a byte order mark.
        if (!value.asText().empty()) return value.asText().utf8();
        break;
    case DataType::number:
    case DataType::boolean:
        if (const auto number = value.number()) return storedNumber(*number);
        break;
    case DataType::date:
    case DataType::time:
    case DataType::timestamp:
        if (const auto moment = value.dateTime(type)) return sqlText(*moment, type);
        break;
    case DataType::binary:
        if (!value.asBinary().streams().empty()) return value.asBinary().fileBytes();
        break;
    case DataType::invalid: break;
    }
    return {};
}

constexpr const char* kNoBytes = ""; ///< not null, which would be NULL

struct Binder {
    sqlite3_stmt* statement;
    int place;
    int operator()(std::monostate /*nothing*/) const { return sqlite3_bind_null(statement, place); }
    int operator()(std::int64_t number) const { return sqlite3_bind_int64(statement, place, number); }
    int operator()(double number) const { return sqlite3_bind_double(statement, place, number); }
    int operator()(const std::string& text) const {
        return sqlite3_bind_text64(statement, place, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    int operator()(std::span<const std::byte> bytes) const {
        if (bytes.empty()) return sqlite3_bind_zeroblob(statement, place, 0);
        return sqlite3_bind_blob64(statement, place, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
    }
};

struct Giver {
    sqlite3_context* context;
    void operator()(std::monostate /*nothing*/) const { sqlite3_result_null(context); }
    void operator()(std::int64_t number) const { sqlite3_result_int64(context, number); }
    void operator()(double number) const { sqlite3_result_double(context, number); }
    void operator()(const std::string& text) const {
        sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    void operator()(std::span<const std::byte> bytes) const {
        sqlite3_result_blob64(context, bytes.empty() ? static_cast<const void*>(kNoBytes) : bytes.data(),
                              bytes.size(), SQLITE_TRANSIENT);
    }
};

/// Reads UTF-8, the encoding of the tables; for another encoding the engine would convert the stored value.
std::string_view columnText(sqlite3_stmt* statement, int column) {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
    if (bytes == nullptr) return {};
    return {bytes, size};
}

Data columnBytes(sqlite3_stmt* statement, int column) {
    const auto* bytes = static_cast<const std::byte*>(sqlite3_column_blob(statement, column));
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
    Binary container;
    container.add(kFileStream, {bytes, bytes == nullptr ? 0 : size});
    return Data(std::move(container));
}

bool isMoment(DataType type) {
    return type == DataType::date || type == DataType::time || type == DataType::timestamp;
}

Data fromText(std::string_view text, DataType declared) {
    constexpr std::size_t longestMoment = 64;
    if (isMoment(declared) && text.size() <= longestMoment) {
        // The few units of a date need no memory of their own.
        std::array<char16_t, longestMoment> units{};
        std::copy_n(reinterpret_cast<const unsigned char*>(text.data()), text.size(), units.begin());
        if (const auto value = readSqlText({units.data(), text.size()}, declared))
            return Data(*value, declared);
    }
    std::u16string units = fromUtf8(text);
    if (declared == DataType::number)
        if (const auto number = Decimal::parse(units)) return Data(*number);
    return Data(Text(std::move(units)));
}

} // namespace

bool isStoredWhole(const Decimal& number) {
    return !std::holds_alternative<std::string>(storedNumber(number));
}

std::optional<Decimal> storedDecimal(sqlite3_value* value) {
    if (sqlite3_value_type(value) == SQLITE_INTEGER) return Decimal(sqlite3_value_int64(value));
    if (sqlite3_value_type(value) == SQLITE_FLOAT) return fromDouble(sqlite3_value_double(value));
    return std::nullopt;
}

std::string sqlText(const DateTime& value, DataType type) {
    if (type == DataType::date) return isoDate(value);
    if (type == DataType::time) return isoTime(value);
    return isoDate(value) + " " + isoTime(value);
}

std::optional<DateTime> readSqlText(std::u16string_view text, DataType wanted) {
    IsoReader reader(text);
    DateTime value;
    if (wanted != DataType::time) {
        const auto date = reader.date();
        if (!date) return std::nullopt;
        value.days = date->days;
        if (reader.atEnd()) return value;
        if (!reader.take(u' ') && !reader.take(u'T')) return std::nullopt;
    }
    const auto micros = reader.micros();
    if (!micros || !reader.atEnd()) return std::nullopt;
    if (wanted == DataType::time) return DateTime{0, *micros};
    if (*micros < 0 || *micros >= DateTime::microsPerDay) return std::nullopt;
    if (wanted == DataType::timestamp) value.micros = *micros;
    return value;
}

int bindValue(sqlite3_stmt* statement, int place, const Data& value) {
    return std::visit(Binder{statement, place}, stored(value));
}

void giveValue(sqlite3_context* context, const Data& value, DataType type) {
    if (value.nativeType() == type) return std::visit(Giver{context}, stored(value));
    Data converted = value;
    if (!converted.convert(type)) return sqlite3_result_null(context);
    std::visit(Giver{context}, stored(converted));
}

DataType declaredType(const char* declaration) {
    struct Word {
        std::string_view part;
        DataType type;
    };
    // The first word that occurs decides, so longer words stand before words that they contain.
    static constexpr std::array<Word, 14> words{{{"TIMESTAMP", DataType::timestamp},
                                                 {"DATETIME", DataType::timestamp},
                                                 {"DATE", DataType::date},
                                                 {"TIME", DataType::time},
                                                 {"BLOB", DataType::binary},
                                                 {"CONTAINER", DataType::binary},
                                                 {"BINARY", DataType::binary},
                                                 {"INT", DataType::number},
                                                 {"REAL", DataType::number},
                                                 {"FLOA", DataType::number},
                                                 {"DOUB", DataType::number},
                                                 {"NUM", DataType::number},
                                                 {"DEC", DataType::number},
                                                 {"BOOL", DataType::number}}};
    if (declaration == nullptr) return DataType::invalid;
    std::string upper(declaration);
    std::transform(upper.begin(), upper.end(), upper.begin(), [](char letter) {
        return letter >= 'a' && letter <= 'z' ? char(letter - 'a' + 'A') : letter;
    });
    for (const Word& word : words)
        if (upper.find(word.part) != std::string::npos) return word.type;
    return DataType::invalid;
}

Data columnValue(sqlite3_stmt* statement, int column, DataType declared, ValueForm form, std::size_t& bytes) {
    const auto given = [form](const Decimal& number) {
        return form == ValueForm::typed ? Data(number) : Data(Text(number.text()));
    };
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER: return given(Decimal(sqlite3_column_int64(statement, column)));
    case SQLITE_FLOAT:
        if (const auto number = fromDouble(sqlite3_column_double(statement, column))) return given(*number);
        break;
    case SQLITE_BLOB:
        bytes += static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
        return columnBytes(statement, column);
    case SQLITE_TEXT: {
        const std::string_view text = columnText(statement, column);
        bytes += text.size();
        return fromText(text, form == ValueForm::typed ? declared : DataType::text);
    }
    default: break;
    }
    return {};
}

} // namespace host
