#include "ToolBarObject.h"

#include <sstream>

#include "BandProcess.h"

namespace tarnwick::twtb {

HRESULT ToolBarObject::Create(REFIID iid, void** out) {
  ToolBarObject* object = nullptr;
  try {
    object = new ToolBarObject;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
  const HRESULT status = object->QueryInterface(iid, out);
  object->Release();
  return status;
}

ToolBarObject::ToolBarObject()
    : process_(ThisApartment().process()), windows_(*this, process_.menus), band_(process_, windows_) {}

ToolBarObject::~ToolBarObject() {
  browser_.reset();
  if (inputSite_ != nullptr) inputSite_->Release();
  if (site_ != nullptr) site_->Release();
}

HRESULT ToolBarObject::QueryInterface(REFIID iid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (iid == IID_IUnknown || iid == IID_IOleWindow || iid == IID_IDockingWindow || iid == IID_IDeskBand) {
    *out = static_cast<IDeskBand*>(this);
  } else if (iid == IID_IInputObject) {
    *out = static_cast<IInputObject*>(this);
  } else if (iid == IID_IObjectWithSite) {
    *out = static_cast<IObjectWithSite*>(this);
  } else if (iid == IID_IPersist || iid == IID_IPersistStream) {
    *out = static_cast<IPersistStream*>(this);
  } else {
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

HRESULT ToolBarObject::GetWindow(HWND* window) {
  if (window == nullptr) return E_POINTER;
  *window = ToHwnd(band_.IOleWindow_GetWindow());
  return S_OK;
}

HRESULT ToolBarObject::ShowDW(BOOL show) {
  band_.IDeskBand_ShowDW(show != FALSE);
  return S_OK;
}

HRESULT ToolBarObject::CloseDW(DWORD) {
  band_.IDeskBand_CloseDW();
  return S_OK;
}

HRESULT ToolBarObject::GetBandInfo(DWORD, DWORD, DESKBANDINFO* info) {
  if (info == nullptr) return E_INVALIDARG;
  BandInfo answer;
  answer.mask = info->dwMask;
  band_.IDeskBand_GetBandInfo(answer);
  if ((info->dwMask & DBIM_MINSIZE) != 0) info->ptMinSize = {answer.minSize.x, answer.minSize.y};
  if ((info->dwMask & DBIM_MAXSIZE) != 0) info->ptMaxSize = {answer.maxSize.x, answer.maxSize.y};
  if ((info->dwMask & DBIM_INTEGRAL) != 0) info->ptIntegral = {answer.integral.x, answer.integral.y};
  if ((info->dwMask & DBIM_ACTUAL) != 0) info->ptActual = {answer.actual.x, answer.actual.y};
  if ((info->dwMask & DBIM_TITLE) != 0) info->wszTitle[0] = L'\0';
  if ((info->dwMask & DBIM_MODEFLAGS) != 0) info->dwModeFlags = answer.modeFlags;
  return S_OK;
}

HRESULT ToolBarObject::UIActivateIO(BOOL activate, MSG*) {
  if (activate != FALSE) SetFocus(ToHwnd(band_.IOleWindow_GetWindow()));
  return S_OK;
}

HRESULT ToolBarObject::HasFocusIO() {
  HWND toolbar = ToHwnd(band_.IOleWindow_GetWindow());
  HWND focus = GetFocus();
  return focus != nullptr && (focus == toolbar || IsChild(toolbar, focus)) ? S_OK : S_FALSE;
}

// Keys typed into the band's own windows (the search box) are the band's;
// every other key stays the browser's.
HRESULT ToolBarObject::TranslateAcceleratorIO(MSG* message) {
  if (message == nullptr || HasFocusIO() != S_OK) return S_FALSE;
  TranslateMessage(message);
  DispatchMessageA(message);
  return S_OK;
}

HRESULT ToolBarObject::SetSite(IUnknown* site) {
  if (inputSite_ != nullptr) inputSite_->Release();
  if (site_ != nullptr) site_->Release();
  site_ = site;
  inputSite_ = nullptr;
  // The band lets its old browser go before that browser's object does.
  if (browser_ || site == nullptr) band_.IObjectWithSite_SetSite(nullptr);
  browser_.reset();
  if (site == nullptr) return S_OK;
  site_->AddRef();
  site_->QueryInterface(IID_IInputObjectSite, reinterpret_cast<void**>(&inputSite_));
  browser_ = std::make_unique<ComBrowser>(site_, band_);
  // The browser moves the toolbar window into its own toolbar area.
  band_.IObjectWithSite_SetSite(browser_.get());
  return S_OK;
}

HRESULT ToolBarObject::GetSite(REFIID iid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (site_ == nullptr) return E_FAIL;
  return site_->QueryInterface(iid, out);
}

HRESULT ToolBarObject::GetClassID(CLSID* clsid) {
  if (clsid == nullptr) return E_POINTER;
  *clsid = ToolBarClassId();
  return S_OK;
}

HRESULT ToolBarObject::Load(IStream*) {
  std::istringstream nothing;
  band_.IPersistStream_Load(nothing);
  return S_OK;
}

HRESULT ToolBarObject::Save(IStream*, BOOL clearDirty) {
  std::ostringstream nothing;
  band_.IPersistStream_Save(nothing, clearDirty != FALSE);
  return S_OK;
}

void ToolBarObject::MenuButtonClicked(bool client) {
  if (client) {
    band_.ClientMenuClicked();
  } else {
    band_.ProductMenuClicked();
  }
}

void ToolBarObject::LinkClicked(const std::string& url) {
  if (band_.browser() != nullptr) band_.browser()->Navigate(NavigateRequest(url, 0, "_top"));
}

void ToolBarObject::SearchEntered(const std::string& query) { band_.Search(query); }

void ToolBarObject::FocusChanged(bool focused) {
  if (inputSite_ != nullptr) inputSite_->OnFocusChangeIS(static_cast<IDeskBand*>(this), focused ? TRUE : FALSE);
}

}  // namespace tarnwick::twtb
