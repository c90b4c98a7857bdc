// The window model: window text, visibility, enabled state and control ids of
// CWnd; handles and SendMessageA; the edit's selection and typing; the check
// state of a button; the items, sorting, selection and searches of a combo
// box. The expected values are Windows' documented behaviour.
#include <mapwright/afxwin.h>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

#define DEG "\xB0"  // the degree sign in Windows-1251

std::string TextOf(const CWnd& window) {
    CString text;
    window.GetWindowText(text);
    return text.GetString();
}

std::string Items(const CComboBox& box) {
    std::string all;
    for (int i = 0; i < box.GetCount(); ++i) {
        CString item;
        box.GetLBText(i, item);
        all += (i ? "|" : "");
        all += item.GetString();
    }
    return all;
}

// ---- CWnd ----------------------------------------------------------------

TEST(Window, TextIsKeptByteForByte) {
    const struct {
        const char* set;
        const char* expected;
        const char* why;
    } cases[] = {
        {"Datum", "Datum", "plain text"},
        {"", "", "the empty text"},
        {nullptr, "", "null sets the empty text, as Windows does"},
        {"000" DEG " 00' 00.00'' N", "000" DEG " 00' 00.00'' N", "Windows-1251 bytes above 0x7F kept"},
        {"\xD8\xE8\xF0\xEE\xF2\xE0 ", "\xD8\xE8\xF0\xEE\xF2\xE0 ", "Cyrillic with a trailing blank"},
    };
    for (const auto& c : cases) {
        CWnd window;
        window.SetWindowText("something before");
        window.SetWindowText(c.set);
        EXPECT_EQ(TextOf(window), c.expected) << c.why;
        EXPECT_EQ(window.GetWindowTextLength(), static_cast<int>(std::strlen(c.expected))) << c.why;
    }
}

TEST(Window, LongTextIsKeptWhole) {
    const std::string longText(100000, 'x');
    CWnd window;
    window.SetWindowText(longText.c_str());
    EXPECT_EQ(window.GetWindowTextLength(), 100000);
    EXPECT_EQ(TextOf(window), longText);
}

TEST(Window, TextIntoABufferIsCutAndTerminated) {
    // Windows' contract: at most size - 1 bytes and a NUL; nothing written for
    // size 0; the count of bytes copied returned.
    const struct {
        int size;
        int copied;
        const char* expected;
    } cases[] = {
        {1, 0, ""}, {2, 1, "L"}, {9, 8, "Latitude"}, {10, 9, "Latitude "}, {11, 9, "Latitude "}, {64, 9, "Latitude "},
    };
    CWnd window;
    window.SetWindowText("Latitude ");
    for (const auto& c : cases) {
        char buffer[80];
        std::memset(buffer, '#', sizeof buffer);
        EXPECT_EQ(window.GetWindowText(buffer, c.size), c.copied) << "size " << c.size;
        EXPECT_STREQ(buffer, c.expected) << "size " << c.size;
        EXPECT_EQ(buffer[c.size], '#') << "nothing written past the buffer, size " << c.size;
    }
    char untouched[4] = {'#', '#', '#', '#'};
    EXPECT_EQ(window.GetWindowText(untouched, 0), 0);
    EXPECT_EQ(window.GetWindowText(untouched, -5), 0);
    EXPECT_EQ(untouched[0], '#') << "size 0 writes nothing";
    EXPECT_EQ(window.GetWindowText(nullptr, 10), 0);
}

TEST(Window, ShowWindowReportsThePreviousVisibility) {
    // Each step: the command, what ShowWindow returns (was it visible?), and
    // the visibility after it.
    const struct {
        int command;
        BOOL wasVisible;
        BOOL visible;
    } steps[] = {
        {SW_HIDE, TRUE, FALSE},  // a new control is visible
        {SW_HIDE, FALSE, FALSE}, {SW_SHOW, FALSE, TRUE}, {SW_SHOW, TRUE, TRUE},        {SW_HIDE, TRUE, FALSE},
        {SW_SHOWNA, FALSE, TRUE}, {SW_HIDE, TRUE, FALSE}, {SW_SHOWNORMAL, FALSE, TRUE},
    };
    CWnd window;
    EXPECT_TRUE(window.IsWindowVisible());
    int i = 0;
    for (const auto& s : steps) {
        EXPECT_EQ(window.ShowWindow(s.command), s.wasVisible) << "step " << i;
        EXPECT_EQ(window.IsWindowVisible(), s.visible) << "step " << i;
        ++i;
    }
}

