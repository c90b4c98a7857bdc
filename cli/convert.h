// `mapwright convert`: points from files or standard input, one a line,
// through CGeoTransform, to standard output.
#ifndef MAPWRIGHT_CLI_CONVERT_H
#define MAPWRIGHT_CLI_CONVERT_H

#include <string>
#include <vector>

namespace mwcli {

struct ConvertOptions {
    // The source: a SYSTEM text, a registry key, or the source of a pair.
    std::string from, fromKey;
    // The destination, the same ways.
    std::string to, toKey;
    std::string pair;
    bool reverse = false;            // -I: the destination is the source and back
    int precision = 3;               // decimals of metres; degrees get 5 more
    std::string format = "numbers";  // numbers, fields, dms or line
    bool lonFirst = false;           // geographic: longitude before latitude
    bool lineHeight = false;         // line format: the height first
    std::string output;              // a file instead of standard output
    std::vector<std::string> files;  // none or "-": standard input
};

// The exit status: 0, 1 when some lines could not be converted. Throws Error
// when the conversion cannot start.
int RunConvert(const ConvertOptions& options);

// The input order of each kind, for the help texts.
const char* InputOrderHelp();

}  // namespace mwcli

#endif
