// The list with masked cells.
#include <mapwright/basalt_controls.h>

#include <cstddef>
#include <cstring>

CListFrame::CListFrame() = default;

CListFrame::~CListFrame() = default;

int CListFrame::InsertColumn(int column, LPCTSTR heading) {
    if (column < 0) return -1;
    // Every row already has a cell for column 0; the first column inserted
    // only names it.
    if (m_headings.empty()) {
        m_headings.emplace_back(heading);
        return 0;
    }
    const size_t at = static_cast<size_t>(column) < m_headings.size() ? static_cast<size_t>(column) : m_headings.size();
    const auto offset = static_cast<std::ptrdiff_t>(at);
    m_headings.insert(m_headings.begin() + offset, CString(heading));
    for (auto& row : m_rows) row.insert(row.begin() + offset, Cell{});
    return static_cast<int>(at);
}

int CListFrame::GetColumnCount() const { return m_headings.empty() ? 1 : static_cast<int>(m_headings.size()); }

CString CListFrame::GetColumnHeading(int column) const {
    if (column < 0 || static_cast<size_t>(column) >= m_headings.size()) return CString();
    return m_headings[static_cast<size_t>(column)];
}

int CListFrame::InsertItem(int item, LPCTSTR text) {
    if (item < 0) return -1;
    const size_t at = static_cast<size_t>(item) < m_rows.size() ? static_cast<size_t>(item) : m_rows.size();
    auto row = m_rows.insert(m_rows.begin() + static_cast<std::ptrdiff_t>(at),
                             std::vector<Cell>(static_cast<size_t>(GetColumnCount())));
    row->front().text = text;
    return static_cast<int>(at);
}

BOOL CListFrame::DeleteItem(int item) {
    if (item < 0 || static_cast<size_t>(item) >= m_rows.size()) return FALSE;
    m_rows.erase(m_rows.begin() + item);
    return TRUE;
}

BOOL CListFrame::DeleteAllItems() {
    m_rows.clear();
    return TRUE;
}

int CListFrame::GetItemCount() const { return static_cast<int>(m_rows.size()); }

CListFrame::Cell* CListFrame::CellAt(int item, int column) {
    if (item < 0 || static_cast<size_t>(item) >= m_rows.size()) return nullptr;
    auto& row = m_rows[static_cast<size_t>(item)];
    if (column < 0 || static_cast<size_t>(column) >= row.size()) return nullptr;
    return &row[static_cast<size_t>(column)];
}

const CListFrame::Cell* CListFrame::CellAt(int item, int column) const {
    return const_cast<CListFrame*>(this)->CellAt(item, column);
}

BOOL CListFrame::SetItemText(int item, int column, LPCTSTR text) {
    Cell* cell = CellAt(item, column);
    if (!cell) return FALSE;
    cell->text = text;
    return TRUE;
}

CString CListFrame::GetItemText(int item, int column) const {
    const Cell* cell = CellAt(item, column);
    return cell ? cell->text : CString();
}

int CListFrame::GetItemText(int item, int column, LPTSTR buffer, int size) const {
    if (!buffer || size <= 0) return 0;
    const Cell* cell = CellAt(item, column);
    int n = cell ? cell->text.GetLength() : 0;
    if (n > size - 1) n = size - 1;
    if (n > 0) std::memcpy(buffer, cell->text.GetString(), static_cast<size_t>(n));
    buffer[n] = '\0';
    return n;
}

void CListFrame::SetMask(int item, int column, const char* mask, const char* literal, const char* valid) {
    Cell* cell = CellAt(item, column);
    if (!cell) return;
    cell->mask = CEditMask(mask, literal, valid);
    cell->text = cell->mask.Template();
}

CString CListFrame::GetMask(int item, int column) const {
    const Cell* cell = CellAt(item, column);
    return cell ? cell->mask.GetMask() : CString();
}

CString CListFrame::GetLiteral(int item, int column) const {
    const Cell* cell = CellAt(item, column);
    return cell ? cell->mask.GetLiteral() : CString();
}

CString CListFrame::GetValid(int item, int column) const {
    const Cell* cell = CellAt(item, column);
    return cell ? cell->mask.GetValid() : CString();
}

BOOL CListFrame::TypeChar(int item, int column, int position, char ch) {
    Cell* cell = CellAt(item, column);
    if (!cell) return FALSE;
    if (cell->mask.IsEmpty()) {
        // A cell without a mask types as a plain edit: the character goes in.
        if (ch == '\0' || position < 0 || position > cell->text.GetLength()) return FALSE;
        cell->text = cell->text.Left(position) + CString(ch) + cell->text.Mid(position);
        return TRUE;
    }
    int caret = position;
    return cell->mask.Type(cell->text, &caret, ch) ? TRUE : FALSE;
}

BOOL CListFrame::EraseChar(int item, int column, int position) {
    Cell* cell = CellAt(item, column);
    if (!cell) return FALSE;
    if (cell->mask.IsEmpty()) {
        if (position < 0 || position >= cell->text.GetLength()) return FALSE;
        cell->text = cell->text.Left(position) + cell->text.Mid(position + 1);
        return TRUE;
    }
    return cell->mask.Erase(cell->text, position) ? TRUE : FALSE;
}