TEST(Window, EnableWindowReportsWhetherItWasDisabled) {
    const struct {
        BOOL enable;
        BOOL wasDisabled;
        BOOL enabled;
    } steps[] = {
        {FALSE, FALSE, FALSE}, {FALSE, TRUE, FALSE}, {TRUE, TRUE, TRUE}, {TRUE, FALSE, TRUE}, {7, FALSE, TRUE},
    };
    CWnd window;
    EXPECT_TRUE(window.IsWindowEnabled());
    int i = 0;
    for (const auto& s : steps) {
        EXPECT_EQ(window.EnableWindow(s.enable), s.wasDisabled) << "step " << i;
        EXPECT_EQ(window.IsWindowEnabled(), s.enabled) << "step " << i;
        ++i;
    }
    // Visibility and enabled state are independent.
    window.EnableWindow(FALSE);
    window.ShowWindow(SW_HIDE);
    window.ShowWindow(SW_SHOW);
    EXPECT_FALSE(window.IsWindowEnabled());
}

TEST(Window, ControlIdAndStyle) {
    CWnd window;
    EXPECT_EQ(window.GetDlgCtrlID(), 0);
    EXPECT_EQ(window.SetDlgCtrlID(801), 0);
    EXPECT_EQ(window.SetDlgCtrlID(802), 801);
    EXPECT_EQ(window.GetDlgCtrlID(), 802);

    EXPECT_EQ(window.GetStyle(), WS_VISIBLE);
    EXPECT_FALSE(window.ModifyStyle(0, WS_VISIBLE)) << "no change";
    EXPECT_TRUE(window.ModifyStyle(WS_VISIBLE, WS_DISABLED));
    EXPECT_FALSE(window.IsWindowVisible());
    EXPECT_FALSE(window.IsWindowEnabled());
}

TEST(Window, TextMessagesMatchTheMembers) {
    CWnd window;
    EXPECT_EQ(window.SendMessage(WM_SETTEXT, 0, reinterpret_cast<LPARAM>("Height ")), TRUE);
    EXPECT_EQ(TextOf(window), "Height ");
    EXPECT_EQ(window.SendMessage(WM_GETTEXTLENGTH), 7);
    char buffer[5];
    EXPECT_EQ(window.SendMessage(WM_GETTEXT, sizeof buffer, reinterpret_cast<LPARAM>(buffer)), 4);
    EXPECT_STREQ(buffer, "Heig");
    EXPECT_EQ(window.SendMessage(WM_GETTEXT, 0, reinterpret_cast<LPARAM>(buffer)), 0);
    EXPECT_EQ(window.SendMessage(0x7FFFu, 1, 2), 0) << "a message the model does not know";
}

TEST(Window, HandlesReachLiveWindowsOnly) {
    auto edit = std::make_unique<CEdit>();
    CButton button;
    const HWND editHandle = edit->GetSafeHwnd();
    ASSERT_NE(editHandle, nullptr);
    EXPECT_NE(editHandle, button.m_hWnd);
    EXPECT_TRUE(IsWindow(editHandle));
    EXPECT_EQ(CWnd::FromHandle(editHandle), edit.get());

    EXPECT_EQ(SendMessageA(editHandle, WM_SETTEXT, 0, reinterpret_cast<LPARAM>("1")), TRUE);
    EXPECT_EQ(TextOf(*edit), "1");
    SendMessageA(button.m_hWnd, BM_SETCHECK, BST_CHECKED, 0);
    EXPECT_EQ(SendMessageA(button.m_hWnd, BM_GETCHECK, 0, 0), BST_CHECKED);

    edit.reset();
    EXPECT_FALSE(IsWindow(editHandle));
    EXPECT_EQ(CWnd::FromHandle(editHandle), nullptr);
    EXPECT_EQ(SendMessageA(editHandle, WM_GETTEXTLENGTH, 0, 0), 0);
    // A window made afterwards never gets the old handle.
    CEdit next;
    EXPECT_NE(next.m_hWnd, editHandle);
    EXPECT_FALSE(IsWindow(nullptr));
    EXPECT_EQ(SendMessageA(nullptr, WM_GETTEXTLENGTH, 0, 0), 0);
}

