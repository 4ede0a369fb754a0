#pragma once

#include "host/app/Toml.h"

#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>

namespace host {

[[noreturn]] void failAt(const std::string& file, std::size_t line, const std::string& what);

/// Throws std::runtime_error where there is none, it is larger than 256 MiB or it cannot be read.
std::string contentOfFile(const std::filesystem::path& file);

/// Reads the parts of one description; every error, a std::runtime_error, names the file and the line.
class DescriptionReader {
public:
    explicit DescriptionReader(std::string file) : file_(std::move(file)) {}

    [[nodiscard]] const std::string& file() const { return file_; }
    [[noreturn]] void fail(const toml::source_region& where, const std::string& what) const;
    void checkKeys(const toml::table& table, std::initializer_list<std::string_view> known) const;
    [[nodiscard]] const toml::table& table(const toml::node& node, const std::string& what) const;
    [[nodiscard]] std::u16string text(const toml::node& node, const std::string& what) const;
    /// A text without control characters, so that it fits on one line of a list of names.
    [[nodiscard]] std::u16string name(const toml::node& node, const std::string& what) const;
    /// A name that a part must have; `what` is the part ("a script").
    [[nodiscard]] std::u16string requiredName(const toml::table& table, std::string_view key,
                                              const std::string& what) const;
    [[nodiscard]] bool flag(const toml::table& table, std::string_view key, bool usual) const;
    [[nodiscard]] std::int64_t number(const toml::node& node, const std::string& what, std::int64_t least,
                                      std::int64_t most) const;

    template<typename Each>
    void each(const toml::node& node, const std::string& what, Each&& visit) const {
        const auto* array = node.as_array();
        if (array == nullptr) fail(node.source(), what + " must be an array");
        for (const toml::node& element : *array)
            visit(element);
    }

private:
    std::string file_;
};

} // namespace host
