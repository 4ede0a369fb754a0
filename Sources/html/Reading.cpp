#include "html/Reading.h"

#include "bridge/StringUtils.h"
#include "bridge/cFMUtils.h"
#include "html/Css.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace {

using Style = fmx::CharacterStyle;
using Face = Style::Face;

/// The faces by their formatting. Formattings of one group exclude each other; the first one wins.
const struct {
    Face bits;
    int group;
    const char* formatting;
} kFaces[] = {
    {Style::kFace_Italic, 1, "italic"},
    {Style::kFace_Bold, 2, "bold"},
    {Style::kFace_Shadow, 3, "highlight"},
    {Style::kFace_Underline, 4, "underline"},
    {Style::kFace_DoubleUnderline, 4, "doubleunderline"},
    {Style::kFace_WordUnderline, 4, "underline"}, // only blanks have this bit still
    {Style::kFace_Strikethrough, 5, "strikethrough"},
    {Style::kFace_Condense, 6, "condense"},
    {Style::kFace_Extend, 6, "extend"},
    {Style::kFace_Superscript, 7, "superscript"},
    {Style::kFace_Subscript, 7, "subscript"},
    {Style::kFace_SmallCaps, 8, "smallcaps"},
    {Style::kFace_Titlecase, 9, "titlecase"},
    {Style::kFace_Uppercase, 9, "uppercase"},
    {Style::kFace_Lowercase, 9, "lowercase"},
};

constexpr fmx::uint16 kBlank = 0x0020;
constexpr fmx::uint16 kLineSeparator = 0x2028;

/// The largest number of cached appearances. Without a limit, a text with many colours would fill the memory.
constexpr std::size_t kMostAppearances = 4096;

/// Each character converted separately by StringFromFmText, which cuts characters of three bytes.
std::string narrowTextOf(const fmx::Text& text, std::size_t start, std::size_t end) {
    std::string narrow;
    const fmx::TextUniquePtr character;
    for (std::size_t i = start; i < end; ++i) {
        character->SetText(text, static_cast<fmx::uint32>(i), 1);
        narrow += StringFromFmText(*character);
    }
    return narrow;
}

} // namespace

std::string getFontColor(const fmx::CharacterStyle& style) {
    if (!style.IsColorEnabled()) return {};
    constexpr std::string_view digits = "0123456789abcdef";
    const fmx::CharacterStyle::Color& color = style.GetColor();
    std::string text = "#";
    for (const unsigned channel : {color.GetRed(), color.GetGreen(), color.GetBlue()})
        text.append({digits[channel / digits.size()], digits[channel % digits.size()]});
    return text;
}

std::string getFontName(const fmx::CharacterStyle& style, const fmx::ExprEnv& env) {
    const fmx::DataUniquePtr scratch;
    const fmx::TextUniquePtr name;
    fmx::CharacterStyle::FontScript script = fmx::CharacterStyle::kRoman;
// Current hosts mark this member as deprecated. The member without a script gives the PostScript name
// instead.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
    if (!scratch->GetFontInfo(style.GetFont(), *name, script, env)) return {};
#pragma clang diagnostic pop
    return StringFromFmText(*name);
}

TextReader::Traits TextReader::traitsOf(const fmx::CharacterStyle& style, bool isBlank) {
    const auto [font, isNew] = fontNames_.try_emplace(style.GetFont());
    if (isNew) font->second = getFontName(style, env_);
    const unsigned forBlanksOnly = isBlank ? 0U : unsigned{Style::kFace_WordUnderline};
    return {static_cast<Face>(style.GetFace() & ~forBlanksOnly), getFontColor(style), font->second,
            style.IsSizeEnabled() ? std::to_string(style.GetSize()) + "px" : ""};
}

Formattings TextReader::formattingsOf(const Traits& traits) {
    Formattings formattings;
    int decided = 0;
    for (const auto& [bits, group, formatting] : kFaces) {
        if (group == decided || (traits.face & bits) != bits) continue;
        formattings[formatting];
        decided = group;
    }
    if (!traits.color.empty()) formattings["color"] = traits.color;
    if (!traits.font.empty()) formattings["font"] = traits.font;
    if (!traits.size.empty()) formattings["size"] = traits.size;
    return formattings;
}

const TextReader::Appearance& TextReader::appearanceOf(const fmx::CharacterStyle& style, bool isBlank) {
    static const Appearance plain;
    if (style.IsAllDisabled()) return plain;
    Traits traits = traitsOf(style, isBlank);
    const auto known = appearances_.find(traits);
    if (known != appearances_.end()) return known->second;
    Appearance appearance;
    appearance.run.formattings = formattingsOf(traits);
    appearance.run.inlineStyles = CSSFromFormattings(appearance.run.formattings);
    appearance.css = appearance.run.getInlineCSS();
    if (appearances_.size() == kMostAppearances) appearances_.clear();
    return appearances_.emplace(std::move(traits), std::move(appearance)).first->second;
}

