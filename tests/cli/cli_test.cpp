// The tool end to end against PROJ's cct run now, in a private application
// directory and registry.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <mapwright/mapwright.h>

#include <algorithm>
#include <array>
#include <map>
#include <cmath>
#include <functional>
#include <sstream>

#include "choose.h"
#include "testenv.h"

namespace {

using namespace mwtest;
using Args = std::vector<std::string>;
struct Result {
    int status;  // -1 when the child did not exit normally
    std::string out, err;
};

// Files rather than pipes: no deadlock whatever the child writes.
Result Run(const std::string& program, const Args& args, const std::string& input = "") {
    TempDir dir;
    const std::string in = dir.file("in"), out = dir.file("out"), err = dir.file("err");
    WriteFile(in, input);
    std::vector<char*> argv = {const_cast<char*>(program.c_str())};
    for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    // No display for a child: `choose` would open a real window and wait.
    std::vector<char*> env;
    for (char** e = environ; *e; ++e)
        if (std::string_view v(*e); !v.starts_with("DISPLAY=") && !v.starts_with("WAYLAND_DISPLAY=") && !v.starts_with("QT_QPA_PLATFORM="))
            env.push_back(*e);
    env.push_back(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        const int i = open(in.c_str(), O_RDONLY), o = open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600),
                  e = open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (i >= 0 && o >= 0 && e >= 0 && dup2(i, 0) >= 0 && dup2(o, 1) >= 0 && dup2(e, 2) >= 0)
            execve(program.c_str(), argv.data(), env.data());
        _exit(127);
    }
    int wait = 0;
    if (pid < 0 || waitpid(pid, &wait, 0) != pid) throw std::runtime_error("fork failed");
    return {WIFEXITED(wait) ? WEXITSTATUS(wait) : -1, ReadFile(out), ReadFile(err)};
}
Result Tool(const Args& args, const std::string& input = "") { return Run(MAPWRIGHT_CLI, args, input); }

std::vector<std::string> Lines(const std::string& text) {
    std::istringstream s(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(s, line);) lines.push_back(line);
    return lines;
}
// The leading numbers of a line, up to the first word that is not one.
std::vector<double> Nums(const std::string& line) {
    std::vector<double> v;
    std::istringstream s(line);
    for (std::string w; s >> w;) {
        char* end = nullptr;
        v.push_back(std::strtod(w.c_str(), &end));
        if (end == w.c_str() || *end) return v.pop_back(), v;
    }
    return v;
}
bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

// cct on a PROJ pipeline: one line of numbers per point (x y z), one process.
std::vector<std::vector<double>> Cct(const std::string& pipeline, const std::vector<std::array<double, 3>>& pts) {
    std::ostringstream in;
    in.precision(17);
    for (const auto& p : pts) in << p[0] << ' ' << p[1] << ' ' << p[2] << " 0\n";
    Args args = {"-d", "12"};
    std::istringstream words(pipeline);
    for (std::string w; words >> w;) args.push_back(w);
    const Result r = Run(MAPWRIGHT_CCT, args, in.str());
    std::vector<std::vector<double>> out;
    for (const std::string& line : Lines(r.out)) out.push_back(Nums(line));
    if (r.status != 0 || out.size() != pts.size() || !std::all_of(out.begin(), out.end(), [](auto& v) { return v.size() >= 3; }))
        throw std::runtime_error("cct failed: " + r.err);
    return out;
}

// PROJ's standard Molodensky step from datum f to datum t (ellipsoid, shift to WGS 84).
struct Datum {
    double a, rf, dx, dy, dz;
};
const Datum kWgs84 = {6378137, 298.257223563, 0, 0, 0};
std::string Molodensky(const Datum& f, const Datum& t) {
    std::ostringstream s;
    s.precision(17);
    s << " +step +proj=molodensky +a=" << f.a << " +rf=" << f.rf << " +dx=" << f.dx - t.dx << " +dy=" << f.dy - t.dy
      << " +dz=" << f.dz - t.dz << " +da=" << t.a - f.a << " +df=" << 1 / t.rf - 1 / f.rf;
    return s.str();
}

