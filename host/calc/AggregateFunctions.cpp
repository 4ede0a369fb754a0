#include "host/calc/Aggregates.h"
#include "host/calc/BuiltIns.h"
#include "host/calc/Operators.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

/// Functions over several values, of which the empty ones never count.

namespace host::calc {

namespace {

using Arguments = std::span<const DataRef>;

/// The values that the arguments stand for together, without the empty ones.
DataVect valuesOf(Arguments arguments) {
    DataVect values;
    std::copy_if(arguments.begin(), arguments.end(), std::back_inserter(values),
                 [](const DataRef& value) { return !value->isEmpty(); });
    return values;
}

bool isAnyInvalid(const DataVect& values) {
    return std::any_of(values.begin(), values.end(), [](const DataRef& value) { return !value->isValid(); });
}

DataRef count(Arguments arguments) { return numberResult(std::ssize(valuesOf(arguments))); }

DataRef list(Arguments arguments) {
    Text result;
    for (const DataRef& value : valuesOf(arguments)) {
        if (!result.empty()) result.append(std::u16string_view(u"\r"));
        result.append(value->asText());
        checkTextSize(result.size());
    }
    return textResult(std::move(result));
}

/// The first value that no other is `beyond`, as it is. Values of several types compare as the operators do.
template<Operator beyond>
DataRef outermost(Arguments arguments) {
    const DataVect values = valuesOf(arguments);
    if (values.empty()) return emptyResult();
    if (isAnyInvalid(values)) return questionMark();
    return *std::min_element(values.begin(), values.end(), [](const DataRef& left, const DataRef& right) {
        return applyOperator(beyond, *left, *right, Decimal::minimumPrecision)->asBoolean();
    });
}

/// Numbers that are added up without loss.
struct Sums {
    Decimal sum, squares; ///< with as many places as there can be
    std::int64_t count = 0;
    int precision = Decimal::minimumPrecision; ///< the highest of the numbers
};

Sums sumsOf(const DataVect& values, bool withSquares) {
    Sums sums;
    for (const DataRef& value : values) {
        Decimal number = value->asNumber();
        sums.precision = std::max(sums.precision, number.precision());
        number.setPrecision(Decimal::maximumPrecision);
        sums.sum = sums.sum.plus(number);
        if (withSquares) sums.squares = sums.squares.plus(number.times(number));
        ++sums.count;
    }
    return sums;
}

DataRef rounded(Decimal number, int precision) {
    number.setPrecision(precision);
    return numberResult(std::move(number));
}

DataRef sum(Arguments arguments) {
    const DataVect values = valuesOf(arguments);
    if (isAnyInvalid(values)) return questionMark();
    const Sums sums = sumsOf(values, false);
    return rounded(sums.sum, sums.precision);
}

DataRef average(Arguments arguments) {
    const DataVect values = valuesOf(arguments);
    if (values.empty()) return emptyResult();
    if (isAnyInvalid(values)) return questionMark();
    const Sums sums = sumsOf(values, false);
    const auto quotient = sums.sum.dividedBy(sums.count);
    return quotient ? rounded(*quotient, sums.precision) : questionMark();
}

/// A population's variance divides by the number of values, a sample's by one less.
enum class Of { sample, population };
enum class Measure { variance, deviation };

template<Measure measure, Of of>
DataRef spread(Arguments arguments) {
    const DataVect values = valuesOf(arguments);
    if (values.empty()) return emptyResult();
    if (isAnyInvalid(values)) return questionMark();
    const Sums sums = sumsOf(values, true);
    // The difference of the sums is exact, so that no digit is lost before the division.
    const Decimal squares = sums.squares.times(sums.count).minus(sums.sum.times(sums.sum));
    const std::int64_t divisor = of == Of::sample ? sums.count - 1 : sums.count;
    auto result = squares.dividedBy(Decimal(sums.count).times(divisor));
    if (result && measure == Measure::deviation) {
        // The root of a number with twice the places is right in all that are kept.
        result->setPrecision(2 * sums.precision);
        result = result->squareRoot();
    }
    return result ? rounded(*result, sums.precision) : questionMark();
}

struct Row {
    std::u16string_view name;
    Aggregate aggregate;
};
constexpr std::array rows{
    Row{u"Average", average},
    Row{u"Count", count},
    Row{u"List", list},
    Row{u"Max", outermost<Operator::greater>},
    Row{u"Min", outermost<Operator::less>},
    Row{u"StDev", spread<Measure::deviation, Of::sample>},
    Row{u"StDevP", spread<Measure::deviation, Of::population>},
    Row{u"Sum", sum},
    Row{u"Variance", spread<Measure::variance, Of::sample>},
    Row{u"VarianceP", spread<Measure::variance, Of::population>},
};

/// The values that the arguments stand for. A field that is the only one stands for all its repetitions and
/// related records; beside others it stands for one value, as elsewhere.
DataVect expanded(Evaluation& evaluation, std::span<const Node* const> arguments) {
    if (arguments.size() == 1)
        if (const auto field = evaluation.fieldIn(*arguments[0])) return evaluation.valuesOf(*field);
    DataVect values;
    for (const Node* argument : arguments)
        values.push_back(evaluation.evaluate(*argument));
    return values;
}

template<std::size_t place>
DataRef aggregated(Evaluation& evaluation, std::span<const Node* const> arguments) {
    const DataVect values = expanded(evaluation, arguments);
    if (evaluation.isUnending()) return questionMark();
    for (const DataRef& value : values)
        Work::chargeFor(*value);
    return rows[place].aggregate(values);
}

template<std::size_t... places>
void addAll(FunctionTable& table, std::index_sequence<places...>) {
    (addRow(table, LazyRow{rows[places].name, aggregated<places>}), ...);
}

} // namespace

Aggregate aggregateNamed(std::u16string_view name) {
    const auto* row =
        std::find_if(rows.begin(), rows.end(), [name](const Row& known) { return known.name == name; });
    return row == rows.end() ? nullptr : row->aggregate;
}

void addAggregateFunctions(FunctionTable& table) { addAll(table, std::make_index_sequence<rows.size()>()); }

} // namespace host::calc
