// The window model against Windows' documented behaviour: text, visibility,
// handles and messages; the edit's selection and typing; buttons; combo boxes.
#include <mapwright/afxwin.h>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

namespace {

#define DEG "\xB0"  // the degree sign in Windows-1251

std::string TextOf(const CWnd& w) {
    CString text;
    w.GetWindowText(text);
    return text.GetString();
}

std::string Items(const CComboBox& box) {
    std::string all;
    for (int i = 0; i < box.GetCount(); ++i) {
        CString item;
        box.GetLBText(i, item);
        all.append(i ? "|" : "").append(item.GetString());
    }
    return all;
}

TEST(Window, TextIsKeptByteForByteAndCutToTheBuffer) {
    CWnd w;
    for (const char* text : {"", "000" DEG " 00' N ", "\xD8\xE8\xF0"}) {
        w.SetWindowText(text);
        EXPECT_EQ(TextOf(w), text);
        EXPECT_EQ(w.GetWindowTextLength(), int(std::strlen(text)));
    }
    w.SetWindowText(nullptr);
    EXPECT_EQ(TextOf(w), "") << "null sets the empty text";
    w.SetWindowText(std::string(100000, 'x').c_str());
    EXPECT_EQ(TextOf(w), std::string(100000, 'x'));
    // At most size - 1 bytes and a NUL; nothing for size 0; the count copied.
    w.SetWindowText("Latitude ");
    const struct {
        int size, copied;
        const char* text;
    } cases[] = {{1, 0, ""}, {2, 1, "L"}, {9, 8, "Latitude"}, {10, 9, "Latitude "}, {64, 9, "Latitude "}};
    for (const auto& c : cases) {
        char buf[80];
        std::memset(buf, '#', sizeof buf);
        EXPECT_EQ(w.GetWindowText(buf, c.size), c.copied) << c.size;
        EXPECT_STREQ(buf, c.text) << c.size;
        EXPECT_EQ(buf[c.size], '#') << c.size;
    }
    char buf[4] = "##";
    EXPECT_EQ(w.GetWindowText(buf, 0), 0);
    EXPECT_EQ(w.GetWindowText(buf, -5), 0);
    EXPECT_EQ(buf[0], '#');
    EXPECT_EQ(w.GetWindowText(nullptr, 10), 0);
}

TEST(Window, ShowAndEnableReportThePreviousState) {
    const int show[][3] = {{SW_HIDE, TRUE, FALSE}, {SW_HIDE, FALSE, FALSE}, {SW_SHOW, FALSE, TRUE},
                           {SW_SHOW, TRUE, TRUE},  {SW_HIDE, TRUE, FALSE},  {SW_SHOWNA, FALSE, TRUE},
                           {SW_HIDE, TRUE, FALSE}, {SW_SHOWNORMAL, FALSE, TRUE}};
    const int enable[][3] = {{FALSE, FALSE, FALSE}, {FALSE, TRUE, FALSE}, {TRUE, TRUE, TRUE},
                             {TRUE, FALSE, TRUE},   {7, FALSE, TRUE}};
    CWnd w;
    for (const auto& s : show) {  // command, was visible, visible
        EXPECT_EQ(w.ShowWindow(s[0]), s[1]) << s[0];
        EXPECT_EQ(w.IsWindowVisible(), s[2]) << s[0];
    }
    for (const auto& s : enable) {  // enable, was disabled, enabled
        EXPECT_EQ(w.EnableWindow(s[0]), s[1]) << s[0];
        EXPECT_EQ(w.IsWindowEnabled(), s[2]) << s[0];
    }
    EXPECT_EQ(w.SetDlgCtrlID(801), 0);
    EXPECT_EQ(w.SetDlgCtrlID(802), 801);
    EXPECT_EQ(w.GetDlgCtrlID(), 802);
    EXPECT_EQ(w.GetStyle(), WS_VISIBLE);
    EXPECT_FALSE(w.ModifyStyle(0, WS_VISIBLE)) << "no change";
    EXPECT_TRUE(w.ModifyStyle(WS_VISIBLE, WS_DISABLED));
    EXPECT_FALSE(w.IsWindowVisible());
    EXPECT_FALSE(w.IsWindowEnabled());
}

TEST(Window, MessagesReachLiveWindowsOnly) {
    auto edit = std::make_unique<CEdit>();
    CButton button;
    const HWND h = edit->GetSafeHwnd();
    ASSERT_NE(h, nullptr);
    EXPECT_NE(h, button.m_hWnd);
    EXPECT_EQ(CWnd::FromHandle(h), edit.get());
    EXPECT_EQ(SendMessageA(h, WM_SETTEXT, 0, LPARAM("Height ")), TRUE);
    EXPECT_EQ(SendMessageA(h, WM_GETTEXTLENGTH, 0, 0), 7);
    char buf[5];
    EXPECT_EQ(edit->SendMessage(WM_GETTEXT, sizeof buf, LPARAM(buf)), 4);
    EXPECT_STREQ(buf, "Heig");
    EXPECT_EQ(edit->SendMessage(WM_GETTEXT, 0, LPARAM(buf)), 0);
    EXPECT_EQ(edit->SendMessage(0x7FFFu, 1, 2), 0) << "an unknown message";
    SendMessageA(button.m_hWnd, BM_SETCHECK, BST_CHECKED, 0);
    EXPECT_EQ(SendMessageA(button.m_hWnd, BM_GETCHECK, 0, 0), BST_CHECKED);
    edit.reset();
    EXPECT_FALSE(IsWindow(h));
    EXPECT_EQ(CWnd::FromHandle(h), nullptr);
    EXPECT_EQ(SendMessageA(h, WM_GETTEXTLENGTH, 0, 0), 0);
    EXPECT_NE(CEdit().m_hWnd, h) << "handles are never reused";
    EXPECT_FALSE(IsWindow(nullptr));
    HWND original;
    {
        CWnd w;  // a handle changed by the host leaves no stale entry
        original = w.m_hWnd;
        w.m_hWnd = nullptr;
    }
    EXPECT_FALSE(IsWindow(original));
}

TEST(Edit, SelectionIsClampedToTheText) {
    const int cases[][4] = {{1, 3, 1, 3}, {0, -1, 0, 6}, {2, 99, 2, 6}, {-4, 2, 0, 2}, {5, 2, 2, 5}, {9, 9, 6, 6}};
    for (const auto& c : cases) {
        CEdit edit;
        edit.SetWindowText("abcdef");
        edit.SetSel(c[0], c[1]);
        DWORD s = 99, e = 99;
        EXPECT_EQ(edit.SendMessage(EM_GETSEL, WPARAM(&s), LPARAM(&e)), MAKELONG(c[2], c[3])) << c[0] << "," << c[1];
        EXPECT_EQ(s, DWORD(c[2]));
        EXPECT_EQ(e, DWORD(c[3]));
    }
    CEdit edit;
    edit.SetWindowText("abcdef");
    edit.SetSel(1, 4);
    edit.SetSel(-1, 0);
    EXPECT_EQ(edit.GetSel(), DWORD(MAKELONG(4, 4))) << "-1 removes the selection; the caret stays";
    edit.SetWindowText("xy");
    int s, e;
    edit.GetSel(s, e);
    EXPECT_EQ(s + e, 0) << "new text puts the caret at the start";
}

TEST(Edit, TypingInsertsAtTheCaretAndErasingRemoves) {
    const struct {
        const char* before;
        int position;
        char ch;
        const char* after;  // null: refused, the caret stays at 1
    } cases[] = {
        {"", 0, '5', "5"},      {"12", 0, '-', "-12"},  {"12", 1, '.', "1.2"}, {"12", 2, '\xB0', "12" DEG},
        {"12", 3, '3', nullptr}, {"12", -1, '3', nullptr}, {"12", 1, '\0', nullptr},
    };
    for (const auto& c : cases) {
        CEdit edit;
        edit.SetWindowText(c.before);
        edit.SetSel(1, 1);
        CEdit& base = edit;  // a back end types through the virtual member
        EXPECT_EQ(base.TypeChar(c.position, c.ch), c.after != nullptr) << c.before << c.position;
        EXPECT_EQ(TextOf(edit), c.after ? c.after : c.before);
        const int caret = c.after ? c.position + 1 : std::strlen(c.before) > 0;
        EXPECT_EQ(edit.GetSel(), DWORD(MAKELONG(caret, caret))) << c.before << c.position;
    }
    const struct {
        int position;
        const char* after;
    } erase[] = {{0, "bc"}, {2, "ab"}, {3, nullptr}, {-1, nullptr}};
    for (const auto& c : erase) {
        CEdit edit;
        edit.SetWindowText("abc");
        EXPECT_EQ(edit.EraseChar(c.position), c.after != nullptr) << c.position;
        EXPECT_EQ(TextOf(edit), c.after ? c.after : "abc");
    }
}

TEST(Button, CheckStateAndCaption) {
    const int cases[][2] = {{BST_CHECKED, BST_CHECKED}, {BST_UNCHECKED, BST_UNCHECKED},
                            {BST_INDETERMINATE, BST_INDETERMINATE}, {7, BST_CHECKED}, {-1, BST_CHECKED}};
    for (const auto& c : cases) {
        CButton button;
        EXPECT_EQ(button.GetCheck(), BST_UNCHECKED);
        button.SetCheck(c[0]);
        EXPECT_EQ(button.SendMessage(BM_GETCHECK), c[1]) << c[0];
    }
    CButton button;
    button.SendMessage(BM_SETCHECK, BST_CHECKED);
    button.SetWindowText("Height");
    EXPECT_EQ(TextOf(button), "Height");
    EXPECT_EQ(button.GetCheck(), BST_CHECKED);
}

TEST(ComboBox, AddStringKeepsOrderOrSortsWithoutCase) {
    CComboBox plain;
    for (const char* s : {"\xC3\xE5\xEE", "UTM", "Gauss", static_cast<const char*>(nullptr)}) plain.AddString(s);
    EXPECT_EQ(Items(plain), "\xC3\xE5\xEE|UTM|Gauss|");
    const std::pair<const char*, int> steps[] = {{"Geographic", 0}, {"UTM", 1},       {"Gauss", 0},
                                                 {"Mercator", 2},   {"geographic", 2}, {"", 0}};
    CComboBox box;
    box.ModifyStyle(0, CBS_SORT);
    for (const auto& [text, index] : steps) EXPECT_EQ(box.AddString(text), index) << text;
    EXPECT_EQ(Items(box), "|Gauss|Geographic|geographic|Mercator|UTM");
    // Byte order would put "Banana" before "apple" and 0xDF before 0xE0.
    CComboBox folded;
    folded.ModifyStyle(0, CBS_SORT);
    for (const char* s : {"cherry", "Banana", "apple", "\xDF\xE1", "\xE0\xE1", "\xC1\xE0"}) folded.AddString(s);
    EXPECT_EQ(Items(folded), "apple|Banana|cherry|\xE0\xE1|\xC1\xE0|\xDF\xE1");
}

TEST(ComboBox, TheSelectionStaysOnItsItem) {
    CComboBox box;
    box.ModifyStyle(0, CBS_SORT);
    EXPECT_EQ(box.GetCurSel(), CB_ERR);
    box.AddString("b");
    box.AddString("d");
    box.SetCurSel(1);
    box.AddString("a");
    EXPECT_EQ(box.GetCurSel(), 2) << "an item sorted in before it";
    box.AddString("e");
    EXPECT_EQ(box.GetCurSel(), 2) << "an item after it";
    EXPECT_EQ(box.InsertString(0, "z"), 0) << "InsertString never sorts";
    EXPECT_EQ(box.GetCurSel(), 3);
    EXPECT_EQ(TextOf(box), "d");
    EXPECT_EQ(box.DeleteString(0), 4) << "the count left";
    EXPECT_EQ(box.GetCurSel(), 2);
    EXPECT_EQ(box.DeleteString(2), 3);
    EXPECT_EQ(box.GetCurSel(), CB_ERR) << "the selected item deleted";
    EXPECT_EQ(box.DeleteString(3), CB_ERR);
    EXPECT_EQ(box.InsertString(-1, "y"), 3) << "-1 is the end";
    EXPECT_EQ(box.InsertString(4, "x"), 4) << "the end itself";
    EXPECT_EQ(box.InsertString(6, "w"), CB_ERR);
    EXPECT_EQ(box.InsertString(-2, "w"), CB_ERR);
    EXPECT_EQ(Items(box), "a|b|e|y|x");
}

TEST(ComboBox, ADropDownListShowsItsSelection) {
    CComboBox box;
    box.AddString("WGS 84");
    box.AddString("Krassovsky 1940");
    EXPECT_EQ(TextOf(box), "");
    EXPECT_EQ(box.SetCurSel(1), 1);
    EXPECT_EQ(TextOf(box), "Krassovsky 1940");
    box.SetWindowText("Other");  // no edit field: the text is the item
    EXPECT_EQ(TextOf(box), "Krassovsky 1940");
    EXPECT_EQ(box.SendMessage(WM_SETTEXT, 0, LPARAM("x")), CB_ERR);
    for (int index : {2, 100, -1, -7}) {
        box.SetCurSel(0);
        EXPECT_EQ(box.SetCurSel(index), CB_ERR) << index;
        EXPECT_EQ(box.GetCurSel(), CB_ERR) << "cleared";
        EXPECT_EQ(TextOf(box), "");
    }
    box.SetCurSel(0);
    EXPECT_EQ(SendMessageA(box.m_hWnd, CB_RESETCONTENT, 0, 0), CB_OKAY);
    EXPECT_EQ(box.GetCount() + box.GetCurSel(), CB_ERR);
    EXPECT_EQ(TextOf(box), "");
}

TEST(ComboBox, ADropDownKeepsItsOwnText) {
    CComboBox box;
    box.ModifyStyle(CBS_DROPDOWNLIST, CBS_DROPDOWN);
    box.AddString("10");
    box.AddString("20");
    box.SetWindowText("15");
    EXPECT_EQ(TextOf(box), "15");
    EXPECT_EQ(box.GetCurSel(), CB_ERR);
    box.SetCurSel(1);
    EXPECT_EQ(TextOf(box), "20");
    box.SetCurSel(-1);
    EXPECT_EQ(TextOf(box), "");
    box.SetWindowText("33");
    box.ResetContent();
    EXPECT_EQ(TextOf(box), "") << "emptying the list empties the edit field";
}

TEST(ComboBox, SearchesIgnoreCaseAndGoRound) {
    CComboBox box;
    for (const char* s : {"WGS 84", "Pulkovo 1942", "wgs 72", "Krassovsky 1940", "WGS 84"}) box.AddString(s);
    const struct {
        int after;
        const char* text;
        int prefix, exact;
    } cases[] = {
        {-1, "wgs", 0, CB_ERR},     {0, "wgs", 2, CB_ERR},   {2, "WGS", 4, CB_ERR},     {4, "wgs", 0, CB_ERR},
        {-1, "WGS 84", 0, 0},       {0, "wgs 84", 4, 4},     {-1, "Krassovsky 1940 ", CB_ERR, CB_ERR},
        {-1, "Pulkovo", 1, CB_ERR}, {-1, "", 0, CB_ERR},     {99, "Pul", 1, CB_ERR},    {-1, "NAD", CB_ERR, CB_ERR},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(box.FindString(c.after, c.text), c.prefix) << c.after << " " << c.text;
        EXPECT_EQ(box.FindStringExact(c.after, c.text), c.exact) << c.after << " " << c.text;
    }
    EXPECT_EQ(box.SelectString(-1, "krass"), 3);
    EXPECT_EQ(TextOf(box), "Krassovsky 1940");
    EXPECT_EQ(box.SelectString(-1, "Polar"), CB_ERR);
    EXPECT_EQ(box.GetCurSel(), 3) << "no match leaves the selection";
    EXPECT_EQ(box.SelectString(-1, nullptr), 0) << "null is the empty prefix";
}

TEST(ComboBox, ItemTextOutsideTheListIsAnError) {
    CComboBox box;
    box.AddString("WGS 84");
    CString text("x");
    for (int index : {1, -1, 1000}) {
        box.GetLBText(index, text);
        EXPECT_TRUE(text.IsEmpty()) << index;
        EXPECT_EQ(box.GetLBTextLen(index), CB_ERR) << index;
        char buf[8] = "#";
        EXPECT_EQ(box.GetLBText(index, buf), CB_ERR) << index;
        EXPECT_STREQ(buf, "#");
    }
    char buf[7];
    EXPECT_EQ(box.GetLBTextLen(0), 6);
    EXPECT_EQ(box.GetLBText(0, buf), 6);
    EXPECT_STREQ(buf, "WGS 84");
    EXPECT_EQ(box.GetLBText(0, nullptr), CB_ERR);
}

}  // namespace
