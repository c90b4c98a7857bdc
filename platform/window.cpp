#include <mapwright/afxwin.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <mutex>
#include <unordered_map>
#include <utility>

#include "ansi_case.h"

namespace {

// Handle -> live model window. Never destroyed: windows that are statics of
// other libraries may outlive the exit-time destruction of this one's.
struct HandleTable {
    std::mutex lock;
    std::unordered_map<HWND, CWnd*> windows;
    uintptr_t last = 0;
};

HandleTable& Handles() {
    static auto* table = new HandleTable;
    return *table;
}

HWND RegisterWindow(CWnd* window) {
    HandleTable& t = Handles();
    std::lock_guard<std::mutex> guard(t.lock);
    // Handles are never reused, so a stale one names nothing rather than a
    // newer window.
    HWND handle = reinterpret_cast<HWND>(++t.last);
    t.windows.emplace(handle, window);
    return handle;
}

void UnregisterWindow(HWND handle) {
    HandleTable& t = Handles();
    std::lock_guard<std::mutex> guard(t.lock);
    t.windows.erase(handle);
}

CWnd* WindowOf(HWND handle) {
    if (!handle) return nullptr;
    HandleTable& t = Handles();
    std::lock_guard<std::mutex> guard(t.lock);
    auto it = t.windows.find(handle);
    return it == t.windows.end() ? nullptr : it->second;
}

// WM_GETTEXT's contract: at most size - 1 bytes and a NUL.
LRESULT CopyText(const CString& text, WPARAM size, LPARAM buffer) {
    char* out = reinterpret_cast<char*>(buffer);
    if (!out || size == 0) return 0;
    size_t n = static_cast<size_t>(text.GetLength());
    if (n > size - 1) n = size - 1;
    std::memcpy(out, text.GetString(), n);
    out[n] = '\0';
    return static_cast<LRESULT>(n);
}

const char* TextOrEmpty(LPARAM text) {
    const char* p = reinterpret_cast<const char*>(text);
    return p ? p : "";
}

int IntOf(WPARAM value) { return static_cast<int>(static_cast<intptr_t>(value)); }

// How a sorted combo box orders its items: letters without regard to case,
// everything else by byte value.
int CompareNoCase(const std::string& a, const char* b) {
    const auto* p = reinterpret_cast<const unsigned char*>(a.c_str());
    const auto* q = reinterpret_cast<const unsigned char*>(b);
    for (;; ++p, ++q) {
        const int x = mw::kAnsiFold[*p], y = mw::kAnsiFold[*q];
        if (x != y) return x < y ? -1 : 1;
        if (!x) return 0;
    }
}

bool StartsWithNoCase(const std::string& item, const char* prefix) {
    const size_t n = std::strlen(prefix);
    if (n > item.size()) return false;
    for (size_t i = 0; i < n; ++i)
        if (mw::kAnsiFold[static_cast<unsigned char>(item[i])] != mw::kAnsiFold[static_cast<unsigned char>(prefix[i])])
            return false;
    return true;
}

}  // namespace

// CWnd

CWnd::CWnd()
    : m_hWnd(nullptr), m_hOwnHandle(RegisterWindow(this)), m_hParent(nullptr), m_dwStyle(WS_VISIBLE), m_nID(0),
      m_rect{0, 0, 0, 0} {
    m_hWnd = m_hOwnHandle;
}

// By the handle it was given: m_hWnd is public and a host may have changed it.
CWnd::~CWnd() {
    if (CWnd* parent = GetParent()) {
        auto& siblings = parent->m_children;
        siblings.erase(std::remove(siblings.begin(), siblings.end(), m_hOwnHandle), siblings.end());
    }
    UnregisterWindow(m_hOwnHandle);
    // Owned children go with the members; their parent handle names nothing by then.
}

CWnd* CWnd::FromHandle(HWND handle) { return WindowOf(handle); }

// The class name is the C++ class here: the object is the window.
BOOL CWnd::Create(LPCTSTR, LPCTSTR windowName, DWORD style, const RECT& rect, CWnd* parent, UINT id) {
    if (GetParent()) return FALSE;
    m_strText = windowName ? windowName : "";
    m_dwStyle = style;
    m_rect = rect;
    m_nID = static_cast<int>(id);
    if (parent) {
        m_hParent = parent->m_hOwnHandle;
        parent->m_children.push_back(m_hOwnHandle);
    }
    return TRUE;
}

