#include "preprocessor.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include "charset.h"
#include "symbols.h"

namespace fs = std::filesystem;

namespace rc {

namespace {

constexpr size_t kMaxIncludeDepth = 32;
constexpr size_t kMaxNesting = 200;  // of macro expansions and #if parentheses

bool IsIdentStart(char c) { return std::isalpha(static_cast<unsigned char>(c)) || c == '_'; }
bool IsIdentChar(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

std::string Hex(uint32_t v, int width) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "%0*X", width, v);
    return buf;
}

std::string Describe(uint32_t cp) {
    if (cp >= 0x20 && cp < 0x7F) return "'" + std::string(1, static_cast<char>(cp)) + "'";
    std::string s = "U+" + Hex(cp, 4);
    return cp >= 0xA0 ? "'" + Utf8Of(cp) + "' (" + s + ")" : s;
}

bool HeaderOnly(const std::string& path) {
    std::string ext = fs::path(path).extension().string();
    std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return std::tolower(c); });
    return ext == ".h" || ext == ".hh" || ext == ".hpp" || ext == ".c";
}

std::string Absolute(const std::string& path) {
    std::error_code ec;
    fs::path p = fs::weakly_canonical(fs::absolute(path), ec);
    return ec ? fs::absolute(path).lexically_normal().string() : p.string();
}

}  // namespace

Preprocessor::Preprocessor(std::vector<std::string> includeDirs, std::set<std::string>& dependencies)
    : m_includeDirs(std::move(includeDirs)), m_dependencies(dependencies) {
    size_t count = 0;
    const BuiltinSymbol* symbols = BuiltinSymbols(count);
    for (size_t i = 0; i < count; ++i) {
        Token t;
        t.kind = TokenKind::Number;
        t.text = symbols[i].name;
        t.value = symbols[i].value;
        m_macros[symbols[i].name] = {t};
    }
}

void Preprocessor::Open(const std::string& path) { Push(path, false, nullptr); }

void Preprocessor::Push(const std::string& path, bool headerOnly, const Location* from) {
    if (m_files.size() >= kMaxIncludeDepth) throw Error(*from, "#include nested too deeply");
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        if (from) throw Error(*from, "cannot open include file '" + path + "'");
        throw Error({path, 1}, "cannot open the file");
    }
    std::ostringstream s;
    s << in.rdbuf();
    File f;
    f.path = path;
    f.dir = fs::path(path).parent_path().string();
    if (f.dir.empty()) f.dir = ".";
    f.text = s.str();
    f.headerOnly = headerOnly;
    if (f.text.compare(0, 3, "\xEF\xBB\xBF") == 0) f.pos = 3;  // a byte-order mark says UTF-8 too

    // The whole file must be UTF-8 before a single token is read.
    int line = 1;
    for (size_t i = f.pos; i < f.text.size();) {
        uint32_t cp = 0;
        size_t n = DecodeUtf8(f.text, i, cp);
        if (n == 0) throw Error({path, line}, "invalid UTF-8 (scripts are read as UTF-8)");
        if (cp == '\n') ++line;
        i += n;
    }
    m_dependencies.insert(Absolute(path));
    m_last = {path, 1};
    m_files.push_back(std::move(f));
}

bool Preprocessor::Active(const File& f) { return f.conditionals.empty() || f.conditionals.back().active; }

// Skips blanks and comments. In line mode a line end stops it (a backslash
// before the line end continues the line); otherwise line ends are blanks.
void Preprocessor::SkipBlanks(File& f, bool lineMode) {
    const std::string& t = f.text;
    while (f.pos < t.size()) {
        char c = t[f.pos];
        if (c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v') {
            ++f.pos;
        } else if (c == '\n') {
            if (lineMode) return;
            ++f.pos;
            ++f.line;
            f.lineStart = true;
        } else if (c == '\\' && lineMode && (t.compare(f.pos, 2, "\\\n") == 0 || t.compare(f.pos, 3, "\\\r\n") == 0)) {
            f.pos = t.find('\n', f.pos) + 1;
            ++f.line;
        } else if (t.compare(f.pos, 2, "//") == 0) {
            f.pos = std::min(t.find('\n', f.pos), t.size());
        } else if (t.compare(f.pos, 2, "/*") == 0) {
            size_t end = t.find("*/", f.pos + 2);
            if (end == std::string::npos) throw Error({f.path, f.line}, "unterminated comment");
            f.line += static_cast<int>(std::count(t.begin() + static_cast<std::ptrdiff_t>(f.pos),
                                                  t.begin() + static_cast<std::ptrdiff_t>(end), '\n'));
            f.pos = end + 2;
        } else {
            return;
        }
    }
}

