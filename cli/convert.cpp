#include "convert.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>

#include <mapwright/mapwright.h>

#include "catalog_view.h"
#include "streams.h"
#include "system_text.h"
#include "text.h"

namespace mwcli {

namespace {

enum class Format { Numbers, Fields, Dms, Line };

// What a column of an input or output line holds.
enum Role { kLatitude, kLongitude, kEasting, kNorthing, kHeight, kX, kY, kZ };

// Russian names a column three ways: as such, as what cannot be read, and
// as what is missing.
struct RoleName {
    const char* english;
    const char* russian;
    const char* russianObject;
    const char* russianOf;
};
constexpr RoleName kRoleNames[] = {
    {"latitude", "широта", "широту", "широты"},
    {"longitude", "долгота", "долготу", "долготы"},
    {"easting", "восточная координата", "восточную координату", "восточной координаты"},
    {"northing", "северная координата", "северную координату", "северной координаты"},
    {"height", "высота", "высоту", "высоты"},
    {"X", "X", "X", "X"},
    {"Y", "Y", "Y", "Y"},
    {"Z", "Z", "Z", "Z"},
};

// The record field of each role: the latitude and the northing are `north`;
// geocentric X, Y, Z are `north`, `east`, `height` in that order.
double& FieldOf(GeoCoordTag& r, Role role) {
    switch (role) {
        case kLatitude:
        case kNorthing:
        case kX: return r.north;
        case kLongitude:
        case kEasting:
        case kY: return r.east;
        default: return r.height;
    }
}

// The library's text field index of each role (0 the east axis, 1 the north
// axis, then zone and height for UTM, height for the others).
int TextFieldOf(Role role, int kind) {
    switch (role) {
        case kLongitude:
        case kEasting:
        case kY: return 0;
        case kLatitude:
        case kNorthing:
        case kX: return 1;
        default: return kind == UTM ? 3 : 2;
    }
}

// The columns of a kind in the order users of that kind write them.
struct Layout {
    Role roles[3];
    int required;  // 2, or 3 for Cartesian
};

Layout LayoutOf(int kind, bool lonFirst) {
    if (kind == Geographic)
        return lonFirst ? Layout{{kLongitude, kLatitude, kHeight}, 2} : Layout{{kLatitude, kLongitude, kHeight}, 2};
    if (kind == Cartesian) return {{kX, kY, kZ}, 3};
    return {{kEasting, kNorthing, kHeight}, 2};
}

std::string LayoutText(int kind, bool lonFirst, bool zoneFirst) {
    const Layout l = LayoutOf(kind, lonFirst);
    std::string text = zoneFirst ? Tr("[zone] ", "[зона] ") : "";
    for (int i = 0; i < 3; ++i) {
        if (i > 0) text += ' ';
        const char* name = Russian() ? kRoleNames[l.roles[i]].russian : kRoleNames[l.roles[i]].english;
        if (i < l.required) {
            text += name;
        } else {
            text += '[';
            text += name;
            text += ']';
        }
    }
    return text;
}

// ---------------------------------------------------------------------------
// Reading one line.

enum class Problem {
    None,
    Missing,
    Unreadable,
    NotFinite,
    LatitudeRange,
    LongitudeRange,
    OtherAxis,
    BadDms,
    NoZone,
    BadZone
};

struct Parsed {
    GeoCoordTag point;
    bool hasHeight;
    int zone;               // UTM source: the line's zone, 0 when the line gives none
    int hemisphere;         // 1 north, -1 south
    std::string_view rest;  // text after the coordinates, copied to the output
    Problem problem;
    Role role;               // the column the problem is in
    std::string_view token;  // the text it is about
};

inline bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}
inline bool IsSeparator(char c) {
    return c == ' ' || c == '\t' || c == ',';
}

// Blanks with at most one comma among them.
inline const char* SkipSeparators(const char* p, const char* end) {
    while (p < end && IsBlank(*p)) ++p;
    if (p < end && *p == ',') {
        ++p;
        while (p < end && IsBlank(*p)) ++p;
    }
    return p;
}

inline std::string_view TokenAt(const char* p, const char* end) {
    const char* q = p;
    while (q < end && !IsSeparator(*q)) ++q;
    return {p, static_cast<size_t>(q - p)};
}

// A decimal number at p; q is where it ends.
inline bool ReadDecimal(const char* p, const char* end, double& value, const char*& q) {
    if (p < end && *p == '+') ++p;  // from_chars takes no plus sign
    const auto r = std::from_chars(p, end, value);
    q = r.ptr;
    return r.ec == std::errc();
}

inline bool IsLatitudeLetter(char c) {
    return c == 'N' || c == 'S' || c == 'n' || c == 's';
}
inline bool IsLongitudeLetter(char c) {
    return c == 'E' || c == 'W' || c == 'e' || c == 'w';
}

// A degree sign, in UTF-8 (C2 B0) or as the library writes it (B0).
inline bool IsDegreeSign(const char* p, const char* end) {
    return (p < end && static_cast<unsigned char>(*p) == 0xB0) ||
           (p + 1 < end && static_cast<unsigned char>(p[0]) == 0xC2 && static_cast<unsigned char>(p[1]) == 0xB0);
}

// One angle: decimal degrees, optionally followed by a hemisphere letter
// ("55.75 N", "37.5W"), or the library's degrees-minutes-seconds text
// ("055° 45' 00.00'' N"). A letter negates as the library's reader does: S
// and W flip the typed sign.
bool ReadAngle(const char*& p, const char* end, Role role, double& value, Parsed& out) {
    const bool latitude = role == kLatitude;
    const char* start = p;
    const char* q;
    if (!ReadDecimal(p, end, value, q)) {
        out.problem = p < end ? Problem::Unreadable : Problem::Missing;
        out.token = TokenAt(p, end);
        return false;
    }
    if (IsDegreeSign(q, end)) {
        // Degrees, minutes, seconds: up to the hemisphere letter, which ends it.
        const char* letter = q;
        while (letter < end && !IsLatitudeLetter(*letter) && !IsLongitudeLetter(*letter) && letter - start < 48)
            ++letter;
        const std::string_view text(start, static_cast<size_t>(std::min(letter + 1, end) - start));
        out.token = text;
        if (letter == end || (letter + 1 < end && !IsSeparator(letter[1]))) {
            out.problem = Problem::BadDms;
            return false;
        }
        if (latitude ? IsLongitudeLetter(*letter) : IsLatitudeLetter(*letter)) {
            out.problem = Problem::OtherAxis;
            out.token = std::string_view(letter, 1);
            return false;
        }
        char buffer[64];
        std::memcpy(buffer, text.data(), text.size());
        buffer[text.size()] = '\0';
        const int ok = latitude ? LatitudeCharToDouble(&value, buffer) : LongitudeCharToDouble(&value, buffer);
        if (!ok) {
            out.problem = Problem::BadDms;
            return false;
        }
        p = letter + 1;
        return true;
    }
    if (q < end && !IsSeparator(*q) && !IsLatitudeLetter(*q) && !IsLongitudeLetter(*q)) {
        out.problem = Problem::Unreadable;
        out.token = TokenAt(start, end);
        return false;
    }
    if (!std::isfinite(value)) {
        out.problem = Problem::NotFinite;
        out.token = TokenAt(start, end);
        return false;
    }
    // A hemisphere letter: right after the number or after blanks, standing alone.
    const char* l = q;
    while (l < end && IsBlank(*l)) ++l;
    if (l < end && (IsLatitudeLetter(*l) || IsLongitudeLetter(*l)) && (l + 1 == end || IsSeparator(l[1]))) {
        if (latitude ? IsLongitudeLetter(*l) : IsLatitudeLetter(*l)) {
            out.problem = Problem::OtherAxis;
            out.token = std::string_view(l, 1);
            return false;
        }
        if (*l == 'S' || *l == 's' || *l == 'W' || *l == 'w') value = -value;
        q = l + 1;
    } else if (q < end && !IsSeparator(*q)) {
        // A letter glued to the number that is no hemisphere ("55.7Nx").
        out.problem = Problem::Unreadable;
        out.token = TokenAt(start, end);
        return false;
    }
    p = q;
    return true;
}

bool ReadNumber(const char*& p, const char* end, double& value, Parsed& out) {
    const char* q;
    if (!ReadDecimal(p, end, value, q) || (q < end && !IsSeparator(*q))) {
        out.problem = p < end ? Problem::Unreadable : Problem::Missing;
        out.token = TokenAt(p, end);
        return false;
    }
    if (!std::isfinite(value)) {
        out.problem = Problem::NotFinite;
        out.token = TokenAt(p, end);
        return false;
    }
    p = q;
    return true;
}

// "37n", "7S": a UTM zone and hemisphere in front of the numbers.
bool ReadZonePrefix(const char*& p, const char* end, Parsed& out) {
    const char* q = p;
    int zone = 0, digits = 0;
    while (q < end && *q >= '0' && *q <= '9' && digits < 3) {
        zone = zone * 10 + (*q - '0');
        ++q;
        ++digits;
    }
    if (digits == 0 || q == end || !IsLatitudeLetter(*q) || (q + 1 < end && !IsSeparator(q[1]))) return true;
    if (zone < 1 || zone > 60) {
        out.problem = Problem::BadZone;
        out.token = TokenAt(p, end);
        return false;
    }
    out.zone = zone;
    out.hemisphere = (*q == 's' || *q == 'S') ? -1 : 1;
    p = q + 1;
    return true;
}

bool ParseLine(std::string_view line, int kind, const Layout& layout, Parsed& out) {
    const char* p = line.data();
    const char* end = p + line.size();
    out.point = GeoCoordTag{};
    out.hasHeight = false;
    out.zone = 0;
    out.hemisphere = 1;
    out.rest = {};
    out.problem = Problem::None;
    p = SkipSeparators(p, end);
    if (kind == UTM && !ReadZonePrefix(p, end, out)) return false;
    for (int i = 0; i < 3; ++i) {
        const Role role = layout.roles[i];
        out.role = role;
        p = SkipSeparators(p, end);
        if (i >= layout.required) {
            // An optional height: a whole number token, or else the rest of the line.
            double h;
            const char* q;
            const char* hp = p;
            if (hp < end && ReadDecimal(hp, end, h, q) && (q == end || IsSeparator(*q)) && std::isfinite(h)) {
                out.point.height = h;
                out.hasHeight = true;
                p = SkipSeparators(q, end);
            }
            break;
        }
        if (p == end) {
            out.problem = Problem::Missing;
            return false;
        }
        double& field = FieldOf(out.point, role);
        const bool ok = (role == kLatitude || role == kLongitude) ? ReadAngle(p, end, role, field, out)
                                                                  : ReadNumber(p, end, field, out);
        if (!ok) return false;
        if (role == kLatitude && std::fabs(field) > 90.0) {
            out.problem = Problem::LatitudeRange;
            return false;
        }
        // As far as any longitude reader goes: one and a half turns.
        if (role == kLongitude && std::fabs(field) > 540.0) {
            out.problem = Problem::LongitudeRange;
            return false;
        }
        if (i + 1 == layout.required) p = SkipSeparators(p, end);
    }
    if (layout.required == 3) out.hasHeight = true;
    out.rest = std::string_view(p, static_cast<size_t>(end - p));
    return true;
}

std::string DescribeProblem(const Parsed& r, int kind, bool lonFirst) {
    const RoleName& n = kRoleNames[r.role];
    const std::string token(r.token);
    const std::string object = Russian() ? n.russianObject : std::string("the ") + n.english;
    switch (r.problem) {
        case Problem::Missing:
            return Russian() ? std::string("нет ") + n.russianOf +
                                   " (ожидается: " + LayoutText(kind, lonFirst, kind == UTM) + ")"
                             : std::string("missing the ") + n.english +
                                   " (expected: " + LayoutText(kind, lonFirst, kind == UTM) + ")";
        case Problem::Unreadable:
            return std::string(Tr("cannot read ", "не удаётся прочитать ")) + object + Tr(" from ", " из ") +
                   Quoted(token);
        case Problem::NotFinite:
            return std::string(Tr("cannot read ", "не удаётся прочитать ")) + object + Tr(" from ", " из ") +
                   Quoted(token) + Tr(" (not a finite number)", " (не конечное число)");
        case Problem::LatitudeRange: return Tr("the latitude is outside -90..90", "широта вне пределов -90..90");
        case Problem::LongitudeRange: return Tr("the longitude is outside -540..540", "долгота вне пределов -540..540");
        case Problem::OtherAxis:
            return Quoted(token) +
                   (Russian() ? std::string(" после ") + n.russianOf : std::string(" after the ") + n.english) +
                   Tr(" is a letter of the other axis (for longitude first use -w)",
                      " относится к другой оси (если долгота идёт первой, укажите -w)");
        case Problem::BadDms:
            return std::string(Tr("cannot read ", "не удаётся прочитать ")) + object + Tr(" from ", " из ") +
                   Quoted(token) +
                   Tr("; degrees, minutes and seconds are written as 055\u00b0 45' 20.50'' N",
                      "; градусы, минуты и секунды записываются как 055\u00b0 45' 20.50'' N");
        case Problem::NoZone:
            return Tr("no UTM zone: give zone= in the source system or start the line with the zone, as in 37n",
                      "нет зоны UTM: укажите zone= в исходной системе или начните строку с зоны, например 37n");
        case Problem::BadZone:
            return std::string(Tr("cannot read the zone from ", "не удаётся прочитать зону из ")) + Quoted(token) +
                   Tr(" (1..60 followed by n or s)", " (1..60 и затем n или s)");
        case Problem::None: break;
    }
    return {};
}

// ---------------------------------------------------------------------------
// The conversion: one CGeoTransform, or two through geographic coordinates
// when both systems are of one projected kind on one datum. The library
// passes values through unchanged between two systems of the same kind and
// datum, whatever their parameters; a user asking for Gauss-Kruger zone 7 to
// zone 8 wants the point reprojected.

bool SameEllipsoidAndDatum(CGeoReferenceData& a, CGeoReferenceData& b) {
    double ga[2], gb[2];
    short va[6], vb[6];
    a.GetGeoInfoA(ga, va);
    b.GetGeoInfoA(gb, vb);
    return ga[0] == gb[0] && ga[1] == gb[1] && std::memcmp(va, vb, sizeof va) == 0;
}

bool NeedsGeographicStep(CGeoReferenceData& source, CGeoReferenceData& dest) {
    const int kind = source.GetProjection();
    if (kind != dest.GetProjection() || kind == Geographic || kind == Cartesian) return false;
    if (!SameEllipsoidAndDatum(source, dest)) return false;
    // A UTM line may name its own zone, so UTM to UTM always goes round.
    if (kind == UTM) return true;
    const SystemDef s = DefOf(source), d = DefOf(dest);
    return !(s.scale == d.scale && s.lon0 == d.lon0 && s.lat0 == d.lat0 && s.fe == d.fe && s.fn == d.fn);
}

class Pipeline {
public:
    Pipeline(CGeoReferenceData& source, CGeoReferenceData& dest) {
        m_first = std::make_unique<CGeoTransform>();
        m_first->SetReferenceDataSource(&source);
        if (NeedsGeographicStep(source, dest)) {
            CGeoReferenceData geographic;
            geographic.CreateGeoInfo(Geographic, source.GetDatum());
            m_first->SetReferenceDataDest(&geographic);
            m_second = std::make_unique<CGeoTransform>();
            m_second->SetReferenceDataSource(&geographic);
            m_second->SetReferenceDataDest(&dest);
            m_second->InitGeoParam();
        } else {
            m_first->SetReferenceDataDest(&dest);
        }
        m_first->InitGeoParam();
        m_sourceKind = source.GetProjection();
        if (m_sourceKind == UTM)
            m_utmBlock = static_cast<ProjectionParam*>(m_first->GetReferenceDataSource()->GetParam());
    }
    ~Pipeline() {
        m_first->FreeGeoParam();
        if (m_second) m_second->FreeGeoParam();
    }
    Pipeline(const Pipeline&) = delete;
    Pipeline& operator=(const Pipeline&) = delete;

