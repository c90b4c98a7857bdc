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

TEST(SampleTables, StringsDialogsDataAndVersion) {
    HMODULE m = MwRegisterModule(&MwResources_Sample);
    const struct { LANGID lang; UINT id; std::string text; } strings[] = {
        {LANG_ENGLISH_US, 101, "Say \"hi\"\tnow\\"}, {LANG_ENGLISH_US, 102, "line\none"},
        {LANG_ENGLISH_US, 103, "\xB0 \xB0" "AA?"}, {LANG_ENGLISH_US, 104, "\xB0\xC6|"},
        {LANG_ENGLISH_US, 105, "\xA8\xB8\xB9 \x97 \xAB\xBB"}, {LANG_ENGLISH_US, 107, "branch one"},
        {LANG_ENGLISH_US, 108, "hex id"}, {LANG_ENGLISH_US, 109, ""}, {LANG_RUSSIAN, 101, "\xCF\xF0\xE8\xE2\xE5\xF2"},
        {LANG_RUSSIAN, 106, "only English"},
    };
    for (const auto& c : strings) {
        SetThreadUILanguage(c.lang);
        char buf[128] = "";
        const int n = LoadStringA(m, c.id, buf, sizeof buf);
        EXPECT_EQ(c.text, std::string(buf, size_t(n > 0 ? n : 0))) << c.id;
    }
    const MwDialogTemplate* d = MwFindDialogTemplate(m, 1);  // only English exists: it answers
    ASSERT_NE(nullptr, d);
    EXPECT_EQ(std::make_tuple(LANG_ENGLISH_US, true, 0x80C00040u, 0x80u, 77u, 10, 20, 200, 100, 9, 700, 1, 204),
              std::make_tuple(d->language, d->extended, d->style, d->exStyle, d->helpId, int(d->x), int(d->y), int(d->cx),
                              int(d->cy), int(d->fontSize), int(d->fontWeight), int(d->fontItalic), int(d->fontCharset)));
    EXPECT_EQ(std::string("Ex|Tahoma"), std::string(d->caption) + "|" + d->fontName);
    const struct { const char *cls, *text; int id; DWORD style, exStyle, helpId; short x, y, cx, cy; } expected[] = {
        {"Button", "A", 10, 0x50030009, 0, 0, 1, 2, 3, 4}, {"Edit", "", 11, 0x50010080, 0x200, 99, 5, 6, 7, 8},
        {"Static", "left", -1, 0x50000000, 0, 0, -1, -2, 30, 8}, {"msctls_updown32", "x", 12, 0x50010020, 0, 0, 1, 1, 1, 1},
        {"Static", "", 13, 0x50000010, 0, 0, 0, 50, 200, 1}, {"ComboBox", "", 14, 0x50010001, 0, 0, 0, 0, 10, 16},
        {"ListBox", "", 15, 0x50800001, 0, 0, 0, 0, 10, 10}, {"Button", "c", 16, 0x50010002, 0, 0, 0, 0, 10, 10},
        {"Button", "&Go", -1, 0x50010000, 0, 0, 0, 0, 10, 10},
    };
    ASSERT_EQ(std::size(expected), d->controlCount);
    for (size_t i = 0; i < d->controlCount; ++i) {
        const auto& e = expected[i];
        const MwDialogControl& c = d->controls[i];
        EXPECT_EQ(std::make_tuple(std::string(e.cls), std::string(e.text), e.id, e.style, e.exStyle, e.helpId, e.x, e.y, e.cx, e.cy),
                  std::make_tuple(std::string(c.className), std::string(c.text), c.id, c.style, c.exStyle, c.helpId, c.x,
                                  c.y, c.cx, c.cy)) << i;
    }
    const MwDialogTemplate* plain = MwFindDialogTemplate(m, 2);
    ASSERT_NE(nullptr, plain);
    EXPECT_EQ(std::make_tuple(false, 0x80880000u, std::string(), true, size_t(0)),
              std::make_tuple(plain->extended, plain->style, std::string(plain->caption), plain->fontName == nullptr,
                              plain->controlCount));
    EXPECT_EQ(nullptr, MwFindDialogTemplate(m, 3));
    size_t size = 0;
    const void* data = MwFindResourceData(m, MW_RT_RCDATA, 3, &size);
    ASSERT_NE(nullptr, data);
    EXPECT_EQ(std::string("ab\x34\x12\x07\0\0\0\0", 9), std::string(static_cast<const char*>(data), size));
    const MwVersionInfo* v = MwFindVersionInfo(m);
    ASSERT_NE(nullptr, v);
    EXPECT_EQ(std::make_tuple(0x00030004u, 0u, 0x3Fu, 3u, 1u, 2u),
              std::make_tuple(v->fileVersionMS, v->fileVersionLS + v->productVersionMS, v->fileFlagsMask, v->fileFlags,
                              v->stringTableCount, v->translationCount));
    EXPECT_STREQ("041904e3", v->stringTables[0].block);
    EXPECT_STREQ("\xD2\xE5\xF1\xF2", MwFindVersionValue(m, "Comments")) << "the \"\\0\" habit dropped";
    EXPECT_EQ(0x419 * 10000 + 1251, v->translations[0].language * 10000 + v->translations[0].codePage);
    EXPECT_EQ(0x409 * 10000 + 1200, v->translations[1].language * 10000 + v->translations[1].codePage);
    MwUnregisterModule(m);
    SetThreadUILanguage(0);
}

