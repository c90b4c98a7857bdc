// mw_rc, our resource compiler: the tables it wrote from sample.rc at build
// time, and what it says about scripts it cannot read.
#include <mapwright/resources.h>

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>
#include <iterator>
#include <string>
#include <tuple>

#include "testenv.h"

extern const MwModuleResources MwResources_Sample;

namespace {

class SampleTables : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(nullptr, m = MwRegisterModule(&MwResources_Sample)); }
    void TearDown() override {
        MwUnregisterModule(m);
        SetThreadUILanguage(0);
    }
    HMODULE m = nullptr;
};

TEST_F(SampleTables, StringsWithEscapesMacrosAndBranches) {
    const struct {
        LANGID language;
        UINT id;
        std::string text;  // "" : none
    } cases[] = {
        {LANG_ENGLISH_US, 101, "Say \"hi\"\tnow\\"},          // doubled quote, \t, \\; id from a macro sum
        {LANG_ENGLISH_US, 102, "line\none"},                  // no comma after the id
        {LANG_ENGLISH_US, 103, "\xB0 \xB0" "AA?"},            // octal and hex escapes are bytes
        {LANG_ENGLISH_US, 104, "\xB0\xC6|"},                  // in L"" a hex escape is a character
        {LANG_ENGLISH_US, 105, "\xA8\xB8\xB9 \x97 \xAB\xBB"},  // UTF-8 to Windows-1251
        {LANG_ENGLISH_US, 107, "branch one"},                 // #if with defined()
        {LANG_ENGLISH_US, 108, "hex id"},
        {LANG_ENGLISH_US, 109, ""},
        {LANG_RUSSIAN, 101, "\xCF\xF0\xE8\xE2\xE5\xF2"},
        {LANG_RUSSIAN, 106, "only English"},
    };
    for (const auto& c : cases) {
        SetThreadUILanguage(c.language);
        char buf[128] = "";
        const int n = LoadStringA(m, c.id, buf, sizeof buf);
        EXPECT_EQ(c.text, std::string(buf, size_t(n > 0 ? n : 0))) << c.id;
    }
}

TEST_F(SampleTables, DialogsWithStylesAddedAndTakenAway) {
    SetThreadUILanguage(LANG_RUSSIAN);  // only English exists: it answers
    const MwDialogTemplate* d = MwFindDialogTemplate(m, 1);
    ASSERT_NE(nullptr, d);
    EXPECT_EQ(LANG_ENGLISH_US, d->language);
    EXPECT_TRUE(d->extended);
    EXPECT_EQ(0x80C00040u, d->style);  // DS_SETFONT | WS_POPUP | WS_CAPTION
    EXPECT_EQ(0x80u, d->exStyle);
    EXPECT_EQ(77u, d->helpId);
    EXPECT_EQ(std::make_tuple(10, 20, 200, 100), std::make_tuple(d->x, d->y, d->cx, d->cy));
    EXPECT_STREQ("Ex", d->caption);
    EXPECT_STREQ("Tahoma", d->fontName);
    EXPECT_EQ(std::make_tuple(9, 700, 1, 204), std::make_tuple(d->fontSize, d->fontWeight, d->fontItalic,
                                                            d->fontCharset));
    const struct {
        const char *cls, *text;
        int id;
        DWORD style, exStyle, helpId;
        short x, y, cx, cy;
    } expected[] = {  // WS_CHILD | WS_VISIBLE is 0x50000000; each statement adds its bits
        {"Button", "A", 10, 0x50030009, 0, 0, 1, 2, 3, 4},         // WS_GROUP added
        {"Edit", "", 11, 0x50010080, 0x200, 99, 5, 6, 7, 8},       // NOT WS_BORDER
        {"Static", "left", -1, 0x50000000, 0, 0, -1, -2, 30, 8},   // NOT WS_GROUP
        {"msctls_updown32", "x", 12, 0x50010020, 0, 0, 1, 1, 1, 1},
        {"Static", "", 13, 0x50000010, 0, 0, 0, 50, 200, 1},       // unquoted class spelled
        {"ComboBox", "", 14, 0x50010001, 0, 0, 0, 0, 10, 16},      // a height computed
        {"ListBox", "", 15, 0x50800001, 0, 0, 0, 0, 10, 10},
        {"Button", "c", 16, 0x50010002, 0, 0, 0, 0, 10, 10},
        {"Button", "&Go", -1, 0x50010000, 0, 0, 0, 0, 10, 10},     // id 0xFFFF
    };
    ASSERT_EQ(std::size(expected), d->controlCount);
    for (size_t i = 0; i < d->controlCount; ++i) {
        const auto& e = expected[i];
        const MwDialogControl& c = d->controls[i];
        EXPECT_EQ(std::make_tuple(std::string(e.cls), std::string(e.text), e.id, e.style, e.exStyle, e.helpId),
                  std::make_tuple(std::string(c.className), std::string(c.text), c.id, c.style, c.exStyle, c.helpId))
            << i;
        EXPECT_EQ(std::make_tuple(e.x, e.y, e.cx, e.cy), std::make_tuple(c.x, c.y, c.cx, c.cy)) << i;
    }
    const MwDialogTemplate* plain = MwFindDialogTemplate(m, 2);
    ASSERT_NE(nullptr, plain);
    EXPECT_FALSE(plain->extended);
    EXPECT_EQ(0x80880000u, plain->style) << "WS_POPUP | WS_BORDER | WS_SYSMENU without STYLE";
    EXPECT_STREQ("", plain->caption);
    EXPECT_EQ(nullptr, plain->fontName);
    EXPECT_EQ(0u, plain->controlCount);
    EXPECT_EQ(nullptr, MwFindDialogTemplate(m, 3));
}