// Metres between two nearby positions (degrees) on WGS 84, to 1 %, from the
// radii of curvature at the mean latitude.
double Ground(double lat1, double lon1, double lat2, double lon2) {
    const double e2 = 0.00669437999014, r = M_PI / 180, phi = (lat1 + lat2) / 2 * r, w2 = 1 - e2 * std::pow(std::sin(phi), 2);
    return 6378137 * r * std::hypot((lat1 - lat2) * (1 - e2) / std::pow(w2, 1.5), (lon1 - lon2) / std::sqrt(w2) * std::cos(phi));
}

class Cli : public ::testing::Test {
protected:
    IsolatedEnv m_env;
    std::string Ini() const { return ReadFile(m_env.catalogDir() + "/datum.ini"); }
};

struct Pt {
    double lat, lon, h = 0;
};
struct Row {
    const char *sys, *proj;  // proj: PROJ's, less the ellipsoid (and the zone for "utm")
    std::vector<Pt> pts;
};
// Transverse kinds within 4 degrees of their meridian.
const Row kRows[] = {
    {"utm zone=37 north", "utm +zone=37", {{55.7558, 37.6173, 150}, {-33, 41}, {89.5, 39.5, 10}, {-89.5, 38}}},
    {"utm zone=60 south", "utm +zone=60 +south", {{-16.5, -180}, {-16.5, 179.99, 5}, {10, -179.99}, {-85, 177}, {83, 176}}},
    {"utm zone=1 north", "utm +zone=1", {{-16.5, 180}, {60, -178}, {-80, -177}, {84, 179.5}}},
    {"utm zone=Auto", "utm", {{-33.8688, 151.2093, 20}, {-0.2, -78.5}, {0.2, 180}, {-16.5, -179.99}, {-79, 179.99}, {83, 3}}},
    {"gk zone=7", "tmerc +lon_0=39 +k=1 +x_0=7500000", {{55.7558, 37.6173, 150}, {-40, 42}, {89.9, 36}, {-88, 40}}},
    {"gk zone=30", "tmerc +lon_0=177 +k=1 +x_0=30500000", {{64.7, -179.5}, {-45, 180}, {-45, -180}, {10, 174}}},
    {"tm k=+0.9999 lon0=-75 lat0=+10 fe=300000 fn=50000", "tmerc +lat_0=10 +lon_0=-75 +k=0.9999 +x_0=300000 +y_0=50000", {{40.7, -74, 10}, {-12, -77}, {89, -71}, {-89, -79}}},
    {"mercator lon0=100 lat_ts=30 fe=1000 fn=-2000", "merc +lon_0=100 +lat_ts=30 +x_0=1000 +y_0=-2000", {{1.3, 103.8}, {-60, -80}, {60, 179.9}, {-70, -179.9}, {88, 100}, {-88, 0}}},
    {"ps lat_ts=71 lon0=-45", "stere +lat_0=90 +lat_ts=71 +lon_0=-45", {{85, 10}, {89.99, 100}, {60, -170}, {70, 180}, {0.5, 30}}},
    {"ps lat_ts=-90 fe=100 fn=-100", "stere +lat_0=-90 +lat_ts=-90 +x_0=100 +y_0=-100", {{-85, 30}, {-75, -120}, {-89.99, 180}, {-60, -179.99}}},
    {"ups north", "ups", {{85, 30}, {84, -179.99}, {89.9, 180}}},
    {"ups south", "ups +south", {{-85, 30}, {-80, 180}, {-89.9, -90, 3000}}},
    {"cartesian", "cart", {{55.7558, 37.6173, 150}, {-33.9, 151.2, 10000}, {89.99, 180, -50}, {-89.9, -179.99, 3000}, {0, 180}}},
};

