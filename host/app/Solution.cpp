#include "host/app/Solution.h"

#include "host/app/DescriptionReader.h"
#include "host/app/TableReader.h"
#include "host/calc/CustomFunction.h"
#include "host/calc/Environment.h"
#include "host/scripts/Reader.h"
#include "host/values/Encoding.h"
#include "host/values/Formats.h"

#include <algorithm>
#include <limits>
#include <set>
#include <stdexcept>
#include <string_view>

namespace host {

namespace {

namespace fs = std::filesystem;

/// The steps in a text that begins at a line of a file.
std::vector<scripts::Step> stepsIn(std::u16string_view text, const std::string& file, std::size_t firstLine) {
    try {
        std::vector<scripts::Step> steps = scripts::readSteps(text);
        for (scripts::Step& step : steps) {
            step.line += firstLine - 1;
            for (scripts::Option& option : step.options)
                option.line += firstLine - 1;
        }
        return steps;
    } catch (const scripts::ReadError& problem) {
        failAt(file, problem.line + firstLine - 1, problem.what());
    }
}

/// Reads a description but for its tables.
class SolutionReader : public DescriptionReader {
public:
    /// `content` is what the file holds; it must outlive the reader.
    SolutionReader(std::string file, std::string_view content)
        : DescriptionReader(std::move(file)), content_(content) {}

    Script script(const toml::node& node) const {
        const toml::table& table = this->table(node, "script must be a table, [[script]]");
        checkKeys(table, {"name", "calculations", "steps"});
        Script result;
        result.name = requiredName(table, "name", "a script");
        if (const toml::node* list = table.get("calculations"))
            each(*list, "calculations",
                 [&](const toml::node& line) { result.calculations.push_back(text(line, "a calculation")); });
        if (const toml::node* node = table.get("steps")) {
            if (table.contains("calculations"))
                fail(node->source(), "a script has either steps or calculations");
            result.source = file();
            result.steps = stepsIn(text(*node, "steps"), result.source, firstLineOf(*node));
        }
        return result;
    }

    /// The line of the file at which a text begins: the next one where its quotation marks end theirs.
    [[nodiscard]] std::size_t firstLineOf(const toml::node& text) const {
        const toml::source_position place = text.source().begin;
        std::size_t begin = 0;
        for (std::size_t line = 1; line < place.line; ++line)
            begin = content_.find('\n', begin) + 1;
        const std::string_view rest = content_.substr(std::min(begin + place.column - 1, content_.size()));
        const std::string_view first = rest.substr(0, rest.find_first_of("\r\n"));
        return place.line + (first == "\"\"\"" || first == "'''" ? 1U : 0U);
    }

    /// A name that stands in calculations.
    std::u16string calculationName(const toml::node& node, const std::string& what) const {
        std::u16string result = text(node, what);
        const std::string problem = calc::problemWithName(result);
        if (!problem.empty()) fail(node.source(), what + " \"" + toUtf8(result) + "\" " + problem);
        return result;
    }

    FunctionDefinition function(const toml::node& node) const {
        const toml::table* table = &this->table(node, "function must be a table, [[function]]");
        checkKeys(*table, {"name", "parameters", "calculation"});
        const toml::node *functionName = table->get("name"), *calculation = table->get("calculation");
        if (functionName == nullptr) fail(table->source(), "a function has no name");
        if (calculation == nullptr) fail(table->source(), "a function has no calculation");
        FunctionDefinition result{.name = calculationName(*functionName, "a function's name"),
                                  .parameters = {},
                                  .calculation = text(*calculation, "a function's calculation")};
        std::set<std::u16string> seen;
        if (const toml::node* list = table->get("parameters"))
            each(*list, "parameters", [&](const toml::node& parameter) {
                result.parameters.push_back(calculationName(parameter, "a parameter's name"));
                if (!seen.insert(calc::foldName(result.parameters.back())).second)
                    fail(parameter.source(), "a parameter of this name stands before");
            });
        return result;
    }

    Solution solution(const toml::table& table) const {
        checkKeys(table, {"name", "user", "account", "locale", "fonts", "function", "script", "table",
                          "occurrence", "relationship", "layout", "value_list", "record"});
        Solution result;
        if (const toml::node* node = table.get("name")) {
            result.name = name(*node, "name");
            if (calc::foldName(result.name).ends_with(u".fmp12"))
                fail(node->source(), "name is the file's name without its extension");
        }
        if (const toml::node* node = table.get("user")) result.user = text(*node, "user");
        if (const toml::node* node = table.get("account")) result.account = text(*node, "account");
        if (const toml::node* node = table.get("locale")) {
            result.locale = toUtf8(text(*node, "locale"));
            if (formatsOf(result.locale) == nullptr)
                fail(node->source(), "locale \"" + result.locale + "\" is not known");
        }
        if (const toml::node* node = table.get("record"))
            result.record = number(*node, "record", 1, std::numeric_limits<std::int32_t>::max());
        if (const toml::node* node = table.get("fonts"))
            each(*node, "fonts",
                 [&](const toml::node& font) { result.fonts.push_back(name(font, "a font's name")); });
        if (const toml::node* node = table.get("function"))
            each(*node, "function",
                 [&](const toml::node& element) { result.functions.push_back(function(element)); });
        std::set<std::u16string> seen;
        if (const toml::node* node = table.get("script"))
            each(*node, "script", [&](const toml::node& element) {
                result.scripts.push_back(script(element));
                if (!seen.insert(calc::foldName(result.scripts.back().name)).second)
                    fail(element.source(), "a script of this name stands above");
            });
        return result;
    }

private:
    std::string_view content_;
};

/// The scripts of the folder, ordered by their names.
void addScripts(const fs::path& folder, std::vector<Script>& scripts) {
    if (!fs::is_directory(folder)) return;
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        if (entry.path().extension() == ".txt") files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files) {
        Script script{.name = fromUtf8(file.stem().string()), .calculations = {}};
        const std::u16string folded = calc::foldName(script.name);
        const auto isSame = [&](const Script& other) { return calc::foldName(other.name) == folded; };
        if (std::any_of(scripts.begin(), scripts.end(), isSame))
            throw std::runtime_error(file.string() + ": the solution has a script of this name already");
        script.source = file.string();
        script.steps = stepsIn(fromUtf8(contentOfFile(file)), script.source, 1);
        scripts.push_back(std::move(script));
    }
}

} // namespace

Solution Solution::load(const fs::path& folder) {
    const fs::path description = folder / "solution.toml", tables = folder / "schema.sql";
    const std::string content = contentOfFile(description);
    const SolutionReader reader(description.string(), content);
    Solution solution;
    try {
        const toml::table table = toml::parse(content);
        solution = reader.solution(table);
        readTables(reader, table, folder, solution);
    } catch (const toml::parse_error& problem) {
        reader.fail(problem.source(), std::string(problem.description()));
    } catch (const std::logic_error& problem) {
        throw std::runtime_error(description.string() + ": " + problem.what());
    }
    std::string path = fs::absolute(folder).lexically_normal().string();
    while (path.ends_with('/'))
        path.pop_back();
    solution.path = fromUtf8(path);
    addScripts(folder / "scripts", solution.scripts);
    if (fs::exists(tables)) solution.schema = contentOfFile(tables);
    return solution;
}

} // namespace host
