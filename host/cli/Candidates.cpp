#include "host/cli/Candidates.h"

#include "host/app/File.h"
#include "host/app/GetNames.h"
#include "host/cli/OpenParts.h"
#include "host/cli/PromptCommands.h"
#include "host/cli/Runner.h"
#include "host/sql/Schema.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <set>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace host::cli {

namespace {

/// The names of Get that calculations answer without a file.
constexpr std::array kGetNames{u"AllowAbortState",
                               u"CurrentDate",
                               u"CurrentHostTimestamp",
                               u"CurrentTime",
                               u"CurrentTimestamp",
                               u"ErrorCaptureState",
                               u"LastError",
                               u"LastErrorDetail",
                               u"LastErrorLocation",
                               u"ScriptName",
                               u"ScriptParameter",
                               u"ScriptResult",
                               u"UUID",
                               u"UUIDNumber"};

/// Collects the names that begin with what was typed, regardless of case.
class Matches {
public:
    explicit Matches(std::u16string_view typed)
        : folded_(calc::foldName(typed)), size_(toUtf8(typed).size()) {}

    void offer(std::u16string_view name, std::u16string_view ending = {}) {
        if (calc::foldName(name).starts_with(folded_)) texts_.push_back(toUtf8(name) + toUtf8(ending));
    }
    void offerByWords(std::u16string_view name, std::u16string_view words, std::u16string_view ending) {
        const std::u16string folded = u' ' + calc::foldName(words);
        const bool hasWord = !folded_.empty() && folded.find(u' ' + folded_) != std::u16string::npos;
        if (hasWord) texts_.push_back(toUtf8(name) + toUtf8(ending));
    }
    Completions take() && {
        std::sort(texts_.begin(), texts_.end());
        texts_.erase(std::unique(texts_.begin(), texts_.end()), texts_.end());
        return {.replaced = size_, .texts = std::move(texts_)};
    }

private:
    std::u16string folded_;
    std::size_t size_;
    std::vector<std::string> texts_;
};

/// Where the name begins that the text ends with.
std::size_t nameStart(std::u16string_view text) {
    std::size_t start = text.size();
    while (start > 0) {
        UChar32 point = 0;
        std::size_t before = start;
        U16_PREV(text.data(), 0, before, point);
        const bool isPart =
            u_isalnum(point) != 0 || point == '_' || point == '$' || point == ':' || point == '.';
        if (!isPart) break;
        start = before;
    }
    return start;
}

bool followsGet(std::u16string_view before) {
    const auto trimmed = [](std::u16string_view text) {
        return text.substr(0, text.find_last_not_of(u' ') + 1);
    };
    before = trimmed(before);
    if (!before.ends_with(u'(')) return false;
    before = trimmed(before.substr(0, before.size() - 1));
    return calc::foldName(before.substr(nameStart(before))) == u"get";
}

void offerTables(Matches& matches, Runner& runner, bool qualified) {
    for (const auto& file : runner.session().files()) {
        const Schema* const schema = file->schema();
        for (std::size_t i = 0; schema != nullptr && i < schema->occurrences.size(); ++i) {
            const std::u16string& table = schema->occurrences[i].name;
            matches.offer(table, qualified ? u"::" : u"");
            for (const Field& field : schema->tableOf(i).fields)
                matches.offer(qualified ? table + u"::" + field.name : field.name);
        }
    }
}

void offerScripts(Matches& matches, Runner& runner) {
    for (const auto& file : runner.session().files())
        for (const Script& script : file->solution().scripts)
            matches.offer(script.name);
}

std::u16string_view endingOf(int maximum) { return maximum == 0 ? u"" : u" ( "; }

/// A plug-in's function is also found by each of the words that describe it, and not at all when the plug-in
/// hides it from the app's dialogs.
void offerFunctions(Matches& matches, Runner& runner) {
    std::set<std::u16string> hidden;
    for (const auto& plugIn : runner.loaded().plugIns())
        for (const RegisteredFunction& function : plugIn->functions())
            if ((function.flags & fmx::ExprEnv::kDisplayInAllDialogs) == 0)
                hidden.insert(calc::foldName(function.name));
            else
                matches.offerByWords(function.name, function.words, endingOf(function.maximum));
    for (const auto& [folded, function] : runner.session().functions()->rows())
        if (!hidden.contains(folded)) matches.offer(function->name, endingOf(function->maximum));
}

Completions variables(std::u16string_view typed, Runner& runner) {
    Matches matches(typed);
    const calc::Environment place = runner.session().topLevel();
    for (const auto& [folded, variable] : place.locals->all())
        matches.offer(u"$" + variable.name);
    if (place.file)
        for (const auto& [folded, variable] : place.file->fileVariables().all())
            matches.offer(u"$$" + variable.name);
    return std::move(matches).take();
}

/// Within quotation marks: names of scripts have blanks, so all that follows the mark counts; a name in an
/// SQL statement is its last word.
Completions quoted(std::u16string_view text, Runner& runner) {
    Matches scripts(text);
    offerScripts(scripts, runner);
    if (Completions found = std::move(scripts).take(); !found.texts.empty()) return found;
    Matches names(text.substr(nameStart(text)));
    offerTables(names, runner, false);
    return std::move(names).take();
}

Completions promptCommand(std::u16string_view line, Runner& runner) {
    const std::size_t blank = line.find(u' ');
    if (blank == std::u16string_view::npos) {
        Matches matches(line);
        for (const PromptCommand& command : promptCommands())
            matches.offer(fromUtf8(command.name), command.parameters.empty() ? u"" : u" ");
        return std::move(matches).take();
    }
    Matches matches(line.substr(blank + 1));
    if (line.starts_with(u":run ")) {
        offerScripts(matches, runner);
    } else {
        for (const auto& [folded, function] : runner.session().functions()->rows())
            matches.offer(function->name);
    }
    return std::move(matches).take();
}

} // namespace

Completions candidatesFor(const std::string& before, Runner& runner) {
    const std::u16string line = fromUtf8(before);
    if (line.starts_with(u':')) return promptCommand(line, runner);
    const std::vector<OpenPart> open = openParts(line);
    if (!open.empty() && open.back().mark == u'"')
        return quoted(std::u16string_view(line).substr(open.back().position + 1), runner);
    const std::size_t start = nameStart(line);
    const std::u16string_view typed = std::u16string_view(line).substr(start);
    if (typed.starts_with(u'$')) return variables(typed, runner);
    Matches matches(typed);
    if (followsGet(std::u16string_view(line).substr(0, start))) {
        for (const char16_t* name : kGetNames)
            matches.offer(name, u" )");
        for (const std::u16string_view name : getNames())
            matches.offer(name, u" )");
    } else {
        offerFunctions(matches, runner);
        offerTables(matches, runner, true);
    }
    return std::move(matches).take();
}

} // namespace host::cli
