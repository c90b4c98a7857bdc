// The shipped catalogs, read through the profile functions the library reads
// them with, against the EPSG dataset in PROJ's database: every ellipsoid's
// figure, every datum's ellipsoid and its three-parameter shift to WGS 84 as
// the DMA/NIMA report publishes it (EPSG operation versions "DMA-..." or
// "NIMA-..."); and the structure the catalog scans depend on.
#include <mapwright/profile.h>
#include <proj.h>
#include <sqlite3.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "testenv.h"

namespace {

// Ellipsoid index i + 1 -> the EPSG ellipsoid it must equal.
constexpr int kEllipsoidEpsg[] = {7001, 7002, 7003, 7004, 7030, 7008, 7012, 7013, 7011, 7015, 7018,
                                  7016, 7019, 7050, 7020, 7053, 7021, 7022, 7024, 7043, 7025};
// Datum index i + 1 -> the EPSG transformation to WGS 84 carrying the report's
// shift; a negative entry names instead the EPSG datum whose ellipsoid it must
// have, with a zero shift: WGS 72 (related to WGS 84 by rotation and scale
// too), WGS 66 (no published shift) and WGS 84 itself, the pivot.
constexpr int kDatumEpsg[] = {
    -6322, -6760, -6326, 1254, 1133, 1173, 1230, 1188, 1195, 1108, 1109, 1113, 1122, 1864, 1201, 1155, 1153,
    1154,  1158,  1228,  1157, 1161, 1152, 1956, 1134, 1135, 1140, 1145, 1139, 1176, 1172, 1187, 1171, 1170,
    1232,  1233,  1198,  1100, 1111, 1124, 1125, 1127, 1128, 1130, 1131, 1132, 8452, 1148, 1151, 1951, 1248,
    1159,  1160,  1165,  1166, 1168, 1191, 1192, 15824, 1561, 1797, 1227, 1234, 1235, 1070, 15822, 15965, 1893};

const char* const kEllipsKeys[] = {"Index", "EllipsName", "ellipsParam_0", "ellipsParam_1"};
const char* const kDatumKeys[] = {"DatumIndex", "DatumName", "EllipsoidIndex", "datumParam_0_0", "datumParam_0_1",
                                  "datumParam_0_2", "datumParam_1_0", "datumParam_1_1", "datumParam_1_2"};

std::string File(const char* name) { return mwtest::ShippedCatalogDir() + "/" + name; }

// A value as the library reads it (1024-byte buffer, "QQ" when missing).
std::string Key(const std::string& file, int section, const char* key) {
    char buf[1024];
    const DWORD n = GetPrivateProfileStringA(("Format " + std::to_string(section)).c_str(), key, "QQ", buf,
                                             sizeof buf, file.c_str());
    return std::string(buf, n);
}

// The NUL-separated list for a null section (section names) or null key.
std::vector<std::string> List(const std::string& file, const char* section) {
    std::vector<char> buf(1 << 16);
    const DWORD n = GetPrivateProfileStringA(section, nullptr, "", buf.data(), static_cast<DWORD>(buf.size()), file.c_str());
    std::vector<std::string> items;
    for (size_t i = 0; i < n; i += items.back().size() + 1) items.emplace_back(buf.data() + i);
    return items;
}

// The sections the library's scan reaches, each as its values in key order.
std::vector<std::vector<std::string>> Scan(const std::string& file, const char* const* keys, size_t count) {
    std::vector<std::vector<std::string>> out;
    for (int n = 0; Key(file, n, keys[0]) != "QQ"; ++n) {
        out.emplace_back();
        for (size_t k = 0; k < count; ++k) out.back().push_back(Key(file, n, keys[k]));
    }
    return out;
}
const auto& Ellipsoids() {
    static const auto e = Scan(File("ellips.ini"), kEllipsKeys, 4);
    return e;
}
const auto& Datums() {
    static const auto d = Scan(File("datum.ini"), kDatumKeys, 9);
    return d;
}

// Strict readers: the whole text must be the number.
bool Whole(const std::string& s, long* v) {
    char* end = nullptr;
    errno = 0;
    *v = std::strtol(s.c_str(), &end, 10);
    return !s.empty() && !std::isspace(static_cast<unsigned char>(s[0])) && errno == 0 && *end == '\0';
}
bool Real(const std::string& s, double* v) {
    char* end = nullptr;
    *v = std::strtod(s.c_str(), &end);
    return !s.empty() && !std::isspace(static_cast<unsigned char>(s[0])) && *end == '\0' && std::isfinite(*v);
}

TEST(ShippedCatalogs, Structure) {
    const struct {
        std::string file;
        const std::vector<std::vector<std::string>>& entries;
        const char* const* keys;
        size_t keyCount, count;
    } files[] = {{File("ellips.ini"), Ellipsoids(), kEllipsKeys, 4, std::size(kEllipsoidEpsg)},
                 {File("datum.ini"), Datums(), kDatumKeys, 9, std::size(kDatumEpsg)}};
    for (const auto& f : files) {
        SCOPED_TRACE(f.file);
        // The scans stop at the first missing section: the file holds exactly
        // the sections they reach, each with exactly its keys, index n + 1 in
        // section n, names that fit the record (49), unique, plain, unblanked.
        ASSERT_EQ(f.entries.size(), f.count);
        std::vector<std::string> sections;
        std::set<std::string> names;
        for (size_t n = 0; n < f.count; ++n) {
            sections.push_back("Format " + std::to_string(n));
            EXPECT_EQ(List(f.file, sections.back().c_str()), std::vector<std::string>(f.keys, f.keys + f.keyCount));
            const std::string& name = f.entries[n][1];
            EXPECT_EQ(f.entries[n][0], std::to_string(n + 1)) << name;
            EXPECT_TRUE(!name.empty() && name.size() <= 49 && name.front() != ' ' && name.back() != ' ') << name;
            for (char ch : name) EXPECT_TRUE(ch >= 0x20 && ch < 0x7f) << name;
            EXPECT_TRUE(names.insert(name).second) << "duplicate " << name;
        }
        EXPECT_EQ(List(f.file, nullptr), sections);
        // CRLF lines; comment lines (';', no '=') before the first section, citing the report.
        const std::string text = mwtest::ReadFile(f.file);
        for (size_t i = 0; i < text.size(); ++i) {
            if (text[i] == '\n') { ASSERT_TRUE(i > 0 && text[i - 1] == '\r') << "bare LF at " << i; }
            if (text[i] == '\r') { ASSERT_TRUE(i + 1 < text.size() && text[i + 1] == '\n') << "bare CR at " << i; }
        }
        EXPECT_EQ(text.substr(text.size() - 2), "\r\n");
        const std::string head = text.substr(0, text.find('['));
        for (size_t pos = 0; pos < head.size(); pos = head.find("\r\n", pos) + 2) {
            EXPECT_EQ(head[pos], ';');
            EXPECT_EQ(head.substr(pos, head.find("\r\n", pos) - pos).find('='), std::string::npos);
        }
        EXPECT_NE(head.find("TR 8350.2"), std::string::npos);
    }
    // Nothing reads the projection catalog; it ships empty so that its path exists.
    EXPECT_TRUE(mwtest::FileExists(File("projection.ini")));
    EXPECT_TRUE(List(File("projection.ini"), nullptr).empty());
}

TEST(ShippedCatalogs, NumbersAreWholeAndInRangeAndDatumThreeIsThePivot) {
    for (const auto& e : Ellipsoids()) {
        double a, rf;
        ASSERT_TRUE(Real(e[2], &a) && Real(e[3], &rf)) << e[1];
        EXPECT_TRUE(a > 6377000 && a < 6379000 && rf > 290 && rf < 310) << e[1];
    }
    for (const auto& d : Datums()) {
        long ellipsoid, v;
        EXPECT_TRUE(Whole(d[2], &ellipsoid) && ellipsoid >= 1 && ellipsoid <= static_cast<long>(Ellipsoids().size()))
            << d[1] << " on " << d[2];
        for (int i = 3; i < 9; ++i) {
            ASSERT_TRUE(Whole(d[i], &v)) << d[1] << " " << kDatumKeys[i];
            EXPECT_TRUE(v >= INT16_MIN && v <= INT16_MAX && (i < 6 || v == 0)) << d[1] << " " << kDatumKeys[i];
        }
    }
    const auto& pivot = Datums()[2];
    EXPECT_EQ(std::vector<std::string>({"3", "WGS 84", "5", "0", "0", "0", "0", "0", "0"}), pivot);
    EXPECT_EQ("WGS 84", Ellipsoids()[4][1]);
    EXPECT_EQ(6378137.0, std::atof(Ellipsoids()[4][2].c_str()));
    EXPECT_EQ(298.257223563, std::atof(Ellipsoids()[4][3].c_str()));
}

class Epsg {
public:
    Epsg() {
        const char* path = proj_context_get_database_path(nullptr);
        if (!path || sqlite3_open_v2(path, &m_db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
            sqlite3_close(m_db);
            m_db = nullptr;
        }
    }
    ~Epsg() { sqlite3_close(m_db); }
    Epsg(const Epsg&) = delete;
    bool ok() const { return m_db != nullptr; }
    // The first row of a query with one integer parameter, as text; empty when none.
    std::vector<std::string> Row(const char* sql, int code) const {
        sqlite3_stmt* st = nullptr;
        std::vector<std::string> row;
        if (sqlite3_prepare_v2(m_db, sql, -1, &st, nullptr) != SQLITE_OK) ADD_FAILURE() << sqlite3_errmsg(m_db);
        sqlite3_bind_int(st, 1, code);
        if (sqlite3_step(st) == SQLITE_ROW) {
            for (int c = 0; c < sqlite3_column_count(st); ++c) {
                const unsigned char* t = sqlite3_column_text(st, c);
                row.push_back(t ? reinterpret_cast<const char*>(t) : "");
            }
        }
        sqlite3_finalize(st);
        return row;
    }

private:
    sqlite3* m_db = nullptr;
};

TEST(ShippedCatalogsVsEpsg, EveryEllipsoidAndDatumShift) {
    Epsg epsg;
    ASSERT_TRUE(epsg.ok()) << "cannot open PROJ's database";
    // Axes agree to the millimetre; EPSG defines two Clarke figures by their
    // minor axis, whose flattening agrees with the published one to 5e-11.
    auto expectFigure = [&](const std::vector<std::string>& mine, int code) {
        const auto e = epsg.Row("SELECT e.semi_major_axis * u.conv_factor, e.inv_flattening, e.semi_minor_axis * "
                                "u.conv_factor FROM ellipsoid e JOIN unit_of_measure u ON u.auth_name = "
                                "e.uom_auth_name AND u.code = e.uom_code WHERE e.auth_name = 'EPSG' AND e.code = ?",
                                code);
        ASSERT_EQ(e.size(), 3u) << "EPSG ellipsoid " << code;
        const double a = std::atof(e[0].c_str());
        const double rf = e[1].empty() ? a / (a - std::atof(e[2].c_str())) : std::atof(e[1].c_str());
        EXPECT_NEAR(std::atof(mine[2].c_str()), a, 1e-3) << mine[1] << " vs EPSG " << code;
        EXPECT_NEAR(std::atof(mine[3].c_str()), rf, 1e-9 * rf) << mine[1] << " vs EPSG " << code;
    };
    for (size_t i = 0; i < Ellipsoids().size(); ++i) expectFigure(Ellipsoids()[i], kEllipsoidEpsg[i]);
    for (size_t i = 0; i < Datums().size(); ++i) {
        const auto& d = Datums()[i];
        SCOPED_TRACE(d[1]);
        const int row = std::atoi(d[2].c_str()) - 1;
        int ellipsoid = 0;
        if (kDatumEpsg[i] > 0) {
            // The report's three-parameter solution to WGS 84 (EPSG 4326), in metres, still current.
            const auto t = epsg.Row("SELECT h.tx, h.ty, h.tz, h.translation_uom_code, h.method_name, "
                                    "h.target_crs_auth_name || ':' || h.target_crs_code, h.operation_version, "
                                    "h.deprecated, d.ellipsoid_code FROM helmert_transformation h JOIN geodetic_crs g "
                                    "ON g.auth_name = h.source_crs_auth_name AND g.code = h.source_crs_code JOIN "
                                    "geodetic_datum d ON d.auth_name = g.datum_auth_name AND d.code = g.datum_code "
                                    "WHERE h.auth_name = 'EPSG' AND h.code = ?",
                                    kDatumEpsg[i]);
            ASSERT_EQ(t.size(), 9u) << "EPSG " << kDatumEpsg[i];
            for (int k = 0; k < 3; ++k) EXPECT_EQ(std::atof(d[3 + k].c_str()), std::atof(t[k].c_str())) << k;
            EXPECT_EQ(t[3], "9001");
            EXPECT_EQ(t[4].rfind("Geocentric translations", 0), 0u) << t[4];
            EXPECT_EQ(t[5], "EPSG:4326");
            EXPECT_TRUE(t[6].rfind("DMA", 0) == 0 || t[6].rfind("NIMA", 0) == 0) << t[6];
            EXPECT_EQ(t[7], "0");
            ellipsoid = std::atoi(t[8].c_str());
        } else {
            for (int k = 3; k < 6; ++k) EXPECT_EQ(d[k], "0");
            const auto e = epsg.Row("SELECT ellipsoid_code FROM geodetic_datum WHERE auth_name = 'EPSG' AND code = ?",
                                    -kDatumEpsg[i]);
            ASSERT_EQ(e.size(), 1u);
            ellipsoid = std::atoi(e[0].c_str());
        }
        ASSERT_TRUE(row >= 0 && row < static_cast<int>(Ellipsoids().size()));
        EXPECT_EQ(kEllipsoidEpsg[row], ellipsoid) << "on " << Ellipsoids()[row][1];
    }
}

}  // namespace
