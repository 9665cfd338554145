// frmAbout: the about dialog as a model. A host draws the labels and buttons
// and calls cmdSysInfo_Click when the person presses "System Info...".
#pragma once

#include <string>
#include <string_view>

#include "settings/SettingsStore.h"
#include "support/Shell.h"
#include "ui/Ui.h"

namespace tarnwick {

class frmAbout {
 public:
  frmAbout(SettingsStore& settings, Ui& ui, Shell& shell);

  // Fills the caption and the labels.
  void Form_Load();
  void cmdSysInfo_Click() { StartSysInfo(); }

  // Starts the system information tool that the machine's settings name, or
  // says that there is none.
  void StartSysInfo();
  // Reads one value below `root`: a text without its terminator, a 32-bit
  // number as "&h" and its hexadecimal digits. False when the key or the
  // value is missing or does not fit the 1,024 bytes read.
  bool GetKeyValue(Root root, std::string_view KeyName, std::string_view SubKeyRef, std::string& KeyVal);

  std::string Caption;
  std::string lblTitle;
  std::string lblVersion;
  std::string lblDescription;
  std::string lblDisclaimer;
  std::string cmdOK = "OK";
  std::string cmdSysInfo = "&System Info...";

 private:
  SettingsStore& settings_;
  Ui& ui_;
  Shell& shell_;
};

}  // namespace tarnwick
