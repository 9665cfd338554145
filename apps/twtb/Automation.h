// Late-bound calls on a page's objects through IDispatch, as a script makes
// them: the document, its forms and fields are reached by name, whichever
// engine (or test) serves them.
#pragma once

#include <windows.h>
// After windows.h, which it needs.
#include <oaidl.h>

#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::twtb {

// A VARIANT that clears itself.
struct Value {
  Value() { VariantInit(&v); }
  ~Value() { VariantClear(&v); }
  Value(const Value&) = delete;
  Value& operator=(const Value&) = delete;
  // The object it holds, or null.
  IDispatch* Object() const { return v.vt == VT_DISPATCH ? v.pdispVal : nullptr; }
  VARIANT v;
};

bool GetProperty(IDispatch* object, std::wstring_view name, Value& out);
bool PutProperty(IDispatch* object, std::wstring_view name, const VARIANT& value);
// Calls a method with text arguments.
bool CallMethod(IDispatch* object, std::wstring_view name, const std::vector<std::string>& arguments, Value& out);

}  // namespace tarnwick::twtb
