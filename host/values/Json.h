#pragma once

#include "host/values/Decimal.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// JSON: elements, the texts that they are read from and written to, and paths to them. All texts are UTF-8.

namespace host {

struct Json;

/// A number in the form that JSON writes: a zero before the point, no trailing zeros.
struct JsonNumber {
    std::string text;
    static JsonNumber of(const Decimal& number);
};
using JsonArray = std::vector<Json>;
/// Members by the code points of their keys, the order in which they are written.
using JsonObject = std::map<std::string, Json, std::less<>>;

/// An element; std::monostate is null.
struct Json {
    std::variant<std::monostate, bool, JsonNumber, std::string, JsonArray, JsonObject> value;

    [[nodiscard]] bool isContainer() const { return value.index() >= 4; }
    [[nodiscard]] bool isEmptyContainer() const;
};

/// How deeply elements of a text, and steps of a path, may be nested.
inline constexpr std::size_t kMostJsonLevels = 500;

/// A text that was read: its element, or the place and the kind of its error, in two lines.
struct JsonReading {
    std::shared_ptr<const Json> root;
    std::string problem; ///< set when there is no root
};
/// Reads a text that is an object or an array and nothing more.
JsonReading readJson(std::string_view text);
/// The element at the start of a text, of any type; the text after it is ignored. std::nullopt when there is
/// none.
std::optional<Json> readFirstJson(std::string_view text);

/// The text without blanks between elements.
std::string compactText(const Json& element);
/// One tab a level, with line feeds and a blank on both sides of a colon. An array of short values without
/// containers that hold something stays on one line. No line feed stands at the end. A text that would be
/// longer than `kMostFormattedBytes` throws std::length_error.
inline constexpr std::size_t kMostFormattedBytes = std::size_t{1} << 28U;
std::string formattedText(const Json& element);

/// A step of a path from an element to one inside it.
struct JsonStep {
    enum class Kind { key, index, last, append };
    Kind kind = Kind::key;
    std::string key;                       ///< of a member
    std::optional<std::size_t> index = {}; ///< in an array; also set for a key of digits
};
using JsonSteps = std::span<const JsonStep>;

/// Reads "a.b[2].c", ".a[2]c", "['a.b'][:]", "[+]"; "" and "." have no step. Nothing for any other text, and
/// for more than `kMostJsonLevels` steps.
std::optional<std::vector<JsonStep>> readJsonPath(std::string_view path);

/// The element at the end of a path; null when there is none.
const Json* findElement(const Json& root, JsonSteps steps);
/// Removes the element at the end of a path, where there is one.
void removeElement(Json& root, JsonSteps steps);
/// The element at the end of a path, which is made when it is missing. Elements of another kind on the way
/// are replaced, and nulls fill an array up to an index past its end; they are taken from `nulls`. Null when
/// these do not suffice.
Json* makeElement(Json& root, JsonSteps steps, std::size_t& nulls);

} // namespace host
