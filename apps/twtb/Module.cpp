#include "Module.h"

#include "ToolBarObject.h"
#include "support/com_win32.h"

namespace tarnwick::twtb {
namespace {

struct ModuleState {
  HINSTANCE module = nullptr;
  std::atomic<long> objects{0};
  std::atomic<long> locks{0};
};

ModuleState& State() {
  static ModuleState state;
  return state;
}

class ClassFactory final : public IClassFactory, private Counted {
 public:
  ULONG STDMETHODCALLTYPE AddRef() override { return AddReference(); }
  ULONG STDMETHODCALLTYPE Release() override { return ReleaseReference(); }
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    if (iid != IID_IUnknown && iid != IID_IClassFactory) {
      *out = nullptr;
      return E_NOINTERFACE;
    }
    *out = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return ToolBarObject::Create(iid, out);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    CountLock(lock ? +1 : -1);
    return S_OK;
  }
};

}  // namespace

HINSTANCE ThisModule() { return State().module; }

CLSID ToolBarClassId() {
  CLSID clsid{};
  CLSIDFromString(WideFromAnsi(kToolBarClassId).c_str(), &clsid);
  return clsid;
}

void CountObject(int change) { State().objects += change; }
void CountLock(int change) { State().locks += change; }
bool CanUnload() { return State().objects == 0 && State().locks == 0; }

}  // namespace tarnwick::twtb

using namespace tarnwick::twtb;

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) {
    State().module = module;
    DisableThreadLibraryCalls(module);
  }
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (clsid != ToolBarClassId()) return CLASS_E_CLASSNOTAVAILABLE;
  auto* factory = new (std::nothrow) ClassFactory;
  if (factory == nullptr) return E_OUTOFMEMORY;
  const HRESULT status = factory->QueryInterface(iid, out);
  factory->Release();
  return status;
}

STDAPI DllCanUnloadNow() { return CanUnload() ? S_OK : S_FALSE; }
