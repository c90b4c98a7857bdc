#include "point_line.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "text.h"

namespace mwcli {

namespace {

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

std::string LayoutText(int kind, bool lonFirst, bool zoneFirst) {
    const Layout l = LayoutOf(kind, lonFirst);
    std::string text = zoneFirst ? Tr("[zone] ", "[зона] ") : "";
    for (int i = 0; i < 3; ++i) {
        if (i > 0) text += ' ';
        const char* name = Russian() ? kRoleNames[l.roles[i]].russian : kRoleNames[l.roles[i]].english;
        text += i < l.required ? std::string(name) : std::string("[") + name + "]";
    }
    return text;
}

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}
bool IsSeparator(char c) {
    return c == ' ' || c == '\t' || c == ',';
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Blanks with at most one comma among them.
const char* SkipSeparators(const char* p, const char* end) {
    while (p < end && IsBlank(*p)) ++p;
    if (p < end && *p == ',') {
        ++p;
        while (p < end && IsBlank(*p)) ++p;
    }
    return p;
}
const char* SkipBlanks(const char* p, const char* end) {
    while (p < end && IsBlank(*p)) ++p;
    return p;
}

std::string_view TokenAt(const char* p, const char* end) {
    const char* q = p;
    while (q < end && !IsSeparator(*q)) ++q;
    return {p, static_cast<size_t>(q - p)};
}

// A decimal number at p; q is where it ends.
bool ReadDecimal(const char* p, const char* end, double& value, const char*& q) {
    if (p < end && *p == '+') ++p;  // from_chars takes no plus sign
    const auto r = std::from_chars(p, end, value);
    q = r.ptr;
    return r.ec == std::errc();
}

// "55,7558": a comma between digits after a number without a point is a
// decimal comma, which the tool does not read (the comma separates numbers).
// On one, `out` says so and names "55,7558".
bool DecimalCommaAfter(const char* start, const char* q, const char* end, PointLine& out) {
    if (q + 1 >= end || *q != ',' || !IsDigit(q[1])) return false;
    for (const char* c = start; c < q; ++c)
        if (*c == '.' || *c == 'e' || *c == 'E') return false;
    for (++q; q < end && IsDigit(*q);) ++q;
    out.problem = Problem::DecimalComma;
    out.token = std::string_view(start, static_cast<size_t>(q - start));
    return true;
}

bool IsLatitudeLetter(char c) {
    return c == 'N' || c == 'S' || c == 'n' || c == 's';
}
bool IsLongitudeLetter(char c) {
    return c == 'E' || c == 'W' || c == 'e' || c == 'w';
}
bool IsHemisphereLetter(char c) {
    return IsLatitudeLetter(c) || IsLongitudeLetter(c);
}

// The length of `mark` at p, or 0.
size_t MarkAt(const char* p, const char* end, std::string_view mark) {
    return static_cast<size_t>(end - p) >= mark.size() && std::string_view(p, mark.size()) == mark ? mark.size()
                                                                                                    : 0;
}
// The marks after degrees, minutes and seconds, longest first: the degree
// sign in UTF-8 and as the library writes it (byte B0), the masculine
// ordinal people type for it, primes, apostrophes, quotes and letters.
constexpr std::string_view kDegreeMarks[] = {"\xC2\xB0", "\xC2\xBA", "\xB0", "d"};
constexpr std::string_view kMinuteMarks[] = {"\xE2\x80\xB2", "'", "m"};
constexpr std::string_view kSecondMarks[] = {"\xE2\x80\xB3", "''", "\"", "s"};
template <size_t N>
size_t AnyMarkAt(const char* p, const char* end, const std::string_view (&marks)[N]) {
    for (std::string_view m : marks)
        if (size_t n = MarkAt(p, end, m)) return n;
    return 0;
}

// An unsigned number at p followed by the mark of its place, after blanks.
bool ReadMarkedPart(const char*& p, const char* end, double& value, const std::string_view* marks, size_t count) {
    const char* q = SkipBlanks(p, end);
    if (q == end || !IsDigit(*q)) return false;
    const char* after;
    if (!ReadDecimal(q, end, value, after)) return false;
    for (size_t i = 0; i < count; ++i)
        if (size_t n = MarkAt(after, end, marks[i])) {
            p = after + n;
            return true;
        }
    return false;
}

// A hemisphere letter standing alone at p (after blanks); where it ends.
const char* LetterAt(const char* p, const char* end) {
    const char* l = SkipBlanks(p, end);
    if (l < end && IsHemisphereLetter(*l) && (l + 1 == end || IsSeparator(l[1]))) return l;
    return nullptr;
}

// "55 45 20.88 N": numbers separated by blanks are minutes and seconds only
// when a letter of this axis ends them; otherwise they are the next columns.
int BlankSeparatedParts(const char* p, const char* end, bool latitude, double parts[3], const char*& stop) {
    double found[3] = {parts[0], 0, 0};
    for (int count = 1; count < 3; ++count) {
        const char* q = SkipBlanks(p, end);
        if (q == p || q == end || !IsDigit(*q)) return 1;
        const char* after;
        if (!ReadDecimal(q, end, found[count], after)) return 1;
        // A letter glued on ("20.88N") or after blanks.
        const char* l = (after < end && IsHemisphereLetter(*after) && (after + 1 == end || IsSeparator(after[1])))
                            ? after
                            : LetterAt(after, end);
        if (l) {
            if (latitude ? !IsLatitudeLetter(*l) : !IsLongitudeLetter(*l)) return 1;
            std::copy(found, found + 3, parts);
            stop = after;
            return count + 1;
        }
        if (after < end && !IsBlank(*after)) return 1;
        p = after;
    }
    return 1;
}

// One angle: decimal degrees, or degrees, minutes and seconds as
// "55 45 20.88 N", "55°45'20.88\"N", "55:45:20.88N", "55d45m20.88s N" or the
// library's "055° 45' 20.88'' N"; then a hemisphere letter, which negates as
// the library's reader does: S and W flip the typed sign.
bool ReadAngle(const char*& p, const char* end, Role role, double& value, PointLine& out) {
    const bool latitude = role == kLatitude;
    const char* start = p;
    const bool negative = p < end && *p == '-';
    double parts[3] = {0, 0, 0};
    int count = 1;
    const char* q;
    if (!ReadDecimal(p, end, parts[0], q)) {
        out.problem = p < end ? Problem::Unreadable : Problem::Missing;
        out.token = TokenAt(p, end);
        return false;
    }
    if (DecimalCommaAfter(start, q, end, out)) return false;
    const size_t degreeMark = AnyMarkAt(q, end, kDegreeMarks);
    if (degreeMark) {
        q += degreeMark;
        if (ReadMarkedPart(q, end, parts[1], kMinuteMarks, std::size(kMinuteMarks))) {
            count = 2;
            if (ReadMarkedPart(q, end, parts[2], kSecondMarks, std::size(kSecondMarks))) count = 3;
        }
    } else if (q < end && *q == ':') {
        for (count = 1; count < 3 && q < end && *q == ':'; ++count)
            if (!ReadDecimal(q + 1, end, parts[count], q)) {
                out.problem = Problem::BadDms;
                out.token = TokenAt(start, end);
                return false;
            }
    } else if (q < end && IsBlank(*q)) {
        const char* stop = q;
        count = BlankSeparatedParts(q, end, latitude, parts, stop);
        q = stop;
    }
    if (!std::isfinite(parts[0])) {
        out.problem = Problem::NotFinite;
        out.token = TokenAt(start, end);
        return false;
    }
    // The hemisphere letter: glued on or after blanks, standing alone.
    const char* l = (q < end && IsHemisphereLetter(*q) && (q + 1 == end || IsSeparator(q[1]))) ? q : LetterAt(q, end);
    const char* stop = l ? l + 1 : q;
    out.token = std::string_view(start, static_cast<size_t>(stop - start));
    if (l && (latitude ? IsLongitudeLetter(*l) : IsLatitudeLetter(*l))) {
        out.problem = Problem::OtherAxis;
        out.token = std::string_view(l, 1);
        return false;
    }
    if (!l && q < end && !IsSeparator(*q)) {
        out.problem = count > 1 || degreeMark ? Problem::BadDms : Problem::Unreadable;
        out.token = TokenAt(start, end);
        return false;
    }
    if (count > 1) {
        // Whole degrees (and minutes before seconds); minutes and seconds below 60.
        const bool ok = parts[0] == std::floor(parts[0]) && parts[1] >= 0 && parts[1] < 60 &&
                        (count == 2 || (parts[1] == std::floor(parts[1]) && parts[2] >= 0 && parts[2] < 60));
        if (!ok) {
            out.problem = Problem::BadDms;
            return false;
        }
    }
    value = std::fabs(parts[0]) + parts[1] / 60 + parts[2] / 3600;
    if (negative) value = -value;
    if (l && (*l == 'S' || *l == 's' || *l == 'W' || *l == 'w')) value = -value;
    p = stop;
    return true;
}

bool ReadNumber(const char*& p, const char* end, double& value, PointLine& out) {
    const char* q;
    out.token = TokenAt(p, end);
    if (ReadDecimal(p, end, value, q) && DecimalCommaAfter(p, q, end, out)) return false;
    if (!ReadDecimal(p, end, value, q) || (q < end && !IsSeparator(*q))) {
        out.problem = p < end ? Problem::Unreadable : Problem::Missing;
        return false;
    }
    if (!std::isfinite(value)) {
        out.problem = Problem::NotFinite;
        return false;
    }
    p = q;
    return true;
}

// "37n", "7S": a UTM zone and hemisphere in front of the numbers.
bool ReadZonePrefix(const char*& p, const char* end, PointLine& out) {
    const char* q = p;
    int zone = 0, digits = 0;
    while (q < end && IsDigit(*q) && digits < 3) {
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
    out.south = *q == 's' || *q == 'S';
    p = q + 1;
    return true;
}

// Text after the coordinates that could be one more of them: a number, an
// angle's mark or a lone hemisphere letter. Taking it as a comment would
// hide a line read wrongly ("55 45 20.88 37 37 2.28").
bool StartsLikeACoordinate(std::string_view rest) {
    if (rest.empty()) return false;
    const char* p = rest.data();
    const char* end = p + rest.size();
    if (LetterAt(p, end) == p) return true;
    if (*p == '+' || *p == '-' || *p == '.') ++p;
    return p < end && (IsDigit(*p) || MarkAt(p, end, kDegreeMarks[0]) || *p == '\xB0');
}

}  // namespace

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

Layout LayoutOf(int kind, bool lonFirst) {
    if (kind == Geographic)
        return lonFirst ? Layout{{kLongitude, kLatitude, kHeight}, 2} : Layout{{kLatitude, kLongitude, kHeight}, 2};
    if (kind == Cartesian) return {{kX, kY, kZ}, 3};
    return {{kEasting, kNorthing, kHeight}, 2};
}

bool ParsePointLine(std::string_view line, int kind, const Layout& layout, PointLine& out) {
    const char* p = line.data();
    const char* end = p + line.size();
    out = PointLine{};
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
            if (p < end && ReadDecimal(p, end, h, q) && (q == end || IsSeparator(*q)) && std::isfinite(h)) {
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
        const bool angle = role == kLatitude || role == kLongitude;
        if (!(angle ? ReadAngle(p, end, role, field, out) : ReadNumber(p, end, field, out))) return false;
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
    if (StartsLikeACoordinate(out.rest)) {
        out.problem = Problem::Leftover;
        out.token = TokenAt(p, end);
        return false;
    }
    return true;
}

std::string DescribeProblem(const PointLine& r, int kind, bool lonFirst) {
    const RoleName& n = kRoleNames[r.role];
    const std::string token(r.token);
    const std::string object = Russian() ? n.russianObject : std::string("the ") + n.english;
    const std::string cannot = std::string(Tr("cannot read ", "не удаётся прочитать ")) + object + Tr(" from ", " из ");
    switch (r.problem) {
        case Problem::Missing:
            return Russian() ? std::string("нет ") + n.russianOf +
                                   " (ожидается: " + LayoutText(kind, lonFirst, kind == UTM) + ")"
                             : std::string("missing the ") + n.english +
                                   " (expected: " + LayoutText(kind, lonFirst, kind == UTM) + ")";
        case Problem::Unreadable: return cannot + Quoted(token);
        case Problem::NotFinite:
            return cannot + Quoted(token) + Tr(" (not a finite number)", " (не конечное число)");
        case Problem::DecimalComma:
            return cannot + Quoted(token) +
                   Tr(": a comma separates numbers; write decimals with a point (55.7558)",
                      ": запятая разделяет числа; дробную часть отделяйте точкой (55.7558)");
        case Problem::LatitudeRange: return Tr("the latitude is outside -90..90", "широта вне пределов -90..90");
        case Problem::LongitudeRange: return Tr("the longitude is outside -540..540", "долгота вне пределов -540..540");
        case Problem::OtherAxis:
            return Quoted(token) +
                   (Russian() ? std::string(" после ") + n.russianOf : std::string(" after the ") + n.english) +
                   Tr(" is a letter of the other axis (for longitude first use -w)",
                      " относится к другой оси (если долгота идёт первой, укажите -w)");
        case Problem::BadDms:
            return cannot + Quoted(token) +
                   Tr("; degrees, minutes and seconds are written as 55 45 20.5 N, 55\u00b045'20.5\"N or "
                      "55:45:20.5N",
                      "; градусы, минуты и секунды записываются как 55 45 20.5 N, 55\u00b045'20.5\"N или "
                      "55:45:20.5N");
        case Problem::Leftover:
            return std::string(Tr("the text after the coordinates starts like one more: ",
                                  "текст после координат похож на ещё одну: ")) +
                   Quoted(token) +
                   Tr(" (degrees, minutes and seconds separated by blanks need a hemisphere letter: 55 45 20.5 N)",
                      " (градусы, минуты и секунды через пробел требуют буквы полушария: 55 45 20.5 N)");
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

}  // namespace mwcli
