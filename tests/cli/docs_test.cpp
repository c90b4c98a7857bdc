// The help of every command, the man page and the README's "Command-line
// tool" section tell the same: every command and option is in all three.
#include <gtest/gtest.h>

#include <set>
#include <iterator>
#include <sstream>
#include <string>

#include "testenv.h"
#include "tool.h"

namespace {

using clitest::Contains;
// The options under "Options:" of a help text: "-p,--precision INT  ...".
std::set<std::string> OptionsOf(const std::string& help) {
    std::set<std::string> options;
    const size_t start = help.find("\nOptions:\n");
    std::istringstream block(help.substr(start, help.find("\n\n", start + 1) - start));
    for (std::string line; std::getline(block, line);) {
        std::istringstream names(line.substr(0, line.find("  ", 2)));
        for (std::string name; std::getline(names, name, ',');) {
            const size_t first = name.find_first_not_of(' ');
            if (first != std::string::npos && name[first] == '-')
                options.insert(name.substr(first, name.find(' ', first) - first));
        }
    }
    return options;
}

TEST(Documentation, EveryCommandAndOptionIsInTheHelpTheManPageAndTheReadme) {
    mwtest::IsolatedEnv env;
    const std::string source = MAPWRIGHT_SOURCE_DIR;
    std::string man = mwtest::ReadFile(source + "/cli/mapwright.1"), readme = mwtest::ReadFile(source + "/README.md");
    for (size_t at; (at = man.find("\\-")) != std::string::npos;) man.erase(at, 1);  // roff's hyphen
    readme = readme.substr(readme.find("\n## Command-line tool\n"));
    readme = readme.substr(0, readme.find("\n## ", 1));
    std::set<std::string> options = OptionsOf(clitest::Tool({"--help"}).out);
    for (const char* command : {"convert", "datums", "ellipsoids", "datum add", "system save", "system show",
                                "system list", "pair save", "pair show", "pair list"}) {
        SCOPED_TRACE(command);
        std::istringstream words(std::string(command) + " --help");
        const auto help = clitest::Tool({std::istream_iterator<std::string>(words), {}});
        EXPECT_TRUE(Contains(help.out, std::string("Usage: mapwright ") + command)) << help.out;
        EXPECT_TRUE(Contains(man, std::string(".SS ") + command + "\n"));
        EXPECT_TRUE(Contains(readme, std::string("`") + command));
        options.merge(OptionsOf(help.out));
    }
    EXPECT_TRUE(options.count("--from-key") && options.count("--rf") && options.count("-I"));
    for (const std::string& option : options)
        EXPECT_TRUE((option == "-h" || option == "--help") || (Contains(man, option) && Contains(readme, option)))
            << option << " is not in cli/mapwright.1 and README.md";
}

}  // namespace
