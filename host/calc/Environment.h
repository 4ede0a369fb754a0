#pragma once

#include "host/calc/Fields.h"
#include "host/values/Data.h"
#include "host/values/Formats.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace host::calc {

/// Case-folded form of a name: how variables, functions, keywords, files and scripts are matched.
std::u16string foldName(std::u16string_view name);

/// Variables by folded name, each with repetitions from 1. One that was never set reads as empty text.
class Variables {
public:
    static constexpr int maximumRepetition = 32'000;
    [[nodiscard]] DataRef value(std::u16string_view name, int repetition = 1) const;
    /// Every repetition up to the highest that was set.
    [[nodiscard]] DataVect values(std::u16string_view name) const;
    /// The last repetition that is not empty; empty text where all are.
    [[nodiscard]] DataRef lastValue(std::u16string_view name) const;
    /// A repetition out of range is refused with false.
    bool set(std::u16string_view name, int repetition, DataRef value);
    void clear() { values_.clear(); }

    struct Variable {
        std::u16string name; ///< as it was first written
        std::map<int, DataRef> repetitions;
    };
    /// All variables that were set, by folded name.
    [[nodiscard]] const std::map<std::u16string, Variable, std::less<>>& all() const { return values_; }

private:
    std::map<std::u16string, Variable, std::less<>> values_;
};

struct SqlAnswer {
    int error = 0; ///< 0, 100 (no such file), 8309 (refused), 8310 (syntax)
    RowVect rows;
    /// The values as texts, with these between columns and rows. Throws `Error` 1200 where it gets too long.
    [[nodiscard]] Text joined(const Text& betweenColumns, const Text& betweenRows) const;
    std::u16string problem = {}; ///< the reason of a failure, where it is known
};

struct Environment;
struct Function;
/// Functions by folded name.
using FunctionRows = std::map<std::u16string, std::shared_ptr<const Function>, std::less<>>;

/// The file a calculation runs in, as the engine sees it.
class FileContext {
public:
    virtual ~FileContext() = default;
    [[nodiscard]] virtual bool isOpen() const = 0;
    virtual Variables& fileVariables() = 0;
    /// How the file writes numbers, dates and times.
    [[nodiscard]] virtual const Formats& formats() const = 0;
    /// The functions that the file's solution defines.
    [[nodiscard]] virtual const FunctionRows& customFunctions() const = 0;
    virtual FieldContext& fields() = 0;
    /// Whether Get ( name ) has a value, and the value. The name comes folded. The engine itself answers
    /// ScriptName, ScriptParameter, LastError and the clock's names.
    [[nodiscard]] virtual bool knowsGet(std::u16string_view name) const = 0;
    virtual DataRef get(std::u16string_view name, const Environment& environment) = 0;
    /// Microseconds since 0001-01-01 00:00:00, local time.
    virtual std::int64_t localMicros() = 0;
    /// The answer of a design function such as FieldNames; empty where the file has no such part, nothing
    /// where the first argument names a file that is not open.
    virtual std::optional<std::u16string> design(std::u16string_view function,
                                                 std::span<const DataRef> arguments) = 0;
    /// Runs any statement on a file ("" is this one); the values of the answer are typed.
    virtual SqlAnswer executeSql(std::u16string_view statement, std::u16string_view fileName,
                                 const DataVect& parameters) = 0;
    /// Runs one SELECT on this file; the values of the answer are texts as SQL writes them.
    virtual SqlAnswer selectSql(std::u16string_view statement, const DataVect& parameters) = 0;
    /// The identifier of a font of this file, added when it is new; its name, nothing when unknown.
    virtual std::uint16_t fontId(std::u16string_view name) = 0;
    virtual std::optional<std::u16string> fontName(std::uint16_t id) = 0;
};

/// The script that runs. Outside of scripts it has no name, and the result of the script that ended last.
struct ScriptFrame {
    std::u16string name;
    DataRef parameter;   ///< may be null, as result
    DataRef result = {}; ///< of the script that this one called last
    std::u16string errorLocation =
        {}; ///< script, step and line of the last error, one a line; empty for none
    bool capturesErrors = false;
    bool allowsAbort = true;
};

/// The values of Get ( LastError ) and Get ( LastErrorDetail ).
struct LastError {
    int code = 0;
    std::u16string detail;
};

/// Where a calculation is evaluated: session, file, variables, script. Plug-ins get it as fmx::ExprEnv, so
/// that the calculations that they evaluate see the caller's variables. Copies share the variables.
struct Environment {
    std::uint64_t sessionId = 0;
    std::uint64_t fileId = 0;
    std::shared_ptr<FileContext> file; ///< none: nothing can be evaluated (error 100)
    std::shared_ptr<Variables> locals; ///< the `$` variables
    std::shared_ptr<const ScriptFrame> script;
    std::shared_ptr<LastError> lastError;
    std::shared_ptr<const RecordScope> record = nullptr; ///< null: the file's current record
};

} // namespace host::calc
