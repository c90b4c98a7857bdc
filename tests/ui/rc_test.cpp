// mw_rc: the tables it wrote from sample.rc, and its errors.
#include <mapwright/resources.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <cstdlib>
#include <string>
#include <tuple>
#include "testenv.h"

extern const MwModuleResources MwResources_Sample;

namespace {
TEST(SampleTables, StringsDialogsDataAndVersion) {
    HMODULE m = MwRegisterModule(&MwResources_Sample);
    const struct { LANGID lang; UINT id; std::string text; } strings[] = {
        {LANG_ENGLISH_US, 101, "Say \"hi\"\tnow\\"}, {LANG_ENGLISH_US, 103, "\xB0 \xB0" "AA?"},
        {LANG_ENGLISH_US, 104, "\xB0\xC6|"}, {LANG_ENGLISH_US, 105, "\xA8\xB8\xB9 \x97 \xAB\xBB"}, 
        {LANG_RUSSIAN, 101, "\xCF\xF0\xE8\xE2\xE5\xF2"}, {LANG_RUSSIAN, 106, "only English"},
    };
    for (const auto& c : strings) {
        SetThreadUILanguage(c.lang);
        char buf[64] = "";
        EXPECT_EQ(c.text, std::string(buf, size_t(LoadStringA(m, c.id, buf, sizeof buf)))) << c.id;
    }
    const MwDialogTemplate* d = MwFindDialogTemplate(m, 1);  // only English exists: it answers
    ASSERT_NE(nullptr, d);
    EXPECT_EQ(std::make_tuple(LANG_ENGLISH_US, true, 0x80C00040u, 0x80u, 77u, 10, 100, 700, 204, 9u),
              std::make_tuple(d->language, d->extended, d->style, d->exStyle, d->helpId, int(d->x), int(d->cy),
                              int(d->fontWeight), int(d->fontCharset), unsigned(d->controlCount)));
    EXPECT_EQ(std::string("Ex|Tahoma"), std::string(d->caption) + "|" + d->fontName);
    const struct { size_t i; const char* cls; int id; DWORD style, exStyle, helpId; short x, cy; } expected[] = {
        {0, "Button", 10, 0x50030009, 0, 0, 1, 4}, {1, "Edit", 11, 0x50010080, 0x200, 99, 5, 8}, {5, "ComboBox", 14, 0x50010001, 0, 0, 0, 16},
    };
    for (const auto& e : expected) {
        const MwDialogControl& c = d->controls[e.i];
        EXPECT_EQ(std::make_tuple(std::string(e.cls), e.id, e.style, e.exStyle, e.helpId, e.x, e.cy),
                  std::make_tuple(std::string(c.className), c.id, c.style, c.exStyle, c.helpId, c.x, c.cy)) << e.i;
    }
    size_t size = 0;
    const void* data = MwFindResourceData(m, MW_RT_RCDATA, 3, &size);
    ASSERT_NE(nullptr, data);
    EXPECT_EQ(std::string("ab\x34\x12\x07\0\0\0\0", 9), std::string(static_cast<const char*>(data), size));
    ASSERT_NE(nullptr, MwFindVersionInfo(m));
    EXPECT_EQ(std::make_pair(0x00030004u, 3u), std::make_pair(MwFindVersionInfo(m)->fileVersionMS, MwFindVersionInfo(m)->fileFlags));
    EXPECT_STREQ("\xD2\xE5\xF1\xF2", MwFindVersionValue(m, "Comments"));
    MwUnregisterModule(m);
    SetThreadUILanguage(0);
}

std::string Quote(const std::string& s) { return "'" + s + "'"; }
// Runs the tool; its exit status, and what it wrote to standard error.
std::pair<int, std::string> Tool(const mwtest::TempDir& dir, const std::string& args) {
    const int raw = std::system((Quote(MW_RC_TOOL) + " " + args + " 2>" + Quote(dir.file("err")) + " >/dev/null").c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, mwtest::ReadFile(dir.file("err"))};
}
std::pair<int, std::string> Compile(const mwtest::TempDir& dir, const std::string& script, std::string extra = "") {
    return Tool(dir, "--module T.dll --symbol T -o " + Quote(dir.file("out.cpp")) + " " + extra + " " + Quote(script));
}

TEST(ResourceCompiler, ErrorsGiveFileLineAndReason) {
    const std::string t = "STRINGTABLE\nBEGIN\n", dlg = "1 DIALOG 0, 0, 10, 10\n";
    const struct { std::string script; int line; std::string reason; } cases[] = {  // {file}: the script's path
        {"LANGUAGE LANG_ENGLISH, SUBLANG_ENGLISH_US\nFROB 12\n", 2, "unknown statement 'FROB'"},
        {t + "\"no id\"\nEND\n", 3, "missing string id"},
        {t + "1 L\"\\x4E00\"\nEND\n", 3, "character '\xE4\xB8\x80' (U+4E00) is not in Windows-1251"},
        {"1 DIALOG 0, 0, 40000, 10\nBEGIN\nEND\n", 1, "dialog width 40000 is out of range (-32768 to 32767)"},
        {t + "1 \"a\\qb\"\nEND\n", 3, "unknown escape sequence '\\q'"},
        {t + "5 \"a\"\n5 \"b\"\nEND\n", 4, "string 5 is defined twice for language 0 (first at {file}:3)"},
        {"#if 1\n#error stop here\n#endif\n", 2, "#error stop here"},
    };
    // Anything that is not UTF-8 is refused, even in a comment.
    mwtest::TempDir dir;
    const std::string script = dir.file("bad.rc");
    auto check = [&](const std::string& text, int line, std::string reason) {
        mwtest::WriteFile(script, text);
        if (size_t at = reason.find("{file}"); at != std::string::npos) reason.replace(at, 6, script);
        EXPECT_EQ(std::make_pair(1, script + ":" + std::to_string(line) + ": " + reason + "\n"), Compile(dir, script)) << text;
        EXPECT_FALSE(mwtest::FileExists(dir.file("out.cpp")));
    };
    for (const auto& c : cases) check(c.script, c.line, c.reason);
    for (const char* bad : {"\x80", "\xBF", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80",
                            "\xE6\x97", "\xC2\x41"})
        check(std::string("// ok\n// ") + bad, 2, "invalid UTF-8 (scripts are read as UTF-8)");
}

TEST(ResourceCompiler, GoodScriptAndUsage) {
    mwtest::TempDir dir;
    mwtest::WriteFile(dir.file("ids.h"), "#pragma once\n#define IDS_HELLO 7\n");
    mwtest::WriteFile(dir.file("good.rc"), "\xEF\xBB\xBF#include \"ids.h\"\nSTRINGTABLE\nBEGIN\nIDS_HELLO \"\xD0\x9F\xD1\x80\"\nEND\n");
    EXPECT_EQ(std::make_pair(0, std::string()), Compile(dir, dir.file("good.rc")));
    EXPECT_NE(std::string::npos, mwtest::ReadFile(dir.file("out.cpp")).find("{7, \"\\317\\360\"}"));
    EXPECT_EQ(2, Tool(dir, "--module A.dll --symbol S " + dir.file("good.rc")).first);
    EXPECT_EQ(std::make_pair(1, dir.file("none.rc") + ":1: cannot open the file\n"), Compile(dir, dir.file("none.rc")));
}
}  // namespace
