// CString as MFC has it, and the Windows-1251 <-> UTF-8 conversions.
#include <mapwright/afxstr.h>
#include <mapwright/codepage.h>
#include <gtest/gtest.h>
#include <cstring>
#include <string>

namespace {
TEST(CString, CopiesFormatsAndRanges) {
    EXPECT_TRUE(CString(static_cast<const char*>(nullptr)).IsEmpty());
    EXPECT_EQ(CString("ab"), CString("ab\0cd", 5));
    CString s('x', 2);
    s += static_cast<const char*>(nullptr);
    s.AppendFormat("%s%011.7f", std::string(1000, 'y').c_str(), 55.7558);
    EXPECT_EQ("xx" + std::string(1000, 'y') + "055.7558000", s.GetString());
    std::strcpy(s.GetBuffer(16), "North/South");
    s.ReleaseBuffer();
    EXPECT_STREQ("North/South", s.GetBuffer(0));
    s.ReleaseBuffer(11);
    EXPECT_EQ(CString("North|South|uth|"), s.Left(5) + "|" + s.Right(5) + "|" + s.Mid(8, 9) + "|" + s.Mid(50) + s.Left(-1));
    EXPECT_EQ(std::make_tuple(6, -1, 0), std::make_tuple(s.Find("South"), s.Find('N', 100), s.GetAt(100) + s.GetAt(-1)));
    CString blanks(" \t\r\n\v\fa`z{\f\v\n\r\t ");
    EXPECT_EQ(CString("A`Z{"), blanks.Trim().MakeUpper());
    EXPECT_EQ(CString("a`z{@["), (blanks + "@[").MakeLower());
}

TEST(Codepage, RoundTrip) {
    std::string all;
    for (int b = 1; b < 256; ++b) all += char(b);
    std::string back = Utf8ToAnsi(AnsiToUtf8(all));
    all[0x98 - 1] = '?';  // the one unassigned byte
    EXPECT_EQ(all, back);
    EXPECT_EQ("\xD0\x81\xEF\xBF\xBD", AnsiToUtf8("\xA8\x98"));
    for (const char* bad : {"a\xE4\xB8\xAD" "b", "a\xFF" "b", "a\xD0"}) EXPECT_EQ("a?", Utf8ToAnsi(bad).substr(0, 2)) << bad;
    // An unmappable sequence is one character, each byte of a broken one is one.
    for (const auto& [utf8, ansi] : {std::pair{"\xC2\x80|\xC3\x80|\xF0\x90\x80\x80|a\xE2\x82" "b", "?|?|?|a??b"},
                                     {"\xC0\x80\x80\x80|\xF5\x80\x80\x80", "????|????"}})
        EXPECT_EQ(ansi, Utf8ToAnsi(utf8)) << utf8;
}
}  // namespace