BOOL CWnd::SubclassDlgItem(UINT id, CWnd* parent) {
    if (!parent) return FALSE;
    CWnd* window = parent->GetDlgItem(static_cast<int>(id));
    if (!window) return FALSE;
    if (window == this) return TRUE;
    if (CWnd* old = GetParent()) {
        auto& siblings = old->m_children;
        siblings.erase(std::remove(siblings.begin(), siblings.end(), m_hOwnHandle), siblings.end());
    }
    TakeWindowState(*window);
    m_hParent = parent->m_hOwnHandle;
    parent->ReplaceChild(window->m_hOwnHandle, m_hOwnHandle);
    window->m_hParent = nullptr;
    // The window made from the template is now this object.
    auto& owned = parent->m_ownedChildren;
    auto it = std::find_if(owned.begin(), owned.end(), [window](const auto& p) { return p.get() == window; });
    if (it != owned.end()) owned.erase(it);
    return TRUE;
}

void CWnd::ReplaceChild(HWND from, HWND to) { std::replace(m_children.begin(), m_children.end(), from, to); }

CWnd* CWnd::GetParent() const { return WindowOf(m_hParent); }

CWnd* CWnd::GetDlgItem(int id) const {
    for (HWND h : m_children)
        if (CWnd* child = WindowOf(h); child && child->m_nID == id) return child;
    return nullptr;
}

CWnd* CWnd::GetWindow(UINT command) const {
    if (command == GW_CHILD) {
        for (HWND h : m_children)
            if (CWnd* child = WindowOf(h)) return child;
        return nullptr;
    }
    const CWnd* parent = GetParent();
    if (!parent || (command != GW_HWNDNEXT && command != GW_HWNDPREV)) return nullptr;
    const auto& siblings = parent->m_children;
    auto at = std::find(siblings.begin(), siblings.end(), m_hOwnHandle);
    if (at == siblings.end()) return nullptr;
    if (command == GW_HWNDNEXT) {
        for (++at; at != siblings.end(); ++at)
            if (CWnd* w = WindowOf(*at)) return w;
        return nullptr;
    }
    while (at != siblings.begin())
        if (CWnd* w = WindowOf(*--at)) return w;
    return nullptr;
}

LRESULT CWnd::SendDlgItemMessage(int id, UINT message, WPARAM wParam, LPARAM lParam) const {
    const CWnd* item = GetDlgItem(id);
    return item ? item->SendMessage(message, wParam, lParam) : 0;
}

void CWnd::SetDlgItemText(int id, LPCTSTR text) { SendDlgItemMessage(id, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)); }

int CWnd::GetDlgItemText(int id, CString& text) const {
    text.Empty();
    if (const CWnd* item = GetDlgItem(id)) item->GetWindowText(text);
    return text.GetLength();
}

void CWnd::CheckDlgButton(int id, UINT check) { SendDlgItemMessage(id, BM_SETCHECK, check); }

UINT CWnd::IsDlgButtonChecked(int id) const { return static_cast<UINT>(SendDlgItemMessage(id, BM_GETCHECK)); }

CWnd* CWnd::GetNextDlgGroupItem(CWnd* control, BOOL previous) const {
    std::vector<CWnd*> children;
    for (HWND h : m_children)
        if (CWnd* child = WindowOf(h)) children.push_back(child);
    const auto at = std::find(children.begin(), children.end(), control);
    if (at == children.end()) return nullptr;
    const size_t i = static_cast<size_t>(at - children.begin());
    size_t first = i;
    while (first > 0 && !(children[first]->m_dwStyle & WS_GROUP)) --first;
    size_t end = i + 1;
    while (end < children.size() && !(children[end]->m_dwStyle & WS_GROUP)) ++end;
    if (previous) return children[i == first ? end - 1 : i - 1];
    return children[i + 1 == end ? first : i + 1];
}

void CWnd::SetWindowText(LPCTSTR text) { SendMessage(WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)); }

