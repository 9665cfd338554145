// twtb.dll as Internet Explorer meets it: registered with regsvr32, created by
// its ProgID, sited in a browser, driven through the browser's events and its
// own COM interfaces, its windows inspected. The toolbar server is the
// reference server the test driver started (TARNWICK_SERVER); dialogs are
// answered as a person would, by a hook that presses a button.
#include <gtest/gtest.h>
#include <windows.h>
// After windows.h, which they need.
#include <commctrl.h>
#include <objbase.h>
#include <shlobj.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "ControlHost.h"
#include "LoopbackServer.h"
#include "ScriptObject.h"
#include "ScriptedBrowser.h"

namespace tarnwick::testing {
namespace {

namespace fs = std::filesystem;

constexpr const wchar_t* kProgId = L"prjTarnwickToolbar.Toolbar";
constexpr const char* kListedSite = "http://paypal-resolution-center.example/signin";

// Message boxes are answered by pressing `answer`; their texts are kept.
// The options and about dialogs, driven through their controls once shown:
// what they showed and what the person's changes did are kept.
struct DialogScript {
  static std::vector<std::string>& seen() {
    static std::vector<std::string> lines;
    return lines;
  }
  static std::vector<HWND> Controls(HWND dialog, const char* windowClass) {
    std::vector<HWND> found;
    for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
      if (ClassName(child) == windowClass) found.push_back(child);
    }
    return found;
  }
  static std::string ClassName(HWND window) {
    char name[64] = {};
    GetClassNameA(window, name, sizeof name);
    return name;
  }
  static std::string Text(HWND window) {
    char text[512] = {};
    GetWindowTextA(window, text, sizeof text);
    return text;
  }
  // A click as the button reports it to its dialog.
  static void Click(HWND dialog, HWND button) {
    if ((GetWindowLongPtrA(button, GWL_STYLE) & BS_TYPEMASK) == BS_AUTOCHECKBOX) {
      const bool checked = SendMessageA(button, BM_GETCHECK, 0, 0) == BST_CHECKED;
      SendMessageA(button, BM_SETCHECK, checked ? BST_UNCHECKED : BST_CHECKED, 0);
    }
    SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(button), BN_CLICKED), reinterpret_cast<LPARAM>(button));
  }
  static void CALLBACK Options(HWND dialog, UINT, UINT_PTR timer, DWORD) {
    KillTimer(dialog, timer);
    const auto edits = Controls(dialog, "Edit");
    const auto enabled = [&edits] { return IsWindowEnabled(edits.at(0)) != FALSE ? "enabled" : "disabled"; };
    seen().push_back(std::string("name box ") + enabled());
    for (HWND box : Controls(dialog, "Button")) {
      if (Text(box) == "Remember Details for Report URL Form") Click(dialog, box);
    }
    seen().push_back(std::string("name box ") + enabled());
    // The update interval: the fourth slider, moved to two hours.
    HWND slider = Controls(dialog, TRACKBAR_CLASSA).at(3);
    SendMessageA(slider, TBM_SETPOS, TRUE, 120);
    SendMessageA(dialog, WM_HSCROLL, MAKEWPARAM(TB_THUMBPOSITION, 120), reinterpret_cast<LPARAM>(slider));
    for (HWND label : Controls(dialog, "Static")) {
      if (Text(label).find("hours") != std::string::npos) seen().push_back("label " + Text(label));
    }
    Click(dialog, GetDlgItem(dialog, IDOK));
  }
  static void CALLBACK About(HWND dialog, UINT, UINT_PTR timer, DWORD) {
    KillTimer(dialog, timer);
    for (HWND label : Controls(dialog, "Static")) seen().push_back(Text(label));
    Click(dialog, GetDlgItem(dialog, IDOK));
  }
};