TEST(Window, AHandleChangedByTheHostDoesNotLeaveAStaleEntry) {
    HWND original;
    {
        CWnd window;
        original = window.m_hWnd;
        window.m_hWnd = nullptr;
    }
    EXPECT_FALSE(IsWindow(original));
}

// ---- CEdit ---------------------------------------------------------------

TEST(Edit, SelectionIsClampedToTheText) {
    // Text "abcdef" (6 bytes).
    const struct {
        int start, end;
        int expectStart, expectEnd;
        const char* why;
    } cases[] = {
        {1, 3, 1, 3, "inside"},
        {0, -1, 0, 6, "0, -1 selects everything"},
        {2, 99, 2, 6, "end beyond the text"},
        {-4, 2, 0, 2, "negative start other than -1"},
        {5, 2, 2, 5, "reversed"},
        {9, 9, 6, 6, "both beyond the text"},
    };
    for (const auto& c : cases) {
        CEdit edit;
        edit.SetWindowText("abcdef");
        edit.SetSel(c.start, c.end);
        int s = -9, e = -9;
        edit.GetSel(s, e);
        EXPECT_EQ(s, c.expectStart) << c.why;
        EXPECT_EQ(e, c.expectEnd) << c.why;
        EXPECT_EQ(edit.GetSel(), static_cast<DWORD>(MAKELONG(c.expectStart, c.expectEnd))) << c.why;
    }
    CEdit edit;
    edit.SetWindowText("abcdef");
    edit.SetSel(1, 4);
    edit.SetSel(-1, 0);
    int s, e;
    edit.GetSel(s, e);
    EXPECT_EQ(s, 4) << "-1 removes the selection, the caret stays at its end";
    EXPECT_EQ(e, 4);
    edit.SetWindowText("xy");
    edit.GetSel(s, e);
    EXPECT_EQ(s, 0) << "new text puts the caret at the start";
    EXPECT_EQ(e, 0);
    DWORD ws = 99, we = 99;
    edit.SetSel(1, 2);
    EXPECT_EQ(edit.SendMessage(EM_GETSEL, reinterpret_cast<WPARAM>(&ws), reinterpret_cast<LPARAM>(&we)), MAKELONG(1, 2));
    EXPECT_EQ(ws, 1u);
    EXPECT_EQ(we, 2u);
}

TEST(Edit, TypingInsertsAtTheCaret) {
    const struct {
        const char* before;
        int position;
        char ch;
        BOOL accepted;
        const char* after;
        int caret;
        const char* why;
    } cases[] = {
        {"", 0, '5', TRUE, "5", 1, "into an empty edit"},
        {"12", 0, '-', TRUE, "-12", 1, "at the start"},
        {"12", 1, '.', TRUE, "1.2", 2, "in the middle"},
        {"12", 2, '\xB0', TRUE, "12" DEG, 3, "a byte above 0x7F at the end"},
        {"12", 3, '3', FALSE, "12", -1, "beyond the end"},
        {"12", -1, '3', FALSE, "12", -1, "before the start"},
        {"12", 1, '\0', FALSE, "12", -1, "NUL is never text"},
    };
    for (const auto& c : cases) {
        CEdit edit;
        edit.SetWindowText(c.before);
        edit.SetSel(1, 1);
        EXPECT_EQ(edit.TypeChar(c.position, c.ch), c.accepted) << c.why;
        EXPECT_EQ(TextOf(edit), c.after) << c.why;
        int s, e;
        edit.GetSel(s, e);
        const int caret = c.accepted ? c.caret : (static_cast<int>(std::strlen(c.before)) >= 1 ? 1 : 0);
        EXPECT_EQ(s, caret) << c.why;
        EXPECT_EQ(e, caret) << c.why;
    }
}

TEST(Edit, ErasingRemovesOneCharacter) {
    const struct {
        int position;
        BOOL erased;
        const char* after;
    } cases[] = {{0, TRUE, "bc"}, {2, TRUE, "ab"}, {3, FALSE, "abc"}, {-1, FALSE, "abc"}};
    for (const auto& c : cases) {
        CEdit edit;
        edit.SetWindowText("abc");
        EXPECT_EQ(edit.EraseChar(c.position), c.erased) << c.position;
        EXPECT_EQ(TextOf(edit), c.after) << c.position;
    }
}

