#include "bridge/Unicode.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace {

constexpr char32_t kReplacement = 0xFFFD;
/// The first character that takes two units of UTF-16.
constexpr char32_t kFirstPair = 0x10000;
constexpr char32_t kHighSurrogates = 0xD800, kLowSurrogates = 0xDC00;
/// The bits of a character that one surrogate carries.
constexpr unsigned kSurrogateBits = 10;
constexpr char32_t kSurrogateMask = 0x3FF;
/// The bits of a character that one byte after the lead byte carries.
constexpr unsigned kContinuationBits = 6;
constexpr char32_t kContinuationMask = 0x3F;
constexpr std::size_t kMostContinuations = 3;
constexpr unsigned char kLowestContinuation = 0x80, kHighestContinuation = 0xBF;

/// The bytes that may follow a lead byte: their number, and the range of the first of them. The range
/// excludes overlong forms, surrogates and numbers beyond U+10FFFF.
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

/// The sequence that begins with a byte; the end of kSequences when there is none.
const Sequence* sequenceOf(unsigned char lead) {
    return std::find_if(std::begin(kSequences), std::end(kSequences),
                        [lead](const Sequence& s) { return lead >= s.firstLead && lead <= s.lastLead; });
}

/// The character at `position` of UTF-8, which moves past it. U+FFFD for a malformed sequence.
char32_t characterFromUtf8(std::string_view utf8, std::size_t& position) {
    const auto lead = static_cast<unsigned char>(utf8[position++]);
    const Sequence* const sequence = sequenceOf(lead);
    if (sequence == std::end(kSequences)) return kReplacement;
    char32_t character = lead & sequence->leadMask;
    unsigned char lowest = sequence->lowest;
    unsigned char highest = sequence->highest;
    for (unsigned char i = 0; i < sequence->more; ++i) {
        if (position == utf8.size()) return kReplacement;
        const auto byte = static_cast<unsigned char>(utf8[position]);
        if (byte < lowest || byte > highest) return kReplacement;
        character = (character << kContinuationBits) | (byte & kContinuationMask);
        ++position;
        lowest = kLowestContinuation;
        highest = kHighestContinuation;
    }
    return character;
}

bool isSurrogate(char32_t unit, char32_t half) { return (unit & ~kSurrogateMask) == half; }

/// The character at `position` of UTF-16, which moves past it. U+FFFD for a surrogate without its other half.
template<class Utf16>
char32_t characterFromUtf16(const Utf16& units, std::size_t& position) {
    const char32_t unit = units[position++];
    if (!isSurrogate(unit, kHighSurrogates)) return isSurrogate(unit, kLowSurrogates) ? kReplacement : unit;
    const char32_t next = position < units.size() ? units[position] : 0;
    if (!isSurrogate(next, kLowSurrogates)) return kReplacement;
    ++position;
    return kFirstPair + ((unit & kSurrogateMask) << kSurrogateBits) + (next & kSurrogateMask);
}

void appendCharacter(Units& units, char32_t character) {
    if (character < kFirstPair) {
        units.push_back(static_cast<unsigned short>(character));
        return;
    }
    const char32_t offset = character - kFirstPair;
    units.push_back(static_cast<unsigned short>(kHighSurrogates + (offset >> kSurrogateBits)));
    units.push_back(static_cast<unsigned short>(kLowSurrogates + (offset & kSurrogateMask)));
}

void appendCharacter(std::string& utf8, char32_t character) {
    unsigned more = 0; // bytes after the lead byte
    if (character >= 0x80U) more = character < 0x800U ? 1 : character < kFirstPair ? 2 : 3;
    constexpr unsigned char leads[] = {0x00, 0xC0, 0xE0, 0xF0};
    utf8.push_back(static_cast<char>(leads[more] | (character >> (kContinuationBits * more))));
    while (more-- > 0)
        utf8.push_back(static_cast<char>(kLowestContinuation |
                                         ((character >> (kContinuationBits * more)) & kContinuationMask)));
}

} // namespace

void appendUtf16(Units& units, std::string_view utf8) {
    for (std::size_t position = 0; position < utf8.size();) {
        // Most text is ASCII for long stretches, which are copied as a whole.
        const char* const start = utf8.data() + position;
        const char* const end = std::find_if(start, utf8.data() + utf8.size(), [](char byte) {
            return (static_cast<unsigned char>(byte) & 0x80U) != 0;
        });
        units.insert(units.end(), start, end);
        position += static_cast<std::size_t>(end - start);
        if (position < utf8.size()) appendCharacter(units, characterFromUtf8(utf8, position));
    }
}

Units utf16FromUtf8(std::string_view utf8) {
    Units units;
    units.reserve(utf8.size());
    appendUtf16(units, utf8);
    return units;
}

std::string_view withoutCutCharacter(std::string_view utf8) {
    const std::size_t earliest = utf8.size() - std::min<std::size_t>(utf8.size(), kMostContinuations + 1);
    std::size_t last = utf8.size();
    while (last > earliest) {
        const Sequence* const sequence = sequenceOf(static_cast<unsigned char>(utf8[--last]));
        if (sequence != std::end(kSequences))
            return utf8.size() - last <= sequence->more ? utf8.substr(0, last) : utf8;
    }
    return utf8;
}

std::string utf8FromUtf16(std::u16string_view units) {
    std::string utf8;
    utf8.reserve(units.size());
    for (std::size_t position = 0; position < units.size();)
        appendCharacter(utf8, characterFromUtf16(units, position));
    return utf8;
}

Units wellFormed(Units units) {
    for (std::size_t position = 0; position < units.size();) {
        const std::size_t start = position;
        if (characterFromUtf16(units, position) == kReplacement) units[start] = kReplacement;
    }
    return units;
}
