#include "ComBrowser.h"

#include <exdispid.h>
#include <shlguid.h>

#include <cstring>
#include <vector>

#include "Automation.h"
#include "Module.h"
#include "band/NavigationGuard.h"
#include "band/ToolBar.h"
#include "support/com_win32.h"

namespace tarnwick::twtb {
namespace {

std::string TextOf(const VARIANT& value) {
  Variant read;
  if (!FromVariant(value, read)) return {};
  if (const auto* text = std::get_if<std::string>(&read)) return *text;
  if (const auto* number = std::get_if<std::int32_t>(&read)) return std::to_string(*number);
  return {};
}

int NumberOf(const VARIANT& value) {
  Variant read;
  if (!FromVariant(value, read)) return 0;
  if (const auto* number = std::get_if<std::int32_t>(&read)) return *number;
  return 0;
}

std::vector<std::uint8_t> BytesOf(const VARIANT& value) {
  Variant read;
  if (!FromVariant(value, read)) return {};
  if (auto* bytes = std::get_if<std::vector<std::uint8_t>>(&read)) return std::move(*bytes);
  return {};
}

// Writes an event's Cancel back where the browser reads it.
void WriteCancel(const VARIANT& cancel, bool value) {
  if (cancel.vt == (VT_BYREF | VT_BOOL) && cancel.pboolVal != nullptr) {
    *cancel.pboolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  }
}

bool ReadCancel(const VARIANT& cancel) {
  return cancel.vt == (VT_BYREF | VT_BOOL) && cancel.pboolVal != nullptr && *cancel.pboolVal != VARIANT_FALSE;
}

IDispatch* DispatchOf(const VARIANT& value) {
  if (value.vt == VT_DISPATCH) return value.pdispVal;
  if (value.vt == (VT_BYREF | VT_VARIANT) && value.pvarVal != nullptr) return DispatchOf(*value.pvarVal);
  return nullptr;
}

VARIANT Text(std::string_view text) {
  VARIANT value;
  VariantInit(&value);
  value.vt = VT_BSTR;
  value.bstrVal = SysAllocString(WideFromAnsi(text).c_str());
  return value;
}

// The block page the guard sends a refused page to: the band's own resource,
// named by its file so that it shows without the about-URL entry too.
std::string BlockPageAddress() {
  char name[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameA(ThisModule(), name, MAX_PATH);
  return "res://" + std::string(name, length) + "/phishingsite.htm";
}

// An IDispatch that is only ever invoked by number (an event sink, a script's
// handler): no type information and no names. It answers to IUnknown,
// IDispatch and, when given, one interface ID more.
class InvokedByNumber : public IDispatch, private Counted {
 public:
  explicit InvokedByNumber(const IID* alsoAnswers = nullptr) : alsoAnswers_(alsoAnswers) {}
  ULONG STDMETHODCALLTYPE AddRef() override { return AddReference(); }
  ULONG STDMETHODCALLTYPE Release() override { return ReleaseReference(); }
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    if (iid != IID_IUnknown && iid != IID_IDispatch && (alsoAnswers_ == nullptr || iid != *alsoAnswers_)) {
      *out = nullptr;
      return E_NOINTERFACE;
    }
    *out = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count != nullptr) *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return DISP_E_UNKNOWNNAME;
  }

 private:
  const IID* alsoAnswers_;
};

// The report form's submit handler: a script calls it with DISPID_VALUE.
class SubmitHandler final : public InvokedByNumber {
 public:
  explicit SubmitHandler(BandLink band) : band_(std::move(band)) {}
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    if (id != DISPID_VALUE) return DISP_E_MEMBERNOTFOUND;
    if (*band_ != nullptr) (*band_)->guard().oForm_onsubmit();
    return S_OK;
  }

 private:
  BandLink band_;
};

}  // namespace

