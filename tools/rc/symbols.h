// The names a resource script takes from the Windows headers it includes
// (<windows.h>, "winres.h", "afxres.h"...). We do not read those headers: the
// values the scripts need are built in, and including one of them is allowed.
#ifndef MAPWRIGHT_RC_SYMBOLS_H
#define MAPWRIGHT_RC_SYMBOLS_H

#include <cstdint>
#include <string>

namespace rc {

struct BuiltinSymbol {
    const char* name;
    int64_t value;
};

// Every built-in name and its value.
const BuiltinSymbol* BuiltinSymbols(size_t& count);

// True for a header whose definitions are built in ("windows.h", "afxres.h"...).
bool IsSystemHeader(const std::string& name);

}  // namespace rc

#endif