struct DialogAnswers {
  static int& answer() {
    static int value = IDNO;
    return value;
  }
  static std::vector<std::string>& texts() {
    static std::vector<std::string> shown;
    return shown;
  }
  static LRESULT CALLBACK Hook(int code, WPARAM wParam, LPARAM lParam) {
    if (code == HCBT_ACTIVATE) {
      HWND box = reinterpret_cast<HWND>(wParam);
      char caption[128] = {};
      GetWindowTextA(box, caption, sizeof caption);
      if (std::string(caption) == "Tarnwick Toolbar Options") SetTimer(box, 1, 10, &DialogScript::Options);
      if (std::string(caption) == "About Tarnwick Toolbar") SetTimer(box, 1, 10, &DialogScript::About);
      char name[64] = {};
      GetClassNameA(box, name, sizeof name);
      if (std::string(name) == "#32770" && GetDlgItem(box, IDOK) == nullptr && GetDlgItem(box, IDYES) != nullptr) {
        char text[2048] = {};
        GetDlgItemTextA(box, 0xFFFF, text, sizeof text);
        texts().push_back(text);
        PostMessageA(box, WM_COMMAND, static_cast<WPARAM>(answer()), 0);
      } else if (std::string(name) == "#32770" && GetDlgItem(box, IDOK) != nullptr && GetWindowTextLengthA(box) > 0 &&
                 GetDlgItem(box, 0xFFFF) != nullptr) {
        char text[2048] = {};
        GetDlgItemTextA(box, 0xFFFF, text, sizeof text);
        texts().push_back(text);
        PostMessageA(box, WM_COMMAND, IDOK, 0);
      }
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
  }
};

std::string ClassOf(HWND window) {
  char name[64] = {};
  GetClassNameA(window, name, sizeof name);
  return name;
}

std::vector<HWND> Children(HWND parent) {
  std::vector<HWND> children;
  for (HWND child = GetWindow(parent, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
    children.push_back(child);
  }
  return children;
}

std::string ReadFile(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

void SetSetting(const char* name, const char* value) {
  RegSetKeyValueA(HKEY_CURRENT_USER, "Software\\Tarnwick\\Toolbar\\Settings", name, REG_SZ, value,
                  static_cast<DWORD>(strlen(value) + 1));
}

std::string GetSetting(const char* name) {
  char value[512] = {};
  DWORD size = sizeof value;
  if (RegGetValueA(HKEY_CURRENT_USER, "Software\\Tarnwick\\Toolbar\\Settings", name, RRF_RT_REG_SZ, nullptr, value,
                   &size) != ERROR_SUCCESS) {
    return "<none>";
  }
  return value;
}

// A program folder of its own with the components and data files, the band
// registered with regsvr32, a clean settings key with the debug log on.
class BandTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Tarnwick");
    SetSetting("Debug", "True");
    program() = fs::temp_directory_path() / "twtb-test-program";
    fs::remove_all(program());
    fs::create_directories(program());
    for (const char* file : {TWTB_PAGEFETCH_FILE, TWTB_REX_FILE})
      fs::copy_file(file, program() / fs::path(file).filename());
    for (const char* name : {"localblock.dat", "xss.dat", "tarnwick.xml", "menu.xml", "logo.bmp"}) {
      fs::copy_file(fs::path(TWTB_SOURCE_DATA) / name, program() / name);
    }
    // Through the C runtime, whose copy of the environment the band reads.
    _putenv_s("TARNWICK_PROGRAM_DIR", program().string().c_str());
    ASSERT_EQ(RunRegsvr32(""), 0u);
    hook() = SetWindowsHookExA(WH_CBT, &DialogAnswers::Hook, nullptr, GetCurrentThreadId());
  }
  static void TearDownTestSuite() { UnhookWindowsHookEx(hook()); }

  static fs::path& program() {
    static fs::path folder;
    return folder;
  }
  static HHOOK& hook() {
    static HHOOK installed = nullptr;
    return installed;
  }
  static DWORD RunRegsvr32(const std::string& flags) {
    std::string line = "regsvr32.exe /s " + flags + " \"" + fs::path(TWTB_FILE).string() + "\"";
    STARTUPINFOA start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process)) {
      return GetLastError();
    }
    WaitForSingleObject(process.hProcess, 60000);
    DWORD status = 1;
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hProcess);
    CloseHandle(process.hThread);
    return status;
  }

  // A band created by its ProgID and given `site` (by default the scripted
  // browser) as its site.
  void StartBand(IUnknown* site = nullptr) {
    CLSID clsid{};
    ASSERT_EQ(CLSIDFromProgID(kProgId, &clsid), S_OK);
    ASSERT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDeskBand, reinterpret_cast<void**>(&band)),
              S_OK);
    IObjectWithSite* withSite = nullptr;
    ASSERT_EQ(band->QueryInterface(IID_IObjectWithSite, reinterpret_cast<void**>(&withSite)), S_OK);
    ASSERT_EQ(withSite->SetSite(site != nullptr ? site : static_cast<IServiceProvider*>(&browser)), S_OK);
    withSite->Release();
    if (site == nullptr) {
      ASSERT_NE(browser.sink, nullptr) << "the band did not connect to the browser's events";
    }
  }

  void TearDown() override { CloseBand(); }

  void CloseBand() {
    if (band == nullptr) return;
    band->CloseDW(0);
    IObjectWithSite* withSite = nullptr;
    band->QueryInterface(IID_IObjectWithSite, reinterpret_cast<void**>(&withSite));
    withSite->SetSite(nullptr);
    withSite->Release();
    band->Release();
    band = nullptr;
  }

  // Lets the window messages run until `done` or `seconds` pass.
  template <typename Condition>
  static void Pump(double seconds, Condition done) {
    const DWORD end = GetTickCount() + static_cast<DWORD>(seconds * 1000);
    while (!done() && GetTickCount() < end) {
      MSG message;
      while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
      }
      Sleep(10);
    }
  }

  bool BeforeNavigate2(const std::string& url, IDispatch* from = nullptr) { return browser.BeforeNavigate2(url, from); }

  void Arrived(DISPID event, const std::string& url) {
    VARIANT address;
    VariantInit(&address);
    address.vt = VT_BSTR;
    address.bstrVal = SysAllocString(std::wstring(url.begin(), url.end()).c_str());
    VARIANT arguments[2];
    VariantInit(&arguments[1]);
    arguments[1].vt = VT_DISPATCH;
    arguments[1].pdispVal = static_cast<IWebBrowser2*>(&browser);
    VariantInit(&arguments[0]);
    arguments[0].vt = VT_BYREF | VT_VARIANT;
    arguments[0].pvarVal = &address;
    browser.location = url;
    Raise(event, arguments, 2);
    VariantClear(&address);
  }

  bool NewWindow2() {
    IDispatch* window = nullptr;
    VARIANT_BOOL cancel = VARIANT_FALSE;
    VARIANT arguments[2];
    VariantInit(&arguments[1]);
    arguments[1].vt = VT_BYREF | VT_DISPATCH;
    arguments[1].ppdispVal = &window;
    VariantInit(&arguments[0]);
    arguments[0].vt = VT_BYREF | VT_BOOL;
    arguments[0].pboolVal = &cancel;
    Raise(DISPID_NEWWINDOW2, arguments, 2);
    return cancel != VARIANT_FALSE;
  }

  void Raise(DISPID event, VARIANT* arguments, UINT count) {
    DISPPARAMS parameters{arguments, nullptr, count, 0};
    ASSERT_EQ(browser.sink->Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr, nullptr,
                                   nullptr),
              S_OK);
  }

  static std::string Log() {
    char folder[MAX_PATH] = {};
    SHGetFolderPathA(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder);
    return ReadFile(fs::path(folder) / "Tarnwick" / "Toolbar" / "blocked.log");
  }

  static std::string Server() {
    char base[256] = {};
    GetEnvironmentVariableA("TARNWICK_SERVER", base, sizeof base);
    return base;
  }

  // The page on show outlives the band, which may hold it until it closes.
  ScriptObject document, pageWindow, click, forms, form, name, email, reason;
  ScriptedBrowser browser;
  IDeskBand* band = nullptr;
};

