// The projection choice dialog: projection kind, its parameters, ellipsoid
// and datum for the host's record, stored and saved on OK.
#include "ui/PrChooseDlg.h"

#include <cstring>
#include <string>

#include <mapwright/basalt.h>
#include <mapwright/dialogs.h>
#include <mapwright/winuser.h>

#include "basalt/basalt_ids.h"
#include "coord/entry_masks.h"
#include "refsys/catalog.h"
#include "refsys/kinds.h"
#include "refsys/numtext.h"
#include "ui/resource.h"

namespace {

using mw::kEndOfList;

// The default texts of the angle rows. The degree sign is byte 0xB0.
constexpr const char* kEast = "000\xB0 00' 00.00'' E";
constexpr const char* kNorth = "000\xB0 00' 00.00'' N";

// One parameter row of a kind: its label (0: the row is hidden), its mask
// (null: the row's mask is left as it is) and the text it starts with.
struct Row {
    UINT label;
    const mw::EntryMask* mask;
    const char* text;
};
constexpr Row kHidden{0, nullptr, nullptr};

// Rows 1 to 5 of kinds 1 to 6; only rows 1 to 3 are masked edits.
constexpr Row kRows[7][5] = {
    {},
    {kHidden, kHidden, kHidden, kHidden, kHidden},
    {{IDS_UTM_ZONE, &mw::kNumber, "1"}, {IDS_NORTH_OR_SOUTH, &mw::kHemisphere, "N"}, kHidden, kHidden, kHidden},
    {{IDS_CENTRAL_MERIDIAN, &mw::kDmsLongitude, kEast},
     {IDS_LATITUDE_OF_ORIGIN, &mw::kDmsLatitude, kNorth},
     {IDS_FALSE_EASTING, &mw::kNumber, "0"},
     {IDS_FALSE_NORTHING, nullptr, "0"},
     kHidden},
    {{IDS_SCALE_FACTOR, &mw::kNumber, "1"},
     {IDS_CENTRAL_MERIDIAN, &mw::kDmsLongitude, kEast},
     {IDS_LATITUDE_OF_ORIGIN, &mw::kDmsLatitude, kNorth},
     {IDS_FALSE_EASTING, nullptr, "0"},
     {IDS_FALSE_NORTHING, nullptr, "0"}},
    {{IDS_CENTRAL_MERIDIAN, &mw::kDmsLongitude, kEast},
     {IDS_LATITUDE_OF_TRUE_SCALE, &mw::kDmsLatitude, kNorth},
     {IDS_FALSE_EASTING, &mw::kNumber, "0"},
     {IDS_FALSE_NORTHING, nullptr, "0"},
     kHidden},
    {{IDS_LONGITUDE_BELOW_POLE, &mw::kDmsLongitude, kEast},
     {IDS_LATITUDE_OF_TRUE_SCALE, &mw::kDmsLatitude, kNorth},
     {IDS_FALSE_EASTING, &mw::kNumber, "0"},
     {IDS_FALSE_NORTHING, nullptr, "0"},
     kHidden},
};

// The kinds the projection list offers: Cartesian is never chosen here.
constexpr int kOfferedKinds = 6;

std::string Read(const CString& file, int section, const char* key, const char* defaultText) {
    return mw::ReadCatalogKey(file, section, key, defaultText);
}
int ReadInt(const CString& file, int section, const char* key, const char* defaultText) {
    return mw::AtoI(Read(file, section, key, defaultText).c_str());
}

bool WriteAll(const CString& file, const char* const (*pairs)[2], int count) {
    for (int i = 0; i < count; ++i)
        if (!mw::WriteCatalogKey(file, 0, pairs[i][0], pairs[i][1])) return false;
    return true;
}

// The WGS 84 entry an empty catalog receives, keys in this order.
bool WriteDefaultEllipsoid(const CString& file) {
    static const char* const pairs[][2] = {
        {"Index", "5"}, {"EllipsName", "WGS 84"}, {"ellipsParam_0", "6378137.000000"}, {"ellipsParam_1", "298.257224"}};
    return WriteAll(file, pairs, 4);
}
bool WriteDefaultDatum(const CString& file) {
    static const char* const pairs[][2] = {
        {"DatumName", "WGS 84"},  {"EllipsoidIndex", "5"},  {"datumParam_0_0", "0"}, {"datumParam_0_1", "0"},
        {"datumParam_0_2", "0"},  {"datumParam_1_0", "0"},  {"datumParam_1_1", "0"}, {"datumParam_1_2", "0"},
        {"DatumIndex", "16"}};
    return WriteAll(file, pairs, 9);
}

// Lists key `key` of sections 0, 1, ... into `list` up to the first section
// without it, and returns the last section number listed (-1 for none). A
// catalog without section 0 gets the default entry first; one that cannot be
// repaired lists nothing rather than read the same empty section for ever.
int ListCatalog(const CString& file, const char* key, bool (*repair)(const CString&), CComboBox& list) {
    bool repaired = false;
    int n = 0;
    for (;; ++n) {
        const std::string text = Read(file, n, key, kEndOfList);
        if (text != kEndOfList) {
            list.AddString(text.c_str());
            continue;
        }
        if (n > 0 || repaired || !repair(file)) break;
        repaired = true;
        n = -1;
    }
    return n - 1;
}

CString WindowText(const CWnd& window) {
    CString text;
    window.GetWindowText(text);
    return text;
}

// Selects every item equal to `text`, compared exactly (the list's own
// search ignores case), so the last equal one stays selected.
void SelectEqual(CComboBox& list, const CString& text) {
    CString item;
    for (int i = 0; i < list.GetCount(); ++i) {
        list.GetLBText(i, item);
        if (item == text) list.SetCurSel(i);
    }
}

CString Angle(int (*toText)(char*, int, double), double degrees) {
    char buffer[64];
    toText(buffer, 64, degrees);
    return CString(buffer);
}

CString Number(const char* format, long value) {
    CString text;
    text.Format(format, value);
    return text;
}

}  // namespace

