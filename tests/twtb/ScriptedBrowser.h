// A browser object the test scripts: the IWebBrowser2 the band's site serves,
// with a connection point through which the test raises the events Wine's
// own browser control never fires (NavigateComplete2, NewWindow2,
// DocumentComplete) into the band's real event sink. It records what the
// band asks of the browser.
#pragma once

#include <windows.h>
// After windows.h, which they need.
#include <exdisp.h>
#include <exdispid.h>
#include <ocidl.h>
#include <olectl.h>
#include <servprov.h>
#include <shlguid.h>

#include <string>
#include <vector>

namespace tarnwick::testing {

// The test owns every object here: reference counts are not kept.
class ScriptedBrowser final : public IWebBrowser2,
                              public IConnectionPointContainer,
                              public IConnectionPoint,
                              public IServiceProvider {
 public:
  ~ScriptedBrowser() {
    if (sink != nullptr) sink->Release();
  }

  // IUnknown for all four; the browser is also the band's site.
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (iid == IID_IUnknown || iid == IID_IDispatch || iid == IID_IWebBrowser || iid == IID_IWebBrowserApp ||
        iid == IID_IWebBrowser2) {
      *out = static_cast<IWebBrowser2*>(this);
    } else if (iid == IID_IConnectionPointContainer) {
      *out = static_cast<IConnectionPointContainer*>(this);
    } else if (iid == IID_IServiceProvider) {
      *out = static_cast<IServiceProvider*>(this);
    } else {
      *out = nullptr;
      return E_NOINTERFACE;
    }
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }

  // IServiceProvider: the site leads to this browser.
  HRESULT STDMETHODCALLTYPE QueryService(REFGUID service, REFIID iid, void** out) override {
    if (service != SID_SWebBrowserApp) return E_NOINTERFACE;
    return QueryInterface(iid, out);
  }