TEST_F(BandTest, StartsInItsBrowserWithTheWindowTreeAndClosesWithItsLogLines) {
  StartBand();
  HWND toolbar = nullptr;
  ASSERT_EQ(band->GetWindow(&toolbar), S_OK);
  EXPECT_EQ(ClassOf(toolbar), TOOLBARCLASSNAMEA);
  // The toolbar adds CCS_TOP to the style it was made with; not shown yet.
  EXPECT_EQ(static_cast<DWORD>(GetWindowLongPtrA(toolbar, GWL_STYLE)) & ~static_cast<DWORD>(CCS_TOP), 0x40019944u);
  HWND message = GetAncestor(toolbar, GA_PARENT);
  EXPECT_EQ(ClassOf(message), "#32770");
  EXPECT_NE(GetPropA(message, "WinProc"), nullptr);
  EXPECT_NE(GetPropA(message, "Object"), nullptr);

  HWND text = GetDlgItem(toolbar, 1);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(ClassOf(text), "Static");
  EXPECT_EQ(static_cast<DWORD>(GetWindowLongPtrA(text, GWL_STYLE)), 0x5000408Cu | SS_NOTIFY);
  EXPECT_NE(GetPropA(text, "WinProc"), nullptr);
  RECT button{};
  SendMessageA(toolbar, TB_GETRECT, 0, reinterpret_cast<LPARAM>(&button));
  RECT strip{};
  GetWindowRect(text, &strip);
  MapWindowPoints(nullptr, toolbar, reinterpret_cast<POINT*>(&strip), 2);
  EXPECT_EQ(strip.left, button.right + 14);  // TextLeft
  EXPECT_EQ(strip.top, 4);
  EXPECT_EQ(strip.bottom - strip.top, 22);

  // The menu buttons: the product bitmap, then the client logo after it,
  // both bitmap statics that notify; the toolbar's buttons start after both.
  std::vector<HWND> buttons;
  for (HWND child : Children(toolbar)) {
    if (ClassOf(child) == "Static" && (GetWindowLongPtrA(child, GWL_STYLE) & SS_BITMAP) == SS_BITMAP) {
      buttons.push_back(child);
    }
  }
  ASSERT_EQ(buttons.size(), 2u);
  RECT product{}, client{};
  GetWindowRect(buttons[0], &product);
  GetWindowRect(buttons[1], &client);
  EXPECT_EQ(client.left - product.left, product.right - product.left);
  EXPECT_EQ(button.left, (product.right - product.left) + (client.right - client.left) + 7);  // the indent
  for (HWND menuButton : buttons) {
    EXPECT_NE(GetWindowLongPtrA(menuButton, GWL_STYLE) & SS_NOTIFY, 0);
    EXPECT_NE(GetPropA(menuButton, "Object"), nullptr);
  }

  EXPECT_EQ(band->ShowDW(TRUE), S_OK);
  EXPECT_TRUE(IsWindowVisible(toolbar) != FALSE || (GetWindowLongPtrA(toolbar, GWL_STYLE) & WS_VISIBLE) != 0);
  EXPECT_EQ(band->ShowDW(FALSE), S_OK);
  EXPECT_EQ(GetWindowLongPtrA(toolbar, GWL_STYLE) & WS_VISIBLE, 0);

  EXPECT_EQ(band->CloseDW(0), S_OK);
  EXPECT_FALSE(IsWindow(toolbar));
  EXPECT_FALSE(IsWindow(message));
  const std::string log = Log();
  std::size_t at = 0;
  for (const char* line :
       {"(DestroyToolbar) Destroyed block list", "(DestroyToolbar) Unsubclassed and destroyed client menu",
        "(DestroyToolbar) Unsubclassed and destroyed Google search box",
        "(DestroyToolbar) Unsubclassed and destroyed Tarnwick menu",
        "(DestroyToolbar) Unsubclassed and destroyed toolbar text window",
        "(DestroyToolbar) Unsubclassed message window", "(DestroyToolbar) Destroyed toolbar window",
        "(DestroyToolbar) Destroyed message window", "(DestroyToolbar) Destroyed MD5 object",
        "(DestroyToolbar) Destroyed PageFetch object", "(IDeskBand_CloseDW) exiting"}) {
    at = log.find(line, at);
    EXPECT_NE(at, std::string::npos) << "missing or out of order: " << line;
  }
}

