#include "host/calc/Collator.h"

#include "host/calc/Engine.h"
#include "host/values/Formats.h"

#include <algorithm>
#include <array>
#include <unicode/ucol.h>
#include <unicode/utf16.h>

namespace host::calc {

namespace {

constexpr const char* kByCode = "";

struct Language {
    std::u16string_view name; ///< folded
    const char* locale;       ///< ICU's
};
constexpr std::array kLanguages{
    Language{u"", nullptr}, // the file's
    Language{u"arabic", "ar"},
    Language{u"bengali", "bn"},
    Language{u"bulgarian", "bg"},
    Language{u"catalan", "ca"},
    Language{u"catalog", "en"},
    Language{u"chinese", "zh@collation=pinyin"},
    Language{u"chinese_stroke", "zh@collation=stroke"},
    Language{u"croatian", "hr"},
    Language{u"czech", "cs"},
    Language{u"danish", "da"},
    Language{u"dutch", "nl"},
    Language{u"english", "en"},
    Language{u"estonian", "et"},
    Language{u"finnish", "fi@collation=traditional"}, // v and w are one letter
    Language{u"finnish_custom", "fi"},                // v and w are two
    Language{u"french", "fr"},
    Language{u"german", "de@collation=phonebook"}, // "ä" stands at "ae"
    Language{u"german_dictionary", "de"},          // "ä" stands at "a"
    Language{u"greek", "el"},
    Language{u"greek_mixed", "el"},
    Language{u"gujarati", "gu"},
    Language{u"hebrew", "he"},
    Language{u"hindi", "hi"},
    Language{u"hungarian", "hu"},
    Language{u"icelandic", "is"},
    Language{u"italian", "it"},
    Language{u"japanese", "ja"},
    Language{u"kannada", "kn"},
    Language{u"korean", "ko"},
    Language{u"latvian", "lv"},
    Language{u"lithuanian", "lt"},
    Language{u"malayalam", "ml"},
    Language{u"marathi", "mr"},
    Language{u"norwegian", "nb"},
    Language{u"panjabi", "pa"},
    Language{u"persian", "fa"},
    Language{u"polish", "pl"},
    Language{u"portuguese", "pt"},
    Language{u"romanian", "ro"},
    Language{u"russian", "ru"},
    Language{u"serbian", "sr"},
    Language{u"slovak", "sk"},
    Language{u"slovenian", "sl"},
    Language{u"spanish", "es"},
    Language{u"spanish_traditional", "es@collation=traditional"},
    Language{u"swedish", "sv@collation=traditional"},
    Language{u"swedish_custom", "sv"},
    Language{u"tamil", "ta"},
    Language{u"telugu", "te"},
    Language{u"thai", "th"},
    Language{u"turkish", "tr"},
    Language{u"ukrainian", "uk"},
    Language{u"unicode_raw", kByCode},
    Language{u"unicode_standard", "root"},
    Language{u"vietnamese", "vi"},
};

/// The code of each character in three bytes, the highest first.
std::string codesOf(std::u16string_view text) {
    std::string bytes;
    bytes.reserve(3 * text.size());
    for (std::size_t at = 0; at < text.size();) {
        UChar32 point = 0;
        U16_NEXT(text.data(), at, text.size(), point);
        for (const int shift : {16, 8, 0})
            bytes += static_cast<char>((point >> shift) & 0xFF);
    }
    return bytes;
}

} // namespace

void Collator::Close::operator()(UCollator* collator) const { ucol_close(collator); }

std::optional<Collator> Collator::of(std::u16string_view language, Counting counting) {
    const auto row = std::find_if(
        kLanguages.begin(), kLanguages.end(),
        [name = foldName(language)](const Language& candidate) { return candidate.name == name; });
    if (row == kLanguages.end()) return std::nullopt;
    Collator result;
    if (row->locale == kByCode) return result;
    UErrorCode status = U_ZERO_ERROR;
    const char* const locale = row->locale == nullptr ? formats().locale.c_str() : row->locale;
    result.collator_.reset(ucol_open(locale, &status));
    if (U_FAILURE(status)) throw Error{error::unspecific};
    ucol_setStrength(result.collator_.get(), counting == Counting::letters ? UCOL_PRIMARY : UCOL_SECONDARY);
    return result;
}

std::string Collator::key(std::u16string_view text) const {
    if (!collator_) return codesOf(text);
    std::string bytes(4 * text.size() + 16, '\0');
    for (;;) {
        const auto size = static_cast<std::size_t>(ucol_getSortKey(
            collator_.get(), text.data(), static_cast<std::int32_t>(text.size()),
            reinterpret_cast<std::uint8_t*>(bytes.data()), static_cast<std::int32_t>(bytes.size())));
        const bool fits = size <= bytes.size();
        bytes.resize(size);
        if (!fits) continue;
        bytes.shrink_to_fit();
        return bytes;
    }
}

} // namespace host::calc
