#include "TerminalDialog.h"

#include <unistd.h>

#include <atomic>
#include <csignal>
#include <iostream>
#include <string>

#include "support/Text.h"

namespace tarnwick::cli {
namespace {

// Set by the signal handler, read on the waiting thread.
std::atomic<bool> interrupted{false};

void OnInterrupt(int) { interrupted = true; }

}  // namespace

void TerminalDialog::Show(std::string_view message) {
  visible_ = true;
  interrupted = false;
  std::signal(SIGINT, OnInterrupt);
  drawn_ = ::isatty(STDERR_FILENO) != 0;
  if (drawn_) std::cerr << AnsiToUtf8(message) << "  " << std::flush;
}

void TerminalDialog::Hide() {
  visible_ = false;
  std::signal(SIGINT, SIG_DFL);
  if (drawn_) std::cerr << "\r\033[K" << std::flush;
  drawn_ = false;
}

void TerminalDialog::DrawFrame(int frame) {
  static constexpr char kMarks[] = {'|', '/', '-', '\\'};
  if (drawn_) std::cerr << '\b' << kMarks[frame % 4] << std::flush;
}

void TerminalDialog::PollCancel() {
  if (visible_ && interrupted.exchange(false) && onCancel) onCancel();
}

}  // namespace tarnwick::cli