TEST_F(BandTest, AnswersTheBrowsersQuestionsAndKeepsNothing) {
  StartBand();
  DESKBANDINFO info{};
  info.dwMask = DBIM_MINSIZE | DBIM_MAXSIZE | DBIM_INTEGRAL | DBIM_ACTUAL | DBIM_TITLE | DBIM_MODEFLAGS;
  info.wszTitle[0] = L'x';
  ASSERT_EQ(band->GetBandInfo(0, 0, &info), S_OK);
  HWND toolbar = nullptr;
  band->GetWindow(&toolbar);
  RECT strip{};
  GetWindowRect(GetDlgItem(toolbar, 1), &strip);
  MapWindowPoints(nullptr, toolbar, reinterpret_cast<POINT*>(&strip), 2);
  EXPECT_EQ(info.ptMinSize.x, strip.right);  // TextLeft + TextWindowWidth
  EXPECT_EQ(info.ptMinSize.y, 22);
  EXPECT_EQ(info.ptActual.x, info.ptMinSize.x);
  EXPECT_EQ(info.ptMaxSize.x, -1);
  EXPECT_EQ(info.ptMaxSize.y, -1);
  EXPECT_EQ(info.ptIntegral.x, 1);
  EXPECT_EQ(info.wszTitle[0], L'\0');
  EXPECT_EQ(info.dwModeFlags, 0u);

  DESKBANDINFO titleOnly{};
  titleOnly.dwMask = DBIM_TITLE;
  titleOnly.ptMinSize = {77, 77};
  ASSERT_EQ(band->GetBandInfo(0, 0, &titleOnly), S_OK);
  EXPECT_EQ(titleOnly.ptMinSize.x, 77);

  EXPECT_EQ(band->ContextSensitiveHelp(TRUE), E_NOTIMPL);
  EXPECT_EQ(band->ResizeBorderDW(nullptr, nullptr, FALSE), E_NOTIMPL);

  IPersistStream* persist = nullptr;
  ASSERT_EQ(band->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(&persist)), S_OK);
  CLSID expected{};
  CLSIDFromProgID(kProgId, &expected);
  CLSID reported{};
  EXPECT_EQ(persist->GetClassID(&reported), S_OK);
  EXPECT_TRUE(IsEqualCLSID(reported, expected));
  EXPECT_EQ(persist->IsDirty(), E_NOTIMPL);
  ULARGE_INTEGER size{};
  EXPECT_EQ(persist->GetSizeMax(&size), E_NOTIMPL);
  IStream* stream = nullptr;
  ASSERT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, &stream), S_OK);
  EXPECT_EQ(persist->Save(stream, TRUE), S_OK);
  EXPECT_EQ(persist->Load(stream), S_OK);
  STATSTG stat{};
  stream->Stat(&stat, STATFLAG_NONAME);
  EXPECT_EQ(stat.cbSize.QuadPart, 0u);  // not a byte written
  stream->Release();
  persist->Release();

  // The library may go only once the band and every lock are gone.
  using CanUnload = HRESULT(STDAPICALLTYPE*)();
  auto canUnload = reinterpret_cast<CanUnload>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("twtb.dll"), "DllCanUnloadNow")));
  ASSERT_NE(canUnload, nullptr);
  EXPECT_EQ(canUnload(), S_FALSE);
  CloseBand();
  EXPECT_EQ(browser.sink, nullptr) << "the event sink stayed connected";
  EXPECT_EQ(canUnload(), S_OK);
}

