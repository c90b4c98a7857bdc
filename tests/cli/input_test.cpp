// What `mapwright convert` reads and how it treats what it cannot read: the
// forms of a point, comments, lines it must refuse (each reported with its
// line number, a marker in its place, the rest converted), the progress line.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "testenv.h"
#include "tool.h"

namespace {

using clitest::Cct;
using clitest::Contains;
using clitest::Lines;
using clitest::Numbers;
using clitest::Tool;

class ConvertInput : public ::testing::Test {
protected:
    mwtest::IsolatedEnv m_env;
};

TEST_F(ConvertInput, EveryFormOfAPointGivesThatPoint) {
    // Three points, each converted by PROJ: Moscow, 55.7558 N 37.6173 E, which
    // is 55° 45' 20.88'' N 37° 37' 02.28'' E exactly; Cape Town, 33.9249 S
    // 18.4241 E, 33° 55' 29.64'' S 18° 25' 26.76'' E; and its mirror north of
    // the equator.
    enum Point { kMoscow, kCapeTown, kMirror };
    const struct {
        const char* system;
        const char* proj;
        double lon, lat;
    } kPoints[] = {{"utm zone=37", "+proj=utm +zone=37 +ellps=WGS84", 37.6173, 55.7558},
                   {"utm zone=34 south", "+proj=utm +zone=34 +south +ellps=WGS84", 18.4241, -33.9249},
                   {"utm zone=34", "+proj=utm +zone=34 +ellps=WGS84", 18.4241, 33.9249}};
    const struct {
        const char* why;
        const char* line;
        bool lonFirst;
        Point point;
    } kRows[] = {
        {"decimal degrees, latitude first", "55.7558 37.6173", false, kMoscow},
        {"a comma between the numbers", "55.7558, 37.6173", false, kMoscow},
        {"tabs and a plus sign", "+55.7558\t37.6173", false, kMoscow},
        {"hemisphere letters after blanks", "55.7558 N 37.6173 E", false, kMoscow},
        {"hemisphere letters glued on", "55.7558N 37.6173e", false, kMoscow},
        {"the library's decimal text", "055.7558000 N\t037.6173000 E", false, kMoscow},
        {"the library's degrees-minutes-seconds text", "055° 45' 20.88'' N 037° 37' 02.28'' E", false, kMoscow},
        {"the same without leading zeros or blanks", "55°45'20.88''N 37°37'2.28''E", false, kMoscow},
        {"seconds marked with a double quote", "55°45'20.88\"N, 37°37'02.28\"E", false, kMoscow},
        {"-w: longitude first", "37.6173 55.7558", true, kMoscow},
        {"-w with letters", "37.6173 E 55.7558 N", true, kMoscow},
        {"signed southern latitude", "-33.9249 18.4241", false, kCapeTown},
        {"S negates", "33.9249 S 18.4241 E", false, kCapeTown},
        {"degrees-minutes-seconds south", "033° 55' 29.64'' S 018° 25' 26.76'' E", false, kCapeTown},
        {"S flips a typed minus, as the library's reader does", "-33.9249 S 18.4241", false, kMirror},
    };
    std::vector<std::vector<double>> expected;
    for (const auto& p : kPoints) expected.push_back(Cct(p.proj, {{p.lon, p.lat, 0.0}}).at(0));
    for (const auto& row : kRows) {
        SCOPED_TRACE(row.why);
        std::vector<std::string> args = {"convert", "--from", "geographic", "--to", kPoints[row.point].system, "-p", "6"};
        if (row.lonFirst) args.push_back("-w");
        const clitest::Result r = Tool(args, std::string(row.line) + "\n");
        ASSERT_EQ(0, r.status) << r.err;
        const auto got = Numbers(Lines(r.out).at(0));
        ASSERT_EQ(2u, got.size()) << r.out;
        const std::vector<double>& e = expected[row.point];
        // Bound: the series' 1 mm, PROJ's and the print's 1 mm.
        EXPECT_LE(std::hypot(got[0] - e[0], got[1] - e[1]), 2e-3) << r.out;
    }
}

TEST_F(ConvertInput, CommentsBlankLinesAndTrailingTextPassThrough) {
    const std::string input =
        "# GCP list\n"
        "\n"
        "   \n"
        "  # indented comment\n"
        "55.7558 37.6173 150 GCP-1 Red Square\n"
        "55.7558 37.6173\tGCP-2\r\n"
        "55.7558 37.6173";  // no line end at the end
    const clitest::Result r = Tool({"convert", "--from", "geographic", "--to", "utm zone=37", "-p", "2"}, input);
    ASSERT_EQ(0, r.status) << r.err;
    const std::vector<std::string> lines = Lines(r.out);
    ASSERT_EQ(7u, lines.size()) << r.out;
    EXPECT_EQ("# GCP list", lines[0]);
    EXPECT_EQ("", lines[1]);
    EXPECT_EQ("   ", lines[2]);
    EXPECT_EQ("  # indented comment", lines[3]);
    // The height comes out after the horizontal numbers, the text after it.
    EXPECT_EQ(3u, Numbers(lines[4]).size());
    EXPECT_TRUE(lines[4].size() > 17 && lines[4].substr(lines[4].size() - 17) == " GCP-1 Red Square") << lines[4];
    EXPECT_EQ(2u, Numbers(lines[5]).size());
    EXPECT_TRUE(lines[5].size() > 6 && lines[5].substr(lines[5].size() - 6) == " GCP-2") << lines[5];
    EXPECT_FALSE(Contains(r.out, "\r"));
    EXPECT_EQ(2u, Numbers(lines[6]).size());
    EXPECT_EQ('\n', r.out.back());
}

struct BadLine {
    const char* line;
    const char* message;  // what standard error must say about it
};

// Runs `lines` (bad and good mixed) and checks the rules for bad input: one
// message per bad line naming its number, a marker in its place, every good
// line converted, exit status 1, a summary.
void CheckBadLines(const std::vector<std::string>& args, const std::vector<BadLine>& bad, const std::string& good,
                   const char* marker) {
    std::string input;
    std::vector<int> badAt;
    for (size_t i = 0; i < bad.size(); ++i) {
        input += good + "\n";
        input += std::string(bad[i].line) + "\n";
        badAt.push_back(static_cast<int>(2 * i + 2));
    }
    input += good + "\n";
    const clitest::Result r = Tool(args, input);
    EXPECT_EQ(1, r.status);
    const std::vector<std::string> out = Lines(r.out);
    ASSERT_EQ(2 * bad.size() + 1, out.size()) << r.out;
    for (size_t i = 0; i < out.size(); ++i) {
        if (i % 2 == 1) {
            EXPECT_EQ(marker, out[i]) << "line " << i + 1;
        } else {
            EXPECT_TRUE(!out[i].empty() && out[i] != marker && out[i].find('*') == std::string::npos)
                << "line " << i + 1 << ": " << out[i];
        }
    }
    for (size_t i = 0; i < bad.size(); ++i) {
        const std::string expected = "mapwright: <stdin>:" + std::to_string(badAt[i]) + ": " + bad[i].message;
        EXPECT_TRUE(Contains(r.err, expected)) << "expected: " << expected << "\nstderr:\n" << r.err;
    }
    EXPECT_TRUE(Contains(r.err, "mapwright: " + std::to_string(bad.size()) + " of " +
                                    std::to_string(2 * bad.size() + 1) + " points could not be converted"))
        << r.err;
}

TEST_F(ConvertInput, ProjectedLinesThatCannotBeRead) {
    CheckBadLines({"convert", "--from", "utm zone=37 datum=4", "--to", "geographic"},
                  {
                      {"abc 6179118.15", "cannot read the easting from \"abc\""},
                      {"413380.72", "missing the northing (expected: [zone] easting northing [height])"},
                      {"413380.72 6179118x", "cannot read the northing from \"6179118x\""},
                      {"inf 6179118", "cannot read the easting from \"inf\" (not a finite number)"},
                      {"nan 6179118", "cannot read the easting from \"nan\" (not a finite number)"},
                      {"1e999 6179118", "cannot read the easting from \"1e999\""},
                      {"61n 413380 6179118", "cannot read the zone from \"61n\" (1..60 followed by n or s)"},
                  },
                  "413380.72 6179118.15", "* *");
}

TEST_F(ConvertInput, GeographicLinesThatCannotBeReadOrAreRefused) {
    CheckBadLines(
        {"convert", "--from", "geographic datum=3", "--to", "gk zone=7 datum=4"},
        {
            {"95 37", "the latitude is outside -90..90"},
            {"55 600", "the longitude is outside -540..540"},
            {"55.7 E 37.6", "\"E\" after the latitude is a letter of the other axis (for longitude first use -w)"},
            {"055° 61' 00.00'' N 037° 00' 00.00'' E",
             "cannot read the latitude from \"055° 61' 00.00'' N\"; degrees, minutes and seconds are written "
             "as 55 45 20.5 N"},
            {"55.7 abc", "cannot read the longitude from \"abc\""},
            // Gauss-Kruger zone 7 covers 30 degrees either side of 39 E and a 2 degree margin.
            {"55.75 120.0", "the destination system refuses the point (outside the area of its projection)"},
        },
        "55.7558 37.6173", "* *");
}

TEST_F(ConvertInput, UtmWithoutAZoneNeedsOneOnTheLine) {
    CheckBadLines({"convert", "--from", "utm datum=4", "--to", "geographic", "--format", "fields"},
                  {{"413380.72 6179118.15",
                    "no UTM zone: give zone= in the source system or start the line with the zone, as in 37n"}},
                  "37n 413380.72 6179118.15", "*\t*");
}

TEST_F(ConvertInput, AMissingInputOrADirectoryStopsTheCommand) {
    mwtest::TempDir dir;
    mwtest::WriteFile(dir.file("a.txt"), "55.7558 37.6173\n");
    const std::vector<std::string> base = {"convert", "--from", "geographic", "--to", "utm zone=37"};
    for (const std::string& bad : {dir.file("missing.txt"), dir.path()}) {
        std::vector<std::string> args = base;
        args.insert(args.end(), {dir.file("a.txt"), bad});
        const clitest::Result r = Tool(args);
        EXPECT_EQ(2, r.status);
        EXPECT_TRUE(Contains(r.err, "mapwright: cannot open " + bad + ": ")) << r.err;
        EXPECT_EQ("", r.out);
    }
    // Opening the output would empty an input of the same name: refused.
    std::vector<std::string> args = base;
    args.insert(args.end(), {dir.file("a.txt"), "-o", dir.file("a.txt")});
    const clitest::Result same = Tool(args);
    EXPECT_EQ(2, same.status);
    EXPECT_TRUE(Contains(same.err, "is also an input")) << same.err;
    EXPECT_EQ("55.7558 37.6173\n", mwtest::ReadFile(dir.file("a.txt")));
}

std::string ManyLines(int count) {
    std::string s;
    s.reserve(static_cast<size_t>(count) * 22);
    for (int i = 0; i < count; ++i) s += "413380.72 6179118.15\n";
    return s;
}

TEST_F(ConvertInput, ProgressOnlyOnATerminalAndOnlyBeyondAHundredThousandLines) {
    const std::vector<std::string> args = {"convert", "--from", "utm zone=37", "--to", "geographic"};
    const clitest::Result shown = clitest::RunWithTerminalStderr(args, ManyLines(100001));
    EXPECT_EQ(0, shown.status);
    EXPECT_TRUE(Contains(shown.err, "mapwright: 100001 lines")) << shown.err;
    EXPECT_EQ(100001u, Lines(shown.out).size());

    const clitest::Result few = clitest::RunWithTerminalStderr(args, ManyLines(100000));
    EXPECT_EQ(0, few.status);
    EXPECT_EQ("", few.err);

    const clitest::Result notTerminal = Tool(args, ManyLines(150000));
    EXPECT_EQ(0, notTerminal.status);
    EXPECT_EQ("", notTerminal.err);
}

}  // namespace
