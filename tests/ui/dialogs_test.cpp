// The two dialogs played by a scripted user in English and Russian.
#include <gtest/gtest.h>
#include <mapwright/mapwright.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>

#include "testenv.h"

namespace {

using User = std::function<void(CDialog&)>;
using Texts = std::vector<std::string>;

// The boxes' texts, "!" added unless owned by the dialog with an empty caption and MB_OK.
HWND g_owner;
Texts g_boxes;
int CaptureBox(HWND owner, LPCSTR text, LPCSTR caption, UINT type) {
    const bool plain = owner == g_owner && caption && !*caption && type == MB_OK;
    g_boxes.push_back(std::string(text ? text : "<null>") + (plain ? "" : "!"));
    return IDOK;
}
void PlayUser(CDialog& dialog, void* user) { (*static_cast<User*>(user))(dialog); }

template <class T = CWnd>
T& Item(CDialog& d, int id) {
    T* control = dynamic_cast<T*>(d.GetDlgItem(id));
    if (!control) ADD_FAILURE() << "no control " << id << " of the expected class", std::abort();
    return *control;
}
std::string Text(CDialog& d, int id) {
    CString text;
    return Item(d, id).GetWindowText(text), text.GetString();
}
bool Shown(CDialog& d, int id) { return Item(d, id).IsWindowVisible() != 0; }
Texts Items(CDialog& d, int id) {
    Texts items;
    for (CString text; int(items.size()) < Item<CComboBox>(d, id).GetCount(); items.push_back(text.GetString()))
        Item<CComboBox>(d, id).GetLBText(int(items.size()), text);
    return items;
}
void Pick(CDialog& d, int id, const std::string& text) {
    const Texts items = Items(d, id);
    const int at = int(std::find(items.begin(), items.end(), text) - items.begin());
    EXPECT_TRUE(Item<CComboBox>(d, id).Pick(at)) << "list " << id << " has no item " << text;
}
void Type(CDialog& d, int id, const char* text) { Item<CEdit>(d, id).TypeText(text); }
void Click(CDialog& d, int id) { Item<CButton>(d, id).Click(); }

// The record's kind, datum and block (scale 1 if none), then the values saved.
std::string State(CGeoReferenceData& r) {
    ScaledProjectionParam s{1.0, 0.0, 0.0, 0, 0};
    ProjectionParam p{};
    if (r.GetProjection() == GaussKruger || r.GetProjection() == TransverseMercator) std::memcpy(&s, r.GetParam(), sizeof s);
    else if (r.GetParam()) std::memcpy(&p, r.GetParam(), sizeof p), s = {1.0, p.c_lon, p.lat_origin, p.fe, p.fn};
    char text[160];
    std::snprintf(text, sizeof text, "%d %d %.10g %.10g %.10g %d %d |", r.GetProjection(), r.GetDatum(), s.scale,
                  s.c_lon, s.lat_origin, int(s.fe), int(s.fn));
    std::string state = text;
    HKEY key = nullptr;
    const bool open = RegOpenKeyExA(HKEY_CURRENT_USER, AppRegKey() + "\\GeoData", 0, KEY_READ, &key) == 0;
    for (const char* name : {"ProjectionIndex", "DatumIndex", "scale", "c_lon", "lat_origin", "fe", "fn"}) {
        char data[256];
        DWORD size = sizeof data;
        const bool found = open && RegQueryValueExA(key, name, nullptr, nullptr, (BYTE*)data, &size) == 0;
        found ? state.append(" ").append(data, size) : state.append(" -");
    }
    if (open) RegCloseKey(key);
    return state;
}
const std::string kUnsaved = " - - - - - - -";

void Prepare(CGeoReferenceData& r, int kind, int datum, ScaledProjectionParam s = {}) {
    r.CreateGeoInfo(kind, datum);
    ProjectionParam p{s.c_lon, s.lat_origin, s.fe, s.fn};
    r.SetParam(kind == GaussKruger || kind == TransverseMercator ? static_cast<void*>(&s) : &p);
}

const char* const kKindNames[2][7] = {
    {"", "Geographic", "UTM", "Gauss-Kruger", "Transverse Mercator", "Mercator", "Polar Stereographic"},
    {"", "Географическая", "Универсальная поперечная Меркатора", "Гаусса-Крюгера", "Поперечная Меркатора",
     "Меркатора", "Полярная стереографическая"}};

class Dialogs : public ::testing::TestWithParam<LANGID> {
protected:
    void SetUp() override { SetThreadUILanguage(GetParam()), m_oldHook = SetMessageBoxHook(&CaptureBox); }
    void TearDown() override {
        MwSetDialogUser(nullptr, nullptr), SetMessageBoxHook(m_oldHook), SetThreadUILanguage(0), SetAppRegKey(nullptr);
    }
    std::string Say(const char* english, const char* russian) const { return GetParam() == LANG_RUSSIAN ? Utf8ToAnsi(russian) : english; }
    std::string Kind(int kind) const { return Say(kKindNames[0][kind], kKindNames[1][kind]); }
    // A case of its own: no boxes yet, a registry key of its own.
    int Play(const User& user, const std::function<int()>& open) {
        g_boxes.clear();
        SetAppRegKey(("Software\\Host\\Case" + std::to_string(++m_case)).c_str());
        m_user = [&](CDialog& d) { g_owner = d.GetSafeHwnd(), user(d); };
        MwSetDialogUser(&PlayUser, &m_user);
        return open();
    }
    int Choose(CGeoReferenceData& r, const User& user, ProjectionParamTag* tag = nullptr) {
        return Play(user, [&] { return ModalPrChooseDlg(nullptr, &r, tag); });
    }
    mwtest::IsolatedEnv m_env;
    User m_user;
    MessageBoxHook m_oldHook = nullptr;
    int m_case = 0;
};

INSTANTIATE_TEST_SUITE_P(Languages, Dialogs, ::testing::Values(LANG_ENGLISH_US, LANG_RUSSIAN),
                         [](const auto& info) { return info.param == LANG_RUSSIAN ? "Russian" : "English"; });

// OK stores the choice, or a refusal keeps the dialog open.
TEST_P(Dialogs, OkStoresTheChoiceOrRefuses) {
    const Texts refusals[] = {{}, {Say("Select datum", "Выберите датум")}, {Say("Select projection", "Выберите проекцию")},
                              {Say("Input parameters of projection", "Введите параметры проекции")}};
    // The record's kind; what is picked (0, null: nothing); rows typed (null: not); the refusal.
    const struct { int from, kind; const char *ellipsoid, *datum; std::vector<const char*> typed; int refusal; std::string state; } cases[] = {
        {4, GaussKruger, "Krassovsky 1940", "Pulkovo 1942", {"039\xB0 00' 00.00'' E", nullptr, "7500000"}, 0,
         "3 4 1 39 0 7500000 0 | 3 4 1 39.000000 0.000000 7500000 0"},  // always scale 1
        {4, TransverseMercator, nullptr, nullptr, {"0.9996", "027\xB0 30' 00.00'' W", "045\xB0 00' 00.00'' S", "500000.7", "10000000"}, 0,
         "4 3 0.9996 -27.5 -45 500000 10000000 | 4 3 0.999600 -27.500000 -45.000000 500000 10000000"},
        {4, UTM, nullptr, nullptr, {"37", "s"}, 0, "2 3 1 0 0 -1 37 | 2 3 37 0.000000 0.000000 -1 37"},
        {4, UTM, nullptr, nullptr, {"60", "N"}, 0, "2 3 1 0 0 1 60 | 2 3 60 0.000000 0.000000 1 60"},
        {4, UTM, nullptr, nullptr, {"1", "n"}, 0, "2 3 1 0 0 1 1 | 2 3 1 0.000000 0.000000 1 1"},
        {4, PolarStereographic, "WGS 72", "WGS 72", {nullptr, "071\xB0 00' 00.00'' S", "-2x0"}, 0,
         "6 1 1 0 -71 -20 0 | 6 1 1 0.000000 -71.000000 -20 0"},  // the mask refuses x
                {5, 0, "Krassovsky 1940", nullptr, {}, 1, "5 3 1 10 20 30 40 |" + kUnsaved},  // its datums bear other names
        {7, 0, nullptr, nullptr, {}, 2, "7 3 1 0 0 0 0 |" + kUnsaved},
        {5, 0, nullptr, nullptr, {nullptr, nullptr, nullptr, ""}, 3, "5 3 1 10 20 30 40 |" + kUnsaved},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        CGeoReferenceData record;
        Prepare(record, c.from, 3, {0.5, 10.0, 20.0, 30, 40});
        const User user = [&](CDialog& d) {
            if (c.kind) Pick(d, 800, Kind(c.kind));
            if (c.ellipsoid) Pick(d, 806, c.ellipsoid);
            if (c.datum) Pick(d, 807, c.datum);
            for (size_t row = 0; row < c.typed.size(); ++row)
                if (c.typed[row]) Type(d, 801 + int(row), c.typed[row]);
            Click(d, IDOK), Click(d, IDCANCEL);
        };
        EXPECT_EQ(c.refusal ? IDCANCEL : IDOK, Choose(record, user));
        EXPECT_EQ(c.state, State(record));
        EXPECT_EQ(refusals[c.refusal], g_boxes);
    }
}

// What the dialog shows; Cancel leaves the record, but an unset one has had the default system.
TEST_P(Dialogs, OpensOnTheRecord) {
    // The record (-1: unset; Gauss-Kruger: with a UTM tag; Mercator: with a tag "UTx", no UTM); the kind, rows
    // ("~": hidden) and lists shown.
    const struct { int kind, datum; ScaledProjectionParam block; int shownKind; std::string look; } cases[] = {
        {TransverseMercator, 3, {0.9996, 39.0, 0.0, 500000, 0}, TransverseMercator,
         "0.999600|039\xB0 00' 00.00'' E|000\xB0 00' 00.00'' N|500000|0|WGS 84|WGS 84"},
        {GaussKruger, 4, {1.0, 21.0, 0.0, 4500000, 0}, UTM, "37|N|~|~|~|Krassovsky 1940|Pulkovo 1942"},
        {Mercator, 3, {1.0, -21.5, 30.0, 100, -200}, Mercator, "021\xB0 30' 00.00'' W|030\xB0 00' 00.00'' N|100|-200|~|WGS 84|WGS 84"},
        {-1, -1, {}, Geographic, "~|~|~|~|~|WGS 84|WGS 84"},
    };
    ProjectionParamTag tag{};
    std::strcpy(tag.szProjName, "UTM"), tag.fe = 1, tag.fn = 37;
    ProjectionParamTag notUtm = tag;
    std::strcpy(notUtm.szProjName, "UTx");
    Texts kinds;  // in order in the Russian template, sorted in the English one
    for (int k : GetParam() == LANG_RUSSIAN ? std::vector<int>{1, 2, 3, 4, 5, 6} : std::vector<int>{3, 1, 5, 6, 4, 2})
        kinds.push_back(Kind(k));
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        CGeoReferenceData record;
        if (c.kind > 0) Prepare(record, c.kind, c.datum, c.block);
        const std::string before = c.kind > 0 ? State(record) : "1 3 1 0 0 0 0 |" + kUnsaved;
        const User user = [&](CDialog& d) {
            std::string look = (c.shownKind ? Kind(c.shownKind) : "") == Text(d, 800) ? "" : "kind?";
            for (int id = 801; id <= 805; ++id) look += (Shown(d, id) ? Text(d, id) : "~") + "|";
            EXPECT_EQ(c.look, look + Text(d, 806) + "|" + Text(d, 807));
            EXPECT_EQ(Say("Cancel", "Отмена"), Text(d, IDCANCEL));
            EXPECT_EQ(kinds, Items(d, 800));
            Pick(d, 800, Kind(PolarStereographic)), Click(d, IDCANCEL);
        };
        EXPECT_EQ(IDCANCEL, Choose(record, user, c.kind == GaussKruger ? &tag : c.kind == Mercator ? &notUtm : nullptr));
        EXPECT_EQ(before, State(record));
    }
}