TEST_F(BandTest, NavigationsAreJudgedThroughTheEventSinkWithCancelWrittenBack) {
  StartBand();
  DialogAnswers::texts().clear();
  DialogAnswers::answer() = IDNO;
  EXPECT_TRUE(BeforeNavigate2(kListedSite));
  ASSERT_EQ(DialogAnswers::texts().size(), 1u);
  EXPECT_NE(DialogAnswers::texts()[0].find("blocked by the Tarnwick Toolbar"), std::string::npos)
      << DialogAnswers::texts()[0];

  DialogAnswers::answer() = IDYES;
  EXPECT_FALSE(BeforeNavigate2(std::string(kListedSite) + "?again"));
  EXPECT_EQ(DialogAnswers::texts().size(), 2u);

  // A frame's navigation is never checked.
  ScriptObject frame;
  EXPECT_FALSE(BeforeNavigate2(kListedSite, &frame));
  EXPECT_EQ(DialogAnswers::texts().size(), 2u);

  // A harmless page that a server redirect turns into the listed one: the
  // band sends the browser to its block page, kept out of history.
  DialogAnswers::answer() = IDNO;
  EXPECT_FALSE(BeforeNavigate2("http://florist.example.org/spring.html"));
  Arrived(DISPID_NAVIGATECOMPLETE2, kListedSite);
  ASSERT_FALSE(browser.navigated.empty());
  const auto& [address, flags] = browser.navigated.back();
  EXPECT_TRUE(address.starts_with("res://")) << address;
  EXPECT_TRUE(address.ends_with("twtb.dll/phishingsite.htm")) << address;
  EXPECT_EQ(flags, 2);  // navNoHistory
}