int CWnd::GetWindowText(LPTSTR buffer, int size) const {
    if (!buffer || size <= 0) return 0;
    return static_cast<int>(SendMessage(WM_GETTEXT, static_cast<WPARAM>(size), reinterpret_cast<LPARAM>(buffer)));
}

void CWnd::GetWindowText(CString& text) const {
    const int length = GetWindowTextLength();
    char* buffer = text.GetBuffer(length);
    SendMessage(WM_GETTEXT, static_cast<WPARAM>(length) + 1, reinterpret_cast<LPARAM>(buffer));
    text.ReleaseBuffer();
}

int CWnd::GetWindowTextLength() const { return static_cast<int>(SendMessage(WM_GETTEXTLENGTH)); }

BOOL CWnd::ShowWindow(int command) {
    const BOOL wasVisible = (m_dwStyle & WS_VISIBLE) ? TRUE : FALSE;
    if (command == SW_HIDE) m_dwStyle &= ~WS_VISIBLE;
    else m_dwStyle |= WS_VISIBLE;
    return wasVisible;
}

BOOL CWnd::IsWindowVisible() const {
    for (const CWnd* w = this; w; w = w->GetParent())
        if (!(w->m_dwStyle & WS_VISIBLE)) return FALSE;
    return TRUE;
}

BOOL CWnd::EnableWindow(BOOL enable) {
    const BOOL wasDisabled = IsWindowEnabled() ? FALSE : TRUE;
    if (enable) m_dwStyle &= ~WS_DISABLED;
    else m_dwStyle |= WS_DISABLED;
    return wasDisabled;
}

BOOL CWnd::IsWindowEnabled() const { return (m_dwStyle & WS_DISABLED) ? FALSE : TRUE; }

int CWnd::SetDlgCtrlID(int id) {
    const int previous = m_nID;
    m_nID = id;
    return previous;
}

BOOL CWnd::ModifyStyle(DWORD remove, DWORD add, UINT) {
    const DWORD style = (m_dwStyle & ~remove) | add;
    if (style == m_dwStyle) return FALSE;
    m_dwStyle = style;
    return TRUE;
}

void CWnd::GetWindowRect(LPRECT rect) const {
    if (rect) *rect = m_rect;
}

void CWnd::MoveWindow(int x, int y, int width, int height, BOOL) { m_rect = RECT{x, y, x + width, y + height}; }

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) const {
    // MFC declares SendMessage const although the message may change the
    // window; windows are never const objects.
    return const_cast<CWnd*>(this)->WindowProc(message, wParam, lParam);
}

BOOL CWnd::UpdateData(BOOL saveAndValidate) {
    CDataExchange exchange(this, saveAndValidate);
    DoDataExchange(&exchange);
    return exchange.m_bFailed ? FALSE : TRUE;
}

void CWnd::DoDataExchange(CDataExchange*) {}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    if (OnWndMsg(message, wParam, lParam, &result)) return result;
    return DefWindowProc(message, wParam, lParam);
}

BOOL CWnd::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
    if (message == WM_COMMAND) {
        if (!OnCommand(wParam, lParam)) return FALSE;
        *result = 1;
        return TRUE;
    }
    const AFX_MSGMAP_ENTRY* entry = FindMessageEntry(GetMessageMap(), message, 0, 0);
    if (!entry || entry->nSig != AfxSig_lwl) return FALSE;
    // Undoes the casts of ON_MESSAGE: the handler has this very type.
    PTM_WARNING_DISABLE
    const auto handler = reinterpret_cast<LRESULT (CWnd::*)(WPARAM, LPARAM)>(static_cast<AFX_PMSGW>(entry->pfn));
    PTM_WARNING_RESTORE
    *result = (this->*handler)(wParam, lParam);
    return TRUE;
}

BOOL CWnd::OnCommand(WPARAM wParam, LPARAM) { return OnCmdMsg(LOWORD(wParam), HIWORD(wParam), nullptr, nullptr); }

LRESULT CWnd::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SETTEXT:
        return SetText(TextOrEmpty(lParam));
    case WM_GETTEXT:
        return CopyText(GetText(), wParam, lParam);
    case WM_GETTEXTLENGTH:
        return GetText().GetLength();
    default:
        return 0;
    }
}

