#include "host/calc/Arguments.h"
#include "host/calc/BuiltIns.h"
#include "host/calc/Collator.h"
#include "host/calc/Pieces.h"

#include <algorithm>
#include <array>
#include <optional>
#include <unordered_set>
#include <vector>

/// Lists by the order of their values, which are read as one type.

namespace host::calc {

namespace {

/// The types by their numbers in calculations, from 1.
constexpr std::array kTypes{DataType::text, DataType::number, DataType::date, DataType::time,
                            DataType::timestamp};

/// The work of setting up the order of a language.
constexpr std::size_t kCollatorSteps = 100;

/// How the values of a list compare: ( list { ; datatype ; locale } ).
struct Order {
    DataType type = DataType::text;
    bool isDescending = false;
    Collator collator;
};

/// The order that the arguments describe; nothing for an unknown locale.
std::optional<Order> orderOf(Arguments arguments, Collator::Counting counting) {
    Work::charge(kCollatorSteps);
    auto collator =
        Collator::of(arguments.size() > 2 ? arguments[2]->asText().units() : std::u16string_view(), counting);
    if (!collator) return std::nullopt;
    Order order{.collator = std::move(*collator)};
    const std::int64_t wanted = arguments.size() > 1 ? whole(arguments[1]) : 1;
    if (const auto number = static_cast<std::size_t>(std::abs(wanted));
        wanted != 0 && number <= kTypes.size()) {
        order.type = kTypes[number - 1];
        order.isDescending = wanted < 0;
    }
    return order;
}

/// A value as its type reads it. One that has no such reading is known by its text.
struct Reading {
    std::optional<Decimal> number;
    std::string key;

    bool operator<(const Reading& other) const {
        if (number && other.number) return *number < *other.number;
        if (number || other.number) return !number;
        return key < other.key;
    }
};

Reading readingOf(const Order& order, std::u16string_view units) {
    Reading reading;
    if (order.type != DataType::text) {
        const Data value{Text(std::u16string(units))};
        if (order.type == DataType::number)
            reading.number = value.number();
        else if (const auto moment = value.dateTime(order.type))
            reading.number = moment->microsSinceEpoch();
    }
    if (!reading.number) reading.key = order.collator.key(units);
    return reading;
}

struct Entry {
    Piece piece;
    Reading reading;
};

DataRef sortValues(Arguments arguments) {
    const auto order = orderOf(arguments, Collator::Counting::lettersAndAccents);
    if (!order) return questionMark();
    const Text& text = arguments[0]->asText();
    std::vector<Piece> values = valuesOf(text.units());
    Work::charge(values.size());
    std::vector<Entry> entries;
    entries.reserve(values.size());
    for (const Piece& value : values)
        entries.push_back({.piece = value, .reading = readingOf(*order, value.in(text.units()))});
    std::stable_sort(entries.begin(), entries.end(), [&](const Entry& left, const Entry& right) {
        return order->isDescending ? right.reading < left.reading : left.reading < right.reading;
    });
    std::transform(entries.begin(), entries.end(), values.begin(),
                   [](const Entry& entry) { return entry.piece; });
    return valuesResult(text, values);
}

DataRef uniqueValues(Arguments arguments) {
    const auto order = orderOf(arguments, Collator::Counting::letters);
    if (!order) return questionMark();
    const Text& text = arguments[0]->asText();
    std::vector<Piece> values = valuesOf(text.units());
    Work::charge(values.size());
    std::unordered_set<std::u16string> numbers;
    std::unordered_set<std::string> keys;
    const auto isRepeated = [&](const Piece& value) {
        Reading reading = readingOf(*order, value.in(text.units()));
        return reading.number ? !numbers.insert(reading.number->text()).second
                              : !keys.insert(std::move(reading.key)).second;
    };
    values.erase(std::remove_if(values.begin(), values.end(), isRepeated), values.end());
    return valuesResult(text, values);
}

/// The values of the first list that are in the second, without regard to case.
DataRef filterValues(Arguments arguments) {
    const Text& text = arguments[0]->asText();
    const std::u16string_view wanted = arguments[1]->asText().units();
    std::unordered_set<std::u16string> names;
    const std::vector<Piece> wantedValues = valuesOf(wanted);
    std::vector<Piece> values = valuesOf(text.units());
    Work::charge(wantedValues.size() + values.size());
    for (const Piece& value : wantedValues)
        names.insert(foldName(value.in(wanted)));
    const auto isUnwanted = [&](const Piece& value) {
        return !names.contains(foldName(value.in(text.units())));
    };
    values.erase(std::remove_if(values.begin(), values.end(), isUnwanted), values.end());
    return valuesResult(text, values);
}

constexpr std::array rows{
    EagerRow{u"SortValues", sortValues},
    EagerRow{u"UniqueValues", uniqueValues},
    EagerRow{u"FilterValues", filterValues},
};

} // namespace

void addSortFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
