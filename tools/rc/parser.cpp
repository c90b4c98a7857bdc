#include "parser.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace rc {

namespace {

constexpr int kMaxNesting = 200;

// The styles every control and dialog starts from, as Windows defines them.
constexpr uint32_t WS_POPUP = 0x80000000;
constexpr uint32_t WS_CHILD = 0x40000000;
constexpr uint32_t WS_VISIBLE = 0x10000000;
constexpr uint32_t WS_CAPTION = 0x00C00000;
constexpr uint32_t WS_BORDER = 0x00800000;
constexpr uint32_t WS_SYSMENU = 0x00080000;
constexpr uint32_t WS_GROUP = 0x00020000;
constexpr uint32_t WS_TABSTOP = 0x00010000;
constexpr uint32_t DS_SETFONT = 0x0040;

// A control statement: the window class and the style a control of that
// statement has besides WS_CHILD | WS_VISIBLE. A style written in the script
// adds to it; NOT takes bits away.
struct ControlKind {
    const char* word;
    const char* className;
    uint32_t style;
    bool hasText;
};
const ControlKind kControlKinds[] = {
    {"LTEXT", "Static", 0x0000 | WS_GROUP, true},  // SS_LEFT
    {"RTEXT", "Static", 0x0002 | WS_GROUP, true},  // SS_RIGHT
    {"CTEXT", "Static", 0x0001 | WS_GROUP, true},  // SS_CENTER
    {"PUSHBUTTON", "Button", 0x0000 | WS_TABSTOP, true},
    {"DEFPUSHBUTTON", "Button", 0x0001 | WS_TABSTOP, true},
    {"PUSHBOX", "Button", 0x000A | WS_TABSTOP, true},
    {"CHECKBOX", "Button", 0x0002 | WS_TABSTOP, true},
    {"AUTOCHECKBOX", "Button", 0x0003 | WS_TABSTOP, true},
    {"RADIOBUTTON", "Button", 0x0004 | WS_TABSTOP, true},
    {"AUTORADIOBUTTON", "Button", 0x0009 | WS_TABSTOP, true},
    {"STATE3", "Button", 0x0005 | WS_TABSTOP, true},
    {"AUTO3STATE", "Button", 0x0006 | WS_TABSTOP, true},
    {"GROUPBOX", "Button", 0x0007, true},
    {"EDITTEXT", "Edit", 0x0000 | WS_BORDER | WS_TABSTOP, false},  // ES_LEFT
    {"COMBOBOX", "ComboBox", 0x0001 | WS_TABSTOP, false},           // CBS_SIMPLE
    {"LISTBOX", "ListBox", 0x0001 | WS_BORDER, false},              // LBS_NOTIFY
    {"SCROLLBAR", "ScrollBar", 0x0000, false},                      // SBS_HORZ
};

// The window classes Windows registers, as a CONTROL statement may name them.
const char* const kSystemClasses[] = {"Button", "Edit", "Static", "ListBox", "ScrollBar", "ComboBox"};

const char* const kUnsupportedTypes[] = {"MENU", "MENUEX", "ACCELERATORS", "BITMAP", "ICON", "CURSOR",
                                         "FONT", "FONTDIR", "MESSAGETABLE", "TEXTINCLUDE", "DLGINIT",
                                         "TOOLBAR", "HTML", "DLGINCLUDE", "PLUGPLAY", "VXD",
                                         "ANICURSOR", "ANIICON", "DESIGNINFO"};

const char* const kMemoryFlags[] = {"PRELOAD", "LOADONCALL", "FIXED", "MOVEABLE", "DISCARDABLE",
                                    "PURE", "IMPURE", "SHARED", "NONSHARED"};

std::string Upper(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return std::toupper(c); });
    return s;
}

bool SameWord(const std::string& a, const char* b) { return Upper(a) == Upper(b); }

template <size_t N>
bool OneOf(const std::string& word, const char* const (&list)[N]) {
    return std::any_of(std::begin(list), std::end(list), [&](const char* w) { return SameWord(word, w); });
}

std::string What(const Token& t) {
    switch (t.kind) {
        case TokenKind::End: return "the end of the file";
        case TokenKind::String: return "a string";
        default: return "'" + t.text + "'";
    }
}

int32_t Signed(uint32_t v) { return static_cast<int32_t>(v); }

