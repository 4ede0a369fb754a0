#include "host/values/Json.h"

#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace host {

namespace {

/// Builds elements from the events of the library's reader, which has no numbers of more than 17 digits.
class Builder {
public:
    explicit Builder(std::string_view text) : text_(text) {}

    [[nodiscard]] Json& root() { return root_; }
    [[nodiscard]] bool isComplete() const { return isComplete_; }
    [[nodiscard]] const std::string& problem() const { return problem_; }

    bool null() { return add({}); }
    bool boolean(bool value) { return add({value}); }
    bool number_integer(std::int64_t value) { return add({JsonNumber{std::to_string(value)}}); }
    bool number_unsigned(std::uint64_t value) { return add({JsonNumber{std::to_string(value)}}); }
    /// A number with an exponent stays as it is where its digits would be many.
    bool number_float(double, const std::string& written) {
        constexpr std::size_t mostDigits = 40;
        const auto number = Decimal::parse(fromUtf8(written));
        JsonNumber digits = number ? JsonNumber::of(*number) : JsonNumber{written};
        const bool isLong = digits.text.size() > std::max(mostDigits, written.size());
        return add({isLong ? JsonNumber{written} : std::move(digits)});
    }
    bool string(std::string& value) { return add({std::move(value)}); }
    static bool binary(nlohmann::json::binary_t&) { return false; } // not part of texts
    bool start_array(std::size_t) { return open({JsonArray{}}); }
    bool start_object(std::size_t) { return open({JsonObject{}}); }
    bool end_array() { return close(); }
    bool end_object() { return close(); }
    bool key(std::string& value) {
        key_ = std::move(value);
        return true;
    }
    bool parse_error(std::size_t position, const std::string& token, const nlohmann::json::exception& error);

private:
    void report(std::size_t position, std::string_view sentence);
    Json* insert(Json element);
    bool add(Json element) {
        insert(std::move(element));
        isComplete_ = open_.empty();
        return true;
    }
    bool open(Json container);
    bool close() {
        open_.pop_back();
        isComplete_ = open_.empty();
        return true;
    }

    std::string_view text_;
    Json root_;
    bool isComplete_ = false;
    std::vector<Json*> open_; ///< containers around the next element; only the last one grows
    std::string key_, problem_;
};

Json* Builder::insert(Json element) {
    if (open_.empty()) {
        root_ = std::move(element);
        return &root_;
    }
    if (auto* array = std::get_if<JsonArray>(&open_.back()->value))
        return &array->emplace_back(std::move(element));
    auto& object = std::get<JsonObject>(open_.back()->value);
    return &object.insert_or_assign(std::move(key_), std::move(element)).first->second;
}

bool Builder::open(Json container) {
    if (open_.size() == kMostJsonLevels) {
        report(0, "Elements are nested too deeply.");
        return false;
    }
    open_.push_back(insert(std::move(container)));
    return true;
}

/// Sentences by what the reader was reading, which its message says.
struct Sentence {
    std::string_view context, text;
};
constexpr std::array sentences{
    Sentence{"while parsing object key", "Missing '}' or object member name"},
    Sentence{"while parsing object separator", "Missing ':' after object member name"},
    Sentence{"while parsing object", "Missing ',' or '}' in object declaration"},
    Sentence{"while parsing array", "Missing ',' or ']' in array declaration"},
    Sentence{"", "Syntax error: value, object or array expected."},
};

/// The line and the column, from 1, of a byte; a return, a line feed or both end a line.
std::string placeOf(std::string_view text, std::size_t at) {
    std::size_t line = 1, column = 1;
    for (std::size_t i = 0; i < std::min(at, text.size()); ++i) {
        const bool isPair = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
        if ((text[i] == '\n' || text[i] == '\r') && !isPair) {
            ++line;
            column = 1;
        } else if ((static_cast<unsigned char>(text[i]) & 0xC0U) != 0x80U) {
            ++column; // not inside a character
        }
    }
    return "Line " + std::to_string(line) + ", Column " + std::to_string(column);
}

void Builder::report(std::size_t position, std::string_view sentence) {
    problem_ = "* " + placeOf(text_, position) + "\n  ";
    problem_ += sentence;
}

/// The bytes of a token, of which the library writes a control character as "<U+000D>".
std::size_t bytesOfToken(std::string_view token) {
    constexpr std::string_view opening = "<U+";
    constexpr std::size_t writtenSize = 8;
    std::size_t bytes = token.size();
    for (std::size_t at = token.find(opening); at != std::string_view::npos; at = token.find(opening, at + 1))
        bytes -= std::min(writtenSize - 1, bytes);
    return bytes;
}

/// The place of the wrong token, or of the text's end when its end is missing. `read` ends with the token.
/// The library keeps the token's own text only for strings and numbers.
std::size_t startOfToken(std::string_view read, std::string_view token, std::string_view message) {
    const auto says = [&](std::string_view part) { return message.find(part) != std::string_view::npos; };
    const auto isLetter = [](char byte) { return byte >= 'a' && byte <= 'z'; };
    if (read.empty() || says("unexpected end of input")) return read.size();
    for (const std::string_view kept :
         {"invalid string", "invalid number", "unexpected string", "unexpected number"})
        if (says(kept)) return read.size() - std::min(read.size(), bytesOfToken(token));
    std::size_t start = read.size() - 1;
    if (!says("invalid literal") && !isLetter(read.back())) return start;
    while (start > 0 && isLetter(read[start - 1]))
        --start;
    return start;
}

bool Builder::parse_error(std::size_t position, const std::string& token,
                          const nlohmann::json::exception& error) {
    const std::size_t start = startOfToken(text_.substr(0, position), token, error.what());
    if (isComplete_) {
        report(start, "Extra non-whitespace after JSON value.");
        return false;
    }
    constexpr std::string_view introduction = "syntax error ";
    std::string_view message = error.what();
    const std::size_t found = message.find(introduction);
    message.remove_prefix(found == std::string_view::npos ? message.size() : found + introduction.size());
    const auto* const sentence = std::find_if(sentences.begin(), sentences.end(), [&](const Sentence& row) {
        return message.starts_with(row.context);
    });
    report(start, sentence->text);
    return false;
}

/// The library writes strings as wanted: "/" and characters beyond ASCII stay as they are.
std::string quoted(const std::string& text) {
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

/// Elements that are written the same way in every layout; empty for a container that holds something.
std::string plainText(const Json& element) {
    struct Writer {
        std::string operator()(std::monostate) const { return "null"; }
        std::string operator()(bool value) const { return value ? "true" : "false"; }
        std::string operator()(const JsonNumber& value) const { return value.text; }
        std::string operator()(const std::string& value) const { return quoted(value); }
        std::string operator()(const JsonArray& value) const { return value.empty() ? "[]" : ""; }
        std::string operator()(const JsonObject& value) const { return value.empty() ? "{}" : ""; }
    };
    return std::visit(Writer(), element.value);
}

void writeCompact(const Json& element, std::string& out) {
    if (const auto* array = std::get_if<JsonArray>(&element.value)) {
        out += '[';
        for (const Json& child : *array) {
            if (&child != &array->front()) out += ',';
            writeCompact(child, out);
        }
        out += ']';
    } else if (const auto* object = std::get_if<JsonObject>(&element.value)) {
        out += '{';
        for (const auto& [key, child] : *object) {
            if (out.back() != '{') out += ',';
            out += quoted(key) + ':';
            writeCompact(child, out);
        }
        out += '}';
    } else {
        out += plainText(element);
    }
}

std::size_t charactersOf(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    }));
}