struct Shift {
    const char *tool, *ellps;
    std::string molodensky, exact;  // PROJ's steps from WGS 84
    double bound;                   // metres
};
// 1 mm on one datum: the series, PROJ, the print. Across datums the way back
// is a second Molodensky shift, not the first's inverse: the neglected terms
// grow as tan(latitude) (Pulkovo: 5.5 mm at 56 degrees), hence 5 mm (1 + tan).
const Shift kShifts[] = {
    {" datum=3", "WGS84", "", "", 1e-3},
    {" datum=4", "krass", Molodensky(kWgs84, {6378245, 298.3, 28, -130, -95}),
     " +step +proj=cart +ellps=WGS84 +step +proj=helmert +x=-28 +y=130 +z=95 +step +inv +proj=cart +ellps=krass", 5e-3},
};

TEST_F(Cli, EveryKindAgreesWithProjAndReadsBack) {
    for (const Row& row : kRows)
        for (const Shift& d : kShifts) {
            const std::string sys = row.sys + std::string(d.tool);
            SCOPED_TRACE(sys);
            std::ostringstream text;
            text.precision(17);
            for (const auto& p : row.pts) text << p.lat << ' ' << p.lon << ' ' << p.h << '\n';
            const auto r = Tool({"convert", "--from", "geographic", "--to", sys, "-p", "6"}, text.str());
            const auto lines = Lines(r.out);
            ASSERT_TRUE(r.status == 0 && lines.size() == row.pts.size()) << r.out << r.err;
            // One cct per pipeline: the shift switches method near the poles, an automatic zone per point.
            std::map<std::string, std::vector<size_t>> byPipeline;
            std::vector<std::string> coords(lines.size());
            for (size_t i = 0; i < lines.size(); ++i) {
                const auto& p = row.pts[i];
                std::string line = lines[i], proj = row.proj;
                if (proj == "utm") {  // the zone the tool chose leads the line: 37n, 56s
                    const size_t b = line.find(' ');
                    proj += " +zone=" + line.substr(0, b - 1) + (line[b - 1] == 's' ? " +south" : "");
                    line.erase(0, b + 1);
                }
                // The library's shift: Molodensky, within a degree of a pole geocentric.
                byPipeline["+proj=pipeline" + (std::fabs(p.lat) > 89 ? d.exact : d.molodensky) + " +step +proj=" + proj +
                           " +ellps=" + d.ellps].push_back(i);
                coords[i] = line;
            }
            for (const auto& [pipeline, which] : byPipeline) {
                std::vector<std::array<double, 3>> pts;
                for (size_t i : which) pts.push_back({row.pts[i].lon, row.pts[i].lat, row.pts[i].h});
                const auto expected = Cct(pipeline, pts);
                for (size_t k = 0; k < which.size(); ++k) {
                    const auto got = Nums(coords[which[k]]);
                    const auto& e = expected[k];
                    ASSERT_EQ(3u, got.size()) << coords[which[k]];
                    EXPECT_LE(std::max(std::hypot(got[0] - e[0], got[1] - e[1]), std::fabs(got[2] - e[2])), d.bound)
                        << coords[which[k]] << " PROJ " << e[0] << ' ' << e[1];
                }
            }
            const auto back = Tool({"convert", "--from", sys, "--to", "geographic", "-p", "6"}, r.out);
            const auto again = Lines(back.out);
            ASSERT_TRUE(back.status == 0 && again.size() == lines.size()) << back.err;
            for (size_t i = 0; i < again.size(); ++i) {
                const auto a = Nums(again[i]);
                const Pt& p = row.pts[i];
                ASSERT_EQ(3u, a.size()) << again[i];
                const double lat = std::fabs(p.lat), lon = p.lon + std::remainder(a[1] - p.lon, 360.0);
                const double bound = d.bound * (d.exact.empty() || lat > 89 ? 1 : 1 + std::tan(lat * M_PI / 180));
                EXPECT_LE(std::max(Ground(a[0], lon, p.lat, p.lon), std::fabs(a[2] - p.h)), bound)
                    << lines[i] << " -> " << again[i];
            }
        }
}