BOOL CWnd::SetText(const char* text) {
    m_strText = text;
    return TRUE;
}

CString CWnd::GetText() const { return m_strText; }

void CWnd::TakeWindowState(const CWnd& window) {
    m_strText = window.m_strText;
    m_dwStyle = window.m_dwStyle;
    m_nID = window.m_nID;
    m_rect = window.m_rect;
}

void CWnd::NotifyParent(UINT code) const {
    if (CWnd* parent = GetParent())
        parent->SendMessage(WM_COMMAND, MAKEWPARAM(m_nID, code), reinterpret_cast<LPARAM>(m_hOwnHandle));
}

BOOL CWnd::CanTakeInput() const {
    for (const CWnd* w = this; w; w = w->GetParent())
        if (!(w->m_dwStyle & WS_VISIBLE) || (w->m_dwStyle & WS_DISABLED)) return FALSE;
    return TRUE;
}

void CWnd::DestroyChildren() {
    const std::vector<HWND> children = std::move(m_children);
    m_children.clear();
    for (HWND h : children)
        if (CWnd* child = WindowOf(h)) child->m_hParent = nullptr;
    const auto owned = std::move(m_ownedChildren);
    m_ownedChildren.clear();
}

CWnd* CWnd::AddOwnedChild(std::unique_ptr<CWnd> child) {
    m_ownedChildren.push_back(std::move(child));
    return m_ownedChildren.back().get();
}

// CEdit

CEdit::CEdit() : m_nSelStart(0), m_nSelEnd(0) {}

CEdit::~CEdit() = default;

BOOL CEdit::Create(DWORD style, const RECT& rect, CWnd* parent, UINT id) {
    return CWnd::Create("Edit", "", style, rect, parent, id);
}

void CEdit::SetSel(int start, int end, BOOL) {
    SendMessage(EM_SETSEL, static_cast<WPARAM>(static_cast<intptr_t>(start)), static_cast<LPARAM>(end));
}

void CEdit::GetSel(int& start, int& end) const {
    start = m_nSelStart;
    end = m_nSelEnd;
}

DWORD CEdit::GetSel() const { return static_cast<DWORD>(SendMessage(EM_GETSEL)); }

BOOL CEdit::TypeChar(int position, char ch) {
    CString text;
    GetWindowText(text);
    if (ch == '\0' || position < 0 || position > text.GetLength()) return FALSE;
    const CString typed = text.Left(position) + CString(ch) + text.Mid(position);
    SetWindowText(typed);
    SetSel(position + 1, position + 1);
    return TRUE;
}

BOOL CEdit::EraseChar(int position) {
    CString text;
    GetWindowText(text);
    if (position < 0 || position >= text.GetLength()) return FALSE;
    SetWindowText(text.Left(position) + text.Mid(position + 1));
    SetSel(position, position);
    return TRUE;
}

LRESULT CEdit::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case EM_SETSEL: {
        const int length = GetWindowTextLength();
        int start = IntOf(wParam);
        int end = static_cast<int>(lParam);
        if (start == -1) {
            m_nSelStart = m_nSelEnd;
            return 0;
        }
        if (end < 0 || end > length) end = length;
        if (start < 0) start = 0;
        if (start > length) start = length;
        if (start > end) std::swap(start, end);
        m_nSelStart = start;
        m_nSelEnd = end;
        return 0;
    }
    case EM_GETSEL:
        if (auto* start = reinterpret_cast<DWORD*>(wParam)) *start = static_cast<DWORD>(m_nSelStart);
        if (auto* end = reinterpret_cast<DWORD*>(lParam)) *end = static_cast<DWORD>(m_nSelEnd);
        return MAKELONG(m_nSelStart, m_nSelEnd);
    default:
        return CWnd::WindowProc(message, wParam, lParam);
    }
}

BOOL CEdit::SetText(const char* text) {
    CWnd::SetText(text);
    m_nSelStart = m_nSelEnd = 0;
    NotifyParent(EN_CHANGE);
    return TRUE;
}

