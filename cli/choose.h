// `mapwright choose`: the library's projection choice dialog (or the
// projection-and-geoid dialog) on a saved system, for a user at a desktop.
#ifndef MAPWRIGHT_CLI_CHOOSE_H
#define MAPWRIGHT_CLI_CHOOSE_H

#include <optional>
#include <ostream>
#include <string>

namespace mwcli {

struct ChooseOptions {
    std::optional<std::string> key;  // as typed; none for the application's key (AppRegKey)
    bool geoid = false;              // the projection-and-geoid dialog
};

// The exit status when no dialog can be shown: no desktop session or no
// window back end.
inline constexpr int kExitNoDisplay = 2;

// Opens the dialog on the system saved under KEY\GeoData, the key the dialog
// saves under. On OK prints to `out` what `system show KEY/GeoData` prints
// (and the geoid choice) and returns 0; on Cancel, or an OK that saved
// nothing, says so on `err` and returns 1; returns kExitNoDisplay, saying
// what is needed, when the dialog cannot be shown. Throws Error for a bad
// key or a saved system the catalogs cannot name.
int Choose(const ChooseOptions& options, std::ostream& out, std::ostream& err);

}  // namespace mwcli

#endif