TEST_F(Cli, AnAddedDatumConvertsAsProjAndBadOnesAreRefused) {
    EXPECT_TRUE(Has(Tool({"datums"}).out, "Pulkovo 1942                            Krassovsky 1940                    28   -130    -95\n") && Has(Tool({"ellipsoids"}).out, "6378245         298.3"));
    ASSERT_EQ(0, Tool({"datum", "add", "Test AGD", "--ellipsoid", "Test ANS", "--a", "6378160", "--rf", "298.25",
                       "--dx", "-133", "--dy", "-48", "--dz", "148"}).status);
    const std::string ini = Ini();
    const auto r = Tool({"convert", "--from", "geo datum=\"Test AGD\"", "--to", "geo", "-p", "6"}, "-33.8 151.2 50\n");
    const auto got = Nums(r.out);
    const auto e = Cct("+proj=pipeline" + Molodensky({6378160, 298.25, -133, -48, 148}, kWgs84), {{151.2, -33.8, 50}})[0];
    ASSERT_EQ(3u, got.size()) << r.err;
    EXPECT_LE(std::max(Ground(got[0], got[1], e[1], e[0]), std::fabs(got[2] - e[2])), 1e-5);  // the print
    for (const Args& bad : {Args{"Test AGD", "Test ANS"}, {"X", "Krasovsky"}, {std::string(50, 'n'), "WGS 84"}}) {
        const auto r = Tool({"datum", "add", bad[0], "--ellipsoid", bad[1], "--dx", "1", "--dy", "2", "--dz", "3"});
        EXPECT_EQ(2, r.status) << r.err;
    }
    EXPECT_EQ(ini, Ini());
}

TEST_F(Cli, SavedSystemsAndPairsListAndConvertAsTheirTextBothWays) {
    const std::string gk = "gk zone=7 datum=4", utm = "utm zone=37 south";
    ASSERT_EQ(0, Tool({"system", "save", "S/gk7", gk}).status + Tool({"system", "save", "S\\utm", utm}).status +
                     Tool({"system", "save", "S/A/ups", "ups south"}).status +
                     Tool({"pair", "save", "S/job", "--from", gk, "--to", utm}).status);
    EXPECT_EQ("S/A/ups: ups south datum=\"WGS 84\"\nS/gk7: gk zone=7 datum=\"Pulkovo 1942\"\n"
              "S/utm: utm zone=37 south datum=\"WGS 84\"\n", Tool({"system", "list", "S"}).out);
    EXPECT_EQ("S/job: gk zone=7 datum=\"Pulkovo 1942\" -> utm zone=37 south datum=\"WGS 84\"\n", Tool({"pair", "list"}).out);
    const std::string shown = Tool({"pair", "show", "S/job"}).out;
    EXPECT_TRUE(shown.starts_with("Key:") && Has(shown, "  System:     utm zone=37 south datum=\"WGS 84\"\n")) << shown;
    EXPECT_TRUE(Has(Tool({"--lang", "ru", "system", "show", "S/gk7"}).out, "Проекция:  Гаусса-Крюгера (Gauss-Kruger)\n"));
    const auto none = Tool({"system", "show", "S/none"});
    EXPECT_TRUE(none.status == 2 && Has(none.err, "nothing is saved under \"S\\none\"")) << none.err;
    const std::string pt = "7413312.21 6181926.162 160.858\n";
    const auto fwd = Tool({"convert", "--from", gk, "--to", utm, "-p", "6"}, pt);
    for (const Args& way : {Args{"--from-key", "S/gk7", "--to-key", "S/utm"}, Args{"--pair", "S/job"}}) {
        Args a = {"convert", "-p", "6"};
        a.insert(a.end(), way.begin(), way.end());
        EXPECT_EQ(fwd.out, Tool(a, pt).out);
        a.push_back(way[0] == "--pair" ? "--reverse" : "-I");
        // Back within two Molodensky shifts at 56 degrees (5.5 mm) and the series.
        const auto back = Nums(Tool(a, fwd.out).out);
        ASSERT_EQ(3u, back.size()) << fwd.err;
        EXPECT_LE(std::hypot(back[0] - 7413312.21, back[1] - 6181926.162), 1e-2) << a.back();
    }
}

