// A page object as a script sees it, for the scripted browser's document:
// named properties (read and written through IDispatch), an `item` method
// that finds a named child, and a `focus` method that is counted.
#pragma once

#include <windows.h>
// After windows.h, which it needs.
#include <oaidl.h>

#include <map>
#include <string>
#include <vector>

namespace tarnwick::testing {

// The test owns every object: reference counts are not kept.
class ScriptObject final : public IDispatch {
 public:
  ~ScriptObject() {
    for (auto& [name, value] : properties_) VariantClear(&value);
  }

  // Sets a property to a text, an object or nothing (null).
  void SetText(const std::wstring& name, const std::wstring& text) {
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_BSTR;
    value.bstrVal = SysAllocString(text.c_str());
    Put(name, value);
    VariantClear(&value);
  }
  void SetObject(const std::wstring& name, IDispatch* object) {
    VARIANT value;
    VariantInit(&value);
    value.vt = object != nullptr ? VT_DISPATCH : VT_NULL;
    value.pdispVal = object;
    Put(name, value);
  }
  std::wstring Text(const std::wstring& name) {
    const auto it = properties_.find(name);
    return it != properties_.end() && it->second.vt == VT_BSTR ? it->second.bstrVal : L"";
  }
  IDispatch* Object(const std::wstring& name) {
    const auto it = properties_.find(name);
    return it != properties_.end() && it->second.vt == VT_DISPATCH ? it->second.pdispVal : nullptr;
  }

  std::map<std::wstring, ScriptObject*> items;
  int focused = 0;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (iid != IID_IUnknown && iid != IID_IDispatch) {
      *out = nullptr;
      return E_NOINTERFACE;
    }
    *out = static_cast<IDispatch*>(this);
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
    const std::wstring name = names[0];
    for (std::size_t i = 0; i < names_.size(); ++i) {
      if (names_[i] == name) {
        ids[0] = static_cast<DISPID>(i + 1);
        return S_OK;
      }
    }
    names_.push_back(name);
    ids[0] = static_cast<DISPID>(names_.size());
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                   EXCEPINFO*, UINT*) override {
    if (id < 1 || static_cast<std::size_t>(id) > names_.size()) return DISP_E_MEMBERNOTFOUND;
    const std::wstring& name = names_[static_cast<std::size_t>(id - 1)];
    if (name == L"item" && parameters->cArgs == 1 && parameters->rgvarg[0].vt == VT_BSTR) {
      const auto it = items.find(parameters->rgvarg[0].bstrVal);
      if (result != nullptr) {
        VariantInit(result);
        result->vt = it != items.end() ? VT_DISPATCH : VT_NULL;
        result->pdispVal = it != items.end() ? it->second : nullptr;
      }
      return S_OK;
    }
    if (name == L"focus") {
      ++focused;
      return S_OK;
    }
    if ((flags & DISPATCH_PROPERTYPUT) != 0 && parameters->cArgs == 1) {
      Put(name, parameters->rgvarg[0]);
      return S_OK;
    }
    const auto it = properties_.find(name);
    if (it == properties_.end()) return DISP_E_MEMBERNOTFOUND;
    if (result != nullptr) VariantCopy(result, &it->second);
    return S_OK;
  }

 private:
  void Put(const std::wstring& name, const VARIANT& value) {
    VARIANT& slot = properties_[name];
    VariantClear(&slot);
    VariantCopy(&slot, const_cast<VARIANT*>(&value));
  }

  std::vector<std::wstring> names_;
  std::map<std::wstring, VARIANT> properties_;
};

}  // namespace tarnwick::testing
