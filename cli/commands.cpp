#include "commands.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include <mapwright/mapwright.h>

#include "catalog_view.h"
#include "system_text.h"
#include "text.h"

namespace mwcli {

namespace {

void Print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

size_t WidestName(const std::vector<std::string>& names, size_t header) {
    size_t width = header;
    for (const std::string& n : names) width = std::max(width, DisplayWidth(n));
    return width;
}

// The labels of `system show` and `pair show`, aligned on the widest; made
// on each call, since the language may change within a process.
std::vector<std::string> Labels() {
    return {Tr("Projection:", "Проекция:"), Tr("Parameters:", "Параметры:"), Tr("Datum:", "Датум:"),
            Tr("Ellipsoid:", "Эллипсоид:"), Tr("System:", "Система:"),       Tr("Key:", "Ключ:")};
}
size_t LabelWidth() {
    return WidestName(Labels(), 0) + 1;
}

// One labelled block: the library's names in the user-interface language,
// and the SYSTEM text that gives this system back.
std::string SystemBlock(CGeoReferenceData& system, const std::string& indent) {
    const std::vector<DatumEntry> datums = ReadDatums();
    const std::vector<std::string> labels = Labels();
    const size_t width = LabelWidth();
    std::string block;
    auto line = [&](size_t label, const std::string& value) {
        block += indent + PadRight(labels[label], width) + value + "\n";
    };

    // The display name, and the English one (the name hosts key on) when
    // the two differ.
    CString text, english;
    system.GetProjectionName(text);
    system.GetEnProjectionName(english);
    line(0, Utf8(text) + (english != text ? " (" + Utf8(english) + ")" : ""));

    text.Empty();
    system.GetParamName(text);
    // The library's summary breaks its line after the latitude and ends in
    // ", "; shown here one piece a line, under its label.
    std::string params = Utf8(text);
    while (!params.empty() && (params.back() == ' ' || params.back() == ',')) params.pop_back();
    if (!params.empty()) {
        size_t start = 0;
        bool first = true;
        while (start <= params.size()) {
            size_t stop = params.find('\n', start);
            if (stop == std::string::npos) stop = params.size();
            std::string piece = params.substr(start, stop - start);
            while (!piece.empty() && piece.back() == ' ') piece.pop_back();
            if (first)
                line(1, piece);
            else
                block += indent + std::string(width, ' ') + piece + "\n";
            first = false;
            start = stop + 1;
        }
    }

    text.Empty();
    system.GetDatumName(text);
    line(2, Utf8(text) + " (" + std::to_string(system.GetDatum()) + ")");
    text.Empty();
    system.GetEllipsName(text);
    line(3, Utf8(text) + " (" + std::to_string(system.GetEllipsoid()) + ")");
    line(4, SystemText(DefOf(system), datums));
    return block;
}

void CheckName(const std::string& name, const char* what) {
    const std::string ansi = Ansi(name);
    auto bad = [&](const char* en, const char* ru) {
        throw Error(std::string(what) + " " + Quoted(name) + ": " + Tr(en, ru));
    };
    if (name.empty()) bad("the name is empty", "пустое название");
    if (name.front() == ' ' || name.back() == ' ')
        bad("blanks at either end would be lost", "пробелы по краям потеряются");
    if (name.find_first_of("\r\n\t\"'") != std::string::npos)
        bad("line breaks, tabs and quotes are not allowed", "переводы строк, табуляции и кавычки недопустимы");
    if (!RepresentableInAnsi(name))
        bad("has characters the catalog cannot hold (Windows-1251)",
            "содержит символы, которых нет в кодировке каталога (Windows-1251)");
    // The record keeps 49 bytes of a name; "QQ" ends every catalog listing.
    if (ansi.size() > 49) bad("longer than 49 characters", "длиннее 49 символов");
    if (ansi == "QQ") bad("\"QQ\" marks the end of a catalog", "\"QQ\" отмечает конец каталога");
}

int16_t Shift(double value, const char* option) {
    if (value != std::floor(value) || value < -32768 || value > 32767)
        throw Error(std::string(option) + Tr(": expected whole metres from -32768 to 32767",
                                             ": ожидается целое число метров от -32768 до 32767"));
    return static_cast<int16_t>(value);
}

// The catalog writes reals with six decimals.
double AsStored(double value) {
    char buf[64];
    std::snprintf(buf, sizeof buf, "%lf", value);
    return std::strtod(buf, nullptr);
}

}  // namespace

int ListDatums() {
    const std::vector<DatumEntry> datums = ReadDatums();
    const std::vector<EllipsoidEntry> ellipsoids = ReadEllipsoids();
    std::vector<std::string> names, ellipsoidNames;
    for (const DatumEntry& d : datums) {
        names.push_back(d.name);
        const EllipsoidEntry* e = EllipsoidOf(ellipsoids, d);
        ellipsoidNames.push_back(e ? e->name : "? (" + d.ellipsoidText + ")");
    }
    const std::string hIndex = Tr("index", "номер"), hName = Tr("name", "название"),
                      hEllipsoid = Tr("ellipsoid", "эллипсоид");
    const size_t wName = WidestName(names, DisplayWidth(hName));
    const size_t wEllipsoid = WidestName(ellipsoidNames, DisplayWidth(hEllipsoid));
    Print("# " + PadLeft(hIndex, 5) + "  " + PadRight(hName, wName) + "  " + PadRight(hEllipsoid, wEllipsoid) +
          "     dx     dy     dz\n");
    for (size_t i = 0; i < datums.size(); ++i) {
        const DatumEntry& d = datums[i];
        std::string row = "  " + PadLeft(d.indexText, 5) + "  " + PadRight(d.name, wName) + "  " +
                          PadRight(ellipsoidNames[i], wEllipsoid);
        for (int k = 0; k < 3; ++k) {
            row += ' ';
            row += PadLeft(std::to_string(d.values[k]), 6);
        }
        Print(row + "\n");
    }
    return 0;
}

int ListEllipsoids() {
    const std::vector<EllipsoidEntry> ellipsoids = ReadEllipsoids();
    std::vector<std::string> names;
    for (const EllipsoidEntry& e : ellipsoids) names.push_back(e.name);
    const std::string hIndex = Tr("index", "номер"), hName = Tr("name", "название");
    const size_t wName = WidestName(names, DisplayWidth(hName));
    Print("# " + PadLeft(hIndex, 5) + "  " + PadRight(hName, wName) + "  " + PadRight(Tr("a (m)", "a (м)"), 14) +
          "  1/f\n");
    for (const EllipsoidEntry& e : ellipsoids)
        Print("  " + PadLeft(e.indexText, 5) + "  " + PadRight(e.name, wName) + "  " + PadRight(ShortNumber(e.a), 14) +
              "  " + ShortNumber(e.rf) + "\n");
    return 0;
}

int AddDatum(const DatumAddOptions& o) {
    CheckName(o.name, Tr("datum", "датум"));
    CheckName(o.ellipsoid, Tr("ellipsoid", "эллипсоид"));
    short values[6] = {Shift(o.dx, "--dx"), Shift(o.dy, "--dy"), Shift(o.dz, "--dz"), 0, 0, 0};

    const std::vector<DatumEntry> datums = ReadDatums();
    const std::vector<EllipsoidEntry> ellipsoids = ReadEllipsoids();
    const EllipsoidEntry* known = EllipsoidByName(ellipsoids, o.ellipsoid);

    // The library appends an ellipsoid only when its name is new, and then
    // with the axis and flattening given here.
    double geo[2] = {0, 0};
    if (known) {
        const bool differs = (o.a && *o.a != known->a) || (o.rf && AsStored(*o.rf) != known->rf);
        if (differs)
            throw Error(std::string(Tr("ellipsoid ", "эллипсоид ")) + Quoted(o.ellipsoid) +
                        Tr(" is in the catalog with a=", " уже есть в каталоге с a=") + ShortNumber(known->a) +
                        " rf=" + ShortNumber(known->rf) +
                        Tr("; leave out --a and --rf, or give the new ellipsoid another name",
                           "; уберите --a и --rf или дайте новому эллипсоиду другое название"));
        geo[0] = known->a;
        geo[1] = known->rf;
    } else {
        if (!o.a || !o.rf) {
            std::string message = std::string(Tr("ellipsoid ", "эллипсоида ")) + Quoted(o.ellipsoid) +
                                  Tr(" is not in the catalog", " нет в каталоге");
            std::vector<std::string> names;
            for (const EllipsoidEntry& e : ellipsoids) names.push_back(e.name);
            if (const auto near = Nearest(o.ellipsoid, names, 3); !near.empty()) {
                std::vector<std::string> quoted;
                for (const std::string& n : near) quoted.push_back(Quoted(n));
                message += std::string(Tr(" (did you mean ", " (может быть, ")) + JoinAlternatives(quoted) + "?)";
            }
            throw Error(message + Tr("; give --a and --rf to add it", "; чтобы добавить его, укажите --a и --rf"));
        }
        // An Earth ellipsoid in metres: catches kilometres and swapped values.
        if (!(*o.a >= 6000000 && *o.a <= 7000000))
            throw Error(Tr("--a: expected the semi-major axis in metres, 6000000 to 7000000",
                           "--a: ожидается большая полуось в метрах, от 6000000 до 7000000"));
        if (!(*o.rf > 100 && *o.rf < 1000))
            throw Error(Tr("--rf: expected the inverse flattening, 100 to 1000 (298.257223563 for WGS 84)",
                           "--rf: ожидается обратное сжатие, от 100 до 1000 (298.257223563 для WGS 84)"));
        geo[0] = *o.a;
        geo[1] = *o.rf;
        if (AsStored(*o.rf) != *o.rf || AsStored(*o.a) != *o.a)
            std::fprintf(stderr, "mapwright: %s a=%s rf=%s\n",
                         Tr("note: the catalog keeps six decimals:", "примечание: каталог хранит шесть знаков:"),
                         ShortNumber(AsStored(*o.a)).c_str(), ShortNumber(AsStored(*o.rf)).c_str());
    }

    for (const DatumEntry& d : datums) {
        if (d.name != o.name) continue;
        const EllipsoidEntry* e = EllipsoidOf(ellipsoids, d);
        const bool same = e && e->name == o.ellipsoid && d.values[0] == values[0] && d.values[1] == values[1] &&
                          d.values[2] == values[2];
        if (!same)
            throw Error(std::string(Tr("a datum named ", "датум ")) + Quoted(o.name) +
                        Tr(" is already in the catalog (index ", " уже есть в каталоге (номер ") + d.indexText +
                        Tr(") with other values; nothing added", ") с другими значениями; ничего не добавлено"));
        Print(std::string(Tr("datum ", "датум ")) + Quoted(o.name) +
              Tr(" is already in the catalog as index ", " уже есть в каталоге под номером ") + d.indexText + "\n");
        return 0;
    }

    CGeoReferenceData record;
    record.SetDatumName(CString(Ansi(o.name).c_str()));
    record.SetEllipsName(CString(Ansi(o.ellipsoid).c_str()));
    record.SetGeoInfo(geo, values);  // result 0 on a record without a kind; the values are set all the same
    record.SetDatumAndEllipsIndex();

    // The library reports nothing when a catalog cannot be written: look.
    const std::vector<DatumEntry> after = ReadDatums();
    const DatumEntry* added = DatumByIndex(after, record.GetDatum());
    if (!added || added->name != o.name)
        throw Error(std::string(Tr("could not write the datum catalog ", "не удалось записать каталог датумов ")) +
                    Utf8(DatumCatalogPath().c_str()));
    Print(std::string(Tr("added datum ", "добавлен датум ")) + Quoted(o.name) + Tr(" as index ", " под номером ") +
          std::to_string(record.GetDatum()) + Tr(", ellipsoid ", ", эллипсоид ") + Quoted(o.ellipsoid) + " (" +
          std::to_string(record.GetEllipsoid()) + ")\n");
    return 0;
}

int SaveSystem(const std::string& key, const std::string& system) {
    const std::vector<DatumEntry> datums = ReadDatums();
    const SystemDef def = ParseSystem(system, datums);
    CGeoReferenceData record;
    MakeSystem(def, record);
    const std::string path = RegistryPath(key);
    if (record.SaveData(CString(path.c_str())) != 1)
        throw Error(std::string(Tr("could not save the system under ", "не удалось сохранить систему под ключом ")) +
                    Quoted(key));
    // What comes back is what counts: the registry keeps six decimals and
    // no scale for Gauss-Kruger.
    CGeoReferenceData check;
    LoadSystem(key, check);
    const std::string saved = SystemText(DefOf(check), datums);
    if (saved != SystemText(def, datums))
        std::fprintf(stderr, "mapwright: %s %s\n",
                     Tr("note: the registry keeps this system as", "примечание: в реестре система сохранена как"),
                     saved.c_str());
    Print(key + ": " + saved + "\n");
    return 0;
}

std::string ShownLine(const std::string& label, const std::string& value) {
    return PadRight(label, LabelWidth()) + value + "\n";
}

std::string ShownSystem(const std::string& key) {
    CGeoReferenceData record;
    LoadSystem(key, record);
    return ShownLine(Labels()[5], key) + SystemBlock(record, "");
}

int ShowSystem(const std::string& key) {
    Print(ShownSystem(key));
    return 0;
}

int SavePair(const std::string& base, const std::string& from, const std::string& to) {
    const std::vector<DatumEntry> datums = ReadDatums();
    CGeoReferenceData source, dest;
    MakeSystem(ParseSystem(from, datums), source);
    MakeSystem(ParseSystem(to, datums), dest);
    CGeoTransform pair;
    pair.SetReferenceDataSource(&source);
    pair.SetReferenceDataDest(&dest);
    const std::string path = RegistryPath(base);
    if (pair.SaveData(path.c_str()) != 1)
        throw Error(std::string(Tr("could not save the pair under ", "не удалось сохранить пару под ключом ")) +
                    Quoted(base));
    CGeoTransform check;
    LoadPair(base, check);
    check.FreeGeoParam();
    Print(base + ": " + SystemText(DefOf(*check.GetReferenceDataSource()), datums) + " -> " +
          SystemText(DefOf(*check.GetReferenceDataDest()), datums) + "\n");
    return 0;
}

int ShowPair(const std::string& base) {
    CGeoTransform pair;
    LoadPair(base, pair);
    pair.FreeGeoParam();
    Print(ShownLine(Labels()[5], base));
    Print(std::string(Tr("Source", "Исходная система")) + " (GeoData_fm):\n");
    Print(SystemBlock(*pair.GetReferenceDataSource(), "  "));
    Print(std::string(Tr("Destination", "Конечная система")) + " (GeoData_to):\n");
    Print(SystemBlock(*pair.GetReferenceDataDest(), "  "));
    return 0;
}

namespace {

// The direct subkeys of `path` (the library's form, "" for the root).
std::vector<std::string> SubKeys(const std::string& path) {
    std::vector<std::string> names;
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return names;
    std::vector<char> name(256);
    for (DWORD i = 0;;) {
        DWORD size = static_cast<DWORD>(name.size());
        const LONG rc = RegEnumKeyExA(key, i, name.data(), &size, nullptr, nullptr, nullptr, nullptr);
        if (rc == ERROR_MORE_DATA && name.size() < 65536) {
            name.resize(name.size() * 4);
            continue;
        }
        if (rc != ERROR_SUCCESS) break;
        names.emplace_back(name.data(), size);
        ++i;
    }
    RegCloseKey(key);
    return names;
}

bool HoldsSystem(const std::string& path) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
    DWORD size = 0;
    const bool found = RegQueryValueExA(key, "ProjectionIndex", nullptr, nullptr, nullptr, &size) == ERROR_SUCCESS;
    RegCloseKey(key);
    return found;
}

// `path` and every key below it, parents first.
void EveryKey(const std::string& path, std::vector<std::string>& out) {
    out.push_back(path);
    for (const std::string& child : SubKeys(path)) EveryKey(path.empty() ? child : path + "\\" + child, out);
}

bool IsPairHalf(const std::string& path) {
    const size_t slash = path.rfind('\\');
    std::string last = path.substr(slash == std::string::npos ? 0 : slash + 1);
    for (char& c : last) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
    return last == "geodata_fm" || last == "geodata_to";
}

// The SYSTEM text of the system saved under `path`, or why it cannot be read.
std::string SavedText(const std::string& path, const std::vector<DatumEntry>& datums) {
    try {
        CGeoReferenceData record;
        LoadSystem(TypedKey(path), record);
        return SystemText(DefOf(record), datums);
    } catch (const Error& e) {
        return std::string("(") + e.what() + ")";
    }
}

std::vector<std::string> KeysBelow(const std::string& base) {
    const std::string root = base.empty() ? "" : RegistryPath(base);
    if (!root.empty() && !RegistryKeyExists(root)) return {};
    std::vector<std::string> keys;
    EveryKey(root, keys);
    return keys;
}

}  // namespace

int ListSystems(const std::string& base) {
    const std::vector<DatumEntry> datums = ReadDatums();
    for (const std::string& path : KeysBelow(base))
        if (!path.empty() && !IsPairHalf(path) && HoldsSystem(path))
            Print(TypedKey(path) + ": " + SavedText(path, datums) + "\n");
    return 0;
}

int ListPairs(const std::string& base) {
    const std::vector<DatumEntry> datums = ReadDatums();
    for (const std::string& path : KeysBelow(base)) {
        const std::string prefix = path.empty() ? "" : path + "\\";
        if (HoldsSystem(prefix + "GeoData_fm") && HoldsSystem(prefix + "GeoData_to"))
            Print(TypedKey(path) + ": " + SavedText(prefix + "GeoData_fm", datums) + " -> " +
                  SavedText(prefix + "GeoData_to", datums) + "\n");
    }
    return 0;
}

}  // namespace mwcli
