// The mask language of Basalt's controls and the masked edit.
#include <mapwright/basalt_controls.h>

#include <cstring>

namespace {

bool IsDigit(char ch) { return ch >= '0' && ch <= '9'; }

bool IsNumberChar(char ch) {
    return IsDigit(ch) || ch == '+' || ch == '-' || ch == '.' || ch == 'e' || ch == 'E';
}

}  // namespace

// CEditMask

CEditMask::CEditMask(const char* mask, const char* literal, const char* valid)
    : m_strMask(mask), m_strLiteral(literal), m_strValid(valid) {}

bool CEditMask::IsEntryPlace(int place) const {
    if (place < 0 || place >= GetLength()) return false;
    const char m = m_strMask.GetAt(place);
    return m == '9' || m == '0' || m == '$' || m == '%';
}

bool CEditMask::Accepts(int place, char ch) const {
    if (ch == '\0' || !IsEntryPlace(place)) return false;
    switch (m_strMask.GetAt(place)) {
    case '9':
    case '0':
        return IsDigit(ch);
    case '$':
        return std::memchr(m_strValid.GetString(), ch, static_cast<size_t>(m_strValid.GetLength())) != nullptr;
    default:  // '%'
        return IsNumberChar(ch);
    }
}

char CEditMask::Shown(int place) const {
    const bool entry = IsEntryPlace(place);
    if (place >= m_strLiteral.GetLength()) return entry ? '_' : ' ';
    const char ch = m_strLiteral.GetAt(place);
    // A fixed "_" is the blank between two parts of the text.
    return (!entry && ch == '_') ? ' ' : ch;
}

CString CEditMask::Template() const {
    CString text;
    for (int place = 0; place < GetLength(); ++place) text += Shown(place);
    return text;
}

int CEditMask::NextEntryPlace(int place) const {
    for (int p = place + 1; p < GetLength(); ++p)
        if (IsEntryPlace(p)) return p;
    return -1;
}

bool CEditMask::Type(CString& text, int* caret, char ch) const {
    if (!caret || ch == '\0') return false;
    int place = *caret;
    const int length = text.GetLength();
    if (place < 0 || place > length || place >= GetLength()) return false;

    if (!IsEntryPlace(place)) {
        if (ch == Shown(place)) {
            // Typing the fixed character only steps over it.
            if (place == length) text += ch;
            *caret = place + 1;
            return true;
        }
        const int entry = NextEntryPlace(place);
        if (entry < 0 || !Accepts(entry, ch)) return false;
        // Fixed places skipped beyond the end of the text are filled in.
        for (int p = length; p < entry; ++p) text += Shown(p);
        place = entry;
    } else if (!Accepts(place, ch)) {
        return false;
    }

    if (place == text.GetLength()) text += ch;
    else text.SetAt(place, ch);
    // The caret stays just after the character, so that a user who types the
    // fixed characters too ("15.25") steps over them.
    *caret = place + 1;
    return true;
}

bool CEditMask::Erase(CString& text, int place) const {
    if (place < 0 || place >= text.GetLength() || !IsEntryPlace(place)) return false;
    text.SetAt(place, Shown(place));
    return true;
}

// CMaskEdit

CMaskEdit::CMaskEdit() = default;

CMaskEdit::~CMaskEdit() = default;

void CMaskEdit::SetMask(const char* mask, const char* literal, const char* valid) {
    m_mask = CEditMask(mask, literal, valid);
    SetWindowText(m_mask.Template());
}

CString CMaskEdit::GetMask() const { return m_mask.GetMask(); }

CString CMaskEdit::GetLiteral() const { return m_mask.GetLiteral(); }

CString CMaskEdit::GetValid() const { return m_mask.GetValid(); }

BOOL CMaskEdit::TypeChar(int position, char ch) {
    if (m_mask.IsEmpty()) return CEdit::TypeChar(position, ch);
    CString text;
    GetWindowText(text);
    int caret = position;
    if (!m_mask.Type(text, &caret, ch)) return FALSE;
    SetWindowText(text);
    SetSel(caret, caret);
    return TRUE;
}

void CMaskEdit::EraseSelection() {
    if (m_mask.IsEmpty()) return CEdit::EraseSelection();
    int start = 0, end = 0;
    GetSel(start, end);
    if (start == end) return;
    CString text;
    GetWindowText(text);
    for (int place = start; place < end; ++place) m_mask.Erase(text, place);
    SetWindowText(text);
    SetSel(start, start);
}

BOOL CMaskEdit::EraseChar(int position) {
    if (m_mask.IsEmpty()) return CEdit::EraseChar(position);
    CString text;
    GetWindowText(text);
    if (!m_mask.Erase(text, position)) return FALSE;
    SetWindowText(text);
    SetSel(position, position);
    return TRUE;
}
