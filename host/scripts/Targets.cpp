#include "host/scripts/Targets.h"

#include "host/calc/Engine.h"
#include "host/calc/Lexer.h"
#include "host/scripts/Scanner.h"

namespace host::scripts {

namespace {

/// Takes a name in quotation marks from the beginning of the text.
std::optional<std::u16string> takeQuoted(std::u16string_view& text) {
    const std::size_t end = quotedEnd(text, 0);
    if (end == 0 || end == std::u16string_view::npos) return std::nullopt;
    std::u16string name(text.substr(1, end - 2));
    text = trimmed(text.substr(end));
    return name;
}

} // namespace

std::optional<QuotedName> quotedName(std::u16string_view text) {
    constexpr std::u16string_view fromFile = u"from file:";
    std::optional<std::u16string> name = takeQuoted(text);
    if (!name) return std::nullopt;
    QuotedName result{.name = std::move(*name), .file = {}};
    if (calc::foldName(text.substr(0, fromFile.size())) == fromFile) {
        text = trimmed(text.substr(fromFile.size()));
        std::optional<std::u16string> file = takeQuoted(text);
        if (!file || file->empty()) return std::nullopt;
        result.file = std::move(*file);
    }
    const bool isTable = text.starts_with(u'(') && text.ends_with(u')');
    if (!text.empty() && !isTable) return std::nullopt;
    return result;
}

std::optional<Target> targetIn(std::u16string_view text) {
    using Kind = calc::Token::Kind;
    try {
        calc::Lexer lexer(text);
        const calc::Token name = lexer.next();
        if (name.kind != Kind::name && name.kind != Kind::variable) return std::nullopt;
        Target target{
            .kind = Target::Kind::field, .name = name.text, .occurrence = name.table, .repetition = {}};
        if (name.kind == Kind::variable)
            target.kind = name.ofFile ? Target::Kind::fileVariable : Target::Kind::variable;
        const calc::Token bracket = lexer.next();
        if (bracket.kind == Kind::end) return target;
        if (bracket.kind != Kind::leftBracket || !text.ends_with(u']')) return std::nullopt;
        const std::size_t begin = bracket.position + 1;
        target.repetition = trimmed(text.substr(begin, text.size() - 1 - begin));
        if (target.repetition.empty()) return std::nullopt;
        return target;
    } catch (const calc::Error&) {
        return std::nullopt;
    }
}

} // namespace host::scripts
