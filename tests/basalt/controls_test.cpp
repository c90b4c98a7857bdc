// Basalt's masked edit and list: the template a mask shows, what each place
// takes, typing over fixed places, and text set by the program taken as given.
#include <mapwright/basalt.h>
#include <mapwright/basalt_controls.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace {

#define DEG "\xB0"  // the degree sign in Windows-1251

const char* const kDms = "900__90__90_00___$";
const char* const kDmsLit = "___" DEG " __' __.__'' _";
const char* const kDec = "900_9000000_$";
const char* const kDecLit = "___._________";
const char* const kNum = "%%%%%%%%%%%%%%";
const char* const kNumLit = "______________";

std::string TextOf(const CWnd& w) {
    CString text;
    w.GetWindowText(text);
    return text.GetString();
}

int Caret(const CEdit& edit) {
    int start, end;
    edit.GetSel(start, end);
    EXPECT_EQ(start, end) << "typing leaves no selection";
    return end;
}

// Types `keys` at the caret, as a user does; how many were accepted.
int Type(CEdit& edit, const char* keys) {
    int accepted = 0;
    for (const char* k = keys; *k; ++k) accepted += edit.TypeChar(Caret(edit), *k) ? 1 : 0;
    return accepted;
}

struct Mask {
    const char *mask, *literal, *valid;
};
const Mask kLat{kDms, kDmsLit, "NSns"}, kLon{kDms, kDmsLit, "WEwe"}, kDecLat{kDec, kDecLit, "NSns"},
    kNumber{kNum, kNumLit, ""}, kHemi{"$", "_", "NSns"};

TEST(MaskEdit, KeepsTheLastMaskAndShowsItsTemplate) {
    const struct {
        Mask m;
        const char* shown;
    } cases[] = {
        {kLat, kDmsLit}, {kDecLat, "___._______ _"},  // a fixed place shows its literal, else a blank
        {kNumber, kNumLit}, {{"99", "", ""}, "__"}, {{"9-9", "_", ""}, "_ _"}, {{"", "", ""}, ""},
    };
    for (const auto& c : cases) {
        CMaskEdit edit;
        edit.SetWindowText("old");
        edit.SetMask(kLat.mask, kLat.literal, kLat.valid);
        edit.SetMask(c.m.mask, c.m.literal, c.m.valid);
        EXPECT_EQ(edit.GetMask(), c.m.mask);
        EXPECT_EQ(edit.GetLiteral(), c.m.literal);
        EXPECT_EQ(edit.GetValid(), c.m.valid);
        EXPECT_EQ(TextOf(edit), c.shown) << c.m.mask;
    }
    CMaskEdit edit;
    edit.SetMask(nullptr, nullptr, nullptr);  // nulls count as empty
    EXPECT_TRUE(edit.GetMask().IsEmpty() && edit.GetLiteral().IsEmpty() && edit.GetValid().IsEmpty());
    EXPECT_TRUE(edit.TypeChar(0, 'x')) << "no mask: plain typing";
    edit.SetMask("$", "_", nullptr);
    EXPECT_FALSE(edit.TypeChar(0, 'N')) << "a null valid list takes no letter";
}

