// `mapwright convert` end to end, beyond the numbers of the PROJ table: what
// passes through, what is refused and how, the text formats, the inputs,
// and the systems from the registry and reversed.
#include <gtest/gtest.h>

#include <cmath>

#include "testenv.h"
#include "tool.h"

namespace {

using clitest::Contains;
using clitest::Lines;
using clitest::Numbers;
using clitest::Tool;

class Convert : public ::testing::Test {
protected:
    mwtest::IsolatedEnv m_env;
};

TEST_F(Convert, BadLinesAreReportedByNumberAndMarkedTheRestConverted) {
    const std::string input =
        "\xEF\xBB\xBF# GCP list\n\n55.7558 37.6173 150 GCP-1\n55,7558 37,6173\n55 45 20.88 37 37 2.28\n"
        "55.75 120\n55 45 20.88 N 37 37 2.28 E\r\n";
    const auto r = Tool({"convert", "--from", "geographic", "--to", "gk zone=7 datum=4", "-p", "2"}, input);
    EXPECT_EQ(1, r.status);
    const auto out = Lines(r.out);
    ASSERT_EQ(7u, out.size()) << r.out;
    EXPECT_EQ("# GCP list", out[0]);  // the byte-order mark dropped
    EXPECT_EQ("", out[1]);
    EXPECT_EQ(3u, Numbers(out[2]).size());
    EXPECT_EQ(" GCP-1", out[2].substr(out[2].size() - 6));
    for (int i : {3, 4, 5}) EXPECT_EQ("* *", out[i]);
    EXPECT_EQ(2u, Numbers(out[6]).size());
    for (const char* message : {"<stdin>:4: cannot read the latitude from \"55,7558\": a comma separates numbers",
                                "<stdin>:5: the text after the coordinates starts like one more: \"37\"",
                                "<stdin>:6: the destination system refuses the point",
                                "mapwright: 3 of 5 points could not be converted"})
        EXPECT_TRUE(Contains(r.err, message)) << message << "\n" << r.err;
    const auto zone = Tool({"convert", "--from", "utm", "--to", "geographic"}, "413380.72 6179118.15\n");
    EXPECT_TRUE(Contains(zone.err, "<stdin>:1: no UTM zone: give zone= in the source system")) << zone.err;
}

TEST_F(Convert, TheLibrarysTextFormatsReadBack) {
    const std::vector<std::string> gk = {"convert", "--from", "geographic", "--to", "gk zone=7 datum=4"};
    for (const char* format : {"fields", "dms"}) {
        SCOPED_TRACE(format);
        auto args = gk;
        args.insert(args.end(), {"-I", "--format", format});
        const auto r = Tool(args, "7413342.77 6181926.16\n");
        ASSERT_EQ(0, r.status) << r.err;
        EXPECT_TRUE(Contains(r.out, format[0] == 'f' ? "055.7" : "055\u00b0 45'")) << r.out;
        // What the tool writes, it reads: back within half the last printed
        // place, 5e-8 degrees (6 mm) or 0.005'' (0.16 m), and the print of metres.
        const auto back = Numbers(Lines(Tool(gk, r.out).out).at(0));
        ASSERT_EQ(2u, back.size()) << r.out;
        const double bound = format[0] == 'f' ? 1e-2 : 0.2;
        EXPECT_LE(std::hypot(back[0] - 7413342.77, back[1] - 6181926.16), bound) << r.out;
    }
    auto line = gk;
    line.insert(line.end(), {"--format", "line", "--line-height"});
    EXPECT_EQ(0u, Tool(line, "55.7558 37.6173 150\n").out.rfind("Height 150.8", 0));
}

TEST_F(Convert, AMissingInputOrADirectoryStopsTheCommand) {
    mwtest::TempDir dir;
    mwtest::WriteFile(dir.file("a.txt"), "55.7558 37.6173\n");
    const std::vector<std::string> base = {"convert", "--from", "geo", "--to", "utm zone=37", dir.file("a.txt")};
    for (const std::string& bad : {dir.file("missing.txt"), dir.path()}) {
        auto args = base;
        args.push_back(bad);
        const auto r = Tool(args);
        EXPECT_EQ(2, r.status);
        EXPECT_TRUE(Contains(r.err, "mapwright: cannot open " + bad + ": ")) << r.err;
        EXPECT_EQ("", r.out);
    }
    // Opening the output would empty an input of the same name.
    auto args = base;
    args.insert(args.end(), {"-o", dir.file("a.txt")});
    EXPECT_EQ(2, Tool(args).status);
    EXPECT_EQ("55.7558 37.6173\n", mwtest::ReadFile(dir.file("a.txt")));
}

TEST_F(Convert, SavedAndReversedSystemsConvertAsTheirText) {
    const std::string gk = "gk zone=7 datum=4", utm = "utm zone=37 south";
    ASSERT_EQ(0, Tool({"system", "save", "T/gk7", gk}).status);
    ASSERT_EQ(0, Tool({"system", "save", "T\\utm", utm}).status);
    ASSERT_EQ(0, Tool({"pair", "save", "T/job", "--from", gk, "--to", utm}).status);
    const std::string point = "7413312.21 6181926.162 160.858\n";
    const auto inline_ = Tool({"convert", "--from", gk, "--to", utm, "-p", "6"}, point);
    ASSERT_EQ(0, inline_.status) << inline_.err;
    for (const std::vector<std::string>& way : std::vector<std::vector<std::string>>{
             {"--from-key", "T/gk7", "--to-key", "T/utm"}, {"--pair", "T/job"}}) {
        auto args = way;
        args.insert(args.begin(), "convert");
        args.insert(args.end(), {"-p", "6"});
        EXPECT_EQ(inline_.out, Tool(args, point).out);
        // -I swaps the two: back within two Molodensky shifts at 56 degrees
        // (5.5 mm measured, see the PROJ table) and the series.
        args.push_back("-I");
        const auto back = Numbers(Tool(args, inline_.out).out);
        ASSERT_EQ(3u, back.size());
        EXPECT_LE(std::hypot(back[0] - 7413312.21, back[1] - 6181926.162), 1e-2);
    }
}

}  // namespace
