#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <array>
#include <random>

namespace host::calc {

namespace {

DataRef now(Evaluation& evaluation, DataType type) {
    DateTime value = DateTime::fromMicrosSinceEpoch(evaluation.file().localMicros());
    // Clocks of calculations tick in seconds.
    value.micros -= value.micros % DateTime::microsPerSecond;
    if (type == DataType::date) value.micros = 0;
    if (type == DataType::time) value.days = 0;
    return std::make_shared<const Data>(value, type);
}

template<DataType type>
DataRef current(Evaluation& evaluation) {
    return now(evaluation, type);
}

DataRef scriptName(Evaluation& evaluation) {
    const auto& script = evaluation.environment().script;
    return script ? textResult(script->name) : emptyResult();
}

DataRef scriptParameter(Evaluation& evaluation) {
    const auto& script = evaluation.environment().script;
    return script && script->parameter ? script->parameter : emptyResult();
}

DataRef scriptResult(Evaluation& evaluation) {
    const auto& script = evaluation.environment().script;
    return script && script->result ? script->result : emptyResult();
}

DataRef errorLocation(Evaluation& evaluation) {
    const auto& script = evaluation.environment().script;
    return script ? textResult(script->errorLocation) : emptyResult();
}

DataRef capturesErrors(Evaluation& evaluation) {
    const auto& script = evaluation.environment().script;
    return booleanResult(script && script->capturesErrors);
}

DataRef allowsAbort(Evaluation& evaluation) {
    const auto& script = evaluation.environment().script;
    return booleanResult(!script || script->allowsAbort);
}

DataRef lastError(Evaluation& evaluation) {
    const auto& last = evaluation.environment().lastError;
    return numberResult(last ? last->code : 0);
}

DataRef lastErrorDetail(Evaluation& evaluation) {
    const auto& last = evaluation.environment().lastError;
    return last ? textResult(last->detail) : emptyResult();
}

/// A random universal identifier (version 4), in capitals.
DataRef uuid(Evaluation&) {
    constexpr std::u16string_view digits = u"0123456789ABCDEF";
    static std::mt19937_64 generator(std::random_device{}());
    std::u16string text = u"xxxxxxxx-xxxx-4xxx-yxxx-xxxxxxxxxxxx";
    std::uniform_int_distribution<std::size_t> pick(0, 15);
    for (char16_t& unit : text) {
        if (unit == u'x') unit = digits[pick(generator)];
        if (unit == u'y') unit = digits[8 + pick(generator) % 4];
    }
    return textResult(std::move(text));
}

/// A random number of 24 bytes.
DataRef uuidNumber(Evaluation&) {
    constexpr int words = 6;
    static std::mt19937_64 generator(std::random_device{}());
    std::uniform_int_distribution<std::uint32_t> pick(1);
    Decimal number = pick(generator);
    for (int i = 1; i < words; ++i)
        number = number.times(std::int64_t{1} << 32).plus(pick(generator));
    return numberResult(std::move(number));
}

struct Answer {
    std::u16string_view name; ///< folded
    DataRef (*value)(Evaluation& evaluation);
};
/// The names that are not the file's to answer.
constexpr std::array answers{
    Answer{u"scriptname", scriptName},
    Answer{u"scriptparameter", scriptParameter},
    Answer{u"scriptresult", scriptResult},
    Answer{u"lasterror", lastError},
    Answer{u"lasterrordetail", lastErrorDetail},
    Answer{u"lastexternalerrordetail", lastErrorDetail}, // its former name
    Answer{u"lasterrorlocation", errorLocation},
    Answer{u"errorcapturestate", capturesErrors},
    Answer{u"allowabortstate", allowsAbort},
    Answer{u"currentdate", current<DataType::date>},
    Answer{u"currenttime", current<DataType::time>},
    Answer{u"currenttimestamp", current<DataType::timestamp>},
    Answer{u"currenthosttimestamp", current<DataType::timestamp>},
    Answer{u"uuid", uuid},
    Answer{u"uuidnumber", uuidNumber},
};

const Answer* answerNamed(std::u16string_view name) {
    const auto* answer =
        std::find_if(answers.begin(), answers.end(), [name](const Answer& row) { return row.name == name; });
    return answer == answers.end() ? nullptr : answer;
}

bool knowsGet(FileContext& file, std::u16string_view name) {
    return answerNamed(name) != nullptr || file.knowsGet(name);
}

DataRef get(Evaluation& evaluation, std::span<const Node* const> arguments) {
    const std::u16string& name = arguments[0]->name;
    if (const Answer* answer = answerNamed(name)) return answer->value(evaluation);
    if (!evaluation.file().knowsGet(name)) throw Error{error::invalidGetParameter};
    return evaluation.file().get(name, evaluation.environment());
}

/// ExecuteSQL ( statement ; between columns ; between rows { ; parameters } ): a comma and a return where the
/// separators are empty. A statement that fails gives "?", and ExecuteSQLe the reason as well.
template<bool givesReason>
DataRef executeSql(Evaluation& evaluation, std::span<const DataRef> arguments) {
    const auto separator = [](const Data& given, const char16_t* usual) {
        return given.isEmpty() ? Text(usual) : given.asText();
    };
    const DataVect parameters(arguments.begin() + 3, arguments.end());
    const SqlAnswer answer = evaluation.file().selectSql(arguments[0]->asText().units(), parameters);
    if (answer.error == error::none)
        return textResult(answer.joined(separator(*arguments[1], u","), separator(*arguments[2], u"\r")));
    DataRef mark = evaluation.failed(answer.error);
    if (!givesReason || answer.problem.empty()) return mark;
    return textResult(Text(u"? ERROR: " + answer.problem));
}

constexpr std::array evaluationRows{
    EvaluationRow{u"ExecuteSQL", executeSql<false>},
    EvaluationRow{u"ExecuteSQLe", executeSql<true>},
};

} // namespace

void addGetFunctions(FunctionTable& table) {
    table.add(
        {.name = u"Get", .minimum = 1, .maximum = 1, .lazy = get, .form = Form::word, .knowsWord = knowsGet});
    addRows(table, evaluationRows);
}

} // namespace host::calc
