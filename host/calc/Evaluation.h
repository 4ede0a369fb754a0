#pragma once

#include "host/calc/Engine.h"
#include "host/calc/Node.h"

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

/// One run of a calculation: its surroundings, as functions see them, and its limits.

namespace host::calc {

/// Thrown where a calculation may not go on at all: too many evaluations on top of each other, or too much
/// work. Functions that catch errors let it pass. The evaluations around it end as well, also where a
/// plug-in stands between them, so that one calculation cannot try again and again.
struct Exhausted : Error {
    Exhausted() : Error{error::unspecific, "the calculation does too much work"} {}
};

/// The part of the thread's stack that an evaluation occupies while it lives, evaluations that plug-ins start
/// in between included. Throws `Exhausted` when there is no room for another.
class Nesting {
public:
    static constexpr int kMostEvaluations = 100, kMostLevels = 500;
    explicit Nesting(int levels);
    ~Nesting();
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

private:
    int levels_;
};

/// The work that a calculation may do. Each calculation that is evaluated from outside has its own; those
/// that it evaluates itself share it.
class Work {
public:
    /// A constant, a variable or an operator is a part of a step.
    static constexpr std::size_t kMostSteps = 4'000'000, kPartsOfStep = 4;
    Work();
    ~Work();
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

    /// Whether a calculation runs on this thread.
    static bool isRunning();

