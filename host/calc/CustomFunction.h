#pragma once

#include "host/calc/Engine.h"

#include <string>
#include <vector>

namespace host::calc {

/// A function that a solution defines: its parameters are names in its calculation.
class CustomFunction {
public:
    /// Parameters as written; they are distinct, ignoring case.
    CustomFunction(std::u16string name, std::vector<std::u16string> parameters, std::u16string calculation);

    [[nodiscard]] const std::u16string& name() const { return name_; }
    /// Folded.
    [[nodiscard]] const std::vector<std::u16string>& parameters() const { return parameters_; }
    /// The calculation, parsed at the first call, when every function that it calls exists. Throws `Error`
    /// 1208, with the cause in its message, when it does not parse.
    [[nodiscard]] ExpressionRef expression(const std::shared_ptr<const FunctionTable>& functions,
                                           FileContext& file) const;
    /// Drops the parsed calculation, which owns the function where it calls itself. The file calls this at
    /// its end.
    void dropExpression() const { parsed_.reset(); }

private:
    std::u16string name_;
    std::vector<std::u16string> parameters_;
    std::u16string calculation_;
    mutable ExpressionRef parsed_;
};

/// Why a name cannot be that of a function, a parameter or a field without `${ }`, in UTF-8; empty when it
/// can.
std::string problemWithName(std::u16string_view name);

/// The row of a custom function.
std::shared_ptr<const Function> rowOf(CustomFunction function);

} // namespace host::calc