std::string LanguageName(uint16_t language) { return std::to_string(language); }

}  // namespace

const Token& Parser::Peek(size_t ahead) {
    while (m_ahead.size() <= ahead) m_ahead.push_back(m_in.Next());
    return m_ahead[ahead];
}

Token Parser::Next() {
    Peek();
    Token t = std::move(m_ahead.front());
    m_ahead.pop_front();
    if (t.kind != TokenKind::End) m_last = t.where;
    return t;
}

// Where to report something missing: at the token that came instead when it
// is on the statement's line, else just after the last token read, so the
// line named is the one with the omission.
Location Parser::MissingAt() {
    const Token& t = Peek();
    if ((t.kind == TokenKind::End || t.kind == TokenKind::Identifier) && m_last.line > 0) return m_last;
    return t.where;
}

bool Parser::IsWord(const Token& t, const char* word) const {
    return t.kind == TokenKind::Identifier && SameWord(t.text, word);
}

bool Parser::IsPunct(const Token& t, const char* punct) const {
    return t.kind == TokenKind::Punct && t.text == punct;
}

bool Parser::IsBegin(const Token& t) const { return IsWord(t, "BEGIN") || IsPunct(t, "{"); }
bool Parser::IsEnd(const Token& t) const { return IsWord(t, "END") || IsPunct(t, "}"); }

void Parser::ExpectBegin(const std::string& of) {
    if (!IsBegin(Peek())) throw Error(MissingAt(), "missing BEGIN of " + of);
    Next();
}

void Parser::ExpectComma(const char* before) {
    if (!IsPunct(Peek(), ",")) throw Error(MissingAt(), std::string("missing ") + before);
    Next();
}

bool Parser::SkipComma() {
    if (!IsPunct(Peek(), ",")) return false;
    Next();
    return true;
}

// Memory flags of 16-bit Windows; still accepted, and meaningless.
void Parser::SkipMemoryFlags() {
    while (Peek().kind == TokenKind::Identifier && OneOf(Peek().text, kMemoryFlags)) Next();
}

// --- Numbers: rc's expressions, 32-bit and wrapping ---------------------------

bool Parser::StartsExpression(const Token& t) const {
    if (t.kind == TokenKind::Number) return true;
    if (t.kind == TokenKind::Punct) return t.text == "(" || t.text == "-" || t.text == "+" || t.text == "~";
    return IsWord(t, "NOT");
}

void Parser::RequireExpression(const char* what) {
    const Token& t = Peek();
    if (StartsExpression(t)) return;
    // A name that is not a statement word is a name nobody defined.
    if (t.kind == TokenKind::Identifier && !IsBegin(t) && !IsEnd(t) && !OneOf(t.text, kUnsupportedTypes) &&
        std::none_of(std::begin(kControlKinds), std::end(kControlKinds),
                     [&](const ControlKind& k) { return SameWord(t.text, k.word); }) &&
        !SameWord(t.text, "CONTROL"))
        throw Error(t.where, "'" + t.text + "' is not defined");
    throw Error(MissingAt(), std::string("missing ") + what);
}

uint32_t Parser::Expression(const char* what) {
    RequireExpression(what);
    return OrExpression();
}

uint32_t Parser::OrExpression() {
    uint32_t v = AndExpression();
    while (IsPunct(Peek(), "|")) {
        Next();
        v |= AndExpression();
    }
    return v;
}

uint32_t Parser::AndExpression() {
    uint32_t v = AddExpression();
    while (IsPunct(Peek(), "&")) {
        Next();
        v &= AddExpression();
    }
    return v;
}

uint32_t Parser::AddExpression() {
    uint32_t v = MulExpression();
    for (;;) {
        if (IsPunct(Peek(), "+")) {
            Next();
            v += MulExpression();
        } else if (IsPunct(Peek(), "-")) {
            Next();
            v -= MulExpression();
        } else {
            return v;
        }
    }
}

uint32_t Parser::MulExpression() {
    uint32_t v = Unary();
    for (;;) {
        if (IsPunct(Peek(), "*")) {
            Next();
            v *= Unary();
        } else if (IsPunct(Peek(), "/")) {
            Location where = Peek().where;
            Next();
            uint32_t r = Unary();
            if (r == 0) throw Error(where, "division by zero");
            v = static_cast<uint32_t>(Signed(v) == INT32_MIN && Signed(r) == -1 ? v : static_cast<uint32_t>(Signed(v) / Signed(r)));
        } else {
            return v;
        }
    }
}