TEST_F(Cli, UsageErrorsExitWithTwoNamingWhatWasExpected) {
    for (const auto& [from, message] : {std::pair{"utm datum=\"Pulkovo 1924\"", "(did you mean \"Pulkovo 1942\"?)"},
                                        {"utn zone=37", "unknown kind \"utn\" (did you mean \"utm\"?)"},
                                        {"utm zone=37 lon0=39", "utm does not take \"lon0=39\""},
                                        {"gk zone=7 lon0=40", "disagree: zone 7 has its meridian at 39"},
                                        {"ups", "ups takes north or south"},
                                        {"tm fe=12.5", "expected whole metres"},
                                        {"utm zone=61", "a zone number 1..60 or auto"}, {"gk zone=2.5", "a zone number 1..60"},
                                        {"ps lon0=0", "ps needs lat_ts=DEGREES"},
                                        {"geographic datum=\"WGS 84", "unclosed quote"}}) {
        const auto r = Tool({"convert", "--from", from, "--to", "geographic"}, "1 2\n");
        EXPECT_TRUE(r.status == 2 && Has(r.err, "mapwright: --from: ") && Has(r.err, message)) << r.err;
    }
    for (const Args& args : {Args{}, Args{"nonsense"}, Args{"convert", "--from", "geo"}, Args{"--lang", "de", "datums"},
                             Args{"convert", "--from", "geo", "--to", "geo", "--pair", "x"},
                             Args{"convert", "--from", "geo", "--to", "geo", "-p", "11"}})
        EXPECT_EQ(2, Tool(args).status) << args.size();
    EXPECT_EQ(0u, Tool({"--version"}).out.rfind("mapwright ", 0));
}

TEST_F(Cli, HelpAndMessagesInTheLanguageAsked) {
    EXPECT_TRUE(Has(Tool({"convert", "--help", "--lang", "ru"}).out, "Параметры:\n"));
    EXPECT_TRUE(Has(Tool({"choose", "--help", "--lang", "ru"}).out, "Диалог проекции и геоида"));
    setenv("MAPWRIGHT_UI_LANG", "ru", 1);
    const auto bad = Tool({"convert", "--from", "utm zone=37", "--to", "geographic"}, "abc 1\n");
    const auto help = Tool({"--help"}), en = Tool({"--lang", "en", "--help"});
    unsetenv("MAPWRIGHT_UI_LANG");
    EXPECT_TRUE(Has(bad.err, "<stdin>:1: не удаётся прочитать восточную координату из \"abc\"")) << bad.err;
    EXPECT_TRUE(Has(help.out, "Команды:\n  convert ") && Has(help.out, "Преобразовать точки")) << help.out;
    EXPECT_TRUE(Has(en.out, "Subcommands:\n"));
}

