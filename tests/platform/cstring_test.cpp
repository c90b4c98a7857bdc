#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include <mapwright/afxstr.h>

namespace {

TEST(CString, ConstructionAndComparison) {
    CString empty;
    EXPECT_TRUE(empty.IsEmpty());
    EXPECT_EQ(0, empty.GetLength());
    EXPECT_STREQ("", empty.GetString());

    CString fromNull(static_cast<const char*>(nullptr));
    EXPECT_TRUE(fromNull.IsEmpty());

    CString text("WGS 84");
    EXPECT_EQ(6, text.GetLength());
    EXPECT_TRUE(text == "WGS 84");
    EXPECT_TRUE("WGS 84" == text);
    EXPECT_TRUE(text != "WGS 72");
    EXPECT_TRUE(text == CString("WGS 84"));
    EXPECT_STREQ("WGS 84", static_cast<const char*>(text));
    EXPECT_EQ(0, text.CompareNoCase("wgs 84"));
    EXPECT_LT(CString("A").Compare("B"), 0);

    // A length bounds the copy and stops at a NUL, as for a fixed name field.
    const char field[5] = {'a', 'b', 'c', 'd', 'e'};
    EXPECT_EQ(CString("abcde"), CString(field, 5));
    EXPECT_EQ(CString("ab"), CString("ab\0cd", 5));
    EXPECT_EQ(CString("xxx"), CString('x', 3));
}

TEST(CString, CopiesAreIndependent) {
    CString a("Pulkovo 1942");
    CString b(a);
    b += " (58)";
    EXPECT_EQ(CString("Pulkovo 1942"), a);
    EXPECT_EQ(CString("Pulkovo 1942 (58)"), b);
    a = b;
    b.Empty();
    EXPECT_EQ(CString("Pulkovo 1942 (58)"), a);
    EXPECT_TRUE(b.IsEmpty());
}

TEST(CString, AppendingAndConcatenation) {
    CString s("Height ");
    s += CString("150.00");
    s += 'm';
    s += static_cast<const char*>(nullptr);
    EXPECT_EQ(CString("Height 150.00m"), s);
    EXPECT_EQ(CString("a b"), CString("a") + " " + CString("b"));
    EXPECT_EQ(CString("xy"), "x" + CString("y"));
}

TEST(CString, FormatWritesAnyLengthInTheCLocale) {
    struct Case {
        const char* why;
        std::string expected;
        CString actual;
    };
    auto fmt = [](auto... args) {
        CString s;
        s.Format(args...);
        return s;
    };
    const Case cases[] = {
        {"%lf writes six decimals", "6378137.000000", fmt("%lf", 6378137.0)},
        {"%d negative", "-72", fmt("%d", -72)},
        {"%ld of a zone", "37", fmt("%ld", 37L)},
        {"%011.7f N pads to 11", "055.7558000 N", fmt("%011.7f N", 55.7558)},
        {"%.2lf rounds", "0.13", fmt("%.2lf", 0.125001)},
        {"a long text is not cut", std::string(1000, 'x') + "1", fmt("%s%d", std::string(1000, 'x').c_str(), 1)},
    };
    for (const Case& c : cases) EXPECT_EQ(c.expected, std::string(c.actual.GetString())) << c.why;

    CString s("a");
    s.AppendFormat("%d%s", 2, "b");
    EXPECT_EQ(CString("a2b"), s);
}

TEST(CString, BufferAccess) {
    CString s("abc");
    char* p = s.GetBuffer(16);
    std::strcpy(p, "longer text");
    s.ReleaseBuffer();
    EXPECT_EQ(CString("longer text"), s);
    EXPECT_EQ(11, s.GetLength());

    p = s.GetBuffer(0);  // never less than the text
    EXPECT_STREQ("longer text", p);
    s.ReleaseBuffer(6);
    EXPECT_EQ(CString("longer"), s);

    p = s.GetBufferSetLength(3);
    p[0] = 'x';
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

}  // namespace
