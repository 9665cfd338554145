#include "Automation.h"

#include "support/com_win32.h"

namespace tarnwick::twtb {
namespace {

bool Invoke(IDispatch* object, std::wstring_view name, WORD flags, DISPPARAMS& parameters, Value* out) {
  if (object == nullptr) return false;
  std::wstring text(name);
  LPOLESTR names[] = {text.data()};
  DISPID id = DISPID_UNKNOWN;
  if (FAILED(object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id))) return false;
  return SUCCEEDED(object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                                  out != nullptr ? &out->v : nullptr, nullptr, nullptr));
}

}  // namespace

bool GetProperty(IDispatch* object, std::wstring_view name, Value& out) {
  DISPPARAMS none{};
  return Invoke(object, name, DISPATCH_PROPERTYGET, none, &out);
}

bool PutProperty(IDispatch* object, std::wstring_view name, const VARIANT& value) {
  VARIANT argument = value;
  DISPID named = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{&argument, &named, 1, 1};
  return Invoke(object, name, DISPATCH_PROPERTYPUT, parameters, nullptr);
}

bool CallMethod(IDispatch* object, std::wstring_view name, const std::vector<std::string>& arguments, Value& out) {
  std::vector<VARIANT> values(arguments.size());
  // IDispatch takes the arguments last first.
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    VARIANT& value = values[arguments.size() - 1 - i];
    VariantInit(&value);
    value.vt = VT_BSTR;
    value.bstrVal = SysAllocString(WideFromAnsi(arguments[i]).c_str());
  }
  DISPPARAMS parameters{values.data(), nullptr, static_cast<UINT>(values.size()), 0};
  const bool called = Invoke(object, name, DISPATCH_METHOD | DISPATCH_PROPERTYGET, parameters, &out);
  for (VARIANT& value : values) VariantClear(&value);
  return called;
}

}  // namespace tarnwick::twtb