void CEdit::TakeWindowState(const CWnd& window) {
    CWnd::TakeWindowState(window);
    if (const auto* edit = dynamic_cast<const CEdit*>(&window)) {
        m_nSelStart = edit->m_nSelStart;
        m_nSelEnd = edit->m_nSelEnd;
    }
}

void CEdit::EraseSelection() {
    int start = 0, end = 0;
    GetSel(start, end);
    if (start == end) return;
    CString text;
    GetWindowText(text);
    SetWindowText(text.Left(start) + text.Mid(end));
    SetSel(start, start);
}

BOOL CEdit::TypeText(const char* text) {
    if (!CanTakeInput()) return FALSE;
    SetSel(0, -1);
    EraseSelection();
    int caret = 0, end = 0;
    GetSel(caret, end);
    BOOL all = TRUE;
    for (const char* p = text ? text : ""; *p; ++p) {
        if (TypeChar(caret, *p)) GetSel(caret, end);
        else all = FALSE;
    }
    return all;
}

// CStatic

CStatic::CStatic() = default;

CStatic::~CStatic() = default;

BOOL CStatic::Create(LPCTSTR text, DWORD style, const RECT& rect, CWnd* parent, UINT id) {
    return CWnd::Create("Static", text, style, rect, parent, id);
}

// CButton

CButton::CButton() : m_nCheck(BST_UNCHECKED) {}

CButton::~CButton() = default;

BOOL CButton::Create(LPCTSTR caption, DWORD style, const RECT& rect, CWnd* parent, UINT id) {
    return CWnd::Create("Button", caption, style, rect, parent, id);
}

BOOL CButton::Click() {
    if (!CanTakeInput()) return FALSE;
    switch (GetStyle() & BS_TYPEMASK) {
    case BS_AUTOCHECKBOX:
        SetCheck(GetCheck() == BST_CHECKED ? BST_UNCHECKED : BST_CHECKED);
        break;
    case BS_AUTO3STATE:  // unchecked, checked, indeterminate, round again
        SetCheck((GetCheck() + 1) % 3);
        break;
    case BS_AUTORADIOBUTTON:
        SetCheck(BST_CHECKED);
        // Only auto radio buttons of the group are unchecked, as the button
        // procedure does; other controls of the group keep their state.
        if (CWnd* parent = GetParent()) {
            for (CWnd* w = parent->GetNextDlgGroupItem(this); w && w != this; w = parent->GetNextDlgGroupItem(w)) {
                auto* radio = dynamic_cast<CButton*>(w);
                if (radio && (radio->GetStyle() & BS_TYPEMASK) == BS_AUTORADIOBUTTON) radio->SetCheck(BST_UNCHECKED);
            }
        }
        break;
    default:
        break;
    }
    NotifyParent(BN_CLICKED);
    return TRUE;
}

void CButton::TakeWindowState(const CWnd& window) {
    CWnd::TakeWindowState(window);
    if (const auto* button = dynamic_cast<const CButton*>(&window)) m_nCheck = button->m_nCheck;
}

void CButton::SetCheck(int check) { SendMessage(BM_SETCHECK, static_cast<WPARAM>(static_cast<intptr_t>(check))); }

int CButton::GetCheck() const { return static_cast<int>(SendMessage(BM_GETCHECK)); }

LRESULT CButton::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case BM_SETCHECK: {
        const int check = IntOf(wParam);
        m_nCheck = (check == BST_UNCHECKED || check == BST_INDETERMINATE) ? check : BST_CHECKED;
        return 0;
    }
    case BM_GETCHECK:
        return m_nCheck;
    default:
        return CWnd::WindowProc(message, wParam, lParam);
    }
}

// CComboBox

CComboBox::CComboBox() : m_nCurSel(CB_ERR) { ModifyStyle(0, CBS_DROPDOWNLIST); }

CComboBox::~CComboBox() = default;

BOOL CComboBox::Create(DWORD style, const RECT& rect, CWnd* parent, UINT id) {
    return CWnd::Create("ComboBox", "", style, rect, parent, id);
}

