#include "host/calc/BuiltIns.h"
#include "host/calc/Evaluation.h"

/// How a calculation names and reads fields.

namespace host::calc {

FieldName fieldNameIn(std::u16string_view text) {
    const auto trimmed = [](std::u16string_view part) {
        const std::size_t first = part.find_first_not_of(u' ');
        if (first == std::u16string_view::npos) return std::u16string_view();
        return part.substr(first, part.find_last_not_of(u' ') + 1 - first);
    };
    const auto bare = [&](std::u16string_view part) {
        part = trimmed(part);
        if (part.starts_with(u"${") && part.ends_with(u'}')) part = part.substr(2, part.size() - 3);
        return std::u16string(part);
    };
    FieldName name;
    text = trimmed(text);
    if (const std::size_t bracket = text.rfind(u'['); text.ends_with(u']') && bracket != 0)
        if (const auto number =
                Decimal::parse(trimmed(text.substr(bracket + 1, text.size() - bracket - 2)))) {
            name.repetition = number->toInt32();
            text = text.substr(0, bracket);
        }
    const std::size_t colons = text.find(u"::");
    if (colons != std::u16string_view::npos) name.occurrence = bare(text.substr(0, colons));
    name.field = bare(colons == std::u16string_view::npos ? text : text.substr(colons + 2));
    return name;
}

/// The place that was found when the calculation was read; found again where names may mean something else.
Evaluation::FieldReference Evaluation::referenceTo(const Node& field) {
    FieldReference reference{.place = field.place,
                             .repetition = scope() == nullptr ? 1 : scope()->repetition};
    if (field.names != fields().names(scope())) {
        const FieldContext::Found found = fields().find(scope(), field.occurrence, field.name);
        if (found.error != error::none) throw Error{found.error};
        reference.place = found.place;
    }
    if (field.children.empty()) return reference;
    reference.repetition = evaluate(*field.children[0])->asNumber().toInt32();
    reference.isOneRepetition = true;
    return reference;
}

Evaluation::FieldReference Evaluation::fieldNamed(std::u16string_view text) {
    const FieldName name = fieldNameIn(text);
    const FieldContext::Found found = fields().find(scope(), name.occurrence, name.field);
    if (found.error != error::none) throw Error{found.error};
    return {.place = found.place,
            .repetition = name.repetition.value_or(scope() == nullptr ? 1 : scope()->repetition),
            .isOneRepetition = name.repetition.has_value()};
}

std::optional<Evaluation::FieldReference> Evaluation::fieldIn(const Node& node) {
    if (node.kind == Node::Kind::field) return referenceTo(node);
    if (isCallOf(node, u"Self")) {
        const RecordScope* here = scope();
        if (here == nullptr || !here->self) return std::nullopt;
        return FieldReference{.place = *here->self, .repetition = here->repetition};
    }
    if (!isCallOf(node, u"GetField")) return std::nullopt;
    try {
        return fieldNamed(evaluate(*node.children[0])->asText().units());
    } catch (const Exhausted&) {
        throw;
    } catch (const Error&) {
        return std::nullopt; // the function itself tells why
    }
}

Evaluation::FieldReference Evaluation::requiredField(const Node& node) {
    if (const auto field = fieldIn(node)) return *field;
    if (isCallOf(node, u"GetField")) return fieldNamed(evaluate(*node.children[0])->asText().units());
    if (!isCallOf(node, u"Evaluate")) throw Error{error::fieldExpected};
    const ExpressionRef expression = parseHere(evaluate(*node.children[0])->asText().units());
    if (expression->root == nullptr || expression->root->kind != Node::Kind::field)
        throw Error{error::fieldExpected};
    return referenceTo(*expression->root);
}

DataRef Evaluation::noted(DataRef value) {
    if (value->isValid()) return value;
    const int failure = fields().takeFailure();
    return failure == error::none ? value : failed(failure);
}

/// In a calculation with repetitions, a field without them counts for the first one alone.
DataRef Evaluation::valueOf(const FieldReference& field) {
    if (!field.isOneRepetition && field.repetition > 1 && fields().repetitions(field.place) == 1)
        return emptyResult();
    return noted(fields().value(scope(), field.place, field.repetition));
}

DataVect Evaluation::valuesOf(const FieldReference& field) {
    DataVect values = fields().values(scope(), field.place, field.isOneRepetition ? field.repetition : 0);
    Work::charge(values.size());
    for (DataRef& value : values)
        value = noted(std::move(value));
    return values;
}

} // namespace host::calc
