#pragma once

#include "host/calc/Lexer.h"
#include "host/calc/Node.h"

#include <map>
#include <memory>
#include <string_view>
#include <vector>

namespace host::calc {

/// Reads one calculation. Names are settled here: those that a Let around them binds, functions, and bare
/// words where a function wants such; any other answers 102.
class Parser {
public:
    static constexpr int kMostLevels = 400;

    /// `bound` are names that are bound around the calculation, innermost last.
    Parser(std::u16string_view source, std::shared_ptr<const FunctionTable> functions,
           const std::vector<std::u16string_view>& bound = {});
    /// Throws `Error`.
    ExpressionRef parse();
    /// Where the token that parsing stopped at begins.
    [[nodiscard]] std::uint32_t position() const { return position_; }

private:
    class Level;

    void advance();
    [[nodiscard]] bool at(Token::Kind kind) const { return token_.kind == kind; }
    bool take(Token::Kind kind);
    [[noreturn]] void fail(int code) const;
    [[noreturn]] void fail(int code, std::uint32_t position);

    const Node* expression();
    const Node* chain(std::size_t binding);
    const Node* operand(std::size_t binding);
    const Node* minus();
    const Node* prefixed();
    const Node* primary();
    const Node* literal();
    const Node* variable();
    const Node* parenthesis();
    const Node* nameOrCall();
    const Node* call(const std::shared_ptr<const Function>& function, std::uint32_t start);
    const Node* let(const std::shared_ptr<const Function>& function, std::uint32_t start);
    const Node* assignment();
    const Node* words();
    void bracketList(Node& call);
    void closeCall(Node& node, std::size_t given, std::uint32_t start);
    void bind(const std::u16string& name);
    void unbindTo(std::size_t size);

    Lexer lexer_;
    Token token_;
    std::uint32_t position_ = 0;
    int level_ = 0;
    std::shared_ptr<Expression> expression_;
    std::vector<std::u16string> bound_;                          ///< the names in scope, by slot
    std::map<std::u16string, std::vector<std::uint32_t>> slots_; ///< of each name, innermost last
};

} // namespace host::calc
