#include "host/scripts/PlugInStep.h"

#include "host/calc/Engine.h"
#include "host/scripts/Scanner.h"
#include "host/scripts/StepRun.h"
#include "host/scripts/Steps.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <optional>
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

std::pair<const StepParameter*, std::u16string_view> splitLabel(const RegisteredStep& step,
                                                                std::u16string_view text) {
    const std::size_t colon = text.find(u':');
    if (colon == std::u16string_view::npos || text.substr(colon).starts_with(u"::")) return {nullptr, text};
    const std::u16string label = calc::foldName(scripts::trimmed(text.substr(0, colon)));
    for (const StepParameter& parameter : step.parameters)
        if (calc::foldName(parameter.label) == label) return {&parameter, text.substr(colon + 1)};
    return {nullptr, text};
}

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

namespace scripts {

namespace {

/// `On` and `Off` are a boolean's words; anything else is a calculation.
DataRef argument(StepRun& run, const Option& option, const StepParameter* parameter,
                 std::u16string_view text) {
    const std::u16string word = calc::foldName(trimmed(text));
    const bool isBoolean = parameter != nullptr && parameter->type == StepParameter::Type::boolean;
    if (isBoolean && (word == u"on" || word == u"off"))
        return std::make_shared<const Data>(Data::boolean(word == u"on"));
    return run.evaluate(text, option.line);
}

void runPlugInStep(StepRun& run) {
    const Step& step = run.step();
    Stage& stage = run.machine().stage();
    const auto registered = stage.registeredStep(step.name);
    if (!registered) throw calc::Error{calc::error::unavailable, "no plug-in has this step"};
    std::vector<StepArgument> arguments;
    std::optional<std::pair<Target, std::size_t>> target;
    for (const Option& option : step.options) {
        const auto [parameter, text] = splitLabel(*registered, option.text);
        if (parameter != nullptr && parameter->type == StepParameter::Type::target)
            target = {targetOf(trimmed(text)), option.line};
        else
            arguments.push_back({.label = parameter == nullptr ? std::u16string() : parameter->label,
                                 .value = argument(run, option, parameter, text)});
    }
    const StepOutcome outcome = stage.runStep(*registered, arguments, run.frame().scope);
    check(outcome.error, outcome.message);
    if (target) run.set(target->first, target->second, outcome.result);
}

} // namespace

const StepRow& plugInStep() {
    static constexpr StepRow row{.name = u"plug-in's step",
                                 .run = runPlugInStep,
                                 .options = {OptionRow{.name = u"parameter"}},
                                 .repeats = true,
                                 .isOfPlugIn = true};
    return row;
}

} // namespace scripts

} // namespace host