TEST_F(Cli, BadLinesAreReportedByNumberTheRestConverted) {
    const std::string input = "\xEF\xBB\xBF# GCP list\r\n\n55.7558 37.6173 150 GCP-1\n55,7558 37,6173\n"
                              "55 45 20.88 37 37 2.28\n55.75 120\n55 45 20.88 N 37 37 2.28 E\r\n# end\r";
    const auto r = Tool({"convert", "--from", "geographic", "--to", "gk zone=7 datum=4", "-p", "2"}, input);
    const auto out = Lines(r.out);
    ASSERT_TRUE(r.status == 1 && out.size() == 8u) << r.out;
    EXPECT_TRUE(out[0] == "# GCP list" && out[1].empty() && out[2].ends_with(" GCP-1") && Nums(out[2]).size() == 3 &&
                out[3] == "* *" && out[4] == "* *" && out[5] == "* *" && Nums(out[6]).size() == 2 && out[7] == "# end") << r.out;
    for (const char* message : {"<stdin>:4: cannot read the latitude from \"55,7558\": a comma separates numbers",
                                "<stdin>:5: the text after the coordinates starts like one more: \"37\"",
                                "<stdin>:6: the destination system refuses the point",
                                "mapwright: 3 of 5 points could not be converted"})
        EXPECT_TRUE(Has(r.err, message)) << message << "\n" << r.err;
    const auto zone = Tool({"convert", "--from", "utm", "--to", "geographic"}, "413380.72 6179118.15\n").err;
    EXPECT_TRUE(Has(zone, "<stdin>:1: no UTM zone: give zone= in the source system")) << zone;
    // Far from a projection's centre its formulas give a wrong point without an error: refused both ways.
    for (const auto& [from, to, point, message] :
         {std::tuple{"gk zone=7", "geo", "7500000 20000000\n", "<stdin>:1: the point is outside the area of the source"},
          {"utm zone=37 south", "geo", "500000 0\n", "<stdin>:1: the point is outside the area of the source"},
          {"geo", "gk zone=7", "55 20\n", "<stdin>:1: the destination system refuses the point"},
          {"cartesian", "geo", "1e6 1e6 6e6 5\n", "<stdin>:1: the text after the coordinates starts like one more"}}) {
        const auto r = Tool({"convert", "--from", from, "--to", to}, point);
        EXPECT_TRUE(r.status == 1 && Has(r.err, message)) << r.err;
    }
    EXPECT_EQ(0, Tool({"convert", "--from", "geo", "--to", "ps lat_ts=-71"}, "0 30\n").status);
    EXPECT_EQ("*\n", Tool({"convert", "--from", "geo", "--to", "geo", "--format", "line"}, "abc\n").out);  // the equator is south enough
    EXPECT_EQ("0.00000000 180.00000000\n", Tool({"convert", "--from", "geo", "--to", "geo"}, "0 -180\n").out);
}

TEST_F(Cli, TheLibrarysTextFormatsReadBack) {
    const Args gk = {"convert", "--from", "geographic", "--to", "gk zone=7 datum=4"};
    // Half the last printed place, 5e-8 degrees (6 mm) or 0.005'' (0.16 m), and the print of metres.
    for (const auto& [format, start, bound] : {std::tuple{"fields", "055.7", 1e-2}, {"dms", "055\u00b0 45'", 0.2}}) {
        Args a = gk;
        a.insert(a.end(), {"-I", "--format", format});
        const auto r = Tool(a, "7413342.77 6181926.16\n");
        EXPECT_TRUE(Has(r.out, start)) << r.out << r.err;
        const auto back = Nums(Tool(gk, r.out).out);
        ASSERT_EQ(2u, back.size()) << r.out;
        EXPECT_LE(std::hypot(back[0] - 7413342.77, back[1] - 6181926.16), bound) << r.out;
    }
}

TEST_F(Cli, AnInputThatCannotBeReadOrWouldBeEmptiedExitsWithTwo) {
    TempDir dir;
    const std::string in = dir.file("a.txt");
    WriteFile(in, "55.7558 37.6173\n");
    for (const std::string& bad : {dir.file("missing.txt"), dir.path()}) {
        const auto r = Tool({"convert", "--from", "geo", "--to", "utm zone=37", in, bad});
        EXPECT_TRUE(r.status == 2 && r.out.empty() && Has(r.err, "mapwright: cannot open " + bad + ": ")) << r.err;
    }
    EXPECT_EQ(2, Tool({"convert", "--from", "geo", "--to", "utm zone=37", in, "-o", in}).status);
    EXPECT_EQ("55.7558 37.6173\n", ReadFile(in));  // opening the output would have emptied it
    const auto full = Tool({"convert", "--from", "geo", "--to", "utm zone=37", in, "-o", "/dev/full"});
    EXPECT_TRUE(full.status == 2 && Has(full.err, "mapwright: cannot write to /dev/full: ")) << full.err;
}

