#pragma once

#include "host/calc/Engine.h"
#include "host/calc/Fields.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

/// The parsed form of a calculation. Operators of one binding stand side by side in one node, so that a long
/// calculation is wide, not deep.

namespace host::calc {

enum class Operator : std::uint8_t {
    power,
    multiply,
    divide,
    add,
    subtract,
    join,
    equal,
    notEqual,
    less,
    lessOrEqual,
    greater,
    greaterOrEqual,
    logicalAnd,
    logicalOr,
    logicalXor
};

struct Node {
    enum class Kind : std::uint8_t {
        literal,    ///< value
        binding,    ///< a name bound by a Let, a While or as a custom function's parameter: slot
        variable,   ///< name, ofFile; a child gives the repetition
        field,      ///< occurrence, name, place; a child gives the repetition
        chain,      ///< children, left to right, and the operators between them
        negate,     ///< one child
        logicalNot, ///< one child
        call,       ///< function; children are its arguments
        assignment, ///< name; the first child is the value, a second the variable's repetition
        word        ///< a bare name that stands for itself
    };

    Kind kind = Kind::literal;
    bool ofFile = false;     ///< a `$$` variable
    bool isVariable = false; ///< an assignment's name is a variable
    bool rebinds = false;    ///< an assignment gives a new value to the name at slot
    std::uint32_t slot = 0;  ///< counted from the first name of the calculation or custom function
    std::uint32_t position = 0, length = 0; ///< in units of the source
    DataRef value;
    std::u16string name;       ///< folded
    std::u16string occurrence; ///< of a field; empty: one of the scope's own
    FieldPlace place;
    std::uint64_t names = 0; ///< FieldContext::names when the place was found
    std::vector<const Node*> children;
    std::vector<Operator> operators;
    std::shared_ptr<const Function> function;
};

/// Whether a node is a call of the function of that name.
inline bool isCallOf(const Node& node, std::u16string_view function) {
    return node.kind == Node::Kind::call && node.function->name == function;
}

/// Owns the nodes of a calculation side by side, so that they go without recursion.
class Expression {
public:
    explicit Expression(std::u16string_view text) : source(text) {}
    Node& add(Node::Kind kind) {
        Node& node = nodes_.emplace_back();
        node.kind = kind;
        return node;
    }

    const std::u16string source;

    const Node* root = nullptr;     ///< null: nothing but blanks
    int levels = 0;                 ///< how deeply it is nested
    std::vector<FieldPlace> fields; ///< that it reads
    std::shared_ptr<const FunctionTable> functions;

private:
    std::deque<Node> nodes_;
};

} // namespace host::calc