CPrChooseDlg::CPrChooseDlg(CWnd* parent, CGeoReferenceData* record, UINT templateId, ProjectionParamTag* tag)
    : CDialog(templateId, parent),
      m_pRefData(record),
      m_pParamTag(tag),
      m_bKindApplied(0),
      m_nDatumLast(-1),
      m_nEllipsLast(-1),
      m_nKindCount(0),
      m_nKind(0),
      m_nDatumIndex(-1) {}

CPrChooseDlg::~CPrChooseDlg() = default;

BEGIN_MESSAGE_MAP(CPrChooseDlg, CDialog)
    ON_CBN_CLOSEUP(IDC_PROJECTION, &CPrChooseDlg::OnProjectionChanged)
    ON_CBN_CLOSEUP(IDC_ELLIPSOID, &CPrChooseDlg::OnEllipsoidChanged)
    ON_CBN_CLOSEUP(IDC_DATUM, &CPrChooseDlg::OnDatumChanged)
    ON_CBN_DROPDOWN(IDC_DATUM, &CPrChooseDlg::OnDatumDropDown)
    ON_CBN_SELCHANGE(IDC_PROJECTION, &CPrChooseDlg::OnProjectionChanged)
    ON_CBN_SELCHANGE(IDC_ELLIPSOID, &CPrChooseDlg::OnEllipsoidChanged)
    ON_CBN_SELCHANGE(IDC_DATUM, &CPrChooseDlg::OnDatumChanged)
END_MESSAGE_MAP()