TEST_F(BandTest, PopupsFollowTheRulesOfTheDocumentOnShow) {
  StartBand();
  EXPECT_TRUE(NewWindow2());  // no document: refused

  click.SetText(L"type", L"click");
  document.SetObject(L"parentWindow", &pageWindow);
  document.SetObject(L"activeElement", nullptr);
  pageWindow.SetObject(L"event", nullptr);
  browser.document = &document;
  browser.location = "http://florist.example.org/";
  EXPECT_TRUE(NewWindow2());  // a script alone
  pageWindow.SetObject(L"event", &click);
  EXPECT_FALSE(NewWindow2());  // the person clicked
  pageWindow.SetObject(L"event", nullptr);
  document.SetObject(L"activeElement", &click);
  EXPECT_FALSE(NewWindow2());  // an element has the focus
}

TEST_F(BandTest, TheReportFormIsFilledInAndItsDetailsKeptWhenSent) {
  SetSetting("AutoFillReportForm", "True");
  SetSetting("AutoFillName", "Ada Example");
  SetSetting("AutoFillEmail", "ada@example.com");
  StartBand();
  document.SetObject(L"forms", &forms);
  forms.items[L"frmReportURL"] = &form;
  form.items = {{L"name", &name}, {L"email", &email}, {L"reason", &reason}};
  for (ScriptObject* field : {&name, &email, &reason}) field->SetText(L"value", L"");
  browser.document = &document;
  const std::string page = Server() + "/report_url?url=http://a.example/";
  EXPECT_FALSE(BeforeNavigate2(page));
  Arrived(DISPID_NAVIGATECOMPLETE2, page);
  Arrived(DISPID_DOCUMENTCOMPLETE, page);
  EXPECT_EQ(name.Text(L"value"), L"Ada Example");
  EXPECT_EQ(email.Text(L"value"), L"ada@example.com");
  EXPECT_EQ(reason.focused, 1);

  // The person changes the details and sends the form: the handler the band
  // put on it keeps the new ones.
  IDispatch* onsubmit = form.Object(L"onsubmit");
  ASSERT_NE(onsubmit, nullptr);
  name.SetText(L"value", L"Ada Changed");
  DISPPARAMS none{};
  EXPECT_EQ(onsubmit->Invoke(DISPID_VALUE, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr), S_OK);
  EXPECT_EQ(GetSetting("AutoFillName"), "Ada Changed");
}