    // False when the destination refused the point: it comes out as NaN.
    bool Convert(GeoCoordTag& point, int utmZone, int utmHemisphere) {
        // The engine reads the UTM zone and hemisphere from the block at every
        // conversion, so each line may bring its own.
        if (m_utmBlock) {
            m_utmBlock->fn = utmZone;
            m_utmBlock->fe = utmHemisphere;
        }
        m_first->SetGeoCoord(&point);
        m_first->GeoConvert();
        const GeoCoordTag* result = static_cast<const GeoCoordTag*>(m_first->GetGeoCoordDest()->GetCoord());
        if (m_second) {
            GeoCoordTag middle = *result;
            m_second->SetGeoCoord(&middle);
            m_second->GeoConvert();
            result = static_cast<const GeoCoordTag*>(m_second->GetGeoCoordDest()->GetCoord());
        }
        m_result = *result;
        return std::isfinite(m_result.north) && std::isfinite(m_result.east) && std::isfinite(m_result.height);
    }

    const GeoCoordTag& Result() const { return m_result; }
    CGeoTransform& Final() { return m_second ? *m_second : *m_first; }

    // The hemisphere of the last point for a UTM result whose zone the
    // longitude chose. The engine adds the southern false northing exactly
    // when the latitude on the destination datum is negative; the source
    // latitude has that sign except within a datum shift (under 0.01
    // degrees) of the equator, where the northing itself tells: a few
    // kilometres north, or just under 10 000 km south.
    bool LastIsSouth(const GeoCoordTag& source) {
        double lat = source.north, lon = 0, h = source.height;
        if (m_sourceKind != Geographic) m_first->pr_to_geo(&lat, &lon, &h);
        if (std::fabs(lat) >= 0.1) return lat < 0;
        return m_result.north > 5000000.0;
    }

private:
    std::unique_ptr<CGeoTransform> m_first, m_second;
    ProjectionParam* m_utmBlock = nullptr;
    int m_sourceKind = 0;
    GeoCoordTag m_result{};
};

// ---------------------------------------------------------------------------
// Progress on a terminal.

class Progress {
public:
    Progress(OutputBuffer& err, uint64_t totalBytes) : m_err(err), m_total(totalBytes) {
        m_terminal = isatty(STDERR_FILENO) == 1;
        m_last = std::chrono::steady_clock::now();
    }
    // Every few thousand lines.
    void Update(uint64_t lines, uint64_t bytes) {
        if (!m_terminal || lines <= kThreshold) return;
        const auto now = std::chrono::steady_clock::now();
        if (m_visible && now - m_last < std::chrono::milliseconds(250)) return;
        m_last = now;
        Show(lines, bytes);
    }
    // Before a message, so it does not land on the progress line.
    void Clear() {
        if (m_visible) m_err.Put("\r\033[K");
        m_visible = false;
    }
    void Finish(uint64_t lines) {
        if (!m_shown) return;
        Clear();
        m_err.Put("mapwright: " + std::to_string(lines) + Tr(" lines\n", " строк\n"));
        m_err.Flush();
    }

