#include <windows.h>
// After windows.h, which they need.
#include <objbase.h>
#include <oleauto.h>

#include <vector>

#include "band/ClassRegistry.h"
#include "band/CreateObject.h"
#include "support/Files.h"
#include "support/com_win32.h"

namespace tarnwick {
namespace {

// The Automation error number behind a failed IDispatch::Invoke.
long InvokeErrorNumber(HRESULT result, const EXCEPINFO& exception) {
  switch (result) {
    case DISP_E_MEMBERNOTFOUND:
    case DISP_E_UNKNOWNNAME: return kErrMemberNotFound;
    case DISP_E_BADPARAMCOUNT:
    case DISP_E_TYPEMISMATCH:
    case DISP_E_PARAMNOTOPTIONAL:
    case DISP_E_BADVARTYPE: return kErrInvalidArgument;
    case DISP_E_EXCEPTION:
      if (exception.wCode != 0) return exception.wCode;
      if (HRESULT_FACILITY(exception.scode) == FACILITY_CONTROL) return HRESULT_CODE(exception.scode);
      return kErrComponent;
    default: return kErrComponent;
  }
}

// An IDispatch object called late-bound. Arguments go by reference
// (VT_BYREF | VT_VARIANT), as a Variant variable passes, so a member may
// write into them.
class DispatchObject final : public ComponentObject {
 public:
  DispatchObject(IDispatch* dispatch, bool comInitialized) : dispatch_(dispatch), comInitialized_(comInitialized) {}
  ~DispatchObject() override {
    dispatch_->Release();
    if (comInitialized_) CoUninitialize();
  }
  DispatchObject(const DispatchObject&) = delete;
  DispatchObject& operator=(const DispatchObject&) = delete;

  long Invoke(std::string_view member, std::span<Variant> args, Variant& result, std::string& error) override {
    std::wstring name = WideFromAnsi(member);
    LPOLESTR names[] = {name.data()};
    DISPID id = 0;
    if (FAILED(dispatch_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id))) {
      error = "Object doesn't support this property or method: " + std::string(member);
      return kErrMemberNotFound;
    }
    std::vector<VARIANT> values(args.size());
    std::vector<VARIANT> references(args.size());
    for (std::size_t i = 0; i < args.size(); ++i) {
      ToVariant(args[i], values[i]);
      // IDispatch takes its arguments last first.
      VARIANT& reference = references[args.size() - 1 - i];
      VariantInit(&reference);
      reference.vt = VT_BYREF | VT_VARIANT;
      reference.pvarVal = &values[i];
    }
    DISPPARAMS parameters{references.data(), nullptr, static_cast<UINT>(args.size()), 0};
    VARIANT answer;
    VariantInit(&answer);
    EXCEPINFO exception{};
    UINT badArgument = 0;
    const HRESULT status = dispatch_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, &answer,
                                             &exception, &badArgument);
    long number = kInvokeOk;
    result = std::monostate{};
    if (SUCCEEDED(status)) {
      for (std::size_t i = 0; i < args.size(); ++i) FromVariant(values[i], args[i]);
      if (!FromVariant(answer, result)) {
        error = "The answer of " + std::string(member) + " has a type the program does not read";
        number = kErrInvalidArgument;
      }
    } else {
      number = InvokeErrorNumber(status, exception);
      error = exception.bstrDescription != nullptr
                  ? AnsiFromWide({exception.bstrDescription, SysStringLen(exception.bstrDescription)})
                  : SystemMessage(status);
    }
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrHelpFile);
    VariantClear(&answer);
    for (VARIANT& value : values) VariantClear(&value);
    return number;
  }

 private:
  IDispatch* dispatch_;
  bool comInitialized_;
};

// COM's "cannot create": the ProgID or the class is not registered, or the
// file its registration names is gone. For the last, Windows answers
// ERROR_MOD_NOT_FOUND and Wine E_ACCESSDENIED, so the file itself is asked.
bool CannotCreate(SettingsStore& store, std::string_view progId, HRESULT result) {
  if (result == CO_E_CLASSSTRING || result == REGDB_E_CLASSNOTREG) return true;
  const auto file = RegisteredServerFile(store, progId);
  return file && !FileExists(*file);
}

long CreationErrorNumber(SettingsStore& store, std::string_view progId, HRESULT result) {
  if (CannotCreate(store, progId, result)) return kErrCannotCreateObject;
  if (result == HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND)) return kErrDllEntryPoint;
  return kErrLoadingDll;
}

}  // namespace

long CreateObject(SettingsStore& store, std::string_view progId, std::unique_ptr<ComponentObject>& object,
                  std::string& description) {
  // Balanced by the object, or at once when there is none: a host that runs
  // COM already keeps its apartment; any other gets one for the object's life.
  const bool initialized = SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
  CLSID clsid{};
  HRESULT status = CLSIDFromProgID(WideFromAnsi(progId).c_str(), &clsid);
  IDispatch* dispatch = nullptr;
  if (SUCCEEDED(status)) {
    status = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, reinterpret_cast<void**>(&dispatch));
  }
  if (FAILED(status)) {
    if (initialized) CoUninitialize();
    description = "Can't create object " + std::string(progId) + ": " + SystemMessage(status);
    return CreationErrorNumber(store, progId, status);
  }
  object = std::make_unique<DispatchObject>(dispatch, initialized);
  return 0;
}

}  // namespace tarnwick
