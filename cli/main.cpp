// mapwright: converts coordinates between map reference systems with the
// Mapwright library, and manages its catalogs and saved systems.
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <mapwright/mapwright.h>

#include "choose.h"
#include "commands.h"
#include "convert.h"
#include "system_text.h"
#include "text.h"

namespace {

// The environment and the exit statuses, for the top-level help.
const char* EnvironmentHelp() {
    return mwcli::Tr(R"(Environment:
  MAPWRIGHT_APPDIR    the directory whose "Auxiliary Data" holds datum.ini and
                      ellips.ini (default ~/.local/share/mapwright, seeded
                      with the shipped catalogs)
  MAPWRIGHT_REGISTRY  the registry file of saved systems
                      (default ~/.config/mapwright/registry.sqlite3)
  MAPWRIGHT_UI_LANG   en or ru, as --lang (default from LC_ALL, LC_MESSAGES,
                      LANG)
Exit status: 0 done; 1 some input could not be converted, or the dialog was
cancelled; 2 the command could not run (bad option or system, unknown key,
missing input, unwritable file, no desktop session for the dialog).)",
                     R"(Окружение:
  MAPWRIGHT_APPDIR    каталог, в чьём "Auxiliary Data" лежат datum.ini и
                      ellips.ini (по умолчанию ~/.local/share/mapwright,
                      заполняется поставляемыми каталогами)
  MAPWRIGHT_REGISTRY  файл реестра сохранённых систем
                      (по умолчанию ~/.config/mapwright/registry.sqlite3)
  MAPWRIGHT_UI_LANG   en или ru, как --lang (по умолчанию из LC_ALL,
                      LC_MESSAGES, LANG)
Код выхода: 0 готово; 1 часть ввода не преобразована или диалог отменён;
2 команда не выполнена (неверный параметр или система, неизвестный ключ, файл
не открыт или не записан, нет сеанса рабочего стола для диалога).)");
}

const char* KeyHelp() {
    return mwcli::Tr(R"(KEY is a registry path below HKEY_CURRENT_USER, levels separated by a
backslash or "/", for example Software/Mapwright/gk7. The registry keeps the
kind, the datum index and the parameters (as the library's SaveData writes
them: six decimals, no scale for Gauss-Kruger).)",
                     R"(KEY — путь в реестре под HKEY_CURRENT_USER, уровни разделены обратной
косой чертой или "/", например Software/Mapwright/gk7. В реестре хранятся вид,
номер датума и параметры (как их пишет SaveData библиотеки: шесть знаков после
точки, без масштаба для Гаусса-Крюгера).)");
}

const char* BaseHelp() {
    return mwcli::Tr(R"(BASE is a registry path below HKEY_CURRENT_USER, levels separated by a
backslash or "/", for example Software/Mapwright/gcp; the source system is
kept under BASE\GeoData_fm and the destination under BASE\GeoData_to, as the
library's CGeoTransform::SaveData writes them.)",
                     R"(BASE — путь в реестре под HKEY_CURRENT_USER, уровни разделены обратной
косой чертой или "/", например Software/Mapwright/gcp; исходная система
хранится под BASE\GeoData_fm, конечная под BASE\GeoData_to, как их пишет
CGeoTransform::SaveData библиотеки.)");
}

}  // namespace

