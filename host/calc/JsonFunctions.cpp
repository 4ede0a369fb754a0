#include "host/calc/Arguments.h"
#include "host/calc/BuiltIns.h"
#include "host/values/Encoding.h"
#include "host/values/Json.h"

#include <algorithm>
#include <array>

namespace host::calc {

namespace {

/// Why a JSON function has no result; its message follows a "?".
struct JsonError {
    std::string message;
};
constexpr const char* wrongPath = "Incorrect key, index, or path";

/// A function whose JsonError is its result.
template<DataRef (*function)(Arguments)>
DataRef reported(Arguments arguments) {
    try {
        return function(arguments);
    } catch (const JsonError& error) {
        return textResult(Text::fromUtf8("? " + error.message));
    }
}

/// The parsed form of a text, which stays with the value: the values of a calculation are shared, and the one
/// that deletes them holds it.
struct ParsedForm {
    JsonReading reading;
    void operator()(const Data* value) const { delete value; }
};
DataRef withForm(Text text, JsonReading reading) {
    return {new Data(std::move(text)), ParsedForm{std::move(reading)}};
}

/// Counts the work of reading or copying all elements of a text, which may not have more than 2^26 units.
void chargeForAll(const DataRef& value) {
    constexpr std::size_t mostUnits = std::size_t{1} << 26U, unitsOfStep = 32;
    if (value->asText().size() > mostUnits) throw Error{error::unspecific};
    Work::charge(value->asText().size() / unitsOfStep);
}

std::string jsonTextOf(const DataRef& value) {
    chargeForAll(value);
    return toUtf8(value->asText().units());
}

/// The texts that were read last on this thread, while their values live: solutions ask one text for many
/// elements.
class RecentReadings {
public:
    JsonReading of(const DataRef& value) {
        for (const Entry& entry : entries_)
            if (entry.value.lock() == value) return entry.reading;
        Entry entry{.value = value, .reading = readJson(jsonTextOf(value))};
        if (value->asText().size() > kMostUnits) return std::move(entry.reading);
        entries_.at(next_) = entry;
        next_ = (next_ + 1) % entries_.size();
        return std::move(entry.reading);
    }

private:
    static constexpr std::size_t kMostUnits = std::size_t{1} << 22U;
    struct Entry {
        std::weak_ptr<const Data> value;
        JsonReading reading;
    };
    std::array<Entry, 4> entries_;
    std::size_t next_ = 0;
};

JsonReading readingOf(const DataRef& value) {
    thread_local RecentReadings recent;
    const auto* const form = std::get_deleter<ParsedForm>(value);
    return form != nullptr ? form->reading : recent.of(value);
}

std::shared_ptr<const Json> rootOf(const DataRef& value) {
    JsonReading reading = readingOf(value);
    if (!reading.root) throw JsonError{std::move(reading.problem)};
    return std::move(reading.root);
}

Json copyOf(const DataRef& value) {
    chargeForAll(value);
    return *rootOf(value);
}

std::vector<JsonStep> pathOf(const DataRef& value) {
    auto steps = readJsonPath(toUtf8(value->asText().units()));
    if (!steps) throw JsonError{wrongPath};
    return *std::move(steps);
}

// --- Elements as values ---

/// The numbers of the type words.
enum Type : std::uint8_t { raw, string, number, object, array, boolean, null };

int typeOf(const Json& element) {
    constexpr std::array<Type, 6> types{null, boolean, number, string, array, object};
    return types.at(element.value.index());
}

DataRef valueOf(const Json& element) {
    struct Reader {
        const Json& element;
        DataRef operator()(std::monostate) const { return textResult({}); }
        DataRef operator()(bool value) const { return booleanResult(value); }
        DataRef operator()(const JsonNumber& value) const {
            return optionalResult(Decimal::parse(fromUtf8(value.text)));
        }
        DataRef operator()(const std::string& value) const { return textResult(Text::fromUtf8(value)); }
        DataRef operator()(const JsonArray&) const { return container(); }
        DataRef operator()(const JsonObject&) const { return container(); }
        [[nodiscard]] DataRef container() const { return textResult(Text::fromUtf8(compactText(element))); }
    };
    return std::visit(Reader{element}, element.value);
}

// --- Values as elements ---

Json asString(const DataRef& value) { return {toUtf8(value->asText().units())}; }
Json asNumber(const DataRef& value) { return {JsonNumber::of(value->asNumber())}; }
Json asNull(const DataRef&) { return {}; }

Json asBoolean(const DataRef& value) {
    const std::u16string name = foldName(value->asText().units());
    if (name == u"true" || name == u"false") return {name == u"true"};
    return {value->asBoolean()};
}

/// The first element of a text, or the text as a string. A value that is a number needs no reading.
Json asRaw(const DataRef& value) {
    if (value->nativeType() == DataType::number) return asNumber(value);
    auto element = readFirstJson(jsonTextOf(value));
    return element ? *std::move(element) : asString(value);
}

template<typename Container>
Json asContainer(const DataRef& value) {
    if (value->isEmpty()) return {Container()};
    return copyOf(value);
}

Json elementOf(const DataRef& value, const DataRef& type) {
    // The types are by number; any other number is raw.
    constexpr std::array<Json (*)(const DataRef&), 7> makers{
        asRaw, asString, asNumber, asContainer<JsonObject>, asContainer<JsonArray>, asBoolean, asNull};
    const std::int64_t number = whole(type);
    const bool isKnown = number >= 0 && std::cmp_less(number, makers.size());
    return makers.at(isKnown ? static_cast<std::size_t>(number) : 0)(value);
}

// --- Functions ---

/// JSONGetElement ( json ; keyOrIndexOrPath )
DataRef getElement(Arguments arguments) {
    const auto root = rootOf(arguments[0]);
    const Json* const element = findElement(*root, pathOf(arguments[1]));
    return element == nullptr ? textResult({}) : valueOf(*element);
}

DataRef getElementType(Arguments arguments) {
    const auto root = rootOf(arguments[0]);
    const Json* const element = findElement(*root, pathOf(arguments[1]));
    if (element == nullptr) throw JsonError{wrongPath};
    return numberResult(typeOf(*element));
}

/// Lines, with a return between them.
class Lines {
public:
    void add(const Text& line) {
        if (!isFirst_) text_.append(std::u16string_view(u"\r"));
        isFirst_ = false;
        text_.append(line);
        checkTextSize(text_.size());
    }
    [[nodiscard]] DataRef result() && { return textResult(std::move(text_)); }

private:
    Text text_;
    bool isFirst_ = true;
};

/// The keys (or indexes) of a container, or its values; nothing of any other element.
template<bool areKeys>
DataRef listElements(Arguments arguments) {
    const auto root = rootOf(arguments[0]);
    const Json* const element = findElement(*root, pathOf(arguments[1]));
    if (element == nullptr) return textResult({});
    Lines lines;
    if (const auto* items = std::get_if<JsonArray>(&element->value))
        for (std::size_t i = 0; i < items->size(); ++i)
            lines.add(areKeys ? Decimal(static_cast<std::int64_t>(i)).text()
                              : valueOf((*items)[i])->asText());
    if (const auto* members = std::get_if<JsonObject>(&element->value))
        for (const auto& [key, child] : *members)
            lines.add(areKeys ? Text::fromUtf8(key) : valueOf(child)->asText());
    return std::move(lines).result();
}

/// JSONSetElement ( json ; keyOrIndexOrPath ; value ; type ), or with three of these in each of several
/// brackets, done in order.
DataRef setElement(Arguments arguments) {
    constexpr std::size_t mostNulls = 100'000, nullsOfStep = 4;
    Json root;
    if (!arguments[0]->isEmpty())
        root = copyOf(arguments[0]);
    else if (arguments[1]->asText().units().starts_with(u'['))
        root.value = JsonArray();
    else
        root.value = JsonObject();
    for (std::size_t i = 1; i < arguments.size(); i += 3) {
        std::size_t nulls = mostNulls;
        Json* const element = makeElement(root, pathOf(arguments[i]), nulls);
        Work::charge((mostNulls - nulls) / nullsOfStep);
        if (element == nullptr) throw JsonError{wrongPath};
        *element = elementOf(arguments[i + 1], arguments[i + 2]);
    }
    Text text = Text::fromUtf8(compactText(root));
    if (!root.isContainer()) return textResult(std::move(text));
    return withForm(std::move(text), {.root = std::make_shared<const Json>(std::move(root)), .problem = {}});
}

DataRef deleteElement(Arguments arguments) {
    Json root = copyOf(arguments[0]);
    removeElement(root, pathOf(arguments[1]));
    return textResult(Text::fromUtf8(compactText(root)));
}

DataRef formatElements(Arguments arguments) {
    return textResult(Text::fromUtf8(formattedText(*rootOf(arguments[0]))));
}

/// The pieces between separators; an empty separator stands for every line end. A separator at the very end
/// opens no further piece.
std::vector<std::u16string_view> piecesOf(std::u16string_view text, std::u16string_view separator) {
    constexpr std::u16string_view lineEnds = u"\r\n\u0085\u2028\u2029";
    std::vector<std::u16string_view> pieces;
    while (!text.empty()) {
        const std::size_t found = separator.empty() ? text.find_first_of(lineEnds) : text.find(separator);
        pieces.push_back(text.substr(0, found));
        if (found == std::u16string_view::npos) break;
        text.remove_prefix(found);
        const std::size_t size = text.starts_with(u"\r\n") ? 2 : 1;
        text.remove_prefix(separator.empty() ? size : separator.size());
    }
    return pieces;
}

/// JSONMakeArray ( listOfValues ; separator ; type )
DataRef makeArray(Arguments arguments) {
    JsonArray elements;
    for (const auto piece : piecesOf(arguments[0]->asText().units(), arguments[1]->asText().units())) {
        Work::charge();
        elements.push_back(elementOf(textResult(std::u16string(piece)), arguments[2]));
    }
    return textResult(Text::fromUtf8(compactText({std::move(elements)})));
}

/// The text itself, with its parsed form.
DataRef parse(Arguments arguments) {
    JsonReading reading = readingOf(arguments[0]);
    Text text = reading.root ? arguments[0]->asText() : Text::fromUtf8("? " + reading.problem);
    return withForm(std::move(text), std::move(reading));
}

/// The type of the root of a parsed form, -1 of one that is broken, 0 where there is none.
DataRef parsedState(Arguments arguments) {
    const auto* const form = std::get_deleter<ParsedForm>(arguments[0]);
    if (form == nullptr) return numberResult(0);
    return numberResult(form->reading.root ? typeOf(*form->reading.root) : -1);
}

constexpr std::array rows{
    EagerRow{u"JSONDeleteElement", reported<deleteElement>},
    EagerRow{u"JSONFormatElements", reported<formatElements>},
    EagerRow{u"JSONGetElement", reported<getElement>},
    EagerRow{u"JSONGetElementType", reported<getElementType>},
    EagerRow{u"JSONListKeys", reported<listElements<true>>},
    EagerRow{u"JSONListValues", reported<listElements<false>>},
    EagerRow{u"JSONMakeArray", reported<makeArray>},
    EagerRow{u"JSONParse", parse},
    EagerRow{u"JSONParsedState", parsedState},
    EagerRow{u"JSONSetElement", reported<setElement>, 3},
};

} // namespace

void addJsonFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
