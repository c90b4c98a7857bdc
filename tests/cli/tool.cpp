#include "tool.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

#include "testenv.h"

namespace clitest {

Result Run(const std::string& program, const std::vector<std::string>& args, const std::string& input) {
    // Files rather than pipes: no deadlock whatever the child writes.
    mwtest::TempDir dir;
    const std::string in = dir.file("in"), out = dir.file("out"), err = dir.file("err");
    mwtest::WriteFile(in, input);
    std::vector<char*> argv = {const_cast<char*>(program.c_str())};
    for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        const int i = open(in.c_str(), O_RDONLY);
        const int o = open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const int e = open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (i < 0 || o < 0 || e < 0) _exit(126);
        if (dup2(i, 0) < 0 || dup2(o, 1) < 0 || dup2(e, 2) < 0) _exit(126);
        execv(program.c_str(), argv.data());
        _exit(127);
    }
    int wait = 0;
    if (pid < 0 || waitpid(pid, &wait, 0) != pid) throw std::runtime_error("fork failed");
    return {WIFEXITED(wait) ? WEXITSTATUS(wait) : -1, mwtest::ReadFile(out), mwtest::ReadFile(err)};
}

std::vector<std::vector<double>> Cct(const std::string& pipeline, const std::vector<std::vector<double>>& points) {
    std::ostringstream in;
    in.precision(17);
    for (const auto& p : points) in << p[0] << ' ' << p[1] << ' ' << (p.size() > 2 ? p[2] : 0.0) << " 0\n";
    std::vector<std::string> args = {"-d", "12"};
    std::istringstream words(pipeline);
    for (std::string w; words >> w;) args.push_back(w);
    const Result r = Run(MAPWRIGHT_CCT, args, in.str());
    std::vector<std::vector<double>> out;
    for (const std::string& line : Lines(r.out)) out.push_back(Numbers(line));
    if (r.status != 0 || out.size() != points.size()) throw std::runtime_error("cct failed: " + r.err);
    return out;
}

std::string Molodensky(const Datum& from, const Datum& to) {
    char step[400];
    std::snprintf(step, sizeof step,
                  " +step +proj=molodensky +a=%.17g +rf=%.17g +dx=%d +dy=%d +dz=%d +da=%.17g +df=%.17g", from.a,
                  from.rf, from.dx - to.dx, from.dy - to.dy, from.dz - to.dz, to.a - from.a, 1 / to.rf - 1 / from.rf);
    return step;
}

std::vector<std::string> Lines(const std::string& text) {
    std::istringstream s(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(s, line);) lines.push_back(line);
    return lines;
}

std::vector<double> Numbers(const std::string& line) {
    std::vector<double> numbers;
    std::istringstream s(line);
    for (std::string w; s >> w;) {
        char* end = nullptr;
        const double v = std::strtod(w.c_str(), &end);
        if (end == w.c_str() || *end != '\0') break;
        numbers.push_back(v);
    }
    return numbers;
}

bool Contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

double GroundDistance(double lat1, double lon1, double lat2, double lon2) {
    // The meridian and parallel radii of curvature at the mean latitude.
    const double a = 6378137.0, e2 = 0.00669437999014, d2r = M_PI / 180.0;
    const double phi = (lat1 + lat2) / 2 * d2r;
    const double w = std::sqrt(1 - e2 * std::sin(phi) * std::sin(phi));
    const double M = a * (1 - e2) / (w * w * w), N = a / w;
    return std::hypot((lat1 - lat2) * d2r * M, (lon1 - lon2) * d2r * N * std::cos(phi));
}

}  // namespace clitest