TEST_F(SampleTables, DataAndVersion) {
    size_t size = 0;
    const void* data = MwFindResourceData(m, MW_RT_RCDATA, 3, &size);
    ASSERT_NE(nullptr, data);
    EXPECT_EQ(std::string("ab\x34\x12\x07\0\0\0\0", 9), std::string(static_cast<const char*>(data), size));
    EXPECT_EQ(nullptr, MwFindResourceData(m, MW_RT_MANIFEST, 3, &size));
    const MwVersionInfo* v = MwFindVersionInfo(m);
    ASSERT_NE(nullptr, v);
    EXPECT_EQ(0, v->language);
    EXPECT_EQ(0x00030004u, v->fileVersionMS) << "\"3,4\": the missing parts are 0";
    EXPECT_EQ(0u, v->fileVersionLS + v->productVersionMS);
    EXPECT_EQ(0x3Fu, v->fileFlagsMask);
    EXPECT_EQ(3u, v->fileFlags);
    ASSERT_EQ(1u, v->stringTableCount);
    EXPECT_STREQ("041904e3", v->stringTables[0].block);
    EXPECT_STREQ("\xD2\xE5\xF1\xF2", MwFindVersionValue(m, "Comments")) << "the \"\\0\" habit dropped";
    ASSERT_EQ(2u, v->translationCount);
    EXPECT_EQ(0x419 * 10000 + 1251, v->translations[0].language * 10000 + v->translations[0].codePage);
    EXPECT_EQ(0x409 * 10000 + 1200, v->translations[1].language * 10000 + v->translations[1].codePage);
}

std::string Quote(const std::string& s) {
    std::string q = "'";
    for (char c : s) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return q + "'";
}

// Runs the tool; its exit status, and what it wrote to standard error.
std::pair<int, std::string> RunTool(const mwtest::TempDir& dir, const std::string& arguments) {
    const int raw = std::system((Quote(MW_RC_TOOL) + " " + arguments + " 2>" + Quote(dir.file("err")) +
                                 " >/dev/null").c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, mwtest::ReadFile(dir.file("err"))};
}
std::pair<int, std::string> Compile(const mwtest::TempDir& dir, const std::string& script, std::string extra = "") {
    return RunTool(dir, "--module T.dll --symbol T -o " + Quote(dir.file("out.cpp")) + " " + extra + " " + Quote(script));
}

