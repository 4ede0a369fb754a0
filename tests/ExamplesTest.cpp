#include "host/app/File.h"
#include "host/app/Session.h"
#include "host/values/Encoding.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

/// The examples of tests/examples/*.tsv: a category, a calculation and its result a line, with tabs between
/// them. In a result `\r` is a return, `\t` a tab, and `ERROR n` an evaluation that ends with that error. A
/// file NAME.tsv is evaluated in the solution NAME, where there is one beside it.

namespace host {
namespace {

namespace fs = std::filesystem;

void replaceAll(std::string& text, const std::string& wanted, const std::string& replacement) {
    for (std::size_t at = 0; (at = text.find(wanted, at)) != std::string::npos; at += replacement.size())
        text.replace(at, wanted.size(), replacement);
}

/// Evaluates each line with `$` variables of its own.
void expectAll(const fs::path& examples) {
    const fs::path folder = fs::path(examples).replace_extension();
    Session session;
    session.open(fs::is_directory(folder) ? Solution::load(folder) : Solution{});
    std::ifstream file(examples);
    std::size_t line = 0;
    for (std::string text; std::getline(file, text);) {
        SCOPED_TRACE(examples.string() + ":" + std::to_string(++line));
        const std::size_t first = text.find('\t'), second = text.find('\t', first + 1);
        ASSERT_NE(second, std::string::npos);
        std::string expected = text.substr(second + 1);
        replaceAll(expected, "\\r", "\r");
        replaceAll(expected, "\\t", "\t");
        const auto result = calc::evaluate(fromUtf8(text.substr(first + 1, second - first - 1)),
                                           session.environment(session.front()), session.functions());
        EXPECT_EQ(result.error == 0 ? result.value->asText().utf8() : "ERROR " + std::to_string(result.error),
                  expected);
    }
    EXPECT_GT(line, 0U);
}

TEST(Examples, giveTheirResults) {
    std::size_t count = 0;
    for (const auto& entry : fs::directory_iterator(KESTREL_SOURCE_DIR "/tests/examples")) {
        if (entry.path().extension() != ".tsv") continue;
        expectAll(entry.path());
        ++count;
    }
    EXPECT_GT(count, 0U);
}

} // namespace
} // namespace host