    static constexpr uint64_t kThreshold = 100000;

private:
    void Show(uint64_t lines, uint64_t bytes) {
        std::string text = "\rmapwright: " + std::to_string(lines) + Tr(" lines", " строк");
        if (m_total > 0) text += " (" + std::to_string(std::min<uint64_t>(100, bytes * 100 / m_total)) + "%)";
        m_err.Put(text + "\033[K");
        m_err.Flush();
        m_visible = m_shown = true;
    }

    OutputBuffer& m_err;
    uint64_t m_total;
    bool m_terminal;
    bool m_visible = false, m_shown = false;
    std::chrono::steady_clock::time_point m_last;
};

// ---------------------------------------------------------------------------
// The command.

Format ParseFormat(const std::string& name) {
    if (name == "numbers") return Format::Numbers;
    if (name == "fields") return Format::Fields;
    if (name == "dms") return Format::Dms;
    if (name == "line") return Format::Line;
    throw Error(std::string(Tr("unknown format ", "неизвестный формат ")) + Quoted(name) +
                Tr("; expected numbers, fields, dms or line", "; ожидается numbers, fields, dms или line"));
}

struct Endpoints {
    CGeoReferenceData source, dest;
};

void ResolveSystems(const ConvertOptions& o, Endpoints& e) {
    const std::vector<DatumEntry> datums = ReadDatums();
    if (!o.pair.empty()) {
        CGeoTransform pair;
        LoadPair(o.pair, pair);
        pair.FreeGeoParam();
        e.source = *pair.GetReferenceDataSource();
        e.dest = *pair.GetReferenceDataDest();
    }
    // Which of the two systems a message is about.
    auto side = [&](const char* option, auto&& make) {
        try {
            make();
        } catch (const Error& error) {
            throw Error(std::string(option) + ": " + error.what());
        }
    };
    if (!o.from.empty()) side("--from", [&] { MakeSystem(ParseSystem(o.from, datums), e.source); });
    if (!o.fromKey.empty()) side("--from-key", [&] { LoadSystem(o.fromKey, e.source); });
    if (!o.to.empty()) side("--to", [&] { MakeSystem(ParseSystem(o.to, datums), e.dest); });
    if (!o.toKey.empty()) side("--to-key", [&] { LoadSystem(o.toKey, e.dest); });
}

struct Converter {
    const ConvertOptions& options;
    Format format;
    Pipeline& pipeline;
    OutputBuffer& out;
    OutputBuffer& err;
    Progress& progress;
    int sourceKind, destKind;
    Layout sourceLayout, destLayout;
    bool sourceZoneFixed;
    int sourceZone, sourceHemisphere;
    bool destZoneChosen;  // UTM destination without a zone: the line shows it
    char separator;
    int metreDecimals, degreeDecimals;
    uint64_t lines = 0, points = 0, failures = 0;

