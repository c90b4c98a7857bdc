// The window model: MFC's window and control classes as plain objects that
// hold what a real window would show (text, visibility, enabled state, the
// control id, a check state, the items of a list) and answer the same calls
// and messages. There is no toolkit and no event loop here; real windows come
// from a window back end (the Qt one, libmapwright-qt.so) that mirrors these
// objects and feeds the user's actions into them (for an edit,
// CEdit::TypeChar). Text is single-byte Windows-1251, as everywhere in the
// library.
//
// Each model window has a handle (m_hWnd) from construction to destruction,
// so ::SendMessageA reaches it like a Windows window; a handle of a destroyed
// window reaches nothing. Windows are used by one thread at a time (the user-
// interface thread); only the handle table is shared.
//
// Dialogs (CDialog) are built from the compiled templates of the resource
// chain. Controls tell their parent what the user did with WM_COMMAND, which
// the parent's message map routes to its handlers, as MFC does. Who the user
// is: a scripted one set with MwSetDialogUser (tests, headless hosts), else a
// window back end set with MwSetWindowBackEnd or, when none is set, the Qt
// one that DoModal loads from the directory of the platform library; when
// there is none, or it finds no display, DoModal returns -1.
#ifndef MAPWRIGHT_AFXWIN_H
#define MAPWRIGHT_AFXWIN_H

#include <stdint.h>

#include <memory>
#include <string>
#include <vector>

#include "afxstr.h"
#include "wintypes.h"
#include "winuser.h"

typedef uintptr_t WPARAM;
typedef intptr_t LPARAM;
typedef intptr_t LRESULT;
typedef intptr_t INT_PTR;
typedef uintptr_t UINT_PTR;
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
#ifndef MAKEWPARAM
#define MAKEWPARAM(low, high) ((WPARAM)(DWORD)MAKELONG(low, high))
#endif

// A rectangle. Model windows keep theirs in dialog units, relative to the
// parent's client area: there is no screen to measure pixels on, and a window
// back end maps them with the template font.
struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};
typedef RECT* LPRECT;
typedef const RECT* LPCRECT;

// ShowWindow: SW_HIDE hides; every other command shows.
#define SW_HIDE 0
#define SW_SHOWNORMAL 1
#define SW_SHOWNOACTIVATE 4
#define SW_SHOW 5
#define SW_SHOWNA 8

// GetWindow.
#define GW_HWNDNEXT 2
#define GW_HWNDPREV 3
#define GW_CHILD 5

// Styles the model reads.
#define WS_CHILD 0x40000000u
#define WS_VISIBLE 0x10000000u
#define WS_DISABLED 0x08000000u
#define WS_BORDER 0x00800000u
#define WS_GROUP 0x00020000u
#define WS_TABSTOP 0x00010000u
#define BS_PUSHBUTTON 0x0000u
#define BS_DEFPUSHBUTTON 0x0001u
#define BS_CHECKBOX 0x0002u
#define BS_AUTOCHECKBOX 0x0003u
#define BS_RADIOBUTTON 0x0004u
#define BS_3STATE 0x0005u
#define BS_AUTO3STATE 0x0006u
#define BS_GROUPBOX 0x0007u
#define BS_AUTORADIOBUTTON 0x0009u
#define BS_TYPEMASK 0x000Fu
#define ES_AUTOHSCROLL 0x0080u
#define CBS_SIMPLE 0x0001u
#define CBS_DROPDOWN 0x0002u
#define CBS_DROPDOWNLIST 0x0003u
#define CBS_SORT 0x0100u

// Messages the model answers. Any other message gives 0.
#define WM_SETTEXT 0x000Cu
#define WM_GETTEXT 0x000Du
#define WM_GETTEXTLENGTH 0x000Eu
#define WM_CLOSE 0x0010u
#define WM_COMMAND 0x0111u
#define WM_USER 0x0400u
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

// Notification codes of WM_COMMAND (HIWORD of wParam; LOWORD is the control
// id, lParam the control's handle).
#define CN_COMMAND 0
#define BN_CLICKED 0
#define CBN_SELCHANGE 1
#define CBN_DROPDOWN 7
#define CBN_CLOSEUP 8
#define EN_CHANGE 0x0300

// ---- Message maps, as MFC declares them ----------------------------------

#define afx_msg
#define AFX_MSG_CALL

class CCmdTarget;
class CWnd;
class CDialog;
class CDataExchange;
typedef void (AFX_MSG_CALL CCmdTarget::*AFX_PMSG)(void);
typedef void (AFX_MSG_CALL CWnd::*AFX_PMSGW)(void);