    /// Counts steps of the calculation that runs, or the handling of so many units of text; throws
    /// `Exhausted` when there were too many.
    static void charge(std::size_t steps = 1) { chargeParts(steps * kPartsOfStep); }
    /// The same in parts of a step.
    static void chargeParts(std::size_t parts);
    static void chargeText(std::size_t units) { charge(units / 256); }
    /// A value that is read, which takes work when it is a text.
    static void chargeFor(const Data& value);
    /// Text that is copied and not looked at.
    static void chargeCopy(std::size_t units) { charge(units / 4'096); }

private:
    std::size_t outer_;
};

class Evaluation {
public:
    /// Turns of a While and calls of a recursion, unless SetRecursion says otherwise.
    static constexpr std::int64_t kUsualRecursion = 50'000;

    Evaluation(const Environment& environment, std::shared_ptr<const FunctionTable> functions)
        : environment_(environment), functions_(std::move(functions)) {}

    [[nodiscard]] const Environment& environment() const { return environment_; }
    [[nodiscard]] FileContext& file() const { return *environment_.file; }
    [[nodiscard]] const std::shared_ptr<const FunctionTable>& functions() const { return functions_; }

    /// The value of a part of the calculation; never null. Throws `Error`.
    DataRef evaluate(const Node& node) { return evaluate(node, false); }
    /// The same as a truth.
    bool isTrue(const Node& node);
    /// The value of the part whose value is the whole result of the function that runs. A custom function
    /// that is called there takes the place of the one that calls, so that it needs no stack. The value may
    /// then be null; return it as it is.
    DataRef result(const Node& node) { return evaluate(node, isTail_); }
    /// Evaluates a whole calculation, which sees the names bound so far.
    DataRef run(const Expression& expression);
    /// Parses a calculation that is to see the names bound so far; throws `Error`.
    [[nodiscard]] ExpressionRef parseHere(std::u16string_view source) const;

    /// Names that Let, While and calls of custom functions have bound, innermost last.
    struct Binding {
        std::u16string_view name;
        DataRef value;
    };
    /// Binds the name of an assignment, or sets its variable, for the rest of the enclosing `Scope`.
    void assign(const Node& assignment);
    /// Takes back the names that were bound since it was made.
    class Scope {
    public:
        explicit Scope(Evaluation& evaluation)
            : evaluation_(evaluation), size_(evaluation.bindings_.size()) {}
        ~Scope() { evaluation_.bindings_.resize(size_); }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        Evaluation& evaluation_;
        std::size_t size_;
    };

    /// Settings that a function may change for the part that it evaluates.
    struct Settings {
        int precision = Decimal::minimumPrecision; ///< digits after the point that operations keep at least
        std::int64_t recursionLimit = kUsualRecursion;
        std::int64_t recursion = 0; ///< calls of custom functions on top of each other
    };
    [[nodiscard]] const Settings& settings() const { return settings_; }
    [[nodiscard]] int precision() const { return settings_.precision; }
    /// Other settings while it lives.
    class Change {
    public:
        Change(Evaluation& evaluation, const Settings& wanted)
            : evaluation_(evaluation), outer_(std::exchange(evaluation.settings_, wanted)) {}
        ~Change() { evaluation_.settings_ = outer_; }
        Change(const Change&) = delete;
        Change& operator=(const Change&) = delete;

    private:
        Evaluation& evaluation_;
        Settings outer_;
    };

    /// Whether custom functions called each other more often than the recursion limit allows, or than the
    /// stack has room for. Every later result is "?", until a function takes the flag back.
    [[nodiscard]] bool isUnending() const { return isUnending_; }
    bool takeUnending() { return std::exchange(isUnending_, false); }

    /// A field and one of its repetitions.
    struct FieldReference {
        FieldPlace place;
        int repetition = 1;
        bool isOneRepetition = false; ///< `[n]` is written
    };
    [[nodiscard]] FieldContext& fields() const { return environment_.file->fields(); }
    [[nodiscard]] FieldContext::Scope scope() const { return environment_.record.get(); }
    /// The field that a part of the calculation names, itself or by GetField; nothing for any other part.
    std::optional<FieldReference> fieldIn(const Node& node);
    /// The same, or the one that an Evaluate names; throws 1214 for any other part.
    FieldReference requiredField(const Node& node);
    /// The field of that name; throws 102.
    FieldReference fieldNamed(std::u16string_view name);
    DataRef valueOf(const FieldReference& field);
    /// The values that an aggregate of the field counts: all related records, all repetitions; also empty
    /// ones.
    DataVect valuesOf(const FieldReference& field);
    /// A value from `fields`, whose failure becomes the inner error.
    DataRef noted(DataRef value);

    /// The code of a part that failed since this was last cleared, without ending the calculation.
    [[nodiscard]] int innerError() const { return innerError_; }
    void setInnerError(int code) { innerError_ = code; }
    /// The "?" of a part that failed, whose code EvaluationError then gives.
    DataRef failed(int code);
    /// The "?" of a plug-in's function that answered an error. The calculation goes on.
    DataRef failed(ExternalError error);
    [[nodiscard]] const ExternalError& externalError() const { return externalError_; }

    /// The innermost call that an `Error` passed through; null when there was none.
    [[nodiscard]] const Node* failedCall() const { return failedCall_; }
    /// Call this in a function that catches an `Error`.
    void forgetFailedCall() { failedCall_ = nullptr; }

private:
    class Frame;

    DataRef evaluate(const Node& node, bool isTail);
    DataRef variable(const Node& node);
    FieldReference referenceTo(const Node& field);
    DataRef chain(const Node& node);
    DataRef joined(const Node& node);
    DataRef call(const Node& node, bool isTail);
    DataRef callBuiltIn(const Node& node, bool isTail);
    DataRef callCustom(const Node& node);
    DataRef runCustom(const Function& function, DataVect arguments);
    DataVect evaluated(const Node& call);
    Binding& bindingOf(const Node& node) { return bindings_.at(firstOfFrame_ + node.slot); }
    [[nodiscard]] Variables& variables(const Node& node) const;
    [[nodiscard]] DataRef precise(DataRef value) const;

    const Environment& environment_;
    std::shared_ptr<const FunctionTable> functions_;
    std::vector<Binding> bindings_;
    std::size_t firstOfFrame_ = 0; ///< where the names of the custom function that runs begin
    Settings settings_;
    bool isUnending_ = false;
    int innerError_ = error::none;
    ExternalError externalError_;
    const Node* failedCall_ = nullptr;
    /// Whether the value of the lazy function that runs is the result of the custom function around it.
    bool isTail_ = false;
    /// A call that takes the place of the custom function that runs; null when none waits.
    const Function* waiting_ = nullptr;
    DataVect waitingArguments_;
};

} // namespace host::calc
