#include "bridge/StringUtils.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <iterator>
#include <limits>
#include <stdexcept>

namespace {

constexpr char32_t kReplacement = 0xFFFD;

/// What may follow a lead byte: how many more bytes, and the range of the first of them, which excludes
/// overlong forms, surrogates and numbers beyond U+10FFFF.
struct Sequence {
    unsigned char firstLead, lastLead;
    unsigned char more;
    unsigned char lowest, highest;
    unsigned char leadMask;
};

constexpr Sequence kSequences[] = {
    {0x00, 0x7F, 0, 0x00, 0x00, 0x7F}, {0xC2, 0xDF, 1, 0x80, 0xBF, 0x1F}, {0xE0, 0xE0, 2, 0xA0, 0xBF, 0x0F},
    {0xE1, 0xEC, 2, 0x80, 0xBF, 0x0F}, {0xED, 0xED, 2, 0x80, 0x9F, 0x0F}, {0xEE, 0xEF, 2, 0x80, 0xBF, 0x0F},
    {0xF0, 0xF0, 3, 0x90, 0xBF, 0x07}, {0xF1, 0xF3, 3, 0x80, 0xBF, 0x07}, {0xF4, 0xF4, 3, 0x80, 0x8F, 0x07},
};

/// The character at `position`, which moves behind it.
char32_t nextCharacter(std::string_view utf8, std::size_t& position) {
    const auto lead = static_cast<unsigned char>(utf8[position++]);
    const auto* const sequence =
        std::find_if(std::begin(kSequences), std::end(kSequences),
                     [lead](const Sequence& s) { return lead >= s.firstLead && lead <= s.lastLead; });
    if (sequence == std::end(kSequences)) return kReplacement;
    char32_t character = lead & sequence->leadMask;
    unsigned char lowest = sequence->lowest;
    unsigned char highest = sequence->highest;
    for (unsigned char i = 0; i < sequence->more; ++i) {
        if (position == utf8.size()) return kReplacement;
        const auto byte = static_cast<unsigned char>(utf8[position]);
        if (byte < lowest || byte > highest) return kReplacement;
        character = (character << 6U) | (byte & 0x3FU);
        ++position;
        lowest = 0x80;
        highest = 0xBF;
    }
    return character;
}

bool equals(const fmx::Text& text, const char* expected) {
    const fmx::TextUniquePtr other;
    other->Assign(expected);
    return text == *other;
}

} // namespace

std::string bytesFromFMText(const fmx::Text& text, std::size_t size) {
    std::string bytes(size + 1, '\0'); // the host writes a zero behind the bytes
    const auto bufferSize =
        std::min<std::size_t>(bytes.size(), std::numeric_limits<fmx::uint32>::max()); // the host's largest
    text.GetBytes(bytes.data(), static_cast<fmx::uint32>(bufferSize), 0, fmx::Text::kSize_End,
                  fmx::Text::kEncoding_UTF8);
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

std::vector<fmx::uint16> unitsFromFMText(const fmx::Text& text) {
    std::vector<fmx::uint16> units(text.GetSize());
    if (!units.empty()) text.GetUnicode(units.data(), 0, static_cast<fmx::uint32>(units.size()));
    return units;
}

std::vector<fmx::uint16> utf16FromUtf8(std::string_view utf8) {
    std::vector<fmx::uint16> units;
    units.reserve(utf8.size());
    appendUtf16(units, utf8);
    return units;
}

void appendUtf16(std::vector<fmx::uint16>& units, std::string_view utf8) {
    for (std::size_t position = 0; position < utf8.size();) {
        // Most text is ASCII for long stretches, which go over as a whole.
        const char* const start = utf8.data() + position;
        const char* const end = std::find_if(start, utf8.data() + utf8.size(), [](char byte) {
            return (static_cast<unsigned char>(byte) & 0x80U) != 0;
        });
        units.insert(units.end(), start, end);
        position += static_cast<std::size_t>(end - start);
        if (position == utf8.size()) break;

        const char32_t character = nextCharacter(utf8, position);
        if (character < 0x10000U) {
            units.push_back(static_cast<fmx::uint16>(character));
        } else {
            const char32_t offset = character - 0x10000U;
            units.push_back(static_cast<fmx::uint16>(0xD800U + (offset >> 10U)));
            units.push_back(static_cast<fmx::uint16>(0xDC00U + (offset & 0x3FFU)));
        }
    }
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
