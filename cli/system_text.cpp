#include "system_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <map>
#include <optional>

#include "refsys/kinds.h"
#include "text.h"

namespace mwcli {

namespace {

// UPS is polar stereographic with fixed parameters: a kind of the tool only.
constexpr int kUpsWord = 8;
constexpr int32_t kUpsFalseOrigin = 2000000;

struct KindName {
    const char* word;
    int kind;
};
// The first word of each kind is its keyword; the others are accepted too.
constexpr KindName kKindNames[] = {
    {"geographic", Geographic},
    {"geo", Geographic},
    {"latlon", Geographic},
    {"utm", UTM},
    {"gk", GaussKruger},
    {"gauss-kruger", GaussKruger},
    {"tm", TransverseMercator},
    {"tmerc", TransverseMercator},
    {"transverse-mercator", TransverseMercator},
    {"mercator", Mercator},
    {"merc", Mercator},
    {"ps", PolarStereographic},
    {"stere", PolarStereographic},
    {"polar-stereographic", PolarStereographic},
    {"ups", kUpsWord},
    {"cartesian", Cartesian},
    {"geocentric", Cartesian},
    {"ecef", Cartesian},
};

enum Param { kZone, kNorth, kSouth, kScale, kLon0, kLat0, kLatTs, kFe, kFn, kDatum, kParamCount };

constexpr const char* kParamNames[kParamCount] = {"zone", "north",  "south", "k",  "lon0",
                                                  "lat0", "lat_ts", "fe",    "fn", "datum"};

// PROJ spellings of the same parameters.
constexpr struct {
    const char* alias;
    Param param;
} kAliases[] = {{"lon_0", kLon0}, {"lat_0", kLat0}, {"k_0", kScale}, {"k0", kScale}, {"x_0", kFe}, {"y_0", kFn}};

// What each kind takes, in the order the help and the messages give them.
const std::vector<Param>& ParamsOf(int kind) {
    static const std::vector<Param> kTable[9] = {
        {},
        {kDatum},
        {kZone, kNorth, kSouth, kDatum},
        {kZone, kLon0, kLat0, kFe, kFn, kDatum},
        {kScale, kLon0, kLat0, kFe, kFn, kDatum},
        {kLon0, kLatTs, kFe, kFn, kDatum},
        {kLatTs, kLon0, kFe, kFn, kDatum},
        {kDatum},
        {kNorth, kSouth, kDatum},
    };
    return kTable[kind];
}

std::string ExpectedForm(Param p, int kind) {
    switch (p) {
        case kZone: return kind == UTM ? "zone=1..60|auto" : "zone=1..60";
        case kNorth: return "north";
        case kSouth: return "south";
        case kScale: return "k=SCALE";
        case kLon0: return Tr("lon0=DEGREES", "lon0=ГРАДУСЫ");
        case kLat0: return Tr("lat0=DEGREES", "lat0=ГРАДУСЫ");
        case kLatTs: return Tr("lat_ts=DEGREES", "lat_ts=ГРАДУСЫ");
        case kFe: return Tr("fe=METRES", "fe=МЕТРЫ");
        case kFn: return Tr("fn=METRES", "fn=МЕТРЫ");
        case kDatum: return Tr("datum=NAME|INDEX", "datum=НАЗВАНИЕ|НОМЕР");
        default: return "";
    }
}

std::string ExpectedList(int kind) {
    std::vector<std::string> forms;
    for (Param p : ParamsOf(kind)) forms.push_back(ExpectedForm(p, kind));
    return JoinAlternatives(forms);
}

std::string KindList() {
    std::vector<std::string> words;
    for (int k = Geographic; k <= Cartesian; ++k) words.push_back(KindKeyword(k));
    words.insert(words.end() - 1, "ups");
    return JoinAlternatives(words);
}

std::string Lower(std::string_view s) {
    std::string out(s);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    return out;
}

// Blank-separated words; a quoted stretch ("..." or '...') belongs to its
// word and loses its quotes: datum="Pulkovo 1942" is one word.
std::vector<std::string> Words(std::string_view text) {
    std::vector<std::string> words;
    size_t i = 0;
    while (i < text.size()) {
        while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
        if (i == text.size()) break;
        std::string word;
        while (i < text.size() && text[i] != ' ' && text[i] != '\t') {
            const char c = text[i++];
            if (c == '"' || c == '\'') {
                const size_t close = text.find(c, i);
                if (close == std::string_view::npos)
                    throw Error(std::string(Tr("unclosed quote in the system ", "незакрытая кавычка в системе ")) +
                                Quoted(text));
                word.append(text.substr(i, close - i));
                i = close + 1;
            } else {
                word += c;
            }
        }
        words.push_back(std::move(word));
    }
    return words;
}

std::optional<double> Number(std::string_view s) {
    if (!s.empty() && s.front() == '+') s.remove_prefix(1);
    double v = 0;
    const auto r = std::from_chars(s.data(), s.data() + s.size(), v);
    if (r.ec != std::errc() || r.ptr != s.data() + s.size() || !std::isfinite(v)) return std::nullopt;
    return v;
}

[[noreturn]] void BadValue(const std::string& word, const std::string& expected) {
    throw Error(Quoted(word) + Tr(": expected ", ": ожидается ") + expected);
}

double Degrees(const std::string& word, std::string_view value, double lo, double hi) {
    const std::optional<double> v = Number(value);
    if (!v || *v < lo || *v > hi)
        BadValue(word, std::string(Tr("decimal degrees from ", "десятичные градусы от ")) + ShortNumber(lo) +
                           Tr(" to ", " до ") + ShortNumber(hi));
    return *v;
}

int32_t Metres(const std::string& word, std::string_view value) {
    const std::optional<double> v = Number(value);
    // The library holds false eastings and northings as whole metres in 32 bits.
    if (!v || *v != std::floor(*v) || std::fabs(*v) > 2147483647.0)
        BadValue(word, Tr("whole metres (an integer)", "целое число метров"));
    return static_cast<int32_t>(*v);
}

int Zone(const std::string& word, std::string_view value, bool autoAllowed) {
    if (autoAllowed && Lower(value) == "auto") return 0;
    const std::optional<double> v = Number(value);
    if (!v || *v != std::floor(*v) || *v < 1 || *v > 60)
        BadValue(word, autoAllowed ? Tr("a zone number 1..60 or auto", "номер зоны 1..60 или auto")
                                   : Tr("a zone number 1..60", "номер зоны 1..60"));
    return static_cast<int>(*v);
}

// Gauss-Kruger zone n: central meridian 6n - 3 (east of Greenwich up to zone
// 30, then west), the zone number in front of the 500 km false easting.
double GkZoneMeridian(int zone) {
    const int lon = 6 * zone - 3;
    return lon > 180 ? lon - 360 : lon;
}
int32_t GkZoneFalseEasting(int zone) {
    return zone * 1000000 + 500000;
}

}  // namespace

const char* KindKeyword(int kind) {
    static const char* const kKeywords[9] = {"",   "geographic", "utm",       "gk", "tm",
                                             "mercator", "ps",         "cartesian", "ups"};
    return kind >= Geographic && kind <= kUpsWord ? kKeywords[kind] : "";
}

namespace {

// The kind the first word names (kUpsWord for ups).
int ParseKind(const std::string& word) {
    const std::string lower = Lower(word);
    for (const KindName& k : kKindNames)
        if (lower == k.word) return k.kind;
    std::string message = std::string(Tr("unknown kind ", "неизвестный вид ")) + Quoted(word);
    std::vector<std::string> all;
    for (const KindName& k : kKindNames) all.push_back(k.word);
    if (const auto near = Nearest(word, all, 1); !near.empty())
        message += std::string(Tr(" (did you mean ", " (может быть, ")) + Quoted(near[0]) + "?)";
    throw Error(message + Tr("; expected ", "; ожидается ") + KindList());
}

// The parameters after the kind: each value, and each word as written for messages.
struct Given {
    std::map<Param, std::string> value, word;
    bool has(Param p) const { return value.count(p) != 0; }
};

Given ParseParams(const std::vector<std::string>& words, int kind) {
    Given given;
    for (size_t i = 1; i < words.size(); ++i) {
        const std::string& word = words[i];
        const size_t eq = word.find('=');
        const std::string name = Lower(word.substr(0, eq));
        int param = -1;
        for (int p = 0; p < kParamCount; ++p)
            if (name == kParamNames[p]) param = p;
        for (const auto& a : kAliases)
            if (name == a.alias) param = a.param;
        bool ok = false;
        for (Param p : ParamsOf(kind)) ok = ok || p == param;
        if (!ok)
            throw Error(std::string(KindKeyword(kind)) + Tr(" does not take ", " не принимает ") + Quoted(word) +
                        Tr("; expected ", "; ожидается ") + ExpectedList(kind));
        const auto p = static_cast<Param>(param);
        const bool flag = p == kNorth || p == kSouth;
        if (flag != (eq == std::string::npos))
            throw Error(Quoted(word) + Tr(": expected ", ": ожидается ") + ExpectedForm(p, kind));
        if (given.has(p))
            throw Error(std::string(Tr("the system gives ", "в системе дважды задан ")) + Quoted(name) +
                        Tr(" twice", ""));
        given.value[p] = flag ? "" : word.substr(eq + 1);
        given.word[p] = word;
    }
    return given;
}

// The datum and the parameters every kind reads the same way.
void ApplyCommon(const Given& g, const std::vector<DatumEntry>& datums, SystemDef& def) {
    if (g.has(kDatum))
        def.datum = FindDatum(datums, g.value.at(kDatum)).index;
    else if (!DatumByIndex(datums, def.datum))
        throw Error(Tr("the default datum 3 is not in the catalog; give datum=",
                       "датума 3 (по умолчанию) нет в каталоге; укажите datum="));
    if (g.has(kScale)) {
        const std::optional<double> k = Number(g.value.at(kScale));
        if (!k || *k <= 0) BadValue(g.word.at(kScale), Tr("a positive scale factor", "положительный масштаб"));
        def.scale = *k;
    }
    if (g.has(kLon0)) def.lon0 = Degrees(g.word.at(kLon0), g.value.at(kLon0), -180, 180);
    if (g.has(kLat0)) def.lat0 = Degrees(g.word.at(kLat0), g.value.at(kLat0), -90, 90);
    if (g.has(kFe)) def.fe = Metres(g.word.at(kFe), g.value.at(kFe));
    if (g.has(kFn)) def.fn = Metres(g.word.at(kFn), g.value.at(kFn));
}

void ApplyGaussKruger(const Given& g, SystemDef& def) {
    if (!g.has(kZone)) {
        if (!g.has(kLon0))
            throw Error(Tr("gk needs zone=1..60 or lon0=DEGREES", "для gk нужен zone=1..60 или lon0=ГРАДУСЫ"));
        return;
    }
    const int zone = Zone(g.word.at(kZone), g.value.at(kZone), false);
    if (g.has(kLon0) && def.lon0 != GkZoneMeridian(zone))
        throw Error(Quoted(g.word.at(kZone)) + Tr(" and ", " и ") + Quoted(g.word.at(kLon0)) +
                    Tr(" disagree: zone ", " не согласуются: меридиан зоны ") + std::to_string(zone) +
                    Tr(" has its meridian at ", " равен ") + ShortNumber(GkZoneMeridian(zone)));
    def.lon0 = GkZoneMeridian(zone);
    if (!g.has(kFe)) def.fe = GkZoneFalseEasting(zone);
}

// The latitude of true scale of Mercator and polar stereographic.
void ApplyTrueScale(const Given& g, SystemDef& def) {
    if (def.kind == Mercator) {
        if (!g.has(kLatTs)) return;
        def.lat0 = Degrees(g.word.at(kLatTs), g.value.at(kLatTs), -90, 90);
        if (std::fabs(def.lat0) == 90)
            BadValue(g.word.at(kLatTs), Tr("a latitude between the poles", "широта между полюсами"));
        return;
    }
    if (!g.has(kLatTs))
        throw Error(Tr("ps needs lat_ts=DEGREES (positive for the north pole, negative for the south pole)",
                       "для ps нужен lat_ts=ГРАДУСЫ (положительный у северного полюса, отрицательный у южного)"));
    def.lat0 = Degrees(g.word.at(kLatTs), g.value.at(kLatTs), -90, 90);
    if (def.lat0 == 0)
        BadValue(g.word.at(kLatTs),
                 Tr("a latitude other than 0 (its sign picks the pole)", "широта, отличная от 0 (знак выбирает полюс)"));
}

}  // namespace

SystemDef ParseSystem(std::string_view text, const std::vector<DatumEntry>& datums) {
    const std::vector<std::string> words = Words(text);
    if (words.empty())
        throw Error(std::string(Tr("empty system; expected a kind: ", "пустая система; ожидается вид: ")) + KindList());
    SystemDef def;
    def.kind = ParseKind(words[0]);
    const Given given = ParseParams(words, def.kind);
    ApplyCommon(given, datums, def);
    switch (def.kind) {
        case UTM:
            if (given.has(kNorth) && given.has(kSouth))
                throw Error(Tr("utm takes north or south, not both", "utm принимает north или south, но не оба"));
            def.fe = given.has(kSouth) ? -1 : 1;
            def.fn = given.has(kZone) ? Zone(given.word.at(kZone), given.value.at(kZone), true) : 0;
            break;
        case GaussKruger: ApplyGaussKruger(given, def); break;
        case Mercator:
        case PolarStereographic: ApplyTrueScale(given, def); break;
        case kUpsWord:
            if (given.has(kNorth) == given.has(kSouth))
                throw Error(Tr("ups takes north or south", "ups принимает north или south"));
            def = SystemDef{.kind = PolarStereographic,
                            .datum = def.datum,
                            .lat0 = given.has(kSouth) ? -90.0 : 90.0,
                            .fe = kUpsFalseOrigin,
                            .fn = kUpsFalseOrigin,
                            .ups = true};
            break;
        default: break;
    }
    return def;
}

double UpsLatitudeOfTrueScale(double e2) {
    // The library's scale at the pole for a latitude of true scale phi:
    // m(phi) / t(phi) * sqrt((1+e)^(1+e) (1-e)^(1-e)) / 2, rising to 1 at the
    // pole; bisection finds where it is 0.994.
    const double e = std::sqrt(e2), halfPi = 1.5707963267948966;
    const double c = std::sqrt(std::pow(1 + e, 1 + e) * std::pow(1 - e, 1 - e)) / 2;
    auto scale = [&](double phi) {
        const double s = std::sin(phi);
        const double t = std::pow((1 + e * s) / (1 - e * s), e / 2) * std::tan((halfPi - phi) / 2);
        return std::cos(phi) / std::sqrt(1 - e2 * s * s) / t * c;
    };
    double lo = 1.0, hi = halfPi;
    for (int i = 0; i < 200 && hi - lo > 1e-16; ++i) (scale((lo + hi) / 2) < 0.994 ? lo : hi) = (lo + hi) / 2;
    return (lo + hi) / 2 * 57.29577951308232;
}

namespace {

double EccentricitySquared(CGeoReferenceData& system) {
    double ellipsoid[2];
    short values[6];
    system.GetGeoInfoA(ellipsoid, values);
    const double f = ellipsoid[1] > 0 ? 1 / ellipsoid[1] : 0;
    return (2 - f) * f;
}

}  // namespace

void MakeSystem(const SystemDef& def, CGeoReferenceData& out) {
    out.CreateGeoInfo(def.kind, def.datum);
    void* block = out.GetParam();
    if (!block) throw Error("no parameter block");  // CreateGeoInfo refused the kind: a bug of ours
    if (mw::TakesParams(def.kind)) {
        mw::BlockParams p{.scale = def.kind == GaussKruger ? 1.0 : def.scale,
                          .c_lon = def.lon0,
                          .lat_origin = def.lat0,
                          .fe = def.fe,
                          .fn = def.fn};
        if (def.ups) p.lat_origin = std::copysign(UpsLatitudeOfTrueScale(EccentricitySquared(out)), def.lat0);
        mw::WriteBlock(def.kind, p, block);
    }
    CheckCatalogEntries(out, "");
}

SystemDef DefOf(CGeoReferenceData& system) {
    SystemDef def;
    def.kind = system.GetProjection();
    def.datum = system.GetDatum();
    const void* block = system.GetParam();
    if (!block || !mw::TakesParams(def.kind)) return def;
    const mw::BlockParams p = mw::ReadBlock(def.kind, block);
    def.scale = p.ScaleFor(def.kind);
    def.lon0 = p.c_lon;
    def.lat0 = p.lat_origin;
    def.fe = def.kind == UTM ? (p.UtmSouth() ? -1 : 1) : p.fe;
    def.fn = p.fn;
    // UPS as saved: its latitude of true scale kept to six decimals.
    def.ups = def.kind == PolarStereographic && def.fe == kUpsFalseOrigin && def.fn == kUpsFalseOrigin &&
              def.lon0 == 0 &&
              std::fabs(std::fabs(def.lat0) - UpsLatitudeOfTrueScale(EccentricitySquared(system))) < 1e-5;
    return def;
}

void CheckCatalogEntries(CGeoReferenceData& system, const std::string& where) {
    const std::vector<DatumEntry> datums = ReadDatums();
    const std::string prefix = where.empty() ? "" : where + ": ";
    const DatumEntry* datum = DatumByIndex(datums, system.GetDatum());
    if (!datum)
        throw Error(prefix + Tr("datum index ", "номера датума ") + std::to_string(system.GetDatum()) +
                    Tr(" is not in the datum catalog", " нет в каталоге датумов"));
    const std::vector<EllipsoidEntry> ellipsoids = ReadEllipsoids();
    double geo[2];
    short values[6];
    system.GetGeoInfoA(geo, values);
    if (!EllipsoidOf(ellipsoids, *datum) || !(geo[0] > 0) || !std::isfinite(geo[1]))
        throw Error(prefix + Tr("datum ", "датум ") + Quoted(datum->name) +
                    Tr(" refers to ellipsoid index ", " ссылается на эллипсоид номер ") + datum->ellipsoidText +
                    Tr(", which the ellipsoid catalog does not have (or holds no axis for)",
                       ", которого нет в каталоге эллипсоидов (или у него нет полуоси)"));
}

std::string SystemText(const SystemDef& def, const std::vector<DatumEntry>& datums) {
    std::string text = KindKeyword(def.kind);
    auto add = [&](const char* name, const std::string& value) { text += std::string(" ") + name + "=" + value; };
    switch (def.kind) {
        case UTM:
            if (def.UtmZoneFixed()) {
                add("zone", std::to_string(def.fn));
                text += def.UtmSouth() ? " south" : " north";
            } else {
                add("zone", "auto");
            }
            break;
        case GaussKruger: {
            // The zone form when the system is a standard zone.
            bool zoneForm = false;
            for (int zone = 1; zone <= 60 && !zoneForm; ++zone) {
                if (def.lon0 == GkZoneMeridian(zone) && def.fe == GkZoneFalseEasting(zone) && def.lat0 == 0 &&
                    def.fn == 0) {
                    add("zone", std::to_string(zone));
                    zoneForm = true;
                }
            }
            if (!zoneForm) {
                add("lon0", ShortNumber(def.lon0));
                add("lat0", ShortNumber(def.lat0));
                add("fe", std::to_string(def.fe));
                add("fn", std::to_string(def.fn));
            }
            break;
        }
        case TransverseMercator:
            add("k", ShortNumber(def.scale));
            add("lon0", ShortNumber(def.lon0));
            add("lat0", ShortNumber(def.lat0));
            add("fe", std::to_string(def.fe));
            add("fn", std::to_string(def.fn));
            break;
        case Mercator:
            add("lon0", ShortNumber(def.lon0));
            add("lat_ts", ShortNumber(def.lat0));
            add("fe", std::to_string(def.fe));
            add("fn", std::to_string(def.fn));
            break;
        case PolarStereographic:
            if (def.ups) {
                text = def.lat0 < 0 ? "ups south" : "ups north";
                break;
            }
            add("lat_ts", ShortNumber(def.lat0));
            add("lon0", ShortNumber(def.lon0));
            add("fe", std::to_string(def.fe));
            add("fn", std::to_string(def.fn));
            break;
        default: break;
    }
    // The name when it finds this very entry again; the index otherwise.
    const DatumEntry* byIndex = DatumByIndex(datums, def.datum);
    const DatumEntry* byName = nullptr;
    if (byIndex && byIndex->name.find_first_of("\"'") == std::string::npos) {
        for (const DatumEntry& d : datums)
            if (d.name == byIndex->name) byName = &d;
    }
    if (byName && byName->index == def.datum)
        add("datum", byName->name.find(' ') == std::string::npos ? byName->name : Quoted(byName->name));
    else
        add("datum", std::to_string(def.datum));
    return text;
}

std::string RegistryPath(std::string_view typed) {
    if (typed.find_first_not_of(" \t/\\") == std::string_view::npos)
        throw Error(std::string(Tr("an empty registry key ", "пустой ключ реестра ")) + Quoted(typed));
    std::string path = Ansi(typed);
    for (char& c : path)
        if (c == '/') c = '\\';
    return path;
}

std::string TypedKey(const std::string& path) {
    std::string typed = Utf8(path.c_str());
    std::replace(typed.begin(), typed.end(), '\\', '/');
    return typed;
}

bool RegistryKeyExists(const std::string& path) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
    RegCloseKey(key);
    return true;
}

