#include "TerminalCommandHost.h"

#include <iostream>

#include "TerminalOptionsForm.h"
#include "support/Text.h"
#include "ui/frmAbout.h"

namespace tarnwick::cli {

bool TerminalCommandHost::Navigate(std::string_view url, std::string_view targetFrame) {
  std::cout << "navigate " << targetFrame << ' ' << AnsiToUtf8(url) << '\n';
  return true;
}

void TerminalCommandHost::OpenAbout() {
  frmAbout form(*process_.settings, process_.ui, process_.shell);
  form.Form_Load();
  for (const std::string* text :
       {&form.Caption, &form.lblTitle, &form.lblVersion, &form.lblDescription, &form.lblDisclaimer}) {
    std::cout << AnsiToUtf8(*text) << '\n';
  }
}

void TerminalCommandHost::OpenOptions() { RunOptionsDialog(process_, std::cin, std::cout); }

void TerminalCommandHost::Uninstall(std::string_view commandLine) {
  std::cout << "uninstall: would run " << commandLine << '\n';
}

}  // namespace tarnwick::cli