/// An array that fits on one line, "[ 1, 2 ]"; nothing for any other element.
std::optional<std::string> lineOf(const Json& element) {
    constexpr std::size_t longest = 73;
    const auto* const array = std::get_if<JsonArray>(&element.value);
    if (array == nullptr || array->empty()) return std::nullopt;
    std::string line = "[ ";
    for (const Json& child : *array) {
        if (child.isContainer() && !child.isEmptyContainer()) return std::nullopt;
        if (&child != &array->front()) line += ", ";
        line += plainText(child);
        if (line.size() > 4 * longest) return std::nullopt; // a character has at most four bytes
    }
    line += " ]";
    return charactersOf(line) > longest ? std::nullopt : std::optional(line);
}

/// Writes an element from the place that `out` has reached; it continues on lines of `level` tabs.
void writeFormatted(const Json& element, std::size_t level, std::string& out) {
    if (std::string plain = plainText(element); !plain.empty()) {
        out += plain;
        return;
    }
    if (const auto line = lineOf(element)) {
        out += *line;
        return;
    }
    const auto startLine = [&](std::size_t tabs) {
        if (out.size() > kMostFormattedBytes) throw std::length_error("a formatted text would be too long");
        out += '\n';
        out.append(tabs, '\t');
    };
    if (const auto* array = std::get_if<JsonArray>(&element.value)) {
        out += '[';
        for (const Json& child : *array) {
            if (&child != &array->front()) out += ',';
            startLine(level + 1);
            writeFormatted(child, level + 1, out);
        }
        startLine(level);
        out += ']';
    } else {
        out += '{';
        for (const auto& [key, child] : std::get<JsonObject>(element.value)) {
            if (out.back() != '{') out += ',';
            startLine(level + 1);
            out += quoted(key) + " : ";
            if (child.isContainer() && !child.isEmptyContainer() && !lineOf(child)) startLine(level + 1);
            writeFormatted(child, level + 1, out);
        }
        startLine(level);
        out += '}';
    }
}

} // namespace

JsonNumber JsonNumber::of(const Decimal& number) {
    std::string text = toUtf8(number.text());
    const std::size_t first = text.starts_with('-') ? 1 : 0;
    if (text[first] == '.') text.insert(first, 1, '0');
    return {std::move(text)};
}

bool Json::isEmptyContainer() const {
    const auto* const array = std::get_if<JsonArray>(&value);
    const auto* const object = std::get_if<JsonObject>(&value);
    return (array != nullptr && array->empty()) || (object != nullptr && object->empty());
}

JsonReading readJson(std::string_view text) {
    Builder builder(text);
    if (!nlohmann::json::sax_parse(text, &builder)) return {.root = nullptr, .problem = builder.problem()};
    if (!builder.root().isContainer())
        return {
            .root = nullptr,
            .problem =
                "* Line 1, Column 1\n  A valid JSON document must be either an array or an object value."};
    return {.root = std::make_shared<const Json>(std::move(builder.root())), .problem = {}};
}

std::optional<Json> readFirstJson(std::string_view text) {
    Builder builder(text);
    nlohmann::json::sax_parse(text, &builder, nlohmann::json::input_format_t::json, false);
    return builder.isComplete() ? std::optional(std::move(builder.root())) : std::nullopt;
}

std::string compactText(const Json& element) {
    std::string text;
    writeCompact(element, text);
    return text;
}

std::string formattedText(const Json& element) {
    std::string text;
    writeFormatted(element, 0, text);
    return text;
}

} // namespace host