    void Report(const std::string& file, uint64_t line, const std::string& message) {
        progress.Clear();
        err.Put("mapwright: " + file + ":" + std::to_string(line) + ": " + message + "\n");
        ++failures;
    }

    void Marker() {
        const int columns = destLayout.required + (destZoneChosen && format != Format::Line ? 1 : 0);
        for (int i = 0; i < (format == Format::Line ? 1 : columns); ++i) {
            if (i > 0) out.Put(separator);
            out.Put('*');
        }
        out.Put('\n');
    }

    void PutRest(std::string_view rest) {
        if (rest.empty()) return;
        out.Put(separator);
        out.Put(rest);
    }

    void PutNumbers(const GeoCoordTag& r, bool withHeight) {
        GeoCoordTag v = r;
        for (int i = 0; i < 3; ++i) {
            const Role role = destLayout.roles[i];
            if (i >= destLayout.required && !withHeight) break;
            if (i > 0) out.Put(separator);
            out.PutFixed(FieldOf(v, role), role == kLatitude || role == kLongitude ? degreeDecimals : metreDecimals);
        }
    }

    void PutFieldTexts(bool withHeight) {
        CGeoCoord* coord = pipeline.Final().GetGeoCoordDest();
        CString text;
        for (int i = 0; i < 3; ++i) {
            const Role role = destLayout.roles[i];
            if (i >= destLayout.required && !withHeight) break;
            if (i > 0) out.Put(separator);
            text.Empty();
            coord->GetCoord(text, TextFieldOf(role, destKind), format == Format::Fields);
            out.Put(Utf8(text));
        }
    }

