// Internal to Basalt: the handle under which Basalt's own strings are registered.
#ifndef MAPWRIGHT_BASALT_MODULE_H
#define MAPWRIGHT_BASALT_MODULE_H

#include <mapwright/wintypes.h>

namespace basalt {
HMODULE OwnModule();
}

#endif
