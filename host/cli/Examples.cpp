#include "host/cli/Examples.h"

#include "host/cli/Input.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace host::cli {

namespace {

constexpr std::string_view kFence = "```", kArrow = "→", kLanguage = "kestrel";

/// Lines without their ends, a carriage return before a line feed included.
std::vector<std::string> linesOf(const std::string& content) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    std::vector<std::string> lines;
    for (std::size_t start = content.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
         start < content.size();) {
        const std::size_t end = std::min(content.find('\n', start), content.size());
        const bool hasReturn = end > start && content[end - 1] == '\r';
        lines.push_back(content.substr(start, end - start - (hasReturn ? 1 : 0)));
        start = end + 1;
    }
    return lines;
}

/// Reads the blocks of a Markdown file.
class MarkdownReader {
public:
    explicit MarkdownReader(std::string file) : file_(std::move(file)) {}

    std::vector<Example> read(const std::vector<std::string>& lines) {
        bool isInBlock = false, isOurs = false;
        for (const std::string& line : lines) {
            ++line_;
            if (line.starts_with(kFence)) {
                if (isOurs && isInBlock) endBlock();
                isInBlock = !isInBlock;
                isOurs = isInBlock && beginBlock(line.substr(kFence.size()));
            } else if (isOurs) {
                takeLine(line);
            }
        }
        if (isOurs) endBlock();
        return std::move(examples_);
    }

private:
    bool beginBlock(const std::string& words) {
        const std::size_t end = words.find(' ');
        context_ = end == std::string::npos ? "" : words.substr(end + 1);
        isFirst_ = true;
        return words.substr(0, end) == kLanguage;
    }

    void takeLine(const std::string& line) {
        if (!line.starts_with(kArrow)) {
            isResult_ = false;
            calculation_ += (calculation_.empty() ? "" : "\n") + line;
            return;
        }
        const std::string text = line.substr(std::min(line.size(), kArrow.size() + 1));
        if (std::exchange(isResult_, true))
            examples_.back().expected += '\r' + text;
        else
            add(text, calculation_.empty() ? "a result without a calculation" : "");
    }

    void endBlock() {
        const bool isBlank = calculation_.find_first_not_of(" \n") == std::string::npos;
        if (!isBlank) add("", "a calculation without a result");
        calculation_.clear();
        isResult_ = false;
    }

    void add(std::string expected, std::string fault) {
        examples_.push_back({.file = file_,
                             .line = line_,
                             .context = context_,
                             .calculation = std::exchange(calculation_, {}),
                             .expected = std::move(expected),
                             .tellsLineFeeds = false,
                             .beginsSession = std::exchange(isFirst_, false),
                             .fault = std::move(fault)});
    }

    std::string file_, context_, calculation_;
    std::size_t line_ = 0;
    bool isFirst_ = true, isResult_ = false;
    std::vector<Example> examples_;
};

/// `\r` and `\t` as the characters they stand for.
std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = text[i] == '\\' && i + 1 < text.size() ? text[i + 1] : '\0';
        if (next == 'r' || next == 't') {
            result += next == 'r' ? '\r' : '\t';
            ++i;
        } else {
            result += text[i];
        }
    }
    return result;
}

Example exampleOf(const std::string& row) {
    std::vector<std::string> columns;
    for (std::size_t start = 0; start <= row.size();) {
        const std::size_t end = std::min(row.find('\t', start), row.size());
        columns.push_back(row.substr(start, end - start));
        start = end + 1;
    }
    Example example;
    if (columns.size() == 3) {
        example.context = columns[0];
        example.calculation = columns[1];
        example.expected = unescaped(columns[2]);
    } else {
        example.calculation = row;
        example.fault = std::to_string(columns.size()) + " columns instead of three";
    }
    return example;
}

std::vector<Example> readTable(const std::string& file, const std::vector<std::string>& lines) {
    std::vector<Example> examples;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].empty() || lines[i].starts_with('#')) continue;
        Example& example = examples.emplace_back(exampleOf(lines[i]));
        example.file = file;
        example.line = i + 1;
    }
    return examples;
}

} // namespace

std::vector<Example> readExamples(const std::filesystem::path& file) {
    const std::vector<std::string> lines = linesOf(contentOf(file));
    if (file.extension() == ".tsv") return readTable(file.string(), lines);
    return MarkdownReader(file.string()).read(lines);
}

} // namespace host::cli
