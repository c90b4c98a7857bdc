// The two dialogs played by a scripted user, in English and in Russian: what
// they show on opening, what each user action changes, and what lands in the
// host's record, the registry and the geoid variables after OK and Cancel.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <mapwright/mapwright.h>

#include "testenv.h"

namespace {

using User = std::function<void(CDialog&)>;
using Texts = std::vector<std::string>;

struct Box {
    HWND owner;
    std::string text, caption;
    UINT type;
};
std::vector<Box> g_boxes;
int CaptureBox(HWND owner, LPCSTR text, LPCSTR caption, UINT type) {
    g_boxes.push_back({owner, text ? text : "<null>", caption ? caption : "<null>", type});
    return IDOK;
}

void PlayUser(CDialog& dialog, void* context) { (*static_cast<User*>(context))(dialog); }

// The control the dialog bound to `id`, as the class it was bound as.
template <class T = CWnd>
T& Item(CDialog& dialog, int id) {
    T* control = dynamic_cast<T*>(dialog.GetDlgItem(id));
    if (!control) {
        ADD_FAILURE() << "no control " << id << " of the expected class";
        std::abort();
    }
    return *control;
}
std::string Text(CDialog& d, int id) {
    CString text;
    Item(d, id).GetWindowText(text);
    return text.GetString();
}
bool Shown(CDialog& d, int id) { return Item(d, id).IsWindowVisible() != 0; }
int Check(CDialog& d, int id) { return Item<CButton>(d, id).GetCheck(); }
Texts Items(CDialog& d, int id) {
    Texts items;
    CString text;
    for (int i = 0; i < Item<CComboBox>(d, id).GetCount(); ++i) {
        Item<CComboBox>(d, id).GetLBText(i, text);
        items.push_back(text.GetString());
    }
    return items;
}
void Pick(CDialog& d, int id, const std::string& text) {
    const Texts items = Items(d, id);
    for (size_t i = 0; i < items.size(); ++i) {
        if (items[i] != text) continue;
        EXPECT_TRUE(Item<CComboBox>(d, id).Pick(static_cast<int>(i)));
        return;
    }
    ADD_FAILURE() << "list " << id << " has no item " << text;
}
void Type(CDialog& d, int id, const char* text) { Item<CEdit>(d, id).TypeText(text); }
void Click(CDialog& d, int id) { Item<CButton>(d, id).Click(); }

// The saved system under the host's key, "-" for a missing value.
Texts Saved() {
    Texts values;
    HKEY key = nullptr;
    const bool open = RegOpenKeyExA(HKEY_CURRENT_USER, AppRegKey() + "\\GeoData", 0, KEY_READ, &key) == 0;
    for (const char* name : {"ProjectionIndex", "DatumIndex", "scale", "c_lon", "lat_origin", "fe", "fn"}) {
        char data[256];
        DWORD size = sizeof data;
        const bool found = open && RegQueryValueExA(key, name, nullptr, nullptr, (BYTE*)data, &size) == 0;
        values.push_back(found ? std::string(data, size) : "-");
    }
    if (open) RegCloseKey(key);
    return values;
}
const Texts kNothingSaved(7, "-");

// The record's block as scale (1 for the unscaled blocks), c_lon,
// lat_origin, fe, fn.
std::vector<double> Block(CGeoReferenceData& r) {
    ScaledProjectionParam s{};
    if (r.GetProjection() == GaussKruger || r.GetProjection() == TransverseMercator) {
        std::memcpy(&s, r.GetParam(), sizeof s);
    } else {
        ProjectionParam p;
        std::memcpy(&p, r.GetParam(), sizeof p);
        s = {1.0, p.c_lon, p.lat_origin, p.fe, p.fn};
    }
    return {s.scale, s.c_lon, s.lat_origin, double(s.fe), double(s.fn)};
}

// A record on a catalog datum with a block of its kind.
void Prepare(CGeoReferenceData& r, int kind, int datum, ScaledProjectionParam s = {}) {
    r.CreateGeoInfo(kind, datum);
    ProjectionParam p{s.c_lon, s.lat_origin, s.fe, s.fn};
    r.SetParam(kind == GaussKruger || kind == TransverseMercator ? static_cast<void*>(&s) : &p);
}

const char* const kKindNames[2][7] = {
    {"", "Geographic", "UTM", "Gauss-Kruger", "Transverse Mercator", "Mercator", "Polar Stereographic"},
    {"", "Географическая", "Универсальная поперечная Меркатора", "Гаусса-Крюгера", "Поперечная Меркатора",
     "Меркатора", "Полярная стереографическая"}};
const char* const kEast = "000\xB0 00' 00.00'' E";
const char* const kNorth = "000\xB0 00' 00.00'' N";

class Dialogs : public ::testing::TestWithParam<LANGID> {
protected:
    void SetUp() override {
        SetThreadUILanguage(GetParam());
        g_boxes.clear();
        m_oldHook = SetMessageBoxHook(&CaptureBox);
    }
    void TearDown() override {
        MwSetDialogUser(nullptr, nullptr);
        SetMessageBoxHook(m_oldHook);
        SetThreadUILanguage(0);
        SetAppRegKey(nullptr);
    }
    // Each case of a table saves under a key of its own.
    void NextCase() {
        g_boxes.clear();
        SetAppRegKey(("Software\\Host\\Case" + std::to_string(++m_case)).c_str());
    }
    std::string Kind(int kind) const { return Say(kKindNames[0][kind], kKindNames[1][kind]); }
    std::string Say(const char* english, const char* russian) const {
        return GetParam() == LANG_RUSSIAN ? Utf8ToAnsi(russian) : english;
    }
    int Play(User user, const std::function<int()>& open) {
        m_user = std::move(user);
        MwSetDialogUser(&PlayUser, &m_user);
        const int rc = open();
        MwSetDialogUser(nullptr, nullptr);
        return rc;
    }
    int Choose(CGeoReferenceData& r, User user, ProjectionParamTag* tag = nullptr) {
        return Play(std::move(user), [&] { return ModalPrChooseDlg(nullptr, &r, tag); });
    }

