// Reads a resource script as tokens, the way the C preprocessor in front of a
// resource compiler would: comments removed, #include, #define, #undef and
// the conditionals obeyed, names replaced by what they were defined as.
// Strings come out decoded and converted to Windows-1251.
#ifndef MAPWRIGHT_RC_PREPROCESSOR_H
#define MAPWRIGHT_RC_PREPROCESSOR_H

#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "model.h"

namespace rc {

enum class TokenKind { End, Identifier, Number, String, Punct };

struct Token {
    TokenKind kind = TokenKind::End;
    std::string text;   // the identifier, the punctuation, or the number as written
    std::string bytes;  // a string's Windows-1251 bytes
    bool wide = false;  // L"..."
    int64_t value = 0;  // a number's value
    bool isLong = false;  // a number with an L suffix
    Location where;
};

class Preprocessor {
public:
    // `dependencies` receives the absolute path of every file read.
    Preprocessor(std::vector<std::string> includeDirs, std::set<std::string>& dependencies);

    // Starts on the script at `path`.
    void Open(const std::string& path);
    // The next token with names replaced; End once every file is read.
    Token Next();

private:
    struct Conditional {
        bool active;   // this branch is read
        bool taken;    // some branch of this #if was (or must not be) taken
        bool sawElse;
        Location where;
    };
    struct File {
        std::string path;  // for messages
        std::string dir;
        std::string text;
        size_t pos = 0;
        int line = 1;
        bool headerOnly = false;  // a .h file: only its directives count
        bool lineStart = true;
        std::vector<Conditional> conditionals;
    };

    void Push(const std::string& path, bool headerOnly, const Location* from);
    static bool Active(const File& f);
    void SkipBlanks(File& f, bool lineMode);
    void SkipLine(File& f);
    Token Lex(File& f);
    Token LexNumber(File& f);
    Token LexString(File& f, bool wide);
    std::vector<Token> LineTokens(File& f);
    void Directive(File& f);
    void Include(File& f, const Location& where);
    void HandleConditional(File& f, const std::string& name, const Location& where);
    bool Evaluate(std::vector<Token> tokens, const Location& where);
    void Expand(const Token& use, std::vector<Token>& out, std::vector<std::string>& active) const;

    std::vector<std::string> m_includeDirs;
    std::set<std::string>& m_dependencies;
    std::deque<File> m_files;  // a deque: an #include must not move the including file
    std::deque<Token> m_pending;
    std::map<std::string, std::vector<Token>> m_macros;
    std::set<std::string> m_once;  // files that said #pragma once
    Location m_last;
};

}  // namespace rc

#endif
