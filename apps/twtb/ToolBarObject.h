// The band class the browser loads (prjTarnwickToolbar.Toolbar): the COM
// interfaces of a toolbar band, each handed to the band core.
#pragma once

// Before the shell's headers, whose DBIM_ macros would rewrite the core's
// constants of the same names and values.
#include "band/ToolBar.h"
//
#include <windows.h>
// After windows.h, which they need.
#include <ocidl.h>
#include <shlobj.h>

#include <memory>

#include "ComBrowser.h"
#include "Module.h"
#include "Win32BandWindows.h"

namespace tarnwick::twtb {

class ToolBarObject final : public IDeskBand,
                            public IInputObject,
                            public IObjectWithSite,
                            public IPersistStream,
                            private BandEvents,
                            private Counted {
 public:
  static HRESULT Create(REFIID iid, void** out);

  // IUnknown
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return AddReference(); }
  ULONG STDMETHODCALLTYPE Release() override { return ReleaseReference(); }

  // IOleWindow, IDockingWindow, IDeskBand
  HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override;
  HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE ShowDW(BOOL show) override;
  HRESULT STDMETHODCALLTYPE CloseDW(DWORD) override;
  HRESULT STDMETHODCALLTYPE ResizeBorderDW(LPCRECT, IUnknown*, BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetBandInfo(DWORD bandId, DWORD viewMode, DESKBANDINFO* info) override;

  // IInputObject
  HRESULT STDMETHODCALLTYPE UIActivateIO(BOOL activate, MSG*) override;
  HRESULT STDMETHODCALLTYPE HasFocusIO() override;
  HRESULT STDMETHODCALLTYPE TranslateAcceleratorIO(MSG* message) override;

  // IObjectWithSite
  HRESULT STDMETHODCALLTYPE SetSite(IUnknown* site) override;
  HRESULT STDMETHODCALLTYPE GetSite(REFIID iid, void** out) override;

  // IPersist, IPersistStream
  HRESULT STDMETHODCALLTYPE GetClassID(CLSID* clsid) override;
  HRESULT STDMETHODCALLTYPE IsDirty() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Load(IStream*) override;
  HRESULT STDMETHODCALLTYPE Save(IStream*, BOOL clearDirty) override;
  HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER*) override { return E_NOTIMPL; }

 private:
  ToolBarObject();
  ~ToolBarObject() override;

  void MenuButtonClicked(bool client) override;
  void LinkClicked(const std::string& url) override;
  void SearchEntered(const std::string& query) override;
  void FocusChanged(bool focused) override;

  ToolbarProcess& process_;
  Win32BandWindows windows_;
  ToolBar band_;
  IUnknown* site_ = nullptr;
  IInputObjectSite* inputSite_ = nullptr;
  std::unique_ptr<ComBrowser> browser_;
};

}  // namespace tarnwick::twtb
