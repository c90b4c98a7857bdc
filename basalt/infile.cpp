// The file-name picker: a path edit and a browse button over a placeholder.
#include <mapwright/basalt.h>
#include <mapwright/basalt_controls.h>

#include <string>

namespace {

// The edit takes the row a single-line edit has in a dialog (12 units); the
// button keeps this gap to it.
constexpr LONG kRowHeight = 12;
constexpr LONG kGap = 2;
constexpr int kMinButtonWidth = 8;

}  // namespace

BEGIN_MESSAGE_MAP(CInFileCtrl, CWnd)
    ON_EN_CHANGE(CInFileCtrl::kEditId, &CInFileCtrl::OnPathChanged)
    ON_BN_CLICKED(CInFileCtrl::kBrowseId, &CInFileCtrl::OnBrowse)
END_MESSAGE_MAP()

CInFileCtrl::CInFileCtrl() : m_bCreated(false), m_bOpen(TRUE) {}

CInFileCtrl::~CInFileCtrl() = default;

BOOL CInFileCtrl::Create(int open, const char* filter, const char* defaultExt, int buttonWidth,
                         const char* initialDir) {
    if (m_bCreated) return FALSE;
    m_bCreated = true;
    m_bOpen = open ? TRUE : FALSE;
    m_strFilter = filter ? filter : "";
    m_strDefaultExt = defaultExt ? defaultExt : "";
    m_strInitialDir = initialDir ? initialDir : "";
    SetWindowText("");

    // Children are placed in the control's own coordinates.
    RECT area{};
    GetWindowRect(&area);
    const LONG width = area.right - area.left;
    const LONG height = area.bottom - area.top < kRowHeight ? area.bottom - area.top : kRowHeight;
    const LONG button = buttonWidth < kMinButtonWidth ? kMinButtonWidth : buttonWidth;
    const LONG editWidth = width - button - kGap > 0 ? width - button - kGap : 0;
    // A path set before Create stays; keeping it is no change to report.
    m_edit.CWnd::Create("Edit", GetPathName(), WS_CHILD | WS_VISIBLE | WS_TABSTOP | ES_AUTOHSCROLL | WS_BORDER,
                        RECT{0, 0, editWidth, height}, this, kEditId);
    m_browse.Create("...", WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_PUSHBUTTON,
                    RECT{width - button, 0, width, height}, this, kBrowseId);
    return TRUE;
}

CString CInFileCtrl::GetPathName() const {
    CString path;
    m_edit.GetWindowText(path);
    return path;
}

void CInFileCtrl::SetPathName(const char* path) { m_edit.SetWindowText(path ? path : ""); }

BOOL CInFileCtrl::ChoosePath(const char* path) {
    // The button and every window above it must take the click.
    if (!m_bCreated || !CanTakeInput() || !m_browse.IsWindowVisible() || !m_browse.IsWindowEnabled()) return FALSE;
    SetPathName(path);
    return TRUE;
}

CString CInFileCtrl::GetInitialDir() const {
    std::string dir = m_strInitialDir.GetString();
    if (dir.empty() || dir[0] == '\\' || dir[0] == '/') {
        char appDir[4096];
        const int n = GetAppDir(static_cast<int>(sizeof appDir), appDir);
        dir = std::string(appDir, n > 0 ? static_cast<size_t>(n) : 0) + dir;
    }
    for (char& ch : dir)
        if (ch == '\\') ch = '/';
    return CString(dir.c_str());
}

void CInFileCtrl::OnPathChanged() {
    if (CWnd* parent = GetParent())
        parent->SendMessage(WM_INFILECTRL_CHANGED, static_cast<WPARAM>(GetDlgCtrlID()), reinterpret_cast<LPARAM>(m_hWnd));
}

void CInFileCtrl::OnBrowse() {
    CString path = GetPathName();
    if (MwChooseFile(m_hWnd, m_bOpen, m_strFilter, m_strDefaultExt, GetInitialDir(), path)) SetPathName(path);
}