uint32_t Parser::Unary() {
    // A hostile script must not exhaust the stack.
    struct Depth {
        int& d;
        explicit Depth(int& depth) : d(++depth) {}
        ~Depth() { --d; }
    } depth(m_depth);
    if (m_depth > kMaxNesting) throw Error(Peek().where, "expression nested too deeply");
    const Token& t = Peek();
    if (t.kind == TokenKind::Number) return static_cast<uint32_t>(Next().value);
    if (IsPunct(t, "(")) {
        Next();
        uint32_t v = OrExpression();
        if (!IsPunct(Peek(), ")")) throw Error(MissingAt(), "missing ')'");
        Next();
        return v;
    }
    if (IsPunct(t, "-")) {
        Next();
        return 0u - Unary();
    }
    if (IsPunct(t, "+")) {
        Next();
        return Unary();
    }
    if (IsPunct(t, "~") || IsWord(t, "NOT")) {
        Next();
        return ~Unary();
    }
    RequireExpression("a number");
    return 0;  // not reached: RequireExpression throws
}

// A style: terms joined by '|' added to `base`; "NOT x" removes x.
uint32_t Parser::Style(uint32_t base, const char* what) {
    RequireExpression(what);
    uint32_t v = base;
    for (;;) {
        if (IsWord(Peek(), "NOT")) {
            Next();
            v &= ~Unary();
        } else {
            v |= AndExpression();
        }
        if (!IsPunct(Peek(), "|")) return v;
        Next();
    }
}

uint32_t Parser::Dword(const char* what) { return Expression(what); }

int16_t Parser::Short(const char* what) {
    Location where = Peek().where;
    int32_t v = Signed(Expression(what));
    if (v < INT16_MIN || v > INT16_MAX)
        throw Error(where, std::string(what) + " " + std::to_string(v) + " is out of range (-32768 to 32767)");
    return static_cast<int16_t>(v);
}

uint16_t Parser::Word(const char* what) {
    Location where = Peek().where;
    int32_t v = Signed(Expression(what));
    if (v < 0 || v > 0xFFFF) throw Error(where, std::string(what) + " " + std::to_string(v) + " is out of range (0 to 65535)");
    return static_cast<uint16_t>(v);
}

// A control id is a WORD in the template; 0xFFFF and -1 are both "no id".
int Parser::ControlId() {
    Location where = Peek().where;
    int32_t v = Signed(Expression("control id"));
    if (v < -1 || v > 0xFFFF) throw Error(where, "control id " + std::to_string(v) + " is out of range (-1 to 65535)");
    return v == 0xFFFF ? -1 : v;
}

std::string Parser::Text(const char* what) {
    if (Peek().kind != TokenKind::String) throw Error(MissingAt(), std::string("missing ") + what);
    Token t = Next();
    if (t.bytes.find('\0') != std::string::npos) throw Error(t.where, std::string("a NUL character in the ") + what);
    return t.bytes;
}

// --- Statements ---------------------------------------------------------------

void Parser::Run() {
    for (;;) {
        const Token& t = Peek();
        if (t.kind == TokenKind::End) return;
        if (IsWord(t, "LANGUAGE")) {
            Next();
            m_language = Language();
        } else if (IsWord(t, "STRINGTABLE")) {
            Next();
            StringTable();
        } else if (t.kind == TokenKind::Number) {
            Location where = t.where;
            unsigned id = ResourceId();
            Type(id, where);
        } else if (t.kind == TokenKind::Identifier) {
            const Token& second = Peek(1);
            bool typeFollows = second.kind == TokenKind::Identifier &&
                               (IsWord(second, "DIALOG") || IsWord(second, "DIALOGEX") || IsWord(second, "VERSIONINFO") ||
                                IsWord(second, "RCDATA") || OneOf(second.text, kUnsupportedTypes));
            if (IsWord(t, "DIALOG") || IsWord(t, "DIALOGEX") || IsWord(t, "VERSIONINFO") || IsWord(t, "RCDATA"))
                throw Error(t.where, "missing resource id before " + Upper(t.text));
            if (typeFollows) throw Error(t.where, "'" + t.text + "' is not defined (resource ids must be numbers)");
            throw Error(t.where, "unknown statement '" + t.text + "'");
        } else if (t.kind == TokenKind::String) {
            throw Error(t.where, "resource names must be numbers, not strings");
        } else {
            throw Error(t.where, "unexpected " + What(t));
        }
    }
}

