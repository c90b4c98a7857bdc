// CString as MFC has it, and the Windows-1251 <-> UTF-8 conversions.
#include <mapwright/afxstr.h>
#include <mapwright/codepage.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

TEST(CString, ConstructionComparisonAndCopies) {
    EXPECT_TRUE(CString().IsEmpty());
    EXPECT_TRUE(CString(static_cast<const char*>(nullptr)).IsEmpty());
    const CString text("WGS 84");
    EXPECT_EQ(6, text.GetLength());
    EXPECT_TRUE("WGS 84" == text && text != "WGS 72" && text == CString("WGS 84"));
    EXPECT_EQ(0, text.CompareNoCase("wgs 84"));
    EXPECT_LT(CString("A").Compare("B"), 0);
    // A length bounds the copy and stops at a NUL, as for a fixed name field.
    const char field[5] = {'a', 'b', 'c', 'd', 'e'};
    EXPECT_EQ(CString("abcde"), CString(field, 5));
    EXPECT_EQ(CString("ab"), CString("ab\0cd", 5));
    EXPECT_EQ(CString("xxx"), CString('x', 3));
    CString a("P"), b(a);
    b += " (58)";
    b += 'm';
    b += static_cast<const char*>(nullptr);
    EXPECT_EQ(CString("P"), a);
    a = b;
    b.Empty();
    EXPECT_EQ(CString("P (58)m"), a);
    EXPECT_TRUE(b.IsEmpty());
    EXPECT_EQ(CString("xa b"), "x" + CString("a") + " " + CString("b"));
}

TEST(CString, FormatWritesAnyLengthInTheCLocale) {
    auto fmt = [](auto... args) {
        CString s;
        s.Format(args...);
        return std::string(s.GetString());
    };
    EXPECT_EQ("6378137.000000", fmt("%lf", 6378137.0));
    EXPECT_EQ("-72 37", fmt("%d %ld", -72, 37L));
    EXPECT_EQ("055.7558000 N", fmt("%011.7f N", 55.7558));
    EXPECT_EQ(std::string(1000, 'x') + "1", fmt("%s%d", std::string(1000, 'x').c_str(), 1));
    CString s("a");
    s.AppendFormat("%d%s", 2, "b");
    EXPECT_EQ(CString("a2b"), s);
}

TEST(CString, BufferAccess) {
    CString s("abc");
    std::strcpy(s.GetBuffer(16), "longer text");
    s.ReleaseBuffer();
    EXPECT_EQ(11, s.GetLength());
    EXPECT_STREQ("longer text", s.GetBuffer(0)) << "never less than the text";
    s.ReleaseBuffer(6);
    EXPECT_EQ(CString("longer"), s);
    s.GetBufferSetLength(3)[0] = 'x';
    s.ReleaseBuffer();
    EXPECT_EQ(CString("xon"), s);
}

TEST(CString, SubstringsAndSearchStayInRange) {
    CString s("North/South ");
    EXPECT_EQ(CString("North"), s.Left(5));
    EXPECT_EQ(CString("South "), s.Right(6));
    EXPECT_EQ(CString("South"), s.Mid(6, 5));
    EXPECT_EQ(CString(""), s.Mid(50));
    EXPECT_EQ(CString(""), s.Left(-1));
    EXPECT_EQ(s, s.Right(100));
    EXPECT_EQ(5, s.Find('/'));
    EXPECT_EQ(6, s.Find("South"));
    EXPECT_EQ(-1, s.Find('x'));
    EXPECT_EQ(-1, s.Find('N', 100));
    EXPECT_EQ('\0', s.GetAt(100));
    EXPECT_EQ('\0', s.GetAt(-1));
    s.SetAt(100, 'x');  // ignored
    EXPECT_EQ(CString("North/South "), s);
    EXPECT_EQ(CString("North/South"), CString(" \tNorth/South \r\n").Trim());
    EXPECT_EQ(CString("WGS"), CString("wgs").MakeUpper());
}

TEST(Codepage, EveryByteRoundTripsAndTheRestBecomesOneMark) {
    EXPECT_EQ("055\xC2\xB0 \xD0\x81\xD1\x91", AnsiToUtf8("055\xB0 \xA8\xB8"));
    EXPECT_EQ("\xCE\xF2", Utf8ToAnsi("\xD0\x9E\xD1\x82"));
    std::string all;
    for (int b = 1; b < 256; ++b) all += char(b);
    std::string back = Utf8ToAnsi(AnsiToUtf8(all));
    all[0x98 - 1] = '?';  // the one unassigned byte
    EXPECT_EQ(all, back);
    EXPECT_EQ("\xEF\xBF\xBD", AnsiToUtf8("\x98"));
    EXPECT_EQ("a?b", Utf8ToAnsi("a\xE4\xB8\xAD" "b"));  // a CJK character
    EXPECT_EQ("a?b", Utf8ToAnsi("a\xFF" "b"));          // not UTF-8
    EXPECT_EQ("a?", Utf8ToAnsi("a\xD0"));               // cut at the end
}

}  // namespace
