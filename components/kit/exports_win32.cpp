// The entry points of a component library on Windows: an in-process COM
// server for the library's one class, whose objects answer late-bound calls
// through IDispatch over the member table.
#include <windows.h>
// After windows.h, which they need.
#include <objbase.h>
#include <oleauto.h>
#include <olectl.h>

#include <atomic>
#include <filesystem>
#include <vector>

#include "Component.h"
#include "band/ClassRegistry.h"
#include "support/com_win32.h"

namespace tarnwick::kit {
namespace {

// COM reference counting shared by the two classes below.
template <typename Interface>
class Counted : public Interface {
 public:
  virtual ~Counted() = default;
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    if (iid == IID_IUnknown || iid == __uuidof(Interface)) {
      *out = static_cast<Interface*>(this);
      AddRef();
      return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
  }

 private:
  std::atomic<ULONG> references_{1};
};

// A failure as Automation reports it from a component: DISP_E_EXCEPTION with
// the error number in a FACILITY_CONTROL code and the text.
HRESULT RaiseException(EXCEPINFO* exception, long number, const std::string& error) {
  if (exception != nullptr) {
    *exception = {};
    exception->scode = MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, number);
    exception->bstrSource = SysAllocString(WideFromAnsi(ExportedClass().progId).c_str());
    exception->bstrDescription = SysAllocString(WideFromAnsi(error).c_str());
  }
  return DISP_E_EXCEPTION;
}

class DispatchObject final : public Counted<IDispatch> {
 public:
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count != nullptr) *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }

  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
    // Named arguments have no numbers here.
    for (UINT i = 1; i < count; ++i) ids[i] = DISPID_UNKNOWN;
    const auto index = object_->Find(AnsiFromWide(names[0]));
    ids[0] = index ? static_cast<DISPID>(*index + 1) : DISPID_UNKNOWN;
    return index && count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
  }

  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* answer,
                                   EXCEPINFO* exception, UINT* badArgument) override {
    if (parameters == nullptr) return E_INVALIDARG;
    if (parameters->cNamedArgs > 0) return DISP_E_NONAMEDARGS;
    if (id < 1) return DISP_E_MEMBERNOTFOUND;
    const auto index = static_cast<std::size_t>(id - 1);
    try {
      // IDispatch passes the arguments last first.
      const std::size_t count = parameters->cArgs;
      std::vector<Variant> values(count);
      for (std::size_t i = 0; i < count; ++i) {
        if (!FromVariant(parameters->rgvarg[count - 1 - i], values[i])) {
          if (badArgument != nullptr) *badArgument = static_cast<UINT>(count - 1 - i);
          return DISP_E_TYPEMISMATCH;
        }
      }
      Arguments arguments(values);
      Variant result;
      std::string error;
      const long status = object_->Call(index, arguments, result, error);
      if (status == kErrMemberNotFound) return DISP_E_MEMBERNOTFOUND;
      if (status != kInvokeOk) return RaiseException(exception, status, error);
      for (std::size_t i = 0; i < count; ++i) {
        const VARIANT& given = parameters->rgvarg[count - 1 - i];
        if (arguments.Changed(i) && (given.vt & VT_BYREF) != 0) WriteThrough(given, values[i]);
      }
      if (answer != nullptr) return ToVariant(result, *answer);
      return S_OK;
    } catch (const std::exception& failure) {
      return RaiseException(exception, kErrComponent, failure.what());
    }
  }

  static HRESULT Create(REFIID iid, void** out) {
    auto* object = new DispatchObject;
    const HRESULT status = object->QueryInterface(iid, out);
    object->Release();
    return status;
  }

 private:
  ComponentContext context_;  // outlives the object
  std::unique_ptr<Dispatcher> object_ = ExportedClass().create(context_);
};

class ClassFactory final : public Counted<IClassFactory> {
 public:
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    try {
      return DispatchObject::Create(iid, out);
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    } catch (...) {
      return E_FAIL;
    }
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

std::filesystem::path ThisLibraryFile() {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCWSTR>(&ThisLibraryFile), &module);
  wchar_t name[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameW(module, name, MAX_PATH);
  return std::filesystem::path(std::wstring(name, length));
}

}  // namespace
}  // namespace tarnwick::kit

using namespace tarnwick;

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  CLSID served{};
  if (FAILED(CLSIDFromString(WideFromAnsi(kit::ExportedClass().clsid).c_str(), &served)) || clsid != served) {
    return CLASS_E_CLASSNOTAVAILABLE;
  }
  auto* factory = new (std::nothrow) kit::ClassFactory;
  if (factory == nullptr) return E_OUTOFMEMORY;
  const HRESULT status = factory->QueryInterface(iid, out);
  factory->Release();
  return status;
}

// The library stays loaded for the life of the process: the objects and the
// factory keep no count of themselves that could say when it is safe to go,
// and the band holds its components as long as the browser runs anyway.
STDAPI DllCanUnloadNow() { return S_FALSE; }

STDAPI DllRegisterServer() {
  try {
    const auto& exported = kit::ExportedClass();
    kit::ComponentContext context;
    const ClassRegistration registration{std::string(exported.progId), std::string(exported.clsid),
                                         std::string(exported.description), kit::ThisLibraryFile()};
    const long status = WriteClassRegistration(context.settings(), registration);
    return status == ERROR_SUCCESS ? S_OK : HRESULT_FROM_WIN32(static_cast<DWORD>(status));
  } catch (...) {
    return SELFREG_E_CLASS;
  }
}

STDAPI DllUnregisterServer() {
  try {
    const auto& exported = kit::ExportedClass();
    kit::ComponentContext context;
    const long status = RemoveClassRegistration(context.settings(), exported.progId, exported.clsid);
    return status == ERROR_SUCCESS ? S_OK : HRESULT_FROM_WIN32(static_cast<DWORD>(status));
  } catch (...) {
    return SELFREG_E_CLASS;
  }
}