uint16_t Parser::Language() {
    Location where = Peek().where;
    uint32_t primary = Expression("language");
    ExpectComma("sublanguage");
    uint32_t sub = Expression("sublanguage");
    if (primary > 0x3FF || sub > 0x3F) throw Error(where, "language out of range");
    return static_cast<uint16_t>(sub << 10 | primary);
}

unsigned Parser::ResourceId() {
    Token t = Next();
    if (t.value < 1 || t.value > 0xFFFF)
        throw Error(t.where, "resource id " + std::to_string(t.value) + " is out of range (1 to 65535)");
    return static_cast<unsigned>(t.value);
}

void Parser::Type(unsigned id, const Location& where) {
    const Token& type = Peek();
    if (IsWord(type, "DIALOG") || IsWord(type, "DIALOGEX")) {
        bool extended = IsWord(type, "DIALOGEX");
        Next();
        Dialog(id, extended, where);
    } else if (IsWord(type, "VERSIONINFO")) {
        Next();
        VersionInfo(id, where);
    } else if (IsWord(type, "RCDATA")) {
        Next();
        Data(10, id, where);
    } else if (type.kind == TokenKind::Number) {
        Token t = Next();
        // Types 5, 6 and 16 are dialogs, strings and versions: they have statements of their own.
        if (t.value < 1 || t.value > 0xFFFF || t.value == 5 || t.value == 6 || t.value == 16)
            throw Error(t.where, "resource type " + std::to_string(t.value) + " cannot be given as data");
        Data(static_cast<unsigned>(t.value), id, where);
    } else if (type.kind == TokenKind::Identifier && OneOf(type.text, kUnsupportedTypes)) {
        throw Error(type.where, Upper(type.text) + " resources are not supported");
    } else if (type.kind == TokenKind::Identifier) {
        throw Error(type.where, "unknown resource type '" + type.text + "'");
    } else {
        throw Error(MissingAt(), "missing resource type after resource id " + std::to_string(id));
    }
}

void Parser::StringTable() {
    SkipMemoryFlags();
    uint16_t language = m_language;
    for (;;) {
        if (IsWord(Peek(), "LANGUAGE")) {
            Next();
            language = Language();
        } else if (IsWord(Peek(), "CHARACTERISTICS") || IsWord(Peek(), "VERSION")) {
            Next();
            Dword("number");
        } else {
            break;
        }
    }
    ExpectBegin("STRINGTABLE");
    auto& table = m_script.strings[language];
    for (;;) {
        const Token& t = Peek();
        if (IsEnd(t)) {
            Next();
            return;
        }
        if (t.kind == TokenKind::End) throw Error(MissingAt(), "missing END of STRINGTABLE");
        if (t.kind == TokenKind::String) throw Error(t.where, "missing string id");
        Location where = t.where;
        int32_t id = Signed(Expression("string id"));
        if (id < 0 || id > 0xFFFF)
            throw Error(where, "string id " + std::to_string(id) + " is out of range (0 to 65535)");
        SkipComma();
        std::string text = Text(("text of string " + std::to_string(id)).c_str());
        auto [seen, fresh] = m_stringsSeen.emplace(std::make_pair(language, static_cast<unsigned>(id)), where);
        if (!fresh)
            throw Error(where, "string " + std::to_string(id) + " is defined twice for language " +
                                   LanguageName(language) + " (first at " + seen->second.file + ":" +
                                   std::to_string(seen->second.line) + ")");
        table[static_cast<unsigned>(id)] = std::move(text);
    }
}

