#include "convert.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <utility>

#include <mapwright/mapwright.h>

#include "catalog_view.h"
#include "pipeline.h"
#include "point_line.h"
#include "streams.h"
#include "system_text.h"
#include "text.h"

namespace mwcli {

namespace {

enum class Format { Numbers, Fields, Dms, Line };

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
    SystemDef source, dest;
};

Endpoints ResolveSystems(const ConvertOptions& o) {
    const int sources = !o.from.empty() + !o.fromKey.empty() + !o.pair.empty();
    const int dests = !o.to.empty() + !o.toKey.empty() + !o.pair.empty();
    if (sources != 1 || dests != 1)
        throw Error(
            Tr("give the source with one of --from, --from-key, --pair and the destination with one of "
               "--to, --to-key, --pair",
               "укажите исходную систему одним из --from, --from-key, --pair и конечную одним из --to, "
               "--to-key, --pair"));
    const std::vector<DatumEntry> datums = ReadDatums();
    Endpoints e;
    if (!o.pair.empty()) {
        CGeoTransform pair;
        LoadPair(o.pair, pair);
        pair.FreeGeoParam();
        e.source = DefOf(*pair.GetReferenceDataSource());
        e.dest = DefOf(*pair.GetReferenceDataDest());
    }
    // Which of the two systems a message is about.
    auto side = [&](const char* option, SystemDef& def, auto&& make) {
        try {
            make(def);
            CGeoReferenceData check;
            MakeSystem(def, check);
        } catch (const Error& error) {
            throw Error(std::string(option) + ": " + error.what());
        }
    };
    auto parse = [&](const std::string& text) { return [&](SystemDef& d) { d = ParseSystem(text, datums); }; };
    auto load = [&](const std::string& key) {
        return [&](SystemDef& d) {
            CGeoReferenceData saved;
            LoadSystem(key, saved);
            d = DefOf(saved);
        };
    };
    if (!o.from.empty()) side("--from", e.source, parse(o.from));
    if (!o.fromKey.empty()) side("--from-key", e.source, load(o.fromKey));
    if (!o.to.empty()) side("--to", e.dest, parse(o.to));
    if (!o.toKey.empty()) side("--to-key", e.dest, load(o.toKey));
    if (o.reverse) std::swap(e.source, e.dest);
    return e;
}

struct Converter {
    const ConvertOptions& options;
    Format format;
    Pipeline& pipeline;
    OutputBuffer& out;
    OutputBuffer& err;
    Progress& progress;
    SystemDef source, dest;
    Layout sourceLayout, destLayout;
    bool destZoneChosen;  // UTM destination without a zone: the line shows it
    char separator;
    int metreDecimals, degreeDecimals;
    uint64_t lines = 0, points = 0, failures = 0;

    void Report(const std::string& file, uint64_t line, const std::string& message) {
        progress.Clear();
        err.Put("mapwright: " + file + ":" + std::to_string(line) + ": " + message + "\n");
        ++failures;
        const int columns = destLayout.required + (destZoneChosen && format != Format::Line ? 1 : 0);
        for (int i = 0; i < (format == Format::Line ? 1 : columns); ++i) {
            if (i > 0) out.Put(separator);
            out.Put('*');
        }
        out.Put('\n');
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
            coord->GetCoord(text, TextFieldOf(role, dest.kind), format == Format::Fields);
            out.Put(Utf8(text));
        }
    }

    void PutLine() {
        char buffer[1024];
        pipeline.Final().GetCoordStr(buffer, sizeof buffer - 1, options.lineHeight ? 1 : 0);
        buffer[sizeof buffer - 1] = '\0';
        out.Put(Utf8(buffer));
    }