std::string Quote(const std::string& s) {
    std::string q = "'";
    for (char c : s) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return q + "'";
}
// Runs the tool; its exit status, and what it wrote to standard error.
std::pair<int, std::string> Tool(const mwtest::TempDir& dir, const std::string& args) {
    const int raw = std::system((Quote(MW_RC_TOOL) + " " + args + " 2>" + Quote(dir.file("err")) + " >/dev/null").c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, mwtest::ReadFile(dir.file("err"))};
}
std::pair<int, std::string> Compile(const mwtest::TempDir& dir, const std::string& script, std::string extra = "") {
    return Tool(dir, "--module T.dll --symbol T -o " + Quote(dir.file("out.cpp")) + " " + extra + " " + Quote(script));
}

TEST(ResourceCompiler, RejectsWhatItCannotReadWithFileLineAndReason) {
    const std::string t = "STRINGTABLE\nBEGIN\n", dlg = "1 DIALOG 0, 0, 10, 10\n";
    const struct { std::string script; int line; std::string reason; } cases[] = {  // {file}: the script's path
        {"LANGUAGE LANG_ENGLISH, SUBLANG_ENGLISH_US\nFROB 12\n", 2, "unknown statement 'FROB'"},
        {t + "1 \"abc\nEND\n", 3, "unterminated string"}, {t + "\"no id\"\nEND\n", 3, "missing string id"},
        {t + "1 L\"\\x4E00\"\nEND\n", 3, "character '\xE4\xB8\x80' (U+4E00) is not in Windows-1251"},
        {dlg + "BEGIN\nLTEXT \"D\", , 73, 167, 24, 8\nEND\n", 3, "missing control id"},
        {"DIALOG 0, 0, 10, 10\nBEGIN\nEND\n", 1, "missing resource id before DIALOG"},
        {"1 DIALOG 0, 0, 17o, 219\nBEGIN\nEND\n", 1, "bad number '17o'"}, {t + "0x \"a\"\nEND\n", 3, "bad number '0x'"},
        {t + "09 \"a\"\nEND\n", 3, "bad number '09'"},
        {t + "4294967296 \"a\"\nEND\n", 3, "number '4294967296' is out of range (32 bits)"},
        {"1 DIALOG 0, 0, 40000, 10\nBEGIN\nEND\n", 1, "dialog width 40000 is out of range (-32768 to 32767)"},
        {"IDD_X DIALOG 0, 0, 10, 10\nBEGIN\nEND\n", 1, "'IDD_X' is not defined (resource ids must be numbers)"},
        {dlg + "STYLE WS_POPUP | WS_WOBBLY\nBEGIN\nEND\n", 2, "'WS_WOBBLY' is not defined"},
        {t + "1 \"a\\qb\"\nEND\n", 3, "unknown escape sequence '\\q'"},
        {t + "1 \"a\\0b\"\nEND\n", 3, "a NUL character in the text of string 1"},
        {t + "5 \"a\"\n5 \"b\"\nEND\n", 4, "string 5 is defined twice for language 0 (first at {file}:3)"},
        {t + "1 \"a\"\n", 3, "missing END of STRINGTABLE"}, {"#include \"nothere.h\"\n", 1, "cannot open include file 'nothere.h'"},
        {"\n#ifdef X\n", 2, "unterminated #if"}, {"#endif\n", 1, "#endif without #if"},
        {"#if 1\n#error stop here\n#endif\n", 2, "#error stop here"},
        {"#pragma code_page(1251)\n", 1, "scripts are read as UTF-8: only #pragma code_page(65001) is accepted"},
        {"1 MENU\nBEGIN\nEND\n", 1, "MENU resources are not supported"},
        {dlg + "BEGIN\nSLIDER 5, 0, 0, 1, 1\nEND\n", 3, "unknown control statement 'SLIDER'"},
        {"2 24 \"missing.manifest\"\n", 1, "cannot read 'missing.manifest'"},
        {"#define F(x) x\n", 1, "function-like macros are not supported ('F')"},
    };
    // Each length of UTF-8 sequence at both ends of its range; anything not UTF-8 refused, even in a comment.
    const char* chars[][2] = {{"\xC2\x80", "U+0080"}, {"\xDF\xBF", "'\xDF\xBF' (U+07FF)"}, {"\xE0\xA0\x80", "'\xE0\xA0\x80' (U+0800)"},
                              {"\xED\x9F\xBF", "'\xED\x9F\xBF' (U+D7FF)"}, {"\xEE\x80\x80", "'\xEE\x80\x80' (U+E000)"},
                              {"\xEF\xBF\xBD", "'\xEF\xBF\xBD' (U+FFFD)"}, {"\xF0\x90\x80\x80", "'\xF0\x90\x80\x80' (U+10000)"},
                              {"\xF4\x8F\xBF\xBF", "'\xF4\x8F\xBF\xBF' (U+10FFFF)"}};
    mwtest::TempDir dir;
    const std::string script = dir.file("bad.rc");
    auto check = [&](const std::string& text, int line, std::string reason) {
        mwtest::WriteFile(script, text);
        if (size_t at = reason.find("{file}"); at != std::string::npos) reason.replace(at, 6, script);
        EXPECT_EQ(std::make_pair(1, script + ":" + std::to_string(line) + ": " + reason + "\n"), Compile(dir, script)) << text;
        EXPECT_FALSE(mwtest::FileExists(dir.file("out.cpp")));
    };
    for (const auto& c : cases) check(c.script, c.line, c.reason);
    for (const auto& [bytes, what] : chars) check(t + "1 \"" + bytes + "\"\nEND\n", 3, std::string("character ") + what + " is not in Windows-1251");
    for (const char* bad : {"\x80", "\xBF", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80",
                            "\xE6\x97", "\xC2\x41", "\xFF", "\xED\xBF\xBF", "\xF0\x8F\xBF\xBF"})
        check(std::string("// ok\n// ") + bad, 2, "invalid UTF-8 (scripts are read as UTF-8)");
}