    void PutLine() {
        char buffer[1024];
        pipeline.Final().GetCoordStr(buffer, sizeof buffer - 1, options.lineHeight ? 1 : 0);
        buffer[sizeof buffer - 1] = '\0';
        out.Put(Utf8(buffer));
    }

    void Run(LineReader& reader, const std::string& file, uint64_t bytesBefore) {
        std::string_view line;
        uint64_t number = 0;
        Parsed parsed;
        while (reader.Next(line)) {
            ++number;
            // Every 8192 lines, and at the line that crosses the threshold.
            if ((++lines & 0x1FFF) == 0 || lines == Progress::kThreshold + 1)
                progress.Update(lines, bytesBefore + reader.BytesRead());
            // Comments and blank lines go through as they are.
            size_t first = 0;
            while (first < line.size() && IsBlank(line[first])) ++first;
            if (first == line.size() || line[first] == '#') {
                out.Put(line);
                out.Put('\n');
                continue;
            }
            ++points;
            if (!ParseLine(line, sourceKind, sourceLayout, parsed)) {
                Report(file, number, DescribeProblem(parsed, sourceKind, options.lonFirst));
                Marker();
                continue;
            }
            int zone = parsed.zone, hemisphere = parsed.hemisphere;
            if (sourceKind == UTM && zone == 0) {
                if (!sourceZoneFixed) {
                    parsed.problem = Problem::NoZone;
                    Report(file, number, DescribeProblem(parsed, sourceKind, options.lonFirst));
                    Marker();
                    continue;
                }
                zone = sourceZone;
                hemisphere = sourceHemisphere;
            }
            const GeoCoordTag input = parsed.point;
            if (!pipeline.Convert(parsed.point, zone, hemisphere)) {
                Report(file, number,
                       Tr("the destination system refuses the point (outside the area of its projection)",
                          "конечная система отвергает точку (вне области определения её проекции)"));
                Marker();
                continue;
            }
            const GeoCoordTag& r = pipeline.Result();
            if (destZoneChosen && format != Format::Line) {
                out.PutFixed(r.zone, 0);
                out.Put(pipeline.LastIsSouth(input) ? 's' : 'n');
                out.Put(separator);
            }
            const bool withHeight = parsed.hasHeight || sourceKind == Cartesian || destKind == Cartesian;
            switch (format) {
                case Format::Numbers: PutNumbers(r, withHeight); break;
                case Format::Fields:
                case Format::Dms: PutFieldTexts(withHeight); break;
                case Format::Line: PutLine(); break;
            }
            PutRest(parsed.rest);
            out.Put('\n');
        }
    }
};

void FlushBoth(void* context) {
    auto* c = static_cast<Converter*>(context);
    c->out.Flush();
    c->err.Flush();
}

}  // namespace