    // One input line that holds a point.
    void Point(std::string_view line, const std::string& file, uint64_t number) {
        PointLine parsed;
        if (!ParsePointLine(line, source.kind, sourceLayout, parsed))
            return Report(file, number, DescribeProblem(parsed, source.kind, options.lonFirst));
        int zone = parsed.zone;
        bool south = parsed.south;
        if (source.kind == UTM && zone == 0) {
            if (!source.UtmZoneFixed()) {
                parsed.problem = Problem::NoZone;
                return Report(file, number, DescribeProblem(parsed, source.kind, options.lonFirst));
            }
            zone = source.fn;
            south = source.UtmSouth();
        }
        switch (pipeline.Convert(parsed.point, zone, south)) {
            case Pipeline::Outcome::Converted: break;
            case Pipeline::Outcome::SourceOutside:
                return Report(file, number,
                              Tr("the point is outside the area of the source system's projection "
                                 "(it does not convert back to itself)",
                                 "точка вне области определения проекции исходной системы "
                                 "(обратное преобразование не возвращает её)"));
            case Pipeline::Outcome::DestOutside:
                return Report(file, number,
                              Tr("the destination system refuses the point (outside the area of its projection)",
                                 "конечная система отвергает точку (вне области определения её проекции)"));
        }
        const GeoCoordTag& r = pipeline.Result();
        if (destZoneChosen && format != Format::Line) {
            out.PutFixed(r.zone, 0);
            out.Put(pipeline.ResultSouth() ? 's' : 'n');
            out.Put(separator);
        }
        const bool withHeight = parsed.hasHeight || source.kind == Cartesian || dest.kind == Cartesian;
        switch (format) {
            case Format::Numbers: PutNumbers(r, withHeight); break;
            case Format::Fields:
            case Format::Dms: PutFieldTexts(withHeight); break;
            case Format::Line: PutLine(); break;
        }
        if (!parsed.rest.empty()) {
            out.Put(separator);
            out.Put(parsed.rest);
        }
        out.Put('\n');
    }

    void Run(LineReader& reader, const std::string& file, uint64_t bytesBefore) {
        std::string_view line;
        uint64_t number = 0;
        while (reader.Next(line)) {
            // A byte-order mark that an editor put at the start of the file.
            if (++number == 1 && line.substr(0, 3) == "\xEF\xBB\xBF") line.remove_prefix(3);
            // Every 8192 lines, and at the line that crosses the threshold.
            if ((++lines & 0x1FFF) == 0 || lines == Progress::kThreshold + 1)
                progress.Update(lines, bytesBefore + reader.BytesRead());
            // Comments and blank lines go through as they are.
            const size_t first = line.find_first_not_of(" \t");
            if (first == std::string_view::npos || line[first] == '#') {
                out.Put(line);
                out.Put('\n');
                continue;
            }
            ++points;
            Point(line, file, number);
        }
    }
};

void FlushBoth(void* context) {
    auto* c = static_cast<Converter*>(context);
    c->out.Flush();
    c->err.Flush();
}

// The output descriptor and its name for messages.
std::pair<int, std::string> OpenOutput(const ConvertOptions& options) {
    if (options.output.empty() || options.output == "-")
        return {STDOUT_FILENO, Tr("standard output", "стандартный вывод")};
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
    const int fd = ::open(options.output.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (fd < 0)
        throw Error(std::string(Tr("cannot create ", "не удаётся создать ")) + options.output + ": " +
                    std::strerror(errno));
    return {fd, options.output};
}

struct Input {
    std::string name;
    int fd;
};

// Every input opened before anything is converted: a missing file or a
// directory stops the command like any other failure to run.
std::vector<Input> OpenInputs(std::vector<std::string> files) {
    if (files.empty()) files.push_back("-");
    std::vector<Input> inputs;
    auto closeAll = [&] {
        for (const Input& i : inputs)
            if (i.fd != STDIN_FILENO) ::close(i.fd);
    };
    for (const std::string& f : files) {
        if (f == "-") {
            inputs.push_back({"<stdin>", STDIN_FILENO});
            continue;
        }
        const int fd = ::open(f.c_str(), O_RDONLY | O_CLOEXEC);
        struct stat st = {};
        const int error = fd < 0 ? errno : ::fstat(fd, &st) != 0 ? errno : S_ISDIR(st.st_mode) ? EISDIR : 0;
        if (error != 0) {
            if (fd >= 0) ::close(fd);
            closeAll();
            throw Error(std::string(Tr("cannot open ", "не удаётся открыть ")) + f + ": " + std::strerror(error));
        }
        inputs.push_back({f, fd});
    }
    return inputs;
}

// The total size, for a percentage, when every input is a regular file.
uint64_t TotalSize(const std::vector<Input>& inputs) {
    uint64_t total = 0;
    for (const Input& i : inputs) {
        struct stat st = {};
        if (::fstat(i.fd, &st) != 0 || !S_ISREG(st.st_mode)) return 0;
        total += static_cast<uint64_t>(st.st_size);
    }
    return total;
}

}  // namespace

