#include "bridge/StringUtils.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <iterator>
#include <limits>
#include <stdexcept>

namespace {

bool equals(const fmx::Text& text, const char* expected) {
    const fmx::TextUniquePtr other;
    other->Assign(expected);
    return text == *other;
}

} // namespace

std::string bytesFromFMText(const fmx::Text& text, std::size_t size, fmx::Text::Encoding encoding) {
    std::string bytes(size + 1, '\0'); // the host writes a zero after the bytes
    const auto bufferSize =
        std::min<std::size_t>(bytes.size(), std::numeric_limits<fmx::uint32>::max()); // the host's largest
    text.GetBytes(bytes.data(), static_cast<fmx::uint32>(bufferSize), 0, fmx::Text::kSize_End, encoding);
    bytes.pop_back();
    return bytes;
}

std::string StringFromFmText(const fmx::Text& text) {
    std::string result = bytesFromFMText(text, std::size_t{2} * text.GetSize());
    std::erase(result, '\0');
    return result;
}

std::string StringFromFmText(const fmx::TextAutoPtr& text) {
    return text ? StringFromFmText(*text) : std::string();
}

Units unitsFromFMText(const fmx::Text& text) {
    Units units(text.GetSize());
    if (!units.empty()) text.GetUnicode(units.data(), 0, static_cast<fmx::uint32>(units.size()));
    return units;
}

void assignUnits(fmx::Text& text, const Units& units) {
    if (!units.empty()) text.AssignUnicodeWithLength(units.data(), hostLength(units.size()));
}

fmx::uint32 hostLength(std::size_t length) {
    // The host's largest number stands for "to the end" and is no length.
    if (length >= std::numeric_limits<fmx::uint32>::max())
        throw std::length_error("Text too long for the host");
    return static_cast<fmx::uint32>(length);
}

bool isEmpty(const fmx::Text& text) { return text.GetSize() == 0; }

bool isAll(const fmx::Text& text) { return equals(text, "all"); }

bool isSpace(const fmx::Text& text) { return equals(text, " "); }

std::string toLower(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char byte) { return static_cast<char>(std::tolower(byte)); });
    return s;
}

bool is_number(const std::string& s) {
    return !s.empty() && std::all_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string_view takePiece(std::string_view& rest, std::string_view delimiter) {
    // An empty delimiter would be found at every position without ever moving on.
    const std::size_t end = delimiter.empty() ? std::string_view::npos : rest.find(delimiter);
    const std::string_view piece = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + delimiter.size());
    return piece;
}

std::vector<std::string> split(const std::string& s, const std::string& delimiter) {
    std::vector<std::string> pieces;
    for (std::string_view rest = s; !rest.empty();)
        pieces.emplace_back(takePiece(rest, delimiter));
    return pieces;
}

std::vector<std::string> explode(const std::string& s, char separator) {
    return split(s, std::string(1, separator));
}

int indexOfStringInVector(const std::string& s, const std::vector<std::string>& strings) {
    const auto found = std::find(strings.begin(), strings.end(), s);
    return found == strings.end() ? -1 : static_cast<int>(std::distance(strings.begin(), found));
}
