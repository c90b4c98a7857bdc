// Basalt's controls: a masked edit (CMaskEdit) and a list with masked cells
// (CListFrame), as model windows of the platform window layer.
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

#endif
