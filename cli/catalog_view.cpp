#include "catalog_view.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include <mapwright/mapwright.h>

#include "text.h"

namespace mwcli {

namespace {

// The library's end-of-list text: a missing key reads as this.
constexpr char kSentinel[] = "QQ";

std::string ReadKey(const std::string& file, int section, const char* key) {
    char name[32];
    std::snprintf(name, sizeof name, "Format %d", section);
    char value[1024];
    GetPrivateProfileStringA(name, key, kSentinel, value, sizeof value, file.c_str());
    return value;
}

bool AllDigits(std::string_view s) {
    return !s.empty() && s.find_first_not_of("0123456789") == std::string_view::npos;
}

std::vector<std::string> Names(const std::vector<DatumEntry>& datums) {
    std::vector<std::string> names;
    for (const DatumEntry& d : datums) names.push_back(d.name);
    return names;
}

}  // namespace

std::string DatumCatalogPath() {
    CGeoReferenceData probe;
    return probe.GetDatumFile()->GetString();
}

std::string EllipsoidCatalogPath() {
    CGeoReferenceData probe;
    return probe.GetEllipsFile()->GetString();
}

std::vector<DatumEntry> ReadDatums() {
    const std::string file = DatumCatalogPath();
    std::vector<DatumEntry> out;
    for (int n = 0;; ++n) {
        DatumEntry d{};
        d.indexText = ReadKey(file, n, "DatumIndex");
        if (d.indexText == kSentinel) break;
        d.index = std::atoi(d.indexText.c_str());
        d.name = Utf8(ReadKey(file, n, "DatumName").c_str());
        d.ellipsoidText = ReadKey(file, n, "EllipsoidIndex");
        static const char* const kKeys[6] = {"datumParam_0_0", "datumParam_0_1", "datumParam_0_2",
                                             "datumParam_1_0", "datumParam_1_1", "datumParam_1_2"};
        for (int i = 0; i < 6; ++i) d.values[i] = static_cast<int16_t>(std::atoi(ReadKey(file, n, kKeys[i]).c_str()));
        out.push_back(std::move(d));
    }
    return out;
}

std::vector<EllipsoidEntry> ReadEllipsoids() {
    const std::string file = EllipsoidCatalogPath();
    std::vector<EllipsoidEntry> out;
    for (int n = 0;; ++n) {
        EllipsoidEntry e{};
        e.indexText = ReadKey(file, n, "Index");
        if (e.indexText == kSentinel) break;
        e.index = std::atoi(e.indexText.c_str());
        e.name = Utf8(ReadKey(file, n, "EllipsName").c_str());
        e.a = std::strtod(ReadKey(file, n, "ellipsParam_0").c_str(), nullptr);
        e.rf = std::strtod(ReadKey(file, n, "ellipsParam_1").c_str(), nullptr);
        out.push_back(std::move(e));
    }
    return out;
}

const DatumEntry* DatumByIndex(const std::vector<DatumEntry>& datums, int index) {
    // The library looks for the index written with "%d" and keeps the last match.
    const std::string wanted = std::to_string(index);
    const DatumEntry* found = nullptr;
    for (const DatumEntry& d : datums)
        if (d.indexText == wanted) found = &d;
    return found;
}

const EllipsoidEntry* EllipsoidOf(const std::vector<EllipsoidEntry>& ellipsoids, const DatumEntry& datum) {
    const EllipsoidEntry* found = nullptr;
    for (const EllipsoidEntry& e : ellipsoids)
        if (e.indexText == datum.ellipsoidText) found = &e;
    return found;
}

const EllipsoidEntry* EllipsoidByName(const std::vector<EllipsoidEntry>& ellipsoids, std::string_view name) {
    const EllipsoidEntry* found = nullptr;
    for (const EllipsoidEntry& e : ellipsoids)
        if (e.name == name) found = &e;
    return found;
}

const DatumEntry& FindDatum(const std::vector<DatumEntry>& datums, std::string_view value) {
    const std::string listHint =
        Tr("\"mapwright datums\" lists the catalog", "список каталога выводит \"mapwright datums\"");
    if (AllDigits(value)) {
        const int index = value.size() > 9 ? -1 : std::atoi(std::string(value).c_str());
        if (const DatumEntry* d = index >= 0 ? DatumByIndex(datums, index) : nullptr) return *d;
        throw Error(std::string(Tr("datum index ", "номера датума ")) + std::string(value) +
                    Tr(" is not in the catalog; ", " нет в каталоге; ") + listHint);
    }
    // Exact spelling first; of duplicates the last answers, as in the library.
    const DatumEntry* exact = nullptr;
    for (const DatumEntry& d : datums)
        if (d.name == value) exact = &d;
    if (exact) return *exact;

    const std::string folded = FoldName(value);
    std::vector<const DatumEntry*> loose;
    for (const DatumEntry& d : datums)
        if (FoldName(d.name) == folded) loose.push_back(&d);
    if (loose.size() == 1) return *loose.front();
    if (loose.size() > 1) {
        std::vector<std::string> which;
        for (const DatumEntry* d : loose) which.push_back(Quoted(d->name) + " (" + d->indexText + ")");
        throw Error(std::string(Tr("datum ", "датум ")) + Quoted(value) +
                    Tr(" matches several entries: ", " подходит к нескольким записям: ") + JoinAlternatives(which) +
                    Tr("; give the index", "; укажите номер"));
    }

    std::string message = std::string(Tr("unknown datum ", "неизвестный датум ")) + Quoted(value);
    const std::vector<std::string> near = Nearest(value, Names(datums), 3);
    if (!near.empty()) {
        std::vector<std::string> quoted;
        for (const std::string& n : near) quoted.push_back(Quoted(n));
        message += std::string(Tr(" (did you mean ", " (может быть, ")) + JoinAlternatives(quoted) + "?)";
    }
    message += Tr("; expected a catalog index or a datum name as \"mapwright datums\" lists them",
                  "; ожидается номер или название датума из каталога (см. \"mapwright datums\")");
    throw Error(message);
}

}  // namespace mwcli
