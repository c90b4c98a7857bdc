// mw_rc: our resource compiler. Reads a resource script in UTF-8 and writes
// its string tables, dialog templates, version information and data
// resources as a C++ source of constant tables, every text in Windows-1251.
//
//   mw_rc [-I dir]... --module <file name> --symbol <name> -o <out.cpp>
//         [--depfile <out.d>] <script.rc>
//
// A script it cannot read is reported as "<file>:<line>: <reason>" on
// standard error, with exit status 1 and no output written.
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "model.h"
#include "parser.h"
#include "preprocessor.h"
#include "writer.h"

namespace fs = std::filesystem;

namespace {

int Usage(const std::string& problem) {
    std::cerr << "mw_rc: " << problem << "\n"
              << "usage: mw_rc [-I dir]... --module <file name> --symbol <name> -o <out.cpp> "
                 "[--depfile <out.d>] <script.rc>\n";
    return 2;
}

bool IsIdentifier(const std::string& s) {
    if (s.empty() || !(std::isalpha(static_cast<unsigned char>(s[0])) || s[0] == '_')) return false;
    for (char c : s)
        if (!(std::isalnum(static_cast<unsigned char>(c)) || c == '_')) return false;
    return true;
}

// Make's syntax: blanks and '#' escaped with a backslash, '$' doubled.
std::string MakeEscape(const std::string& path) {
    std::string out;
    for (char c : path) {
        if (c == ' ' || c == '#' || c == '\\') out += '\\';
        if (c == '$') out += '$';
        out += c;
    }
    return out;
}

// Written beside the target and renamed over it, so a reader never sees half a file.
bool WriteFile(const std::string& path, const std::string& content) {
    std::string temporary = path + ".tmp";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        if (!out || !(out << content) || !(out.flush())) return false;
    }
    std::error_code ec;
    fs::rename(temporary, path, ec);
    return !ec;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> includeDirs;
    std::string module, symbol, output, depfile, script;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        auto value = [&](std::string& into) {
            if (i + 1 >= argc) return false;
            into = argv[++i];
            return true;
        };
        bool ok = true;
        if (arg == "-I") {
            std::string dir;
            ok = value(dir);
            includeDirs.push_back(dir);
        } else if (arg.size() > 2 && arg.compare(0, 2, "-I") == 0) {
            includeDirs.push_back(arg.substr(2));
        } else if (arg == "--module") {
            ok = value(module);
        } else if (arg == "--symbol") {
            ok = value(symbol);
        } else if (arg == "-o") {
            ok = value(output);
        } else if (arg == "--depfile") {
            ok = value(depfile);
        } else if (!arg.empty() && arg[0] == '-') {
            return Usage("unknown option '" + arg + "'");
        } else if (script.empty()) {
            script = arg;
        } else {
            return Usage("more than one script given");
        }
        if (!ok) return Usage("option '" + arg + "' needs a value");
    }
    if (script.empty() || output.empty() || module.empty() || symbol.empty())
        return Usage("the script, -o, --module and --symbol are required");
    if (!IsIdentifier(symbol)) return Usage("'" + symbol + "' is not a C++ identifier");

    std::error_code ec;
    fs::remove(output, ec);  // a failed run leaves no stale tables behind
    rc::Script result;
    try {
        rc::Preprocessor input(includeDirs, result.dependencies);
        input.Open(script);
        rc::Parser(input, result).Run();
    } catch (const rc::Error& e) {
        std::cerr << e.what() << "\n";
        return 1;
    }

    if (!WriteFile(output, rc::WriteTables(result, module, symbol, fs::path(script).filename().string()))) {
        std::cerr << "mw_rc: cannot write " << output << "\n";
        return 1;
    }
    if (!depfile.empty()) {
        std::string deps = MakeEscape(output) + ":";
        for (const std::string& d : result.dependencies) deps += " \\\n  " + MakeEscape(d);
        if (!WriteFile(depfile, deps + "\n")) {
            std::cerr << "mw_rc: cannot write " << depfile << "\n";
            return 1;
        }
    }
    return 0;
}
