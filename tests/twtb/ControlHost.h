// Plays Internet Explorer's frame around its browser: a window holding the
// real WebBrowser control, in-place active, and the site a toolbar band gets,
// which serves SID_SWebBrowserApp from that control. Only what the control
// and the band ask of a container is answered.
#pragma once

#include <windows.h>
// After windows.h, which they need.
#include <exdisp.h>
#include <oleidl.h>
#include <servprov.h>
#include <shlguid.h>

namespace tarnwick::testing {

// The test owns every object here: reference counts are not kept.
class ControlHost final : public IOleClientSite,
                          public IOleInPlaceSite,
                          public IOleInPlaceFrame,
                          public IServiceProvider {
 public:
  ControlHost() {
    window_ = CreateWindowExA(0, "Static", "browser", WS_OVERLAPPEDWINDOW, 0, 0, 800, 600, nullptr, nullptr, nullptr,
                              nullptr);
  }
  ~ControlHost() {
    if (object_ != nullptr) {
      object_->Close(OLECLOSE_NOSAVE);
      object_->SetClientSite(nullptr);
      object_->Release();
    }
    if (browser != nullptr) browser->Release();
    DestroyWindow(window_);
  }

  // Creates the control and activates it in the window; false when the
  // system has no browser control.
  bool Open() {
    if (FAILED(CoCreateInstance(CLSID_WebBrowser, nullptr, CLSCTX_INPROC_SERVER, IID_IOleObject,
                                reinterpret_cast<void**>(&object_)))) {
      return false;
    }
    object_->SetClientSite(static_cast<IOleClientSite*>(this));
    RECT area{0, 0, 800, 600};
    object_->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, static_cast<IOleClientSite*>(this), 0, window_, &area);
    return SUCCEEDED(object_->QueryInterface(IID_IWebBrowser2, reinterpret_cast<void**>(&browser)));
  }

  IWebBrowser2* browser = nullptr;

  // IUnknown, shared.
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (iid == IID_IUnknown || iid == IID_IOleClientSite) {
      *out = static_cast<IOleClientSite*>(this);
    } else if (iid == IID_IOleWindow || iid == IID_IOleInPlaceSite) {
      *out = static_cast<IOleInPlaceSite*>(this);
    } else if (iid == IID_IOleInPlaceFrame || iid == IID_IOleInPlaceUIWindow) {
      *out = static_cast<IOleInPlaceFrame*>(this);
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

  // IServiceProvider: the band's way to its browser.
  HRESULT STDMETHODCALLTYPE QueryService(REFGUID service, REFIID iid, void** out) override {
    if (service != SID_SWebBrowserApp || browser == nullptr) {
      *out = nullptr;
      return E_NOINTERFACE;
    }
    return browser->QueryInterface(iid, out);
  }

  // IOleClientSite
  HRESULT STDMETHODCALLTYPE SaveObject() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetContainer(IOleContainer** out) override {
    *out = nullptr;
    return E_NOINTERFACE;
  }
  HRESULT STDMETHODCALLTYPE ShowObject() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE OnShowWindow(BOOL) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE RequestNewObjectLayout() override { return E_NOTIMPL; }

  // IOleWindow, for the site and the frame alike.
  HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override {
    *window = window_;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }

  // IOleInPlaceSite
  HRESULT STDMETHODCALLTYPE CanInPlaceActivate() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE OnInPlaceActivate() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE OnUIActivate() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document, LPRECT position,
                                             LPRECT clip, LPOLEINPLACEFRAMEINFO info) override {
    *frame = static_cast<IOleInPlaceFrame*>(this);
    *document = nullptr;
    *position = {0, 0, 800, 600};
    *clip = *position;
    info->fMDIApp = FALSE;
    info->hwndFrame = window_;
    info->haccel = nullptr;
    info->cAccelEntries = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Scroll(SIZE) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE OnUIDeactivate(BOOL) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE OnInPlaceDeactivate() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE DiscardUndoState() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE DeactivateAndUndo() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE OnPosRectChange(LPCRECT) override { return S_OK; }

  // IOleInPlaceUIWindow, IOleInPlaceFrame
  HRESULT STDMETHODCALLTYPE GetBorder(LPRECT) override { return INPLACE_E_NOTOOLSPACE; }
  HRESULT STDMETHODCALLTYPE RequestBorderSpace(LPCBORDERWIDTHS) override { return INPLACE_E_NOTOOLSPACE; }
  HRESULT STDMETHODCALLTYPE SetBorderSpace(LPCBORDERWIDTHS) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE SetActiveObject(IOleInPlaceActiveObject*, LPCOLESTR) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE InsertMenus(HMENU, LPOLEMENUGROUPWIDTHS) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetMenu(HMENU, HOLEMENU, HWND) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE RemoveMenus(HMENU) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetStatusText(LPCOLESTR) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE EnableModeless(BOOL) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG, WORD) override { return S_FALSE; }

 private:
  HWND window_ = nullptr;
  IOleObject* object_ = nullptr;
};

}  // namespace tarnwick::testing
