// Basalt's controls: a masked edit (CMaskEdit), a list with masked cells
// (CListFrame) and a file-name picker (CInFileCtrl), as model windows of the
// platform window layer.
//
// The mask language. A mask is three strings: `mask` says per place what may
// be typed there, `literal` is the template of the text (as long as `mask`),
// `valid` lists the letters of "$" places:
//   "9", "0"  a digit (the two are the same here);
//   "$"       one character of `valid` (case as listed);
//   "%"       a character of a number: a digit, "+", "-", ".", "e" or "E";
//   "_" and any other character: a fixed place that shows the character of
//             `literal` at that place (a blank where `literal` is shorter).
// A fixed place whose literal character is "_" separates two parts of the
// text and shows a blank: the decimal-degrees text "039.0000000 N" has one
// between the number and the hemisphere letter.
//
// Setting a mask shows its template: every entry place shows its literal
// character ("_"), every fixed place what it shows. The user then types over
// the places, never beyond the last: a character the place does not take is
// refused; a character typed on a fixed place moves on to the next entry
// place (the fixed character itself is simply stepped over); erasing an entry
// place shows its literal character again. Text set by the program is taken
// as given, whatever the mask; the mask governs only what the user types.
// An empty mask (or none) leaves typing as in a plain edit.
#ifndef MAPWRIGHT_BASALT_CONTROLS_H
#define MAPWRIGHT_BASALT_CONTROLS_H

#include <vector>

#include <mapwright/afxstr.h>
#include <mapwright/afxwin.h>
#include <mapwright/wintypes.h>

// One mask of the language above and the typing it allows on a text. Null
// strings count as empty ones.
class MW_API CEditMask {
public:
    CEditMask() = default;
    CEditMask(const char* mask, const char* literal, const char* valid);

    const CString& GetMask() const { return m_strMask; }
    const CString& GetLiteral() const { return m_strLiteral; }
    const CString& GetValid() const { return m_strValid; }
    // No mask: typing is not restricted.
    bool IsEmpty() const { return m_strMask.IsEmpty(); }
    int GetLength() const { return m_strMask.GetLength(); }

    // Whether the user may type at `place`, and whether `ch` may stand there.
    bool IsEntryPlace(int place) const;
    bool Accepts(int place, char ch) const;
    // The template: what every place shows before anything is typed.
    CString Template() const;

    // Types `ch` into `text` with the caret at `*caret` (0 to the length of
    // the text). On success the caret is just after the place typed (or
    // stepped over); on refusal nothing changes.
    bool Type(CString& text, int* caret, char ch) const;
    // Erases the entry place `place` of `text` (shows its literal character).
    bool Erase(CString& text, int place) const;

private:
    char Shown(int place) const;  // what a place shows before anything is typed
    int NextEntryPlace(int place) const;

    CString m_strMask;
    CString m_strLiteral;
    CString m_strValid;
};

// An edit control whose typing follows a mask.
class MW_API CMaskEdit : public CEdit {
public:
    CMaskEdit();
    ~CMaskEdit() override;

    // Keeps the three strings (null counts as empty) and shows the template.
    void SetMask(const char* mask, const char* literal, const char* valid);
    // The last mask set; empty before any.
    CString GetMask() const;
    CString GetLiteral() const;
    CString GetValid() const;

    BOOL TypeChar(int position, char ch) override;
    BOOL EraseChar(int position) override;

protected:
    // The selected entry places show their template again; fixed places stay.
    void EraseSelection() override;

private:
    CEditMask m_mask;
};

// A list of rows (items) and columns whose cells hold text and may each carry
// a mask. Column 0 (the item's own text) always exists: the first
// InsertColumn gives it its heading, later ones add columns, and every row
// has a cell in each. Calls on an item or column that does not exist do
// nothing and return FALSE, -1 or the empty text.
class MW_API CListFrame : public CWnd {
public:
    CListFrame();
    ~CListFrame() override;

    // Inserts a column at `column` (or at the end when beyond it) and returns
    // its index; an empty cell is added to every row, whose cells right of it
    // move one column on. -1 for a negative index.
    int InsertColumn(int column, LPCTSTR heading);
    // At least 1: column 0 exists without InsertColumn.
    int GetColumnCount() const;
    CString GetColumnHeading(int column) const;

