// Internal to the platform library: letter case of Windows-1251 text, as
// Windows compares names on a Cyrillic system (through Unicode, so Cyrillic
// letters match across case as well as ASCII ones).
#ifndef MAPWRIGHT_PLATFORM_ANSI_CASE_H
#define MAPWRIGHT_PLATFORM_ANSI_CASE_H

#include <array>

namespace mw {

constexpr std::array<unsigned char, 256> MakeAnsiFoldTable() {
    std::array<unsigned char, 256> t{};
    for (int c = 0; c < 256; ++c) t[c] = static_cast<unsigned char>(c);
    for (int c = 'A'; c <= 'Z'; ++c) t[c] = static_cast<unsigned char>(c + 0x20);
    for (int c = 0xC0; c <= 0xDF; ++c) t[c] = static_cast<unsigned char>(c + 0x20);  // А..Я
    // The Cyrillic letters outside the main block: Ђ Ѓ Љ Њ Ќ Ћ Џ Ў Ј Ґ Ё Є Ї І Ѕ.
    constexpr unsigned char pairs[][2] = {
        {0x80, 0x90}, {0x81, 0x83}, {0x8A, 0x9A}, {0x8C, 0x9C}, {0x8D, 0x9D},
        {0x8E, 0x9E}, {0x8F, 0x9F}, {0xA1, 0xA2}, {0xA3, 0xBC}, {0xA5, 0xB4},
        {0xA8, 0xB8}, {0xAA, 0xBA}, {0xAF, 0xBF}, {0xB2, 0xB3}, {0xBD, 0xBE}};
    for (const auto& p : pairs) t[p[0]] = p[1];
    return t;
}

// The lower-case byte of each Windows-1251 byte.
inline constexpr std::array<unsigned char, 256> kAnsiFold = MakeAnsiFoldTable();

}  // namespace mw

#endif
