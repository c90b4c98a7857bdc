#include <gtest/gtest.h>

#include <string>

#include <mapwright/codepage.h>

namespace {

TEST(Codepage, RoundTripOfTheLibraryTexts) {
    struct Case {
        const char* utf8;
        const char* ansi;  // Windows-1251 bytes
    };
    const Case cases[] = {
        {"", ""},
        {"WGS 84", "WGS 84"},
        {"\xC2\xB0", "\xB0"},                                                   // degree sign
        {"Отмена", "\xCE\xF2\xEC\xE5\xED\xE0"},                                 // Cancel
        {"Ёё", "\xA8\xB8"},
        {"055° 45' 20.88'' N", "055\xB0 45' 20.88'' N"},
        {"м ", "\xEC "},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(std::string(c.ansi), Utf8ToAnsi(c.utf8)) << c.utf8;
        EXPECT_EQ(std::string(c.utf8), AnsiToUtf8(c.ansi)) << c.utf8;
    }
}

TEST(Codepage, EveryAnsiByteHasAnOutput) {
    std::string all;
    for (int b = 1; b < 256; ++b) all += static_cast<char>(b);
    std::string utf8 = AnsiToUtf8(all);
    // 0x98 is the one unassigned byte; every other byte survives a round trip.
    std::string back = Utf8ToAnsi(utf8);
    ASSERT_EQ(all.size(), back.size());
    for (size_t i = 0; i < all.size(); ++i) {
        if (static_cast<unsigned char>(all[i]) == 0x98)
            EXPECT_EQ('?', back[i]);
        else
            EXPECT_EQ(all[i], back[i]) << "byte " << i + 1;
    }
}

TEST(Codepage, WhatCannotBeConvertedBecomesOneMark) {
    EXPECT_EQ("a?b", Utf8ToAnsi("a\xE4\xB8\xAD" "b"));  // a CJK character
    EXPECT_EQ("a?b", Utf8ToAnsi("a\xFF" "b"));          // not UTF-8
    EXPECT_EQ("a?", Utf8ToAnsi("a\xD0"));               // cut sequence at the end
    EXPECT_EQ("\xEF\xBF\xBD", AnsiToUtf8("\x98"));
}

}  // namespace
