// What the Windows backends on both sides of a COM call share: text between
// the program's Windows-1252 bytes and BSTRs (through code page 1252), values
// between Variant and VARIANT (strings as BSTR, string arrays as SAFEARRAYs
// of BSTR, byte arrays as SAFEARRAYs of VT_UI1), and HRESULTs as text.
#pragma once

#include <windows.h>
// After windows.h, which it needs.
#include <oaidl.h>

#include <string>
#include <string_view>

#include "support/ComponentObject.h"

namespace tarnwick {

std::wstring WideFromAnsi(std::string_view ansi);
std::string AnsiFromWide(std::wstring_view wide);

// The system's text for `result` and its number: "Class not registered
// (0x80040154)".
std::string SystemMessage(HRESULT result);

// Fills the empty VARIANT `out` with `value`.
HRESULT ToVariant(const Variant& value, VARIANT& out);
// The value `in` holds, looking through VT_BYREF. A missing optional argument
// (VT_ERROR) is empty. False for a type that has no Variant.
bool FromVariant(const VARIANT& in, Variant& out);
// Stores `value` where the VT_BYREF argument `reference` points; false when
// what it points at cannot hold that kind of value.
bool WriteThrough(const VARIANT& reference, const Variant& value);

}  // namespace tarnwick
