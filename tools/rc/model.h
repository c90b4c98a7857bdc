// What a resource script holds once read: the records the generated tables
// are written from. Every text is already Windows-1251 bytes.
#ifndef MAPWRIGHT_RC_MODEL_H
#define MAPWRIGHT_RC_MODEL_H

#include <cstdint>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace rc {

struct Location {
    std::string file;  // as the user named it, or as an #include resolved it
    int line = 0;
};

// A script the tool cannot read. what() is "<file>:<line>: <reason>".
class Error : public std::runtime_error {
public:
    Error(const Location& where, const std::string& reason)
        : std::runtime_error(where.file + ":" + std::to_string(where.line) + ": " + reason) {}
};

struct Control {
    std::string className;  // "Button", "Edit", "Static", ... or as written in CONTROL
    std::string text;
    int id = 0;  // -1 for controls nobody addresses
    uint32_t style = 0;
    uint32_t exStyle = 0;
    uint32_t helpId = 0;
    int16_t x = 0, y = 0, cx = 0, cy = 0;
};

struct Dialog {
    unsigned id = 0;
    uint16_t language = 0;
    bool extended = false;  // DIALOGEX
    uint32_t style = 0;
    uint32_t exStyle = 0;
    uint32_t helpId = 0;
    int16_t x = 0, y = 0, cx = 0, cy = 0;
    std::string caption;
    bool hasFont = false;
    std::string fontName;
    uint16_t fontSize = 0;
    uint16_t fontWeight = 0;
    uint8_t fontItalic = 0;
    uint8_t fontCharset = 0;
    std::vector<Control> controls;
};

struct VersionInfo {
    unsigned id = 0;
    uint16_t language = 0;
    uint32_t fileVersionMS = 0, fileVersionLS = 0;
    uint32_t productVersionMS = 0, productVersionLS = 0;
    uint32_t fileFlagsMask = 0, fileFlags = 0, fileOS = 0, fileType = 0, fileSubtype = 0;
    struct StringTable {
        std::string block;  // "040904b0": language and code page in hex
        std::vector<std::pair<std::string, std::string>> values;
    };
    std::vector<StringTable> stringTables;
    std::vector<std::pair<uint16_t, uint16_t>> translations;  // language, code page
};

// A resource kept as bytes: the manifest, RCDATA.
struct DataResource {
    unsigned type = 0;
    unsigned id = 0;
    uint16_t language = 0;
    std::string bytes;
};

struct Script {
    // language -> id -> text
    std::map<uint16_t, std::map<unsigned, std::string>> strings;
    std::vector<Dialog> dialogs;
    std::vector<VersionInfo> versions;
    std::vector<DataResource> data;
    std::set<std::string> dependencies;  // every file read, for the build's dependency list
};

}  // namespace rc

#endif
