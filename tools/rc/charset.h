// Windows-1251, the single-byte code page every text of the library is in.
#ifndef MAPWRIGHT_RC_CHARSET_H
#define MAPWRIGHT_RC_CHARSET_H

#include <cstdint>
#include <string>

namespace rc {

// The Windows-1251 byte of Unicode character `codePoint`, or -1 when the code
// page has none.
int Cp1251Byte(uint32_t codePoint);

// The UTF-8 form of `codePoint`, for messages.
std::string Utf8Of(uint32_t codePoint);

// Decodes one UTF-8 sequence at text[pos]; returns its length, 0 when the
// bytes there are not UTF-8 (overlong forms and surrogates included).
size_t DecodeUtf8(const std::string& text, size_t pos, uint32_t& codePoint);

}  // namespace rc

#endif