// DWebBrowserEvents2, as the browser raises its events: each goes to the
// guard, and a Cancel the guard set goes back to the browser.
class ComBrowser::EventSink final : public InvokedByNumber {
 public:
  explicit EventSink(ComBrowser& owner) : InvokedByNumber(&DIID_DWebBrowserEvents2), owner_(&owner) {}
  void Detach() { owner_ = nullptr; }

  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                                   UINT*) override {
    if (owner_ == nullptr || parameters == nullptr) return S_OK;
    // The arguments come last first.
    const UINT count = parameters->cArgs;
    const auto argument = [parameters, count](UINT index) -> const VARIANT& {
      return parameters->rgvarg[count - 1 - index];
    };
    NavigationGuard& guard = owner_->band().guard();
    switch (id) {
      case DISPID_BEFORENAVIGATE2: {
        if (count < 7) return DISP_E_BADPARAMCOUNT;
        bool cancel = ReadCancel(argument(6));
        guard.m_oIE_BeforeNavigate2(owner_->IsTopLevel(DispatchOf(argument(0))), TextOf(argument(1)),
                                    NumberOf(argument(2)), TextOf(argument(3)), BytesOf(argument(4)),
                                    TextOf(argument(5)), cancel);
        WriteCancel(argument(6), cancel);
        break;
      }
      case DISPID_NAVIGATECOMPLETE2:
        if (count < 2) return DISP_E_BADPARAMCOUNT;
        guard.m_oIE_NavigateComplete2(owner_->IsTopLevel(DispatchOf(argument(0))), TextOf(argument(1)));
        break;
      case DISPID_DOCUMENTCOMPLETE:
        if (count < 2) return DISP_E_BADPARAMCOUNT;
        guard.m_oIE_DocumentComplete(owner_->IsTopLevel(DispatchOf(argument(0))), TextOf(argument(1)));
        break;
      case DISPID_NEWWINDOW2: {
        if (count < 2) return DISP_E_BADPARAMCOUNT;
        bool cancel = ReadCancel(argument(1));
        guard.m_oIE_NewWindow2(cancel);
        WriteCancel(argument(1), cancel);
        break;
      }
      case DISPID_ONMENUBAR:
        if (count >= 1) guard.m_oIE_OnMenuBar(NumberOf(argument(0)) != 0);
        break;
      case DISPID_ONSTATUSBAR:
        if (count >= 1) guard.m_oIE_OnStatusBar(NumberOf(argument(0)) != 0);
        break;
      case DISPID_ONTOOLBAR:
        if (count >= 1) guard.m_oIE_OnToolBar(NumberOf(argument(0)) != 0);
        break;
      default: break;
    }
    return S_OK;
  }

 private:
  ComBrowser* owner_;
};

ComDocument::ComDocument(IDispatch* document, BandLink band) : document_(document), band_(std::move(band)) {
  document_->AddRef();
}

ComDocument::~ComDocument() { document_->Release(); }

namespace {

// document.forms(form), and that form's field.
bool FindForm(IDispatch* document, std::string_view form, Value& out) {
  Value forms;
  return GetProperty(document, L"forms", forms) && CallMethod(forms.Object(), L"item", {std::string(form)}, out) &&
         out.Object() != nullptr;
}

bool FindField(IDispatch* document, std::string_view form, std::string_view field, Value& out) {
  Value found;
  return FindForm(document, form, found) && CallMethod(found.Object(), L"item", {std::string(field)}, out) &&
         out.Object() != nullptr;
}

}  // namespace

bool ComDocument::HasForm(std::string_view form) {
  Value found;
  return FindForm(document_, form, found);
}

std::optional<std::string> ComDocument::FieldValue(std::string_view form, std::string_view field) {
  Value found;
  Value value;
  if (!FindField(document_, form, field, found) || !GetProperty(found.Object(), L"value", value)) return std::nullopt;
  return TextOf(value.v);
}

bool ComDocument::SetFieldValue(std::string_view form, std::string_view field, std::string_view value) {
  Value found;
  if (!FindField(document_, form, field, found)) return false;
  VARIANT text = Text(value);
  const bool put = PutProperty(found.Object(), L"value", text);
  VariantClear(&text);
  return put;
}

bool ComDocument::FocusField(std::string_view form, std::string_view field) {
  Value found;
  Value ignored;
  return FindField(document_, form, field, found) && CallMethod(found.Object(), L"focus", {}, ignored);
}

void ComDocument::WatchSubmit(std::string_view form) {
  Value found;
  if (!FindForm(document_, form, found)) return;
  VARIANT handler;
  VariantInit(&handler);
  handler.vt = VT_DISPATCH;
  handler.pdispVal = new SubmitHandler(band_);
  PutProperty(found.Object(), L"onsubmit", handler);
  VariantClear(&handler);
}

std::optional<std::string> ComDocument::CurrentEventType() {
  Value window;
  Value event;
  Value type;
  if (!GetProperty(document_, L"parentWindow", window) || !GetProperty(window.Object(), L"event", event) ||
      event.Object() == nullptr || !GetProperty(event.Object(), L"type", type)) {
    return std::nullopt;
  }
  return TextOf(type.v);
}

bool ComDocument::HasActiveElement() {
  Value active;
  return GetProperty(document_, L"activeElement", active) && active.Object() != nullptr;
}

ComBrowser::ComBrowser(IUnknown* site, ToolBar& band) : site_(site), band_(std::make_shared<ToolBar*>(&band)) {
  site_->AddRef();
}

ComBrowser::~ComBrowser() {
  DisconnectBrowser();
  *band_ = nullptr;
  site_->Release();
}

