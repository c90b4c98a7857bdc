// Text at the tool's edges: the library speaks Windows-1251, the terminal
// UTF-8; the tool's own words come in English or Russian, following the
// library's user-interface language; names are matched forgivingly.
#ifndef MAPWRIGHT_CLI_TEXT_H
#define MAPWRIGHT_CLI_TEXT_H

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <mapwright/mapwright.h>

namespace mwcli {

// A problem that stops a command before it does its work: a bad option, an
// unknown system, a missing registry key. main prints it and exits with 2.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// An input that cannot be read any further: the tool reports it with the
// file's name and goes on with the next file.
class InputError : public Error {
public:
    using Error::Error;
};

// The exit statuses: 1 when some input could not be converted, 2 when the
// command could not run at all.
inline constexpr int kExitData = 1;
inline constexpr int kExitUsage = 2;

bool Russian();
// The tool's own words in the user-interface language.
inline const char* Tr(const char* english, const char* russian) {
    return Russian() ? russian : english;
}

std::string Utf8(const char* ansi);
inline std::string Utf8(const CString& ansi) {
    return Utf8(ansi.GetString());
}
// UTF-8 to the library's text. RepresentableInAnsi tells whether nothing is lost.
std::string Ansi(std::string_view utf8);
bool RepresentableInAnsi(std::string_view utf8);

// Characters (code points) of UTF-8 text, for aligning columns.
size_t DisplayWidth(std::string_view utf8);
std::string PadRight(std::string_view utf8, size_t width);
std::string PadLeft(std::string_view utf8, size_t width);

// Case folded for Latin and Cyrillic letters, blanks squeezed: how names are
// compared when the exact spelling did not match.
std::string FoldName(std::string_view utf8);
// The candidates nearest to `word` (edit distance on folded text), at most
// `count`, only those close enough to be a plausible typo.
std::vector<std::string> Nearest(std::string_view word, const std::vector<std::string>& candidates, size_t count);

// "text" in double quotes.
std::string Quoted(std::string_view text);
// "a, b or c" / "a, b или c".
std::string JoinAlternatives(const std::vector<std::string>& items);
// The shortest text that reads back as `value` ("39", "0.9996").
std::string ShortNumber(double value);

}  // namespace mwcli

#endif