void CPrChooseDlg::DoDataExchange(CDataExchange* pDX) {
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDOK, m_btnOK);
    DDX_Control(pDX, IDCANCEL, m_btnCancel);
    DDX_Control(pDX, IDC_PARAM1, m_editParam1);
    DDX_Control(pDX, IDC_PARAM5_LABEL, m_labelParam5);
    DDX_Control(pDX, IDC_PARAM4_LABEL, m_labelParam4);
    DDX_Control(pDX, IDC_PARAM3_LABEL, m_labelParam3);
    DDX_Control(pDX, IDC_PARAM2_LABEL, m_labelParam2);
    DDX_Control(pDX, IDC_PARAM1_LABEL, m_labelParam1);
    DDX_Control(pDX, IDC_PROJECTION_GROUP, m_groupProjection);
    DDX_Control(pDX, IDC_PARAMS_GROUP, m_groupParams);
    DDX_Control(pDX, IDC_ELLIPSOID_LABEL, m_labelEllips);
    DDX_Control(pDX, IDC_DATUM_LABEL, m_labelDatum);
    DDX_Control(pDX, IDC_PROJECTION, m_listProjection);
    DDX_Control(pDX, IDC_PARAM3, m_editParam3);
    DDX_Control(pDX, IDC_PARAM5, m_editParam5);
    DDX_Control(pDX, IDC_PARAM4, m_editParam4);
    DDX_Control(pDX, IDC_ELLIPSOID, m_listEllips);
    DDX_Control(pDX, IDC_DATUM, m_listDatum);
    DDX_Control(pDX, IDC_PARAM2, m_editParam2);
}

CStatic& CPrChooseDlg::RowLabel(int row) {
    CStatic* labels[5] = {&m_labelParam1, &m_labelParam2, &m_labelParam3, &m_labelParam4, &m_labelParam5};
    return *labels[row];
}

CEdit& CPrChooseDlg::RowEdit(int row) {
    CEdit* edits[5] = {&m_editParam1, &m_editParam2, &m_editParam3, &m_editParam4, &m_editParam5};
    return *edits[row];
}

CMaskEdit* CPrChooseDlg::MaskedRow(int row) {
    CMaskEdit* edits[3] = {&m_editParam1, &m_editParam2, &m_editParam3};
    return row < 3 ? edits[row] : nullptr;
}

CString CPrChooseDlg::RowText(int row) { return WindowText(RowEdit(row)); }