// Broken catalogs: repaired, listed up to a gap, never a hang, no entry lost.
TEST_P(Dialogs, CatalogListing) {
    const std::string ellips84 =
        "[Format 0]\r\nIndex=5\r\nEllipsName=WGS 84\r\nellipsParam_0=6378137.000000\r\nellipsParam_1=298.257224\r\n";
    std::string datum84 = "[Format 0]\r\nDatumName=WGS 84\r\nEllipsoidIndex=5\r\n", e = "]\nIndex=5\nEllipsName=";
    for (const char* key : {"0_0", "0_1", "0_2", "1_0", "1_1", "1_2"}) datum84 += "datumParam_" + std::string(key) + "=0\r\n";
    datum84 += "DatumIndex=16\r\n";
    const std::string missing = "?";
    const struct { std::string ellips, datum; Texts items; std::string ellipsAfter, datumAfter; } cases[] = {
        {missing, "", {"WGS 84"}, ellips84, datum84},  // keys in order
        {"[Format 0" + e + "WGS 84\n[Format 1" + e + "E1\n[Format 2" + e + "QQ\n[Format 4" + e + "E4\n", datum84,
         {"E1", "WGS 84"}, "", ""},  // QQ ends the list
    };
    for (const auto& c : cases) {
        mwtest::TempDir dir;
        CGeoReferenceData record;
        record.m_strEllipsFile = dir.file("ellips.ini").c_str();
        record.m_strDatumFile = dir.file("datum.ini").c_str();
        if (c.ellips != missing) mwtest::WriteFile(dir.file("ellips.ini"), c.ellips);
        if (c.datum != missing) mwtest::WriteFile(dir.file("datum.ini"), c.datum);
        Choose(record, [&](CDialog& d) {
            EXPECT_EQ(c.items, Items(d, 806));
            EXPECT_EQ(Texts{"WGS 84"}, Items(d, 807));
            Click(d, IDCANCEL);
        });
        EXPECT_EQ(c.ellipsAfter.empty() ? c.ellips : c.ellipsAfter, mwtest::ReadFile(dir.file("ellips.ini")));
        EXPECT_EQ(c.datumAfter.empty() ? c.datum : c.datumAfter, mwtest::ReadFile(dir.file("datum.ini")));
    }
    // Catalogs that cannot be repaired (a folder, a missing folder) list nothing.
    CGeoReferenceData record;
    record.m_strEllipsFile = m_env.catalogDir().c_str();
    record.m_strDatumFile = (m_env.appDir() + "/missing/datum.ini").c_str();
    Choose(record, [&](CDialog& d) { EXPECT_EQ(0, Item<CComboBox>(d, 806).GetCount() + Item<CComboBox>(d, 807).GetCount()); });
}