// How a map entry's handler is called.
enum AfxSig {
    AfxSig_end = 0,  // marks the end of a map
    AfxSig_vv,       // void handler(void): commands and notifications
    AfxSig_lwl,      // LRESULT handler(WPARAM, LPARAM): ON_MESSAGE
    AfxSigCmd_v = AfxSig_vv,
};

struct AFX_MSGMAP_ENTRY {
    UINT nMessage;  // WM_COMMAND, or the message of ON_MESSAGE
    UINT nCode;     // notification code for WM_COMMAND
    UINT nID;       // first and last control id for WM_COMMAND
    UINT nLastID;
    UINT_PTR nSig;  // an AfxSig
    AFX_PMSG pfn;
};

struct AFX_MSGMAP {
    const AFX_MSGMAP* (*pfnGetBaseMap)();  // null ends the chain
    const AFX_MSGMAP_ENTRY* lpEntries;
};

// The casts of ON_MESSAGE between member function types are undone before
// the call, as in MFC; the warning about them is silenced around the map.
#define PTM_WARNING_DISABLE \
    _Pragma("GCC diagnostic push") _Pragma("GCC diagnostic ignored \"-Wcast-function-type\"")
#define PTM_WARNING_RESTORE _Pragma("GCC diagnostic pop")

#define DECLARE_MESSAGE_MAP()                         \
protected:                                            \
    static const AFX_MSGMAP* GetThisMessageMap();     \
    const AFX_MSGMAP* GetMessageMap() const override;

#define BEGIN_MESSAGE_MAP(theClass, baseClass)                                     \
    PTM_WARNING_DISABLE                                                            \
    const AFX_MSGMAP* theClass::GetMessageMap() const { return GetThisMessageMap(); } \
    const AFX_MSGMAP* theClass::GetThisMessageMap() {                              \
        typedef theClass ThisClass;                                                \
        typedef baseClass TheBaseClass;                                            \
        (void)sizeof(ThisClass);                                                   \
        static const AFX_MSGMAP_ENTRY _messageEntries[] = {

#define END_MESSAGE_MAP()                                                        \
        {0, 0, 0, 0, AfxSig_end, (AFX_PMSG)0}};                                  \
        static const AFX_MSGMAP messageMap = {&TheBaseClass::GetThisMessageMap, &_messageEntries[0]}; \
        return &messageMap;                                                      \
    }                                                                            \
    PTM_WARNING_RESTORE

#define ON_COMMAND(id, memberFxn) \
    {WM_COMMAND, CN_COMMAND, (WORD)(id), (WORD)(id), AfxSigCmd_v, static_cast<AFX_PMSG>(memberFxn)},
#define ON_CONTROL(wNotifyCode, id, memberFxn) \
    {WM_COMMAND, (WORD)(wNotifyCode), (WORD)(id), (WORD)(id), AfxSigCmd_v, static_cast<AFX_PMSG>(memberFxn)},
#define ON_BN_CLICKED(id, memberFxn) ON_CONTROL(BN_CLICKED, id, memberFxn)
#define ON_CBN_SELCHANGE(id, memberFxn) ON_CONTROL(CBN_SELCHANGE, id, memberFxn)
#define ON_CBN_DROPDOWN(id, memberFxn) ON_CONTROL(CBN_DROPDOWN, id, memberFxn)
#define ON_CBN_CLOSEUP(id, memberFxn) ON_CONTROL(CBN_CLOSEUP, id, memberFxn)
#define ON_EN_CHANGE(id, memberFxn) ON_CONTROL(EN_CHANGE, id, memberFxn)
#define ON_MESSAGE(message, memberFxn)                                            \
    {(message), 0, 0, 0, AfxSig_lwl,                                              \
     (AFX_PMSG)(AFX_PMSGW)(static_cast<LRESULT (AFX_MSG_CALL CWnd::*)(WPARAM, LPARAM)>(memberFxn))},

// The root of the message-map chain.
class MW_API CCmdTarget {
public:
    CCmdTarget();
    virtual ~CCmdTarget();

    // Runs the handler of the first entry for command `id` with notification
    // `code`, searching the class's own map before its bases' (so a derived
    // class's entry wins); FALSE when no entry matches. The two pointers are
    // MFC's and unused.
    virtual BOOL OnCmdMsg(UINT id, int code, void* extra, void* handlerInfo);

protected:
    static const AFX_MSGMAP* GetThisMessageMap();
    virtual const AFX_MSGMAP* GetMessageMap() const;