int main(int argc, char** argv) {
    using namespace mwcli;

    // --help speaks the language of --lang, which is known only after parsing.
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        const std::string value = a == "--lang" && i + 1 < argc ? argv[i + 1] : a.rfind("--lang=", 0) == 0 ? a.substr(7) : "";
        if (value == "ru" || value == "en") SetThreadUILanguage(value == "ru" ? LANG_RUSSIAN : LANG_ENGLISH_US);
    }
    CLI::App app{Tr("Converts coordinates between map reference systems (projection, parameters and datum)\n"
                    "with the Mapwright library, and manages its datum catalog and saved systems.",
                    "Преобразует координаты между системами координат (проекция, параметры и датум)\n"
                    "библиотекой Mapwright и ведёт её каталог датумов и сохранённые системы."),
                 "mapwright"};
    if (Russian()) {
        auto f = app.get_formatter();
        f->label("Usage", "Использование");
        f->label("OPTIONS", "ПАРАМЕТРЫ");
        f->label("SUBCOMMANDS", "КОМАНДЫ");
        f->label("POSITIONALS", "АРГУМЕНТЫ");
        f->label("REQUIRED", "ОБЯЗАТЕЛЬНО");
        f->label("Positionals", "Аргументы");
        f->label("Options", "Параметры");
        f->label("Subcommands", "Команды");
    }
    app.set_help_flag("-h,--help", Tr("Print this help and exit", "Показать эту справку и выйти"));
    app.set_version_flag("--version", "mapwright " MAPWRIGHT_VERSION,
                         Tr("Print the version and exit", "Показать версию и выйти"));
    app.get_formatter()->column_width(32);
    app.require_subcommand(1);
    app.fallthrough();
    std::string lang;
    app.add_option("--lang", lang,
                   Tr("Language of projection names, labels, messages and help: en or ru\n"
                      "(default: MAPWRIGHT_UI_LANG, else the locale)",
                      "Язык названий проекций, подписей, сообщений и справки: en или ru\n"
                      "(по умолчанию MAPWRIGHT_UI_LANG, иначе локаль)"))
        ->check(CLI::IsMember({"en", "ru"}));
    app.footer(std::string(Tr("Run \"mapwright COMMAND --help\" for each command; \"man mapwright\" for all.\n\n",
                              "Справка по команде: \"mapwright КОМАНДА --help\"; всё: \"man mapwright\".\n\n")) +
               EnvironmentHelp());

    // convert
    ConvertOptions co;
    CLI::App* convert = app.add_subcommand("convert", Tr("Convert points from one reference system to another", "Преобразовать точки из одной системы координат в другую"));
    convert->add_option("--from", co.from, Tr("The source system (SYSTEM syntax below)", "Исходная система (синтаксис SYSTEM ниже)"))->type_name("SYSTEM");
    convert->add_option("--from-key", co.fromKey, Tr("The source system saved under KEY (system save)", "Исходная система, сохранённая под KEY (system save)"))->type_name("KEY");
    convert->add_option("--to", co.to, Tr("The destination system", "Конечная система"))->type_name("SYSTEM");
    convert->add_option("--to-key", co.toKey, Tr("The destination system saved under KEY", "Конечная система, сохранённая под KEY"))->type_name("KEY");
    convert->add_option("--pair", co.pair, Tr("Both systems from the pair saved under BASE (pair save)", "Обе системы из пары, сохранённой под BASE (pair save)"))
        ->type_name("BASE");
    convert->add_flag("-I,--reverse", co.reverse, Tr("Convert from the destination to the source", "Преобразовать из конечной системы в исходную"));
    convert
        ->add_option("-p,--precision", co.precision,
                     Tr("Decimals of metres; degrees get 5 more (default 3: mm, 1e-8 degrees)", "Знаков после точки для метров; у градусов на 5 больше (по умолчанию 3: мм, 1e-8 градуса)"))
        ->check(CLI::Range(0, 10));
    convert->add_option("--format", co.format, Tr("numbers (default), fields, dms or line", "numbers (по умолчанию), fields, dms или line"))
        ->check(CLI::IsMember({"numbers", "fields", "dms", "line"}));
    convert->add_flag("-w,--lon-first", co.lonFirst, Tr("Geographic longitude before latitude, in and out", "Долгота перед широтой, на входе и на выходе"));
    convert->add_flag("--line-height", co.lineHeight, Tr("With --format line: start the line with the height", "С --format line: начинать строку с высоты"));
    convert->add_option("-o,--output", co.output, Tr("Write to FILE instead of standard output", "Писать в FILE вместо стандартного вывода"))->type_name("FILE");
    convert->add_option("FILE", co.files, Tr("Input files; none or - read standard input", "Входные файлы; без них или - читается стандартный ввод"));
    convert->footer(std::string(Tr("Give the source with --from, --from-key or --pair, and the destination with\n"
                                   "--to, --to-key or --pair.\n\n",
                                   "Исходная система задаётся --from, --from-key или --pair, конечная --to,\n"
                                   "--to-key или --pair.\n\n")) +
                    SystemSyntaxHelp() + "\n\n" + InputOrderHelp() +
                    "\n\nExample:\n  echo '7413000 6180500 150' | mapwright convert \\\n"
                    "      --from 'gk zone=7 datum=\"Pulkovo 1942\"' --to 'utm zone=37 datum=\"WGS 84\"'");

    // catalogs
    CLI::App* datums = app.add_subcommand("datums", Tr("List the datum catalog: index, name, ellipsoid, dx dy dz (m)", "Каталог датумов: номер, название, эллипсоид, dx dy dz (м)"));
    datums->footer(
        "The catalog is MAPWRIGHT_APPDIR/Auxiliary Data/datum.ini. A SYSTEM names a datum\n"
        "by the index or the name shown here; dx dy dz are its shift to WGS 84.\n\n"
        "Example:\n  mapwright datums | grep -i pulkovo");
    CLI::App* ellipsoids =
        app.add_subcommand("ellipsoids", Tr("List the ellipsoid catalog: index, name, semi-major axis, 1/f", "Каталог эллипсоидов: номер, название, большая полуось, 1/f"));
    ellipsoids->footer(
        "The catalog is MAPWRIGHT_APPDIR/Auxiliary Data/ellips.ini.\n\n"
        "Example:\n  mapwright ellipsoids");
    CLI::App* datum = app.add_subcommand("datum", Tr("Change the datum catalog", "Изменить каталог датумов"));
    datum->require_subcommand(1);
    datum->footer("Run \"mapwright datum add --help\".");
    DatumAddOptions da;
    CLI::App* datumAdd =
        datum->add_subcommand("add", Tr("Register a datum (and its ellipsoid, when new) at the end of the catalogs", "Добавить датум (и новый эллипсоид) в конец каталогов"));
    datumAdd->add_option("NAME", da.name, Tr("The datum's name (at most 49 characters)", "Название датума (не более 49 символов)"))->required();
    datumAdd->add_option("--ellipsoid", da.ellipsoid, Tr("Its ellipsoid: a catalog name, or a new name with --a and --rf", "Его эллипсоид: название из каталога или новое с --a и --rf"))
        ->required()
        ->type_name("NAME");
    datumAdd->add_option("--a", da.a, Tr("Semi-major axis of a new ellipsoid, metres", "Большая полуось нового эллипсоида, метры"))->type_name("METRES");
    datumAdd->add_option("--rf", da.rf, Tr("Inverse flattening of a new ellipsoid", "Обратное сжатие нового эллипсоида"))->type_name("VALUE");
    datumAdd->add_option("--dx", da.dx, Tr("Shift of the datum's origin to WGS 84 along X, whole metres", "Сдвиг начала датума к WGS 84 по X, целые метры"))
        ->required()
        ->type_name("METRES");
    datumAdd->add_option("--dy", da.dy, Tr("The same along Y", "То же по Y"))->required()->type_name("METRES");
    datumAdd->add_option("--dz", da.dz, Tr("The same along Z", "То же по Z"))->required()->type_name("METRES");
    datumAdd->footer(
        "The catalog files are datum.ini and ellips.ini in MAPWRIGHT_APPDIR/Auxiliary Data.\n"
        "The new datum gets the next free index, which \"mapwright datums\" then shows;\n"
        "the catalog keeps the axis and flattening with six decimals.\n\n"
        "Example:\n  mapwright datum add \"Pulkovo 1942 (Kazakhstan)\" --ellipsoid \"Krassovsky 1940\" \\\n"
        "      --dx 15 --dy -130 --dz -84");

    // saved systems
    std::string key, systemText, from, to;
    CLI::App* system = app.add_subcommand("system", Tr("Save a reference system in the registry, or show one", "Сохранить систему координат в реестре или показать сохранённые"));
    system->require_subcommand(1);
    system->footer("Run \"mapwright system save|show|list --help\".");
    CLI::App* systemSave = system->add_subcommand("save", Tr("Save SYSTEM under KEY", "Сохранить SYSTEM под KEY"));
    systemSave->add_option("KEY", key, Tr("The registry key", "Ключ реестра"))->required();
    systemSave->add_option("SYSTEM", systemText, Tr("The system, in the SYSTEM syntax", "Система в синтаксисе SYSTEM"))->required();
    systemSave->footer(
        std::string(KeyHelp()) + "\n\n" + SystemSyntaxHelp() +
        "\n\nExample:\n  mapwright system save Software/Mapwright/gk7 'gk zone=7 datum=\"Pulkovo 1942\"'");
    CLI::App* systemShow = system->add_subcommand(
        "show", Tr("Show the system saved under KEY: projection, parameters, datum, ellipsoid, SYSTEM text",
                   "Показать систему под KEY: проекция, параметры, датум, эллипсоид, текст SYSTEM"));
    systemShow->add_option("KEY", key, Tr("The registry key", "Ключ реестра"))->required();
    systemShow->footer(std::string(KeyHelp()) +
                       "\n\nExample:\n  mapwright --lang ru system show Software/Mapwright/gk7");

    std::string listBase;
    CLI::App* systemList = system->add_subcommand("list", Tr("List the systems saved at or below BASE (all by default)", "Системы, сохранённые под BASE и ниже (по умолчанию все)"));
    systemList->add_option("BASE", listBase, Tr("The registry key to start from", "Ключ реестра, с которого начать"));
    systemList->footer("Example:\n  mapwright system list Software/Mapwright");

    CLI::App* pair = app.add_subcommand("pair", Tr("Save a source and destination pair in the registry, or show one", "Сохранить пару исходной и конечной систем в реестре или показать сохранённые"));
    pair->require_subcommand(1);
    pair->footer("Run \"mapwright pair save|show|list --help\".");
    CLI::App* pairSave = pair->add_subcommand("save", Tr("Save a pair under BASE (BASE\\GeoData_fm, BASE\\GeoData_to)", "Сохранить пару под BASE (BASE\\GeoData_fm, BASE\\GeoData_to)"));
    pairSave->add_option("BASE", key, Tr("The registry key of the pair", "Ключ реестра пары"))->required();
    pairSave->add_option("--from", from, "The source system")->required()->type_name("SYSTEM");
    pairSave->add_option("--to", to, Tr("The destination system", "Конечная система"))->required()->type_name("SYSTEM");
    pairSave->footer(std::string(BaseHelp()) + "\n\n" + SystemSyntaxHelp() +
                     "\n\nExample:\n  mapwright pair save Software/Mapwright/gcp --from 'gk zone=7 datum=4' \\\n"
                     "      --to 'utm zone=37 datum=3'\n  mapwright convert --pair Software/Mapwright/gcp points.txt");
    CLI::App* pairList = pair->add_subcommand("list", Tr("List the pairs saved at or below BASE (all by default)", "Пары, сохранённые под BASE и ниже (по умолчанию все)"));
    pairList->add_option("BASE", listBase, Tr("The registry key to start from", "Ключ реестра, с которого начать"));
    pairList->footer("Example:\n  mapwright pair list");
    CLI::App* pairShow = pair->add_subcommand("show", Tr("Show the pair saved under BASE", "Показать пару, сохранённую под BASE"));
    pairShow->add_option("BASE", key, Tr("The registry key of the pair", "Ключ реестра пары"))->required();
    pairShow->footer(std::string(BaseHelp()) + "\n\nExample:\n  mapwright pair show Software/Mapwright/gcp");

    // the dialog
    ChooseOptions ch;
    CLI::App* choose = app.add_subcommand(
        "choose", Tr("Choose a system in the library's dialog and save it under KEY\\GeoData",
                     "Выбрать систему в диалоге библиотеки и сохранить её под KEY\\GeoData"));
    choose->add_option("--key", ch.key,
                       std::string(Tr("The registry key whose GeoData the dialog opens on and saves under\n"
                                      "(default: the application's key, ",
                                      "Ключ реестра, чей GeoData диалог открывает и куда сохраняет\n"
                                      "(по умолчанию ключ приложения, ")) +
                           TypedKey(AppRegKey().GetString()) + ")")
        ->type_name("KEY");
    choose->add_flag("--geoid", ch.geoid,
                     Tr("The projection-and-geoid dialog: also a constant height or a geoid file",
                        "Диалог проекции и геоида: ещё постоянная высота или файл геоида"));
    choose->footer(
        std::string(Tr("Opens the projection choice dialog on the system saved under KEY\\GeoData. OK\n"
                       "saves the choice there and prints it as \"system show\" does (with --geoid, and\n"
                       "the geoid choice, which is not saved). It needs a desktop session: DISPLAY or\n"
                       "WAYLAND_DISPLAY set.\n"
                       "Exit status: 0 chosen and saved; 1 cancelled (nothing changes); 2 no dialog\n"
                       "can be shown (no desktop session or window back end) or a bad KEY.",
                       "Открывает диалог выбора проекции на системе, сохранённой под KEY\\GeoData. OK\n"
                       "сохраняет выбор туда и печатает его, как \"system show\" (с --geoid ещё и выбор\n"
                       "геоида, который не сохраняется). Нужен сеанс рабочего стола: задан DISPLAY или\n"
                       "WAYLAND_DISPLAY.\n"
                       "Код выхода: 0 выбрано и сохранено; 1 отменено (ничего не меняется); 2 диалог\n"
                       "не показать (нет сеанса рабочего стола или оконного модуля) или неверный KEY.")) +
        "\n\nExample:\n  mapwright choose --key Software/Mapwright/gk7 --geoid");

    // Every command's list of subcommands under a heading in the language.
    std::vector<CLI::App*> commands = {&app};
    for (size_t i = 0; i < commands.size(); ++i) {
        for (CLI::Option* option : commands[i]->get_options())
            if (!option->get_positional()) option->group(Tr("Options", "Параметры"));
        for (CLI::App* sub : commands[i]->get_subcommands({})) {
            sub->group(Tr("Subcommands", "Команды"));
            commands.push_back(sub);
        }
    }
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
        if (*systemList) return ListSystems(listBase);
        if (*pairList) return ListPairs(listBase);
        if (*choose) return Choose(ch, std::cout, std::cerr);
    } catch (const Error& e) {
        std::fflush(stdout);
        std::fprintf(stderr, "mapwright: %s\n", e.what());
        return kExitUsage;
    }
    return kExitUsage;
}
