#include "host/scripts/Reader.h"

#include "host/calc/Environment.h"
#include "host/scripts/PlugInStep.h"
#include "host/scripts/Scanner.h"
#include "host/scripts/Steps.h"
#include "host/scripts/Targets.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace host::scripts {

namespace {

/// Options that only change how something looks. Scripts that people exchange have them.
constexpr std::array<std::u16string_view, 6> kDisplayLabels{
    u"animation", u"flush", u"new window", u"external", u"match field", u"automatically open"};

std::string quoted(std::u16string_view text) { return "\"" + toUtf8(text) + "\""; }

std::u16string withLineFeeds(std::u16string_view text) {
    std::u16string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at)
        if (text[at] != u'\r')
            result += text[at];
        else if (at + 1 == text.size() || text[at + 1] != u'\n')
            result += u'\n';
    return result;
}

bool isOneOf(std::u16string_view words, std::u16string_view text) {
    const std::u16string folded = calc::foldName(text);
    for (std::size_t at = 0; at <= words.size();) {
        const std::size_t end = std::min(words.find(u'|', at), words.size());
        if (words.substr(at, end - at) == folded) return true;
        at = end + 1;
    }
    return false;
}

/// Whether a text has the form that an option takes.
bool fits(const OptionRow& row, std::u16string_view text) {
    switch (row.takes) {
    case Takes::calculation: return true;
    case Takes::words: return isOneOf(row.words, text);
    case Takes::name: return quotedName(text).has_value();
    case Takes::field:
    case Takes::variable:
    case Takes::target: break;
    }
    const std::optional<Target> target = targetIn(text);
    if (!target) return false;
    const bool isField = target->kind == Target::Kind::field;
    // A variable may be written without its dollar sign.
    return row.takes != Takes::field ? row.takes == Takes::target || target->occurrence.empty() : isField;
}

class Reader {
public:
    explicit Reader(std::u16string_view text) : text_(text) {}

    std::vector<Step> read() {
        while (skipBlanks())
            statement();
        if (!blocks_.empty()) {
            const Step& open = steps_[blocks_.back().opener];
            fail(open.line, toUtf8(open.name) + " has no end");
        }
        return std::move(steps_);
    }

private:
    struct Part {
        std::u16string_view text;
        std::size_t line;
    };
    /// An If or a Loop that is not closed yet.
    struct OpenBlock {
        std::size_t opener, branch;
        bool isLoop;
    };

    [[noreturn]] static void fail(std::size_t line, const std::string& problem) {
        throw ReadError(line, problem);
    }

    void advanceTo(std::size_t to) {
        line_ += static_cast<std::size_t>(std::count(text_.begin() + static_cast<std::ptrdiff_t>(at_),
                                                     text_.begin() + static_cast<std::ptrdiff_t>(to), u'\n'));
        at_ = to;
    }
    [[nodiscard]] std::size_t lineEnd() const { return std::min(text_.find(u'\n', at_), text_.size()); }

    /// Passes blanks, empty lines and comments; false at the end.
    bool skipBlanks() {
        while (at_ < text_.size()) {
            const std::u16string_view rest = text_.substr(at_);
            if (rest.front() == u'#')
                advanceTo(lineEnd());
            else if (trimmed(rest.substr(0, 1)).empty())
                advanceTo(at_ + 1);
            else
                return true;
        }
        return false;
    }

    void statement() {
        const std::size_t line = line_;
        const bool isDisabled = text_.substr(at_).starts_with(u"//");
        if (isDisabled) at_ += 2;
        const std::size_t nameEnd = std::min(text_.find_first_of(u"[#\n", at_), text_.size());
        const std::u16string_view name = trimmed(text_.substr(at_, nameEnd - at_));
        const StepRow* row = stepNamed(name);
        // A line with two slashes may also be a remark.
        if (row == nullptr && isDisabled) return advanceTo(lineEnd());
        if (row == nullptr && name.find_first_of(u"$\";]") != std::u16string_view::npos)
            fail(line, "there is no step " + quoted(name));
        const bool isOfPlugIn = row == nullptr;
        if (isOfPlugIn) row = &plugInStep();
        at_ = nameEnd;
        const std::vector<Part> parts = options(line);
        if (isDisabled) return;
        Step step{
            .row = row, .name = std::u16string(isOfPlugIn ? name : row->name), .line = line, .options = {}};
        if (!row->takesAnything) step.options = matched(*row, parts, line);
        add(std::move(step));
    }

    /// The options in brackets, and the end of the line after them.
    std::vector<Part> options(std::size_t line) {
        std::vector<Part> parts;
        if (at_ < text_.size() && text_[at_] == u'[') {
            do {
                const std::size_t begin = at_ + 1, end = optionEnd(text_, begin);
                if (end == std::u16string_view::npos) fail(line, "the options have no end: ] is missing");
                const std::u16string_view whole = text_.substr(begin, end - begin), part = trimmed(whole);
                advanceTo(part.empty() ? end : static_cast<std::size_t>(part.data() - text_.data()));
                if (!part.empty()) parts.push_back({part, line_});
                advanceTo(end);
            } while (text_[at_] != u']');
            ++at_;
        }
        const std::size_t end = std::min(text_.find(u'#', at_), lineEnd());
        const std::u16string_view rest = trimmed(text_.substr(at_, end - at_));
        if (!rest.empty()) fail(line_, quoted(rest) + " stands after the step");
        at_ = end;
        return parts;
    }

