// mw_rc, our resource compiler: the tables it wrote from sample.rc at build
// time, and what it says about scripts it cannot read.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>
#include <string>
#include <vector>

#include <mapwright/resources.h>

#include "testenv.h"

extern const MwModuleResources MwResources_Sample;

namespace {

std::string Bytes(const char* s) { return s ? std::string(s) : std::string("<null>"); }

// --- The tables of sample.rc --------------------------------------------------

class SampleTables : public ::testing::Test {
protected:
    void SetUp() override {
        m_module = MwRegisterModule(&MwResources_Sample);
        ASSERT_NE(nullptr, m_module);
    }
    void TearDown() override {
        MwUnregisterModule(m_module);
        SetThreadUILanguage(0);
    }
    std::string Load(UINT id) {
        char buffer[128];
        int n = LoadStringA(m_module, id, buffer, sizeof buffer);
        return n > 0 ? std::string(buffer, static_cast<size_t>(n)) : std::string("<none>");
    }
    HMODULE m_module = nullptr;
};

TEST_F(SampleTables, StringsWithEscapesMacrosAndBranches) {
    struct Case {
        LANGID language;
        UINT id;
        std::string expected;
        const char* why;
    };
    const Case cases[] = {
        {LANG_ENGLISH_US, 101, "Say \"hi\"\tnow\\", "doubled quote, \\t, \\\\; id from a macro sum"},
        {LANG_ENGLISH_US, 102, "line\none", "\\n; no comma after the id"},
        {LANG_ENGLISH_US, 103, "\xB0 \xB0" "AA?", "octal and hex escapes are Windows-1251 bytes"},
        {LANG_ENGLISH_US, 104, "\xB0\xC6|", "in L\"...\" a hex escape is a Unicode character"},
        {LANG_ENGLISH_US, 105, "\xA8\xB8\xB9 \x97 \xAB\xBB", "UTF-8 letters and punctuation to Windows-1251"},
        {LANG_ENGLISH_US, 107, "branch one", "#if with defined() chose the first branch"},
        {LANG_ENGLISH_US, 108, "hex id", "hexadecimal id"},
        {LANG_ENGLISH_US, 109, "<none>", "nothing else"},
        {LANG_RUSSIAN, 101, "\xCF\xF0\xE8\xE2\xE5\xF2", "the Russian table"},
        {LANG_RUSSIAN, 106, "only English", "no Russian entry: English answers"},
    };
    for (const Case& c : cases) {
        SetThreadUILanguage(c.language);
        EXPECT_EQ(c.expected, Load(c.id)) << c.id << ": " << c.why;
    }
}

TEST_F(SampleTables, ExtendedDialogWithStylesAddedAndTakenAway) {
    SetThreadUILanguage(LANG_RUSSIAN);  // only English exists: it answers
    const MwDialogTemplate* d = MwFindDialogTemplate(m_module, 1);
    ASSERT_NE(nullptr, d);
    EXPECT_EQ(LANG_ENGLISH_US, d->language);
    EXPECT_TRUE(d->extended);
    EXPECT_EQ(0x80C00040u, d->style);  // DS_SETFONT | WS_POPUP | WS_CAPTION
    EXPECT_EQ(0x80u, d->exStyle);      // WS_EX_TOOLWINDOW
    EXPECT_EQ(77u, d->helpId);
    EXPECT_EQ(10, d->x);
    EXPECT_EQ(20, d->y);
    EXPECT_EQ(200, d->cx);
    EXPECT_EQ(100, d->cy);
    EXPECT_STREQ("Ex", d->caption);
    EXPECT_STREQ("Tahoma", d->fontName);
    EXPECT_EQ(9, d->fontSize);
    EXPECT_EQ(700, d->fontWeight);
    EXPECT_EQ(1, d->fontItalic);
    EXPECT_EQ(204, d->fontCharset);

    struct Expected {
        const char* className;
        const char* text;
        int id;
        DWORD style;
        DWORD exStyle;
        DWORD helpId;
        short x, y, cx, cy;
        const char* why;
    };
    // WS_CHILD | WS_VISIBLE is 0x50000000; each statement adds its own bits.
    const Expected expected[] = {
        {"Button", "A", 10, 0x50030009, 0, 0, 1, 2, 3, 4, "BS_AUTORADIOBUTTON | WS_TABSTOP, WS_GROUP added"},
        {"Edit", "", 11, 0x50010080, 0x200, 99, 5, 6, 7, 8, "NOT WS_BORDER takes the default border away"},
        {"Static", "left", -1, 0x50000000, 0, 0, -1, -2, 30, 8, "NOT WS_GROUP; negative coordinates"},
        {"msctls_updown32", "x", 12, 0x50010020, 0, 0, 1, 1, 1, 1, "a class of the script's, as written"},
        {"Static", "", 13, 0x50000010, 0, 0, 0, 50, 200, 1, "an unquoted system class gets its spelling"},
        {"ComboBox", "", 14, 0x50010001, 0, 0, 0, 0, 10, 16, "CBS_SIMPLE | WS_TABSTOP; a height computed"},
        {"ListBox", "", 15, 0x50800001, 0, 0, 0, 0, 10, 10, "LBS_NOTIFY | WS_BORDER"},
        {"Button", "c", 16, 0x50010002, 0, 0, 0, 0, 10, 10, "BS_CHECKBOX | WS_TABSTOP"},
        {"Button", "&Go", -1, 0x50010000, 0, 0, 0, 0, 10, 10, "id 0xFFFF is -1"},
    };
    ASSERT_EQ(sizeof expected / sizeof expected[0], d->controlCount);
    for (size_t i = 0; i < d->controlCount; ++i) {
        const Expected& e = expected[i];
        const MwDialogControl& c = d->controls[i];
        SCOPED_TRACE(e.why);
        EXPECT_STREQ(e.className, c.className);
        EXPECT_STREQ(e.text, c.text);
        EXPECT_EQ(e.id, c.id);
        EXPECT_EQ(e.style, c.style) << std::hex << c.style;
        EXPECT_EQ(e.exStyle, c.exStyle);
        EXPECT_EQ(e.helpId, c.helpId);
        EXPECT_EQ(e.x, c.x);
        EXPECT_EQ(e.y, c.y);
        EXPECT_EQ(e.cx, c.cx);
        EXPECT_EQ(e.cy, c.cy);
    }
}

TEST_F(SampleTables, PlainDialogTakesTheDefaultStyle) {
    const MwDialogTemplate* d = MwFindDialogTemplate(m_module, 2);
    ASSERT_NE(nullptr, d);
    EXPECT_FALSE(d->extended);
    EXPECT_EQ(0x80880000u, d->style);  // WS_POPUP | WS_BORDER | WS_SYSMENU without STYLE
    EXPECT_STREQ("", d->caption);
    EXPECT_EQ(nullptr, d->fontName);
    EXPECT_EQ(0u, d->controlCount);
    EXPECT_EQ(nullptr, MwFindDialogTemplate(m_module, 3));
}

TEST_F(SampleTables, DataBlockOfStringsWordsAndDwords) {
    size_t size = 0;
    const void* data = MwFindResourceData(m_module, MW_RT_RCDATA, 3, &size);
    ASSERT_NE(nullptr, data);
    const std::string expected("ab\x34\x12\x07\x00\x00\x00\x00", 9);  // 0x1234 a WORD, 7L a DWORD, little-endian
    EXPECT_EQ(expected, std::string(static_cast<const char*>(data), size));
    EXPECT_EQ(nullptr, MwFindResourceData(m_module, MW_RT_MANIFEST, 3, &size));
}

TEST_F(SampleTables, VersionResource) {
    const MwVersionInfo* v = MwFindVersionInfo(m_module);
    ASSERT_NE(nullptr, v);
    EXPECT_EQ(0, v->language);
    EXPECT_EQ(0x00030004u, v->fileVersionMS);  // "3,4": the missing parts are 0
    EXPECT_EQ(0u, v->fileVersionLS);
    EXPECT_EQ(0u, v->productVersionMS);
    EXPECT_EQ(0x3Fu, v->fileFlagsMask);
    EXPECT_EQ(3u, v->fileFlags);
    ASSERT_EQ(1u, v->stringTableCount);
    EXPECT_STREQ("041904e3", v->stringTables[0].block);
    EXPECT_EQ("\xD2\xE5\xF1\xF2", Bytes(MwFindVersionValue(m_module, "Comments")));  // the "\0" habit dropped
    ASSERT_EQ(2u, v->translationCount);
    EXPECT_EQ(0x419, v->translations[0].language);
    EXPECT_EQ(1251, v->translations[0].codePage);
    EXPECT_EQ(0x409, v->translations[1].language);
    EXPECT_EQ(1200, v->translations[1].codePage);
}

// --- Running the tool ---------------------------------------------------------

struct ToolRun {
    int status;
    std::string err;
    bool wroteOutput;
};

std::string Quote(const std::string& s) {
    std::string q = "'";
    for (char c : s) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return q + "'";
}

ToolRun Compile(const mwtest::TempDir& dir, const std::string& script, const std::string& extra = "") {
    const std::string out = dir.file("out.cpp");
    const std::string err = dir.file("err.txt");
    std::string command = Quote(MW_RC_TOOL) + " --module Test.dll --symbol TestResources -o " + Quote(out) +
                          " " + extra + " " + Quote(script) + " 2>" + Quote(err) + " >/dev/null";
    int raw = std::system(command.c_str());
    ToolRun r{};
    r.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    r.err = mwtest::ReadFile(err);
    r.wroteOutput = mwtest::FileExists(out);
    return r;
}

TEST(ResourceCompiler, RejectsWhatItCannotReadWithFileLineAndReason) {
    struct Case {
        const char* why;
        std::string script;
        int line;
        std::string reason;  // "{file}" stands for the script's path
        std::string header = "";  // written as extra.h beside the script
    };
    const Case cases[] = {
        {"unknown statement", "LANGUAGE LANG_ENGLISH, SUBLANG_ENGLISH_US\nFROBNICATE 12\n", 2,
         "unknown statement 'FROBNICATE'"},
        {"unterminated string", "STRINGTABLE\nBEGIN\n    1 \"abc\nEND\n", 3, "unterminated string"},
        {"character outside Windows-1251", "STRINGTABLE\nBEGIN\n    1 \"\xE6\x97\xA5\xE6\x9C\xAC\"\nEND\n", 3,
         "character '\xE6\x97\xA5' (U+65E5) is not in Windows-1251"},
        {"wide escape outside Windows-1251", "STRINGTABLE\nBEGIN\n    1 L\"\\x4E00\"\nEND\n", 3,
         "character '\xE4\xB8\x80' (U+4E00) is not in Windows-1251"},
        {"missing string id", "STRINGTABLE\nBEGIN\n    \"no id\"\nEND\n", 3, "missing string id"},
        {"missing control id", "1 DIALOG 0, 0, 10, 10\nBEGIN\n    LTEXT \"Datum\", , 73, 167, 24, 8\nEND\n", 3,
         "missing control id"},
        {"missing resource id", "DIALOG 0, 0, 10, 10\nBEGIN\nEND\n", 1, "missing resource id before DIALOG"},
        {"bad number", "1 DIALOG 0, 0, 17o, 219\nBEGIN\nEND\n", 1, "bad number '17o'"},
        {"bad hexadecimal number", "STRINGTABLE\nBEGIN\n    0x \"a\"\nEND\n", 3, "bad number '0x'"},
        {"bad octal number", "STRINGTABLE\nBEGIN\n    09 \"a\"\nEND\n", 3, "bad number '09'"},
        {"number beyond 32 bits", "STRINGTABLE\nBEGIN\n    4294967296 \"a\"\nEND\n", 3,
         "number '4294967296' is out of range (32 bits)"},
        {"coordinate beyond a short", "1 DIALOG 0, 0, 40000, 10\nBEGIN\nEND\n", 1,
         "dialog width 40000 is out of range (-32768 to 32767)"},
        {"name never defined", "IDD_MISSING DIALOG 0, 0, 10, 10\nBEGIN\nEND\n", 1,
         "'IDD_MISSING' is not defined (resource ids must be numbers)"},
        {"undefined style", "1 DIALOG 0, 0, 10, 10\nSTYLE WS_POPUP | WS_WOBBLY\nBEGIN\nEND\n", 2,
         "'WS_WOBBLY' is not defined"},
        {"unknown escape", "STRINGTABLE\nBEGIN\n    1 \"a\\qb\"\nEND\n", 3, "unknown escape sequence '\\q'"},
        {"NUL in a string", "STRINGTABLE\nBEGIN\n    1 \"a\\0b\"\nEND\n", 3, "a NUL character in the text of string 1"},
        {"not UTF-8", "// fine\nSTRINGTABLE\nBEGIN\n    1 \"\xC0\xFF\"\nEND\n", 4, "invalid UTF-8 (scripts are read as UTF-8)"},
        {"string defined twice", "STRINGTABLE\nBEGIN\n    5 \"a\"\n    5 \"b\"\nEND\n", 4,
         "string 5 is defined twice for language 0 (first at {file}:3)"},
        {"missing END", "STRINGTABLE\nBEGIN\n    1 \"a\"\n", 3, "missing END of STRINGTABLE"},
        {"missing include", "#include \"nothere.h\"\n", 1, "cannot open include file 'nothere.h'"},
        {"unterminated #if", "\n#ifdef X\nSTRINGTABLE\nBEGIN\nEND\n", 2, "unterminated #if"},
        {"#endif alone", "#endif\n", 1, "#endif without #if"},
        {"#error", "#if 1\n#error stop here\n#endif\n", 2, "#error stop here"},
        {"other code page", "#pragma code_page(1251)\n", 1,
         "scripts are read as UTF-8: only #pragma code_page(65001) is accepted"},
        {"unsupported resource", "1 MENU\nBEGIN\nEND\n", 1, "MENU resources are not supported"},
        {"unknown control", "1 DIALOG 0, 0, 1, 1\nBEGIN\n    SLIDER 5, 0, 0, 1, 1\nEND\n", 3,
         "unknown control statement 'SLIDER'"},
        {"unreadable data file", "2 24 \"missing.manifest\"\n", 1, "cannot read 'missing.manifest'"},
        {"error inside an included header", "#include \"extra.h\"\n", 2,
         "function-like macros are not supported ('F')", "// ids\n#define F(x) x\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        mwtest::TempDir dir;
        const std::string script = dir.file("bad.rc");
        mwtest::WriteFile(script, c.script);
        std::string file = script;
        if (!c.header.empty()) {
            mwtest::WriteFile(dir.file("extra.h"), c.header);
            file = dir.file("extra.h");
        }
        std::string reason = c.reason;
        if (size_t at = reason.find("{file}"); at != std::string::npos) reason.replace(at, 6, script);
        const ToolRun r = Compile(dir, script);
        EXPECT_EQ(1, r.status);
        EXPECT_EQ(file + ":" + std::to_string(c.line) + ": " + reason + "\n", r.err);
        EXPECT_FALSE(r.wroteOutput);
    }
}

TEST(ResourceCompiler, GoodScriptCompilesAndListsWhatItRead) {
    mwtest::TempDir dir;
    mwtest::WriteFile(dir.file("ids.h"), "#pragma once\n#define IDS_HELLO 7\n");
    mwtest::WriteFile(dir.file("data.bin"), std::string("\x01\x00\x02", 3));
    mwtest::WriteFile(dir.file("good.rc"),
                      "#pragma code_page(65001)\n#include \"ids.h\"\nLANGUAGE LANG_RUSSIAN, SUBLANG_DEFAULT\n"
                      "STRINGTABLE\nBEGIN\n    IDS_HELLO \"\xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82\"\nEND\n"
                      "5 RCDATA \"data.bin\"\n");
    const ToolRun r = Compile(dir, dir.file("good.rc"), "--depfile " + Quote(dir.file("out.d")));
    EXPECT_EQ(0, r.status);
    EXPECT_EQ("", r.err);
    EXPECT_TRUE(r.wroteOutput);
    const std::string deps = mwtest::ReadFile(dir.file("out.d"));
    EXPECT_EQ(0u, deps.find(dir.file("out.cpp") + ":"));
    for (const char* name : {"good.rc", "ids.h", "data.bin"})
        EXPECT_NE(std::string::npos, deps.find("/" + std::string(name))) << name << " in\n" << deps;
}

TEST(ResourceCompiler, CommandLineMistakesAreUsageErrors) {
    mwtest::TempDir dir;
    mwtest::WriteFile(dir.file("a.rc"), "");
    const std::string tool = Quote(MW_RC_TOOL);
    struct Case {
        std::string arguments;
        const char* why;
    };
    const Case cases[] = {
        {"", "nothing given"},
        {"--module A.dll --symbol S " + Quote(dir.file("a.rc")), "no output"},
        {"--module A.dll --symbol 1S -o " + Quote(dir.file("o.cpp")) + " " + Quote(dir.file("a.rc")), "bad symbol"},
        {"--frobnicate", "unknown option"},
    };
    for (const Case& c : cases) {
        int raw = std::system((tool + " " + c.arguments + " 2>" + Quote(dir.file("err")) + " >/dev/null").c_str());
        EXPECT_TRUE(WIFEXITED(raw) && WEXITSTATUS(raw) == 2) << c.why;
        EXPECT_EQ(0u, mwtest::ReadFile(dir.file("err")).find("mw_rc: ")) << c.why;
    }
    // A missing script is the script's own error: file, line and reason.
    const ToolRun r = Compile(dir, dir.file("none.rc"));
    EXPECT_EQ(1, r.status);
    EXPECT_EQ(dir.file("none.rc") + ":1: cannot open the file\n", r.err);
}

}  // namespace