const char* InputOrderHelp() {
    return R"(Input: one point a line, its numbers separated by blanks, tabs or a comma;
lines that are blank or start with # are copied as they are; text after the
numbers is copied after the result. The order is the one users of each kind
write:
  geographic     latitude longitude [height]  (-w: longitude latitude [height])
                 as decimal degrees (55.7558, -37.5, 55.7558 N, 37.5W) or in
                 the library's degrees-minutes-seconds text
                 (055° 45' 20.88'' N, 037° 37' 03.00'' E)
  utm            [zone] easting northing [height]; the zone as in 37n or 7s,
                 needed when the system has none, and winning over it
  gk, tm, mercator, ps
                 easting northing [height]
  cartesian      X Y Z
Heights are metres; a height is written out when the line has one (always
for cartesian).

Output (--format):
  numbers  the numbers in the same order, metres with --precision decimals,
           degrees with 5 more (default)
  fields   the library's text of each field: 055.7558000 N, 413000.00
  dms      the same with degrees, minutes and seconds: 055° 45' 20.88'' N
  line     the library's line for the point:
           6182000.00, 413000.00 (UTM, UTM Zone  37 / WGS 84)
A UTM destination without a zone starts each line with the zone chosen, as
in 37n. fields and dms separate the fields with a tab.

A line that cannot be read, or a point the destination refuses, is reported
on standard error with its line number, and its output line is * for each
column so that the lines stay aligned; the rest is still converted and the
exit status is 1. More than 100000 lines show a progress line when standard
error is a terminal.)";
}