// The product menu drops from its button; the person picks Options..., then
// About... with the keyboard, and works the dialogs through their controls.
TEST_F(BandTest, TheProductMenuOpensTheDialogsWhichWorkThroughTheirControls) {
  StartBand();
  HWND toolbar = nullptr;
  band->GetWindow(&toolbar);
  HWND product = nullptr;
  for (HWND child : Children(toolbar)) {
    if (ClassOf(child) == "Static" && (GetWindowLongPtrA(child, GWL_STYLE) & SS_BITMAP) == SS_BITMAP) {
      product = child;
      break;
    }
  }
  ASSERT_NE(product, nullptr);
  const auto choose = [product](int downs) {
    for (int i = 0; i < downs; ++i) PostMessageA(product, WM_KEYDOWN, VK_DOWN, 0);
    PostMessageA(product, WM_KEYDOWN, VK_RETURN, 0);
    SendMessageA(product, WM_LBUTTONDOWN, MK_LBUTTON, 0);
  };
  DialogScript::seen().clear();
  const std::string autoFill = GetSetting("AutoFillReportForm");
  choose(6);  // the sixth entry: Options...
  ASSERT_GE(DialogScript::seen().size(), 3u) << "the options dialog did not open";
  EXPECT_NE(DialogScript::seen()[0], DialogScript::seen()[1]);  // the box enables or disables the name
  EXPECT_NE(DialogScript::seen()[2].find("2"), std::string::npos) << DialogScript::seen()[2];
  EXPECT_EQ(GetSetting("DLLUpdateInterval"), "7200");  // kept in seconds
  EXPECT_NE(GetSetting("AutoFillReportForm"), autoFill);

  DialogScript::seen().clear();
  choose(7);  // About...
  std::string shown;
  for (const std::string& line : DialogScript::seen()) shown += line + "\n";
  EXPECT_NE(shown.find("Tarnwick Toolbar"), std::string::npos) << shown;
  EXPECT_NE(shown.find("Version 1.0.0"), std::string::npos) << shown;
}

