#include "host/app/DescriptionReader.h"

#include "host/values/Encoding.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace host {

namespace fs = std::filesystem;

void failAt(const std::string& file, std::size_t line, const std::string& what) {
    throw std::runtime_error(file + ", line " + std::to_string(line) + ": " + what);
}

std::string contentOfFile(const fs::path& file) {
    constexpr std::uintmax_t largestFile = std::uintmax_t{256} << 20U;
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

void DescriptionReader::fail(const toml::source_region& where, const std::string& what) const {
    failAt(file_, where.begin.line, what);
}

void DescriptionReader::checkKeys(const toml::table& table,
                                  std::initializer_list<std::string_view> known) const {
    for (const auto& [key, value] : table)
        if (std::find(known.begin(), known.end(), key.str()) == known.end())
            fail(key.source(), "unknown key \"" + std::string(key.str()) + "\"");
}

const toml::table& DescriptionReader::table(const toml::node& node, const std::string& what) const {
    const auto* table = node.as_table();
    if (table == nullptr) fail(node.source(), what);
    return *table;
}

std::u16string DescriptionReader::text(const toml::node& node, const std::string& what) const {
    const auto* string = node.as_string();
    if (string == nullptr) fail(node.source(), what + " must be a text");
    return fromUtf8(string->get());
}

std::u16string DescriptionReader::name(const toml::node& node, const std::string& what) const {
    std::u16string result = text(node, what);
    if (result.empty()) fail(node.source(), what + " is empty");
    if (std::any_of(result.begin(), result.end(), [](char16_t unit) { return unit < u' '; }))
        fail(node.source(), what + " has a control character");
    return result;
}

std::u16string DescriptionReader::requiredName(const toml::table& table, std::string_view key,
                                               const std::string& what) const {
    const toml::node* node = table.get(key);
    if (node == nullptr) fail(table.source(), what + " has no " + std::string(key));
    return name(*node, what + "'s " + std::string(key));
}

bool DescriptionReader::flag(const toml::table& table, std::string_view key, bool usual) const {
    const toml::node* node = table.get(key);
    if (node == nullptr) return usual;
    const auto* value = node->as_boolean();
    if (value == nullptr) fail(node->source(), std::string(key) + " must be true or false");
    return value->get();
}

std::int64_t DescriptionReader::number(const toml::node& node, const std::string& what, std::int64_t least,
                                       std::int64_t most) const {
    const auto* value = node.as_integer();
    if (value == nullptr || value->get() < least || value->get() > most)
        fail(node.source(),
             what + " must be a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    return value->get();
}

} // namespace host
