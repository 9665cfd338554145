#include "TerminalUi.h"

#include <unistd.h>

#include <iostream>
#include <string>

#include "support/Text.h"

namespace tarnwick::cli {

int TerminalUi::MessageBox(std::string_view text, std::string_view title, int style) {
  std::cerr << AnsiToUtf8(title) << ": " << AnsiToUtf8(text) << '\n';
  if ((style & 0xF) != vbYesNo) return vbOK;
  const bool noIsDefault = (style & vbDefaultButton2) != 0;
  if (!::isatty(STDIN_FILENO)) return unattendedAnswer_;
  std::cerr << (noIsDefault ? "[y/N] " : "[Y/n] ") << std::flush;
  std::string answer;
  if (!std::getline(std::cin, answer) || answer.empty()) return noIsDefault ? vbNo : vbYes;
  return answer[0] == 'y' || answer[0] == 'Y' ? vbYes : vbNo;
}

}  // namespace tarnwick::cli