    // Inserts a row at `item` (or at the end when beyond it) whose column 0
    // holds `text`; returns its index, -1 for a negative index.
    int InsertItem(int item, LPCTSTR text);
    BOOL DeleteItem(int item);
    BOOL DeleteAllItems();
    int GetItemCount() const;

    // Text set by the program, taken as given (null: the empty text).
    BOOL SetItemText(int item, int column, LPCTSTR text);
    CString GetItemText(int item, int column) const;
    // At most size - 1 bytes and a NUL; returns the bytes copied.
    int GetItemText(int item, int column, LPTSTR buffer, int size) const;

    // Keeps the mask of the cell (null strings count as empty) and shows its
    // template in the cell.
    void SetMask(int item, int column, const char* mask, const char* literal, const char* valid);
    // The cell's last mask; empty before any.
    CString GetMask(int item, int column) const;
    CString GetLiteral(int item, int column) const;
    CString GetValid(int item, int column) const;

    // The user edits a cell in place: as CEdit::TypeChar and EraseChar, under
    // the cell's mask.
    BOOL TypeChar(int item, int column, int position, char ch);
    BOOL EraseChar(int item, int column, int position);

private:
    struct Cell {
        CString text;
        CEditMask mask;
    };
    Cell* CellAt(int item, int column);
    const Cell* CellAt(int item, int column) const;

    std::vector<CString> m_headings;
    std::vector<std::vector<Cell>> m_rows;
};

// What a file control tells its parent whenever its path changes: wParam
// the control's id, lParam its handle.
#define WM_INFILECTRL_CHANGED 0x063A  // WM_USER + 0x23A

// A file-name picker: a path edit with a browse button beside it, built over
// the rectangle of the control it is bound to (a static placeholder of a
// dialog template). The user types a path or picks one with the button; every
// change of the path sends WM_INFILECTRL_CHANGED to the parent. Shown,
// hidden, enabled and disabled as a whole.
class MW_API CInFileCtrl : public CWnd {
public:
    enum { kEditId = 1001, kBrowseId = 1002 };

    CInFileCtrl();
    ~CInFileCtrl() override;

    // Builds the edit and the button inside the control's rectangle:
    //   open        1: the browse dialog picks an existing file; 0: it names
    //               a file to write;
    //   filter      the browse dialog's file types in the Windows form
    //               ("Geoid (*.grd)|*.grd||"); null or "": every file;
    //   defaultExt  what the browse dialog adds to a name typed without an
    //               extension; null: nothing;
    //   buttonWidth the browse button's width in dialog units (at least 8);
    //   initialDir  where the browse dialog starts; one that begins with "\"
    //               or "/" is under the application directory (GetAppDir),
    //               as "\Processing"; null: the application directory.
    // The control's own text (the placeholder's) is cleared. FALSE when it
    // was created already.
    BOOL Create(int open, const char* filter, const char* defaultExt, int buttonWidth, const char* initialDir);

    // The path shown in the edit.
    CString GetPathName() const;
    // Null counts as the empty path. Sends WM_INFILECTRL_CHANGED.
    void SetPathName(const char* path);

    // The scripted user picks `path` with the browse button: the path is set
    // and WM_INFILECTRL_CHANGED goes to the parent. FALSE, changing nothing,
    // before Create or when the user cannot reach the button (hidden or
    // disabled, also through the dialog).
    BOOL ChoosePath(const char* path);

    // What Create was given, for a window back end's file dialog.
    BOOL IsOpenDialog() const { return m_bOpen; }
    CString GetFilter() const { return m_strFilter; }
    CString GetDefaultExt() const { return m_strDefaultExt; }
    // The initial folder with the application directory resolved and "/"
    // as the separator.
    CString GetInitialDir() const;

    CEdit& GetPathEdit() { return m_edit; }
    CButton& GetBrowseButton() { return m_browse; }

protected:
    // EN_CHANGE of the edit: tell the parent.
    afx_msg void OnPathChanged();
    // The browse button: the window back end's file dialog (none headless).
    afx_msg void OnBrowse();

    DECLARE_MESSAGE_MAP()

private:
    CEdit m_edit;
    CButton m_browse;
    bool m_bCreated;
    BOOL m_bOpen;
    CString m_strFilter;
    CString m_strDefaultExt;
    CString m_strInitialDir;
};

#endif