TEST(MaskEdit, EachPlaceTakesItsCharacters) {
    const struct {
        Mask m;
        int place;
        char ch;
        int landsAt;  // -1: refused
    } cases[] = {
        {kLat, 0, '0', 0},    {kLat, 0, '9', 0},   {kLat, 1, '5', 1},   {kLat, 0, ' ', -1},  {kLat, 0, '-', -1},
        {kLat, 2, 'N', -1},   {kLat, 17, 'N', 17}, {kLat, 17, 's', 17}, {kLat, 17, 'E', -1}, {kLon, 17, 'w', 17},
        {kLon, 17, '5', -1},  {kLat, 3, DEG[0], 3}, {kLat, 3, '4', 5},  {kLat, 4, '4', 5},   {kLat, 3, 'x', -1},
        {kLat, 11, '7', 12},  {kLat, 14, 'S', 17}, {kLat, 16, '1', -1}, {kLat, -1, '1', -1}, {kLat, 18, '1', -1},
        {kLat, 0, '\0', -1},  {kDecLat, 3, '1', 4}, {kDecLat, 11, 'n', 12}, {kDecLat, 11, ' ', 11},
        {kDecLat, 11, '_', -1}, {kNumber, 0, '7', 0}, {kNumber, 0, '-', 0}, {kNumber, 1, '+', 1},
        {kNumber, 2, '.', 2}, {kNumber, 3, 'e', 3}, {kNumber, 3, 'E', 3}, {kNumber, 13, '9', 13},
        {kNumber, 14, '9', -1}, {kNumber, 0, ',', -1}, {kNumber, 0, 'x', -1}, {kHemi, 0, 'S', 0},
        {kHemi, 0, 'E', -1},  {kHemi, 1, 'N', -1},
    };
    for (const auto& c : cases) {
        CMaskEdit edit;
        edit.SetMask(c.m.mask, c.m.literal, c.m.valid);
        edit.SetSel(5, 5);
        std::string expected = TextOf(edit);
        if (c.landsAt >= 0) expected[size_t(c.landsAt)] = c.ch;
        SCOPED_TRACE(std::string(c.m.valid) + c.m.mask + " place " + std::to_string(c.place) + " " + c.ch);
        EXPECT_EQ(edit.TypeChar(c.place, c.ch), c.landsAt >= 0);
        EXPECT_EQ(TextOf(edit), expected);
        EXPECT_EQ(Caret(edit), c.landsAt < 0 ? std::min<int>(5, int(expected.size())) : c.landsAt + 1);
    }
}

TEST(MaskEdit, WholeValuesTypedKeyByKey) {
    const struct {
        Mask m;
        const char* keys;
        int accepted;
        const char* text;
    } cases[] = {
        {kLat, "0393015.25N", 11, "039" DEG " 30' 15.25'' N"},
        {kLat, "039" DEG " 30' 15.25'' N", 18, "039" DEG " 30' 15.25'' N"},  // fixed ones typed too
        {kLat, "0a3b9-30x15,.25EN", 11, "039" DEG " 30' 15.25'' N"},        // foreign keys refused
        {kLon, "000000000N", 9, "000" DEG " 00' 00.00'' _"},
        {kDecLat, "0395000000N", 11, "039.5000000 N"},
        {kNumber, "-1234567.25", 11, "-1234567.25___"},
        {kNumber, "123456789012345", 14, "12345678901234"},
        {kHemi, "xS", 1, "S"},
    };
    for (const auto& c : cases) {
        CMaskEdit edit;
        edit.SetMask(c.m.mask, c.m.literal, c.m.valid);
        EXPECT_EQ(Type(edit, c.keys), c.accepted) << c.keys;
        EXPECT_EQ(TextOf(edit), c.text) << c.keys;
    }
    // What the mask lets a user type is what the readers take.
    CMaskEdit lat;
    lat.SetMask(kDms, kDmsLit, "NSns");
    Type(lat, "0393015.25S");
    double degrees = 0.0;
    ASSERT_EQ(LatitudeCharToDouble(&degrees, TextOf(lat).c_str()), 1);
    EXPECT_EQ(degrees, -(39 * 360000 + 30 * 6000 + 1525) / 360000.0);
}

TEST(MaskEdit, OvertypingAndErasing) {
    CMaskEdit edit;
    edit.SetMask(kDms, kDmsLit, "NSns");
    Type(edit, "0393015.25N");
    EXPECT_EQ(Caret(edit), 18);
    EXPECT_FALSE(edit.TypeChar(18, 'N')) << "the text never grows beyond the mask";
    EXPECT_TRUE(edit.TypeChar(6, '5'));
    EXPECT_EQ(Caret(edit), 7);
    EXPECT_TRUE(edit.TypeChar(7, '4')) << "on the apostrophe: to the seconds";
    EXPECT_EQ(TextOf(edit), "039" DEG " 35' 45.25'' N");
    const struct {
        int place;
        bool erased;
    } steps[] = {{1, true}, {3, false}, {11, false}, {17, true}, {18, false}, {-1, false}};
    for (const auto& s : steps) EXPECT_EQ(edit.EraseChar(s.place), s.erased) << s.place;
    EXPECT_EQ(TextOf(edit), "0_9" DEG " 35' 45.25'' _") << "open places shown again, fixed ones kept";
}

