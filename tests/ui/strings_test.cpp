// The module's string table as the library serves it once loaded: every
// entry in both languages, byte for byte, through CString::LoadString (the
// resource chain) and GetResourceString (Basalt's registered modules).
#include <gtest/gtest.h>

#include <set>
#include <string>

#include <mapwright/afxstr.h>
#include <mapwright/basalt.h>
#include <mapwright/module.h>
#include <mapwright/resources.h>

namespace {

struct Entry {
    UINT id;
    const char* english;
    const char* russian;  // Windows-1251 bytes
};

// The table as specified, transcribed into Windows-1251 independently of the
// resource script. 839 to 845 are the English kind names in both languages.
const Entry kEntries[] = {
    {832, "Geographic",
     "\xC3\xE5\xEE\xE3\xF0\xE0\xF4\xE8\xF7\xE5\xF1\xEA\xE0\xFF"},  // "Географическая"
    {833, "UTM",
     "\xD3\xED\xE8\xE2\xE5\xF0\xF1\xE0\xEB\xFC\xED\xE0\xFF \xEF\xEE\xEF\xE5\xF0\xE5\xF7\xED\xE0\xFF \xCC\xE5\xF0\xEA\xE0\xF2\xEE\xF0\xE0"},  // "Универсальная поперечная Меркатора"
    {834, "Gauss-Kruger",
     "\xC3\xE0\xF3\xF1\xF1\xE0-\xCA\xF0\xFE\xE3\xE5\xF0\xE0"},  // "Гаусса-Крюгера"
    {835, "Transverse Mercator",
     "\xCF\xEE\xEF\xE5\xF0\xE5\xF7\xED\xE0\xFF \xCC\xE5\xF0\xEA\xE0\xF2\xEE\xF0\xE0"},  // "Поперечная Меркатора"
    {836, "Mercator",
     "\xCC\xE5\xF0\xEA\xE0\xF2\xEE\xF0\xE0"},  // "Меркатора"
    {837, "Polar Stereographic",
     "\xCF\xEE\xEB\xFF\xF0\xED\xE0\xFF \xF1\xF2\xE5\xF0\xE5\xEE\xE3\xF0\xE0\xF4\xE8\xF7\xE5\xF1\xEA\xE0\xFF"},  // "Полярная стереографическая"
    {838, "Decart coordinate system",
     "\xC4\xE5\xEA\xE0\xF0\xF2\xEE\xE2\xE0 \xF1\xE8\xF1\xF2\xE5\xEC\xE0 \xEA\xEE\xEE\xF0\xE4\xE8\xED\xE0\xF2"},  // "Декартова система координат"
    {839, "Geographic",
     "Geographic"},
    {840, "UTM",
     "UTM"},
    {841, "Gauss-Kruger",
     "Gauss-Kruger"},
    {842, "Transverse Mercator",
     "Transverse Mercator"},
    {843, "Mercator",
     "Mercator"},
    {844, "Polar Stereographic",
     "Polar Stereographic"},
    {845, "Decart coordinate system",
     "Decart coordinate system"},
    {846, "Select input datum",
     "\xC2\xFB\xE1\xE5\xF0\xE8\xF2\xE5 \xE8\xF1\xF5\xEE\xE4\xED\xFB\xE9 \xE4\xE0\xF2\xF3\xEC"},  // "Выберите исходный датум"
    {847, "Select input coordinates",
     "\xC2\xE2\xE5\xE4\xE8\xF2\xE5 \xE8\xF1\xF5\xEE\xE4\xED\xFB\xE5 \xEA\xEE\xEE\xF0\xE4\xE8\xED\xE0\xF2\xFB"},  // "Введите исходные координаты"
    {848, "Select output datum",
     "\xC2\xFB\xE1\xE5\xF0\xE8\xF2\xE5 \xEA\xEE\xED\xE5\xF7\xED\xFB\xE9 \xE4\xE0\xF2\xF3\xEC"},  // "Выберите конечный датум"
    {849, "Select input projection",
     "\xC2\xFB\xE1\xE5\xF0\xE8\xF2\xE5 \xE8\xF1\xF5\xEE\xE4\xED\xF3\xFE \xF1\xE8\xF1\xF2\xE5\xEC\xF3 \xEA\xEE\xEE\xF0\xE4\xE8\xED\xE0\xF2"},  // "Выберите исходную систему координат"
    {850, "Select output projection",
     "\xC2\xFB\xE1\xE5\xF0\xE8\xF2\xE5 \xEA\xEE\xED\xE5\xF7\xED\xF3\xFE \xF1\xE8\xF1\xF2\xE5\xEC\xF3 \xEA\xEE\xEE\xF0\xE4\xE8\xED\xE0\xF2"},  // "Выберите конечную систему координат"
    {851, "Latitude ",
     "\xD8\xE8\xF0\xEE\xF2\xE0 "},  // "Широта "
    {852, "Longitude ",
     "\xC4\xEE\xEB\xE3\xEE\xF2\xE0 "},  // "Долгота "
    {853, "Height ",
     "\xC2\xEE\xE7\xE2\xFB\xF8\xE5\xED\xE8\xE5 "},  // "Возвышение "
    {854, "North/South ",
     "\xD1\xE5\xE2\xE5\xF0/\xDE\xE3  "},  // "Север/Юг  "
    {855, "East/West ",
     "\xC7\xE0\xEF\xE0\xE4/\xC2\xEE\xF1\xF2\xEE\xEA "},  // "Запад/Восток "
    {856, "Longitude of central meridian",
     "\xC4\xEE\xEB\xE3\xEE\xF2\xE0 \xF6\xE5\xED\xF2\xF0\xE0\xEB\xFC\xED\xEE\xE3\xEE \xEC\xE5\xF0\xE8\xE4\xE8\xE0\xED\xE0"},  // "Долгота центрального меридиана"
    {857, "Latitude of origin of projection",
     "\xC8\xF1\xF5\xEE\xE4\xED\xE0\xFF \xF8\xE8\xF0\xEE\xF2\xE0"},  // "Исходная широта"
    {858, "False easting",
     "\xC2\xEE\xF1\xF2\xEE\xF7\xED\xEE\xE5 \xF1\xEC\xE5\xF9\xE5\xED\xE8\xE5, \xEC"},  // "Восточное смещение, м"
    {859, "False northing",
     "\xD1\xE5\xE2\xE5\xF0\xED\xEE\xE5 \xF1\xEC\xE5\xF9\xE5\xED\xE8\xE5, \xEC"},  // "Северное смещение, м"
    {860, "Latitude of true scale",
     "\xD8\xE8\xF0\xEE\xF2\xE0 \xE8\xF1\xF2\xE8\xED\xED\xEE\xE3\xEE \xEC\xE0\xF1\xF8\xF2\xE0\xE1\xE0"},  // "Широта истинного масштаба"
    {861, "Scale factor at central meridian",
     "\xCC\xE0\xF1\xF8\xF2\xE0\xE1 \xEF\xEE \xF6\xE5\xED\xF2\xF0. \xEC\xE5\xF0\xE8\xE4\xE8\xE0\xED\xF3"},  // "Масштаб по центр. меридиану"
    {862, "UTM Zone ",
     "\xCD\xEE\xEC\xE5\xF0 \xE7\xEE\xED\xFB "},  // "Номер зоны "
    {863, "Select parameters of input projection",
     "\xC2\xE2\xE5\xE4\xE8\xF2\xE5 \xEF\xE0\xF0\xE0\xEC\xE5\xF2\xF0\xFB \xE8\xF1\xF5\xEE\xE4\xED\xEE\xE9  \xEF\xF0\xEE\xE5\xEA\xF6\xE8\xE8"},  // "Введите параметры исходной  проекции"
    {864, "Select parameters of output projection",
     "\xC2\xE2\xE5\xE4\xE8\xF2\xE5 \xEF\xE0\xF0\xE0\xEC\xE5\xF2\xF0\xFB \xEA\xEE\xED\xE5\xF7\xED\xEE\xE9 \xEF\xF0\xEE\xE5\xEA\xF6\xE8\xE8"},  // "Введите параметры конечной проекции"
    {865, "Select latitude from 79\xB0" "30'S to  83\xB0" "30'N\n or select polar stereographic projection type",
     "              \xC2\xE2\xE5\xE4\xE8\xF2\xE5 \xF8\xE8\xF0\xEE\xF2\xF3 \xE2 \xEF\xF0\xE5\xE4\xE5\xEB\xE0\xF5  (-79\xB0" "30'; 83\xB0" "30')\n \xE8\xEB\xE8 \xE2\xFB\xE1\xE5\xF0\xE8\xF2\xE5 \xEF\xEE\xEB\xFF\xF0\xED\xF3\xFE \xF1\xF2\xE5\xF0\xE5\xEE\xE3\xF0\xE0\xF4\xE8\xF7\xE5\xF1\xEA\xF3\xFE \xEF\xF0\xEE\xE5\xEA\xF6\xE8\xFE   "},  // "              Введите широту в пределах  (-79°30'; 83°30')\n или выберите полярную стереографическую проекцию   "
    {866, "Longitude below pole of map",
     "\xC4\xEE\xEB\xE3\xEE\xF2\xE0 \xED\xE0\xEF\xF0\xE0\xE2\xEB\xE5\xED\xE8\xFF \xED\xE0 \xF1\xE5\xE2\xE5\xF0"},  // "Долгота направления на север"
    {867, "m",
     "\xEC "},  // "м "
    {868, "Input coordinates",
     "\xC8\xF1\xF5\xEE\xE4\xED\xFB\xE5 \xEA\xEE\xEE\xF0\xE4\xE8\xED\xE0\xF2\xFB"},  // "Исходные координаты"
    {869, "Output coorditanes",
     "\xCA\xEE\xED\xE5\xF7\xED\xFB\xE5 \xEA\xEE\xEE\xF0\xE4\xE8\xED\xE0\xF2\xFB"},  // "Конечные координаты"
    {870, "Input projeciton",
     "\xC8\xF1\xF5\xEE\xE4\xED\xE0\xFF \xEF\xF0\xEE\xE5\xEA\xF6\xE8\xFF"},  // "Исходная проекция"
    {871, "Output projection",
     "\xCA\xEE\xED\xE5\xF7\xED\xE0\xFF \xEF\xF0\xEE\xE5\xEA\xF6\xE8\xFF"},  // "Конечная проекция"
    {872, "Input datum",
     "\xC8\xF1\xF5\xEE\xE4\xED\xFB\xE9 \xE4\xE0\xF2\xF3\xEC"},  // "Исходный датум"
    {873, "Output datum",
     "\xCA\xEE\xED\xE5\xF7\xED\xFB\xE9 \xE4\xE0\xF2\xF3\xEC"},  // "Конечный датум"
    {874, "Input ellipsoid",
     "\xC8\xF1\xF5\xEE\xE4\xED\xFB\xE9 \xFD\xEB\xEB\xE8\xEF\xF1\xEE\xE8\xE4"},  // "Исходный эллипсоид"
    {875, "Output ellipsoid",
     "\xCA\xEE\xED\xE5\xF7\xED\xFB\xE9 \xFD\xEB\xEB\xE8\xEF\xF1\xEE\xE8\xE4"},  // "Конечный эллипсоид"
    {876, "Convert",
     "\xCF\xF0\xE5\xEE\xE1\xF0\xE0\xE7\xEE\xE2\xE0\xED\xE8\xE5"},  // "Преобразование"
    {877, "Property of projection",
     "\xCF\xE0\xF0\xE0\xEC\xE5\xF2\xF0\xFB \xEF\xF0\xEE\xE5\xEA\xF6\xE8\xE8"},  // "Параметры проекции"
    {878, "Select projection",
     "\xC2\xFB\xE1\xE5\xF0\xE8\xF2\xE5 \xEF\xF0\xEE\xE5\xEA\xF6\xE8\xFE"},  // "Выберите проекцию"
    {879, "Select datum",
     "\xC2\xFB\xE1\xE5\xF0\xE8\xF2\xE5 \xE4\xE0\xF2\xF3\xEC"},  // "Выберите датум"
    {880, "Input parameters of projection",
     "\xC2\xE2\xE5\xE4\xE8\xF2\xE5 \xEF\xE0\xF0\xE0\xEC\xE5\xF2\xF0\xFB \xEF\xF0\xEE\xE5\xEA\xF6\xE8\xE8"},  // "Введите параметры проекции"
    {881, "Select latitude from 89\xB0" "00'S to  89\xB0" "00'N",
     " \xC2\xE2\xE5\xE4\xE8\xF2\xE5 \xF8\xE8\xF0\xEE\xF2\xF3 \xE2 \xEF\xF0\xE5\xE4\xE5\xEB\xE0\xF5  (-89\xB0" "00'; 89\xB0" "00')"},  // " Введите широту в пределах  (-89°00'; 89°00')"
    {882, "X =",
     "X ="},
    {883, "Y = ",
     "Y = "},
    {884, "Z =",
     "Z ="},
    {885, "zone",
     "\xE7\xEE\xED\xE0"},  // "зона"
    {888, "Projection ",
     "\xCF\xF0\xEE\xE5\xEA\xF6\xE8\xFF  "},  // "Проекция  "
    {889, "Datum ",
     "\xC4\xE0\xF2\xF3\xEC "},  // "Датум "
    {890, "North or South",
     "\xD1\xE5\xE2\xE5\xF0 \xE8\xEB\xE8 \xDE\xE3"},  // "Север или Юг"
    {891, "Decimal format",
     "\xC4\xE5\xF1\xFF\xF2\xE8\xF7\xED\xFB\xE9 \xF4\xEE\xF0\xEC\xE0\xF2"},  // "Десятичный формат"
};

std::string Bytes(const CString& s) { return std::string(s.GetString(), static_cast<size_t>(s.GetLength())); }

class StringTable : public ::testing::Test {
protected:
    void TearDown() override { SetThreadUILanguage(0); }
};

TEST_F(StringTable, EveryEntryInBothLanguagesByteForByte) {
    ASSERT_EQ(58u, sizeof kEntries / sizeof kEntries[0]);
    for (LANGID language : {LANG_ENGLISH_US, LANG_RUSSIAN}) {
        SetThreadUILanguage(language);
        for (const Entry& e : kEntries) {
            const std::string expected = language == LANG_RUSSIAN ? e.russian : e.english;
            CString loaded("stale");
            EXPECT_TRUE(loaded.LoadString(e.id)) << e.id << " in " << language;
            EXPECT_EQ(expected, Bytes(loaded)) << "LoadString " << e.id << " in " << language;
            EXPECT_EQ(expected, Bytes(GetResourceString(static_cast<int>(e.id))))
                << "GetResourceString " << e.id << " in " << language;
        }
    }
}

TEST_F(StringTable, BlanksAndLineFeedsSurvive) {
    // The byte-for-byte table covers these; spelled out, a tidy-up of the
    // script that trims or folds blanks shows up by name.
    SetThreadUILanguage(LANG_ENGLISH_US);
    const std::string e865 = Bytes(GetResourceString(865));
    EXPECT_NE(std::string::npos, e865.find("to  83\xB0" "30'N\n or"));
    SetThreadUILanguage(LANG_RUSSIAN);
    const std::string r854 = Bytes(GetResourceString(854));
    ASSERT_GE(r854.size(), 2u);
    EXPECT_EQ("  ", r854.substr(r854.size() - 2));
    EXPECT_NE(' ', r854[r854.size() - 3]);
    const std::string r865 = Bytes(GetResourceString(865));
    EXPECT_EQ(std::string(14, ' '), r865.substr(0, 14));
    EXPECT_NE(std::string::npos, r865.find("')\n \xE8\xEB\xE8"));
}

TEST_F(StringTable, HoldsTheListedIdsAndNoOther) {
    HMODULE module = GetModuleHandleA("Mapwright.dll");
    ASSERT_NE(nullptr, module);
    std::set<UINT> listed;
    for (const Entry& e : kEntries) listed.insert(e.id);
    for (LANGID language : {LANG_ENGLISH_US, LANG_RUSSIAN}) {
        SetThreadUILanguage(language);
        std::set<UINT> found;
        char buffer[256];
        for (UINT id = 0; id <= 0xFFFF; ++id)
            if (LoadStringA(module, id, buffer, sizeof buffer) > 0) found.insert(id);
        EXPECT_EQ(listed, found) << "language " << language;
    }
}

TEST_F(StringTable, ControlIdsOfTheGeoidDialogAreNoStrings) {
    for (LANGID language : {LANG_ENGLISH_US, LANG_RUSSIAN}) {
        SetThreadUILanguage(language);
        for (UINT id : {886u, 887u}) {
            CString text("kept");
            EXPECT_FALSE(text.LoadString(id)) << id;
            EXPECT_EQ(std::string("kept"), Bytes(text)) << id;
            EXPECT_EQ(std::string(), Bytes(GetResourceString(static_cast<int>(id)))) << id;
        }
    }
}

TEST_F(StringTable, BasaltStringsAnswerBesideTheModule) {
    // 123 is the Cancel caption the dialogs take from outside this module.
    SetThreadUILanguage(LANG_ENGLISH_US);
    EXPECT_EQ("Cancel", Bytes(GetResourceString(123)));
    CString text;
    EXPECT_FALSE(text.LoadString(123));  // Basalt is no extension module
    SetThreadUILanguage(LANG_RUSSIAN);
    EXPECT_EQ("\xCE\xF2\xEC\xE5\xED\xE0", Bytes(GetResourceString(123)));
}

}  // namespace