void Parser::Dialog(unsigned id, bool extended, const Location& where) {
    const std::string name = std::string(extended ? "DIALOGEX " : "DIALOG ") + std::to_string(id);
    SkipMemoryFlags();
    rc::Dialog d;
    d.id = id;
    d.extended = extended;
    d.language = m_language;
    d.x = Short("dialog x");
    ExpectComma("dialog y");
    d.y = Short("dialog y");
    ExpectComma("dialog width");
    d.cx = Short("dialog width");
    ExpectComma("dialog height");
    d.cy = Short("dialog height");
    if (extended && SkipComma()) d.helpId = Dword("help id");

    bool hasStyle = false, hasCaption = false;
    for (;;) {
        const Token& t = Peek();
        if (IsBegin(t)) break;
        if (IsWord(t, "STYLE")) {
            Next();
            d.style = Style(0, "dialog style");
            hasStyle = true;
        } else if (IsWord(t, "EXSTYLE")) {
            Next();
            d.exStyle = Style(0, "extended style");
        } else if (IsWord(t, "CAPTION")) {
            Next();
            d.caption = Text("caption text");
            hasCaption = true;
        } else if (IsWord(t, "FONT")) {
            Next();
            d.fontSize = Word("font size");
            ExpectComma("font name");
            d.fontName = Text("font name");
            d.hasFont = true;
            if (IsPunct(Peek(), ",") && !extended)
                throw Error(Peek().where, "weight, italic and character set of a FONT need DIALOGEX");
            if (SkipComma()) d.fontWeight = Word("font weight");
            if (SkipComma()) d.fontItalic = static_cast<uint8_t>(Word("font italic flag") != 0);
            if (SkipComma()) {
                Location at = Peek().where;
                uint16_t charset = Word("font character set");
                if (charset > 0xFF) throw Error(at, "font character set out of range (0 to 255)");
                d.fontCharset = static_cast<uint8_t>(charset);
            }
        } else if (IsWord(t, "LANGUAGE")) {
            Next();
            d.language = Language();
        } else if (IsWord(t, "CHARACTERISTICS") || IsWord(t, "VERSION")) {
            Next();
            Dword("number");
        } else if (IsWord(t, "MENU") || IsWord(t, "CLASS")) {
            throw Error(t.where, Upper(t.text) + " is not supported in a dialog");
        } else if (t.kind == TokenKind::End) {
            throw Error(MissingAt(), "missing BEGIN of " + name);
        } else {
            throw Error(t.where, "unknown dialog statement " + What(t));
        }
    }
    Next();  // BEGIN
    for (;;) {
        const Token& t = Peek();
        if (IsEnd(t)) {
            Next();
            break;
        }
        if (t.kind == TokenKind::End) throw Error(MissingAt(), "missing END of " + name);
        DialogControl(d);
    }
    // As the resource compiler does: a dialog without STYLE is a popup with a
    // border and a system menu; CAPTION and FONT bring the styles they need.
    if (!hasStyle) d.style = WS_POPUP | WS_BORDER | WS_SYSMENU;
    if (hasCaption) d.style |= WS_CAPTION;
    if (d.hasFont) d.style |= DS_SETFONT;

    for (const rc::Dialog& other : m_script.dialogs)
        if (other.id == d.id && other.language == d.language)
            throw Error(where, "dialog " + std::to_string(id) + " is defined twice for language " + LanguageName(d.language));
    m_script.dialogs.push_back(std::move(d));
}

void Parser::DialogControl(rc::Dialog& d) {
    Token word = Next();
    if (word.kind != TokenKind::Identifier) throw Error(word.where, "expected a control statement, not " + What(word));
    Control c;
    auto rectangle = [&]() {
        c.x = Short("control x");
        ExpectComma("control y");
        c.y = Short("control y");
        ExpectComma("control width");
        c.cx = Short("control width");
        ExpectComma("control height");
        c.cy = Short("control height");
    };
    auto trailing = [&](bool styleFirst, uint32_t base) {
        if (styleFirst) {
            c.style = base;
            if (SkipComma()) c.style = Style(base, "control style");
        }
        if (SkipComma()) c.exStyle = Style(0, "extended style");
        if (IsPunct(Peek(), ",") && !d.extended) throw Error(Peek().where, "a control's help id needs DIALOGEX");
        if (SkipComma()) c.helpId = Dword("help id");
    };

    if (IsWord(word, "CONTROL")) {
        c.text = Text("control text");
        ExpectComma("control id");
        c.id = ControlId();
        ExpectComma("control class");
        const Token& cls = Peek();
        std::string name;
        if (cls.kind == TokenKind::String) {
            name = cls.bytes;
        } else if (cls.kind == TokenKind::Identifier && OneOf(cls.text, kSystemClasses)) {
            name = cls.text;
        } else {
            throw Error(MissingAt(), "missing control class");
        }
        Next();
        // Class names are not case-sensitive; the system's are given their usual spelling.
        for (const char* system : kSystemClasses)
            if (SameWord(name, system)) name = system;
        if (name.empty()) throw Error(cls.where, "empty control class");
        c.className = name;
        ExpectComma("control style");
        c.style = Style(WS_CHILD | WS_VISIBLE, "control style");
        ExpectComma("control x");
        rectangle();
        trailing(false, 0);
    } else {
        const ControlKind* kind = nullptr;
        for (const ControlKind& k : kControlKinds)
            if (SameWord(word.text, k.word)) kind = &k;
        if (!kind) {
            if (IsWord(word, "ICON")) throw Error(word.where, "ICON controls are not supported");
            throw Error(word.where, "unknown control statement '" + word.text + "'");
        }
        c.className = kind->className;
        if (kind->hasText) {
            c.text = Text("control text");
            ExpectComma("control id");
        }
        c.id = ControlId();
        ExpectComma("control x");
        rectangle();
        trailing(true, WS_CHILD | WS_VISIBLE | kind->style);
    }
    d.controls.push_back(std::move(c));
}