BOOL CComboBox::Pick(int index) {
    if (!CanTakeInput()) return FALSE;
    NotifyParent(CBN_DROPDOWN);
    // The handler of CBN_DROPDOWN may have changed the list (or ended the dialog).
    if (index < 0 || index >= GetCount() || !CanTakeInput()) {
        NotifyParent(CBN_CLOSEUP);
        return FALSE;
    }
    SetCurSel(index);
    NotifyParent(CBN_SELCHANGE);
    NotifyParent(CBN_CLOSEUP);
    return TRUE;
}

BOOL CComboBox::OpenAndClose() {
    if (!CanTakeInput()) return FALSE;
    NotifyParent(CBN_DROPDOWN);
    NotifyParent(CBN_CLOSEUP);
    return TRUE;
}

void CComboBox::TakeWindowState(const CWnd& window) {
    CWnd::TakeWindowState(window);
    if (const auto* box = dynamic_cast<const CComboBox*>(&window)) {
        m_items = box->m_items;
        m_nCurSel = box->m_nCurSel;
    }
}

int CComboBox::AddString(LPCTSTR text) {
    return static_cast<int>(SendMessage(CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text)));
}

int CComboBox::InsertString(int index, LPCTSTR text) {
    return static_cast<int>(SendMessage(CB_INSERTSTRING, static_cast<WPARAM>(static_cast<intptr_t>(index)),
                                        reinterpret_cast<LPARAM>(text)));
}

int CComboBox::DeleteString(UINT index) { return static_cast<int>(SendMessage(CB_DELETESTRING, index)); }

void CComboBox::ResetContent() { SendMessage(CB_RESETCONTENT); }

int CComboBox::GetCount() const { return static_cast<int>(SendMessage(CB_GETCOUNT)); }

int CComboBox::GetCurSel() const { return static_cast<int>(SendMessage(CB_GETCURSEL)); }

int CComboBox::SetCurSel(int index) {
    return static_cast<int>(SendMessage(CB_SETCURSEL, static_cast<WPARAM>(static_cast<intptr_t>(index))));
}

int CComboBox::GetLBTextLen(int index) const {
    return static_cast<int>(SendMessage(CB_GETLBTEXTLEN, static_cast<WPARAM>(static_cast<intptr_t>(index))));
}

void CComboBox::GetLBText(int index, CString& text) const {
    const int length = GetLBTextLen(index);
    if (length == CB_ERR) {
        text.Empty();
        return;
    }
    GetLBText(index, text.GetBuffer(length));
    text.ReleaseBuffer();
}

int CComboBox::GetLBText(int index, LPTSTR buffer) const {
    return static_cast<int>(SendMessage(CB_GETLBTEXT, static_cast<WPARAM>(static_cast<intptr_t>(index)),
                                        reinterpret_cast<LPARAM>(buffer)));
}

int CComboBox::FindString(int startAfter, LPCTSTR prefix) const {
    return static_cast<int>(SendMessage(CB_FINDSTRING, static_cast<WPARAM>(static_cast<intptr_t>(startAfter)),
                                        reinterpret_cast<LPARAM>(prefix)));
}

int CComboBox::FindStringExact(int startAfter, LPCTSTR text) const {
    return static_cast<int>(SendMessage(CB_FINDSTRINGEXACT, static_cast<WPARAM>(static_cast<intptr_t>(startAfter)),
                                        reinterpret_cast<LPARAM>(text)));
}

int CComboBox::SelectString(int startAfter, LPCTSTR prefix) {
    return static_cast<int>(SendMessage(CB_SELECTSTRING, static_cast<WPARAM>(static_cast<intptr_t>(startAfter)),
                                        reinterpret_cast<LPARAM>(prefix)));
}

bool CComboBox::IsDropDownList() const { return (GetStyle() & 0x3u) == CBS_DROPDOWNLIST; }

int CComboBox::Find(int startAfter, const char* text, bool whole) const {
    const int count = static_cast<int>(m_items.size());
    if (startAfter < 0 || startAfter >= count) startAfter = -1;
    for (int k = 0; k < count; ++k) {
        const int i = (startAfter + 1 + k) % count;
        const std::string& item = m_items[static_cast<size_t>(i)];
        if (whole ? CompareNoCase(item, text) == 0 : StartsWithNoCase(item, text)) return i;
    }
    return CB_ERR;
}