const char* InputOrderHelp() {
    return Tr(R"(Input: one point a line, its numbers separated by blanks, tabs or a comma;
lines that are blank or start with # are copied as they are; text after the
numbers is copied after the result. The order is the one users of each kind
write:
  geographic     latitude longitude [height]  (-w: longitude latitude [height])
                 as decimal degrees (55.7558, -37.5, 55.7558 N, 37.5W) or
                 degrees, minutes and seconds: 55 45 20.88 N, 55°45'20.88"N,
                 55:45:20.88N, 55d45m20.88s N, 055° 45' 20.88'' N
  utm            [zone] easting northing [height]; the zone as in 37n or 7s,
                 needed when the system has none, and winning over it
  gk, tm, mercator, ps, ups
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

A line that cannot be read, a point the destination refuses, or a point that
does not come back within a metre when a projected step is taken the other
way (far from a projection's centre its formulas are wrong) is reported
on standard error with its line number, and its output line is * for each
column so that the lines stay aligned; the rest is still converted and the
exit status is 1. More than 100000 lines show a progress line when standard
error is a terminal.)",
              R"(Ввод: одна точка в строке, числа разделены пробелами, табуляцией или
запятой; пустые строки и строки, начинающиеся с #, копируются как есть; текст
после чисел копируется после результата. Порядок тот, в каком пишут
пользователи каждого вида:
  geographic     широта долгота [высота]  (-w: долгота широта [высота])
                 в десятичных градусах (55.7558, -37.5, 55.7558 N, 37.5W) или
                 в градусах, минутах и секундах: 55 45 20.88 N, 55°45'20.88"N,
                 55:45:20.88N, 55d45m20.88s N, 055° 45' 20.88'' N
  utm            [зона] восточная северная [высота]; зона вида 37n или 7s
                 нужна, если её нет в системе, и важнее неё
  gk, tm, mercator, ps, ups
                 восточная северная [высота]
  cartesian      X Y Z
Высоты в метрах; высота выводится, если она есть в строке (для cartesian
всегда).

Вывод (--format):
  numbers  числа в том же порядке, метры с --precision знаками, градусы
           с 5 знаками больше (по умолчанию)
  fields   текст библиотеки для каждого поля: 055.7558000 N, 413000.00
  dms      то же в градусах, минутах и секундах: 055° 45' 20.88'' N
  line     строка библиотеки для точки:
           6182000.00, 413000.00 (UTM, UTM Zone  37 / WGS 84)
Для UTM без зоны строка начинается с выбранной зоны, например 37n. fields и
dms разделяют поля табуляцией.

Строка, которую нельзя прочитать, точка, которую конечная система
отвергает, или точка, которая не возвращается с точностью до метра при
обратном шаге проекции (вдали от центра проекции её формулы неверны),
сообщается в стандартный поток ошибок с номером строки, а на её
месте выводится * для каждого столбца; остальное преобразуется, код выхода 1.
Больше 100000 строк показывают строку хода работы, если поток ошибок —
терминал.)");
}

int RunConvert(const ConvertOptions& options) {
    const Format format = ParseFormat(options.format);
    const Endpoints systems = ResolveSystems(options);
    Pipeline pipeline(systems.source, systems.dest);
    std::vector<Input> inputs = OpenInputs(options.files);
    const auto [outFd, outName] = OpenOutput(options);
    OutputBuffer out(outFd, outName);
    OutputBuffer err(STDERR_FILENO, Tr("standard error", "стандартный поток ошибок"));
    Progress progress(err, TotalSize(inputs));
    const bool textFields = format == Format::Fields || format == Format::Dms;
    Converter c{.options = options,
                .format = format,
                .pipeline = pipeline,
                .out = out,
                .err = err,
                .progress = progress,
                .source = systems.source,
                .dest = systems.dest,
                .sourceLayout = LayoutOf(systems.source.kind, options.lonFirst),
                .destLayout = LayoutOf(systems.dest.kind, options.lonFirst),
                .destZoneChosen = systems.dest.kind == UTM && !systems.dest.UtmZoneFixed(),
                .separator = textFields ? '\t' : ' ',
                .metreDecimals = options.precision,
                .degreeDecimals = options.precision + 5};

    int status = 0;
    uint64_t bytesBefore = 0;
    for (const Input& input : inputs) {
        LineReader reader(input.fd);
        reader.SetBeforeWait(&FlushBoth, &c);
        try {
            c.Run(reader, input.name, bytesBefore);
        } catch (const InputError& e) {
            // A vanished disk: what was read is converted, the rest of this
            // input is lost, the next one is still read.
            progress.Clear();
            err.Put("mapwright: " + std::string(Tr("cannot read ", "не удаётся прочитать ")) + input.name + ": " +
                    e.what() + "\n");
            status = kExitData;
        }
        bytesBefore += reader.BytesRead();
        if (input.fd != STDIN_FILENO) ::close(input.fd);
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
