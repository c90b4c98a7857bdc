// Reading and writing catalog entries: one key of section "Format n".
#ifndef MAPWRIGHT_REFSYS_CATALOG_H
#define MAPWRIGHT_REFSYS_CATALOG_H

#include <string>

#include <mapwright/afxstr.h>

namespace mw {

// Values are read into 1024-byte buffers, so at most 1023 bytes of a value.
std::string ReadCatalogKey(const CString& file, int section, const char* key, const char* defaultText);
// Reads straight into a record's 50-byte name field (at most 49 bytes kept).
void ReadCatalogName(const CString& file, int section, const char* key, char (&field)[50]);
bool WriteCatalogKey(const CString& file, int section, const char* key, const char* value);

// The end-of-list sentinel and every default of an enumeration.
inline constexpr const char* kEndOfList = "QQ";

}  // namespace mw

#endif
