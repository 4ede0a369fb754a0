#include "host/calc/Problems.h"

#include "host/calc/Catalogue.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <string>
#include <vector>

namespace host::calc {

namespace {

std::string named(std::u16string_view text) { return "`" + toUtf8(text) + "`"; }

/// How many letters must be put in, left out, replaced or swapped with their neighbour.
std::size_t distance(std::u16string_view from, std::u16string_view to) {
    std::vector<std::size_t> before, last(to.size() + 1), row(to.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 1; i <= from.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t change = from[i - 1] == to[j - 1] ? 0 : 1;
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + change});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1])
                row[j] = std::min(row[j], before[j - 2] + 1);
        }
        before = std::exchange(last, row);
    }
    return last.back();
}

/// Finds the name that is closest to a wrong one.
class Nearest {
public:
    explicit Nearest(std::u16string_view wrong)
        : wrong_(foldName(wrong)), least_(std::min<std::size_t>(3, wrong_.size() / 3) + 1) {}

    void consider(std::u16string_view name) {
        constexpr std::size_t longest = 200;
        if (std::max(name.size(), wrong_.size()) > longest) return;
        const std::size_t far = distance(wrong_, foldName(name));
        if (far >= least_) return;
        least_ = far;
        name_ = name;
    }
    void consider(const FunctionRows& rows) {
        for (const auto& [folded, row] : rows)
            consider(row->name);
    }
    /// A question to append to a message; empty when no name is close.
    [[nodiscard]] std::string question() const {
        return name_.empty() ? "" : "; did you mean " + named(name_) + "?";
    }

private:
    std::u16string wrong_, name_;
    std::size_t least_;
};

std::string parameterCounts(const Function& function) {
    const std::string least = std::to_string(function.minimum);
    std::string counts = function.maximum < 0 ? "at least " + least
                         : function.maximum == function.minimum
                             ? least
                             : least + " to " + std::to_string(function.maximum);
    return named(function.name) + " takes " + counts +
           (function.minimum == 1 && function.maximum <= 1 ? " parameter" : " parameters");
}

/// Signs that people write in place of those of the language.
struct Mistake {
    std::u16string_view signs;
    std::string_view hint;
};
constexpr std::array mistakes{
    Mistake{u"“”„‟", "a curly quotation mark; texts stand between straight ones (\")"},
    Mistake{u",", "a comma; parameters are separated by a semicolon, decimals by a point"},
    Mistake{u"{}", "a brace; write parentheses, or brackets around a list"},
};

std::string hintFor(std::u16string_view near) {
    for (const Mistake& mistake : mistakes)
        if (near.size() == 1 && mistake.signs.find(near.front()) != std::u16string_view::npos)
            return named(near) + " is " + std::string(mistake.hint);
    return {};
}

/// A bracket without its partner, and the text that follows it.
std::string bracketHint(const Parser::Stop& stop, std::u16string_view source) {
    constexpr std::size_t longest = 24;
    if (stop.opening == Parser::kNoOpening) return {};
    std::u16string_view part = source.substr(stop.opening);
    part = part.substr(0, std::min(part.find_first_of(u"\r\n"), longest));
    const bool isCut = stop.opening + part.size() < source.size();
    return std::string(part.front() == u'[' ? "`]`" : "`)`") + " is missing after " +
           named(std::u16string(part) + (isCut ? u"…" : u""));
}

/// A function of the app that the host lacks, and the part of the app that it needs.
std::string lackOf(std::u16string_view name) {
    const CatalogueRow* row = findInCatalogue(name);
    const bool hasReason = row != nullptr && !row->needs.empty();
    return "the host has no " + named(name) + (hasReason ? " (" + std::string(row->needs) + ")" : "");
}

Problem placed(std::u16string_view source, std::uint32_t position, std::uint32_t length) {
    Problem problem;
    problem.position = std::min(position, static_cast<std::uint32_t>(source.size()));
    problem.length = std::min(length, static_cast<std::uint32_t>(source.size()) - problem.position);
    problem.near = source.substr(problem.position, problem.length);
    return problem;
}

} // namespace

Problem problemOf(const Error& error, const Parser& parser, std::u16string_view source,
                  const FunctionTable& functions, FileContext* file) {
    const Parser::Stop& stop = parser.stop();
    Problem problem = placed(source, stop.position, stop.length);
    problem.message = error.message.empty() ? hintFor(problem.near) : error.message;
    if (!problem.message.empty()) return problem;
    Nearest nearest(problem.near);
    switch (error.code) {
    case error::functionNotFound:
    case error::missingField:
        for (const std::u16string& name : parser.boundNames())
            nearest.consider(name);
        nearest.consider(functions.rows());
        if (file != nullptr) nearest.consider(file->customFunctions());
        if (file != nullptr && error.code != error::functionNotFound)
            file->fields().eachName([&](std::u16string_view name) {
                nearest.consider(name);
                nearest.consider(name.substr(name.find(u"::") + 2));
            });
        problem.message =
            (error.code == error::missingField ? named(problem.near) + ": no such field"
                                               : "function " + named(problem.near) + " is not known") +
            nearest.question();
        break;
    case error::tooFewParameters:
    case error::tooManyParameters:
        if (stop.function) problem.message = parameterCounts(*stop.function);
        break;
    case error::notSupported: problem.message = lackOf(problem.near); break;
    case error::invalidGetParameter: problem.message = "`Get` knows no " + named(problem.near); break;
    default: problem.message = bracketHint(stop, source);
    }
    if (problem.message.empty()) problem.message = errorMessage(error.code);
    return problem;
}

Problem problemOf(const Error& error, const Node* call, std::u16string_view source) {
    Problem problem = call == nullptr ? placed(source, 0, static_cast<std::uint32_t>(source.size()))
                                      : placed(source, call->position, call->length);
    problem.message = error.message.empty() ? errorMessage(error.code) : error.message;
    return problem;
}

} // namespace host::calc