BOOL CPrChooseDlg::OnInitDialog() {
    CDialog::OnInitDialog();
    m_bKindApplied = 0;

    // This changes the caller's record even if the user then cancels.
    if (!m_pRefData->GetParam() || m_pRefData->GetProjection() == -1 || m_pRefData->GetDatum() == -1)
        m_pRefData->SetDefault();

    m_strEllipsCatalog = *m_pRefData->GetEllipsFile();
    m_nEllipsLast = ListCatalog(m_strEllipsCatalog, "EllipsName", WriteDefaultEllipsoid, m_listEllips);
    // Listed here only to repair an empty catalog; FillDatumList replaces them.
    m_strDatumCatalog = *m_pRefData->GetDatumFile();
    m_nDatumLast = ListCatalog(m_strDatumCatalog, "DatumName", WriteDefaultDatum, m_listDatum);

    for (int kind = 1; kind <= kOfferedKinds; ++kind) m_listProjection.AddString(GetResourceString(mw::KindDisplayNameId(kind)));
    m_nKindCount = kOfferedKinds;

    // A kind outside 1..7 (a host may write any number) names no entry.
    m_nKind = m_pRefData->GetProjection();
    const CString kindName = mw::IsKind(m_nKind) ? GetResourceString(mw::KindDisplayNameId(m_nKind)) : CString();
    CString item;
    for (int i = 0; i < m_nKindCount; ++i) {
        m_listProjection.GetLBText(i, item);
        if (item == kindName) m_listProjection.SetCurSel(i);
    }

    // The ellipsoid of the record's datum; when the datum is in no section,
    // an ellipsoid whose "Index" happens to equal the datum index is taken.
    const int datum = m_pRefData->GetDatum();
    m_nDatumIndex = datum;
    int firstEllips = datum, matchEllips = datum;
    std::string datumName, ellipsName, firstEllipsName;
    for (int j = 0; j <= m_nDatumLast; ++j) {
        const int index = ReadInt(m_strDatumCatalog, j, "DatumIndex", "1");
        if (j == 0) firstEllips = ReadInt(m_strDatumCatalog, 0, "EllipsoidIndex", "1");
        if (index == datum) {
            datumName = Read(m_strDatumCatalog, j, "DatumName", kEndOfList);
            matchEllips = ReadInt(m_strDatumCatalog, j, "EllipsoidIndex", "1");
        }
    }
    for (int k = 0; k <= m_nEllipsLast; ++k) {
        const int index = ReadInt(m_strEllipsCatalog, k, "Index", "1");
        if (index == matchEllips) ellipsName = Read(m_strEllipsCatalog, k, "EllipsName", kEndOfList);
        if (index == firstEllips) firstEllipsName = Read(m_strEllipsCatalog, k, "EllipsName", kEndOfList);
    }
    SelectEqual(m_listEllips, ellipsName.c_str());

    // No such ellipsoid listed: fall back to the catalog's first datum.
    if (m_listEllips.GetCurSel() == CB_ERR) {
        m_nDatumIndex = ReadInt(m_strDatumCatalog, 0, "DatumIndex", "1");
        datumName = Read(m_strDatumCatalog, 0, "DatumName", "1");
        SelectEqual(m_listEllips, firstEllipsName.c_str());
    }

    FillDatumList(m_listEllips, m_listDatum, m_listProjection);
    OnProjectionChanged();
    SelectEqual(m_listDatum, datumName.c_str());

    m_groupParams.SetWindowText(GetResourceString(IDS_PROPERTY_OF_PROJECTION));
    // Basalt's caption: this module's table does not hold one.
    m_btnCancel.SetWindowText(GetResourceString(IDS_CANCEL));

    m_strPrevProjection = WindowText(m_listProjection);
    m_strPrevEllips = WindowText(m_listEllips);
    ShowRecordParams(m_nKind);

    if (m_pParamTag && std::strncmp(m_pParamTag->szProjName, "UTM", 3) == 0) {
        SelectEqual(m_listProjection, GetResourceString(IDS_KIND_UTM));
        OnProjectionChanged();
    }
    return TRUE;
}

int CPrChooseDlg::KindFromName(CString text) {
    for (int kind = 1; kind <= kOfferedKinds; ++kind)
        if (text == GetResourceString(mw::KindDisplayNameId(kind))) return kind;
    return 0;
}

int CPrChooseDlg::DatumIndexFromName(CString name) {
    // No early return: of duplicate names the last one answers.
    int index = -1;
    for (int j = 0; j <= m_nDatumLast; ++j)
        if (Read(m_strDatumCatalog, j, "DatumName", kEndOfList) == name.GetString())
            index = ReadInt(m_strDatumCatalog, j, "DatumIndex", "1");
    return index;
}

void CPrChooseDlg::FillDatumList(CComboBox& ellips, CComboBox& datum, CComboBox& projection) {
    datum.ResetContent();
    if (ellips.GetCurSel() != CB_ERR) {
        const CString name = WindowText(ellips);
        // A missing "Index" reads as "QQ", that is 0.
        bool found = false;
        int index = 0;
        for (int k = 0; k <= m_nEllipsLast; ++k) {
            if (Read(m_strEllipsCatalog, k, "EllipsName", kEndOfList) != name.GetString()) continue;
            index = ReadInt(m_strEllipsCatalog, k, "Index", kEndOfList);
            found = true;
        }
        for (int j = 0; found && j <= m_nDatumLast; ++j)
            if (ReadInt(m_strDatumCatalog, j, "EllipsoidIndex", "1") == index)
                datum.AddString(Read(m_strDatumCatalog, j, "DatumName", kEndOfList).c_str());
    }
    SelectDatumLikeEllipsoid(datum, ellips, projection);
}

