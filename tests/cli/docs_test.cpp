// The help of every command, the man page and the README's "Command-line
// tool" section tell the same: every command and every option the tool takes
// is documented in all three.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "testenv.h"
#include "tool.h"

namespace {

using clitest::Contains;
using clitest::Tool;

const std::vector<std::vector<std::string>> kCommands = {
    {"convert"},        {"datums"},         {"ellipsoids"},   {"datum", "add"},
    {"system", "save"}, {"system", "show"}, {"pair", "save"}, {"pair", "show"},
};

// The options listed under "Options:" in a help text.
std::set<std::string> OptionsOf(const std::string& help) {
    std::set<std::string> options;
    const size_t start = help.find("\nOptions:\n");
    if (start == std::string::npos) return options;
    const size_t end = help.find("\n\n", start + 1);
    const std::string block = help.substr(start, end - start);
    for (const std::string& line : clitest::Lines(block)) {
        // The option column ends where the description starts; in it, each
        // name starts with "-" after a blank or a comma: "-p,--precision INT".
        const std::string names = line.substr(0, line.find("  ", 2));
        for (size_t i = 0; i < names.size(); ++i) {
            if (names[i] != '-' || (i > 0 && names[i - 1] != ' ' && names[i - 1] != ',')) continue;
            size_t j = i;
            while (j < names.size() && (names[j] == '-' || (names[j] >= 'a' && names[j] <= 'z'))) ++j;
            if (j > i + 1 && names[j - 1] != '-') options.insert(names.substr(i, j - i));
            i = j;
        }
    }
    options.erase("-h");
    options.erase("--help");
    return options;
}

std::string ManPage() {
    // roff writes a hyphen as \- ; the reader sees "-".
    const std::string roff = mwtest::ReadFile(std::string(MAPWRIGHT_SOURCE_DIR) + "/cli/mapwright.1");
    std::string text;
    for (size_t i = 0; i < roff.size(); ++i) {
        if (roff[i] == '\\' && i + 1 < roff.size() && roff[i + 1] == '-') continue;
        text += roff[i];
    }
    return text;
}

std::string ReadmeSection() {
    const std::string readme = mwtest::ReadFile(std::string(MAPWRIGHT_SOURCE_DIR) + "/README.md");
    const size_t start = readme.find("\n## Command-line tool\n");
    if (start == std::string::npos) return "";
    return readme.substr(start, readme.find("\n## ", start + 1) - start);
}

TEST(Documentation, EveryCommandAndOptionIsInTheHelpTheManPageAndTheReadme) {
    mwtest::IsolatedEnv env;
    const std::string man = ManPage(), readme = ReadmeSection();
    ASSERT_FALSE(man.empty());
    ASSERT_FALSE(readme.empty()) << "README.md has no \"Command-line tool\" section";

    const clitest::Result top = Tool({"--help"});
    ASSERT_EQ(0, top.status);
    std::set<std::string> options = OptionsOf(top.out);
    for (const auto& command : kCommands) {
        std::string path;
        for (const std::string& word : command) {
            if (!path.empty()) path += ' ';
            path += word;
        }
        SCOPED_TRACE(path);
        std::vector<std::string> args = command;
        args.push_back("--help");
        const clitest::Result help = Tool(args);
        ASSERT_EQ(0, help.status);
        EXPECT_TRUE(Contains(help.out, "Usage: mapwright " + path)) << help.out;
        // The command: in the top-level help (its first word), the man page's
        // section heading and synopsis, and the README.
        EXPECT_TRUE(Contains(top.out, "  " + command[0] + " "));
        EXPECT_TRUE(Contains(man, ".SS " + path + "\n"));
        EXPECT_TRUE(Contains(man, ".B mapwright " + path) || Contains(man, ".B " + path)) << path;
        EXPECT_TRUE(Contains(readme, "`" + path)) << path;
        const std::set<std::string> own = OptionsOf(help.out);
        EXPECT_FALSE(own.empty() && path == "convert");
        options.insert(own.begin(), own.end());
    }
    for (const std::string& option : options) {
        SCOPED_TRACE(option);
        EXPECT_TRUE(Contains(man, option)) << "not in cli/mapwright.1";
        EXPECT_TRUE(Contains(readme, option)) << "not in README.md";
    }
    // The options seen are the ones the tool has: the parse found them all.
    EXPECT_TRUE(options.count("--from-key") && options.count("--rf") && options.count("--lang") &&
                options.count("-w") && options.count("--version"));
}

}  // namespace