Browser* ComBrowser::ConnectBrowser() {
  DisconnectBrowser();
  IServiceProvider* services = nullptr;
  if (FAILED(site_->QueryInterface(IID_IServiceProvider, reinterpret_cast<void**>(&services)))) return nullptr;
  IWebBrowser2* browser = nullptr;
  services->QueryService(SID_SWebBrowserApp, IID_IWebBrowser2, reinterpret_cast<void**>(&browser));
  services->Release();
  if (browser == nullptr) return nullptr;
  browser_ = browser;
  IConnectionPointContainer* points = nullptr;
  if (SUCCEEDED(browser_->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&points)))) {
    if (SUCCEEDED(points->FindConnectionPoint(DIID_DWebBrowserEvents2, &events_))) {
      sink_ = new EventSink(*this);
      if (FAILED(events_->Advise(static_cast<IDispatch*>(sink_), &cookie_))) cookie_ = 0;
    }
    points->Release();
  }
  return this;
}

void ComBrowser::DisconnectBrowser() {
  if (events_ != nullptr) {
    if (cookie_ != 0) events_->Unadvise(cookie_);
    events_->Release();
  }
  if (sink_ != nullptr) {
    sink_->Detach();
    sink_->Release();
  }
  events_ = nullptr;
  sink_ = nullptr;
  cookie_ = 0;
  document_.reset();
  if (browser_ != nullptr) browser_->Release();
  browser_ = nullptr;
}

bool ComBrowser::IsTopLevel(IDispatch* object) const {
  if (object == nullptr || browser_ == nullptr) return false;
  IUnknown* mine = nullptr;
  IUnknown* theirs = nullptr;
  browser_->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&mine));
  object->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&theirs));
  const bool same = mine != nullptr && mine == theirs;
  if (mine != nullptr) mine->Release();
  if (theirs != nullptr) theirs->Release();
  return same;
}

void ComBrowser::Stop() {
  if (browser_ != nullptr) browser_->Stop();
}

void ComBrowser::Navigate(const NavigateRequest& request) {
  if (browser_ == nullptr) return;
  const std::string address = request.url == kBlockPageAddress ? BlockPageAddress() : request.url;
  VARIANT url = Text(address);
  VARIANT flags;
  VariantInit(&flags);
  flags.vt = VT_I4;
  flags.lVal = request.flags;
  VARIANT frame = Text(request.targetFrame);
  VARIANT headers = Text(request.headers);
  VARIANT post;
  VariantInit(&post);
  if (!request.postData.empty()) {
    SAFEARRAY* bytes = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(request.postData.size()));
    void* data = nullptr;
    if (bytes != nullptr && SUCCEEDED(SafeArrayAccessData(bytes, &data))) {
      std::memcpy(data, request.postData.data(), request.postData.size());
      SafeArrayUnaccessData(bytes);
      post.vt = VT_ARRAY | VT_UI1;
      post.parray = bytes;
    }
  }
  browser_->Navigate2(&url, &flags, &frame, &post, &headers);
  for (VARIANT* value : {&url, &frame, &headers, &post}) VariantClear(value);
}

std::string ComBrowser::LocationURL() {
  BSTR location = nullptr;
  if (browser_ == nullptr || FAILED(browser_->get_LocationURL(&location)) || location == nullptr) return {};
  const std::string text = AnsiFromWide(location);
  SysFreeString(location);
  return text;
}

bool ComBrowser::Offline() {
  VARIANT_BOOL offline = VARIANT_FALSE;
  if (browser_ != nullptr) browser_->get_Offline(&offline);
  return offline != VARIANT_FALSE;
}

void ComBrowser::SetResizable(bool resizable) {
  if (browser_ != nullptr) browser_->put_Resizable(resizable ? VARIANT_TRUE : VARIANT_FALSE);
}

void ComBrowser::ShowBar(BrowserBar bar, bool show) {
  if (browser_ == nullptr) return;
  const VARIANT_BOOL value = show ? VARIANT_TRUE : VARIANT_FALSE;
  switch (bar) {
    case BrowserBar::Menu: browser_->put_MenuBar(value); break;
    case BrowserBar::Status: browser_->put_StatusBar(value); break;
    case BrowserBar::Tool: browser_->put_ToolBar(value ? 1 : 0); break;
    case BrowserBar::Address: browser_->put_AddressBar(value); break;
  }
}

int ComBrowser::Height() {
  long height = 0;
  if (browser_ != nullptr) browser_->get_Height(&height);
  return static_cast<int>(height);
}

void ComBrowser::SetHeight(int height) {
  if (browser_ != nullptr) browser_->put_Height(height);
}

Document* ComBrowser::CurrentDocument() {
  IDispatch* document = nullptr;
  if (browser_ == nullptr || FAILED(browser_->get_Document(&document)) || document == nullptr) {
    document_.reset();
    return nullptr;
  }
  if (!document_ || document_->object() != document) document_ = std::make_unique<ComDocument>(document, band_);
  document->Release();
  return document_.get();
}

}  // namespace tarnwick::twtb
