// mapwright: converts coordinates between map reference systems with the
// Mapwright library, and manages its catalogs and saved systems.
#include <cstdio>
#include <string>

#include <CLI/CLI.hpp>

#include <mapwright/mapwright.h>

#include "commands.h"
#include "convert.h"
#include "system_text.h"
#include "text.h"

namespace {

constexpr char kEnvironmentHelp[] = R"(Environment:
  MAPWRIGHT_APPDIR    the directory whose "Auxiliary Data" holds datum.ini and
                      ellips.ini (default ~/.local/share/mapwright, seeded
                      with the shipped catalogs)
  MAPWRIGHT_REGISTRY  the registry file of saved systems
                      (default ~/.config/mapwright/registry.sqlite3)
  MAPWRIGHT_UI_LANG   en or ru, as --lang (default from LC_ALL, LC_MESSAGES,
                      LANG)
Exit status: 0 done; 1 some input could not be converted; 2 the command could
not run (bad option or system, unknown key, unwritable file).)";

constexpr char kKeyHelp[] =
    R"(KEY is a registry path below HKEY_CURRENT_USER, levels separated by a
backslash or "/", for example Software/Mapwright/gk7. The registry keeps the
kind, the datum index and the parameters (as the library's SaveData writes
them: six decimals, no scale for Gauss-Kruger).)";

constexpr char kBaseHelp[] =
    R"(BASE is a registry path below HKEY_CURRENT_USER, levels separated by a
backslash or "/", for example Software/Mapwright/gcp; the source system is
kept under BASE\GeoData_fm and the destination under BASE\GeoData_to, as the
library's CGeoTransform::SaveData writes them.)";

}  // namespace

