// CString as MFC has it, and the Windows-1251 <-> UTF-8 conversions.
#include <mapwright/afxstr.h>
#include <mapwright/codepage.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

TEST(CString, BuildsComparesAndCopies) {
    EXPECT_TRUE(CString(static_cast<const char*>(nullptr)).IsEmpty());
    const CString text("WGS 84");
    EXPECT_TRUE("WGS 84" == text && text != "WGS 72" && text.GetLength() == 6 && !text.CompareNoCase("wgs 84"));
    EXPECT_LT(CString("A").Compare("B"), 0);
    const char field[5] = {'a', 'b', 'c', 'd', 'e'};  // a length bounds the copy and stops at a NUL
    EXPECT_EQ(CString("abcde"), CString(field, 5));
    EXPECT_EQ(CString("ab"), CString("ab\0cd", 5));
    EXPECT_EQ(CString("xxx"), CString('x', 3));
    CString a("P"), b(a);
    b += 'm';
    b += static_cast<const char*>(nullptr);
    a = b;
    b.Empty();
    EXPECT_EQ(CString("Pm"), a);
    EXPECT_EQ(CString("xa b"), "x" + CString("a") + " " + CString("b"));
    CString s;
    s.Format("%s%011.7f", std::string(1000, 'x').c_str(), 55.7558);
    s.AppendFormat("%d", -7);
    EXPECT_EQ(std::string(1000, 'x') + "055.7558000-7", s.GetString());
    std::strcpy(s.GetBuffer(16), "longer text");
    s.ReleaseBuffer();
    EXPECT_STREQ("longer text", s.GetBuffer(0)) << "never less than the text";
    s.ReleaseBuffer(6);
    EXPECT_EQ(CString("longer"), s);
    s.GetBufferSetLength(3)[0] = 'x';
    s.ReleaseBuffer();
    EXPECT_EQ(CString("xon"), s);
}

TEST(CString, SubstringsAndSearchStayInRange) {
    CString s("North/South ");
    EXPECT_EQ(CString("North|South |South||"), s.Left(5) + "|" + s.Right(6) + "|" + s.Mid(6, 5) + "|" + s.Mid(50) + "|" + s.Left(-1));
    EXPECT_EQ(s, s.Right(100));
    EXPECT_EQ(std::make_tuple(5, 6, -1, -1), std::make_tuple(s.Find('/'), s.Find("South"), s.Find('x'), s.Find('N', 100)));
    EXPECT_EQ(0, s.GetAt(100) + s.GetAt(-1));
    s.SetAt(100, 'x');  // ignored
    EXPECT_EQ(CString("North/South "), s);
    EXPECT_EQ(CString("N/S"), CString(" \tN/S \r\n").Trim());
}

TEST(Codepage, EveryByteRoundTripsAndTheRestBecomesOneMark) {
    EXPECT_EQ("055\xC2\xB0 \xD0\x81\xD1\x91", AnsiToUtf8("055\xB0 \xA8\xB8"));
    std::string all;
    for (int b = 1; b < 256; ++b) all += char(b);
    std::string back = Utf8ToAnsi(AnsiToUtf8(all));
    all[0x98 - 1] = '?';  // the one unassigned byte
    EXPECT_EQ(all, back);
    EXPECT_EQ("\xEF\xBF\xBD", AnsiToUtf8("\x98"));
    for (const char* bad : {"a\xE4\xB8\xAD" "b", "a\xFF" "b", "a\xD0"}) EXPECT_EQ("a?", Utf8ToAnsi(bad).substr(0, 2)) << bad;
}

}  // namespace