    // The first entry of the chain from `map` for the message (with, for
    // WM_COMMAND, the notification code and control id), or null.
    static const AFX_MSGMAP_ENTRY* FindMessageEntry(const AFX_MSGMAP* map, UINT message, UINT code, UINT id);
};

class MW_API CWnd : public CCmdTarget {
public:
    // Visible and enabled, as the controls of our dialog templates start.
    CWnd();
    ~CWnd() override;
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    HWND GetSafeHwnd() const { return m_hWnd; }
    // The live model window with this handle, or null.
    static CWnd* FromHandle(HWND handle);

    // Makes this object a child window of `parent` (null: a window of its
    // own) with exactly the style given, the text, the rectangle (dialog
    // units) and the control id. FALSE when it is a child already.
    BOOL Create(LPCTSTR className, LPCTSTR windowName, DWORD style, const RECT& rect, CWnd* parent, UINT id);

    // Binds this object to the child `id` of `parent`, as MFC subclasses a
    // dialog's control into its permanent object: the object takes the
    // window's id, style, text, rectangle and state (check, items, ...), its
    // place among the parent's children, and the window made from the template
    // is destroyed. TRUE also when already bound; FALSE when `parent` has no
    // such child.
    BOOL SubclassDlgItem(UINT id, CWnd* parent);

    CWnd* GetParent() const;
    // The first child with this id, in creation (template) order, or null.
    CWnd* GetDlgItem(int id) const;
    // GW_CHILD: the first child; GW_HWNDNEXT, GW_HWNDPREV: the sibling after
    // or before this window, in creation (template, tab) order. Null when
    // there is none.
    CWnd* GetWindow(UINT command) const;
    // Shorthands over GetDlgItem, as MFC has them; nothing happens (the empty
    // text, 0) for an id the window does not have.
    LRESULT SendDlgItemMessage(int id, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
    void SetDlgItemText(int id, LPCTSTR text);
    int GetDlgItemText(int id, CString& text) const;
    void CheckDlgButton(int id, UINT check);
    UINT IsDlgButtonChecked(int id) const;

    // The next (or previous) control of `control`'s group among this
    // window's children, going round within the group. A group runs from a
    // child with WS_GROUP (or the first child) up to the next with WS_GROUP.
    // Null when `control` is not a child of this window.
    CWnd* GetNextDlgGroupItem(CWnd* control, BOOL previous = FALSE) const;

    // Null sets the empty text.
    void SetWindowText(LPCTSTR text);
    // Windows' contract: at most size - 1 bytes and a NUL; returns the bytes
    // copied; nothing is written for a null buffer or size <= 0.
    int GetWindowText(LPTSTR buffer, int size) const;
    void GetWindowText(CString& text) const;
    int GetWindowTextLength() const;

    // Returns whether the window itself was visible before the call.
    BOOL ShowWindow(int command);
    // As Windows: visible when the window and every ancestor are.
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

    // In dialog units, relative to the parent's client area (see RECT).
    void GetWindowRect(LPRECT rect) const;
    void MoveWindow(int x, int y, int width, int height, BOOL repaint = TRUE);

    // Delivered at once to WindowProc, as Windows does for a window of the
    // calling thread.
    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;

    // Runs DoDataExchange: FALSE saves the dialog's data into its controls,
    // TRUE reads it back. FALSE when an exchange failed (a control id that
    // the window does not have).
    BOOL UpdateData(BOOL saveAndValidate = TRUE);

    HWND m_hWnd;

protected:
    // The message map first (ON_MESSAGE entries; WM_COMMAND through
    // OnCommand), then DefWindowProc.
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    virtual BOOL OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result);
    // A control's notification or a command: the message map's handler.
    virtual BOOL OnCommand(WPARAM wParam, LPARAM lParam);
    // What the window class does with a message nobody handled: the base
    // answers the window text messages and gives 0 for the rest.
    virtual LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);

    virtual void DoDataExchange(CDataExchange* pDX);

    // The text the window shows. A control whose text is not a plain string
    // (a drop-down list shows its selected item) overrides both; SetText
    // returns FALSE when the window takes no text.
    virtual BOOL SetText(const char* text);
    virtual CString GetText() const;

    // Takes over the state of `window` when subclassing it; a control class
    // adds its own state (check, selection, items) when `window` has it.
    virtual void TakeWindowState(const CWnd& window);

    // WM_COMMAND with `code` and this window's id to the parent, as a
    // control tells its dialog what the user did.
    void NotifyParent(UINT code) const;
    // Whether a user could act on this window now: it and its ancestors are
    // visible and enabled (a dialog is visible while it runs modally).
    BOOL CanTakeInput() const;

    // Destroys the children this window made for itself (from a template)
    // and lets go of the others (bound members), as destroying a Windows
    // window takes its children along.
    void DestroyChildren();
    // Makes a child that this window owns and destroys with DestroyChildren.
    CWnd* AddOwnedChild(std::unique_ptr<CWnd> child);

    static const AFX_MSGMAP* GetThisMessageMap();
    const AFX_MSGMAP* GetMessageMap() const override;