TEST(Edit, TypingGoesThroughTheVirtualMemberOfTheBase) {
    // A back end holds controls as CWnd or CEdit and types through the base.
    struct Counting : CEdit {
        int typed = 0;
        BOOL TypeChar(int position, char ch) override {
            ++typed;
            return CEdit::TypeChar(position, ch);
        }
    } counting;
    CEdit& base = counting;
    base.TypeChar(0, 'a');
    EXPECT_EQ(counting.typed, 1);
    EXPECT_EQ(TextOf(counting), "a");
}

// ---- CStatic and CButton -------------------------------------------------

TEST(Static, HoldsItsLabel) {
    CStatic label;
    label.SetWindowText("UTM Zone ");
    EXPECT_EQ(TextOf(label), "UTM Zone ");
    label.SetWindowText("");
    EXPECT_EQ(label.GetWindowTextLength(), 0);
}

TEST(Button, CheckState) {
    const struct {
        int set;
        int expected;
        const char* why;
    } cases[] = {
        {BST_CHECKED, BST_CHECKED, "checked"},
        {BST_UNCHECKED, BST_UNCHECKED, "unchecked"},
        {BST_INDETERMINATE, BST_INDETERMINATE, "the third state"},
        {7, BST_CHECKED, "any other value checks"},
        {-1, BST_CHECKED, "a negative value checks too"},
    };
    for (const auto& c : cases) {
        CButton button;
        EXPECT_EQ(button.GetCheck(), BST_UNCHECKED) << "a new button is unchecked";
        button.SetCheck(c.set);
        EXPECT_EQ(button.GetCheck(), c.expected) << c.why;
        EXPECT_EQ(button.SendMessage(BM_GETCHECK), c.expected) << c.why;
    }
    CButton button;
    button.SendMessage(BM_SETCHECK, BST_CHECKED);
    EXPECT_EQ(button.GetCheck(), BST_CHECKED);
    button.SetWindowText("Height");
    EXPECT_EQ(TextOf(button), "Height") << "a button has its caption as window text";
    EXPECT_EQ(button.GetCheck(), BST_CHECKED);
}

// ---- CComboBox -----------------------------------------------------------

TEST(ComboBox, UnsortedListKeepsTheOrderOfAdding) {
    CComboBox box;
    EXPECT_EQ(box.GetCount(), 0);
    EXPECT_EQ(box.GetCurSel(), CB_ERR);
    EXPECT_EQ(box.AddString("\xC3\xE5\xEE\xE3\xF0\xE0\xF4\xE8\xF7\xE5\xF1\xEA\xE0\xFF"), 0);  // "Географическая"
    EXPECT_EQ(box.AddString("UTM"), 1);
    EXPECT_EQ(box.AddString("Gauss-Kruger"), 2);
    EXPECT_EQ(box.AddString(nullptr), 3) << "null counts as the empty text";
    EXPECT_EQ(Items(box), "\xC3\xE5\xEE\xE3\xF0\xE0\xF4\xE8\xF7\xE5\xF1\xEA\xE0\xFF|UTM|Gauss-Kruger|");
}

TEST(ComboBox, SortedListInsertsInOrder) {
    // Each row: the text added, the index AddString returns, and the list
    // after it. Letters compare without regard to case.
    const struct {
        const char* add;
        int index;
        const char* list;
    } steps[] = {
        {"Geographic", 0, "Geographic"},
        {"UTM", 1, "Geographic|UTM"},
        {"Gauss-Kruger", 0, "Gauss-Kruger|Geographic|UTM"},
        {"Transverse Mercator", 2, "Gauss-Kruger|Geographic|Transverse Mercator|UTM"},
        {"Mercator", 2, "Gauss-Kruger|Geographic|Mercator|Transverse Mercator|UTM"},
        {"Polar Stereographic", 3, "Gauss-Kruger|Geographic|Mercator|Polar Stereographic|Transverse Mercator|UTM"},
        {"geographic", 2, "Gauss-Kruger|Geographic|geographic|Mercator|Polar Stereographic|Transverse Mercator|UTM"},
        {"", 0, "|Gauss-Kruger|Geographic|geographic|Mercator|Polar Stereographic|Transverse Mercator|UTM"},
    };
    CComboBox box;
    box.ModifyStyle(0, CBS_SORT);
    for (const auto& s : steps) {
        EXPECT_EQ(box.AddString(s.add), s.index) << s.add;
        EXPECT_EQ(Items(box), s.list) << s.add;
    }
}