void Parser::VersionInfo(unsigned id, const Location& where) {
    rc::VersionInfo v;
    v.id = id;
    v.language = m_language;
    auto version = [&](uint32_t& ms, uint32_t& ls) {
        uint16_t part[4] = {};
        part[0] = Word("version number");
        for (int i = 1; i < 4 && SkipComma(); ++i) part[i] = Word("version number");
        ms = static_cast<uint32_t>(part[0]) << 16 | part[1];
        ls = static_cast<uint32_t>(part[2]) << 16 | part[3];
    };
    for (;;) {
        const Token& t = Peek();
        if (IsBegin(t)) break;
        if (t.kind == TokenKind::End) throw Error(MissingAt(), "missing BEGIN of VERSIONINFO");
        std::string word = t.kind == TokenKind::Identifier ? Upper(t.text) : std::string();
        if (word == "FILEVERSION") {
            Next();
            version(v.fileVersionMS, v.fileVersionLS);
        } else if (word == "PRODUCTVERSION") {
            Next();
            version(v.productVersionMS, v.productVersionLS);
        } else if (word == "FILEFLAGSMASK") {
            Next();
            v.fileFlagsMask = Dword("file flags mask");
        } else if (word == "FILEFLAGS") {
            Next();
            v.fileFlags = Dword("file flags");
        } else if (word == "FILEOS") {
            Next();
            v.fileOS = Dword("file OS");
        } else if (word == "FILETYPE") {
            Next();
            v.fileType = Dword("file type");
        } else if (word == "FILESUBTYPE") {
            Next();
            v.fileSubtype = Dword("file subtype");
        } else {
            throw Error(t.where, "unknown VERSIONINFO statement " + What(t));
        }
    }
    Next();  // BEGIN

    auto value = [&](const char* what) {
        if (Peek().kind != TokenKind::String) throw Error(MissingAt(), std::string("missing ") + what);
        Token t = Next();
        std::string s = t.bytes;
        while (!s.empty() && s.back() == '\0') s.pop_back();  // an old habit: "1.0\0"
        if (s.find('\0') != std::string::npos) throw Error(t.where, std::string("a NUL character in the ") + what);
        return s;
    };
    for (;;) {
        const Token& t = Peek();
        if (IsEnd(t)) {
            Next();
            break;
        }
        if (!IsWord(t, "BLOCK")) throw Error(t.kind == TokenKind::End ? MissingAt() : t.where,
                                             "expected BLOCK or END in VERSIONINFO, not " + What(t));
        Next();
        Location at = Peek().where;
        std::string block = value("block name");
        if (SameWord(block, "StringFileInfo")) {
            ExpectBegin("BLOCK \"StringFileInfo\"");
            for (;;) {
                if (IsEnd(Peek())) {
                    Next();
                    break;
                }
                if (!IsWord(Peek(), "BLOCK")) throw Error(MissingAt(), "expected BLOCK or END in StringFileInfo, not " + What(Peek()));
                Next();
                Location tableAt = Peek().where;
                rc::VersionInfo::StringTable table;
                table.block = value("string block name");
                if (table.block.size() != 8 ||
                    !std::all_of(table.block.begin(), table.block.end(), [](unsigned char ch) { return std::isxdigit(ch); }))
                    throw Error(tableAt, "string block '" + table.block +
                                             "' must be 8 hexadecimal digits (language and code page)");
                ExpectBegin("BLOCK \"" + table.block + "\"");
                for (;;) {
                    if (IsEnd(Peek())) {
                        Next();
                        break;
                    }
                    if (!IsWord(Peek(), "VALUE")) throw Error(MissingAt(), "expected VALUE or END in a string block, not " + What(Peek()));
                    Next();
                    std::string key = value("value name");
                    ExpectComma("value text");
                    table.values.emplace_back(key, value("value text"));
                }
                v.stringTables.push_back(std::move(table));
            }
        } else if (SameWord(block, "VarFileInfo")) {
            ExpectBegin("BLOCK \"VarFileInfo\"");
            for (;;) {
                if (IsEnd(Peek())) {
                    Next();
                    break;
                }
                if (!IsWord(Peek(), "VALUE")) throw Error(MissingAt(), "expected VALUE or END in VarFileInfo, not " + What(Peek()));
                Next();
                Location keyAt = Peek().where;
                if (!SameWord(value("value name"), "Translation")) throw Error(keyAt, "VarFileInfo holds only \"Translation\"");
                do {
                    ExpectComma("translation language");
                    uint16_t language = Word("translation language");
                    ExpectComma("translation code page");
                    v.translations.emplace_back(language, Word("translation code page"));
                } while (IsPunct(Peek(), ","));
            }
        } else {
            throw Error(at, "unknown block '" + block + "' (StringFileInfo or VarFileInfo)");
        }
    }
    for (const rc::VersionInfo& other : m_script.versions)
        if (other.id == v.id && other.language == v.language)
            throw Error(where, "VERSIONINFO " + std::to_string(id) + " is defined twice");
    m_script.versions.push_back(std::move(v));
}