// Passes over the rest of a line that is not read (a branch not taken, the
// code of a header); a comment that starts on it is passed over whole.
void Preprocessor::SkipLine(File& f) {
    const std::string& t = f.text;
    while (f.pos < t.size() && t[f.pos] != '\n') {
        if (t.compare(f.pos, 2, "/*") == 0 || t.compare(f.pos, 2, "//") == 0) {
            SkipBlanks(f, true);
        } else {
            ++f.pos;
        }
    }
}

Token Preprocessor::Lex(File& f) {
    const std::string& t = f.text;
    Token tok;
    tok.where = {f.path, f.line};
    char c = t[f.pos];
    if (c == 'L' && f.pos + 1 < t.size() && t[f.pos + 1] == '"') {
        ++f.pos;
        return LexString(f, true);
    }
    if (c == '"') return LexString(f, false);
    if (IsIdentStart(c)) {
        size_t start = f.pos;
        while (f.pos < t.size() && IsIdentChar(t[f.pos])) ++f.pos;
        tok.kind = TokenKind::Identifier;
        tok.text = t.substr(start, f.pos - start);
        return tok;
    }
    if (std::isdigit(static_cast<unsigned char>(c))) return LexNumber(f);
    static const char* const kTwo[] = {"&&", "||", "==", "!=", "<=", ">=", "<<", ">>"};
    for (const char* op : kTwo) {
        if (t.compare(f.pos, 2, op) == 0) {
            f.pos += 2;
            tok.kind = TokenKind::Punct;
            tok.text = op;
            return tok;
        }
    }
    if (std::string(",()|&+-~*/%^!<>{}=?:").find(c) != std::string::npos) {
        ++f.pos;
        tok.kind = TokenKind::Punct;
        tok.text = std::string(1, c);
        return tok;
    }
    uint32_t cp = 0;
    DecodeUtf8(t, f.pos, cp);
    throw Error(tok.where, "unexpected character " + Describe(cp));
}

// Decimal, hexadecimal (0x) or octal (leading 0), with optional U and L
// suffixes; 32 bits at most.
Token Preprocessor::LexNumber(File& f) {
    const std::string& t = f.text;
    Token tok;
    tok.kind = TokenKind::Number;
    tok.where = {f.path, f.line};
    size_t start = f.pos;
    while (f.pos < t.size() && IsIdentChar(t[f.pos])) ++f.pos;
    tok.text = t.substr(start, f.pos - start);

    std::string digits = tok.text;
    while (!digits.empty() && std::string("uUlL").find(digits.back()) != std::string::npos) {
        if (digits.back() == 'l' || digits.back() == 'L') tok.isLong = true;
        digits.pop_back();
    }
    unsigned base = 10;
    if (digits.size() >= 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) {
        base = 16;
        digits.erase(0, 2);
    } else if (digits.size() > 1 && digits[0] == '0') {
        base = 8;
    }
    if (digits.empty()) throw Error(tok.where, "bad number '" + tok.text + "'");
    uint64_t value = 0;
    for (char d : digits) {
        unsigned v = std::isdigit(static_cast<unsigned char>(d)) ? static_cast<unsigned>(d - '0')
                     : std::isxdigit(static_cast<unsigned char>(d))
                         ? static_cast<unsigned>(std::tolower(static_cast<unsigned char>(d)) - 'a' + 10)
                         : 99;
        if (v >= base) throw Error(tok.where, "bad number '" + tok.text + "'");
        value = value * base + v;
        if (value > 0xFFFFFFFFull) throw Error(tok.where, "number '" + tok.text + "' is out of range (32 bits)");
    }
    tok.value = static_cast<int64_t>(value);
    return tok;
}

