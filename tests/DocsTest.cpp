#include "CommandOutput.h"

#include "host/app/PlugIn.h"
#include "host/app/Session.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

/// Runs every example in the documents: calculations in ```kestrel blocks, commands in ```console blocks.

namespace {

namespace fs = std::filesystem;

struct Block {
    std::string language;
    std::vector<std::string> lines;
};

std::vector<Block> blocksOf(const fs::path& document) {
    std::vector<Block> blocks;
    std::ifstream in(document);
    bool inside = false;
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("```")) {
            inside = !inside;
            if (inside) blocks.push_back({line.substr(3), {}});
        } else if (inside) {
            blocks.back().lines.push_back(line);
        }
    }
    return blocks;
}

std::vector<fs::path> documents() {
    const fs::path root = KESTREL_SOURCE_DIR;
    std::vector<fs::path> found{root / "README.md"};
    for (const auto& entry : fs::recursive_directory_iterator(root / "docs"))
        if (entry.path().extension() == ".md") found.push_back(entry.path());
    std::sort(found.begin(), found.end());
    return found;
}

/// The result's text with returns shown as line breaks, or "error N".
std::string outcome(host::Session& session, const std::string& calculation) {
    const host::calc::Result result = session.evaluate(host::fromUtf8(calculation));
    if (result.error != 0) return "error " + std::to_string(result.error);
    std::string text = result.value->asText().utf8();
    std::replace(text.begin(), text.end(), '\r', '\n');
    return text;
}

/// Runs a block's calculations in order in one session; gives their number.
int runCalculations(const Block& block, const fs::path& document) {
    const std::string arrow = "→";
    host::Session session;
    session.open(host::Solution{});
    host::PlugIn plugIn(session, KESTREL_PLUGIN_PATH);
    plugIn.init();
    std::string calculation;
    int count = 0;
    for (std::size_t i = 0; i < block.lines.size(); ++i) {
        if (!block.lines[i].starts_with(arrow)) {
            calculation += block.lines[i] + "\n";
            continue;
        }
        const auto shown = [&](const std::string& line) {
            return line.size() > arrow.size() ? line.substr(arrow.size() + 1) : std::string();
        };
        std::string expected = shown(block.lines[i]);
        while (i + 1 < block.lines.size() && block.lines[i + 1].starts_with(arrow))
            expected += "\n" + shown(block.lines[++i]);
        EXPECT_EQ(outcome(session, calculation), expected) << document << ": " << calculation;
        calculation.clear();
        ++count;
    }
    EXPECT_EQ(calculation, "") << document << ": an example without a result";
    return count;
}

std::string outputAtTheRoot(std::string command) {
    const std::string door = "./kestrel ";
    if (command.starts_with(door)) command.replace(0, door.size(), "'" KESTREL_HOST_PATH "' ");
    return outputOf("{ cd '" KESTREL_SOURCE_DIR "' && export KESTREL_PLUGIN='" KESTREL_PLUGIN_PATH "' && " +
                    command + "; } 2>&1");
}

/// Runs a block's commands ("$ …") and compares the output after each; gives their number.
int runCommands(const Block& block, const fs::path& document) {
    int count = 0;
    for (std::size_t i = 0; i < block.lines.size();) {
        EXPECT_TRUE(block.lines[i].starts_with("$ ")) << document << ": " << block.lines[i];
        const std::string command = block.lines[i++].substr(2);
        std::string expected;
        for (; i < block.lines.size() && !block.lines[i].starts_with("$ "); ++i)
            expected += block.lines[i] + "\n";
        EXPECT_EQ(outputAtTheRoot(command), expected) << document << ": " << command;
        ++count;
    }
    return count;
}

TEST(Documents, everyExampleGivesTheResultItShows) {
    int calculations = 0, commands = 0;
    for (const fs::path& document : documents())
        for (const Block& block : blocksOf(document)) {
            if (block.language == "kestrel") calculations += runCalculations(block, document);
            if (block.language == "console") commands += runCommands(block, document);
        }
    EXPECT_GT(calculations, 20);
    EXPECT_GT(commands, 3);
}

TEST(Documents, everyFunctionPageHasTheSameSections) {
    host::Session session;
    session.open(host::Solution{});
    host::PlugIn plugIn(session, KESTREL_PLUGIN_PATH);
    plugIn.init();
    for (const auto& entry : fs::directory_iterator(fs::path(KESTREL_SOURCE_DIR) / "docs/functions")) {
        const fs::path& page = entry.path();
        if (page.filename() == "README.md") continue;
        std::ifstream in(page);
        std::stringstream whole;
        whole << in.rdbuf();
        const std::u16string name = host::fromUtf8(page.stem().string());
        const auto& functions = plugIn.functions();
        const auto function = std::find_if(functions.begin(), functions.end(),
                                           [&](const auto& row) { return row.name == name; });
        ASSERT_NE(function, functions.end()) << page;
        std::size_t at = 0;
        for (const std::string& heading :
             {"# " + page.stem().string(), "\n    " + host::toUtf8(function->prototype),
              std::string("## Parameters"), std::string("## Result"), std::string("## Errors"),
              std::string("## Examples")}) {
            const std::size_t found = whole.str().find(heading + "\n", at);
            ASSERT_NE(found, std::string::npos) << page << " lacks " << heading;
            at = found;
        }
    }
}

} // namespace