TEST(ComboBox, SortingFoldsCyrillicAndLatinCase) {
    // Byte order would put "Banana" before "apple" and "Я" (0xDF) before "а" (0xE0).
    CComboBox box;
    box.ModifyStyle(0, CBS_SORT);
    for (const char* s : {"cherry", "Banana", "apple", "\xDF\xE1\xEB\xEE\xEA\xEE", "\xE0\xE1\xF0\xE8\xEA\xEE\xF1", "\xC1\xE0\xED\xE0\xED"})
        box.AddString(s);
    // "Яблоко", "абрикос", "Банан" sort as а < Б < Я, after the Latin letters.
    EXPECT_EQ(Items(box), "apple|Banana|cherry|\xE0\xE1\xF0\xE8\xEA\xEE\xF1|\xC1\xE0\xED\xE0\xED|\xDF\xE1\xEB\xEE\xEA\xEE");
}

TEST(ComboBox, SelectionAndWindowTextOfADropDownList) {
    CComboBox box;
    box.AddString("WGS 84");
    box.AddString("Krassovsky 1940");
    EXPECT_EQ(TextOf(box), "") << "nothing selected";
    EXPECT_EQ(box.SetCurSel(1), 1);
    EXPECT_EQ(box.GetCurSel(), 1);
    EXPECT_EQ(TextOf(box), "Krassovsky 1940");
    EXPECT_EQ(box.GetWindowTextLength(), 15);

    // A drop-down list has no edit field: its text is its selected item.
    box.SetWindowText("Something else");
    EXPECT_EQ(TextOf(box), "Krassovsky 1940");
    EXPECT_EQ(box.SendMessage(WM_SETTEXT, 0, reinterpret_cast<LPARAM>("x")), CB_ERR);

    const int outside[] = {2, 100, -1, -7};
    for (int index : outside) {
        box.SetCurSel(0);
        EXPECT_EQ(box.SetCurSel(index), CB_ERR) << index;
        EXPECT_EQ(box.GetCurSel(), CB_ERR) << "the selection is cleared, index " << index;
        EXPECT_EQ(TextOf(box), "") << index;
    }
}

TEST(ComboBox, TheSelectionStaysOnItsItem) {
    CComboBox box;
    box.ModifyStyle(0, CBS_SORT);
    box.AddString("b");
    box.AddString("d");
    box.SetCurSel(1);  // "d"
    box.AddString("a");
    EXPECT_EQ(box.GetCurSel(), 2) << "an item sorted in before it";
    box.AddString("e");
    EXPECT_EQ(box.GetCurSel(), 2) << "an item after it";
    box.InsertString(0, "z");
    EXPECT_EQ(box.GetCurSel(), 3);
    EXPECT_EQ(TextOf(box), "d");
    EXPECT_EQ(box.DeleteString(0), 4) << "the count left";
    EXPECT_EQ(box.GetCurSel(), 2);
    EXPECT_EQ(box.DeleteString(2), 3);
    EXPECT_EQ(box.GetCurSel(), CB_ERR) << "the selected item deleted";
    EXPECT_EQ(box.DeleteString(3), CB_ERR);
    EXPECT_EQ(Items(box), "a|b|e");
}

TEST(ComboBox, InsertStringNeverSorts) {
    CComboBox box;
    box.ModifyStyle(0, CBS_SORT);
    box.AddString("m");
    EXPECT_EQ(box.InsertString(-1, "a"), 1) << "-1 is the end";
    EXPECT_EQ(box.InsertString(0, "z"), 0);
    EXPECT_EQ(box.InsertString(3, "y"), 3) << "the end itself";
    EXPECT_EQ(box.InsertString(5, "x"), CB_ERR) << "beyond the end";
    EXPECT_EQ(box.InsertString(-2, "x"), CB_ERR);
    EXPECT_EQ(Items(box), "z|m|a|y");
}