TEST_P(Dialogs, GeoidPanel) {
    auto panel = [](CDialog& d) {  // radio buttons; height, label and file control shown
        std::string state;
        for (int id : {886, 887}) state += std::to_string(Item<CButton>(d, id).GetCheck());
        for (int id : {820, 821, 822}) state += Shown(d, id) ? "+" : "-";
        return state + Text(d, 820) + "|" + Item<CInFileCtrl>(d, 822).GetPathName().GetString();
    };
    // The caller's path (the height is 12.5); the user, then OK and Cancel; the result, height and path.
    const struct { const char* file; User act; const char* outcome; } cases[] = {
        {"", [&](CDialog& d) { EXPECT_EQ("10++- 12.50|", panel(d)); Type(d, 820, "35.7"); }, "1 35.7 "},
        {"/g/a.grd", [&](CDialog& d) { EXPECT_EQ("01--+|/g/a.grd", panel(d)); }, "1 12.5 /g/a.grd"},
        {"", [&](CDialog& d) {  // a chosen file stays chosen after Cancel
             Click(d, 887);
             EXPECT_TRUE(Item<CInFileCtrl>(d, 822).ChoosePath("/g/new.grd"));
             EXPECT_EQ("01--+ 12.50|/g/new.grd", panel(d));
             Click(d, IDCANCEL);
         }, "2 12.5 /g/new.grd"},
        {"", [](CDialog& d) { Pick(d, 806, "Krassovsky 1940"), Type(d, 820, "abc"); }, "2 0 "},  // refused OK
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        CGeoReferenceData record;
        Prepare(record, Mercator, 3);
        double height = 12.5;
        CString file(c.file);
        const User act = [&](CDialog& d) { c.act(d), Click(d, IDOK), Click(d, IDCANCEL); };
        const int rc = Play(act, [&] { return ModalPrAndGeoidDlg(nullptr, &record, &height, &file); });
        char outcome[300];
        std::snprintf(outcome, sizeof outcome, "%d %.10g %s", rc, height, file.GetString());
        EXPECT_EQ(c.outcome, std::string(outcome));
        EXPECT_EQ("5 3 1 0 0 0 0 |" + (rc == IDOK ? " 5 3 1 0.000000 0.000000 0 0" : kUnsaved), State(record));
    }
}

// No scripted user and no window back end, or a null pointer: -1.
TEST_P(Dialogs, CannotBeCreated) {
    CGeoReferenceData r;
    double h = 1.0;
    CString f;
    EXPECT_EQ(-2, ModalPrChooseDlg(nullptr, &r, nullptr) + ModalPrAndGeoidDlg(nullptr, &r, &h, &f));
    EXPECT_EQ(-1, r.GetProjection());
    m_user = [](CDialog&) { ADD_FAILURE() << "no dialog may open"; };
    MwSetDialogUser(&PlayUser, &m_user);
    EXPECT_EQ(-3, ModalPrChooseDlg(nullptr, nullptr, nullptr) + ModalPrAndGeoidDlg(nullptr, &r, nullptr, &f) +
                      ModalPrAndGeoidDlg(nullptr, &r, &h, nullptr));
}

}  // namespace