void CPrChooseDlg::SelectDatumLikeEllipsoid(CComboBox& datum, CComboBox& ellips, CComboBox& projection) {
    const CString name = ellips.GetCurSel() != CB_ERR ? WindowText(ellips) : CString();
    if (projection.GetCurSel() != CB_ERR && datum.GetCurSel() == CB_ERR) SelectEqual(datum, name);
}

void CPrChooseDlg::OnProjectionChanged() {
    const CString text = WindowText(m_listProjection);
    m_nKind = KindFromName(text);
    if (m_bKindApplied == 1 && text != m_strPrevProjection) {
        for (int row = 0; row < 5; ++row) RowEdit(row).SetWindowText("");
        m_strPrevProjection = text;
    }
    m_bKindApplied = 1;
    ApplyRows(m_nKind);
}

// Labels, masks, visibility and default texts of the kind's rows. The
// defaults are written on every run, replacing whatever the user typed.
void CPrChooseDlg::ApplyRows(int kind) {
    if (kind < 1 || kind > kOfferedKinds) return;
    for (int row = 0; row < 5; ++row) {
        const Row& shape = kRows[kind][row];
        RowLabel(row).SetWindowText(shape.label ? GetResourceString(shape.label) : CString());
        if (shape.mask && MaskedRow(row)) MaskedRow(row)->SetMask(shape.mask->mask, shape.mask->literal, shape.mask->valid);
        RowEdit(row).ShowWindow(shape.label ? SW_SHOW : SW_HIDE);
        if (shape.label) RowEdit(row).SetWindowText(shape.text);
    }
    if (kind == UTM && m_pParamTag) {
        const int32_t zone = m_pParamTag->fn;
        const int32_t hemisphere = m_pParamTag->fe;
        m_editParam1.SetWindowText(Number("%ld", zone));
        m_editParam2.SetWindowText(hemisphere == 1 ? "N" : "S");
    }
}

void CPrChooseDlg::ShowRecordParams(int kind) {
    // The block's layout follows the record's kind; a kind the record does
    // not have shows nothing.
    const void* block = m_pRefData->GetParam();
    if (!block || kind != m_pRefData->GetProjection()) return;
    const mw::BlockParams p = mw::ReadBlock(kind, block);
    // Longitude, latitude, easting and northing from row `first` on.
    const auto showAngleRows = [&](int first) {
        RowEdit(first).SetWindowText(Angle(LongitudeDoubleToChar, p.c_lon));
        RowEdit(first + 1).SetWindowText(Angle(LatitudeDoubleToChar, p.lat_origin));
        RowEdit(first + 2).SetWindowText(Number("%ld", p.fe));
        RowEdit(first + 3).SetWindowText(Number("%ld", p.fn));
    };
    switch (kind) {
        case UTM:
            m_editParam1.SetWindowText(Number("%ld", p.UtmZone()));
            if (p.UtmHemisphere() == 1) m_editParam2.SetWindowText("N");
            else if (p.UtmSouth()) m_editParam2.SetWindowText("S");
            break;
        case TransverseMercator: {
            CString scale;
            scale.Format("%lf", p.scale);
            m_editParam1.SetWindowText(scale);
            showAngleRows(1);
            break;
        }
        case GaussKruger:
        case Mercator:
        case PolarStereographic:
            showAngleRows(0);
            break;
        default:
            break;
    }
}

void CPrChooseDlg::OnEllipsoidChanged() {
    const CString text = WindowText(m_listEllips);
    if (text == m_strPrevEllips) return;
    FillDatumList(m_listEllips, m_listDatum, m_listProjection);
    m_strPrevEllips = text;
    m_nDatumIndex = DatumIndexFromName(WindowText(m_listDatum));
}