    mwtest::IsolatedEnv m_env;
    User m_user;
    MessageBoxHook m_oldHook = nullptr;
    int m_case = 0;
};

INSTANTIATE_TEST_SUITE_P(Languages, Dialogs, ::testing::Values(LANG_ENGLISH_US, LANG_RUSSIAN),
                         [](const auto& info) { return info.param == LANG_RUSSIAN ? "Russian" : "English"; });

// The user picks a kind, an ellipsoid and a datum, types the rows and
// presses OK; the record and the registry then hold the choice.
TEST_P(Dialogs, ChoiceLandsInRecordAndRegistry) {
    struct Case {
        const char* why;
        int kind;
        const char *ellipsoid, *datum;    // null: as the lists open
        std::vector<const char*> typed;  // rows 1, 2, ...; null: not typed
        int datumIndex;
        std::vector<double> block;
        Texts saved;
    } cases[] = {
        {"Gauss-Kruger on Pulkovo 1942 always has scale 1", GaussKruger, "Krassovsky 1940", "Pulkovo 1942",
         {"039\xB0 00' 00.00'' E", nullptr, "7500000"}, 4, {1.0, 39.0, 0.0, 7500000, 0},
         {"3", "4", "1", "39.000000", "0.000000", "7500000", "0"}},
        {"Transverse Mercator, west and south, a fraction of a metre dropped", TransverseMercator, nullptr, nullptr,
         {"0.9996", "027\xB0 30' 00.00'' W", "045\xB0 00' 00.00'' S", "500000.7", "10000000"}, 3,
         {0.9996, -27.5, -45.0, 500000, 10000000},
         {"4", "3", "0.999600", "-27.500000", "-45.000000", "500000", "10000000"}},
        {"UTM: lower-case s is the south flag -1; the zone is saved as the scale", UTM, nullptr, nullptr,
         {"37", "s"}, 3, {1.0, 0.0, 0.0, -1, 37}, {"2", "3", "37", "0.000000", "0.000000", "-1", "37"}},
        {"polar stereographic; the number mask refuses a letter", PolarStereographic, "WGS 72", "WGS 72",
         {nullptr, "071\xB0 00' 00.00'' S", "-2x000", "1000"}, 1, {1.0, 0.0, -71.0, -2000, 1000},
         {"6", "1", "1", "0.000000", "-71.000000", "-2000", "1000"}},
        {"Geographic stores no block (a new one is zero) but is saved", Geographic, nullptr, nullptr, {}, 3,
         {1.0, 0.0, 0.0, 0, 0}, {"1", "3", "1", "0.000000", "0.000000", "0", "0"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        NextCase();
        CGeoReferenceData record;
        Prepare(record, TransverseMercator, 3, {0.5, 10.0, 20.0, 30, 40});
        EXPECT_EQ(IDOK, Choose(record, [&](CDialog& d) {
                      Pick(d, 800, Kind(c.kind));
                      if (c.ellipsoid) Pick(d, 806, c.ellipsoid);
                      if (c.datum) Pick(d, 807, c.datum);
                      for (size_t row = 0; row < c.typed.size(); ++row)
                          if (c.typed[row]) Type(d, 801 + int(row), c.typed[row]);
                      Click(d, IDOK);
                  }));
        EXPECT_EQ(c.kind, record.GetProjection());
        EXPECT_EQ(c.datumIndex, record.GetDatum());
        EXPECT_EQ(c.block, Block(record));
        EXPECT_EQ(c.saved, Saved());
        EXPECT_TRUE(g_boxes.empty());
    }
}

// What the dialog shows when it opens on a record (and a tag); Cancel then
// leaves the record as it was, but an unset one has had the default system.
TEST_P(Dialogs, OpensOnTheRecord) {
    struct Case {
        const char* why;
        int kind, datum;  // kind -1: an unset record
        ScaledProjectionParam block;
        bool utmTag;
        int shownKind;                  // 0: nothing selected
        std::vector<const char*> rows;  // rows 1 to 5, null: hidden
        const char *ellipsoid, *datumName;
    } cases[] = {
        {"Transverse Mercator shows five rows", TransverseMercator, 3, {0.9996, 39.0, 0.0, 500000, 0}, false,
         TransverseMercator, {"0.999600", "039\xB0 00' 00.00'' E", kNorth, "500000", "0"}, "WGS 84", "WGS 84"},
        {"a UTM tag wins over the record's kind", GaussKruger, 4, {1.0, 21.0, 0.0, 4500000, 0}, true, UTM,
         {"37", "N", nullptr, nullptr, nullptr}, "Krassovsky 1940", "Pulkovo 1942"},
        {"UTM south from the record", UTM, 3, {1.0, 0.0, 0.0, -1, 58}, false, UTM,
         {"58", "S", nullptr, nullptr, nullptr}, "WGS 84", "WGS 84"},
        {"Mercator angles as degrees-minutes-seconds", Mercator, 4, {1.0, -75.25, 10.5, 0, 0}, false, Mercator,
         {"075\xB0 15' 00.00'' W", "010\xB0 30' 00.00'' N", "0", "0", nullptr}, "Krassovsky 1940", "Pulkovo 1942"},
        {"Cartesian is not offered: nothing selected, the rows as in the template", Cartesian, 3, {}, false, 0,
         {"", "", "", "", ""}, "WGS 84", "WGS 84"},
        {"an unset record: Geographic on WGS 84", -1, -1, {}, false, Geographic,
         {nullptr, nullptr, nullptr, nullptr, nullptr}, "WGS 84", "WGS 84"},
    };
    ProjectionParamTag tag{};
    std::strcpy(tag.szProjName, "UTM");
    tag.fe = 1;
    tag.fn = 37;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        NextCase();
        CGeoReferenceData record;
        if (c.kind > 0) Prepare(record, c.kind, c.datum, c.block);
        const std::vector<double> before = c.kind > 0 ? Block(record) : std::vector<double>{1, 0, 0, 0, 0};
        auto look = [&](CDialog& d) {
            EXPECT_EQ(c.shownKind ? Kind(c.shownKind) : "", Text(d, 800));
            for (int row = 0; row < 5; ++row) {
                SCOPED_TRACE(row + 1);
                EXPECT_EQ(c.rows[row] != nullptr, Shown(d, 801 + row));
                if (c.rows[row]) {
                    EXPECT_EQ(c.rows[row], Text(d, 801 + row));
                }
            }
            EXPECT_EQ(c.ellipsoid, Text(d, 806));
            EXPECT_EQ(c.datumName, Text(d, 807));
            EXPECT_EQ(Say("Cancel", "Отмена"), Text(d, IDCANCEL));
            EXPECT_EQ(Say("Property of projection", "Параметры проекции"), Text(d, 809));
            Pick(d, 800, Kind(PolarStereographic));
            Click(d, IDCANCEL);
        };
        EXPECT_EQ(IDCANCEL, Choose(record, look, c.utmTag ? &tag : nullptr));
        EXPECT_EQ(c.kind > 0 ? c.kind : Geographic, record.GetProjection());
        EXPECT_EQ(c.kind > 0 ? c.datum : 3, record.GetDatum());
        EXPECT_EQ(before, Block(record));
        EXPECT_EQ(kNothingSaved, Saved());
    }
}

// The rows of each kind: label, mask, visibility and default text.
TEST_P(Dialogs, RowsFollowTheKind) {
    const char *number = "%%%%%%%%%%%%%%", *angle = "900__90__90_00___$";
    struct Row {
        int label;  // 0: hidden
        const char *mask, *valid, *text;
    };
    const Row fe{858, number, "", "0"}, plainFe{858, nullptr, nullptr, "0"}, fn{859, nullptr, nullptr, "0"};
    const Row lon{856, angle, "WEwe", kEast}, north{857, angle, "NSns", kNorth}, trueScale{860, angle, "NSns", kNorth};
    const struct {
        int kind;
        Row rows[5];
    } cases[] = {
        {UTM, {{862, number, "", "1"}, {890, "$", "NSns", "N"}, {}, {}, {}}},
        {GaussKruger, {lon, north, fe, fn, {}}},
        {TransverseMercator, {{861, number, "", "1"}, lon, north, plainFe, fn}},
        {Mercator, {lon, trueScale, fe, fn, {}}},
        {PolarStereographic, {{866, angle, "WEwe", kEast}, trueScale, fe, fn, {}}},
        {Geographic, {}},
    };
    CGeoReferenceData record;
    Prepare(record, Geographic, 3);
    Choose(record, [&](CDialog& d) {
        for (const auto& c : cases) {
            SCOPED_TRACE(c.kind);
            Pick(d, 800, Kind(c.kind));
            for (int row = 0; row < 5; ++row) {
                SCOPED_TRACE(row + 1);
                const Row& r = c.rows[row];
                EXPECT_EQ(r.label ? GetResourceString(r.label).GetString() : "", Text(d, 812 + row));
                EXPECT_EQ(r.label != 0, Shown(d, 801 + row));
                if (r.label) {
                    EXPECT_EQ(r.text, Text(d, 801 + row));
                }
                if (!r.mask) continue;
                EXPECT_EQ(r.mask, std::string(Item<CMaskEdit>(d, 801 + row).GetMask()));
                EXPECT_EQ(r.valid, std::string(Item<CMaskEdit>(d, 801 + row).GetValid()));
            }
        }
        // Closing the list without a change puts the defaults back.
        Pick(d, 800, Kind(Mercator));
        Type(d, 803, "250");
        Item<CComboBox>(d, 800).OpenAndClose();
        EXPECT_EQ("0", Text(d, 803));
        // The Russian template keeps the kinds in their order; the English one sorts them.
        Texts expected;
        for (int kind : GetParam() == LANG_RUSSIAN ? std::vector<int>{1, 2, 3, 4, 5, 6} : std::vector<int>{3, 1, 5, 6, 4, 2})
            expected.push_back(Kind(kind));
        EXPECT_EQ(expected, Items(d, 800));
        Click(d, IDCANCEL);
    });
}

// A refused OK: a box owned by the dialog, empty caption, MB_OK, and the
// dialog stays open (the user then cancels); nothing is stored.
TEST_P(Dialogs, OkRefusals) {
    const struct {
        const char* why;
        int kind;
        User act;
        std::string message;
    } cases[] = {
        {"the new ellipsoid's datums bear other names: no datum selected", Mercator,
         [](CDialog& d) { Pick(d, 806, "Krassovsky 1940"); }, Say("Select datum", "Выберите датум")},
        {"no projection selected", Cartesian, [](CDialog&) {}, Say("Select projection", "Выберите проекцию")},
        {"an empty parameter", Mercator, [](CDialog& d) { Item<CEdit>(d, 804).EraseChar(0); },
         Say("Input parameters of projection", "Введите параметры проекции")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        NextCase();
        CGeoReferenceData record;
        Prepare(record, c.kind, 3);
        HWND window = nullptr;
        EXPECT_EQ(IDCANCEL, Choose(record, [&](CDialog& d) {
                      window = d.GetSafeHwnd();
                      c.act(d);
                      Click(d, IDOK);
                      Click(d, IDCANCEL);
                  }));
        ASSERT_EQ(1u, g_boxes.size());
        EXPECT_EQ(window, g_boxes[0].owner);
        EXPECT_EQ(c.message, g_boxes[0].text);
        EXPECT_EQ("", g_boxes[0].caption);
        EXPECT_EQ(MB_OK, g_boxes[0].type);
        EXPECT_EQ(c.kind, record.GetProjection());
        EXPECT_EQ(kNothingSaved, Saved());
    }
}

// Broken catalogs: repaired, listed up to the first gap, never a hang, and
// no entry lost.
TEST_P(Dialogs, CatalogListing) {
    const std::string ellips84 =
        "[Format 0]\r\nIndex=5\r\nEllipsName=WGS 84\r\nellipsParam_0=6378137.000000\r\nellipsParam_1=298.257224\r\n";
    const std::string datum84 =
        "[Format 0]\r\nDatumName=WGS 84\r\nEllipsoidIndex=5\r\ndatumParam_0_0=0\r\ndatumParam_0_1=0\r\n"
        "datumParam_0_2=0\r\ndatumParam_1_0=0\r\ndatumParam_1_1=0\r\ndatumParam_1_2=0\r\nDatumIndex=16\r\n";
    const std::string longName(1500, 'L'), other = "[Format 1]\nIndex=7\nEllipsName=Other\n";
    auto entries = [](Texts names) {
        std::string text;
        for (size_t i = 0; i < names.size(); ++i)
            text += "[Format " + std::to_string(i) + "]\nIndex=5\nEllipsName=" + names[i] + "\n";
        return text;
    };
    const std::string missing = "<no file>";
    const struct {
        const char* why;
        std::string ellips, datum;  // the files' contents
        Texts ellipsItems;
        std::string ellipsAfter, datumAfter;  // empty: unchanged
    } cases[] = {
        {"both missing: created with the WGS 84 entry, keys in order", missing, missing, {"WGS 84"}, ellips84,
         datum84},
        {"a gap ends the list", entries({"E0", "E1", "E2", "E3", "E4"}) + "[Format 6]\nIndex=5\nEllipsName=E6\n",
         datum84, {"E0", "E1", "E2", "E3", "E4"}, "", ""},
        {"a name holding the sentinel QQ ends the list", entries({"WGS 84", "E1", "QQ", "E3"}), datum84,
         {"E1", "WGS 84"}, "", ""},
        {"section 0 missing: the default goes in, the rest stays", other, "", {"Other", "WGS 84"}, other + ellips84,
         datum84},
        {"a name longer than a catalog value: cut to 1023 bytes", entries({longName}), datum84,
         {longName.substr(0, 1023)}, "", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        mwtest::TempDir dir;
        CGeoReferenceData record;
        record.m_strEllipsFile = dir.file("ellips.ini").c_str();
        record.m_strDatumFile = dir.file("datum.ini").c_str();
        if (c.ellips != missing) mwtest::WriteFile(dir.file("ellips.ini"), c.ellips);
        if (c.datum != missing) mwtest::WriteFile(dir.file("datum.ini"), c.datum);
        Choose(record, [&](CDialog& d) {
            EXPECT_EQ(c.ellipsItems, Items(d, 806));
            EXPECT_EQ(Texts{"WGS 84"}, Items(d, 807));
            Click(d, IDCANCEL);
        });
        EXPECT_EQ(c.ellipsAfter.empty() ? c.ellips : c.ellipsAfter, mwtest::ReadFile(dir.file("ellips.ini")));
        EXPECT_EQ(c.datumAfter.empty() ? c.datum : c.datumAfter, mwtest::ReadFile(dir.file("datum.ini")));
    }

    // Catalogs that cannot be repaired (a folder, a missing folder) list
    // nothing, and OK asks for a datum.
    CGeoReferenceData record;
    record.m_strEllipsFile = m_env.catalogDir().c_str();
    record.m_strDatumFile = (m_env.appDir() + "/missing/datum.ini").c_str();
    EXPECT_EQ(IDCANCEL, Choose(record, [&](CDialog& d) {
                  EXPECT_EQ(0, Item<CComboBox>(d, 806).GetCount() + Item<CComboBox>(d, 807).GetCount());
                  Click(d, IDOK);
                  Click(d, IDCANCEL);
              }));
    ASSERT_EQ(1u, g_boxes.size());
    EXPECT_EQ(Say("Select datum", "Выберите датум"), g_boxes[0].text);
}

// A datum index no section has opens on the catalog's first datum; the
// list notifications then refill and clear the datum list.
TEST_P(Dialogs, ListHandlers) {
    CGeoReferenceData record;
    Prepare(record, Cartesian, 999);
    EXPECT_EQ(IDOK, Choose(record, [&](CDialog& d) {
                  EXPECT_EQ("WGS 72", Text(d, 806));
                  EXPECT_EQ(Texts{"WGS 72"}, Items(d, 807));
                  EXPECT_EQ("WGS 72", Text(d, 807));
                  // No projection selected: dropping the datum list down empties it.
                  Item<CComboBox>(d, 807).OpenAndClose();
                  EXPECT_EQ(0, Item<CComboBox>(d, 807).GetCount());
                  // Another ellipsoid refills the list; with a projection the
                  // datum named like the ellipsoid is selected.
                  Pick(d, 800, Kind(UTM));
                  Pick(d, 806, "WGS 84");
                  EXPECT_EQ(Texts{"WGS 84"}, Items(d, 807));
                  Pick(d, 806, "WGS 72");
                  EXPECT_EQ("WGS 72", Text(d, 807));
                  Click(d, IDOK);
              }));
    EXPECT_EQ(UTM, record.GetProjection());
    EXPECT_EQ(1, record.GetDatum());
}

// The geoid panel's two states, and the caller's height and path after OK
// and Cancel (the projection part is that of the other dialog).
TEST_P(Dialogs, GeoidPanel) {
    auto state = [](CDialog& d, bool custom) {  // Custom: the height shown, the file control hidden
        EXPECT_EQ(custom, Check(d, 886) == BST_CHECKED && Check(d, 887) == BST_UNCHECKED);
        EXPECT_EQ(!custom, Check(d, 887) == BST_CHECKED && Check(d, 886) == BST_UNCHECKED);
        EXPECT_TRUE(Shown(d, 820) == custom && Shown(d, 821) == custom && Shown(d, 822) == !custom);
    };
    const struct {
        const char* why;
        const char* file;  // the caller's path at the start; the height is 12.5
        User act;
        int rc;
        double height;
        const char* fileAfter;
    } cases[] = {
        {"no path: Custom, the height in six places; the typed height is taken", "", [&](CDialog& d) {
             state(d, true);
             EXPECT_EQ(" 12.50", Text(d, 820));
             Type(d, 820, "35.7");
             Click(d, IDOK);
         }, IDOK, 35.7, ""},
        {"a path: From file showing it; OK keeps both", "/geoid/egm96.grd", [&](CDialog& d) {
             state(d, false);
             EXPECT_EQ("/geoid/egm96.grd", std::string(Item<CInFileCtrl>(d, 822).GetPathName()));
             Click(d, IDOK);
         }, IDOK, 12.5, "/geoid/egm96.grd"},
        {"a chosen file stays chosen after Cancel", "", [&](CDialog& d) {
             Click(d, 887);
             state(d, false);
             EXPECT_TRUE(Item<CInFileCtrl>(d, 822).ChoosePath("/geoid/new.grd"));
             Click(d, IDCANCEL);
         }, IDCANCEL, 12.5, "/geoid/new.grd"},
        {"each click on Custom resets the height", "/geoid/old.grd", [&](CDialog& d) {
             Click(d, 886);
             state(d, true);
             Type(d, 820, "7");
             Click(d, 886);
             EXPECT_EQ("0.0", Text(d, 820));
             Click(d, IDOK);
         }, IDOK, 0.0, ""},
        {"a height that is not a number is 0", "",
         [](CDialog& d) {
             Type(d, 820, "abc");
             Click(d, IDOK);
         }, IDOK, 0.0, ""},
        {"a refused OK has written the height already", "", [](CDialog& d) {
             Pick(d, 806, "Krassovsky 1940");
             Type(d, 820, "35.7");
             Click(d, IDOK);
             Click(d, IDCANCEL);
         }, IDCANCEL, 35.7, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        NextCase();
        CGeoReferenceData record;
        Prepare(record, Mercator, 3);
        double height = 12.5;
        CString file(c.file);
        EXPECT_EQ(c.rc, Play(c.act, [&] { return ModalPrAndGeoidDlg(nullptr, &record, &height, &file); }));
        EXPECT_EQ(c.height, height);
        EXPECT_EQ(c.fileAfter, std::string(file));
        EXPECT_EQ(c.rc == IDOK ? "5" : "-", Saved()[0]);
    }
}

// No scripted user and no window back end, or a null pointer: the dialog
// cannot be created, and the record is left alone.
TEST_P(Dialogs, CannotBeCreated) {
    CGeoReferenceData record;
    double height = 1.0;
    CString file;
    EXPECT_EQ(-1, ModalPrChooseDlg(nullptr, &record, nullptr));
    EXPECT_EQ(-1, ModalPrAndGeoidDlg(nullptr, &record, &height, &file));
    EXPECT_EQ(-1, record.GetProjection());
    m_user = [](CDialog&) { ADD_FAILURE() << "no dialog may open"; };
    MwSetDialogUser(&PlayUser, &m_user);
    EXPECT_EQ(-1, ModalPrChooseDlg(nullptr, nullptr, nullptr));
    EXPECT_EQ(-1, ModalPrAndGeoidDlg(nullptr, &record, nullptr, &file));
    EXPECT_EQ(-1, ModalPrAndGeoidDlg(nullptr, &record, &height, nullptr));
}

}  // namespace