TEST(ResourceCompiler, GoodScriptCompilesAndListsWhatItReadAndMistakesAreUsageErrors) {
    mwtest::TempDir dir;
    mwtest::WriteFile(dir.file("ids.h"), "#pragma once\n#define IDS_HELLO 7\n");
    mwtest::WriteFile(dir.file("data.bin"), std::string("\x01\x00\x02", 3));
    mwtest::WriteFile(dir.file("good.rc"), "\xEF\xBB\xBF#pragma code_page(65001)\n#include \"ids.h\"\n"
                                           "LANGUAGE LANG_RUSSIAN, SUBLANG_DEFAULT\nSTRINGTABLE\nBEGIN\n"
                                           "    IDS_HELLO \"\xD0\x9F\xD1\x80\"\nEND\n5 RCDATA \"data.bin\"\n// \xD0\x9F");
    EXPECT_EQ(std::make_pair(0, std::string()), Compile(dir, dir.file("good.rc"), "--depfile " + dir.file("out.d")));
    const std::string deps = mwtest::ReadFile(dir.file("out.d"));
    EXPECT_EQ(0u, deps.find(dir.file("out.cpp") + ":"));
    for (const char* name : {"/good.rc", "/ids.h", "/data.bin"}) EXPECT_NE(std::string::npos, deps.find(name)) << deps;
    const std::string a = Quote(dir.file("good.rc"));
    for (const std::string& args : {std::string(), "--module A.dll --symbol S " + a, "--module A.dll --symbol 1S -o x " + a,
                                    std::string("--frobnicate")}) {
        const auto [status, err] = Tool(dir, args);
        EXPECT_EQ(2u, status + err.find("mw_rc: ")) << args;
    }
    EXPECT_EQ(std::make_pair(1, dir.file("none.rc") + ":1: cannot open the file\n"), Compile(dir, dir.file("none.rc")));
}

}  // namespace
