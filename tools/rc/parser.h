// The resource statements of a script: LANGUAGE, STRINGTABLE, DIALOG and
// DIALOGEX with their controls, VERSIONINFO, and resources kept as bytes
// (RCDATA, the manifest) from a file or a data block.
#ifndef MAPWRIGHT_RC_PARSER_H
#define MAPWRIGHT_RC_PARSER_H

#include <cstdint>
#include <deque>
#include <map>
#include <string>

#include "model.h"
#include "preprocessor.h"

namespace rc {

class Parser {
public:
    Parser(Preprocessor& input, Script& script) : m_in(input), m_script(script) {}
    // Reads every statement; throws Error at the first it cannot read.
    void Run();

private:
    const Token& Peek(size_t ahead = 0);
    Token Next();
    bool IsWord(const Token& t, const char* word) const;
    bool IsPunct(const Token& t, const char* punct) const;
    bool IsBegin(const Token& t) const;
    bool IsEnd(const Token& t) const;
    Location MissingAt();
    void ExpectBegin(const std::string& of);
    void ExpectComma(const char* before);
    bool SkipComma();
    void SkipMemoryFlags();

    bool StartsExpression(const Token& t) const;
    void RequireExpression(const char* what);
    uint32_t Expression(const char* what);
    uint32_t OrExpression();
    uint32_t AndExpression();
    uint32_t AddExpression();
    uint32_t MulExpression();
    uint32_t Unary();
    uint32_t Style(uint32_t base, const char* what);
    uint32_t Dword(const char* what);
    int16_t Short(const char* what);
    uint16_t Word(const char* what);
    int ControlId();
    std::string Text(const char* what);

    uint16_t Language();
    unsigned ResourceId();
    void Type(unsigned id, const Location& where);
    void StringTable();
    void Dialog(unsigned id, bool extended, const Location& where);
    void DialogControl(rc::Dialog& dialog);
    void VersionInfo(unsigned id, const Location& where);
    void Data(unsigned type, unsigned id, const Location& where);

    Preprocessor& m_in;
    Script& m_script;
    std::deque<Token> m_ahead;
    Location m_last;  // of the last token read
    int m_depth = 0;  // of nested parentheses and unary operators
    uint16_t m_language = 0;  // LANGUAGE statements change it; neutral until then
    std::map<std::pair<uint16_t, unsigned>, Location> m_stringsSeen;
};

}  // namespace rc

#endif