namespace {

void CheckLoaded(CGeoReferenceData& system, const std::string& path) {
    const std::string where = Quoted(Utf8(path.c_str()));
    const int kind = system.GetProjection();
    if (!mw::IsKind(kind))
        throw Error(where + Tr(": the saved system has no valid projection kind (ProjectionIndex)",
                               ": у сохранённой системы нет допустимого вида проекции (ProjectionIndex)"));
    CheckCatalogEntries(system, where);
}

[[noreturn]] void NothingSaved(const std::string& path) {
    throw Error(std::string(Tr("nothing is saved under ", "под ключом ")) + Quoted(Utf8(path.c_str())) +
                Tr("", " ничего не сохранено"));
}

}  // namespace

void LoadSystem(std::string_view typedKey, CGeoReferenceData& out) {
    const std::string path = RegistryPath(typedKey);
    // LoadData takes a missing key for the defaults; a typing error must not.
    if (!RegistryKeyExists(path)) NothingSaved(path);
    out.LoadData(CString(path.c_str()));
    CheckLoaded(out, path);
}

void LoadPair(std::string_view typedBase, CGeoTransform& out) {
    const std::string base = RegistryPath(typedBase);
    for (const char* part : {"\\GeoData_fm", "\\GeoData_to"})
        if (!RegistryKeyExists(base + part)) NothingSaved(base + part);
    out.LoadData(base.c_str());
    CheckLoaded(*out.GetReferenceDataSource(), base + "\\GeoData_fm");
    CheckLoaded(*out.GetReferenceDataDest(), base + "\\GeoData_to");
}

