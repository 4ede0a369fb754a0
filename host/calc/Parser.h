#pragma once

#include "host/calc/Lexer.h"
#include "host/calc/Node.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host::calc {

/// Reads one calculation. A bare name is, in this order: a name that a Let, a While or a custom function
/// binds, a function, a reserved word, a field; any other answers 102.
class Parser {
public:
    static constexpr int kMostLevels = 400;

    /// `file` (it may be null) has the custom functions and the fields; bare names are those of the scope, or
    /// of the current layout where it is null. `bound` are names that are bound around the calculation,
    /// innermost last.
    Parser(std::u16string_view source, std::shared_ptr<const FunctionTable> functions, FileContext* file,
           const RecordScope* scope, const std::vector<std::u16string_view>& bound = {});
    /// Throws `Error`.
    ExpressionRef parse();

    /// Where and why parsing stopped, after an `Error`.
    struct Stop {
        std::uint32_t position = 0, length = 0;   ///< of the token, in units of the source
        std::shared_ptr<const Function> function; ///< whose arguments are wrong in number
        std::uint32_t opening = kNoOpening;       ///< where a bracket opens that is not closed
    };
    static constexpr std::uint32_t kNoOpening = 0xFFFFFFFF;
    [[nodiscard]] const Stop& stop() const { return stop_; }
    /// The names in scope, folded, innermost last.
    [[nodiscard]] const std::vector<std::u16string>& boundNames() const { return bound_; }

private:
    class Level;
    static constexpr std::uint32_t kNoSlot = 0xFFFFFFFF;

    void advance();
    [[nodiscard]] bool at(Token::Kind kind) const { return token_.kind == kind; }
    [[nodiscard]] bool atOperator(Operator op) const { return at(Token::Kind::op) && token_.op == op; }
    bool take(Token::Kind kind);
    void close(Token::Kind kind, std::uint32_t opening);
    [[noreturn]] void fail(int code) const;
    [[noreturn]] void fail(int code, const Token& token);
    Node& add(Node::Kind kind, const Token& token);

    const Node* expression();
    const Node* chain(std::size_t binding);
    const Node* operand(std::size_t binding);
    const Node* sign();
    const Node* prefixed();
    const Node* primary();
    const Node* literal();
    const Node* variable();
    const Node* parenthesis();
    const Node* name();
    const Node* binding(const Token& name);
    const Node* field(const Token& name);
    [[noreturn]] void failOnName(const Token& name, bool isCall);
    [[nodiscard]] std::shared_ptr<const Function> functionNamed(std::u16string_view folded) const;

    const Node* call(const std::shared_ptr<const Function>& function, const Token& name);
    void arguments(Node& call);
    void list(Node& call);
    void triggers(Node& call);
    void word(Node& call);
    std::size_t let(Node& call);
    std::size_t loop(Node& call);
    std::size_t assignments(Node& call, std::uint32_t firstOfLoop = kNoSlot);
    const Node* assignment(std::uint32_t firstOfLoop);
    void checkCount(const std::shared_ptr<const Function>& function, std::size_t given, const Token& name);

    void bind(const std::u16string& name);
    void unbindTo(std::size_t size);
    [[nodiscard]] std::uint32_t slotOf(const std::u16string& name) const;

    FileContext* file_;
    const RecordScope* scope_;
    std::shared_ptr<Expression> expression_;
    Lexer lexer_; ///< reads the expression's copy of the source
    Token token_;
    Stop stop_;
    int level_ = 0;
    std::vector<std::u16string> bound_;                          ///< the names in scope, by slot
    std::map<std::u16string, std::vector<std::uint32_t>> slots_; ///< of each name, innermost last
};

} // namespace host::calc