// Wine's own browser control, hosted as Internet Explorer hosts it, with a
// loopback listener standing in for the phishing site (as the control's
// proxy, since the listed host names no address): the band stops the
// navigation in BeforeNavigate2 before any request leaves, and lets it go
// when the person insists.
TEST_F(BandTest, TheBrowserControlsNavigationToAListedSiteStopsBeforeAnyRequest) {
  LoopbackServer phishing([](const Request&) { return Reply::Http(200, "OK", "<html>caught</html>"); });
  constexpr const char* kInternetSettings = "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";
  const DWORD on = 1;
  RegSetKeyValueA(HKEY_CURRENT_USER, kInternetSettings, "ProxyEnable", REG_DWORD, &on, sizeof on);
  const std::string proxy = phishing.Base().substr(std::string("http://").size());
  RegSetKeyValueA(HKEY_CURRENT_USER, kInternetSettings, "ProxyServer", REG_SZ, proxy.c_str(),
                  static_cast<DWORD>(proxy.size() + 1));
  const char* bypass = "127.0.0.1;localhost;<local>";
  RegSetKeyValueA(HKEY_CURRENT_USER, kInternetSettings, "ProxyOverride", REG_SZ, bypass,
                  static_cast<DWORD>(strlen(bypass) + 1));
  {
    ControlHost host;
    ASSERT_TRUE(host.Open());
    StartBand(static_cast<IServiceProvider*>(&host));
    DialogAnswers::texts().clear();
    DialogAnswers::answer() = IDNO;
    const auto navigate = [&host](const std::string& url) {
      VARIANT address;
      VariantInit(&address);
      address.vt = VT_BSTR;
      address.bstrVal = SysAllocString(std::wstring(url.begin(), url.end()).c_str());
      host.browser->Navigate2(&address, nullptr, nullptr, nullptr, nullptr);
      VariantClear(&address);
    };
    navigate(kListedSite);
    Pump(3, [] { return !DialogAnswers::texts().empty(); });
    Pump(1, [] { return false; });
    EXPECT_EQ(DialogAnswers::texts().size(), 1u);
    EXPECT_TRUE(phishing.Requests().empty()) << phishing.Requests().at(0).target;

    DialogAnswers::answer() = IDYES;
    navigate(std::string(kListedSite) + "?anyway");
    Pump(5, [&phishing] { return !phishing.Requests().empty(); });
    EXPECT_EQ(DialogAnswers::texts().size(), 2u);
    ASSERT_FALSE(phishing.Requests().empty()) << "the navigation the person allowed did not go ahead";
    EXPECT_NE(phishing.Requests().at(0).target.find("paypal-resolution-center.example"), std::string::npos);
    CloseBand();
  }
  HKEY settings = nullptr;
  RegOpenKeyExA(HKEY_CURRENT_USER, kInternetSettings, 0, KEY_SET_VALUE, &settings);
  for (const char* value : {"ProxyEnable", "ProxyServer", "ProxyOverride"}) RegDeleteValueA(settings, value);
  RegCloseKey(settings);
}

// Last: it takes the registration away.
TEST_F(BandTest, ZUnregisteringRemovesTheClassAndTheToolbarEntry) {
  CLSID clsid{};
  ASSERT_EQ(CLSIDFromProgID(kProgId, &clsid), S_OK);
  char file[MAX_PATH] = {};
  DWORD size = sizeof file;
  ASSERT_EQ(RegGetValueA(HKEY_CLASSES_ROOT, "CLSID\\{2B5D8F50-C543-404F-A39C-C590DEDDB01B}\\InprocServer32", nullptr,
                         RRF_RT_REG_SZ, nullptr, file, &size),
            ERROR_SUCCESS);
  EXPECT_TRUE(std::string(file).ends_with("twtb.dll")) << file;
  HKEY toolbars = nullptr;
  ASSERT_EQ(
      RegOpenKeyExA(HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Internet Explorer\\Toolbar", 0, KEY_READ, &toolbars),
      ERROR_SUCCESS);
  EXPECT_EQ(RegQueryValueExA(toolbars, "{2B5D8F50-C543-404F-A39C-C590DEDDB01B}", nullptr, nullptr, nullptr, nullptr),
            ERROR_SUCCESS);
  RegCloseKey(toolbars);

  EXPECT_EQ(RunRegsvr32("/u"), 0u);
  EXPECT_EQ(CLSIDFromProgID(kProgId, &clsid), CO_E_CLASSSTRING);
  IUnknown* object = nullptr;
  EXPECT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, reinterpret_cast<void**>(&object)),
            REGDB_E_CLASSNOTREG);
  ASSERT_EQ(
      RegOpenKeyExA(HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Internet Explorer\\Toolbar", 0, KEY_READ, &toolbars),
      ERROR_SUCCESS);
  EXPECT_EQ(RegQueryValueExA(toolbars, "{2B5D8F50-C543-404F-A39C-C590DEDDB01B}", nullptr, nullptr, nullptr, nullptr),
            ERROR_FILE_NOT_FOUND);
  RegCloseKey(toolbars);
}

}  // namespace
}  // namespace tarnwick::testing