TEST(MaskEdit, TextSetByTheProgramIsTakenAsGiven) {
    const struct {
        Mask m;
        const char* set;
        int position;
        char ch;
        const char* text;  // null: refused
    } cases[] = {
        {kLon, "000" DEG " 00' 00.00'' E", 0, '1', "100" DEG " 00' 00.00'' E"},
        {kNumber, "0", 1, '5', "05"},  // grows at its end
        {kNumber, "0", 2, '5', nullptr},  // but not with a gap
        {kLat, "039", 3, '3', "039" DEG " 3"},  // skipped fixed places filled in
        {kLat, "039", 3, DEG[0], "039" DEG},
        {kNumber, "abc", 1, '1', "a1c"},
        {kNumber, "12345678901234567890", 14, '1', nullptr},
    };
    for (const auto& c : cases) {
        CMaskEdit edit;
        edit.SetMask(c.m.mask, c.m.literal, c.m.valid);
        edit.SetWindowText(c.set);
        EXPECT_EQ(TextOf(edit), c.set);
        EXPECT_EQ(edit.GetMask(), c.m.mask) << "setting text keeps the mask";
        EXPECT_EQ(edit.TypeChar(c.position, c.ch), c.text != nullptr) << c.set;
        EXPECT_EQ(TextOf(edit), c.text ? c.text : c.set);
    }
}

// Rows "0".."n-1" with columns "Field" and "Value".
void MakeList(CListFrame& list, int rows) {
    list.InsertColumn(0, "Field");
    list.InsertColumn(1, "Value");
    for (int i = 0; i < rows; ++i) list.InsertItem(i, std::to_string(i).c_str());
}

TEST(ListFrame, RowsColumnsAndCells) {
    CListFrame list;
    EXPECT_EQ(list.GetColumnCount(), 1) << "column 0 exists from the start";
    EXPECT_EQ(list.InsertItem(0, "Lat"), 0);
    EXPECT_EQ(list.InsertColumn(0, "Field"), 0) << "the first column names column 0";
    EXPECT_EQ(list.GetItemText(0, 0), "Lat");
    EXPECT_EQ(list.InsertColumn(5, "Value"), 1) << "beyond the end: at the end";
    EXPECT_EQ(list.InsertItem(5, "H"), 1);
    EXPECT_EQ(list.InsertItem(1, "Lon"), 1);
    EXPECT_TRUE(list.SetItemText(2, 1, "12.5"));
    EXPECT_EQ(list.InsertColumn(1, "Unit"), 1) << "moves later cells on";
    EXPECT_EQ(list.GetColumnCount(), 3);
    EXPECT_EQ(list.GetColumnHeading(2), "Value");
    EXPECT_EQ(list.GetItemText(2, 1) + list.GetItemText(2, 2), "12.5");
    EXPECT_EQ(list.GetItemText(1, 0), "Lon");
    EXPECT_TRUE(list.DeleteItem(1));
    EXPECT_EQ(list.GetItemText(1, 0), "H");
    EXPECT_FALSE(list.DeleteItem(2));
    EXPECT_TRUE(list.DeleteAllItems());
    EXPECT_EQ(list.GetItemCount(), 0);
    EXPECT_EQ(list.InsertItem(-1, "x"), -1);
    EXPECT_EQ(list.InsertColumn(-1, "x"), -1);
    EXPECT_EQ(list.GetColumnHeading(-1) + list.GetColumnHeading(3), "");
}