/// The end of the characters from `start` with the style of the first, which is style_. Most characters have
/// the style of the one before, so styles are compared before formattings are made.
std::size_t TextReader::endOfStyle(const fmx::Text& text, const Units& units, std::size_t start) {
    const bool underWords = (style_->GetFace() & Style::kFace_WordUnderline) != 0;
    const bool isBlank = units[start] == kBlank;
    for (std::size_t i = start + 1; i < units.size(); ++i) {
        text.GetStyle(*next_, static_cast<fmx::uint32>(i));
        if (*next_ != *style_ || (underWords && (units[i] == kBlank) != isBlank)) return i;
    }
    return units.size();
}

void TextReader::extractFragments(const fmx::Text& text, std::vector<cFragment>& fragments) {
    const Units units = unitsFromFMText(text);
    if (!units.empty()) text.GetStyle(*style_, 0);
    std::string css; // of the run
    for (std::size_t start = 0; start < units.size();) {
        const std::size_t end = endOfStyle(text, units, start);
        const Appearance& appearance = appearanceOf(*style_, units[start] == kBlank);
        if (start == 0 || appearance.css != css) {
            fragments.push_back(appearance.run);
            fragments.back().start = start;
            css = appearance.css;
        }
        cFragment& run = fragments.back();
        run.characters.insert(run.characters.end(), units.data() + start, units.data() + end);
        run.length += end - start;
        if (keepsNarrowText_) run.narrowText += narrowTextOf(text, start, end);
        style_.swap(next_);
        start = end;
    }
}

Formattings formattingsFromFMCharacter(const fmx::Text& text, std::uint64_t index, const fmx::ExprEnv& env) {
    return formattedFragmentFromFMCharacter(text, index, env).formattings;
}

cFragment formattedFragmentFromFMCharacter(const fmx::Text& text, std::uint64_t index,
                                           const fmx::ExprEnv& env) {
    const fmx::uint32 position = hostLength(index);
    fmx::uint16 unit = 0;
    text.GetUnicode(&unit, position, 1);
    const fmx::CharacterStyleUniquePtr style;
    text.GetStyle(*style, position);
    return TextReader(env).appearanceOf(*style, unit == kBlank).run;
}

void extractFragments(const fmx::Text& text, const fmx::ExprEnv& env, std::vector<cFragment>& fragments) {
    TextReader(env).extractFragments(text, fragments);
}

fmx::errcode evaluateOnFM(const std::string& prefix, const fmx::Text& text, const std::string& suffix,
                          const fmx::ExprEnv& env, fmx::TextAutoPtr& result) {
    const fmx::TextUniquePtr calculation = cFMUtils::getUTF16data(prefix);
    calculation->AppendText(text);
    calculation->AppendText(*cFMUtils::getUTF16data(suffix));
    const fmx::DataUniquePtr value;
    const fmx::errcode error = env.Evaluate(*calculation, *value);
    result->SetText(value->GetAsText());
    return error;
}

Units getLineEndings(const fmx::Text& expression, const fmx::ExprEnv& env) {
    fmx::TextUniquePtr value;
    evaluateOnFM("", expression, "", env, value);
    const Units units = unitsFromFMText(*value);
    const auto endsLine = [](fmx::uint16 unit) { return unit == kReturn || unit == kLineSeparator; };
    Units endings;
    std::copy_if(units.begin(), units.end(), std::back_inserter(endings), endsLine);
    if (!units.empty() && !endsLine(units.back())) endings.push_back(0);
    return endings;
}

std::vector<std::string> getLineAligns(const fmx::Text& expression, const fmx::ExprEnv& env,
                                       std::size_t most) {
    fmx::TextUniquePtr value;
    evaluateOnFM("ValueCount(", expression, ")", env, value);
    const int count = std::stoi(StringFromFmText(*value));
    std::vector<std::string> aligns;
    for (int k = 1; k <= count && aligns.size() < most; ++k) {
        evaluateOnFM("GetAsCSS(GetValue(", expression, ";" + std::to_string(k) + "))", env, value);
        aligns.push_back(parseAlignmentFromGetAsCSS(StringFromFmText(*value)));
    }
    return aligns;
}

std::string parseAlignmentFromGetAsCSS(const std::string& css) {
    static constexpr const char* words[] = {"left", "center", "right", "full"};
    std::string_view tag = css;
    tag = tag.substr(0, tag.find('>'));
    const std::size_t property = tag.find("text-align");
    if (tag.size() == css.size() || property == std::string_view::npos) return words[0];
    std::string_view declaration = tag.substr(property);
    declaration = declaration.substr(0, declaration.find_first_of("\";"));
    const auto* const found = std::find_if(std::begin(words), std::end(words), [&](const char* word) {
        return declaration.find(word) != std::string_view::npos;
    });
    return found == std::end(words) ? words[0] : *found;
}
