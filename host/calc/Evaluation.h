#pragma once

#include "host/calc/Engine.h"
#include "host/calc/Node.h"

#include <string_view>
#include <vector>

/// One run of a calculation: what its functions see of the place they run in, and what bounds them.

namespace host::calc {

/// Thrown where a calculation may not go on at all: too many evaluations on top of each other, or too much
/// work. No function that looks at errors swallows it, and whatever a plug-in makes of it, the evaluations
/// around go no further either, so that one calculation cannot try again and again.
struct Exhausted : Error {
    Exhausted() : Error{error::unspecific} {}
};

/// What an evaluation occupies of the thread's stack while it lives, evaluations that plug-ins start in
/// between included. Throws `Exhausted` when there is no room for another.
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

/// The work that a calculation may do: each that is evaluated from outside has its own, and what it evaluates
/// itself takes part in it.
class Work {
public:
    static constexpr std::size_t kMostSteps = 4'000'000;
    Work();
    ~Work();
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

    /// Counts steps of the calculation that runs, or the handling of so many units of text; throws
    /// `Exhausted` when there were too many.
    static void charge(std::size_t steps = 1);
    static void chargeText(std::size_t units) { charge(units / 256); }

private:
    std::size_t outer_;
};

class Evaluation {
public:
    Evaluation(const Environment& environment, std::shared_ptr<const FunctionTable> functions)
        : environment_(environment), functions_(std::move(functions)) {}

    [[nodiscard]] const Environment& environment() const { return environment_; }
    [[nodiscard]] FileContext& file() const { return *environment_.file; }
    [[nodiscard]] const std::shared_ptr<const FunctionTable>& functions() const { return functions_; }

    /// The value of a part of the calculation; never null. Throws `Error`.
    DataRef evaluate(const Node& node);
    /// Evaluates a whole calculation, which sees the names bound so far.
    DataRef run(const Expression& expression);
    /// Parses a calculation that is to see the names bound so far; throws `Error`.
    [[nodiscard]] ExpressionRef parseHere(std::u16string_view source) const;

    /// Names that a Let has bound, innermost last.
    struct Binding {
        std::u16string_view name;
        DataRef value;
    };
    /// Binds the name of an assignment, or sets its variable, for the rest of the enclosing `Scope`.
    void assign(const Node& assignment);
    /// Takes back what was bound since it was made.
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

    /// Digits behind the point that operations keep at least.
    [[nodiscard]] int precision() const { return precision_; }
    void setPrecision(int precision) { precision_ = precision; }

    /// The code of an Evaluate that failed since this was last cleared; such a failure is a "?", no error.
    [[nodiscard]] int innerError() const { return innerError_; }
    void setInnerError(int code) { innerError_ = code; }

private:
    DataRef variable(const Node& node);
    DataRef chain(const Node& node);
    DataRef joined(const Node& node);
    DataRef call(const Node& node);
    [[nodiscard]] Variables& variables(const Node& node) const;
    [[nodiscard]] DataRef precise(DataRef value) const;

    const Environment& environment_;
    std::shared_ptr<const FunctionTable> functions_;
    std::vector<Binding> bindings_;
    int precision_ = Decimal::minimumPrecision;
    int innerError_ = error::none;
};

} // namespace host::calc