TEST(ResourceCompiler, RejectsWhatItCannotReadWithFileLineAndReason) {
    const std::string table = "STRINGTABLE\nBEGIN\n    ", dialog = "1 DIALOG 0, 0, 10, 10\n";
    const struct {
        std::string script;
        int line;
        std::string reason;  // "{file}" stands for the script's path
        std::string header = "";  // written as extra.h beside the script
    } cases[] = {
        {"LANGUAGE LANG_ENGLISH, SUBLANG_ENGLISH_US\nFROB 12\n", 2, "unknown statement 'FROB'"},
        {table + "1 \"abc\nEND\n", 3, "unterminated string"},
        {table + "1 L\"\\x4E00\"\nEND\n", 3, "character '\xE4\xB8\x80' (U+4E00) is not in Windows-1251"},
        {table + "\"no id\"\nEND\n", 3, "missing string id"},
        {dialog + "BEGIN\n    LTEXT \"D\", , 73, 167, 24, 8\nEND\n", 3, "missing control id"},
        {"DIALOG 0, 0, 10, 10\nBEGIN\nEND\n", 1, "missing resource id before DIALOG"},
        {"1 DIALOG 0, 0, 17o, 219\nBEGIN\nEND\n", 1, "bad number '17o'"},
        {table + "0x \"a\"\nEND\n", 3, "bad number '0x'"},
        {table + "09 \"a\"\nEND\n", 3, "bad number '09'"},
        {table + "4294967296 \"a\"\nEND\n", 3, "number '4294967296' is out of range (32 bits)"},
        {"1 DIALOG 0, 0, 40000, 10\nBEGIN\nEND\n", 1, "dialog width 40000 is out of range (-32768 to 32767)"},
        {"IDD_X DIALOG 0, 0, 10, 10\nBEGIN\nEND\n", 1, "'IDD_X' is not defined (resource ids must be numbers)"},
        {dialog + "STYLE WS_POPUP | WS_WOBBLY\nBEGIN\nEND\n", 2, "'WS_WOBBLY' is not defined"},
        {table + "1 \"a\\qb\"\nEND\n", 3, "unknown escape sequence '\\q'"},
        {table + "1 \"a\\0b\"\nEND\n", 3, "a NUL character in the text of string 1"},
        {table + "5 \"a\"\n    5 \"b\"\nEND\n", 4, "string 5 is defined twice for language 0 (first at {file}:3)"},
        {table + "1 \"a\"\n", 3, "missing END of STRINGTABLE"},
        {"#include \"nothere.h\"\n", 1, "cannot open include file 'nothere.h'"},
        {"\n#ifdef X\n", 2, "unterminated #if"},
        {"#endif\n", 1, "#endif without #if"},
        {"#if 1\n#error stop here\n#endif\n", 2, "#error stop here"},
        {"#pragma code_page(1251)\n", 1, "scripts are read as UTF-8: only #pragma code_page(65001) is accepted"},
        {"1 MENU\nBEGIN\nEND\n", 1, "MENU resources are not supported"},
        {"1 DIALOG 0, 0, 1, 1\nBEGIN\n    SLIDER 5, 0, 0, 1, 1\nEND\n", 3, "unknown control statement 'SLIDER'"},
        {"2 24 \"missing.manifest\"\n", 1, "cannot read 'missing.manifest'"},
        {"#include \"extra.h\"\n", 2, "function-like macros are not supported ('F')", "// ids\n#define F(x) x\n"},
    };
    mwtest::TempDir dir;
    const std::string script = dir.file("bad.rc");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.script);
        mwtest::WriteFile(script, c.script);
        mwtest::WriteFile(dir.file("extra.h"), c.header);
        std::string reason = c.reason;
        if (size_t at = reason.find("{file}"); at != std::string::npos) reason.replace(at, 6, script);
        const std::string file = c.header.empty() ? script : dir.file("extra.h");
        EXPECT_EQ(std::make_pair(1, file + ":" + std::to_string(c.line) + ": " + reason + "\n"), Compile(dir, script));
        EXPECT_FALSE(mwtest::FileExists(dir.file("out.cpp")));
    }
    // Each length of UTF-8 sequence, at both ends of its range, decoded.
    const char* chars[][2] = {{"\xC2\x80", "U+0080"}, {"\xDF\xBF", "'\xDF\xBF' (U+07FF)"},
                              {"\xE0\xA0\x80", "'\xE0\xA0\x80' (U+0800)"}, {"\xE6\x97\xA5", "'\xE6\x97\xA5' (U+65E5)"},
                              {"\xED\x9F\xBF", "'\xED\x9F\xBF' (U+D7FF)"}, {"\xEE\x80\x80", "'\xEE\x80\x80' (U+E000)"},
                              {"\xEF\xBF\xBD", "'\xEF\xBF\xBD' (U+FFFD)"}, {"\xF0\x90\x80\x80", "'\xF0\x90\x80\x80' (U+10000)"},
                              {"\xF4\x8F\xBF\xBF", "'\xF4\x8F\xBF\xBF' (U+10FFFF)"}};
    for (const auto& [bytes, described] : chars) {
        mwtest::WriteFile(script, table + "1 \"" + bytes + "\"\nEND\n");
        EXPECT_EQ(std::make_pair(1, script + ":3: character " + described + " is not in Windows-1251\n"),
                  Compile(dir, script)) << described;
    }
    // Anything that is not UTF-8 is refused before a token is read, even in a comment.
    for (const char* bad : {"\x80", "\xBF", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                            "\xF5\x80\x80\x80", "\xE6\x97", "\xC2\x41", "\xFF",
                            "\xED\xBF\xBF", "\xF0\x8F\xBF\xBF"}) {
        mwtest::WriteFile(script, std::string("// ok\n// ") + bad);
        EXPECT_EQ(std::make_pair(1, script + ":2: invalid UTF-8 (scripts are read as UTF-8)\n"), Compile(dir, script))
            << std::hex << int(static_cast<unsigned char>(bad[0]));
    }
}