int RunConvert(const ConvertOptions& options) {
    const Format format = ParseFormat(options.format);
    const int sources = !options.from.empty() + !options.fromKey.empty() + !options.pair.empty();
    const int dests = !options.to.empty() + !options.toKey.empty() + !options.pair.empty();
    if (sources != 1 || dests != 1)
        throw Error(
            Tr("give the source with one of --from, --from-key, --pair and the destination with one of "
               "--to, --to-key, --pair",
               "укажите исходную систему одним из --from, --from-key, --pair и конечную одним из --to, "
               "--to-key, --pair"));

    Endpoints systems;
    ResolveSystems(options, systems);
    const SystemDef sourceDef = DefOf(systems.source);
    const SystemDef destDef = DefOf(systems.dest);
    if (destDef.kind == PolarStereographic && destDef.lat0 < 0 && destDef.fn < 2000000)
        std::fprintf(stderr, "mapwright: %s\n",
                     Tr("note: the library writes south polar northings as -abs(y + fn), which keeps y only when "
                        "fn is larger than any |y| (fn=2000000, as UPS has it)",
                        "примечание: библиотека записывает северные координаты южной полярной проекции как "
                        "-abs(y + fn), что сохраняет y, только если fn больше любого |y| (fn=2000000, как в UPS)"));

    int outFd = STDOUT_FILENO;
    std::string outName = Tr("standard output", "стандартный вывод");
    if (!options.output.empty() && options.output != "-") {
        // Opening the output truncates it: it must not be one of the inputs.
        struct stat target = {};
        if (::stat(options.output.c_str(), &target) == 0) {
            for (const std::string& f : options.files) {
                struct stat input = {};
                if (f != "-" && ::stat(f.c_str(), &input) == 0 && input.st_dev == target.st_dev &&
                    input.st_ino == target.st_ino)
                    throw Error(std::string(Tr("the output ", "выходной файл ")) + options.output +
                                Tr(" is also an input", " является и входным"));
            }
        }
        outFd = ::open(options.output.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        if (outFd < 0)
            throw Error(std::string(Tr("cannot create ", "не удаётся создать ")) + options.output + ": " +
                        std::strerror(errno));
        outName = options.output;
    }
    OutputBuffer out(outFd, outName);
    OutputBuffer err(STDERR_FILENO, Tr("standard error", "стандартный поток ошибок"));

    std::vector<std::string> files = options.files;
    if (files.empty()) files.push_back("-");
    // The total size, for a percentage, when every input is a regular file.
    uint64_t total = 0;
    for (const std::string& f : files) {
        struct stat st = {};
        const int found = f == "-" ? ::fstat(STDIN_FILENO, &st) : ::stat(f.c_str(), &st);
        if (found != 0 || !S_ISREG(st.st_mode)) {
            total = 0;
            break;
        }
        total += static_cast<uint64_t>(st.st_size);
    }
    Progress progress(err, total);

    Pipeline pipeline(systems.source, systems.dest);
    Converter c{options,
                format,
                pipeline,
                out,
                err,
                progress,
                sourceDef.kind,
                destDef.kind,
                LayoutOf(sourceDef.kind, options.lonFirst),
                LayoutOf(destDef.kind, options.lonFirst),
                sourceDef.UtmZoneFixed(),
                sourceDef.fn,
                sourceDef.UtmSouth() ? -1 : 1,
                destDef.kind == UTM && !destDef.UtmZoneFixed(),
                format == Format::Fields || format == Format::Dms ? '\t' : ' ',
                options.precision,
                options.precision + 5};

    int status = 0;
    uint64_t bytesBefore = 0;
    for (const std::string& file : files) {
        const bool standardInput = file == "-";
        const int fd = standardInput ? STDIN_FILENO : ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
        if (fd < 0) {
            progress.Clear();
            err.Put("mapwright: " + std::string(Tr("cannot open ", "не удаётся открыть ")) + file + ": " +
                    std::strerror(errno) + "\n");
            status = kExitData;
            continue;
        }
        LineReader reader(fd);
        reader.SetBeforeWait(&FlushBoth, &c);
        const std::string name = standardInput ? "<stdin>" : file;
        try {
            c.Run(reader, name, bytesBefore);
        } catch (const InputError& e) {
            // A directory, a vanished disk: what was read is converted, the
            // rest of this input is lost, the next one is still read.
            progress.Clear();
            err.Put("mapwright: " + std::string(Tr("cannot read ", "не удаётся прочитать ")) + name + ": " + e.what() +
                    "\n");
            status = kExitData;
        } catch (...) {
            if (!standardInput) ::close(fd);
            throw;
        }
        bytesBefore += reader.BytesRead();
        if (!standardInput) ::close(fd);
    }
    out.Flush();
    if (outFd != STDOUT_FILENO && ::close(outFd) != 0)
        throw Error(std::string(Tr("cannot write to ", "не удаётся записать в ")) + outName + ": " +
                    std::strerror(errno));
    progress.Finish(c.lines);
    if (c.failures > 0) {
        const std::string counts = std::to_string(c.failures) + Tr(" of ", " из ") + std::to_string(c.points);
        err.Put(Russian() ? "mapwright: не удалось преобразовать точек: " + counts + "\n"
                          : "mapwright: " + counts + " points could not be converted\n");
        status = kExitData;
    }
    err.Flush();
    return status;
}

}  // namespace mwcli
