// Text in this system is a byte string in the Windows-1252 ("ANSI") code page,
// as the file and transfer routines produce it. These helpers are the one place
// that knows how those bytes relate to Unicode.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {

// The UTF-16 code unit Windows gives a Windows-1252 byte. The five bytes the
// code page leaves undefined (0x81, 0x8D, 0x8F, 0x90, 0x9D) map to themselves,
// as MultiByteToWideChar maps them.
char16_t Cp1252ToUtf16(unsigned char byte);

// The byte a text character contributes when text is hashed "one byte per
// character": the low 8 bits of its UTF-16 code unit. Differs from the raw
// byte only for 0x80-0x9F (0x80, the euro sign U+20AC, gives 0xAC).
unsigned char HashByteOfAnsi(unsigned char byte);

// Windows-1252 bytes to UTF-8, for terminals, JSON and HTML output.
std::string AnsiToUtf8(std::string_view ansi);

// UTF-8 to Windows-1252; characters the code page lacks, and malformed
// sequences, become '?'.
std::string Utf8ToAnsi(std::string_view utf8);

// ASCII-only case folding, as registry names and schemes compare.
std::string LowerAscii(std::string_view text);
std::string UpperAscii(std::string_view text);
bool EqualsIgnoreCase(std::string_view a, std::string_view b);

// The pieces of `text` between occurrences of `separator`, empty ones kept
// ("a\r\n\r\nb" at CR LF gives "a", "", "b"; "" gives one empty piece).
std::vector<std::string> Split(std::string_view text, std::string_view separator);

}  // namespace tarnwick
