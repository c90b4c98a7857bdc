// Basalt's controls: the masked edit and the list with masked cells. What
// a mask keeps, the template it shows, which character each place takes, how
// typing moves over fixed places, and that text set by the program is taken
// as given. The masks are the coordinate masks of the library.
#include <mapwright/basalt.h>
#include <mapwright/basalt_controls.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

namespace {

#define DEG "\xB0"  // the degree sign in Windows-1251

constexpr const char* kDmsMask = "900__90__90_00___$";
constexpr const char* kDmsLiteral = "___" DEG " __' __.__'' _";
constexpr const char* kDecimalMask = "900_9000000_$";
constexpr const char* kDecimalLiteral = "___._________";
constexpr const char* kNumberMask = "%%%%%%%%%%%%%%";
constexpr const char* kNumberLiteral = "______________";

std::string TextOf(const CWnd& window) {
    CString text;
    window.GetWindowText(text);
    return text.GetString();
}

int Caret(const CEdit& edit) {
    int start, end;
    edit.GetSel(start, end);
    EXPECT_EQ(start, end) << "typing leaves no selection";
    return end;
}

// Types `keys` one after another at the caret, as a user does; returns how
// many were accepted.
int TypeAtCaret(CEdit& edit, const char* keys) {
    int accepted = 0;
    for (const char* k = keys; *k; ++k) accepted += edit.TypeChar(Caret(edit), *k) ? 1 : 0;
    return accepted;
}

// ---- CMaskEdit: the mask kept and the template shown ---------------------

TEST(MaskEdit, KeepsTheLastMaskAndShowsItsTemplate) {
    const struct {
        const char *mask, *literal, *valid;
        const char* shown;
        const char* why;
    } cases[] = {
        {kDmsMask, kDmsLiteral, "NSns", "___" DEG " __' __.__'' _", "degrees-minutes-seconds: the literal itself"},
        {kDmsMask, kDmsLiteral, "WEwe", "___" DEG " __' __.__'' _", "the same for a longitude"},
        {kDecimalMask, kDecimalLiteral, "NSns", "___._______ _",
         "decimal degrees: the fixed place 12 is the blank before the letter"},
        {kNumberMask, kNumberLiteral, "", "______________", "number: 14 open places"},
        {"$", "_", "NSns", "_", "the one-letter hemisphere mask"},
        {"99", "", "", "__", "a literal shorter than the mask: open places show _"},
        {"9-9", "_", "", "_ _", "a fixed place beyond the literal shows a blank"},
        {"", "", "", "", "no mask"},
    };
    for (const auto& c : cases) {
        CMaskEdit edit;
        edit.SetWindowText("old text");
        edit.SetMask(c.mask, c.literal, c.valid);
        EXPECT_EQ(edit.GetMask(), c.mask) << c.why;
        EXPECT_EQ(edit.GetLiteral(), c.literal) << c.why;
        EXPECT_EQ(edit.GetValid(), c.valid) << c.why;
        EXPECT_EQ(TextOf(edit), c.shown) << c.why;
    }
}

TEST(MaskEdit, NullStringsCountAsEmpty) {
    CMaskEdit edit;
    EXPECT_TRUE(edit.GetMask().IsEmpty()) << "no mask before the first";
    EXPECT_TRUE(edit.GetLiteral().IsEmpty());
    EXPECT_TRUE(edit.GetValid().IsEmpty());
    edit.SetMask(kDmsMask, kDmsLiteral, "NSns");
    edit.SetMask(nullptr, nullptr, nullptr);
    EXPECT_TRUE(edit.GetMask().IsEmpty());
    EXPECT_TRUE(edit.GetLiteral().IsEmpty());
    EXPECT_TRUE(edit.GetValid().IsEmpty());
    EXPECT_EQ(TextOf(edit), "");
    EXPECT_TRUE(edit.TypeChar(0, 'x')) << "no mask: plain typing";

    edit.SetMask("$", "_", nullptr);
    EXPECT_FALSE(edit.TypeChar(0, 'N')) << "a null valid list takes no letter";
    EXPECT_EQ(TextOf(edit), "_");
}

TEST(MaskEdit, ALaterMaskReplacesTheEarlier) {
    CMaskEdit edit;
    edit.SetMask(kDmsMask, kDmsLiteral, "NSns");
    edit.SetMask(kNumberMask, kNumberLiteral, "");
    EXPECT_EQ(edit.GetMask(), kNumberMask);
    EXPECT_EQ(edit.GetLiteral(), kNumberLiteral);
    EXPECT_EQ(edit.GetValid(), "");
    EXPECT_TRUE(edit.TypeChar(0, '-')) << "the number mask now governs";
}

// ---- CMaskEdit: what each place takes ------------------------------------

TEST(MaskEdit, EachPlaceTakesItsCharacters) {
    // Typing one character at one place of the template: accepted or not,
    // and where it lands.
    const struct {
        const char *mask, *literal, *valid;
        int place;
        char ch;
        int landsAt;  // -1: refused
        const char* why;
    } cases[] = {
        {kDmsMask, kDmsLiteral, "NSns", 0, '0', 0, "\"9\": a digit"},
        {kDmsMask, kDmsLiteral, "NSns", 0, '9', 0, "\"9\": a digit"},
        {kDmsMask, kDmsLiteral, "NSns", 1, '5', 1, "\"0\": a digit"},
        {kDmsMask, kDmsLiteral, "NSns", 0, ' ', -1, "\"9\" takes no blank here"},
        {kDmsMask, kDmsLiteral, "NSns", 0, '-', -1, "no sign in an angle"},
        {kDmsMask, kDmsLiteral, "NSns", 2, 'N', -1, "no letter at a digit place"},
        {kDmsMask, kDmsLiteral, "NSns", 17, 'N', 17, "\"$\": a letter of valid"},
        {kDmsMask, kDmsLiteral, "NSns", 17, 's', 17, "lower case is listed too"},
        {kDmsMask, kDmsLiteral, "NSns", 17, 'E', -1, "a longitude letter in a latitude"},
        {kDmsMask, kDmsLiteral, "WEwe", 17, 'w', 17, "a longitude letter"},
        {kDmsMask, kDmsLiteral, "WEwe", 17, 'N', -1, "a latitude letter in a longitude"},
        {kDmsMask, kDmsLiteral, "WEwe", 17, '5', -1, "no digit at the letter place"},
        {kDmsMask, kDmsLiteral, "NSns", 3, DEG[0], 3, "the fixed degree sign is stepped over"},
        {kDmsMask, kDmsLiteral, "NSns", 3, '4', 5, "a digit on the degree sign goes to the minutes"},
        {kDmsMask, kDmsLiteral, "NSns", 4, '4', 5, "a digit on the blank goes to the minutes"},
        {kDmsMask, kDmsLiteral, "NSns", 3, 'x', -1, "the minutes take no letter either"},
        {kDmsMask, kDmsLiteral, "NSns", 11, '7', 12, "a digit on the seconds' point"},
        {kDmsMask, kDmsLiteral, "NSns", 14, 'S', 17, "a letter on the apostrophes goes to the hemisphere"},
        {kDmsMask, kDmsLiteral, "NSns", 16, '1', -1, "no digit place follows the seconds"},
        {kDecimalMask, kDecimalLiteral, "NSns", 3, '1', 4, "the decimals after the point"},
        {kDecimalMask, kDecimalLiteral, "NSns", 11, 'n', 12, "the letter after the separating blank"},
        {kDecimalMask, kDecimalLiteral, "NSns", 11, ' ', 11, "the separating blank is stepped over"},
        {kDecimalMask, kDecimalLiteral, "NSns", 11, '_', -1, "the separator shows a blank, not _"},
        {kNumberMask, kNumberLiteral, "", 0, '7', 0, "\"%\": digits"},
        {kNumberMask, kNumberLiteral, "", 0, '-', 0, "\"%\": a minus sign"},
        {kNumberMask, kNumberLiteral, "", 1, '+', 1, "\"%\": a plus sign"},
        {kNumberMask, kNumberLiteral, "", 2, '.', 2, "\"%\": the point"},
        {kNumberMask, kNumberLiteral, "", 3, 'e', 3, "\"%\": an exponent"},
        {kNumberMask, kNumberLiteral, "", 3, 'E', 3, "\"%\": an exponent"},
        {kNumberMask, kNumberLiteral, "", 13, '9', 13, "the 14th place"},
        {kNumberMask, kNumberLiteral, "", 14, '9', -1, "no 15th place"},
        {kNumberMask, kNumberLiteral, "", 0, ',', -1, "no decimal comma"},
        {kNumberMask, kNumberLiteral, "", 0, 'x', -1, "no letter but the exponent"},
        {kNumberMask, kNumberLiteral, "", 0, ' ', -1, "no blank"},
        {"$", "_", "NSns", 0, 'S', 0, "hemisphere mask"},
        {"$", "_", "NSns", 0, 'E', -1, "hemisphere mask takes N and S only"},
        {"$", "_", "NSns", 1, 'N', -1, "nothing beyond the mask"},
    };
    for (const auto& c : cases) {
        CMaskEdit edit;
        edit.SetMask(c.mask, c.literal, c.valid);
        const std::string before = TextOf(edit);
        const BOOL accepted = edit.TypeChar(c.place, c.ch);
        std::string expected = before;
        if (c.landsAt >= 0 && c.ch != expected[static_cast<size_t>(c.landsAt)])
            expected[static_cast<size_t>(c.landsAt)] = c.ch;
        EXPECT_EQ(accepted, c.landsAt >= 0 ? TRUE : FALSE) << c.why;
        EXPECT_EQ(TextOf(edit), expected) << c.why;
    }
}

TEST(MaskEdit, NoCharacterOutsideTheTextOrTheMaskIsTyped) {
    const struct {
        int position;
        char ch;
        const char* why;
    } cases[] = {
        {-1, '1', "before the text"},
        {19, '1', "beyond the text"},
        {18, '1', "at the end of the text, which is the end of the mask"},
        {0, '\0', "NUL"},
        {17, '\0', "NUL at the letter place"},
    };
    for (const auto& c : cases) {
        CMaskEdit edit;
        edit.SetMask(kDmsMask, kDmsLiteral, "NSns");
        edit.SetSel(5, 5);
        EXPECT_FALSE(edit.TypeChar(c.position, c.ch)) << c.why;
        EXPECT_EQ(TextOf(edit), kDmsLiteral) << c.why;
        EXPECT_EQ(Caret(edit), 5) << "the caret stays, " << c.why;
    }
}

// ---- CMaskEdit: typing whole values --------------------------------------

TEST(MaskEdit, AnAngleTypedIntoTheDegreesMinutesSecondsMask) {
    // The user types every key of "039° 30' 15.25'' N" and some that do not
    // belong; the mask keeps the digits and the letter and steps over the
    // fixed places.
    const struct {
        const char* valid;
        const char* keys;
        int accepted;
        const char* text;
        const char* why;
    } cases[] = {
        {"NSns", "0393015.25N", 11, "039" DEG " 30' 15.25'' N", "digits and the letter only"},
        {"NSns", "039" DEG " 30' 15.25'' N", 18, "039" DEG " 30' 15.25'' N", "every character, fixed ones too"},
        {"NSns", "0a3b9-30x15,.25EN", 11, "039" DEG " 30' 15.25'' N", "foreign keys are refused"},
        {"WEwe", "1795959.99w", 11, "179" DEG " 59' 59.99'' w", "longitude, lower-case letter"},
        {"WEwe", "000000000N", 9, "000" DEG " 00' 00.00'' _", "a latitude letter is refused in a longitude"},
    };
    for (const auto& c : cases) {
        CMaskEdit edit;
        edit.SetMask(kDmsMask, kDmsLiteral, c.valid);
        EXPECT_EQ(TypeAtCaret(edit, c.keys), c.accepted) << c.why;
        EXPECT_EQ(TextOf(edit), c.text) << c.why;
    }
}

TEST(MaskEdit, ATypedAngleReadsAsTheAngleTyped) {
    // What the mask lets a user type is what the degrees-minutes-seconds
    // readers take: 39° 30' 15.25'' is 39 + 30/60 + 15.25/3600 degrees. The
    // readers return the double nearest the angle (half an ulp of 39.5,
    // 2^-47); the sum below rounds three times at most that much each.
    CMaskEdit latitude;
    latitude.SetMask(kDmsMask, kDmsLiteral, "NSns");
    TypeAtCaret(latitude, "0393015.25S");
    double degrees = 0.0;
    ASSERT_EQ(LatitudeCharToDouble(&degrees, TextOf(latitude).c_str()), 1) << TextOf(latitude);
    EXPECT_NEAR(degrees, -(39.0 + 30.0 / 60.0 + 15.25 / 3600.0), 4 * std::ldexp(1.0, -47));

    CMaskEdit longitude;
    longitude.SetMask(kDmsMask, kDmsLiteral, "WEwe");
    TypeAtCaret(longitude, "1200000.00E");
    ASSERT_EQ(LongitudeCharToDouble(&degrees, TextOf(longitude).c_str()), 1);
    EXPECT_EQ(degrees, 120.0);
}

TEST(MaskEdit, TypingAfterTheLastPlaceAndErasing) {
    CMaskEdit edit;
    edit.SetMask(kDmsMask, kDmsLiteral, "NSns");
    EXPECT_EQ(TypeAtCaret(edit, "0393015.25N"), 11);
    EXPECT_EQ(Caret(edit), 18) << "after the letter";
    EXPECT_FALSE(edit.TypeChar(18, 'N')) << "the text never grows beyond the mask";

    // Overtyping one place.
    EXPECT_TRUE(edit.TypeChar(6, '5'));
    EXPECT_EQ(TextOf(edit), "039" DEG " 35' 15.25'' N");
    EXPECT_EQ(Caret(edit), 7) << "just after it; the next key steps over the fixed places";
    EXPECT_TRUE(edit.TypeChar(7, '4'));
    EXPECT_EQ(TextOf(edit), "039" DEG " 35' 45.25'' N") << "on the apostrophe: went to the seconds";
    EXPECT_TRUE(edit.TypeChar(Caret(edit), '0'));
    EXPECT_EQ(TextOf(edit), "039" DEG " 35' 40.25'' N");

    // Erasing shows the open place again; fixed places are not erased.
    const struct {
        int place;
        BOOL erased;
        const char* text;
    } steps[] = {
        {1, TRUE, "0_9" DEG " 35' 40.25'' N"},   {3, FALSE, "0_9" DEG " 35' 40.25'' N"},
        {11, FALSE, "0_9" DEG " 35' 40.25'' N"}, {17, TRUE, "0_9" DEG " 35' 40.25'' _"},
        {18, FALSE, "0_9" DEG " 35' 40.25'' _"}, {-1, FALSE, "0_9" DEG " 35' 40.25'' _"},
    };
    for (const auto& s : steps) {
        EXPECT_EQ(edit.EraseChar(s.place), s.erased) << s.place;
        EXPECT_EQ(TextOf(edit), s.text) << s.place;
    }
}

TEST(MaskEdit, DecimalDegreesAndNumbers) {
    const struct {
        const char *mask, *literal, *valid;
        const char* keys;
        const char* text;
        const char* why;
    } cases[] = {
        {kDecimalMask, kDecimalLiteral, "NSns", "0395000000N", "039.5000000 N",
         "the shape written for decimal degrees"},
        {kDecimalMask, kDecimalLiteral, "WEwe", "179.9999999 W", "179.9999999 W", "point and blank typed too"},
        {kNumberMask, kNumberLiteral, "", "-1234567.25", "-1234567.25___", "negative, fractional metres"},
        {kNumberMask, kNumberLiteral, "", "6.378137e6", "6.378137e6____", "with an exponent"},
        {kNumberMask, kNumberLiteral, "", "123456789012345", "12345678901234", "14 characters at most"},
        {"$", "_", "NSns", "xS", "S", "the hemisphere mask"},
    };
    for (const auto& c : cases) {
        CMaskEdit edit;
        edit.SetMask(c.mask, c.literal, c.valid);
        TypeAtCaret(edit, c.keys);
        EXPECT_EQ(TextOf(edit), c.text) << c.why;
    }
}

TEST(MaskEdit, TextSetByTheProgramIsTakenAsGiven) {
    // Whatever the program writes stays, even against the mask; the user's
    // typing then follows the mask on it.
    const struct {
        const char *mask, *literal, *valid;
        const char* set;
        int position;
        char ch;
        BOOL accepted;
        const char* text;
        const char* why;
    } cases[] = {
        {kDmsMask, kDmsLiteral, "WEwe", "000" DEG " 00' 00.00'' E", 0, '1', TRUE, "100" DEG " 00' 00.00'' E",
         "the dialog's default text, overtyped"},
        {kDmsMask, kDmsLiteral, "WEwe", "000" DEG " 00' 00.00'' E", 17, 'W', TRUE, "000" DEG " 00' 00.00'' W",
         "the hemisphere changed"},
        {kNumberMask, kNumberLiteral, "", "0", 1, '5', TRUE, "05", "a short number grows at its end"},
        {kNumberMask, kNumberLiteral, "", "0", 2, '5', FALSE, "0", "but not with a gap"},
        {kNumberMask, kNumberLiteral, "", "500000", 0, '4', TRUE, "400000", "typing replaces"},
        {kDmsMask, kDmsLiteral, "NSns", "039", 3, '3', TRUE, "039" DEG " 3", "skipped fixed places are filled in"},
        {kDmsMask, kDmsLiteral, "NSns", "039", 3, DEG[0], TRUE, "039" DEG, "the degree sign typed at the end"},
        {kNumberMask, kNumberLiteral, "", "abc", 1, '1', TRUE, "a1c", "foreign text is kept around the typing"},
        {kNumberMask, kNumberLiteral, "", "12345678901234567890", 14, '1', FALSE, "12345678901234567890",
         "text longer than the mask is kept, and nothing is typed beyond the mask"},
        {"$", "_", "NSns", "N", 0, 'S', TRUE, "S", "the hemisphere row of the dialog"},
    };
    for (const auto& c : cases) {
        CMaskEdit edit;
        edit.SetMask(c.mask, c.literal, c.valid);
        edit.SetWindowText(c.set);
        EXPECT_EQ(TextOf(edit), c.set) << c.why;
        EXPECT_EQ(edit.GetMask(), c.mask) << "setting text keeps the mask, " << c.why;
        EXPECT_EQ(edit.TypeChar(c.position, c.ch), c.accepted) << c.why;
        EXPECT_EQ(TextOf(edit), c.text) << c.why;
    }
}

TEST(MaskEdit, IsAnEditToTheWindowLayer) {
    // A back end holds the control as a CEdit and types through it.
    CMaskEdit masked;
    masked.SetMask("$", "_", "NSns");
    CEdit& edit = masked;
    EXPECT_FALSE(edit.TypeChar(0, 'E'));
    EXPECT_TRUE(edit.TypeChar(0, 'N'));
    EXPECT_EQ(TextOf(edit), "N");
    EXPECT_EQ(SendMessageA(masked.m_hWnd, WM_GETTEXTLENGTH, 0, 0), 1);
    masked.ShowWindow(SW_HIDE);
    EXPECT_FALSE(masked.IsWindowVisible());
}

// ---- CListFrame ----------------------------------------------------------

// Rows "0".."n-1" with two columns, "Field" and "Value".
void MakeList(CListFrame& list, int rows) {
    list.InsertColumn(0, "Field");
    list.InsertColumn(1, "Value");
    for (int i = 0; i < rows; ++i) list.InsertItem(i, std::to_string(i).c_str());
}

TEST(ListFrame, RowsColumnsAndCells) {
    CListFrame list;
    EXPECT_EQ(list.GetColumnCount(), 1) << "column 0 exists from the start";
    EXPECT_EQ(list.GetItemCount(), 0);
    EXPECT_EQ(list.InsertItem(0, "Latitude "), 0);
    EXPECT_EQ(list.InsertColumn(0, "Field"), 0) << "the first column names column 0";
    EXPECT_EQ(list.GetColumnCount(), 1);
    EXPECT_EQ(list.GetItemText(0, 0), "Latitude ") << "its cells stay";
    EXPECT_EQ(list.InsertColumn(5, "Value"), 1) << "beyond the end: at the end";
    EXPECT_EQ(list.GetColumnCount(), 2);
    EXPECT_EQ(list.GetColumnHeading(0), "Field");
    EXPECT_EQ(list.GetColumnHeading(1), "Value");
    EXPECT_EQ(list.GetItemText(0, 1), "") << "a new column's cells are empty";

    EXPECT_EQ(list.InsertItem(5, "Height "), 1) << "beyond the end: at the end";
    EXPECT_EQ(list.InsertItem(1, "Longitude "), 1) << "in the middle";
    EXPECT_EQ(list.GetItemCount(), 3);
    EXPECT_TRUE(list.SetItemText(2, 1, "12.5"));
    EXPECT_EQ(list.GetItemText(0, 0), "Latitude ");
    EXPECT_EQ(list.GetItemText(1, 0), "Longitude ");
    EXPECT_EQ(list.GetItemText(2, 0), "Height ");
    EXPECT_EQ(list.GetItemText(2, 1), "12.5");

    // A column inserted before others moves their cells on.
    EXPECT_EQ(list.InsertColumn(1, "Unit"), 1);
    EXPECT_EQ(list.GetItemText(2, 1), "");
    EXPECT_EQ(list.GetItemText(2, 2), "12.5");
    EXPECT_EQ(list.GetColumnHeading(2), "Value");

    EXPECT_TRUE(list.DeleteItem(1));
    EXPECT_EQ(list.GetItemText(1, 0), "Height ");
    EXPECT_FALSE(list.DeleteItem(2));
    EXPECT_TRUE(list.DeleteAllItems());
    EXPECT_EQ(list.GetItemCount(), 0);
}

TEST(ListFrame, CellsThatDoNotExist) {
    CListFrame list;
    MakeList(list, 2);
    const struct {
        int item, column;
    } missing[] = {{2, 0}, {-1, 0}, {0, 2}, {0, -1}, {100, 100}};
    for (const auto& m : missing) {
        EXPECT_FALSE(list.SetItemText(m.item, m.column, "x")) << m.item << "," << m.column;
        EXPECT_EQ(list.GetItemText(m.item, m.column), "");
        list.SetMask(m.item, m.column, kNumberMask, kNumberLiteral, "");
        EXPECT_EQ(list.GetMask(m.item, m.column), "");
        EXPECT_EQ(list.GetLiteral(m.item, m.column), "");
        EXPECT_EQ(list.GetValid(m.item, m.column), "");
        EXPECT_FALSE(list.TypeChar(m.item, m.column, 0, '1'));
        EXPECT_FALSE(list.EraseChar(m.item, m.column, 0));
        char buffer[4] = "##";
        EXPECT_EQ(list.GetItemText(m.item, m.column, buffer, sizeof buffer), 0);
        EXPECT_STREQ(buffer, "") << "an empty text is still terminated";
    }
    // Nothing else changed.
    for (int item = 0; item < 2; ++item)
        for (int column = 0; column < 2; ++column) EXPECT_EQ(list.GetMask(item, column), "");
    EXPECT_EQ(list.InsertItem(-1, "x"), -1);
    EXPECT_EQ(list.InsertColumn(-1, "x"), -1);
    EXPECT_EQ(list.GetItemCount(), 2);
    EXPECT_EQ(list.GetColumnHeading(-1), "");
    EXPECT_EQ(list.GetColumnHeading(2), "");
}

TEST(ListFrame, TextIntoABuffer) {
    CListFrame list;
    MakeList(list, 1);
    list.SetItemText(0, 1, "Longitude ");
    const struct {
        int size;
        int copied;
        const char* text;
    } cases[] = {{1, 0, ""}, {2, 1, "L"}, {10, 9, "Longitude"}, {11, 10, "Longitude "}, {50, 10, "Longitude "}};
    for (const auto& c : cases) {
        char buffer[64];
        std::memset(buffer, '#', sizeof buffer);
        EXPECT_EQ(list.GetItemText(0, 1, buffer, c.size), c.copied) << c.size;
        EXPECT_STREQ(buffer, c.text) << c.size;
        EXPECT_EQ(buffer[c.size], '#') << c.size;
    }
    char buffer[2] = {'#', '#'};
    EXPECT_EQ(list.GetItemText(0, 1, buffer, 0), 0);
    EXPECT_EQ(buffer[0], '#');
    EXPECT_EQ(list.GetItemText(0, 1, nullptr, 10), 0);
    EXPECT_TRUE(list.SetItemText(0, 1, nullptr));
    EXPECT_EQ(list.GetItemText(0, 1), "");
}

TEST(ListFrame, EachCellKeepsItsOwnMask) {
    CListFrame list;
    MakeList(list, 3);
    list.SetMask(0, 1, kDmsMask, kDmsLiteral, "WEwe");
    list.SetMask(1, 1, kDmsMask, kDmsLiteral, "NSns");
    list.SetMask(2, 1, kNumberMask, kNumberLiteral, "");
    const struct {
        int item, column;
        const char *mask, *literal, *valid, *shown;
    } cells[] = {
        {0, 1, kDmsMask, kDmsLiteral, "WEwe", kDmsLiteral},
        {1, 1, kDmsMask, kDmsLiteral, "NSns", kDmsLiteral},
        {2, 1, kNumberMask, kNumberLiteral, "", kNumberLiteral},
        {0, 0, "", "", "", "0"},
        {2, 0, "", "", "", "2"},
    };
    for (const auto& c : cells) {
        EXPECT_EQ(list.GetMask(c.item, c.column), c.mask) << c.item << "," << c.column;
        EXPECT_EQ(list.GetLiteral(c.item, c.column), c.literal) << c.item << "," << c.column;
        EXPECT_EQ(list.GetValid(c.item, c.column), c.valid) << c.item << "," << c.column;
        EXPECT_EQ(list.GetItemText(c.item, c.column), c.shown) << c.item << "," << c.column;
    }
    // A row inserted above moves the masks with their cells.
    list.InsertItem(0, "new");
    EXPECT_EQ(list.GetValid(1, 1), "WEwe");
    EXPECT_EQ(list.GetValid(2, 1), "NSns");
    EXPECT_EQ(list.GetMask(0, 1), "");
}

TEST(ListFrame, TypingIntoACellFollowsItsMask) {
    CListFrame list;
    MakeList(list, 2);
    list.SetMask(1, 1, kDmsMask, kDmsLiteral, "NSns");
    // The cell has no caret of its own: the user types place by place.
    const struct {
        int position;
        char ch;
        BOOL accepted;
    } keys[] = {{0, '0', TRUE}, {1, '4', TRUE}, {2, '5', TRUE}, {3, 'x', FALSE}, {3, '1', TRUE},
                {6, '0', TRUE}, {9, '2', TRUE}, {10, '0', TRUE}, {12, '0', TRUE}, {13, '0', TRUE},
                {17, 'E', FALSE}, {17, 'S', TRUE}, {18, 'S', FALSE}};
    for (const auto& k : keys) EXPECT_EQ(list.TypeChar(1, 1, k.position, k.ch), k.accepted) << k.position << k.ch;
    EXPECT_EQ(list.GetItemText(1, 1), "045" DEG " 10' 20.00'' S");
    EXPECT_TRUE(list.EraseChar(1, 1, 17));
    EXPECT_FALSE(list.EraseChar(1, 1, 3));
    EXPECT_EQ(list.GetItemText(1, 1), "045" DEG " 10' 20.00'' _");

    // Set by the program: taken as given; a cell without a mask types plainly.
    EXPECT_TRUE(list.SetItemText(1, 1, "anything"));
    EXPECT_EQ(list.GetItemText(1, 1), "anything");
    EXPECT_EQ(list.GetMask(1, 1), kDmsMask);
    EXPECT_TRUE(list.TypeChar(0, 1, 0, 'x'));
    EXPECT_TRUE(list.TypeChar(0, 1, 1, 'y'));
    EXPECT_FALSE(list.TypeChar(0, 1, 3, 'z'));
    EXPECT_EQ(list.GetItemText(0, 1), "xy");
    EXPECT_TRUE(list.EraseChar(0, 1, 0));
    EXPECT_EQ(list.GetItemText(0, 1), "y");
}

TEST(ListFrame, IsAWindow) {
    CListFrame list;
    list.SetDlgCtrlID(830);
    list.EnableWindow(FALSE);
    EXPECT_EQ(list.GetDlgCtrlID(), 830);
    EXPECT_FALSE(list.IsWindowEnabled());
    EXPECT_TRUE(IsWindow(list.m_hWnd));
}

}  // namespace