const char* SystemSyntaxHelp() {
    return Tr(R"(SYSTEM is one argument (quote it for the shell): a kind, then its parameters
separated by blanks:

  geographic [datum=D]                        latitude and longitude
  utm [zone=1..60|auto] [north|south] [datum=D]
                                              zone=auto (the default): each
                                              point's own zone; south: false
                                              northing 10000000 m
  gk (zone=1..60 | lon0=DEG) [lat0=DEG] [fe=M] [fn=M] [datum=D]
                                              Gauss-Kruger (scale 1); zone=N
                                              means lon0=6N-3 and
                                              fe=N*1000000+500000
  tm [k=SCALE] [lon0=DEG] [lat0=DEG] [fe=M] [fn=M] [datum=D]
                                              Transverse Mercator
  mercator [lon0=DEG] [lat_ts=DEG] [fe=M] [fn=M] [datum=D]
  ps lat_ts=DEG [lon0=DEG] [fe=M] [fn=M] [datum=D]
                                              polar stereographic; the sign of
                                              lat_ts picks the pole, lon0 is
                                              the longitude below the pole
  ups north|south [datum=D]                   universal polar stereographic:
                                              scale 0.994 at the pole, false
                                              easting and northing 2000000
  cartesian [datum=D]                         geocentric X, Y, Z

D is a catalog index or a datum name as "mapwright datums" lists them, for
example datum=4 or datum="Pulkovo 1942"; the default is 3 (WGS 84 in the
shipped catalog). DEG are decimal degrees, M whole metres; what is not given
is 0 (k is 1). Also understood: geo, latlon, gauss-kruger, tmerc,
transverse-mercator, merc, stere, polar-stereographic, geocentric, ecef, and
PROJ's lon_0, lat_0, k_0, x_0, y_0.

Examples:
  'utm zone=37 north datum="Pulkovo 1942"'
  'gk zone=7 datum="Pulkovo 1942"'
  'tm k=0.9996 lon0=39 fe=500000 datum=3'
  'geographic datum="WGS 84"')",
              R"(SYSTEM — один аргумент (в кавычках для оболочки): вид, затем его параметры
через пробел:

  geographic [datum=D]                        широта и долгота
  utm [zone=1..60|auto] [north|south] [datum=D]
                                              zone=auto (по умолчанию): своя
                                              зона каждой точки; south: ложный
                                              сдвиг на север 10000000 м
  gk (zone=1..60 | lon0=DEG) [lat0=DEG] [fe=M] [fn=M] [datum=D]
                                              Гаусса-Крюгера (масштаб 1);
                                              zone=N значит lon0=6N-3 и
                                              fe=N*1000000+500000
  tm [k=SCALE] [lon0=DEG] [lat0=DEG] [fe=M] [fn=M] [datum=D]
                                              поперечная Меркатора
  mercator [lon0=DEG] [lat_ts=DEG] [fe=M] [fn=M] [datum=D]
  ps lat_ts=DEG [lon0=DEG] [fe=M] [fn=M] [datum=D]
                                              полярная стереографическая; знак
                                              lat_ts выбирает полюс, lon0 —
                                              долгота под полюсом
  ups north|south [datum=D]                   универсальная полярная
                                              стереографическая: масштаб 0.994
                                              на полюсе, сдвиги 2000000
  cartesian [datum=D]                         геоцентрические X, Y, Z

D — номер в каталоге или название датума, как их показывает "mapwright
datums", например datum=4 или datum="Pulkovo 1942"; по умолчанию 3 (WGS 84 в
поставляемом каталоге). DEG — десятичные градусы, M — целые метры; не
заданное равно 0 (k равно 1). Понимаются также geo, latlon, gauss-kruger,
tmerc, transverse-mercator, merc, stere, polar-stereographic, geocentric, ecef
и написания PROJ lon_0, lat_0, k_0, x_0, y_0.

Примеры:
  'utm zone=37 north datum="Pulkovo 1942"'
  'gk zone=7 datum="Pulkovo 1942"'
  'tm k=0.9996 lon0=39 fe=500000 datum=3'
  'geographic datum="WGS 84"')");
}

}  // namespace mwcli