TEST(ComboBox, SearchesIgnoreCaseAndGoRound) {
    CComboBox box;
    for (const char* s : {"WGS 84", "Pulkovo 1942", "wgs 72", "Krassovsky 1940", "WGS 84"}) box.AddString(s);
    const struct {
        int startAfter;
        const char* text;
        int prefix;  // FindString
        int exact;   // FindStringExact
        const char* why;
    } cases[] = {
        {-1, "wgs", 0, CB_ERR, "prefix, other case"},
        {0, "wgs", 2, CB_ERR, "starts after item 0"},
        {2, "WGS", 4, CB_ERR, ""},
        {4, "wgs", 0, CB_ERR, "goes round past the end"},
        {-1, "WGS 84", 0, 0, "exact match"},
        {0, "wgs 84", 4, 4, "exact match, other case, after item 0"},
        {-1, "Krassovsky 1940 ", CB_ERR, CB_ERR, "longer than the item"},
        {-1, "Pulkovo", 1, CB_ERR, "a prefix is no exact match"},
        {-1, "", 0, CB_ERR, "the empty prefix matches the first item"},
        {99, "Pul", 1, CB_ERR, "a start outside the list searches from the first"},
        {-1, "NAD 27", CB_ERR, CB_ERR, "absent"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(box.FindString(c.startAfter, c.text), c.prefix) << c.why;
        EXPECT_EQ(box.FindStringExact(c.startAfter, c.text), c.exact) << c.why;
    }
}

TEST(ComboBox, SelectStringSelectsThePrefixMatch) {
    CComboBox box;
    for (const char* s : {"Mercator", "UTM", "Transverse Mercator"}) box.AddString(s);
    EXPECT_EQ(box.SelectString(-1, "trans"), 2);
    EXPECT_EQ(box.GetCurSel(), 2);
    EXPECT_EQ(TextOf(box), "Transverse Mercator");
    EXPECT_EQ(box.SelectString(-1, "Polar"), CB_ERR);
    EXPECT_EQ(box.GetCurSel(), 2) << "no match leaves the selection";
    EXPECT_EQ(box.SelectString(-1, nullptr), 0) << "null counts as the empty prefix";
}

TEST(ComboBox, ResetContentEmptiesTheList) {
    CComboBox box;
    box.AddString("WGS 84");
    box.SetCurSel(0);
    // The dialog empties its datum list by message.
    EXPECT_EQ(SendMessageA(box.m_hWnd, CB_RESETCONTENT, 0, 0), CB_OKAY);
    EXPECT_EQ(box.GetCount(), 0);
    EXPECT_EQ(box.GetCurSel(), CB_ERR);
    EXPECT_EQ(TextOf(box), "");
    box.ResetContent();
    EXPECT_EQ(box.GetCount(), 0);
}

TEST(ComboBox, ItemTextOutsideTheListIsAnError) {
    CComboBox box;
    box.AddString("WGS 84");
    CString text("unchanged?");
    box.GetLBText(0, text);
    EXPECT_EQ(text, "WGS 84");
    for (int index : {1, -1, 1000}) {
        box.GetLBText(index, text);
        EXPECT_TRUE(text.IsEmpty()) << index;
        EXPECT_EQ(box.GetLBTextLen(index), CB_ERR) << index;
        char buffer[8] = "#";
        EXPECT_EQ(box.GetLBText(index, buffer), CB_ERR) << index;
        EXPECT_STREQ(buffer, "#") << index;
    }
    char buffer[7];
    EXPECT_EQ(box.GetLBTextLen(0), 6);
    EXPECT_EQ(box.GetLBText(0, buffer), 6);
    EXPECT_STREQ(buffer, "WGS 84");
    EXPECT_EQ(box.GetLBText(0, nullptr), CB_ERR);
}

TEST(ComboBox, ADropDownWithAnEditFieldKeepsItsOwnText) {
    CComboBox box;
    box.ModifyStyle(CBS_DROPDOWNLIST, CBS_DROPDOWN);
    box.AddString("10");
    box.AddString("20");
    box.SetWindowText("15");
    EXPECT_EQ(TextOf(box), "15");
    EXPECT_EQ(box.GetCurSel(), CB_ERR);
    box.SetCurSel(1);
    EXPECT_EQ(TextOf(box), "20") << "the edit field takes the selected item";
    box.SetCurSel(-1);
    EXPECT_EQ(TextOf(box), "");
    box.SetWindowText("33");
    box.ResetContent();
    EXPECT_EQ(TextOf(box), "") << "emptying the list empties the edit field";
}

}  // namespace
