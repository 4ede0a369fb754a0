#include "host/calc/Arguments.h"
#include "host/calc/BuiltIns.h"

#include <array>

/// Values read as another type.

namespace host::calc {

namespace {

/// The data of a container has no text; a container that only names a file gives the name.
DataRef asText(Arguments arguments) {
    const Data& value = *arguments[0];
    if (!value.asBinary().streams().empty()) return questionMark();
    return textResult(value.asText());
}

/// A value without a number is an empty number.
DataRef asNumber(Arguments arguments) {
    if (const auto number = arguments[0]->number()) return numberResult(*number);
    Data empty;
    empty.setText({}, DataType::number);
    return std::make_shared<const Data>(std::move(empty));
}

/// An empty value stays empty.
template<DataType type>
DataRef asDateTime(Arguments arguments) {
    if (arguments[0]->isEmpty()) return emptyResult();
    const auto value = arguments[0]->dateTime(type);
    return value ? std::make_shared<const Data>(*value, type) : questionMark();
}

/// A number of seconds is shown with its seconds, also where they are 0.
DataRef asTimestamp(Arguments arguments) {
    if (arguments[0]->isEmpty()) return emptyResult();
    const auto value = arguments[0]->dateTime(DataType::timestamp);
    if (!value) return questionMark();
    auto result = std::make_shared<Data>(*value, DataType::timestamp);
    if (arguments[0]->nativeType() == DataType::number) result->showAs(Text(value->timestampText(true)));
    return result;
}

constexpr std::array rows{
    EagerRow{u"GetAsText", asText},
    EagerRow{u"GetAsNumber", asNumber},
    EagerRow{u"GetAsDate", asDateTime<DataType::date>},
    EagerRow{u"GetAsTime", asDateTime<DataType::time>},
    EagerRow{u"GetAsTimestamp", asTimestamp},
};

} // namespace

void addConversionFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
