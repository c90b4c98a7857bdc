// Writes a script's records as a C++ source of constant tables: the
// MwModuleResources record of <mapwright/resources.h> under `symbol`, for the
// module file `moduleName`. Nothing in it allocates or runs at load.
#ifndef MAPWRIGHT_RC_WRITER_H
#define MAPWRIGHT_RC_WRITER_H

#include <string>

#include "model.h"

namespace rc {

std::string WriteTables(const Script& script, const std::string& moduleName, const std::string& symbol,
                        const std::string& scriptName);

}  // namespace rc

#endif
