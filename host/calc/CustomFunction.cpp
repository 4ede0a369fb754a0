#include "host/calc/CustomFunction.h"

#include "host/calc/Evaluation.h"
#include "host/calc/Parser.h"
#include "host/calc/Problems.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace host::calc {

CustomFunction::CustomFunction(std::u16string name, std::vector<std::u16string> parameters,
                               std::u16string calculation)
    : name_(std::move(name)), calculation_(std::move(calculation)) {
    std::transform(parameters.begin(), parameters.end(), std::back_inserter(parameters_), foldName);
}

ExpressionRef CustomFunction::expression(const std::shared_ptr<const FunctionTable>& functions,
                                         FileContext& file) const {
    if (parsed_) return parsed_;
    const std::vector<std::u16string_view> names(parameters_.begin(), parameters_.end());
    Parser parser(calculation_, functions, &file, nullptr, names);
    try {
        parsed_ = parser.parse();
    } catch (const Error& error) {
        constexpr std::size_t workOfExplaining = 1'000;
        Work::charge(workOfExplaining);
        const Problem problem = problemOf(error, parser, calculation_, *functions, &file);
        throw Error{error::functionNotFound, "custom function `" + toUtf8(name_) + "`: " + problem.message};
    }
    return parsed_;
}

std::string problemWithName(std::u16string_view name) {
    constexpr std::size_t longest = 100;
    if (name.empty()) return "is empty";
    if (name.size() > longest) return "is longer than 100 characters";
    try {
        Lexer lexer(name);
        const Token token = lexer.next();
        if (token.kind == Token::Kind::name && !token.isQuoted && !token.isQualified &&
            token.text.size() == name.size())
            return {};
    } catch (const Error&) {
        return "holds a sign that has a meaning of its own";
    }
    return "holds a sign or is a word that has a meaning of its own";
}

std::shared_ptr<const Function> rowOf(CustomFunction function) {
    Function row;
    row.name = function.name();
    row.minimum = row.maximum = static_cast<int>(function.parameters().size());
    row.custom = std::make_shared<const CustomFunction>(std::move(function));
    return std::make_shared<const Function>(std::move(row));
}

} // namespace host::calc