    static std::vector<Option> matched(const StepRow& row, const std::vector<Part>& parts, std::size_t line) {
        std::vector<Option> options;
        std::size_t place = 0;
        for (const Part& part : parts) {
            const std::size_t label = row.isOfPlugIn ? 0 : labelLength(part.text);
            const OptionRow* option = label > 0 ? labelled(row, part, label) : unlabelled(row, part, place);
            if (option == nullptr) continue;
            const std::u16string_view value = label > 0 ? trimmed(part.text.substr(label + 1)) : part.text;
            options.push_back({.row = option, .text = std::u16string(value), .line = part.line});
        }
        for (const OptionRow& option : row.options) {
            const auto isThis = [&](const Option& given) { return given.row == &option; };
            if (option.isNeeded && std::none_of(options.begin(), options.end(), isThis))
                fail(line, toUtf8(row.name) + " needs an option: " + toUtf8(option.name));
        }
        return options;
    }

    /// The option's row; null for an option of no effect.
    static const OptionRow* labelled(const StepRow& row, const Part& part, std::size_t length) {
        const std::u16string label = calc::foldName(trimmed(part.text.substr(0, length)));
        const std::u16string_view value = trimmed(part.text.substr(length + 1));
        bool isKnown = false;
        for (const OptionRow& option : row.options) {
            if (!option.isLabelled || calc::foldName(option.name) != label) continue;
            if (fits(option, value)) return &option;
            isKnown = true;
        }
        const std::string written = quoted(trimmed(part.text.substr(0, length)));
        if (isKnown) fail(part.line, "the option " + written + " cannot be " + quoted(value));
        if (std::find(kDisplayLabels.begin(), kDisplayLabels.end(), label) != kDisplayLabels.end())
            return nullptr;
        fail(part.line, toUtf8(row.name) + " has no option " + written);
    }

    /// The first option from `place` on that has this form; `place` then is the one after it.
    static const OptionRow* unlabelled(const StepRow& row, const Part& part, std::size_t& place) {
        for (const bool isAgain : {false, true}) {
            for (std::size_t at = isAgain ? 0 : place; at < row.options.size(); ++at) {
                const OptionRow& option = row.options[at];
                if (option.name.empty() || option.isLabelled || !fits(option, part.text)) continue;
                place = at + 1;
                return &option;
            }
            if (!row.repeats) break;
        }
        fail(part.line, toUtf8(row.name) + " does not take " + quoted(part.text) + " here");
    }

    void add(Step step) {
        const std::size_t place = steps_.size();
        const Block block = step.row->block;
        const bool isOfLoop = block == Block::closesLoop || block == Block::leavesLoop;
        const bool isOfIf = block == Block::elseIf || block == Block::otherwise || block == Block::closesIf;
        step.opener = innermostLoop();
        if (isOfIf || block == Block::closesLoop) {
            if (blocks_.empty() || blocks_.back().isLoop != isOfLoop)
                fail(step.line, toUtf8(step.name) + " has no " + (isOfIf ? "If" : "Loop") + " before it");
            step.opener = blocks_.back().opener;
        }
        if (block == Block::leavesLoop && step.opener == kNoStep)
            fail(step.line, toUtf8(step.name) + " stands in no Loop");
        if (isOfIf) branch(step, place);
        if (block == Block::closesIf || block == Block::closesLoop) {
            steps_[step.opener].end = place;
            if (block == Block::closesLoop) loops_.pop_back();
            blocks_.pop_back();
        }
        if (block == Block::opensIf || block == Block::opensLoop) {
            blocks_.push_back({.opener = place, .branch = place, .isLoop = block == Block::opensLoop});
            if (block == Block::opensLoop) loops_.push_back(place);
        }
        steps_.push_back(std::move(step));
    }

    void branch(const Step& step, std::size_t place) {
        OpenBlock& open = blocks_.back();
        Step& before = steps_[open.branch];
        if (before.row->block == Block::otherwise && step.row->block != Block::closesIf)
            fail(step.line, toUtf8(step.name) + " stands after Else");
        before.nextBranch = place;
        open.branch = place;
    }

    [[nodiscard]] std::size_t innermostLoop() const { return loops_.empty() ? kNoStep : loops_.back(); }

    std::u16string_view text_;
    std::size_t at_ = 0, line_ = 1;
    std::vector<Step> steps_;
    std::vector<OpenBlock> blocks_;
    std::vector<std::size_t> loops_; ///< those that are open
};

} // namespace

std::vector<Step> readSteps(std::u16string_view text) {
    const std::u16string lines = withLineFeeds(text);
    std::u16string_view rest = lines;
    if (rest.starts_with(u'\uFEFF')) rest.remove_prefix(1);
    return Reader(rest).read();
}

} // namespace host::scripts
