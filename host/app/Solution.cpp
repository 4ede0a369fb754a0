#include "host/app/Solution.h"

#include "host/calc/Environment.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <fstream>
#include <initializer_list>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string_view>

// The parser asserts of some wrong descriptions what it should complain of; a complaint it becomes.
#define TOML_ASSERT(expression)                                                                              \
    static_cast<void>((expression) ? 0 : throw std::logic_error("this is not TOML"))
#define TOML_ASSERT_ASSUME TOML_ASSERT
#define TOML_HEADER_ONLY 1
#include <toml++/toml.h>

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t largestFile = 256U << 20U;

/// Reads one description; every complaint names the file and the line.
class Reader {
public:
    explicit Reader(std::string file) : file_(std::move(file)) {}

    [[noreturn]] void fail(const toml::source_region& where, const std::string& what) const {
        throw std::runtime_error(file_ + ", line " + std::to_string(where.begin.line) + ": " + what);
    }

    void checkKeys(const toml::table& table, std::initializer_list<std::string_view> known) const {
        for (const auto& [key, value] : table)
            if (std::find(known.begin(), known.end(), key.str()) == known.end())
                fail(key.source(), "unknown key \"" + std::string(key.str()) + "\"");
    }

    std::u16string text(const toml::node& node, const std::string& what) const {
        const auto* string = node.as_string();
        if (string == nullptr) fail(node.source(), what + " must be a text");
        return fromUtf8(string->get());
    }

    /// A text that can stand as one line of a list of names.
    std::u16string name(const toml::node& node, const std::string& what) const {
        std::u16string result = text(node, what);
        if (result.empty()) fail(node.source(), what + " is empty");
        if (std::any_of(result.begin(), result.end(), [](char16_t unit) { return unit < u' '; }))
            fail(node.source(), what + " has a control character");
        return result;
    }

    template<typename Each>
    void each(const toml::node& node, const std::string& what, Each&& visit) const {
        const auto* array = node.as_array();
        if (array == nullptr) fail(node.source(), what + " must be an array");
        for (const toml::node& element : *array)
            visit(element);
    }

    Script script(const toml::node& node) const {
        const auto* table = node.as_table();
        if (table == nullptr) fail(node.source(), "script must be a table, [[script]]");
        checkKeys(*table, {"name", "calculations"});
        Script result;
        const toml::node* scriptName = table->get("name");
        if (scriptName == nullptr) fail(table->source(), "a script has no name");
        result.name = name(*scriptName, "a script's name");
        if (const toml::node* list = table->get("calculations"))
            each(*list, "calculations",
                 [&](const toml::node& line) { result.calculations.push_back(text(line, "a calculation")); });
        return result;
    }

    Solution solution(const toml::table& table) const {
        checkKeys(table, {"name", "user", "account", "fonts", "script"});
        Solution result;
        if (const toml::node* node = table.get("name")) {
            result.name = name(*node, "name");
            if (calc::foldName(result.name).ends_with(u".fmp12"))
                fail(node->source(), "name is the file's name without its extension");
        }
        if (const toml::node* node = table.get("user")) result.user = text(*node, "user");
        if (const toml::node* node = table.get("account")) result.account = text(*node, "account");
        if (const toml::node* node = table.get("fonts"))
            each(*node, "fonts",
                 [&](const toml::node& font) { result.fonts.push_back(name(font, "a font's name")); });
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
    std::string file_;
};

std::string readFile(const fs::path& file) {
    std::error_code problem;
    if (!fs::is_regular_file(file, problem)) throw std::runtime_error(file.string() + ": no such file");
    if (const auto size = fs::file_size(file, problem); problem || size > largestFile)
        throw std::runtime_error(file.string() + ": too large");
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream content;
    if (stream.peek() != std::ifstream::traits_type::eof()) content << stream.rdbuf();
    if (stream.bad() || content.fail()) throw std::runtime_error(file.string() + ": cannot be read");
    return std::move(content).str();
}

} // namespace

Solution Solution::load(const fs::path& folder) {
    const fs::path description = folder / "solution.toml", tables = folder / "schema.sql";
    const Reader reader(description.string());
    Solution solution;
    try {
        solution = reader.solution(toml::parse(readFile(description)));
    } catch (const toml::parse_error& problem) {
        reader.fail(problem.source(), std::string(problem.description()));
    } catch (const std::logic_error& problem) {
        throw std::runtime_error(description.string() + ": " + problem.what());
    }
    std::string path = fs::absolute(folder).lexically_normal().string();
    while (path.ends_with('/'))
        path.pop_back();
    solution.path = fromUtf8(path);
    if (fs::exists(tables)) solution.schema = readFile(tables);
    return solution;
}

} // namespace host
