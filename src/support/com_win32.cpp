#include "support/com_win32.h"

#include <oleauto.h>

#include <cstdio>
#include <cstring>
#include <type_traits>

namespace tarnwick {
namespace {

constexpr UINT kAnsiCodePage = 1252;

BSTR AllocString(std::string_view ansi) {
  const std::wstring wide = WideFromAnsi(ansi);
  return SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

std::string FromBstr(BSTR text) { return text == nullptr ? std::string() : AnsiFromWide({text, SysStringLen(text)}); }

SAFEARRAY* StringArray(const std::vector<std::string>& items) {
  SAFEARRAY* array = SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(items.size()));
  if (array == nullptr) return nullptr;
  for (LONG i = 0; i < static_cast<LONG>(items.size()); ++i) {
    BSTR item = AllocString(items[static_cast<std::size_t>(i)]);
    SafeArrayPutElement(array, &i, item);  // copies the string
    SysFreeString(item);
  }
  return array;
}

SAFEARRAY* ByteArray(const std::vector<std::uint8_t>& bytes) {
  SAFEARRAY* array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
  if (array == nullptr || bytes.empty()) return array;
  void* data = nullptr;
  if (SUCCEEDED(SafeArrayAccessData(array, &data))) {
    std::memcpy(data, bytes.data(), bytes.size());
    SafeArrayUnaccessData(array);
  }
  return array;
}

// The elements of a one-dimensional array of BSTR, of VARIANTs holding BSTR,
// or of bytes.
bool FromArray(VARTYPE elementType, SAFEARRAY* array, Variant& out) {
  if (array == nullptr) {
    if (elementType == VT_UI1)
      out = std::vector<std::uint8_t>();
    else
      out = std::vector<std::string>();
    return elementType == VT_UI1 || elementType == VT_BSTR || elementType == VT_VARIANT;
  }
  if (SafeArrayGetDim(array) != 1) return false;
  LONG lower = 0;
  LONG upper = -1;
  SafeArrayGetLBound(array, 1, &lower);
  SafeArrayGetUBound(array, 1, &upper);
  const auto count = static_cast<std::size_t>(upper >= lower ? upper - lower + 1 : 0);
  void* data = nullptr;
  if (count > 0 && FAILED(SafeArrayAccessData(array, &data))) return false;
  bool converted = true;
  if (elementType == VT_UI1) {
    const auto* first = static_cast<const std::uint8_t*>(data);
    out = std::vector<std::uint8_t>(first, first + count);
  } else if (elementType == VT_BSTR) {
    std::vector<std::string> items;
    for (std::size_t i = 0; i < count; ++i) items.push_back(FromBstr(static_cast<BSTR*>(data)[i]));
    out = std::move(items);
  } else if (elementType == VT_VARIANT) {
    std::vector<std::string> items;
    for (std::size_t i = 0; i < count && converted; ++i) {
      const VARIANT& item = static_cast<VARIANT*>(data)[i];
      converted = item.vt == VT_BSTR;
      if (converted) items.push_back(FromBstr(item.bstrVal));
    }
    out = std::move(items);
  } else {
    converted = false;
  }
  if (count > 0) SafeArrayUnaccessData(array);
  return converted;
}

}  // namespace

std::wstring WideFromAnsi(std::string_view ansi) {
  if (ansi.empty()) return {};
  const int length = MultiByteToWideChar(kAnsiCodePage, 0, ansi.data(), static_cast<int>(ansi.size()), nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(length), L'\0');
  MultiByteToWideChar(kAnsiCodePage, 0, ansi.data(), static_cast<int>(ansi.size()), wide.data(), length);
  return wide;
}

std::string AnsiFromWide(std::wstring_view wide) {
  if (wide.empty()) return {};
  const int length =
      WideCharToMultiByte(kAnsiCodePage, 0, wide.data(), static_cast<int>(wide.size()), nullptr, 0, nullptr, nullptr);
  std::string ansi(static_cast<std::size_t>(length), '\0');
  WideCharToMultiByte(kAnsiCodePage, 0, wide.data(), static_cast<int>(wide.size()), ansi.data(), length, nullptr,
                      nullptr);
  return ansi;
}

std::string SystemMessage(HRESULT result) {
  char* text = nullptr;
  const DWORD length =
      FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                     nullptr, static_cast<DWORD>(result), 0, reinterpret_cast<char*>(&text), 0, nullptr);
  std::string message(text != nullptr ? text : "", length);
  LocalFree(text);
  while (!message.empty() && (message.back() == '\n' || message.back() == '\r' || message.back() == ' ')) {
    message.pop_back();
  }
  char number[16];
  std::snprintf(number, sizeof number, "0x%08lX", static_cast<unsigned long>(result));
  return message.empty() ? std::string("Error ") + number : message + " (" + number + ")";
}