void CPrChooseDlg::OnDatumChanged() { m_nDatumIndex = DatumIndexFromName(WindowText(m_listDatum)); }

void CPrChooseDlg::OnDatumDropDown() {
    if (WindowText(m_listEllips).IsEmpty() || WindowText(m_listProjection).IsEmpty()) m_listDatum.ResetContent();
}

void CPrChooseDlg::ShowRefusal(UINT stringId) {
    // Owned by the dialog, with an empty (not a null) caption.
    MessageBoxA(GetSafeHwnd(), GetResourceString(stringId), "", MB_OK);
}

void CPrChooseDlg::OnOK() {
    // Scale, longitude, latitude, easting and northing as typed.
    CString s[5];
    switch (m_nKind) {
        case Geographic:
            for (CString& text : s) text = "1";
            break;
        case UTM:
            s[0] = s[1] = s[2] = "1";
            s[3] = RowText(1);
            if (s[3] == "N" || s[3] == "n") s[3] = "1";
            else if (s[3] == "S" || s[3] == "s") s[3] = "-1";
            s[4] = RowText(0);
            break;
        case GaussKruger:
            s[0] = "1.0";
            for (int i = 1; i < 5; ++i) s[i] = RowText(i - 1);
            break;
        case TransverseMercator:
            for (int i = 0; i < 5; ++i) s[i] = RowText(i);
            break;
        case Mercator:
        case PolarStereographic:
            s[0] = "1";
            for (int i = 1; i < 5; ++i) s[i] = RowText(i - 1);
            break;
        default:
            break;
    }
    const double scale = mw::AtoF(s[0]);
    // Whole metres: a typed fraction is dropped.
    const int fe = mw::AtoI(s[3]);
    const int fn = mw::AtoI(s[4]);

    if (m_listDatum.GetCurSel() == CB_ERR) return ShowRefusal(IDS_SELECT_DATUM);
    if (m_listProjection.GetCurSel() == CB_ERR) return ShowRefusal(IDS_SELECT_PROJECTION);
    bool missing = false;
    for (const CString& text : s) missing = missing || text.IsEmpty();
    if (missing && m_nKind != Geographic && m_nKind != UTM) return ShowRefusal(IDS_INPUT_PARAMETERS);

    // An empty UTM zone or hemisphere closes the dialog leaving the record as it was.
    if (!missing) {
        double lon = 1.0, lat = 1.0;  // placeholders for the kinds without angles
        if (m_nKind != Geographic && m_nKind != UTM) {
            // A text the reader refuses leaves the angle at 0.
            lon = lat = 0.0;
            LatitudeCharToDouble(&lat, s[2]);
            LongitudeCharToDouble(&lon, s[1]);
        }
        m_pRefData->CreateGeoInfo(m_nKind, m_nDatumIndex);
        StoreParamBlock(scale, lon, lat, fe, fn);
        m_pRefData->SaveData(AppRegKey() + "\\GeoData");
    }
    CDialog::OnOK();
}

void CPrChooseDlg::StoreParamBlock(double scale, double lon, double lat, int fe, int fn) {
    if (!mw::TakesParams(m_nKind)) return;
    // UTM: only the hemisphere flag and the zone come from the dialog.
    const mw::BlockParams p = m_nKind == UTM ? mw::BlockParams{1.0, 0.0, 0.0, fe, fn}
                                             : mw::BlockParams{scale, lon, lat, fe, fn};
    unsigned char block[sizeof(ScaledProjectionParam)];
    mw::WriteBlock(m_nKind, p, block);
    m_pRefData->SetParam(block);
}

int ModalPrChooseDlg(CWnd* parent, CGeoReferenceData* record, ProjectionParamTag* tag) {
    if (!record) return -1;
    CPrChooseDlg dialog(parent, record, IDD_PR_CHOOSE, tag);
    return static_cast<int>(dialog.DoModal());
}
