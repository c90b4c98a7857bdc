// The projection choice dialog (template 817) and the projection-and-geoid
// dialog derived from it (template 818). Both edit a record the host owns;
// the catalogs are read afresh on every lookup, only the two last section
// numbers are remembered.
#ifndef MAPWRIGHT_UI_PRCHOOSEDLG_H
#define MAPWRIGHT_UI_PRCHOOSEDLG_H

#include <mapwright/GeoRecords.h>
#include <mapwright/GeoReferenceData.h>
#include <mapwright/afxwin.h>
#include <mapwright/basalt_controls.h>

class CPrChooseDlg : public CDialog {
public:
    CPrChooseDlg(CWnd* parent, CGeoReferenceData* record, UINT templateId, ProjectionParamTag* tag);
    ~CPrChooseDlg() override;

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    void OnOK() override;

    afx_msg void OnProjectionChanged();
    afx_msg void OnEllipsoidChanged();
    afx_msg void OnDatumChanged();
    afx_msg void OnDatumDropDown();

    // The kind whose display name is `text`, 0 for none; the "DatumIndex" of
    // the last datum section named `name`, -1 for none.
    int KindFromName(CString text);
    int DatumIndexFromName(CString name);
    void FillDatumList(CComboBox& ellips, CComboBox& datum, CComboBox& projection);
    void SelectDatumLikeEllipsoid(CComboBox& datum, CComboBox& ellips, CComboBox& projection);
    void ShowRecordParams(int kind);
    void StoreParamBlock(double scale, double lon, double lat, int fe, int fn);

    CGeoReferenceData* m_pRefData;
    ProjectionParamTag* m_pParamTag;
    int32_t m_bKindApplied;
    int32_t m_nDatumLast;
    int32_t m_nEllipsLast;
    int32_t m_nKindCount;
    CString m_strEllipsCatalog;
    CString m_strDatumCatalog;
    CString m_strPrevProjection;
    CString m_strPrevEllips;
    int32_t m_nKind;
    int32_t m_nDatumIndex;

    CButton m_btnOK;
    CButton m_btnCancel;
    CMaskEdit m_editParam1;
    CStatic m_labelParam5;
    CStatic m_labelParam4;
    CStatic m_labelParam3;
    CStatic m_labelParam2;
    CStatic m_labelParam1;
    CButton m_groupProjection;
    CButton m_groupParams;
    CStatic m_labelEllips;
    CStatic m_labelDatum;
    CComboBox m_listProjection;
    CMaskEdit m_editParam3;
    CEdit m_editParam5;
    CEdit m_editParam4;
    CComboBox m_listEllips;
    CComboBox m_listDatum;
    CMaskEdit m_editParam2;

    DECLARE_MESSAGE_MAP()

private:
    // The parameter rows 1 to 5: label and edit.
    CStatic& RowLabel(int row);
    CEdit& RowEdit(int row);
    // Rows 1 to 3 take an entry mask; null for rows 4 and 5.
    CMaskEdit* MaskedRow(int row);
    CString RowText(int row);
    void ApplyRows(int kind);
    void ShowRefusal(UINT stringId);
};

class CPrAndGeoidDlg : public CPrChooseDlg {
public:
    CPrAndGeoidDlg(CWnd* parent, CGeoReferenceData* record, double* height, CString* file, UINT templateId);
    ~CPrAndGeoidDlg() override;

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    void OnOK() override;

    afx_msg void OnCustomHeight();
    afx_msg void OnHeightFromFile();
    afx_msg LRESULT OnGeoidFileChanged(WPARAM wParam, LPARAM lParam);

    double* m_pGeoidHeight;
    CString* m_pGeoidFile;
    CButton m_radioFromFile;
    CButton m_radioCustom;
    CStatic m_labelHeight;
    CInFileCtrl m_fileGeoid;
    CEdit m_editHeight;

    DECLARE_MESSAGE_MAP()
};

#endif