  // IConnectionPointContainer and IConnectionPoint: DWebBrowserEvents2 only.
  HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** out) override {
    if (iid != DIID_DWebBrowserEvents2) return CONNECT_E_NOCONNECTION;
    *out = this;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) override {
    *iid = DIID_DWebBrowserEvents2;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** out) override {
    *out = this;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Advise(IUnknown* listener, DWORD* cookie) override {
    if (sink != nullptr) return CONNECT_E_ADVISELIMIT;
    if (FAILED(listener->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&sink)))) return E_NOINTERFACE;
    *cookie = 1;
    ++advised;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override {
    if (cookie != 1 || sink == nullptr) return CONNECT_E_NOCONNECTION;
    sink->Release();
    sink = nullptr;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }

  // IDispatch: the band reaches this browser early-bound.
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return DISP_E_MEMBERNOTFOUND;
  }

  // What the band uses of IWebBrowser2.
  HRESULT STDMETHODCALLTYPE Navigate2(VARIANT* url, VARIANT* flags, VARIANT*, VARIANT*, VARIANT*) override {
    navigated.emplace_back(Narrow(url->bstrVal), flags != nullptr && flags->vt == VT_I4 ? flags->lVal : 0);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE get_Document(IDispatch** out) override {
    *out = document;
    if (document != nullptr) document->AddRef();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE get_LocationURL(BSTR* out) override {
    *out = SysAllocString(std::wstring(location.begin(), location.end()).c_str());
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Stop() override {
    ++stops;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE get_Offline(VARIANT_BOOL* out) override {
    *out = VARIANT_FALSE;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE put_Resizable(VARIANT_BOOL) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE put_MenuBar(VARIANT_BOOL) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE put_StatusBar(VARIANT_BOOL) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE put_ToolBar(int) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE put_AddressBar(VARIANT_BOOL) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE get_Height(LONG* out) override {
    *out = height;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE put_Height(LONG value) override {
    height = value;
    return S_OK;
  }

  // The rest of IWebBrowser2 is never asked for.
  HRESULT STDMETHODCALLTYPE GoBack() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GoForward() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GoHome() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GoSearch() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Navigate(BSTR, VARIANT*, VARIANT*, VARIANT*, VARIANT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Refresh() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Refresh2(VARIANT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_Application(IDispatch**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_Parent(IDispatch**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_Container(IDispatch**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_TopLevelContainer(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_Type(BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_Left(LONG*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_Left(LONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_Top(LONG*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_Top(LONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_Width(LONG*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_Width(LONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_LocationName(BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_Busy(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Quit() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE ClientToWindow(int*, int*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE PutProperty(BSTR, VARIANT) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetProperty(BSTR, VARIANT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_Name(BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_HWND(SHANDLE_PTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_FullName(BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_Path(BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_Visible(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_Visible(VARIANT_BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_StatusBar(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_StatusText(BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_StatusText(BSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_ToolBar(int*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_MenuBar(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_FullScreen(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_FullScreen(VARIANT_BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE QueryStatusWB(OLECMDID, OLECMDF*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE ExecWB(OLECMDID, OLECMDEXECOPT, VARIANT*, VARIANT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE ShowBrowserBar(VARIANT*, VARIANT*, VARIANT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_ReadyState(READYSTATE*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_Offline(VARIANT_BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_Silent(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_Silent(VARIANT_BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_RegisterAsBrowser(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_RegisterAsBrowser(VARIANT_BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_RegisterAsDropTarget(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_RegisterAsDropTarget(VARIANT_BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_TheaterMode(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_TheaterMode(VARIANT_BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_AddressBar(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_Resizable(VARIANT_BOOL*) override { return E_NOTIMPL; }

  // Raises BeforeNavigate2 as the browser does (from a frame when `from` is
  // given); the Cancel the band wrote.
  bool BeforeNavigate2(const std::string& url, IDispatch* from = nullptr) {
    VARIANT address, flags, frame, post, headers;
    for (VARIANT* value : {&address, &flags, &frame, &post, &headers}) VariantInit(value);
    address.vt = VT_BSTR;
    address.bstrVal = SysAllocString(std::wstring(url.begin(), url.end()).c_str());
    flags.vt = VT_I4;
    frame.vt = VT_BSTR;
    frame.bstrVal = SysAllocString(L"");
    headers.vt = VT_BSTR;
    headers.bstrVal = SysAllocString(L"");
    VARIANT_BOOL cancel = VARIANT_FALSE;
    VARIANT arguments[7];
    for (VARIANT& argument : arguments) VariantInit(&argument);
    // Last first, each by reference as the browser passes them.
    arguments[6].vt = VT_DISPATCH;
    arguments[6].pdispVal = from != nullptr ? from : static_cast<IWebBrowser2*>(this);
    VARIANT* byReference[] = {&address, &flags, &frame, &post, &headers};
    for (int i = 0; i < 5; ++i) {
      arguments[5 - i].vt = VT_BYREF | VT_VARIANT;
      arguments[5 - i].pvarVal = byReference[i];
    }
    arguments[0].vt = VT_BYREF | VT_BOOL;
    arguments[0].pboolVal = &cancel;
    DISPPARAMS parameters{arguments, nullptr, 7, 0};
    sink->Invoke(DISPID_BEFORENAVIGATE2, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr, nullptr,
                 nullptr);
    for (VARIANT* value : {&address, &flags, &frame, &post, &headers}) VariantClear(value);
    return cancel != VARIANT_FALSE;
  }

  static std::string Narrow(BSTR text) {
    std::string narrow;
    for (const wchar_t* c = text; c != nullptr && *c != 0; ++c) narrow += static_cast<char>(*c);
    return narrow;
  }

  IDispatch* sink = nullptr;  // the band's DWebBrowserEvents2 sink
  int advised = 0;
  IDispatch* document = nullptr;
  std::string location;
  std::vector<std::pair<std::string, int>> navigated;  // address, flags
  int stops = 0;
  LONG height = 600;
};

}  // namespace tarnwick::testing
