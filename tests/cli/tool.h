// Running the built `mapwright` and PROJ's `cct` as child processes, and
// reading their output.
#ifndef MAPWRIGHT_TESTS_CLI_TOOL_H
#define MAPWRIGHT_TESTS_CLI_TOOL_H

#include <string>
#include <vector>

namespace clitest {

struct Result {
    int status = -1;  // the exit status; -1 when the child did not exit normally
    std::string out, err;
};

// `program` with `args`, `input` on standard input, in this process's
// environment (the tests point MAPWRIGHT_APPDIR and MAPWRIGHT_REGISTRY at a
// private directory first).
Result Run(const std::string& program, const std::vector<std::string>& args, const std::string& input = "");
inline Result Tool(const std::vector<std::string>& args, const std::string& input = "") {
    return Run(MAPWRIGHT_CLI, args, input);
}

// The same with standard error on a pseudo-terminal; `err` is what the
// terminal received.
Result RunWithTerminalStderr(const std::vector<std::string>& args, const std::string& input);

// PROJ's cct on `pipeline` (a PROJ string), one "x y z" line per point;
// the numbers of each output line.
std::vector<std::vector<double>> Cct(const std::string& pipeline, const std::vector<std::vector<double>>& points);

// PROJ's standard Molodensky step (" +step +proj=molodensky ...") between two
// datums, each an ellipsoid (a in metres, rf) and its shift to WGS 84 in
// metres (PROJ's dx is the from-datum's shift minus the to-datum's).
struct Datum {
    double a, rf;
    int dx, dy, dz;
};
std::string Molodensky(const Datum& from, const Datum& to);

std::vector<std::string> Lines(const std::string& text);
// The leading numbers of a line, up to the first token that is not one.
std::vector<double> Numbers(const std::string& line);
bool Contains(const std::string& text, const std::string& part);
// Whether `text` is `pattern` with each "{}" standing for an unsigned decimal
// number (digits, a point, digits); the numbers' texts go to `numbers`.
bool MatchesShape(const std::string& text, const std::string& pattern, std::vector<std::string>* numbers);
// The count of decimals of a number's text.
size_t Decimals(const std::string& number);

// Distance on the ground between two geographic positions (degrees) that lie
// close together, metres: good to 1 % for differences of a few metres.
double GroundDistance(double lat1, double lon1, double lat2, double lon2);

}  // namespace clitest

#endif
