#include "host/calc/Engine.h"

#include "host/calc/BuiltIns.h"
#include "host/calc/Catalogue.h"
#include "host/calc/Evaluation.h"
#include "host/calc/Parser.h"
#include "host/calc/Problems.h"
#include "host/values/Encoding.h"

#include <array>
#include <new>
#include <optional>

namespace host::calc {

namespace {

struct Message {
    int code;
    std::string_view text;
};
constexpr std::array messages{
    Message{error::none, "no error"},
    Message{error::unavailable, "command is unavailable"},
    Message{error::outOfRange, "value out of range"},
    Message{error::missingFile, "file is missing"},
    Message{error::missingRecord, "record is missing"},
    Message{error::missingField, "field is missing"},
    Message{error::missingRelationship, "relationship is missing"},
    Message{error::missingScript, "script is missing"},
    Message{error::missingLayout, "layout is missing"},
    Message{error::missingTable, "table is missing"},
    Message{error::missingRelatedTable, "related tables are missing"},
    Message{error::missingRepetition, "specified repetition is invalid"},
    Message{error::notWritable, "field cannot be modified"},
    Message{error::noCriteria, "find criteria are empty"},
    Message{error::nothingFound, "no records match the request"},
    Message{error::wrongDate, "value is not a valid date"},
    Message{error::wrongTime, "value is not a valid time"},
    Message{error::wrongNumber, "value is not a valid number"},
    Message{error::outsideRange, "value is outside the range of the field"},
    Message{error::notUnique, "value is not unique in the field"},
    Message{error::notListed, "value is not in the value list of the field"},
    Message{error::validationFailed, "value fails the calculation that validates the field"},
    Message{error::valueRequired, "field requires a value"},
    Message{error::tooLong, "value has too many characters for the field"},
    Message{error::unspecific, "unspecific calculation error"},
    Message{error::tooFewParameters, "too few parameters in the function"},
    Message{error::tooManyParameters, "too many parameters in the function"},
    Message{error::unexpectedEnd, "unexpected end of calculation"},
    Message{error::operandExpected, "number, text constant, field name or \"(\" expected"},
    Message{error::unterminatedComment, "comment is not terminated with \"*/\""},
    Message{error::unterminatedText, "text constant must end with a quotation mark"},
    Message{error::unbalancedParenthesis, "unbalanced parenthesis"},
    Message{error::functionNotFound, "operator missing or function not found"},
    Message{error::nameMissing, "name is missing"},
    Message{error::alreadyRegistered, "plug-in function is already registered"},
    Message{error::listNotAllowed, "list usage is not allowed in this function"},
    Message{error::operatorExpected, "an operator is expected here"},
    Message{error::fieldExpected, "a parameter must be a field, not an expression"},
    Message{error::invalidGetParameter, "the parameter of Get is invalid"},
    Message{error::summaryExpected, "the parameter must be a summary field"},
    Message{error::wrongBreakField, "the break field is invalid"},
    Message{error::unreadableNumber, "the number cannot be evaluated"},
    Message{error::ownFormula, "a field cannot be used in its own formula"},
    Message{error::notImplemented, "the function is not implemented"},
    Message{error::notSupported, "the function is not supported in this context"},
    Message{error::plugInFirst, "the plug-in failed"},
    Message{8309, "SQL statement was refused"},
    Message{8310, "syntax error in SQL statement"},
};

/// A function with the counts of parameters that the catalogue has for it.
template<typename Row>
Function function(const Row& row) {
    const CatalogueRow* counts = findInCatalogue(row.name);
    if (counts == nullptr) throw std::logic_error("a function is not in the catalogue: " + toUtf8(row.name));
    return {.name = std::u16string(row.name), .minimum = counts->minimum, .maximum = counts->maximum};
}

} // namespace

std::string_view errorMessage(int code) {
    if (code > error::plugInFirst && code <= error::plugInLast) code = error::plugInFirst;
    for (const Message& message : messages)
        if (message.code == code) return message.text;
    return "unknown error";
}

DataRef textResult(Text text) { return std::make_shared<const Data>(std::move(text)); }
DataRef numberResult(Decimal number) { return std::make_shared<const Data>(std::move(number)); }
DataRef booleanResult(bool value) {
    static const DataRef yes = numberResult(1), no = numberResult(0);
    return value ? yes : no;
}
DataRef emptyResult() {
    static const DataRef empty = std::make_shared<const Data>();
    return empty;
}
DataRef questionMark() {
    static const DataRef mark = [] {
        Data data;
        data.setText(u"?", DataType::invalid);
        return std::make_shared<const Data>(std::move(data));
    }();
    return mark;
}

void addRow(FunctionTable& table, const EagerRow& row) {
    Function added = function(row);
    added.eager = [implementation = row.implementation](Evaluation&, std::span<const DataRef> arguments) {
        return implementation(arguments);
    };
    added.listSize = row.listSize;
    table.add(std::move(added));
}

void addRow(FunctionTable& table, const EvaluationRow& row) {
    Function added = function(row);
    added.eager = row.implementation;
    added.form = row.form;
    table.add(std::move(added));
}

void addRow(FunctionTable& table, const LazyRow& row) {
    Function added = function(row);
    added.lazy = row.implementation;
    added.form = row.form;
    table.add(std::move(added));
}

FunctionTable::FunctionTable() {
    for (const auto addFamily :
         {addTextFunctions,      addTrimFunctions,      addConversionFunctions, addListFunctions,
          addSortFunctions,      addAggregateFunctions, addRepeatingFunctions,  addJapaneseFunctions,
          addNumberFunctions,    addRealFunctions,      addFinancialFunctions,  addDateFunctions,
          addLogicFunctions,     addGetFunctions,       addStyleFunctions,      addMarkupFunctions,
          addJsonFunctions,      addEncodingFunctions,  addCryptFunctions,      addSignatureFunctions,
          addContainerFunctions, addFieldFunctions})
        addFamily(*this);
}

bool FunctionTable::add(Function function) {
    std::u16string name = foldName(function.name);
    return rows_.try_emplace(std::move(name), std::make_shared<const Function>(std::move(function))).second;
}

bool FunctionTable::remove(std::u16string_view name) {
    const auto row = rows_.find(foldName(name));
    if (row == rows_.end()) return false;
    row->second->withdrawn = true;
    rows_.erase(row);
    return true;
}

std::shared_ptr<const Function> FunctionTable::find(std::u16string_view name) const {
    const auto row = rows_.find(foldName(name));
    return row == rows_.end() ? nullptr : row->second;
}

Parsed parse(std::u16string_view source, const std::shared_ptr<const FunctionTable>& functions,
             FileContext* file, const RecordScope* scope) {
    Parsed parsed;
    try {
        Parser parser(source, functions, file, scope);
        try {
            parsed.expression = parser.parse();
        } catch (const Error& error) {
            parsed.error = error.code;
            parsed.problem = problemOf(error, parser, source, *functions, file);
        }
    } catch (...) {
        parsed.error = error::unspecific;
    }
    return parsed;
}

namespace {

/// An evaluation has its own limit of work, or that of the calculation around it.
Result evaluate(const Expression& expression, const Environment& environment, bool isInside) {
    Result result{.error = error::missingFile, .value = emptyResult(), .problem = {}};
    if (!environment.file || !environment.file->isOpen()) return result;
    try {
        std::optional<Work> work;
        if (!isInside || !Work::isRunning()) work.emplace();
        const FormatsScope formats(environment.file->formats());
        Environment scope = environment;
        if (!scope.locals) scope.locals = std::make_shared<Variables>();
        Evaluation evaluation(scope, expression.functions);
        try {
            result.value = evaluation.run(expression);
            if (evaluation.isUnending()) result.value = questionMark();
            if (!result.value->isValid()) result.innerError = evaluation.innerError();
            result.error = error::none;
            result.external = evaluation.externalError();
        } catch (const Error& error) {
            result.error = error.code;
            result.problem = problemOf(error, evaluation.failedCall(), expression.source);
        }
    } catch (...) {
        result.error = error::unspecific;
    }
    return result;
}

} // namespace

Result evaluate(const Expression& expression, const Environment& environment) {
    return evaluate(expression, environment, false);
}

Result evaluateInside(const Expression& expression, const Environment& environment) {
    return evaluate(expression, environment, true);
}

const std::vector<FieldPlace>& fieldsOf(const Expression& expression) { return expression.fields; }

Result evaluate(std::u16string_view source, const Environment& environment,
                const std::shared_ptr<const FunctionTable>& functions) {
    Parsed parsed = parse(source, functions, environment.file.get(), environment.record.get());
    if (parsed.error == error::none) return evaluate(*parsed.expression, environment);
    return {.error = parsed.error, .value = emptyResult(), .problem = std::move(parsed.problem)};
}

} // namespace host::calc