// A quoted string: "" stands for a quote; the escapes \n \t \r \a \b \f \v
// \\ \" \' \? , octal \ooo and hexadecimal \xhh. In a narrow string an octal
// or hexadecimal escape is a Windows-1251 byte; in a wide (L"...") one it is
// a Unicode character (\xhhhh). Every character must exist in Windows-1251.
Token Preprocessor::LexString(File& f, bool wide) {
    const std::string& t = f.text;
    Token tok;
    tok.kind = TokenKind::String;
    tok.wide = wide;
    tok.where = {f.path, f.line};
    ++f.pos;  // the opening quote

    auto character = [&](uint32_t cp) {
        int b = Cp1251Byte(cp);
        if (b < 0) throw Error({f.path, f.line}, "character " + Describe(cp) + " is not in Windows-1251");
        tok.bytes += static_cast<char>(b);
    };
    auto code = [&](uint32_t v, const std::string& written) {
        if (!wide) {
            if (v > 0xFF) throw Error({f.path, f.line}, "escape '" + written + "' is out of range for a byte");
            tok.bytes += static_cast<char>(v);
        } else {
            character(v);
        }
    };

    for (;;) {
        if (f.pos >= t.size() || t[f.pos] == '\n' || t.compare(f.pos, 2, "\r\n") == 0)
            throw Error(tok.where, "unterminated string");
        char c = t[f.pos];
        if (c == '"') {
            if (f.pos + 1 < t.size() && t[f.pos + 1] == '"') {
                tok.bytes += '"';
                f.pos += 2;
                continue;
            }
            ++f.pos;
            return tok;
        }
        if (c != '\\') {
            uint32_t cp = 0;
            f.pos += DecodeUtf8(t, f.pos, cp);
            character(cp);
            continue;
        }
        // An escape.
        size_t start = f.pos++;
        if (f.pos >= t.size() || t[f.pos] == '\n') throw Error(tok.where, "unterminated string");
        char e = t[f.pos++];
        static const std::string kSimple = "ntrabfv\\\"'?";
        static const std::string kValues = "\n\t\r\a\b\f\v\\\"'?";
        if (size_t k = kSimple.find(e); k != std::string::npos) {
            tok.bytes += kValues[k];
        } else if (e >= '0' && e <= '7') {
            uint32_t v = static_cast<uint32_t>(e - '0');
            for (int i = 0; i < 2 && f.pos < t.size() && t[f.pos] >= '0' && t[f.pos] <= '7'; ++i)
                v = v * 8 + static_cast<uint32_t>(t[f.pos++] - '0');
            code(v, t.substr(start, f.pos - start));
        } else if (e == 'x' || e == 'X') {
            uint32_t v = 0;
            int n = 0;
            const int most = wide ? 4 : 2;
            while (n < most && f.pos < t.size() && std::isxdigit(static_cast<unsigned char>(t[f.pos]))) {
                char d = static_cast<char>(std::tolower(static_cast<unsigned char>(t[f.pos++])));
                v = v * 16 + static_cast<uint32_t>(std::isdigit(static_cast<unsigned char>(d)) ? d - '0' : d - 'a' + 10);
                ++n;
            }
            if (n == 0) throw Error({f.path, f.line}, "\\x without hexadecimal digits");
            code(v, t.substr(start, f.pos - start));
        } else {
            uint32_t cp = 0;
            DecodeUtf8(t, f.pos - 1, cp);
            throw Error({f.path, f.line}, "unknown escape sequence '\\" + Utf8Of(cp) + "'");
        }
    }
}

std::vector<Token> Preprocessor::LineTokens(File& f) {
    std::vector<Token> tokens;
    for (;;) {
        SkipBlanks(f, true);
        if (f.pos >= f.text.size() || f.text[f.pos] == '\n') return tokens;
        tokens.push_back(Lex(f));
    }
}