// Bytes from a file ("name", beside the script) or from a block of strings
// and numbers (a number is a little-endian WORD, with an L suffix a DWORD).
void Parser::Data(unsigned type, unsigned id, const Location& where) {
    SkipMemoryFlags();
    DataResource r;
    r.type = type;
    r.id = id;
    r.language = m_language;
    if (Peek().kind == TokenKind::String) {
        Token t = Next();
        if (!std::all_of(t.bytes.begin(), t.bytes.end(), [](unsigned char ch) { return ch >= 0x20 && ch < 0x7F; }))
            throw Error(t.where, "a resource file name must be plain ASCII");
        std::string name = t.bytes;
        std::replace(name.begin(), name.end(), '\\', '/');
        fs::path path = fs::path(name).is_absolute() ? fs::path(name) : fs::path(t.where.file).parent_path() / name;
        std::ifstream in(path, std::ios::binary);
        if (!in) throw Error(t.where, "cannot read '" + name + "'");
        std::ostringstream s;
        s << in.rdbuf();
        r.bytes = s.str();
        std::error_code ec;
        fs::path absolute = fs::weakly_canonical(fs::absolute(path), ec);
        m_script.dependencies.insert(ec ? fs::absolute(path).string() : absolute.string());
    } else if (IsBegin(Peek())) {
        Next();
        for (;;) {
            const Token& t = Peek();
            if (IsEnd(t)) {
                Next();
                break;
            }
            if (t.kind == TokenKind::End) throw Error(MissingAt(), "missing END of resource " + std::to_string(id));
            if (t.kind == TokenKind::String) {
                r.bytes += Next().bytes;
            } else {
                bool dword = t.kind == TokenKind::Number && t.isLong;
                uint32_t n = Expression("a number or a string");
                for (int i = 0; i < (dword ? 4 : 2); ++i) r.bytes += static_cast<char>((n >> (8 * i)) & 0xFF);
            }
            SkipComma();
        }
    } else {
        throw Error(MissingAt(), "missing file name or BEGIN of resource " + std::to_string(id));
    }
    for (const DataResource& other : m_script.data)
        if (other.type == r.type && other.id == r.id && other.language == r.language)
            throw Error(where, "resource " + std::to_string(id) + " of type " + std::to_string(type) + " is defined twice");
    m_script.data.push_back(std::move(r));
}

}  // namespace rc
