// Running the built `mapwright` and PROJ's `cct` as child processes.
#ifndef MAPWRIGHT_TESTS_CLI_TOOL_H
#define MAPWRIGHT_TESTS_CLI_TOOL_H

#include <string>
#include <vector>

namespace clitest {

struct Result {
    int status = -1;  // -1 when the child did not exit normally
    std::string out, err;
};

// `program` with `args` and `input` on standard input, in this environment.
Result Run(const std::string& program, const std::vector<std::string>& args, const std::string& input = "");
inline Result Tool(const std::vector<std::string>& args, const std::string& input = "") {
    return Run(MAPWRIGHT_CLI, args, input);
}
// cct on `pipeline` (a PROJ string), one "x y z" per point: each line's numbers.
std::vector<std::vector<double>> Cct(const std::string& pipeline, const std::vector<std::vector<double>>& points);

// PROJ's standard Molodensky step between two datums (ellipsoid, shift to WGS 84).
struct Datum {
    double a, rf;
    int dx, dy, dz;
};
std::string Molodensky(const Datum& from, const Datum& to);

std::vector<std::string> Lines(const std::string& text);
// The leading numbers of a line, up to the first token that is not one.
std::vector<double> Numbers(const std::string& line);
bool Contains(const std::string& text, const std::string& part);
// Metres between two nearby geographic positions (degrees) on WGS 84, to 1 %.
double GroundDistance(double lat1, double lon1, double lat2, double lon2);

}  // namespace clitest

#endif
