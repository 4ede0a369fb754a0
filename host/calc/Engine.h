#pragma once

#include "host/calc/Environment.h"
#include "host/values/Data.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>

/// Calculations: a text is parsed once against a table of functions and may then be evaluated many times.

namespace host::calc {

/// Codes of failures. Calculation code throws `Error`; no exception leaves `parse` and `evaluate`.
namespace error {
inline constexpr int none = 0, unavailable = 3, outOfRange = 14, missingFile = 100, missingRecord = 101,
                     missingField = 102, missingRelationship = 103, missingScript = 104, missingLayout = 105,
                     missingTable = 106, missingRelatedTable = 110, missingRepetition = 111,
                     notWritable = 201, noCriteria = 400, nothingFound = 401, wrongDate = 500,
                     wrongTime = 501, wrongNumber = 502, outsideRange = 503, notUnique = 504, notListed = 506,
                     validationFailed = 507, valueRequired = 509, tooLong = 511, unspecific = 1200,
                     tooFewParameters = 1201, tooManyParameters = 1202, unexpectedEnd = 1203,
                     operandExpected = 1204, unterminatedComment = 1205, unterminatedText = 1206,
                     unbalancedParenthesis = 1207, functionNotFound = 1208, nameMissing = 1209,
                     alreadyRegistered = 1210, listNotAllowed = 1211, operatorExpected = 1212,
                     fieldExpected = 1214, invalidGetParameter = 1215, summaryExpected = 1216,
                     wrongBreakField = 1217, unreadableNumber = 1218, ownFormula = 1219,
                     notImplemented = 1223, notSupported = 1225, plugInFirst = 1552, plugInLast = 1559;
}
/// A sentence for a code, for people; "unknown error" for one that has none.
std::string_view errorMessage(int code);

struct Error {
    int code;
    std::string message{}; ///< UTF-8, for people; empty: `errorMessage` of the code says it all
};

struct Node;      // the parsed tree
class Evaluation; // one run of it

/// How the parameters of a function are written.
enum class Form : std::uint8_t {
    values,     ///< calculations
    field,      ///< calculations; the first one is a field or a variable by itself, or names a field
    word,       ///< one bare word, the name that Get asks for
    triggers,   ///< a list in brackets is read and dropped
    assignment, ///< Let ( [ name = value ; … ] ; calculation )
    loop        ///< While ( [ name = value ; … ] ; condition ; [ name = value ; … ] ; calculation )
};

class CustomFunction;

/// A row of the function table.
struct Function {
    /// Arguments come evaluated.
    using Eager = std::function<DataRef(Evaluation&, std::span<const DataRef>)>;
    /// Arguments come as they stand; the function evaluates those it needs.
    using Lazy = std::function<DataRef(Evaluation&, std::span<const Node* const>)>;

    std::u16string name; ///< as it is displayed
    int minimum = 0;
    int maximum = 0;  ///< -1: no upper limit
    Eager eager = {}; ///< one of the three is set
    Lazy lazy = {};
    std::shared_ptr<const CustomFunction> custom = {};
    Form form = Form::values;
    /// The number of arguments, the last ones, that may stand together in brackets, `[ a ; b ]`. Only in
    /// brackets they may be given several times; they count and come one by one. 0: none may.
    int listSize = 0;
    /// Whether a function of the form `word` has a value for a folded word.
    bool (*knowsWord)(FileContext& file, std::u16string_view word) = nullptr;
    /// Set by the table that has withdrawn the row.
    mutable bool withdrawn = false;
};

/// Functions by folded name.
using FunctionRows = std::map<std::u16string, std::shared_ptr<const Function>, std::less<>>;

/// Functions by folded name: the built-in ones, and those that plug-ins register. A row that is withdrawn
/// stays alive for expressions that were parsed with it; calling it then answers error 1208.
class FunctionTable {
public:
    FunctionTable(); ///< holds every built-in function
    /// False when the name is taken.
    bool add(Function function);
    bool remove(std::u16string_view name);
    [[nodiscard]] std::shared_ptr<const Function> find(std::u16string_view name) const;
    [[nodiscard]] const FunctionRows& rows() const { return rows_; }

private:
    FunctionRows rows_;
};

/// A calculation, parsed. Immutable; outlives the table it was parsed with.
class Expression;
using ExpressionRef = std::shared_ptr<const Expression>;

/// Where a calculation is wrong, and how to say it to people.
struct Problem {
    std::uint32_t position = 0, length = 0; ///< the offending part, in units of the source
    std::u16string near;                    ///< its text; empty at the end of the source
    std::string message;                    ///< UTF-8; empty: errorMessage of the code says it all
};

struct Parsed {
    int error = 0;
    Problem problem;
    ExpressionRef expression; ///< null on an error
};
/// Nesting deeper than 400 levels answers 1200. An empty or blank source is a calculation with an empty
/// result. Custom functions and fields are those of `file`, which may be null; bare names of fields are those
/// of the scope, or of the current layout where it is null.
Parsed parse(std::u16string_view source, const std::shared_ptr<const FunctionTable>& functions,
             FileContext* file = nullptr, const RecordScope* scope = nullptr);

/// The last plug-in's function in a calculation that answered an error. Its value in the calculation is "?".
struct ExternalError {
    int code = 0; ///< 0: there was none
    std::u16string function;
    std::u16string detail; ///< what the plug-in says about an error of its own (1552 to 1559)
};

struct Result {
    int error = 0;
    DataRef value;            ///< never null: empty text on an error
    Problem problem;          ///< set on an error
    ExternalError external{}; ///< set where the calculation went on after it
    int innerError = 0;       ///< of a value that is "?": the code of the part that failed, where it has one
    /// Sets what Get ( LastError ) answers after the calculation. The detail stays until the next error that
    /// a plug-in answers.
    void setLastError(LastError& last) const {
        last.code = error != error::none ? error : external.code;
        if (external.code != error::none) last.detail = external.detail;
    }
};
Result evaluate(const Expression& expression, const Environment& environment);
/// The same as a part of the calculation that runs, if one does: both share one limit of work.
Result evaluateInside(const Expression& expression, const Environment& environment);
/// The fields that a calculation reads.
const std::vector<FieldPlace>& fieldsOf(const Expression& expression);
/// Parses and evaluates. `functions` also serves what the calculation itself evaluates.
Result evaluate(std::u16string_view source, const Environment& environment,
                const std::shared_ptr<const FunctionTable>& functions);

/// Ends the calculation that runs at its next step, with error 1200, and every further one until `resume`.
/// Each of the three may be called from a signal handler and on any thread.
void stopCalculations();
void resumeCalculations();
bool areCalculationsStopped();

} // namespace host::calc
