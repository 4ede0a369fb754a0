#include "Kestrel_MergeText.h"

#include "Handlers.h"
#include "bridge/HandlerFrame.h"
#include "bridge/LastError.h"
#include "bridge/cFMUtils.h"

#include <stdexcept>

namespace {

constexpr fmx::uint32 kDelimiterSize = 2;

/// A search for a delimiter in one text, at positions that only grow. The last place found is kept until the
/// search has passed it. So the text is searched once, however many calls there are.
class Delimiter {
public:
    Delimiter(const fmx::Text& text, const char* characters) : text_(text) {
        characters_->Assign(characters);
    }

    [[nodiscard]] const fmx::Text& characters() const { return *characters_; }

    /// The first delimiter at or after a position, or fmx::Text::kSize_Invalid.
    fmx::uint32 find(fmx::uint32 position) {
        if (!searched_ || found_ < position) found_ = text_.Find(*characters_, position);
        searched_ = true;
        return found_;
    }
    /// The last delimiter of a run of overlapping ones. The first of them is at `position`.
    fmx::uint32 lastOfRun(fmx::uint32 position) {
        while (find(position + 1) == position + 1)
            ++position;
        return position;
    }

private:
    const fmx::Text& text_;
    fmx::TextUniquePtr characters_;
    bool searched_ = false;
    fmx::uint32 found_ = 0;
};

/// One template while it is filled in. The position is the beginning of the text that is not copied yet. Each
/// step moves it past the delimiters found, so the time is linear in the template's length.
class Merge {
public:
    Merge(const fmx::ExprEnv& env, const fmx::Text& text) : env_(env) { source_->SetText(text); }

    const fmx::Text& run() {
        for (;;) {
            const fmx::uint32 open = opening_.find(position_);
            if (open == fmx::Text::kSize_Invalid) break;
            const fmx::uint32 close = closing_.find(position_);
            if (close == fmx::Text::kSize_Invalid) break;
            if (open < close)
                fill(open, close);
            else
                copyUpTo(open + kDelimiterSize);
        }
        copyUpTo(source_->GetSize());
        return *output_;
    }

private:
    /// Characters are copied with their styles.
    void copyUpTo(fmx::uint32 end) {
        if (end > position_) output_->AppendText(*source_, position_, end - position_);
        position_ = end;
    }

    void fill(fmx::uint32 open, fmx::uint32 close) {
        open = opening_.lastOfRun(open);
        copyUpTo(open);
        const fmx::uint32 begin = open + kDelimiterSize;
        expression_->SetText(*source_, begin, close - begin);
        source_->GetStyle(*style_, begin);
        evaluate();
        // The last two ">" of a longer run are the delimiter. The ">" before them are text.
        const fmx::uint32 last = closing_.lastOfRun(close);
        if (last > close) output_->AppendText(*source_, close, last - close);
        position_ = last + kDelimiterSize;
    }

    void evaluate() {
        const bool evaluates = env_.Evaluate(*expression_, *value_) == 0;
        const bool hasStyle = !style_->IsAllDisabled();
        const fmx::uint32 start = hasStyle ? output_->GetSize() : 0;
        if (evaluates) {
            const fmx::Text& text = value_->GetAsText();
            output_->AppendText(text);
            if (!hasStyle) return;
            text.GetStyle(*valueStyle_, 0);
            if (!valueStyle_->IsAllDisabled()) return;
        } else {
            output_->AppendText(opening_.characters());
            output_->AppendText(*expression_);
            output_->AppendText(closing_.characters());
        }
        if (hasStyle) output_->SetStyle(*style_, start);
    }

    const fmx::ExprEnv& env_;
    fmx::TextUniquePtr source_, output_, expression_;
    Delimiter opening_{*source_, "<<"}, closing_{*source_, ">>"};
    fmx::DataUniquePtr value_;
    fmx::CharacterStyleUniquePtr style_, valueStyle_;
    fmx::uint32 position_ = 0;
};

} // namespace

void PerformMergeText(const fmx::ExprEnv& env, const fmx::DataVect& values, fmx::Data& result) {
    if (values.Size() == 0) throw std::logic_error("Check failed: dataVect.Size() > 0");
    Merge merge(env, values.AtAsText(0));
    cFMUtils::resultFromText(merge.run(), result);
}

FMX_PROC(fmx::errcode)
Kestrel_MergeText(short, const fmx::ExprEnv& env, const fmx::DataVect& parameters, fmx::Data& result) {
    return kst::runHandler(env, result, [&] {
        if (parameters.Size() == 0)
            return kst::answerWithError(kst::kWrongParameter, "Not enough parameters", result, env);
        PerformMergeText(env, parameters, result);
        return fmx::errcode{0};
    });
}
