// The window model: MFC's window and control classes as plain objects that
// hold what a real window would show (text, visibility, enabled state, the
// control id, a check state, the items of a list) and answer the same calls
// and messages. There is no toolkit and no event loop here; real windows come
// later from a window back end that mirrors these objects and feeds user
// actions into them (for an edit, CEdit::TypeChar). Until then tests play the
// user. Text is single-byte Windows-1251, as everywhere in the library.
//
// Each model window has a handle (m_hWnd) from construction to destruction,
// so ::SendMessageA reaches it like a Windows window; a handle of a destroyed
// window reaches nothing. Windows are used by one thread at a time (the user-
// interface thread); only the handle table is shared.
#ifndef MAPWRIGHT_AFXWIN_H
#define MAPWRIGHT_AFXWIN_H

#include <stdint.h>

#include <string>
#include <vector>

#include "afxstr.h"
#include "wintypes.h"

typedef uintptr_t WPARAM;
typedef intptr_t LPARAM;
typedef intptr_t LRESULT;
typedef const char* LPCTSTR;
typedef char* LPTSTR;

#ifndef MAKELONG
#define MAKELONG(low, high) ((LONG)(((WORD)((DWORD)(low) & 0xFFFFu)) | ((DWORD)((WORD)((DWORD)(high) & 0xFFFFu))) << 16))
#endif
#ifndef LOWORD
#define LOWORD(value) ((WORD)((DWORD)(value) & 0xFFFFu))
#endif
#ifndef HIWORD
#define HIWORD(value) ((WORD)(((DWORD)(value) >> 16) & 0xFFFFu))
#endif

// ShowWindow: SW_HIDE hides; every other command shows.
#define SW_HIDE 0
#define SW_SHOWNORMAL 1
#define SW_SHOWNOACTIVATE 4
#define SW_SHOW 5
#define SW_SHOWNA 8

// Styles the model reads.
#define WS_VISIBLE 0x10000000u
#define WS_DISABLED 0x08000000u
#define CBS_SIMPLE 0x0001u
#define CBS_DROPDOWN 0x0002u
#define CBS_DROPDOWNLIST 0x0003u
#define CBS_SORT 0x0100u

// Messages the model answers. Any other message gives 0.
#define WM_SETTEXT 0x000Cu
#define WM_GETTEXT 0x000Du
#define WM_GETTEXTLENGTH 0x000Eu
#define EM_GETSEL 0x00B0u
#define EM_SETSEL 0x00B1u
#define BM_GETCHECK 0x00F0u
#define BM_SETCHECK 0x00F1u
#define CB_ADDSTRING 0x0143u
#define CB_DELETESTRING 0x0144u
#define CB_GETCOUNT 0x0146u
#define CB_GETCURSEL 0x0147u
#define CB_GETLBTEXT 0x0148u
#define CB_GETLBTEXTLEN 0x0149u
#define CB_INSERTSTRING 0x014Au
#define CB_RESETCONTENT 0x014Bu
#define CB_FINDSTRING 0x014Cu
#define CB_SELECTSTRING 0x014Du
#define CB_SETCURSEL 0x014Eu
#define CB_FINDSTRINGEXACT 0x0158u

#define BST_UNCHECKED 0
#define BST_CHECKED 1
#define BST_INDETERMINATE 2

#define CB_OKAY 0
#define CB_ERR (-1)

class MW_API CWnd {
public:
    // Visible and enabled, as the controls of our dialog templates start.
    CWnd();
    virtual ~CWnd();
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    HWND GetSafeHwnd() const { return m_hWnd; }
    // The live model window with this handle, or null.
    static CWnd* FromHandle(HWND handle);

    // Null sets the empty text.
    void SetWindowText(LPCTSTR text);
    // Windows' contract: at most size - 1 bytes and a NUL; returns the bytes
    // copied; nothing is written for a null buffer or size <= 0.
    int GetWindowText(LPTSTR buffer, int size) const;
    void GetWindowText(CString& text) const;
    int GetWindowTextLength() const;

    // Both return whether the window was visible before the call.
    BOOL ShowWindow(int command);
    BOOL IsWindowVisible() const;
    // Returns non-zero when the window was disabled before the call.
    BOOL EnableWindow(BOOL enable = TRUE);
    BOOL IsWindowEnabled() const;

    int GetDlgCtrlID() const { return m_nID; }
    // Returns the previous id.
    int SetDlgCtrlID(int id);

    DWORD GetStyle() const { return m_dwStyle; }
    // The style bits as given; the controls read theirs when they use them
    // (a combo box its type and CBS_SORT). Non-zero when the style changed.
    BOOL ModifyStyle(DWORD remove, DWORD add, UINT flags = 0);

