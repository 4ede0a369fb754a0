#include "host/scripts/StepRun.h"

#include "host/calc/Environment.h"
#include "host/data/Position.h"
#include "host/scripts/Steps.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace host::scripts {

const Option* StepRun::option(std::u16string_view name) const {
    const auto found = std::find_if(step_.options.begin(), step_.options.end(),
                                    [name](const Option& given) { return given.row->name == name; });
    return found == step_.options.end() ? nullptr : &*found;
}

bool StepRun::says(std::u16string_view name, std::u16string_view word) const {
    const Option* given = option(name);
    return given != nullptr && calc::foldName(given->text) == word;
}

DataRef StepRun::value(std::u16string_view name) {
    static const DataRef empty = std::make_shared<const Data>();
    const Option* given = option(name);
    if (given == nullptr) return empty;
    const calc::Result result = machine_.evaluate(given->text);
    if (result.error != calc::error::none) throw CalculationFailure{given->line, given->text, result};
    return result.value;
}

DataRef StepRun::evaluate(std::u16string_view text, std::size_t line) {
    const calc::Result result = machine_.evaluateOnce(text);
    if (result.error != calc::error::none) throw CalculationFailure{line, std::u16string(text), result};
    return result.value;
}

bool StepRun::isTrue(std::u16string_view name) {
    try {
        return value(name)->asBoolean();
    } catch (const CalculationFailure& failure) {
        machine_.fail(step_, failure.line, failure.source, failure.result);
        return false;
    }
}

QuotedName StepRun::quotedName(std::u16string_view name) const {
    const Option* given = option(name);
    return given == nullptr ? QuotedName() : scripts::quotedName(given->text).value_or(QuotedName());
}

void StepRun::setVariable(const Target& target, std::size_t line, DataRef value) {
    const int place = repetition(target, line);
    const bool isOfFile = target.kind == Target::Kind::fileVariable;
    (isOfFile ? file().fileVariables() : *frame().scope.locals).set(target.name, place, std::move(value));
}

void StepRun::set(const Target& target, std::size_t line, DataRef value) {
    if (target.kind == Target::Kind::field)
        check(position().setField(field(target), repetition(target, line), value));
    else
        setVariable(target, line, std::move(value));
}

bool StepRun::leaveLoop() {
    if (step_.opener == kNoStep) return false;
    jumpTo(frame().script->steps[step_.opener].end + 1);
    return true;
}

Position& StepRun::position() { return file().position(); }

calc::FieldPlace StepRun::field(const Target& target) {
    const calc::FieldContext::Found found = file().fields().find(nullptr, target.occurrence, target.name);
    check(found.error);
    return found.place;
}

Target targetOf(std::u16string_view text) {
    std::optional<Target> target = targetIn(text);
    if (!target) throw calc::Error{calc::error::missingField};
    return std::move(*target);
}

void check(int code, const std::string& message) {
    if (code != calc::error::none) throw calc::Error{code, message};
}

int StepRun::repetition(const Target& target, std::size_t line) {
    if (target.repetition.empty()) return 1;
    const std::int64_t repetition = evaluate(target.repetition, line)->asNumber().toInt64();
    if (repetition < 1 || repetition > calc::Variables::maximumRepetition)
        throw calc::Error{calc::error::missingRepetition};
    return static_cast<int>(repetition);
}

} // namespace host::scripts