int CComboBox::Insert(size_t index, const char* text) {
    m_items.insert(m_items.begin() + static_cast<std::ptrdiff_t>(index), text);
    // The selection stays on its item.
    if (m_nCurSel != CB_ERR && static_cast<size_t>(m_nCurSel) >= index) ++m_nCurSel;
    return static_cast<int>(index);
}

LRESULT CComboBox::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    const int count = static_cast<int>(m_items.size());
    switch (message) {
    case CB_ADDSTRING: {
        const char* text = TextOrEmpty(lParam);
        size_t at = m_items.size();
        if (GetStyle() & CBS_SORT) {
            at = 0;
            while (at < m_items.size() && CompareNoCase(m_items[at], text) <= 0) ++at;
        }
        return Insert(at, text);
    }
    case CB_INSERTSTRING: {
        const int index = IntOf(wParam);
        if (index == -1) return Insert(m_items.size(), TextOrEmpty(lParam));
        if (index < 0 || index > count) return CB_ERR;
        return Insert(static_cast<size_t>(index), TextOrEmpty(lParam));
    }
    case CB_DELETESTRING: {
        const int index = IntOf(wParam);
        if (index < 0 || index >= count) return CB_ERR;
        m_items.erase(m_items.begin() + index);
        if (m_nCurSel == index) m_nCurSel = CB_ERR;
        else if (m_nCurSel > index) --m_nCurSel;
        return count - 1;
    }
    case CB_RESETCONTENT:
        m_items.clear();
        m_nCurSel = CB_ERR;
        CWnd::SetText("");
        return CB_OKAY;
    case CB_GETCOUNT:
        return count;
    case CB_GETCURSEL:
        return m_nCurSel;
    case CB_SETCURSEL: {
        const int index = IntOf(wParam);
        const bool inside = index >= 0 && index < count;
        m_nCurSel = inside ? index : CB_ERR;
        // An edit field shows the selected item, and nothing without one.
        if (!IsDropDownList()) CWnd::SetText(inside ? m_items[static_cast<size_t>(index)].c_str() : "");
        return m_nCurSel;
    }
    case CB_GETLBTEXTLEN: {
        const int index = IntOf(wParam);
        if (index < 0 || index >= count) return CB_ERR;
        return static_cast<LRESULT>(m_items[static_cast<size_t>(index)].size());
    }
    case CB_GETLBTEXT: {
        const int index = IntOf(wParam);
        char* buffer = reinterpret_cast<char*>(lParam);
        if (index < 0 || index >= count || !buffer) return CB_ERR;
        const std::string& item = m_items[static_cast<size_t>(index)];
        std::memcpy(buffer, item.c_str(), item.size() + 1);
        return static_cast<LRESULT>(item.size());
    }
    case CB_FINDSTRING:
        return Find(IntOf(wParam), TextOrEmpty(lParam), false);
    case CB_FINDSTRINGEXACT:
        return Find(IntOf(wParam), TextOrEmpty(lParam), true);
    case CB_SELECTSTRING: {
        const int found = Find(IntOf(wParam), TextOrEmpty(lParam), false);
        if (found == CB_ERR) return CB_ERR;
        return WindowProc(CB_SETCURSEL, static_cast<WPARAM>(found), 0);
    }
    case WM_SETTEXT:
        // A drop-down list has no edit field to take the text.
        if (IsDropDownList()) return CB_ERR;
        return CWnd::WindowProc(message, wParam, lParam);
    default:
        return CWnd::WindowProc(message, wParam, lParam);
    }
}

BOOL CComboBox::SetText(const char* text) {
    if (IsDropDownList()) return FALSE;
    return CWnd::SetText(text);
}

CString CComboBox::GetText() const {
    if (!IsDropDownList()) return CWnd::GetText();
    if (m_nCurSel == CB_ERR) return CString();
    return CString(m_items[static_cast<size_t>(m_nCurSel)].c_str());
}

extern "C" {

LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    CWnd* target = WindowOf(window);
    return target ? target->SendMessage(message, wParam, lParam) : 0;
}

BOOL IsWindow(HWND window) { return WindowOf(window) ? TRUE : FALSE; }
}