TEST(ListFrame, CellsThatDoNotExist) {
    CListFrame list;
    MakeList(list, 2);
    const int cells[][2] = {{2, 0}, {-1, 0}, {0, 2}, {0, -1}};
    for (const auto& [item, column] : cells) {
        SCOPED_TRACE(std::to_string(item) + "," + std::to_string(column));
        EXPECT_FALSE(list.SetItemText(item, column, "x"));
        list.SetMask(item, column, kNum, kNumLit, "NS");
        EXPECT_EQ(list.GetMask(item, column) + list.GetLiteral(item, column) + list.GetValid(item, column), "");
        EXPECT_FALSE(list.TypeChar(item, column, 0, '1'));
        EXPECT_FALSE(list.EraseChar(item, column, 0));
        char buf[4] = "##";
        EXPECT_EQ(list.GetItemText(item, column, buf, sizeof buf), 0);
        EXPECT_STREQ(buf, "") << "an empty text is still terminated";
    }
    EXPECT_EQ(list.GetMask(1, 1), "");
}

TEST(ListFrame, TextIntoABuffer) {
    CListFrame list;
    MakeList(list, 1);
    list.SetItemText(0, 1, "Longitude ");
    const struct {
        int size, copied;
        const char* text;
    } cases[] = {{1, 0, ""}, {2, 1, "L"}, {10, 9, "Longitude"}, {11, 10, "Longitude "}, {50, 10, "Longitude "}};
    for (const auto& c : cases) {
        char buf[64];
        std::memset(buf, '#', sizeof buf);
        EXPECT_EQ(list.GetItemText(0, 1, buf, c.size), c.copied) << c.size;
        EXPECT_STREQ(buf, c.text);
        EXPECT_EQ(buf[c.size], '#');
    }
    char buf[2] = {'#', '#'};
    EXPECT_EQ(list.GetItemText(0, 1, buf, 0), 0);
    EXPECT_EQ(buf[0], '#');
    EXPECT_EQ(list.GetItemText(0, 1, nullptr, 10), 0);
    EXPECT_TRUE(list.SetItemText(0, 1, nullptr));
    EXPECT_EQ(list.GetItemText(0, 1), "");
}

TEST(ListFrame, EachCellKeepsItsOwnMaskAndTypesByIt) {
    CListFrame list;
    MakeList(list, 3);
    list.SetMask(0, 1, kDms, kDmsLit, "WEwe");
    list.SetMask(1, 1, kDms, kDmsLit, "NSns");
    list.SetMask(2, 1, kNum, kNumLit, "");
    EXPECT_EQ(list.GetItemText(0, 1), kDmsLit);
    EXPECT_EQ(list.GetLiteral(2, 1), kNumLit);
    EXPECT_EQ(list.GetMask(2, 0), "");
    list.InsertItem(0, "new");  // the masks move with their cells
    EXPECT_EQ(list.GetValid(1, 1), "WEwe");
    EXPECT_EQ(list.GetValid(2, 1), "NSns");
    EXPECT_EQ(list.GetMask(0, 1), "");
    const struct {
        int position;
        char ch;
        bool accepted;
    } keys[] = {{0, '0', true}, {1, '4', true},  {2, '5', true},  {3, 'x', false}, {3, '1', true},
                {6, '0', true}, {9, '2', true},  {10, '0', true}, {12, '0', true}, {13, '0', true},
                {17, 'E', false}, {17, 'S', true}, {18, 'S', false}};
    for (const auto& k : keys) EXPECT_EQ(list.TypeChar(2, 1, k.position, k.ch), k.accepted) << k.position;
    EXPECT_EQ(list.GetItemText(2, 1), "045" DEG " 10' 20.00'' S");
    EXPECT_TRUE(list.EraseChar(2, 1, 17));
    EXPECT_FALSE(list.EraseChar(2, 1, 3));
    EXPECT_EQ(list.GetItemText(2, 1), "045" DEG " 10' 20.00'' _");
    EXPECT_TRUE(list.SetItemText(2, 1, "anything")) << "taken as given";
    EXPECT_EQ(list.GetItemText(2, 1), "anything");
    EXPECT_TRUE(list.TypeChar(0, 1, 0, 'x'));  // a cell without a mask types plainly
    EXPECT_TRUE(list.TypeChar(0, 1, 1, 'y'));
    EXPECT_FALSE(list.TypeChar(0, 1, 3, 'z'));
    EXPECT_TRUE(list.EraseChar(0, 1, 0));
    EXPECT_EQ(list.GetItemText(0, 1), "y");
}

}  // namespace
