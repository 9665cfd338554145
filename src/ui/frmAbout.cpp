#include "ui/frmAbout.h"

#include <cstdio>
#include <memory>

#include "ProductInfo.h"
#include "support/Files.h"

namespace tarnwick {
namespace {

constexpr std::string_view kSysInfoKey = "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO";
constexpr std::string_view kSysInfoValue = "PATH";
constexpr std::string_view kSysInfoLocationKey = "SOFTWARE\\Microsoft\\Shared Tools Location";
constexpr std::string_view kSysInfoLocationValue = "MSINFO";
constexpr std::uint32_t kValueBufferSize = 1024;
constexpr std::uint32_t kRegExpandSz = 2;

}  // namespace

frmAbout::frmAbout(SettingsStore& settings, Ui& ui, Shell& shell) : settings_(settings), ui_(ui), shell_(shell) {}

void frmAbout::Form_Load() {
  lblTitle = product::kFileDescription;
  Caption = "About " + lblTitle;
  lblVersion = "Version " + std::to_string(product::kVersionMajor) + "." + std::to_string(product::kVersionMinor) +
               "." + std::to_string(product::kVersionRevision) + " (20070813)";
  lblDescription =
      "Checks every page before the browser shows it: blocks phishing sites, cross-site scripting and unrequested "
      "pop-up windows, and shows each site's risk rating and hosting country.";
  lblDisclaimer = "This software is provided 'as is' with no explicit or implied warranties.";
}

void frmAbout::StartSysInfo() {
  std::string SysInfoPath;
  bool found = GetKeyValue(Root::LocalMachine, kSysInfoKey, kSysInfoValue, SysInfoPath);
  if (!found && GetKeyValue(Root::LocalMachine, kSysInfoLocationKey, kSysInfoLocationValue, SysInfoPath)) {
    const auto program = std::filesystem::path(SysInfoPath) / "MSINFO32.EXE";
    found = FileExists(program);
    SysInfoPath = program.string();
  }
  if (!found || !shell_.StartProgram(SysInfoPath, {}, WindowState::Normal)) {
    ui_.MessageBox("System Information Is Unavailable At This Time", product::kFileDescription, vbOKOnly);
  }
}

bool frmAbout::GetKeyValue(Root root, std::string_view KeyName, std::string_view SubKeyRef, std::string& KeyVal) {
  std::unique_ptr<RegistryKey> key;
  if (settings_.OpenKey(root, KeyName, Access::All, key) != kErrorSuccess) return false;
  std::uint32_t type = 0;
  std::uint32_t size = 0;
  if (key->QueryValueInfo(SubKeyRef, type, size) != kErrorSuccess || size > kValueBufferSize) return false;
  std::string data;
  if (key->QueryValueData(SubKeyRef, size, data) != kErrorSuccess) return false;
  KeyVal.clear();
  if (type == kRegSz || type == kRegExpandSz) {
    KeyVal = !data.empty() && data.back() == '\0' ? data.substr(0, data.size() - 1) : data;
  } else if (type == kRegDword && data.size() == 4) {
    std::uint32_t number = 0;
    for (int i = 3; i >= 0; --i) number = number << 8 | static_cast<unsigned char>(data[static_cast<std::size_t>(i)]);
    char digits[16];
    std::snprintf(digits, sizeof digits, "&h%X", number);
    KeyVal = digits;
  }
  return true;
}

}  // namespace tarnwick