void Preprocessor::Expand(const Token& use, std::vector<Token>& out, std::vector<std::string>& active) const {
    auto it = m_macros.find(use.text);
    if (use.kind != TokenKind::Identifier || it == m_macros.end() ||
        std::find(active.begin(), active.end(), use.text) != active.end()) {
        out.push_back(use);
        return;
    }
    if (active.size() >= kMaxNesting) throw Error(use.where, "macros nested too deeply");
    active.push_back(use.text);
    for (Token t : it->second) {
        t.where = use.where;
        Expand(t, out, active);
    }
    active.pop_back();
}

Token Preprocessor::Next() {
    for (;;) {
        if (!m_pending.empty()) {
            Token t = std::move(m_pending.front());
            m_pending.pop_front();
            return t;
        }
        if (m_files.empty()) {
            Token end;
            end.where = m_last;
            return end;
        }
        File& f = m_files.back();
        SkipBlanks(f, false);
        if (f.pos >= f.text.size()) {
            if (!f.conditionals.empty()) throw Error(f.conditionals.back().where, "unterminated #if");
            m_last = {f.path, f.line};
            m_files.pop_back();
            continue;
        }
        if (f.text[f.pos] == '#' && f.lineStart) {
            ++f.pos;
            Directive(f);
            continue;
        }
        if (!Active(f) || f.headerOnly) {
            SkipLine(f);
            continue;
        }
        f.lineStart = false;
        Token t = Lex(f);
        m_last = t.where;
        if (t.kind == TokenKind::Identifier && m_macros.count(t.text)) {
            std::vector<Token> out;
            std::vector<std::string> active;
            Expand(t, out, active);
            m_pending.insert(m_pending.end(), out.begin(), out.end());
            continue;
        }
        return t;
    }
}

void Preprocessor::Directive(File& f) {
    Location where{f.path, f.line};
    SkipBlanks(f, true);
    if (f.pos >= f.text.size() || f.text[f.pos] == '\n') return;  // a lone '#'
    if (!IsIdentStart(f.text[f.pos])) {
        if (!Active(f)) return SkipLine(f);
        throw Error(where, "bad preprocessor directive");
    }
    std::string name = Lex(f).text;
    if (name == "if" || name == "ifdef" || name == "ifndef" || name == "elif" || name == "else" || name == "endif")
        return HandleConditional(f, name, where);
    if (!Active(f)) return SkipLine(f);

    if (name == "include") return Include(f, where);
    if (name == "define") {
        SkipBlanks(f, true);
        if (f.pos >= f.text.size() || !IsIdentStart(f.text[f.pos])) throw Error(where, "#define without a name");
        std::string macro = Lex(f).text;
        if (f.pos < f.text.size() && f.text[f.pos] == '(')
            throw Error(where, "function-like macros are not supported ('" + macro + "')");
        m_macros[macro] = LineTokens(f);
        return;
    }
    if (name == "undef") {
        std::vector<Token> tokens = LineTokens(f);
        if (tokens.size() != 1 || tokens[0].kind != TokenKind::Identifier) throw Error(where, "#undef needs one name");
        m_macros.erase(tokens[0].text);
        return;
    }
    if (name == "pragma") {
        std::vector<Token> tokens = LineTokens(f);
        if (tokens.size() == 1 && tokens[0].text == "once") {
            m_once.insert(Absolute(f.path));
            return;
        }
        if (!tokens.empty() && tokens[0].text == "code_page") {
            if (tokens.size() == 4 && tokens[1].text == "(" && tokens[2].kind == TokenKind::Number &&
                tokens[2].value == 65001 && tokens[3].text == ")")
                return;
            throw Error(where, "scripts are read as UTF-8: only #pragma code_page(65001) is accepted");
        }
        throw Error(where, "unknown #pragma '" + (tokens.empty() ? std::string() : tokens[0].text) + "'");
    }
    if (name == "error") {
        size_t end = std::min(f.text.find('\n', f.pos), f.text.size());
        std::string message = f.text.substr(f.pos, end - f.pos);
        f.pos = end;
        throw Error(where, "#error" + message);
    }
    throw Error(where, "unknown preprocessor directive '#" + name + "'");
}

