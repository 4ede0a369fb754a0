#include "host/app/StepCall.h"

#include "host/calc/Engine.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <utility>

namespace host {

namespace {

struct TypeOfData {
    std::u16string_view name; ///< folded
    DataType type;
};
constexpr std::array typesOfData{
    TypeOfData{u"text", DataType::text},           TypeOfData{u"number", DataType::number},
    TypeOfData{u"date", DataType::date},           TypeOfData{u"time", DataType::time},
    TypeOfData{u"timestamp", DataType::timestamp}, TypeOfData{u"container", DataType::binary},
    TypeOfData{u"boolean", DataType::boolean}};

std::string labelled(const StepParameter& parameter) { return "\"" + toUtf8(parameter.label) + "\""; }

DataRef ofDataType(const DataRef& value, std::u16string_view name) {
    const auto* row = std::ranges::find(typesOfData, calc::foldName(name), &TypeOfData::name);
    if (row == typesOfData.end() || value->nativeType() == row->type) return value;
    auto converted = std::make_shared<Data>(*value);
    converted->convert(row->type); // what cannot be converted stays as it is
    return converted;
}

bool isYes(const Data& value) {
    const std::u16string text = calc::foldName(value.asText().units());
    return text == u"true" || text == u"on" || (text != u"false" && text != u"off" && value.asBoolean());
}

DataRef valueFor(const StepParameter& parameter, const DataRef& value) {
    using Type = StepParameter::Type;
    if (parameter.type == Type::boolean) return std::make_shared<const Data>(Data::boolean(isYes(*value)));
    const bool isListed =
        parameter.type != Type::list || parameter.values.empty() ||
        std::ranges::find(parameter.values, value->asText().units()) != parameter.values.end();
    if (!isListed)
        throw calc::Error{calc::error::unspecific, "\"" + value->asText().utf8() +
                                                       "\" is no value of the parameter " +
                                                       labelled(parameter)};
    return ofDataType(value, parameter.dataType);
}

/// The values that were given, one place for each parameter; null where none was.
DataVect placed(const std::vector<const StepParameter*>& parameters,
                const std::vector<StepArgument>& arguments) {
    DataVect values(parameters.size());
    const auto set = [&](std::size_t place, const DataRef& value, const std::string& problem) {
        if (place >= values.size()) throw calc::Error{calc::error::tooManyParameters, problem};
        values[place] = value;
    };
    for (const StepArgument& argument : arguments) {
        if (argument.label.empty()) continue;
        const auto isMeant = [&](const StepParameter* parameter) {
            return calc::foldName(parameter->label) == calc::foldName(argument.label);
        };
        const auto found = std::ranges::find_if(parameters, isMeant);
        set(static_cast<std::size_t>(found - parameters.begin()), argument.value,
            "the step has no parameter \"" + toUtf8(argument.label) + "\"");
    }
    for (const StepArgument& argument : arguments)
        if (argument.label.empty())
            set(static_cast<std::size_t>(std::ranges::find(values, nullptr) - values.begin()), argument.value,
                "the step takes " + std::to_string(values.size()) + " parameters");
    return values;
}

} // namespace

DataVect stepValues(const RegisteredStep& step, const std::vector<StepArgument>& arguments) {
    std::vector<const StepParameter*> parameters;
    for (const StepParameter& parameter : step.parameters)
        if (parameter.type != StepParameter::Type::target) parameters.push_back(&parameter);
    DataVect values = placed(parameters, arguments);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const DataRef given =
            values[i] ? values[i] : std::make_shared<const Data>(Text(parameters[i]->defaultValue));
        const bool isEmptyDefault = !values[i] && parameters[i]->type == StepParameter::Type::list;
        values[i] = isEmptyDefault ? given : valueFor(*parameters[i], given);
    }
    return values;
}

} // namespace host
