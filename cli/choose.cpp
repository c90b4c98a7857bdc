#include "choose.h"

#include <cstdlib>

#include <mapwright/mapwright.h>

#include "commands.h"
#include "system_text.h"
#include "text.h"

namespace mwcli {

namespace {

// The dialog saves under AppRegKey() + "\GeoData": the application's key is
// pointed at KEY while the dialog is open, and put back after.
class AppKeyFor {
public:
    explicit AppKeyFor(const std::string& path) : m_previous(AppRegKey()) { SetAppRegKey(path.c_str()); }
    ~AppKeyFor() { SetAppRegKey(m_previous); }
    AppKeyFor(const AppKeyFor&) = delete;
    AppKeyFor& operator=(const AppKeyFor&) = delete;

private:
    CString m_previous;
};

bool Set(const char* name) {
    const char* value = std::getenv(name);
    return value && *value;
}

std::string NoDialogMessage() {
    std::string message = Tr("cannot show the dialog: it needs a desktop session (DISPLAY or WAYLAND_DISPLAY set) "
                             "and the window back end libmapwright-qt.so",
                             "не удаётся показать диалог: нужен сеанс рабочего стола (задан DISPLAY или "
                             "WAYLAND_DISPLAY) и оконный модуль libmapwright-qt.so");
    if (Set("DISPLAY") || Set("WAYLAND_DISPLAY"))
        message += Tr("; a session is set, so the back end could not be loaded or could not open its display",
                      "; сеанс задан, значит, модуль не загрузился или не открыл дисплей");
    return message;
}

std::string GeoidLine(double height, const CString& file) {
    const std::string choice = file.IsEmpty()
                                   ? std::string(Tr("constant height ", "постоянная высота ")) + ShortNumber(height) +
                                         Tr(" m", " м")
                                   : std::string(Tr("file ", "файл ")) + Utf8(file);
    return ShownLine(Tr("Geoid:", "Геоид:"), choice);
}

}  // namespace

int Choose(const ChooseOptions& options, std::ostream& out, std::ostream& err) {
    const std::string base = options.key ? RegistryPath(*options.key) : std::string(AppRegKey().GetString());
    const std::string path = base + "\\GeoData";

    // A key with nothing saved opens on the library's defaults.
    CGeoReferenceData record;
    record.LoadData(CString(path.c_str()));
    double height = 0.0;
    CString file;
    int rc = -1;
    {
        AppKeyFor key(base);
        rc = options.geoid ? ModalPrAndGeoidDlg(nullptr, &record, &height, &file)
                           : ModalPrChooseDlg(nullptr, &record, nullptr);
    }

    if (rc == -1) {
        err << "mapwright: " << NoDialogMessage() << "\n";
        return kExitNoDisplay;
    }
    if (rc != IDOK) {
        err << "mapwright: " << Tr("cancelled; nothing saved", "отменено; ничего не сохранено") << "\n";
        return kExitData;
    }
    // OK with an empty UTM zone or hemisphere closes the dialog without saving.
    if (!RegistryKeyExists(path)) {
        err << "mapwright: " << Tr("nothing was saved under ", "ничего не сохранено под ключом ")
            << Quoted(TypedKey(path)) << "\n";
        return kExitData;
    }
    out << ShownSystem(TypedKey(path));
    if (options.geoid) out << GeoidLine(height, file);
    return 0;
}

}  // namespace mwcli
