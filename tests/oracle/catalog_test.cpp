// The shipped catalogs, read through the same profile functions the library
// reads them with, against the EPSG dataset in PROJ's database: every
// ellipsoid's axis and flattening, and every datum's ellipsoid and its
// three-parameter shift to WGS 84 as the DMA/NIMA WGS 84 report publishes it
// (EPSG records those solutions with an operation version "DMA-..." or
// "NIMA-..."). Also the structural rules the catalog scans depend on: sections
// "Format n" from 0 without gaps, index n + 1 in section n, datum index 3 the
// WGS 84 pivot.

#include <mapwright/profile.h>
#include <proj.h>
#include <sqlite3.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "testenv.h"

namespace {

// ---------------------------------------------------------------------------
// What the catalogs must hold, entry by entry.

// Ellipsoid index -> the EPSG ellipsoid it must equal.
struct EllipsoidRow {
    int index;
    const char* name;
    int epsgEllipsoid;
};

constexpr EllipsoidRow kEllipsoids[] = {
    {1, "Airy 1830", 7001},
    {2, "Airy Modified 1849", 7002},
    {3, "Australian National", 7003},
    {4, "Bessel 1841", 7004},
    {5, "WGS 84", 7030},  // the library's own seed entry has index 5 as well
    {6, "Clarke 1866", 7008},
    {7, "Clarke 1880", 7012},  // the report's Clarke 1880, EPSG's "Clarke 1880 (RGS)"
    {8, "Clarke 1880 (Arc)", 7013},
    {9, "Clarke 1880 (IGN)", 7011},
    {10, "Everest 1830 (1937 Adjustment)", 7015},
    {11, "Everest 1830 Modified (1948)", 7018},
    {12, "Everest (Sabah and Sarawak)", 7016},
    {13, "GRS 80", 7019},
    {14, "South American 1969", 7050},  // EPSG's "GRS 1967 Modified"
    {15, "Helmert 1906", 7020},
    {16, "Hough 1960", 7053},
    {17, "Indonesian 1974", 7021},
    {18, "International 1924", 7022},
    {19, "Krassovsky 1940", 7024},
    {20, "WGS 72", 7043},
    {21, "WGS 66", 7025},  // EPSG's "NWL 9D", the figure of WGS 66
};

// Datum index -> the EPSG transformation to WGS 84 that carries the report's
// shift. A datum without one names the EPSG datum whose ellipsoid it must have,
// says why, and must have a zero shift.
struct DatumRow {
    int index;
    const char* name;
    int epsgTransformation;  // 0: none, see epsgDatum and why
    int epsgDatum = 0;
    const char* why = nullptr;
};

constexpr DatumRow kDatums[] = {
    {1, "WGS 72", 0, 6322,
     "the report relates WGS 72 to WGS 84 by a rotation and scale too (EPSG 1237), not three translations"},
    {2, "WGS 66", 0, 6760, "the report publishes no shift from WGS 66 to WGS 84"},
    {3, "WGS 84", 0, 6326, "the pivot of every datum shift"},
    {4, "Pulkovo 1942", 1254},
    {5, "European 1950 (mean)", 1133},
    {6, "North American 1927 (CONUS mean)", 1173},
    {7, "Tokyo (mean)", 1230},
    {8, "North American 1983", 1188},
    {9, "OSGB 1936 (mean)", 1195},
    {10, "Australian Geodetic 1966", 1108},
    {11, "Australian Geodetic 1984", 1109},
    {12, "Arc 1950 (mean)", 1113},
    {13, "Arc 1960 (Kenya, Tanzania)", 1122},
    {14, "South American 1969 (mean)", 1864},
    {15, "Provisional South American 1956 (mean)", 1201},
    {16, "Indian (Bangladesh)", 1155},
    {17, "Indian 1954 (Thailand)", 1153},
    {18, "Indian 1975 (Thailand)", 1154},
    {19, "Kertau 1948 (West Malaysia, Singapore)", 1158},
    {20, "Timbalai 1948 (Brunei, East Malaysia)", 1228},
    {21, "Kandawala (Sri Lanka)", 1157},
    {22, "Luzon (Philippines)", 1161},
    {23, "Hu-Tzu-Shan (Taiwan)", 1152},
    {24, "Ireland 1965", 1956},
    {25, "European 1950 (Western Europe)", 1134},
    {26, "European 1950 (Middle East)", 1135},
    {27, "European 1950 (Greece)", 1140},
    {28, "European 1950 (Portugal, Spain)", 1145},
    {29, "European 1950 (Norway, Finland)", 1139},
    {30, "North American 1927 (Alaska)", 1176},
    {31, "North American 1927 (Canada mean)", 1172},
    {32, "North American 1927 (Mexico)", 1187},
    {33, "North American 1927 (Central America)", 1171},
    {34, "North American 1927 (Caribbean)", 1170},
    {35, "Tokyo (South Korea)", 1232},
    {36, "Tokyo (Okinawa)", 1233},
    {37, "OSGB 1936 (Scotland, Shetland Islands)", 1198},
    {38, "Adindan (mean)", 1100},
    {39, "Ain el Abd 1970 (Saudi Arabia)", 1111},
    {40, "Bermuda 1957", 1124},
    {41, "Bogota Observatory", 1125},
    {42, "Campo Inchauspe", 1127},
    {43, "Cape", 1128},
    {44, "Carthage", 1130},
    {45, "Chua Astro", 1131},
    {46, "Corrego Alegre", 1132},
    {47, "Djakarta (Batavia)", 8452},
    {48, "Old Egyptian 1907", 1148},
    {49, "Geodetic Datum 1949 (New Zealand)", 1151},
    {50, "Hjorsey 1955", 1951},
    {51, "Indonesian 1974", 1248},
    {52, "Leigon (Ghana)", 1159},
    {53, "Liberia 1964", 1160},
    {54, "Massawa", 1165},
    {55, "Merchich", 1166},
    {56, "Minna (Nigeria)", 1168},
    {57, "Nahrwan (United Arab Emirates)", 1191},
    {58, "Naparima BWI", 1192},
    {59, "Old Hawaiian (mean)", 15824},
    {60, "Qatar National", 1561},
    {61, "Qornoq", 1797},
    {62, "Tananarive Observatory 1925", 1227},
    {63, "Yacare", 1234},
    {64, "Zanderij", 1235},
    {65, "Guam 1963", 1070},
    {66, "Wake-Eniwetok 1960", 15822},
    {67, "S-JTSK", 15965},
    {68, "Puerto Rico", 1893},
};

// Both sides publish axes to the millimetre.
constexpr double kAxisTolM = 1e-3;
// The report gives inverse flattenings to 10 significant digits; EPSG defines
// Clarke 1866 and Clarke 1880 (IGN) by their minor axis, and the flattening
// derived from it agrees with the published one to about 5e-11 relative.
constexpr double kInvFlatteningRelTol = 1e-9;

// The library reads catalog values into 1024-byte buffers.
constexpr DWORD kValueBuffer = 1024;

// ---------------------------------------------------------------------------
// The catalogs, read the way the library reads them.

std::string EllipsFile() { return mwtest::ShippedCatalogDir() + "/ellips.ini"; }
std::string DatumFile() { return mwtest::ShippedCatalogDir() + "/datum.ini"; }
std::string ProjectionFile() { return mwtest::ShippedCatalogDir() + "/projection.ini"; }

std::string Section(int n) { return "Format " + std::to_string(n); }

std::string ReadKey(const std::string& file, const std::string& section, const char* key) {
    std::vector<char> buf(kValueBuffer);
    DWORD n = GetPrivateProfileStringA(section.c_str(), key, "QQ", buf.data(), kValueBuffer, file.c_str());
    return std::string(buf.data(), n);
}

// The NUL-separated list the profile reader gives for a null section (section
// names) or a null key (the keys of `section`).
std::vector<std::string> ReadList(const std::string& file, const char* section) {
    std::vector<char> buf(1 << 16);
    DWORD n = GetPrivateProfileStringA(section, nullptr, "", buf.data(), static_cast<DWORD>(buf.size()), file.c_str());
    EXPECT_LT(n, buf.size() - 2) << "list cut short: buffer too small";
    std::vector<std::string> items;
    std::string item;
    for (DWORD i = 0; i < n; ++i) {
        if (buf[i] == '\0') {
            items.push_back(item);
            item.clear();
        } else {
            item += buf[i];
        }
    }
    if (!item.empty()) items.push_back(item);
    return items;
}

struct EllipsoidEntry {
    int section;
    std::string index, name, a, rf;
};

struct DatumEntry {
    int section;
    std::string index, name, ellipsoid;
    std::string values[6];
};

constexpr const char* kDatumValueKeys[6] = {"datumParam_0_0", "datumParam_0_1", "datumParam_0_2",
                                            "datumParam_1_0", "datumParam_1_1", "datumParam_1_2"};

// The scans of the library: section n until the key reads "QQ".
const std::vector<EllipsoidEntry>& Ellipsoids() {
    static const std::vector<EllipsoidEntry> entries = [] {
        std::vector<EllipsoidEntry> out;
        const std::string file = EllipsFile();
        for (int k = 0;; ++k) {
            std::string index = ReadKey(file, Section(k), "Index");
            if (index == "QQ") break;
            out.push_back({k, index, ReadKey(file, Section(k), "EllipsName"),
                           ReadKey(file, Section(k), "ellipsParam_0"), ReadKey(file, Section(k), "ellipsParam_1")});
        }
        return out;
    }();
    return entries;
}

const std::vector<DatumEntry>& Datums() {
    static const std::vector<DatumEntry> entries = [] {
        std::vector<DatumEntry> out;
        const std::string file = DatumFile();
        for (int n = 0;; ++n) {
            std::string index = ReadKey(file, Section(n), "DatumIndex");
            if (index == "QQ") break;
            DatumEntry e{n, index, ReadKey(file, Section(n), "DatumName"),
                         ReadKey(file, Section(n), "EllipsoidIndex"), {}};
            for (int i = 0; i < 6; ++i) e.values[i] = ReadKey(file, Section(n), kDatumValueKeys[i]);
            out.push_back(e);
        }
        return out;
    }();
    return entries;
}

const EllipsoidEntry* FindEllipsoid(const std::string& indexText) {
    for (const auto& e : Ellipsoids())
        if (e.index == indexText) return &e;  // exact text, as the library compares
    return nullptr;
}

// Strict number readers: the whole text must be the number, so that a stray
// character that atoi/atof would silently drop fails here.
std::optional<long> ParseInt(const std::string& s) {
    if (s.empty()) return std::nullopt;
    char* end = nullptr;
    errno = 0;
    long v = std::strtol(s.c_str(), &end, 10);
    if (errno != 0 || *end != '\0' || std::isspace(static_cast<unsigned char>(s[0]))) return std::nullopt;
    return v;
}

std::optional<double> ParseReal(const std::string& s) {
    if (s.empty()) return std::nullopt;
    char* end = nullptr;
    double v = std::strtod(s.c_str(), &end);
    if (*end != '\0' || !std::isfinite(v) || std::isspace(static_cast<unsigned char>(s[0]))) return std::nullopt;
    return v;
}

// ---------------------------------------------------------------------------
// The EPSG dataset in PROJ's database, opened read-only.

struct EpsgEllipsoid {
    std::string name;
    double a;   // metres
    double rf;  // inverse flattening, derived from the minor axis where EPSG gives that
};

struct EpsgShift {
    double tx, ty, tz;
    int translationUnit;
    std::string method, targetAuth, targetCode, version;
    bool deprecated;
    std::string datumName;
    int ellipsoid;
};

std::string ProjDatabasePath() {
    if (const char* p = proj_context_get_database_path(nullptr)) return p;
    // Fall back to the first directory of PROJ's search path that holds proj.db.
    const char* searchPath = proj_info().searchpath;
    std::string dir;
    for (const char* c = searchPath ? searchPath : "";; ++c) {
        if (*c == ':' || *c == ';' || *c == '\0') {
            if (!dir.empty() && mwtest::FileExists(dir + "/proj.db")) return dir + "/proj.db";
            dir.clear();
            if (*c == '\0') break;
        } else {
            dir += *c;
        }
    }
    return {};
}

class Epsg {
public:
    Epsg() {
        const std::string path = ProjDatabasePath();
        if (path.empty() || sqlite3_open_v2(path.c_str(), &m_db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
            sqlite3_close(m_db);
            m_db = nullptr;
        }
    }
    ~Epsg() { sqlite3_close(m_db); }
    Epsg(const Epsg&) = delete;
    Epsg& operator=(const Epsg&) = delete;

    bool ok() const { return m_db != nullptr; }

    std::optional<EpsgEllipsoid> Ellipsoid(int code) const {
        Statement st(m_db,
                     "SELECT e.name, e.semi_major_axis * u.conv_factor, e.inv_flattening,"
                     " e.semi_minor_axis * u.conv_factor"
                     " FROM ellipsoid e JOIN unit_of_measure u"
                     " ON u.auth_name = e.uom_auth_name AND u.code = e.uom_code"
                     " WHERE e.auth_name = 'EPSG' AND e.code = ?");
        sqlite3_bind_int(st.s, 1, code);
        if (sqlite3_step(st.s) != SQLITE_ROW) return std::nullopt;
        EpsgEllipsoid e{Text(st.s, 0), sqlite3_column_double(st.s, 1), 0.0};
        if (sqlite3_column_type(st.s, 2) != SQLITE_NULL) {
            e.rf = sqlite3_column_double(st.s, 2);
        } else {
            double b = sqlite3_column_double(st.s, 3);
            e.rf = e.a / (e.a - b);
        }
        return e;
    }

    std::optional<EpsgShift> Transformation(int code) const {
        Statement st(m_db,
                     "SELECT h.tx, h.ty, h.tz, h.translation_uom_code, h.method_name,"
                     " h.target_crs_auth_name, h.target_crs_code, h.operation_version, h.deprecated,"
                     " d.name, d.ellipsoid_auth_name, d.ellipsoid_code"
                     " FROM helmert_transformation h"
                     " JOIN geodetic_crs g ON g.auth_name = h.source_crs_auth_name AND g.code = h.source_crs_code"
                     " JOIN geodetic_datum d ON d.auth_name = g.datum_auth_name AND d.code = g.datum_code"
                     " WHERE h.auth_name = 'EPSG' AND h.code = ?");
        sqlite3_bind_int(st.s, 1, code);
        if (sqlite3_step(st.s) != SQLITE_ROW) return std::nullopt;
        EpsgShift t;
        t.tx = sqlite3_column_double(st.s, 0);
        t.ty = sqlite3_column_double(st.s, 1);
        t.tz = sqlite3_column_double(st.s, 2);
        t.translationUnit = sqlite3_column_int(st.s, 3);
        t.method = Text(st.s, 4);
        t.targetAuth = Text(st.s, 5);
        t.targetCode = Text(st.s, 6);
        t.version = Text(st.s, 7);
        t.deprecated = sqlite3_column_int(st.s, 8) != 0;
        t.datumName = Text(st.s, 9);
        t.ellipsoid = Text(st.s, 10) == "EPSG" ? sqlite3_column_int(st.s, 11) : 0;
        return t;
    }

    // The EPSG ellipsoid code of an EPSG datum.
    std::optional<int> DatumEllipsoid(int datum) const {
        Statement st(m_db,
                     "SELECT ellipsoid_code FROM geodetic_datum"
                     " WHERE auth_name = 'EPSG' AND code = ? AND ellipsoid_auth_name = 'EPSG'");
        sqlite3_bind_int(st.s, 1, datum);
        if (sqlite3_step(st.s) != SQLITE_ROW) return std::nullopt;
        return sqlite3_column_int(st.s, 0);
    }

private:
    struct Statement {
        sqlite3_stmt* s = nullptr;
        Statement(sqlite3* db, const char* sql) {
            if (sqlite3_prepare_v2(db, sql, -1, &s, nullptr) != SQLITE_OK) ADD_FAILURE() << sqlite3_errmsg(db);
        }
        ~Statement() { sqlite3_finalize(s); }
    };
    static std::string Text(sqlite3_stmt* s, int col) {
        const unsigned char* t = sqlite3_column_text(s, col);
        return t ? reinterpret_cast<const char*>(t) : "";
    }

    sqlite3* m_db = nullptr;
};

const EllipsoidRow* EllipsoidRowFor(const std::string& indexText) {
    for (const auto& row : kEllipsoids)
        if (std::to_string(row.index) == indexText) return &row;
    return nullptr;
}

// Checks one catalog ellipsoid against an EPSG ellipsoid.
void ExpectSameFigure(const EllipsoidEntry& mine, const EpsgEllipsoid& epsg) {
    auto a = ParseReal(mine.a);
    auto rf = ParseReal(mine.rf);
    ASSERT_TRUE(a && rf) << mine.a << " " << mine.rf;
    EXPECT_NEAR(*a, epsg.a, kAxisTolM) << "semi-major axis of " << mine.name << " vs EPSG " << epsg.name;
    EXPECT_NEAR(*rf, epsg.rf, kInvFlatteningRelTol * epsg.rf)
        << "inverse flattening of " << mine.name << " vs EPSG " << epsg.name;
}

// ---------------------------------------------------------------------------
// Structure.

TEST(ShippedCatalogs, SectionsRunFromZeroWithoutGaps) {
    // The scans stop at the first missing section, so any section after a gap,
    // or named otherwise, would never be seen: the file must hold exactly the
    // sections the scan reaches.
    struct Case {
        std::string file;
        size_t scanned;
        size_t atLeast;
    };
    const Case cases[] = {
        {EllipsFile(), Ellipsoids().size(), 15},
        {DatumFile(), Datums().size(), 40},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        EXPECT_GE(c.scanned, c.atLeast);
        std::vector<std::string> expected;
        for (size_t n = 0; n < c.scanned; ++n) expected.push_back(Section(static_cast<int>(n)));
        EXPECT_EQ(ReadList(c.file, nullptr), expected);
    }
    // Nothing reads the projection catalog; it ships empty so that its path exists.
    EXPECT_TRUE(mwtest::FileExists(ProjectionFile()));
    EXPECT_TRUE(ReadList(ProjectionFile(), nullptr).empty());
}

TEST(ShippedCatalogs, EachSectionHasExactlyItsKeysInOrder) {
    const std::vector<std::string> ellipsKeys = {"Index", "EllipsName", "ellipsParam_0", "ellipsParam_1"};
    std::vector<std::string> datumKeys = {"DatumIndex", "DatumName", "EllipsoidIndex"};
    datumKeys.insert(datumKeys.end(), std::begin(kDatumValueKeys), std::end(kDatumValueKeys));
    for (const auto& e : Ellipsoids())
        EXPECT_EQ(ReadList(EllipsFile(), Section(e.section).c_str()), ellipsKeys) << Section(e.section);
    for (const auto& d : Datums())
        EXPECT_EQ(ReadList(DatumFile(), Section(d.section).c_str()), datumKeys) << Section(d.section);
}

TEST(ShippedCatalogs, IndexOfSectionNIsNPlusOne) {
    // Indices are stable once shipped; an entry appended by the library gets
    // section number + 1 as well, so the two can never collide.
    for (const auto& e : Ellipsoids()) EXPECT_EQ(e.index, std::to_string(e.section + 1)) << e.name;
    for (const auto& d : Datums()) EXPECT_EQ(d.index, std::to_string(d.section + 1)) << d.name;
}

TEST(ShippedCatalogs, NamesFitTheRecordAndAreUnique) {
    // A record keeps 49 characters of a name; look-ups by name take the last
    // match, so a duplicate would hide an entry.
    struct Case {
        const char* what;
        std::vector<std::string> names;
    };
    std::vector<Case> cases = {{"ellipsoid", {}}, {"datum", {}}};
    for (const auto& e : Ellipsoids()) cases[0].names.push_back(e.name);
    for (const auto& d : Datums()) cases[1].names.push_back(d.name);
    for (const auto& c : cases) {
        std::set<std::string> seen;
        for (const auto& name : c.names) {
            SCOPED_TRACE(std::string(c.what) + " \"" + name + "\"");
            if (name.empty() || name == "QQ") {
                ADD_FAILURE() << "missing name";
                continue;
            }
            EXPECT_LE(name.size(), 49u);
            for (char ch : name) EXPECT_TRUE(ch >= 0x20 && ch < 0x7f) << "not plain ASCII";
            EXPECT_FALSE(name.front() == ' ' || name.back() == ' ') << "blanks would be stripped";
            EXPECT_TRUE(seen.insert(name).second) << "duplicate";
        }
    }
}

TEST(ShippedCatalogs, NumbersAreWholeAndInRange) {
    for (const auto& e : Ellipsoids()) {
        SCOPED_TRACE(e.name);
        auto a = ParseReal(e.a);
        auto rf = ParseReal(e.rf);
        ASSERT_TRUE(a && rf) << "\"" << e.a << "\" \"" << e.rf << "\"";
        // Every terrestrial reference ellipsoid: a within 6377-6379 km, 1/f within 290-310.
        EXPECT_GT(*a, 6377000.0);
        EXPECT_LT(*a, 6379000.0);
        EXPECT_GT(*rf, 290.0);
        EXPECT_LT(*rf, 310.0);
    }
    for (const auto& d : Datums()) {
        SCOPED_TRACE(d.name);
        for (int i = 0; i < 6; ++i) {
            auto v = ParseInt(d.values[i]);
            ASSERT_TRUE(v) << kDatumValueKeys[i] << " \"" << d.values[i] << "\"";
            // Stored as signed 16 bits.
            EXPECT_GE(*v, INT16_MIN);
            EXPECT_LE(*v, INT16_MAX);
            // The second triple has no reliable per-axis source; it ships as zero.
            if (i >= 3) {
                EXPECT_EQ(*v, 0) << kDatumValueKeys[i];
            }
        }
    }
}

TEST(ShippedCatalogs, EveryDatumEllipsoidIsInTheEllipsoidCatalog) {
    for (const auto& d : Datums())
        EXPECT_NE(FindEllipsoid(d.ellipsoid), nullptr) << d.name << ": EllipsoidIndex " << d.ellipsoid;
}

TEST(ShippedCatalogs, DatumThreeIsTheWgs84Pivot) {
    const auto& datums = Datums();
    ASSERT_GE(datums.size(), 3u);
    const DatumEntry& d = datums[2];
    EXPECT_EQ(d.index, "3");
    EXPECT_EQ(d.name, "WGS 84");
    EXPECT_EQ(d.ellipsoid, "5");
    for (int i = 0; i < 6; ++i) EXPECT_EQ(d.values[i], "0") << kDatumValueKeys[i];
    // Only one datum may answer to index 3 (the scan takes the last match).
    int hits = 0;
    for (const auto& other : datums) hits += other.index == "3";
    EXPECT_EQ(hits, 1);

    const EllipsoidEntry* e = FindEllipsoid(d.ellipsoid);
    ASSERT_NE(e, nullptr);
    EXPECT_EQ(e->section, 4);
    EXPECT_EQ(e->name, "WGS 84");  // the same entry the dialogs would seed
    // The defining constants, exactly: atof of the catalog text.
    EXPECT_EQ(std::atof(e->a.c_str()), 6378137.0);
    EXPECT_EQ(std::atof(e->rf.c_str()), 298.257223563);
}

TEST(ShippedCatalogs, FilesOpenWithTheSourceCommentAndEndLinesWithCrLf) {
    for (const std::string& file : {EllipsFile(), DatumFile(), ProjectionFile()}) {
        SCOPED_TRACE(file);
        const std::string text = mwtest::ReadFile(file);
        ASSERT_FALSE(text.empty());
        for (size_t i = 0; i < text.size(); ++i) {
            if (text[i] == '\n') {
                ASSERT_TRUE(i > 0 && text[i - 1] == '\r') << "bare LF at byte " << i;
            } else if (text[i] == '\r') {
                ASSERT_TRUE(i + 1 < text.size() && text[i + 1] == '\n') << "bare CR at byte " << i;
            }
        }
        EXPECT_EQ(text.substr(text.size() - 2), "\r\n");
        // Comment lines before the first section: ';' first, no '=' (which
        // would make them keys).
        EXPECT_EQ(text[0], ';');
        const size_t firstSection = text.find('[');
        for (size_t pos = 0; pos < std::min(firstSection, text.size());) {
            const size_t end = text.find("\r\n", pos);
            const std::string line = text.substr(pos, end - pos);
            EXPECT_EQ(line.front(), ';') << line;
            EXPECT_EQ(line.find('='), std::string::npos) << line;
            pos = end + 2;
        }
    }
    // The two catalogs cite the report their values come from.
    for (const std::string& file : {EllipsFile(), DatumFile()}) {
        const std::string text = mwtest::ReadFile(file);
        EXPECT_NE(text.substr(0, text.find('[')).find("TR 8350.2"), std::string::npos) << file;
    }
}

// ---------------------------------------------------------------------------
// Against EPSG.

TEST(ShippedCatalogsVsEpsg, EveryEllipsoidMatchesItsEpsgFigure) {
    Epsg epsg;
    ASSERT_TRUE(epsg.ok()) << "cannot open PROJ's database at \"" << ProjDatabasePath() << "\"";
    const auto& entries = Ellipsoids();
    ASSERT_EQ(entries.size(), std::size(kEllipsoids)) << "the table and the catalog must list the same entries";
    for (const auto& row : kEllipsoids) {
        SCOPED_TRACE("ellipsoid index " + std::to_string(row.index) + " " + row.name);
        const EllipsoidEntry* e = FindEllipsoid(std::to_string(row.index));
        ASSERT_NE(e, nullptr);
        EXPECT_EQ(e->name, row.name);
        auto figure = epsg.Ellipsoid(row.epsgEllipsoid);
        ASSERT_TRUE(figure) << "EPSG ellipsoid " << row.epsgEllipsoid << " missing";
        ExpectSameFigure(*e, *figure);
    }
}

TEST(ShippedCatalogsVsEpsg, EveryDatumShiftMatchesTheReportAsEpsgRecordsIt) {
    Epsg epsg;
    ASSERT_TRUE(epsg.ok()) << "cannot open PROJ's database at \"" << ProjDatabasePath() << "\"";
    const auto& datums = Datums();
    ASSERT_EQ(datums.size(), std::size(kDatums)) << "the table and the catalog must list the same entries";
    for (const auto& row : kDatums) {
        SCOPED_TRACE("datum index " + std::to_string(row.index) + " " + row.name);
        const DatumEntry* d = nullptr;
        for (const auto& entry : datums)
            if (entry.index == std::to_string(row.index)) d = &entry;
        ASSERT_NE(d, nullptr);
        EXPECT_EQ(d->name, row.name) << "an index was reused for another datum";
        const EllipsoidEntry* mine = FindEllipsoid(d->ellipsoid);
        const EllipsoidRow* mineRow = EllipsoidRowFor(d->ellipsoid);
        ASSERT_TRUE(mine && mineRow);
        long shift[3];
        for (int i = 0; i < 3; ++i) {
            auto v = ParseInt(d->values[i]);
            ASSERT_TRUE(v);
            shift[i] = *v;
        }

        int epsgEllipsoid = 0;
        if (row.epsgTransformation != 0) {
            auto t = epsg.Transformation(row.epsgTransformation);
            ASSERT_TRUE(t) << "EPSG transformation " << row.epsgTransformation << " missing";
            SCOPED_TRACE("EPSG " + std::to_string(row.epsgTransformation) + " (" + t->datumName + ", " +
                         t->version + ")");
            // The record is the report's three-parameter solution to WGS 84, still current.
            EXPECT_EQ(t->method.rfind("Geocentric translations", 0), 0u) << t->method;
            EXPECT_EQ(t->targetAuth + ":" + t->targetCode, "EPSG:4326");
            EXPECT_TRUE(t->version.rfind("DMA", 0) == 0 || t->version.rfind("NIMA", 0) == 0) << t->version;
            EXPECT_FALSE(t->deprecated);
            EXPECT_EQ(t->translationUnit, 9001) << "translations not in metres";
            // Whole metres on both sides: equal exactly.
            EXPECT_EQ(static_cast<double>(shift[0]), t->tx);
            EXPECT_EQ(static_cast<double>(shift[1]), t->ty);
            EXPECT_EQ(static_cast<double>(shift[2]), t->tz);
            epsgEllipsoid = t->ellipsoid;
        } else {
            SCOPED_TRACE(std::string("no EPSG shift: ") + row.why);
            EXPECT_EQ(shift[0], 0);
            EXPECT_EQ(shift[1], 0);
            EXPECT_EQ(shift[2], 0);
            auto code = epsg.DatumEllipsoid(row.epsgDatum);
            ASSERT_TRUE(code) << "EPSG datum " << row.epsgDatum << " missing";
            epsgEllipsoid = *code;
        }

        // The datum lies on the ellipsoid EPSG gives it, with the same figure.
        EXPECT_EQ(mineRow->epsgEllipsoid, epsgEllipsoid) << "catalog ellipsoid " << mine->name;
        auto figure = epsg.Ellipsoid(epsgEllipsoid);
        ASSERT_TRUE(figure) << "EPSG ellipsoid " << epsgEllipsoid << " missing";
        ExpectSameFigure(*mine, *figure);
    }
}

}  // namespace
