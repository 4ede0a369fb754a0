#include "bridge/StringUtils.h"
#include "bridge/fmlib.h"
#include "patterns/PatternSearch.h"

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>

namespace {

constexpr fmx::uint32 kTextParameter = 0;
constexpr fmx::uint32 kPatternParameter = 1;

/// The text that is added after the last match: the pattern after its last ")". Empty when there is no ")".
std::wstring tailOf(const std::wstring& pattern) {
    const std::size_t last = pattern.rfind(L')');
    return last == std::wstring::npos ? std::wstring() : pattern.substr(last + 1);
}

/// Adds units without a style. Each fits 16 bits, since it came from a text.
void appendUnits(fmx::Text& out, const std::wstring& units) {
    if (units.empty()) return;
    const fmx::TextUniquePtr piece;
    assignUnits(*piece, Units(units.begin(), units.end()));
    out.AppendText(*piece);
}

/// The matches that are replaced: all, or only matches that begin in the pattern's style.
class StyleCondition {
public:
    explicit StyleCondition(const fmx::Text& pattern) {
        pattern.GetStyle(*wanted_, 0);
        isPlain_ = wanted_->IsAllDisabled();
    }
    [[nodiscard]] bool holds(const fmx::Text& text, std::size_t position) const {
        if (isPlain_) return true;
        text.GetStyle(*found_, static_cast<fmx::uint32>(position));
        return *found_ == *wanted_;
    }

private:
    fmx::CharacterStyleUniquePtr wanted_, found_;
    bool isPlain_ = true;
};

/// The copy of a text, in which groups of matches are replaced.
class Substitution {
public:
    Substitution(fmx::Text& out, const fmx::DataVect& parameters)
        : out_(out), parameters_(parameters), text_(parameters.AtAsText(kTextParameter)),
          style_(parameters.AtAsText(kPatternParameter)) {}

    /// Replaces the groups of the last match found.
    void replaceGroups(const kst::PatternSearch& search) {
        const bool isReplaced = style_.holds(text_, search.whole().begin);
        const std::size_t replacements = parameters_.Size() - kPatternParameter - 1;
        for (std::size_t k = 1; k <= search.groupCount() && k <= replacements; ++k) {
            const std::optional<kst::Span> group = search.group(k);
            if (!group) continue;
            copyTo(group->begin);
            if (isReplaced)
                out_.AppendText(parameters_.AtAsText(static_cast<fmx::uint32>(kPatternParameter + k)));
            else
                append({group->begin, group->end});
            position_ = group->end;
        }
        position_ = search.whole().end;
    }
    /// Copies the rest of the text.
    void finish() { copyTo(text_.GetSize()); }

private:
    void copyTo(std::size_t end) {
        if (position_ < end) append({position_, end});
    }
    void append(kst::Span span) {
        // A span never reaches the host's number for "all that follows", which is longer than any text.
        out_.AppendText(text_, static_cast<fmx::uint32>(span.begin), static_cast<fmx::uint32>(span.length()));
    }

    fmx::Text& out_;
    const fmx::DataVect& parameters_;
    const fmx::Text& text_;
    StyleCondition style_;
    std::size_t position_ = 0;
};

} // namespace

void fmlib::FillFMTextWithCurrentDatabaseFileName(fmx::Text& text, const fmx::ExprEnv& env) {
    const fmx::TextUniquePtr expression;
    expression->Assign("Get(FileName)");
    const fmx::DataUniquePtr name;
    const fmx::errcode err = env.Evaluate(*expression, *name);
    if (err != 0)
        throw std::logic_error("Check failed: err == 0; Get(FileName) gave error " + std::to_string(err));
    text.DeleteText(0);
    text.AppendText(name->GetAsText());
}

void fmlib::RegExpPerformSubstitute(fmx::Text& out, const fmx::DataVect& params) {
    RegExpPerformSubstitute_Impl(out, params);
}

void fmlib::RegExpPerformSubstitute_Impl(fmx::Text& out, const fmx::DataVect& params) {
    if (params.Size() <= kPatternParameter + 1) throw std::logic_error("Check failed: dataVect.Size() > 2");
    const std::wstring text = WStringFromFMText(params.AtAsText(kTextParameter));
    const std::wstring pattern = WStringFromFMText(params.AtAsText(kPatternParameter));
    kst::PatternSearch search(pattern, text);
    Substitution substitution(out, params);
    for (std::size_t from = 0; search.find(from) && search.groupCount() > 0;) {
        const std::optional<kst::Span> first = search.group(1);
        if (!first || first->length() == 0) break;
        substitution.replaceGroups(search);
        const kst::Span whole = search.whole();
        from = whole.length() > 0 ? whole.end : whole.end + 1;
    }
    appendUnits(out, tailOf(pattern));
    substitution.finish();
}