TEST(ResourceCompiler, GoodScriptCompilesAndListsWhatItRead) {
    mwtest::TempDir dir;
    mwtest::WriteFile(dir.file("ids.h"), "#pragma once\n#define IDS_HELLO 7\n");
    mwtest::WriteFile(dir.file("data.bin"), std::string("\x01\x00\x02", 3));
    mwtest::WriteFile(dir.file("good.rc"), "\xEF\xBB\xBF#pragma code_page(65001)\n#include \"ids.h\"\n"
                                           "LANGUAGE LANG_RUSSIAN, SUBLANG_DEFAULT\nSTRINGTABLE\nBEGIN\n"
                                           "    IDS_HELLO \"\xD0\x9F\xD1\x80\"\nEND\n5 RCDATA \"data.bin\"\n// \xD0\x9F");
    EXPECT_EQ(std::make_pair(0, std::string()), Compile(dir, dir.file("good.rc"), "--depfile " + dir.file("out.d")));
    EXPECT_TRUE(mwtest::FileExists(dir.file("out.cpp")));
    const std::string deps = mwtest::ReadFile(dir.file("out.d"));
    EXPECT_EQ(0u, deps.find(dir.file("out.cpp") + ":"));
    for (const char* name : {"/good.rc", "/ids.h", "/data.bin"}) EXPECT_NE(std::string::npos, deps.find(name)) << deps;
}

TEST(ResourceCompiler, CommandLineMistakesAreUsageErrors) {
    mwtest::TempDir dir;
    mwtest::WriteFile(dir.file("a.rc"), "");
    const std::string a = Quote(dir.file("a.rc")), o = " -o " + Quote(dir.file("o.cpp")) + " ";
    for (const std::string& arguments : {std::string(), "--module A.dll --symbol S " + a,
                                         "--module A.dll --symbol 1S" + o + a, std::string("--frobnicate")}) {
        const auto [status, err] = RunTool(dir, arguments);
        EXPECT_EQ(2, status) << arguments;
        EXPECT_EQ(0u, err.find("mw_rc: ")) << arguments;
    }
    EXPECT_EQ(std::make_pair(1, dir.file("none.rc") + ":1: cannot open the file\n"), Compile(dir, dir.file("none.rc")));
}

}  // namespace