void Preprocessor::Include(File& f, const Location& where) {
    SkipBlanks(f, true);
    const std::string& t = f.text;
    char open = f.pos < t.size() ? t[f.pos] : '\0';
    if (open != '"' && open != '<') throw Error(where, "#include expects \"file\" or <file>");
    char close = open == '"' ? '"' : '>';
    size_t end = t.find_first_of(std::string(1, close) + "\n", f.pos + 1);
    if (end == std::string::npos || t[end] != close) throw Error(where, "unterminated #include name");
    std::string name = t.substr(f.pos + 1, end - f.pos - 1);
    f.pos = end + 1;
    if (!LineTokens(f).empty()) throw Error(where, "unexpected text after #include");
    if (IsSystemHeader(name)) return;  // its names are built in

    std::replace(name.begin(), name.end(), '\\', '/');
    std::vector<std::string> candidates;
    if (open == '"') candidates.push_back((fs::path(f.dir) / name).string());
    for (const std::string& dir : m_includeDirs) candidates.push_back((fs::path(dir) / name).string());
    for (const std::string& path : candidates) {
        std::error_code ec;
        if (!fs::is_regular_file(path, ec)) continue;
        if (m_once.count(Absolute(path))) return;
        Push(path, HeaderOnly(path), &where);
        return;
    }
    throw Error(where, "cannot open include file '" + name + "'");
}

void Preprocessor::HandleConditional(File& f, const std::string& name, const Location& where) {
    auto& stack = f.conditionals;
    const bool outer = stack.size() < 2 || stack[stack.size() - 2].active;  // for elif/else/endif
    if (name == "if" || name == "ifdef" || name == "ifndef") {
        const bool parent = Active(f);
        std::vector<Token> tokens = LineTokens(f);
        bool value = false;
        if (parent) {
            if (name == "if") {
                value = Evaluate(tokens, where);
            } else {
                if (tokens.size() != 1 || tokens[0].kind != TokenKind::Identifier)
                    throw Error(where, "#" + name + " needs one name");
                value = m_macros.count(tokens[0].text) == (name == "ifdef" ? 1u : 0u);
            }
        }
        // In a branch not read nothing of the nested one is read either.
        stack.push_back({parent && value, !parent || value, false, where});
        return;
    }
    if (stack.empty()) {
        LineTokens(f);
        throw Error(where, "#" + name + " without #if");
    }
    Conditional& top = stack.back();
    if (name == "elif") {
        std::vector<Token> tokens = LineTokens(f);
        if (top.sawElse) throw Error(where, "#elif after #else");
        if (top.taken) {
            top.active = false;
        } else {
            bool value = Evaluate(tokens, where);
            top.active = outer && value;
            top.taken = value;
        }
    } else if (name == "else") {
        if (!LineTokens(f).empty()) throw Error(where, "unexpected text after #else");
        if (top.sawElse) throw Error(where, "#else after #else");
        top.active = outer && !top.taken;
        top.taken = true;
        top.sawElse = true;
    } else {  // endif
        if (!LineTokens(f).empty()) throw Error(where, "unexpected text after #endif");
        stack.pop_back();
    }
}