// `choose` played in process: it prints `system show` of what the registry
// then holds under KEY\GeoData (the geoid choice after it); Cancel keeps it.
template <class T>
T& Item(CDialog& d, int id) {
    T* control = dynamic_cast<T*>(d.GetDlgItem(id));
    if (!control) ADD_FAILURE() << "no control " << id, std::abort();
    return *control;
}
void Play(CDialog& d, void* act) { (*static_cast<std::function<void(CDialog&)>*>(act))(d); }

TEST_F(Cli, ChooseSavesUnderKeyGeoDataAndPrintsItAsSystemShow) {
    ASSERT_EQ(0, Tool({"system", "save", "C/b/GeoData", "utm zone=37 south"}).status);
    // The dialog opens on what is saved (null: nothing, the defaults); the user picks Gauss-Kruger.
    const struct { std::optional<std::string> key; std::string shown; const char* opens; bool geoid; const char* file; int button, status; std::string geoidLine; } cases[] = {
        {"C/a", "C/a/GeoData", nullptr, false, nullptr, IDOK, 0, ""},
        {{}, "Software/Mapwright/GeoData", nullptr, false, nullptr, IDOK, 0, ""},  // the application's key
        {"C/b", "C/b/GeoData", "UTM", false, nullptr, IDCANCEL, 1, ""},
        {"C\\b", "C/b/GeoData", "UTM", true, nullptr, IDOK, 0, "Geoid:      constant height 35.7 m\n"},
        {"C/b", "C/b/GeoData", "Gauss-Kruger", true, "/g/a.grd", IDOK, 0, "Geoid:      file /g/a.grd\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.shown + (c.geoid ? " --geoid" : ""));
        const std::string before = Tool({"system", "show", c.shown}).out;
        std::function<void(CDialog&)> act = [&](CDialog& d) {
            CString shown;
            EXPECT_TRUE(!c.opens || (Item<CComboBox>(d, 800).GetWindowText(shown), shown == c.opens)) << shown.GetString();
            for (const auto& [id, text] : {std::pair{800, "Gauss-Kruger"}, {806, "Krassovsky 1940"}, {807, "Pulkovo 1942"}})
                EXPECT_TRUE(Item<CComboBox>(d, id).Pick(Item<CComboBox>(d, id).FindStringExact(-1, text))) << text;
            Item<CEdit>(d, 801).TypeText("039\xB0 00' 00.00'' E"), Item<CEdit>(d, 803).TypeText("7500000");
            if (c.geoid && !c.file) Item<CEdit>(d, 820).TypeText("35.7");
            if (c.file) Item<CButton>(d, 887).Click(), Item<CInFileCtrl>(d, 822).ChoosePath(c.file);
            Item<CButton>(d, c.button).Click();
        };
        MwSetDialogUser(&Play, &act);
        std::ostringstream out, err;
        const int status = mwcli::Choose({c.key, c.geoid}, out, err);
        MwSetDialogUser(nullptr, nullptr);
        const std::string after = Tool({"system", "show", c.shown}).out;
        EXPECT_EQ(c.status, status) << err.str();
        EXPECT_EQ(std::string("Software\\Mapwright"), AppRegKey().GetString());  // the host's key put back
        if (c.status == 0)
            EXPECT_TRUE(out.str() == after + c.geoidLine && Has(after, "System:     gk zone=7 datum=\"Pulkovo 1942\"\n"))
                << out.str() << after;
        else
            EXPECT_TRUE(out.str().empty() && after == before) << after;
    }
    const auto none = Tool({"choose", "--key", "C/x"});  // no display in a child
    EXPECT_TRUE(none.status == 2 && none.out.empty() && Has(none.err, "a desktop session (DISPLAY or WAYLAND_DISPLAY")) << none.err;
    EXPECT_EQ(2, Tool({"system", "show", "C/x/GeoData"}).status);
}

}  // namespace