int main(int argc, char** argv) {
    using namespace mwcli;

    CLI::App app{
        "Converts coordinates between map reference systems (projection, parameters and datum)\n"
        "with the Mapwright library, and manages its datum catalog and saved systems.",
        "mapwright"};
    app.set_version_flag("--version", "mapwright " MAPWRIGHT_VERSION);
    app.get_formatter()->column_width(32);
    app.require_subcommand(1);
    app.fallthrough();
    std::string lang;
    app.add_option("--lang", lang,
                   "Language of projection names, labels and messages: en or ru\n"
                   "(default: MAPWRIGHT_UI_LANG, else the locale)")
        ->check(CLI::IsMember({"en", "ru"}));
    app.footer(std::string("Run \"mapwright COMMAND --help\" for each command; \"man mapwright\" for all.\n\n") +
               kEnvironmentHelp);

    // convert
    ConvertOptions co;
    CLI::App* convert = app.add_subcommand("convert", "Convert points from one reference system to another");
    convert->add_option("--from", co.from, "The source system (SYSTEM syntax below)")->type_name("SYSTEM");
    convert->add_option("--from-key", co.fromKey, "The source system saved under KEY (system save)")->type_name("KEY");
    convert->add_option("--to", co.to, "The destination system")->type_name("SYSTEM");
    convert->add_option("--to-key", co.toKey, "The destination system saved under KEY")->type_name("KEY");
    convert->add_option("--pair", co.pair, "Both systems from the pair saved under BASE (pair save)")
        ->type_name("BASE");
    convert->add_flag("-I,--reverse", co.reverse, "Convert from the destination to the source");
    convert
        ->add_option("-p,--precision", co.precision,
                     "Decimals of metres; degrees get 5 more (default 3: mm, 1e-8 degrees)")
        ->check(CLI::Range(0, 10));
    convert->add_option("--format", co.format, "numbers (default), fields, dms or line")
        ->check(CLI::IsMember({"numbers", "fields", "dms", "line"}));
    convert->add_flag("-w,--lon-first", co.lonFirst, "Geographic longitude before latitude, in and out");
    convert->add_flag("--line-height", co.lineHeight, "With --format line: start the line with the height");
    convert->add_option("-o,--output", co.output, "Write to FILE instead of standard output")->type_name("FILE");
    convert->add_option("FILE", co.files, "Input files; none or - read standard input");
    convert->footer(std::string("Give the source with --from, --from-key or --pair, and the destination with\n"
                                "--to, --to-key or --pair.\n\n") +
                    SystemSyntaxHelp() + "\n\n" + InputOrderHelp() +
                    "\n\nExample:\n  echo '7413000 6180500 150' | mapwright convert \\\n"
                    "      --from 'gk zone=7 datum=\"Pulkovo 1942\"' --to 'utm zone=37 datum=\"WGS 84\"'");

    // catalogs
    CLI::App* datums = app.add_subcommand("datums", "List the datum catalog: index, name, ellipsoid, dx dy dz (m)");
    datums->footer(
        "The catalog is MAPWRIGHT_APPDIR/Auxiliary Data/datum.ini. A SYSTEM names a datum\n"
        "by the index or the name shown here; dx dy dz are its shift to WGS 84.\n\n"
        "Example:\n  mapwright datums | grep -i pulkovo");
    CLI::App* ellipsoids =
        app.add_subcommand("ellipsoids", "List the ellipsoid catalog: index, name, semi-major axis, 1/f");
    ellipsoids->footer(
        "The catalog is MAPWRIGHT_APPDIR/Auxiliary Data/ellips.ini.\n\n"
        "Example:\n  mapwright ellipsoids");
    CLI::App* datum = app.add_subcommand("datum", "Change the datum catalog");
    datum->require_subcommand(1);
    datum->footer("Run \"mapwright datum add --help\".");
    DatumAddOptions da;
    CLI::App* datumAdd =
        datum->add_subcommand("add", "Register a datum (and its ellipsoid, when new) at the end of the catalogs");
    datumAdd->add_option("NAME", da.name, "The datum's name (at most 49 characters)")->required();
    datumAdd->add_option("--ellipsoid", da.ellipsoid, "Its ellipsoid: a catalog name, or a new name with --a and --rf")
        ->required()
        ->type_name("NAME");
    datumAdd->add_option("--a", da.a, "Semi-major axis of a new ellipsoid, metres")->type_name("METRES");
    datumAdd->add_option("--rf", da.rf, "Inverse flattening of a new ellipsoid")->type_name("VALUE");
    datumAdd->add_option("--dx", da.dx, "Shift of the datum's origin to WGS 84 along X, whole metres")
        ->required()
        ->type_name("METRES");
    datumAdd->add_option("--dy", da.dy, "The same along Y")->required()->type_name("METRES");
    datumAdd->add_option("--dz", da.dz, "The same along Z")->required()->type_name("METRES");
    datumAdd->footer(
        "The catalog files are datum.ini and ellips.ini in MAPWRIGHT_APPDIR/Auxiliary Data.\n"
        "The new datum gets the next free index, which \"mapwright datums\" then shows;\n"
        "the catalog keeps the axis and flattening with six decimals.\n\n"
        "Example:\n  mapwright datum add \"Pulkovo 1942 (Kazakhstan)\" --ellipsoid \"Krassovsky 1940\" \\\n"
        "      --dx 15 --dy -130 --dz -84");

    // saved systems
    std::string key, systemText, from, to;
    CLI::App* system = app.add_subcommand("system", "Save a reference system in the registry, or show one");
    system->require_subcommand(1);
    system->footer("Run \"mapwright system save --help\" or \"mapwright system show --help\".");
    CLI::App* systemSave = system->add_subcommand("save", "Save SYSTEM under KEY");
    systemSave->add_option("KEY", key, "The registry key")->required();
    systemSave->add_option("SYSTEM", systemText, "The system, in the SYSTEM syntax")->required();
    systemSave->footer(
        std::string(kKeyHelp) + "\n\n" + SystemSyntaxHelp() +
        "\n\nExample:\n  mapwright system save Software/Mapwright/gk7 'gk zone=7 datum=\"Pulkovo 1942\"'");
    CLI::App* systemShow = system->add_subcommand(
        "show", "Show the system saved under KEY: projection, parameters, datum, ellipsoid, SYSTEM text");
    systemShow->add_option("KEY", key, "The registry key")->required();
    systemShow->footer(std::string(kKeyHelp) +
                       "\n\nExample:\n  mapwright --lang ru system show Software/Mapwright/gk7");

    CLI::App* pair = app.add_subcommand("pair", "Save a source and destination pair in the registry, or show one");
    pair->require_subcommand(1);
    pair->footer("Run \"mapwright pair save --help\" or \"mapwright pair show --help\".");
    CLI::App* pairSave = pair->add_subcommand("save", "Save a pair under BASE (BASE\\GeoData_fm, BASE\\GeoData_to)");
    pairSave->add_option("BASE", key, "The registry key of the pair")->required();
    pairSave->add_option("--from", from, "The source system")->required()->type_name("SYSTEM");
    pairSave->add_option("--to", to, "The destination system")->required()->type_name("SYSTEM");
    pairSave->footer(std::string(kBaseHelp) + "\n\n" + SystemSyntaxHelp() +
                     "\n\nExample:\n  mapwright pair save Software/Mapwright/gcp --from 'gk zone=7 datum=4' \\\n"
                     "      --to 'utm zone=37 datum=3'\n  mapwright convert --pair Software/Mapwright/gcp points.txt");
    CLI::App* pairShow = pair->add_subcommand("show", "Show the pair saved under BASE");
    pairShow->add_option("BASE", key, "The registry key of the pair")->required();
    pairShow->footer(std::string(kBaseHelp) + "\n\nExample:\n  mapwright pair show Software/Mapwright/gcp");

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e) == 0 ? 0 : kExitUsage;
    }
    if (!lang.empty()) SetThreadUILanguage(lang == "ru" ? LANG_RUSSIAN : LANG_ENGLISH_US);
    // A system given as "" is an empty system, not a missing one.
    auto blankIfGiven = [](CLI::App* command, const char* name, std::string& value) {
        if (command->count(name) > 0 && value.empty()) value = " ";
    };
    blankIfGiven(convert, "--from", co.from);
    blankIfGiven(convert, "--to", co.to);
    blankIfGiven(systemSave, "SYSTEM", systemText);
    blankIfGiven(pairSave, "--from", from);
    blankIfGiven(pairSave, "--to", to);

    try {
        if (*convert) return RunConvert(co);
        if (*datums) return ListDatums();
        if (*ellipsoids) return ListEllipsoids();
        if (*datumAdd) return AddDatum(da);
        if (*systemSave) return SaveSystem(key, systemText);
        if (*systemShow) return ShowSystem(key);
        if (*pairSave) return SavePair(key, from, to);
        if (*pairShow) return ShowPair(key);
    } catch (const Error& e) {
        std::fflush(stdout);
        std::fprintf(stderr, "mapwright: %s\n", e.what());
        return kExitUsage;
    }
    return kExitUsage;
}
