// The subcommands other than convert: the catalogs and the saved systems.
#ifndef MAPWRIGHT_CLI_COMMANDS_H
#define MAPWRIGHT_CLI_COMMANDS_H

#include <optional>
#include <string>

namespace mwcli {

int ListDatums();
int ListEllipsoids();

struct DatumAddOptions {
    std::string name;
    std::string ellipsoid;
    std::optional<double> a, rf;  // required for an ellipsoid the catalog lacks
    double dx = 0, dy = 0, dz = 0;
};
int AddDatum(const DatumAddOptions& options);

int SaveSystem(const std::string& key, const std::string& system);
int ShowSystem(const std::string& key);
// What `system show KEY` prints. Throws Error as LoadSystem does.
std::string ShownSystem(const std::string& key);
// One line "Label: value" aligned with the lines of `system show`.
std::string ShownLine(const std::string& label, const std::string& value);
int SavePair(const std::string& base, const std::string& from, const std::string& to);
int ShowPair(const std::string& base);
// Every saved system (pair) at or below the key `base` ("" for all), with
// its SYSTEM text, in the registry's order.
int ListSystems(const std::string& base);
int ListPairs(const std::string& base);

}  // namespace mwcli

#endif