// The condition of #if and #elif: C's integer expressions with defined().
bool Preprocessor::Evaluate(std::vector<Token> tokens, const Location& where) {
    std::vector<Token> expanded;
    for (size_t i = 0; i < tokens.size(); ++i) {
        if (tokens[i].kind == TokenKind::Identifier && tokens[i].text == "defined") {
            size_t j = i + 1;
            bool paren = j < tokens.size() && tokens[j].text == "(";
            if (paren) ++j;
            if (j >= tokens.size() || tokens[j].kind != TokenKind::Identifier)
                throw Error(where, "defined needs a name");
            if (paren && (j + 1 >= tokens.size() || tokens[j + 1].text != ")"))
                throw Error(where, "missing ')' after defined(");
            Token n;
            n.kind = TokenKind::Number;
            n.value = m_macros.count(tokens[j].text) ? 1 : 0;
            n.where = tokens[i].where;
            expanded.push_back(n);
            i = paren ? j + 1 : j;
            continue;
        }
        std::vector<std::string> active;
        Expand(tokens[i], expanded, active);
    }
    if (expanded.empty()) throw Error(where, "#if without a condition");

    size_t p = 0;
    auto peek = [&]() -> const Token* { return p < expanded.size() ? &expanded[p] : nullptr; };
    auto is = [&](const char* op) { const Token* t = peek(); return t && t->kind == TokenKind::Punct && t->text == op; };
    // Binary operators by precedence, loosest first.
    static const std::vector<std::vector<std::string>> kLevels = {
        {"||"}, {"&&"}, {"|"}, {"^"}, {"&"}, {"==", "!="}, {"<", ">", "<=", ">="}, {"<<", ">>"}, {"+", "-"}, {"*", "/", "%"}};
    auto U = [](int64_t x) { return static_cast<uint64_t>(x); };
    std::function<int64_t(size_t)> binary;
    size_t depth = 0;
    std::function<int64_t()> unary = [&]() -> int64_t {
        struct Nest {
            size_t& d;
            ~Nest() { --d; }
        } nest{++depth};
        if (depth > kMaxNesting) throw Error(where, "#if expression nested too deeply");
        const Token* t = peek();
        if (!t) throw Error(where, "incomplete #if expression");
        ++p;
        if (t->kind == TokenKind::Number) return t->value;
        if (t->kind == TokenKind::Identifier) return 0;  // a name never defined counts as 0
        if (t->text == "(") {
            int64_t v = binary(0);
            if (!is(")")) throw Error(where, "missing ')' in #if expression");
            ++p;
            return v;
        }
        if (t->text == "!") return !unary();
        if (t->text == "~") return ~unary();
        if (t->text == "-") return static_cast<int64_t>(0 - static_cast<uint64_t>(unary()));
        if (t->text == "+") return unary();
        throw Error(where, "unexpected '" + t->text + "' in #if expression");
    };
    binary = [&](size_t level) -> int64_t {
        if (level == kLevels.size()) return unary();
        int64_t v = binary(level + 1);
        for (;;) {
            const Token* t = peek();
            if (!t || t->kind != TokenKind::Punct) return v;
            const auto& ops = kLevels[level];
            if (std::find(ops.begin(), ops.end(), t->text) == ops.end()) return v;
            std::string op = t->text;
            ++p;
            int64_t r = binary(level + 1);
            if ((op == "/" || op == "%") && r == 0) throw Error(where, "division by zero in #if expression");
            if (op == "||") v = v || r;
            else if (op == "&&") v = v && r;
            else if (op == "|") v |= r;
            else if (op == "^") v ^= r;
            else if (op == "&") v &= r;
            else if (op == "==") v = v == r;
            else if (op == "!=") v = v != r;
            else if (op == "<") v = v < r;
            else if (op == ">") v = v > r;
            else if (op == "<=") v = v <= r;
            else if (op == ">=") v = v >= r;
            // Wrapping arithmetic: a script's #if must not be undefined behaviour.
            else if (op == "<<") v = (r >= 0 && r < 64) ? static_cast<int64_t>(U(v) << r) : 0;
            else if (op == ">>") v = (r >= 0 && r < 64) ? v >> r : 0;
            else if (op == "+") v = static_cast<int64_t>(U(v) + U(r));
            else if (op == "-") v = static_cast<int64_t>(U(v) - U(r));
            else if (op == "*") v = static_cast<int64_t>(U(v) * U(r));
            else if (r == -1) v = op == "/" ? static_cast<int64_t>(0 - U(v)) : 0;
            else if (op == "/") v /= r;
            else v %= r;
        }
    };
    int64_t v = binary(0);
    if (p != expanded.size()) throw Error(where, "unexpected '" + expanded[p].text + "' in #if expression");
    return v != 0;
}

}  // namespace rc
