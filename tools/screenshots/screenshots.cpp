// Pictures of the two dialogs for the documentation: real widgets on Qt's
// offscreen platform, in English and Russian, on a Gauss-Kruger system on
// Pulkovo 1942. Usage: mw_screenshots DIR (writes choose-en.png, ...).
#include <mapwright/mapwright.h>
#include <mapwright/qt.h>

#include <QPixmap>
#include <QWidget>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

struct Shot {
    std::string path;
    bool saved = false;
};

// Grabs the window as shown, then closes it (Cancel: nothing is saved).
void Grab(QWidget* window, CDialog&, void* context) {
    auto* shot = static_cast<Shot*>(context);
    shot->saved = window->grab().save(QString::fromStdString(shot->path), "PNG");
    window->close();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s DIR\n", argv[0]);
        return 2;
    }
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    int failed = 0;
    for (const auto& [language, suffix] : {std::pair{LANG_ENGLISH_US, "en"}, std::pair{LANG_RUSSIAN, "ru"}}) {
        SetThreadUILanguage(language);
        // Gauss-Kruger zone 7 (central meridian 39 E) on Pulkovo 1942, catalog datum 4.
        CGeoReferenceData record;
        record.CreateGeoInfo(GaussKruger, 4);
        ScaledProjectionParam block{1.0, 39.0, 0.0, 7500000, 0};
        record.SetParam(&block);
        double height = 14.25;
        CString file;
        for (const char* dialog : {"choose", "geoid"}) {
            Shot shot{std::string(argv[1]) + "/" + dialog + "-" + suffix + ".png"};
            MwQtSetShownHook(&Grab, &shot);
            const int result = std::string(dialog) == "choose" ? ModalPrChooseDlg(nullptr, &record, nullptr)
                                                               : ModalPrAndGeoidDlg(nullptr, &record, &height, &file);
            if (result != IDCANCEL || !shot.saved) {
                std::fprintf(stderr, "%s: not written (the dialog returned %d)\n", shot.path.c_str(), result);
                failed = 1;
            } else {
                std::printf("%s\n", shot.path.c_str());
            }
        }
    }
    MwQtSetShownHook(nullptr, nullptr);
    return failed;
}