private:
    void ReplaceChild(HWND from, HWND to);

    HWND m_hOwnHandle;
    HWND m_hParent;
    std::vector<HWND> m_children;                   // creation order
    std::vector<std::unique_ptr<CWnd>> m_ownedChildren;
    CString m_strText;
    DWORD m_dwStyle;
    int m_nID;
    RECT m_rect;
};

// An edit control: its text, a selection, and the user's typing.
class MW_API CEdit : public CWnd {
public:
    CEdit();
    ~CEdit() override;

    BOOL Create(DWORD style, const RECT& rect, CWnd* parent, UINT id);

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

    // The user selects the whole text and types `text` over it, character by
    // character (TypeChar, so a masked edit applies its mask; a refused
    // character is lost, as a refused keystroke is). Every change of the
    // text sends EN_CHANGE. FALSE when the user cannot reach the edit
    // (hidden or disabled) or a character was refused.
    BOOL TypeText(const char* text);

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    // Setting the text puts the caret at the start, as Windows does, and
    // sends EN_CHANGE to the parent, as a single-line edit does.
    BOOL SetText(const char* text) override;
    void TakeWindowState(const CWnd& window) override;
    // The user deletes the selected text (typing over a selection does this
    // first); a masked edit shows its template there instead.
    virtual void EraseSelection();

private:
    int m_nSelStart;
    int m_nSelEnd;
};

class MW_API CStatic : public CWnd {
public:
    CStatic();
    ~CStatic() override;

    BOOL Create(LPCTSTR text, DWORD style, const RECT& rect, CWnd* parent, UINT id);
};

// A button; the check state is what check boxes, radio buttons and 3-state
// boxes show. BM_SETCHECK with any other value than the three states checks.
class MW_API CButton : public CWnd {
public:
    CButton();
    ~CButton() override;

    BOOL Create(LPCTSTR caption, DWORD style, const RECT& rect, CWnd* parent, UINT id);

    void SetCheck(int check);
    int GetCheck() const;

    // The user clicks the button. An auto check box toggles, an auto 3-state
    // box steps on, an auto radio button checks itself and unchecks the
    // other auto radio buttons of its group (the controls from the nearest
    // one at or before it with WS_GROUP up to the next with WS_GROUP); then
    // BN_CLICKED goes to the parent (OK and Cancel thus reach OnOK and
    // OnCancel). FALSE, and nothing happens, when the user cannot reach the
    // button (hidden, disabled, its dialog not running).
    BOOL Click();

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void TakeWindowState(const CWnd& window) override;

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

    BOOL Create(DWORD style, const RECT& rect, CWnd* parent, UINT id);

    // The user opens the list, picks item `index` and the list closes:
    // CBN_DROPDOWN, the selection changes, CBN_SELCHANGE, CBN_CLOSEUP (a
    // handler bound to both of the last two runs twice). When the item is
    // not in the list once it is open (a CBN_DROPDOWN handler may refill
    // it), the list only closes (CBN_CLOSEUP) and the result is FALSE.
    // FALSE with nothing sent when the user cannot reach the list.
    BOOL Pick(int index);
    // The user opens the list and closes it without a pick: CBN_DROPDOWN,
    // CBN_CLOSEUP.
    BOOL OpenAndClose();

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
    void TakeWindowState(const CWnd& window) override;

private:
    bool IsDropDownList() const;
    int Find(int startAfter, const char* text, bool whole) const;
    int Insert(size_t index, const char* text);

    std::vector<std::string> m_items;
    int m_nCurSel;
};

// ---- Dialogs --------------------------------------------------------------

struct MwDialogTemplate;

// What DoDataExchange is given: the direction and the dialog.
class MW_API CDataExchange {
public:
    CDataExchange(CWnd* dlgWnd, BOOL saveAndValidate);