    // Delivered at once to WindowProc, as Windows does for a window of the
    // calling thread.
    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;

    HWND m_hWnd;

protected:
    // Answers the messages of the class; the base answers the window text
    // messages and gives 0 for the rest.
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);

    // The text the window shows. A control whose text is not a plain string
    // (a drop-down list shows its selected item) overrides both; SetText
    // returns FALSE when the window takes no text.
    virtual BOOL SetText(const char* text);
    virtual CString GetText() const;

private:
    HWND m_hOwnHandle;
    CString m_strText;
    DWORD m_dwStyle;
    int m_nID;
};

// An edit control: its text, a selection, and the user's typing.
class MW_API CEdit : public CWnd {
public:
    CEdit();
    ~CEdit() override;

    // Clamped to the text; start -1 removes the selection (the caret stays at
    // its end); end -1 (or beyond the text) reaches the end of the text.
    void SetSel(int start, int end, BOOL noScroll = FALSE);
    void GetSel(int& start, int& end) const;
    // LOWORD start, HIWORD end.
    DWORD GetSel() const;

    // The user types `ch` with the caret at `position` (0 to the length of
    // the text). A plain edit inserts it there; a masked edit follows its
    // mask. Returns FALSE, changing nothing, when the character is refused
    // (always for NUL or a position outside the text); the caret then stays
    // where it was. After a typed character the caret follows it.
    virtual BOOL TypeChar(int position, char ch);
    // The user deletes the character at `position`. FALSE when there is
    // nothing to delete there; the caret is left at `position` otherwise.
    virtual BOOL EraseChar(int position);

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    // Setting the text puts the caret at the start, as Windows does.
    BOOL SetText(const char* text) override;

private:
    int m_nSelStart;
    int m_nSelEnd;
};

class MW_API CStatic : public CWnd {
public:
    CStatic();
    ~CStatic() override;
};

// A button; the check state is what check boxes, radio buttons and 3-state
// boxes show. BM_SETCHECK with any other value than the three states checks.
class MW_API CButton : public CWnd {
public:
    CButton();
    ~CButton() override;

    void SetCheck(int check);
    int GetCheck() const;

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    int m_nCheck;
};

// A combo box. Its style says what it is: CBS_DROPDOWNLIST (the default, as
// in our templates) shows the selected item's text and takes no other text;
// CBS_DROPDOWN and CBS_SIMPLE have an edit field whose text is the window
// text and which takes the selected item's text. With CBS_SORT, AddString
// keeps the items in order, compared without regard to case (Cyrillic letters
// included) and otherwise byte by byte; an item goes after its equals.
// Searches for text compare without regard to case and go round the list
// from the item after `startAfter` (-1: from the first).
class MW_API CComboBox : public CWnd {
public:
    CComboBox();
    ~CComboBox() override;

    // Both return the index of the new item. Null counts as the empty text.
    int AddString(LPCTSTR text);
    // At `index`, or at the end for -1; CB_ERR beyond the end. Never sorts.
    int InsertString(int index, LPCTSTR text);
    // The number of items left, or CB_ERR.
    int DeleteString(UINT index);
    void ResetContent();

    int GetCount() const;
    // CB_ERR when nothing is selected.
    int GetCurSel() const;
    // Selects the item and returns its index; an index outside the list
    // (-1 included) clears the selection and returns CB_ERR.
    int SetCurSel(int index);

    // The item's length, or CB_ERR.
    int GetLBTextLen(int index) const;
    // The CString form sets the empty text for a missing item. The buffer
    // form is Windows': the buffer must hold GetLBTextLen + 1 bytes; CB_ERR
    // for a missing item or a null buffer, else the length copied.
    void GetLBText(int index, CString& text) const;
    int GetLBText(int index, LPTSTR buffer) const;

    // The first item that begins with `prefix` (FindString, SelectString) or
    // equals `text` (FindStringExact), or CB_ERR. SelectString selects it and
    // leaves the selection as it was when there is none.
    int FindString(int startAfter, LPCTSTR prefix) const;
    int FindStringExact(int startAfter, LPCTSTR text) const;
    int SelectString(int startAfter, LPCTSTR prefix);

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    BOOL SetText(const char* text) override;
    CString GetText() const override;

private:
    bool IsDropDownList() const;
    int Find(int startAfter, const char* text, bool whole) const;
    int Insert(size_t index, const char* text);

    std::vector<std::string> m_items;
    int m_nCurSel;
};

extern "C" {
// Delivers the message to the model window of `window`; 0 for a handle that
// names no live window.
MW_API LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
MW_API BOOL IsWindow(HWND window);
}

#endif
