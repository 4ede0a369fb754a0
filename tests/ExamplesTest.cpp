#include "host/app/File.h"
#include "host/app/Session.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

/// The examples of tests/examples: a category, a calculation and its result a line, with tabs between them.
/// In a result `\r` is a return, `\t` a tab, and `ERROR n` an evaluation that ends with that error.

namespace host {
namespace {

void replaceAll(std::string& text, const std::string& wanted, const std::string& replacement) {
    for (std::size_t at = 0; (at = text.find(wanted, at)) != std::string::npos; at += replacement.size())
        text.replace(at, wanted.size(), replacement);
}

TEST(Examples, giveTheirResults) {
    Session session;
    session.open(Solution{});
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("tests/examples")) {
        std::ifstream file(entry.path());
        std::size_t line = 0;
        for (std::string text; std::getline(file, text);) {
            SCOPED_TRACE(entry.path().string() + ":" + std::to_string(++line));
            const std::size_t first = text.find('\t'), second = text.find('\t', first + 1);
            ASSERT_NE(second, std::string::npos);
            std::string expected = text.substr(second + 1);
            replaceAll(expected, "\\r", "\r");
            replaceAll(expected, "\\t", "\t");
            const auto result = calc::evaluate(fromUtf8(text.substr(first + 1, second - first - 1)),
                                               session.environment(session.front()), session.functions());
            EXPECT_EQ(result.error == 0 ? result.value->asText().utf8()
                                        : "ERROR " + std::to_string(result.error),
                      expected);
            ++count;
        }
    }
    EXPECT_GT(count, 0U);
}

} // namespace
} // namespace host