    BOOL m_bSaveAndValidate;  // TRUE: controls to data
    CWnd* m_pDlgWnd;
    BOOL m_bFailed;           // an exchange failed
};

// Binds `control` to the dialog's control `id` (CWnd::SubclassDlgItem) the
// first time; later exchanges leave the binding alone, as MFC's does.
MW_API void DDX_Control(CDataExchange* pDX, int id, CWnd& control);

// A modal dialog on a compiled dialog template.
class MW_API CDialog : public CWnd {
public:
    explicit CDialog(UINT templateId, CWnd* parent = nullptr);
    ~CDialog() override;

    // Finds the template in the resource chain (newest module first; the
    // user-interface language, else English), builds the dialog and every
    // control of the template as a child window (id, class, style, text,
    // rectangle), runs OnInitDialog, shows the dialog and hands it to the
    // user: the scripted user when one is set, else the window back end.
    // Returns what EndDialog was given; -1 when the dialog could not be
    // created (no template; no user, and no back end or no display) or the
    // user went away without ending it. The controls are destroyed before it returns (bound
    // members keep their state).
    virtual INT_PTR DoModal();

    // Ends the modal run with `result` and hides the dialog; the scripted
    // user's later actions are then refused. Called from OnInitDialog, the
    // dialog ends before it is shown.
    void EndDialog(int result);

    // Binds the members (UpdateData(FALSE)); returns TRUE (focus to the
    // first control).
    virtual BOOL OnInitDialog();

    UINT GetTemplateId() const { return m_nIDTemplate; }
    // The window given as parent: the dialog's owner (a dialog is a
    // top-level window, so GetParent gives null), or null.
    CWnd* GetOwner() const { return m_pParentWnd; }
    // The template of the current DoModal (for a window back end), or null.
    const MwDialogTemplate* GetTemplate() const { return m_pTemplate; }
    // Whether the dialog is in its modal run and not yet ended.
    BOOL IsRunning() const { return m_bRunning && !m_bEnded; }

protected:
    // UpdateData(TRUE), then EndDialog(IDOK); a failed exchange keeps the
    // dialog open.
    virtual void OnOK();
    virtual void OnCancel();

    // The close box is Cancel, as the dialog manager makes it.
    LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

    DECLARE_MESSAGE_MAP()

private:
    void BuildFromTemplate(const MwDialogTemplate& dialogTemplate);

    UINT m_nIDTemplate;
    CWnd* m_pParentWnd;
    const MwDialogTemplate* m_pTemplate;
    int m_nModalResult;
    bool m_bRunning;
    bool m_bEnded;
};

// The scripted user: called by DoModal once OnInitDialog has run, instead of
// showing a window. It reads the dialog as a host would (GetDlgItem gives
// the bound members) and acts through the user actions (CButton::Click,
// CComboBox::Pick, CComboBox::OpenAndClose, CEdit::TypeText, a file
// control's ChoosePath) and EndDialog. It wins over every back end and is
// called again for a dialog opened meanwhile.
typedef void (*MW_DIALOG_USER)(CDialog& dialog, void* context);
// Null removes it. Process-wide.
MW_API void MwSetDialogUser(MW_DIALOG_USER user, void* context);

// A window back end: real windows for the model. Set by the back end's
// library when it is loaded; DoModal uses it when no scripted user is set.
struct MwWindowBackEnd {
    // Whether windows can be shown now (a display could be opened).
    BOOL (*canShow)(void* context);
    // Shows the dialog (built and initialised) and runs its modal loop until
    // EndDialog.
    void (*runModal)(CDialog& dialog, void* context);
    // The file dialog of a file control's browse button: fills `path` and
    // returns TRUE when the user chose a file. `open` 1 for an existing file,
    // 0 for a file to write; `filter` in the Windows form ("Text|*.txt||").
    BOOL (*chooseFile)(HWND owner, BOOL open, LPCSTR filter, LPCSTR defaultExt, LPCSTR initialDir,
                       CString& path, void* context);
    void* context;
};
// Null removes it. The record must outlive its use.
MW_API void MwSetWindowBackEnd(const MwWindowBackEnd* backEnd);
// The back end's file dialog; FALSE (nothing chosen) without a back end.
MW_API BOOL MwChooseFile(HWND owner, BOOL open, LPCSTR filter, LPCSTR defaultExt, LPCSTR initialDir,
                         CString& path);

extern "C" {
// Delivers the message to the model window of `window`; 0 for a handle that
// names no live window.
MW_API LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
MW_API BOOL IsWindow(HWND window);
}

#endif
