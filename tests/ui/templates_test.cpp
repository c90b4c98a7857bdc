// The module's other resources: the dialog templates 817, 818 and 819 in both
// languages, control by control, the version resource and the manifest.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <mapwright/module.h>
#include <mapwright/resources.h>

namespace {

// Window, dialog and control styles with the values Windows gives them.
constexpr DWORD kPopup = 0x80000000, kChild = 0x40000000, kVisible = 0x10000000;
constexpr DWORD kCaption = 0x00C00000, kBorder = 0x00800000, kVScroll = 0x00200000, kSysMenu = 0x00080000;
constexpr DWORD kGroup = 0x00020000, kTabStop = 0x00010000;
constexpr DWORD kModalFrame = 0x80, kSetFont = 0x40;
constexpr DWORD kDropDownList = 0x3, kSort = 0x100, kAutoHScroll = 0x80;
constexpr DWORD kDefPushButton = 0x1, kGroupBoxStyle = 0x7, kAutoRadioButton = 0x9, kLeftText = 0x0;

constexpr DWORD kDialog = kPopup | kCaption | kSysMenu | kModalFrame | kSetFont;  // 0x80C800C0
constexpr DWORD kList = kChild | kVisible | kVScroll | kTabStop | kDropDownList;
constexpr DWORD kSortedList = kList | kSort;
constexpr DWORD kEdit = kChild | kVisible | kBorder | kTabStop | kAutoHScroll;
constexpr DWORD kOk = kChild | kVisible | kTabStop | kDefPushButton;
constexpr DWORD kButton = kChild | kVisible | kTabStop;
constexpr DWORD kLabel = kChild | kVisible | kGroup | kLeftText;
constexpr DWORD kFrame = kChild | kVisible | kGroupBoxStyle;
constexpr DWORD kRadio = kChild | kVisible | kAutoRadioButton;

struct Control {
    const char* className;
    int id;
    DWORD style;
    short x, y, cx, cy;
    const char* text;  // Windows-1251
};

struct Template {
    UINT id;
    LANGID language;
    short cx, cy;
    const char* caption;
    std::vector<Control> controls;
};

const Template kTemplates[] = {
    {817, LANG_ENGLISH_US, 170, 219, "Choose projection",
     {
         {"ComboBox", 800, kSortedList, 14, 19, 143, 68, ""},
         {"Edit", 801, kEdit, 93, 48, 66, 12, ""},
         {"Edit", 802, kEdit, 93, 65, 66, 12, ""},
         {"Edit", 803, kEdit, 93, 83, 66, 12, ""},
         {"Edit", 804, kEdit, 93, 100, 66, 12, ""},
         {"Edit", 805, kEdit, 93, 117, 66, 12, ""},
         {"ComboBox", 806, kSortedList, 22, 151, 129, 68, ""},
         {"ComboBox", 807, kSortedList, 22, 176, 129, 68, ""},
         {"Button", 1, kOk, 7, 198, 50, 14, "OK"},
         {"Button", 2, kButton, 113, 198, 50, 14, "Cancel"},
         {"Static", 811, kLabel, 73, 167, 24, 8, "Datum"},
         {"Static", 810, kLabel, 70, 142, 29, 8, "Ellipsoid"},
         {"Static", 812, kLabel, 11, 49, 79, 17, "UTM Zone"},
         {"Button", -1, kFrame, 7, 134, 156, 60, ""},
         {"Static", 813, kLabel, 11, 66, 82, 19, "Longitude of central meridian"},
         {"Static", 814, kLabel, 11, 84, 79, 18, "Latitude of origin"},
         {"Static", 815, kLabel, 11, 101, 78, 8, "FE"},
         {"Static", 816, kLabel, 11, 118, 79, 8, "FN"},
         {"Button", 809, kFrame, 7, 37, 156, 97, "Property of projection"},
         {"Button", 808, kFrame, 7, 7, 156, 29, "Projection"},
     }},
    // Russian: the projection list is not sorted; the ellipsoid label is wider.
    {817, LANG_RUSSIAN, 170, 219, "\xC2\xFB\xE1\xEE\xF0 \xEF\xF0\xEE\xE5\xEA\xF6\xE8\xE8",  // Выбор проекции
     {
         {"ComboBox", 800, kList, 14, 19, 143, 68, ""},
         {"Edit", 801, kEdit, 93, 48, 66, 12, ""},
         {"Edit", 802, kEdit, 93, 65, 66, 12, ""},
         {"Edit", 803, kEdit, 93, 83, 66, 12, ""},
         {"Edit", 804, kEdit, 93, 100, 66, 12, ""},
         {"Edit", 805, kEdit, 93, 117, 66, 12, ""},
         {"ComboBox", 806, kSortedList, 22, 151, 129, 68, ""},
         {"ComboBox", 807, kSortedList, 22, 176, 129, 68, ""},
         {"Button", 1, kOk, 7, 198, 50, 14, "OK"},
         {"Button", 2, kButton, 113, 198, 50, 14, "\xCE\xF2\xEC\xE5\xED\xE8\xF2\xFC"},  // Отменить
         {"Static", 811, kLabel, 73, 167, 24, 8, "\xC4\xE0\xF2\xF3\xEC"},                // Датум
         {"Static", 810, kLabel, 65, 142, 40, 8, "\xDD\xEB\xEB\xE8\xEF\xF1\xEE\xE8\xE4"},  // Эллипсоид
         {"Static", 812, kLabel, 11, 49, 79, 17, "\xCD\xEE\xEC\xE5\xF0 \xE7\xEE\xED\xFB"},  // Номер зоны
         {"Button", -1, kFrame, 7, 134, 156, 60, ""},
         {"Static", 813, kLabel, 11, 66, 82, 19,
          "\xC4\xEE\xEB\xE3\xEE\xF2\xE0 \xF6\xE5\xED\xF2\xF0\xE0\xEB\xFC\xED\xEE\xE3\xEE "
          "\xEC\xE5\xF0\xE8\xE4\xE8\xE0\xED\xE0"},  // Долгота центрального меридиана
         {"Static", 814, kLabel, 11, 84, 79, 18, "\xD8\xE8\xF0\xEE\xF2\xE0 \xE8\xF1\xF2\xEE\xF7\xED\xE8\xEA\xE0"},  // Широта источника
         {"Static", 815, kLabel, 11, 101, 78, 8, "FE"},
         {"Static", 816, kLabel, 11, 118, 79, 8, "FN"},
         {"Button", 809, kFrame, 7, 37, 156, 97, "\xCF\xE0\xF0\xE0\xEC\xE5\xF2\xF0\xFB \xEF\xF0\xEE\xE5\xEA\xF6\xE8\xE8"},  // Параметры проекции
         {"Button", 808, kFrame, 7, 7, 156, 29, "\xCF\xF0\xEE\xE5\xEA\xF6\xE8\xFF"},  // Проекция
     }},
    {818, LANG_ENGLISH_US, 421, 161, "Parameters of GCP",
     {
         {"ComboBox", 800, kSortedList, 14, 19, 143, 68, ""},
         {"Edit", 801, kEdit, 93, 48, 66, 12, ""},
         {"Edit", 802, kEdit, 93, 65, 66, 12, ""},
         {"Edit", 803, kEdit, 93, 83, 66, 12, ""},
         {"Edit", 804, kEdit, 93, 100, 66, 12, ""},
         {"Edit", 805, kEdit, 93, 117, 66, 12, ""},
         {"ComboBox", 806, kSortedList, 211, 90, 159, 68, ""},
         {"ComboBox", 807, kSortedList, 211, 115, 159, 68, ""},
         {"Button", 1, kOk, 90, 142, 50, 14, "OK"},
         {"Button", 2, kButton, 247, 142, 50, 14, "Cancel"},
         {"Static", 811, kLabel, 281, 106, 24, 8, "Datum"},
         {"Static", 810, kLabel, 278, 81, 29, 8, "Ellipsoid"},
         {"Static", 812, kLabel, 11, 49, 79, 17, "UTM Zone"},
         {"Button", -1, kFrame, 168, 72, 246, 62, ""},
         {"Static", 813, kLabel, 11, 66, 82, 19, "Longitude of central meridian"},
         {"Static", 814, kLabel, 11, 84, 79, 18, "Latitude of origin"},
         {"Static", 815, kLabel, 11, 101, 78, 8, "FE"},
         {"Static", 816, kLabel, 11, 118, 79, 8, "FN"},
         {"Button", 809, kFrame, 7, 37, 156, 97, "Property of projection"},
         {"Button", 808, kFrame, 7, 7, 156, 29, "Projection"},
         {"Button", -1, kFrame, 168, 7, 246, 65, "Geoid data"},
         {"Button", 886, kRadio | kGroup, 182, 30, 39, 10, "Custom"},
         {"Button", 887, kRadio, 182, 46, 42, 10, "From file"},
         {"Static", 821, kLabel, 248, 19, 149, 8, "Geoid height over the Earth ellipsoid (WGS 84), m."},
         {"Edit", 820, kEdit, 288, 38, 64, 12, ""},
         {"Static", 822, kLabel, 231, 30, 164, 32, "StaticGeoidFile"},
     }},
    // Russian: its own rectangles on the right, and both radio buttons start a group.
    {818, LANG_RUSSIAN, 422, 161, "\xCF\xE0\xF0\xE0\xEC\xE5\xF2\xF0\xFB \xCD\xCA\xD2",  // Параметры НКТ
     {
         {"ComboBox", 800, kSortedList, 14, 19, 143, 68, ""},
         {"Edit", 801, kEdit, 93, 48, 66, 12, ""},
         {"Edit", 802, kEdit, 93, 65, 66, 12, ""},
         {"Edit", 803, kEdit, 93, 83, 66, 12, ""},
         {"Edit", 804, kEdit, 93, 100, 66, 12, ""},
         {"Edit", 805, kEdit, 93, 117, 66, 12, ""},
         {"ComboBox", 806, kSortedList, 212, 90, 160, 68, ""},
         {"ComboBox", 807, kSortedList, 212, 115, 160, 68, ""},
         {"Button", 1, kOk, 90, 142, 50, 14, "\xCF\xF0\xE8\xED\xFF\xF2\xFC"},              // Принять
         {"Button", 2, kButton, 247, 142, 50, 14, "\xCE\xF2\xEC\xE5\xED\xE8\xF2\xFC"},  // Отменить
         {"Static", 811, kLabel, 281, 106, 23, 8, "\xC4\xE0\xF2\xF3\xEC"},
         {"Static", 810, kLabel, 275, 81, 41, 8, "\xDD\xEB\xEB\xE8\xEF\xF1\xEE\xE8\xE4"},
         {"Static", 812, kLabel, 11, 49, 79, 17, "\xCD\xEE\xEC\xE5\xF0 \xE7\xEE\xED\xFB"},
         {"Button", -1, kFrame, 168, 72, 247, 62, ""},
         {"Static", 813, kLabel, 11, 66, 82, 19,
          "\xC4\xEE\xEB\xE3\xEE\xF2\xE0 \xF6\xE5\xED\xF2\xF0\xE0\xEB\xFC\xED\xEE\xE3\xEE "
          "\xEC\xE5\xF0\xE8\xE4\xE8\xE0\xED\xE0"},
         {"Static", 814, kLabel, 11, 84, 79, 18, "\xD8\xE8\xF0\xEE\xF2\xE0 \xE8\xF1\xF2\xEE\xF7\xED\xE8\xEA\xE0"},
         {"Static", 815, kLabel, 11, 101, 78, 8, "FE"},
         {"Static", 816, kLabel, 11, 118, 79, 8, "FN"},
         {"Button", 809, kFrame, 7, 37, 156, 97, "\xCF\xE0\xF0\xE0\xEC\xE5\xF2\xF0\xFB \xEF\xF0\xEE\xE5\xEA\xF6\xE8\xE8"},
         {"Button", 808, kFrame, 7, 7, 156, 29, "\xCF\xF0\xEE\xE5\xEA\xF6\xE8\xFF"},
         {"Button", -1, kFrame, 168, 7, 247, 65, "\xC4\xE0\xED\xED\xFB\xE5 \xE3\xE5\xEE\xE8\xE4\xE0"},  // Данные геоида
         {"Button", 886, kRadio | kGroup, 182, 30, 40, 10, "\xC7\xE0\xE4\xE0\xF2\xFC"},  // Задать
         {"Button", 887, kRadio | kGroup, 182, 46, 48, 10, "\xD4\xE0\xE9\xEB"},          // Файл
         {"Static", 821, kLabel, 228, 20, 176, 8,
          "\xC2\xFB\xF1\xEE\xF2\xE0 \xE3\xE5\xEE\xE8\xE4\xE0 \xED\xE0\xE4 \xE7\xE5\xEC\xED\xFB\xEC "
          "\xFD\xEB\xEB\xE8\xEF\xF1\xEE\xE8\xE4\xEE\xEC (WGS 84)"},  // Высота геоида над земным эллипсоидом (WGS 84)
         {"Edit", 820, kEdit, 292, 38, 64, 12, ""},
         {"Static", 822, kLabel, 236, 32, 164, 32, "StaticGeoidFile"},
     }},
    {819, LANG_ENGLISH_US, 186, 95, "Control Points",
     {
         {"Button", 1, kOk, 129, 7, 50, 14, "OK"},
         {"Button", 2, kButton, 129, 24, 50, 14, "Cancel"},
     }},
    {819, LANG_RUSSIAN, 186, 95, "\xCA\xEE\xED\xF2\xF0\xEE\xEB\xFC\xED\xFB\xE5 \xF2\xEE\xF7\xEA\xE8",  // Контрольные точки
     {
         {"Button", 1, kOk, 129, 7, 50, 14, "OK"},
         {"Button", 2, kButton, 129, 24, 50, 14, "\xCE\xF2\xEC\xE5\xED\xE0"},  // Отмена
     }},
};

class ModuleResources : public ::testing::Test {
protected:
    void SetUp() override {
        m_module = GetModuleHandleA("Mapwright.dll");
        ASSERT_NE(nullptr, m_module);
    }
    void TearDown() override { SetThreadUILanguage(0); }
    HMODULE m_module = nullptr;
};

TEST_F(ModuleResources, DialogTemplatesInBothLanguagesControlByControl) {
    for (const Template& expected : kTemplates) {
        SCOPED_TRACE("template " + std::to_string(expected.id) + " language " + std::to_string(expected.language));
        SetThreadUILanguage(expected.language);
        const MwDialogTemplate* t = MwFindDialogTemplate(m_module, expected.id);
        ASSERT_NE(nullptr, t);
        EXPECT_EQ(expected.id, t->id);
        EXPECT_EQ(expected.language, t->language);
        EXPECT_EQ(kDialog, t->style);
        EXPECT_EQ(0u, t->exStyle);
        EXPECT_EQ(expected.cx, t->cx);
        EXPECT_EQ(expected.cy, t->cy);
        EXPECT_STREQ(expected.caption, t->caption);
        ASSERT_NE(nullptr, t->fontName);
        EXPECT_STREQ("MS Sans Serif", t->fontName);
        EXPECT_EQ(8, t->fontSize);
        ASSERT_EQ(expected.controls.size(), t->controlCount);
        for (size_t i = 0; i < t->controlCount; ++i) {
            const Control& e = expected.controls[i];
            const MwDialogControl& c = t->controls[i];
            SCOPED_TRACE("control " + std::to_string(i) + " (id " + std::to_string(e.id) + ")");
            EXPECT_STREQ(e.className, c.className);
            EXPECT_EQ(e.id, c.id);
            EXPECT_EQ(e.style, c.style) << std::hex << e.style << " != " << c.style;
            EXPECT_EQ(0u, c.exStyle);
            EXPECT_EQ(e.x, c.x);
            EXPECT_EQ(e.y, c.y);
            EXPECT_EQ(e.cx, c.cx);
            EXPECT_EQ(e.cy, c.cy);
            EXPECT_STREQ(e.text, c.text);
        }
    }
}

TEST_F(ModuleResources, NoOtherDialogTemplates) {
    for (UINT id : {816u, 820u, 1u}) EXPECT_EQ(nullptr, MwFindDialogTemplate(m_module, id)) << id;
    EXPECT_EQ(nullptr, MwFindDialogTemplate(nullptr, 817));
}

TEST_F(ModuleResources, VersionIsNeutralAndAnswersInEveryLanguage) {
    struct Value {
        const char* key;
        const char* value;
    };
    const Value values[] = {
        {"FileVersion", "1.2.1.0"},
        {"ProductVersion", "1.2.1.0"},
        {"FileDescription", "Map projections conversion functions"},
        {"ProductName", "Mapwright Dynamic Link Library"},
        {"OriginalFilename", "Mapwright.dll"},
    };
    for (LANGID language : {LANG_ENGLISH_US, LANG_RUSSIAN}) {
        SetThreadUILanguage(language);
        const MwVersionInfo* v = MwFindVersionInfo(m_module);
        ASSERT_NE(nullptr, v);
        EXPECT_EQ(0, v->language);
        // 1.2.1.0 as VS_FIXEDFILEINFO holds it: major << 16 | minor, build << 16 | revision.
        EXPECT_EQ(0x00010002u, v->fileVersionMS);
        EXPECT_EQ(0x00010000u, v->fileVersionLS);
        EXPECT_EQ(0x00010002u, v->productVersionMS);
        EXPECT_EQ(0x00010000u, v->productVersionLS);
        EXPECT_EQ(2u, v->fileType);  // VFT_DLL
        for (const Value& e : values) {
            const char* found = MwFindVersionValue(m_module, e.key);
            ASSERT_NE(nullptr, found) << e.key;
            EXPECT_STREQ(e.value, found) << e.key;
        }
    }
    EXPECT_STREQ("1.2.1.0", MwFindVersionValue(m_module, "fileversion"));  // keys ignore case
    EXPECT_EQ(nullptr, MwFindVersionValue(m_module, "CompanyName"));
    EXPECT_EQ(nullptr, MwFindVersionValue(m_module, nullptr));
}

TEST_F(ModuleResources, ManifestAsksForTheCallersRightsAndDpiAwareness) {
    size_t size = 0;
    const void* data = MwFindResourceData(m_module, MW_RT_MANIFEST, 2, &size);
    ASSERT_NE(nullptr, data);
    const std::string manifest(static_cast<const char*>(data), size);
    EXPECT_NE(std::string::npos, manifest.find("<requestedExecutionLevel level=\"asInvoker\""));
    const size_t dpi = manifest.find("<dpiAware");
    ASSERT_NE(std::string::npos, dpi);
    EXPECT_EQ(manifest.find(">true</dpiAware>", dpi), manifest.find('>', dpi));
    EXPECT_EQ(nullptr, MwFindResourceData(m_module, MW_RT_MANIFEST, 1, &size));
    EXPECT_EQ(0u, size);
}

}  // namespace