HRESULT ToVariant(const Variant& value, VARIANT& out) {
  VariantInit(&out);
  return std::visit(
      [&out](const auto& v) -> HRESULT {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, bool>) {
          out.vt = VT_BOOL;
          out.boolVal = v ? VARIANT_TRUE : VARIANT_FALSE;
        } else if constexpr (std::is_same_v<T, std::int32_t>) {
          out.vt = VT_I4;
          out.lVal = v;
        } else if constexpr (std::is_same_v<T, std::string>) {
          out.vt = VT_BSTR;
          out.bstrVal = AllocString(v);
          if (out.bstrVal == nullptr) return E_OUTOFMEMORY;
        } else if constexpr (std::is_same_v<T, std::vector<std::string>>) {
          out.vt = VT_ARRAY | VT_BSTR;
          out.parray = StringArray(v);
          if (out.parray == nullptr) return E_OUTOFMEMORY;
        } else if constexpr (std::is_same_v<T, std::vector<std::uint8_t>>) {
          out.vt = VT_ARRAY | VT_UI1;
          out.parray = ByteArray(v);
          if (out.parray == nullptr) return E_OUTOFMEMORY;
        }
        return S_OK;
      },
      value);
}

bool FromVariant(const VARIANT& in, Variant& out) {
  if (in.vt == (VT_BYREF | VT_VARIANT)) return in.pvarVal != nullptr && FromVariant(*in.pvarVal, out);
  const bool byRef = (in.vt & VT_BYREF) != 0;
  const VARTYPE type = in.vt & ~VT_BYREF;
  if ((type & VT_ARRAY) != 0) return FromArray(type & ~VT_ARRAY, byRef ? *in.pparray : in.parray, out);
  switch (type) {
    case VT_EMPTY:
    case VT_NULL:
    case VT_ERROR: out = std::monostate{}; return true;
    case VT_BOOL: out = (byRef ? *in.pboolVal : in.boolVal) != VARIANT_FALSE; return true;
    case VT_I4: out = static_cast<std::int32_t>(byRef ? *in.plVal : in.lVal); return true;
    case VT_INT: out = static_cast<std::int32_t>(byRef ? *in.pintVal : in.intVal); return true;
    case VT_I2: out = static_cast<std::int32_t>(byRef ? *in.piVal : in.iVal); return true;
    case VT_UI1: out = static_cast<std::int32_t>(byRef ? *in.pbVal : in.bVal); return true;
    case VT_BSTR: out = FromBstr(byRef ? *in.pbstrVal : in.bstrVal); return true;
    default: return false;
  }
}

bool WriteThrough(const VARIANT& reference, const Variant& value) {
  if (reference.vt == (VT_BYREF | VT_VARIANT)) {
    VariantClear(reference.pvarVal);
    return SUCCEEDED(ToVariant(value, *reference.pvarVal));
  }
  VARIANT fresh;
  if (FAILED(ToVariant(value, fresh))) return false;
  if (reference.vt != (VT_BYREF | fresh.vt)) {
    VariantClear(&fresh);
    return false;
  }
  switch (fresh.vt) {
    case VT_BOOL: *reference.pboolVal = fresh.boolVal; break;
    case VT_I4: *reference.plVal = fresh.lVal; break;
    case VT_BSTR:
      SysFreeString(*reference.pbstrVal);
      *reference.pbstrVal = fresh.bstrVal;
      break;
    default:  // the two array kinds
      SafeArrayDestroy(*reference.pparray);
      *reference.pparray = fresh.parray;
      break;
  }
  return true;
}

}  // namespace tarnwick
