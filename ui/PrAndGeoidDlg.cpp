// The projection-and-geoid dialog: the projection choice with a second panel
// for the geoid, a constant height ("Custom") or a geoid file ("From file").
// The caller's two variables are written as the user acts, not on return.
#include <cstdio>

#include <mapwright/dialogs.h>

#include "refsys/numtext.h"
#include "ui/PrChooseDlg.h"
#include "ui/resource.h"

CPrAndGeoidDlg::CPrAndGeoidDlg(CWnd* parent, CGeoReferenceData* record, double* height, CString* file,
                               UINT templateId)
    : CPrChooseDlg(parent, record, templateId, nullptr), m_pGeoidHeight(height), m_pGeoidFile(file) {}

CPrAndGeoidDlg::~CPrAndGeoidDlg() = default;

BEGIN_MESSAGE_MAP(CPrAndGeoidDlg, CPrChooseDlg)
    ON_BN_CLICKED(IDC_CUSTOM_HEIGHT, &CPrAndGeoidDlg::OnCustomHeight)
    ON_BN_CLICKED(IDC_HEIGHT_FROM_FILE, &CPrAndGeoidDlg::OnHeightFromFile)
    ON_MESSAGE(WM_INFILECTRL_CHANGED, &CPrAndGeoidDlg::OnGeoidFileChanged)
END_MESSAGE_MAP()

void CPrAndGeoidDlg::DoDataExchange(CDataExchange* pDX) {
    CPrChooseDlg::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_HEIGHT_FROM_FILE, m_radioFromFile);
    DDX_Control(pDX, IDC_CUSTOM_HEIGHT, m_radioCustom);
    DDX_Control(pDX, IDC_GEOID_HEIGHT_LABEL, m_labelHeight);
    DDX_Control(pDX, IDC_GEOID_FILE, m_fileGeoid);
    DDX_Control(pDX, IDC_GEOID_HEIGHT, m_editHeight);
}

BOOL CPrAndGeoidDlg::OnInitDialog() {
    CPrChooseDlg::OnInitDialog();
    m_fileGeoid.Create(1, nullptr, nullptr, 8, "\\Processing");

    if (m_pGeoidFile->IsEmpty()) {
        m_radioCustom.SetCheck(BST_CHECKED);
        m_radioFromFile.SetCheck(BST_UNCHECKED);
        m_fileGeoid.ShowWindow(SW_HIDE);
        CString height;
        height.Format("%6.2lf", *m_pGeoidHeight);
        m_editHeight.SetWindowText(height);
    } else {
        m_radioCustom.SetCheck(BST_UNCHECKED);
        m_radioFromFile.SetCheck(BST_CHECKED);
        m_editHeight.ShowWindow(SW_HIDE);
        m_labelHeight.ShowWindow(SW_HIDE);
        m_fileGeoid.SetPathName(*m_pGeoidFile);
    }
    return TRUE;
}

void CPrAndGeoidDlg::OnCustomHeight() {
    m_radioCustom.SetCheck(BST_CHECKED);
    m_radioFromFile.SetCheck(BST_UNCHECKED);
    m_fileGeoid.ShowWindow(SW_HIDE);
    m_labelHeight.ShowWindow(SW_SHOW);
    m_editHeight.ShowWindow(SW_SHOW);
    // Reset on every click, also when "Custom" was already checked.
    m_editHeight.SetWindowText("0.0");
}

void CPrAndGeoidDlg::OnHeightFromFile() {
    m_radioCustom.SetCheck(BST_UNCHECKED);
    m_radioFromFile.SetCheck(BST_CHECKED);
    m_fileGeoid.ShowWindow(SW_SHOW);
    m_labelHeight.ShowWindow(SW_HIDE);
    m_editHeight.ShowWindow(SW_HIDE);
}

LRESULT CPrAndGeoidDlg::OnGeoidFileChanged(WPARAM, LPARAM) {
    // At once: the caller keeps the chosen file even if the dialog is cancelled.
    *m_pGeoidFile = m_fileGeoid.GetPathName();
    return 0;
}

void CPrAndGeoidDlg::OnOK() {
    CPrChooseDlg::OnOK();
    // Also after a refused OK: the height is written whenever "Custom" is checked.
    if (m_radioCustom.GetCheck() == BST_CHECKED) {
        CString text;
        m_editHeight.GetWindowText(text);
        *m_pGeoidHeight = mw::AtoF(text);
        m_pGeoidFile->Empty();
    }
}

int ModalPrAndGeoidDlg(CWnd* parent, CGeoReferenceData* record, double* height, CString* file) {
    if (!record || !height || !file) return -1;
    CPrAndGeoidDlg dialog(parent, record, height, file, IDD_PR_AND_GEOID);
    return static_cast<int>(dialog.DoModal());
}
