#include "TerminalOptionsForm.h"

#include <charconv>
#include <istream>
#include <ostream>

#include "support/Text.h"
#include "ui/frmOptions.h"

namespace tarnwick::cli {
namespace {

constexpr const char* kHelp =
    "Type NUMBER to toggle a box, NUMBER VALUE to set a control (a slider's position, a box's 0 or 1, a text),\n"
    "ok, cancel or reset; an empty line is OK (Enter), esc is Cancel (Escape).\n";

bool Changeable(const ControlView& control) {
  return control.kind == ControlKind::CheckBox || control.kind == ControlKind::TextBox ||
         control.kind == ControlKind::Slider;
}

void Show(const frmOptions& form, std::ostream& out) {
  out << '\n' << AnsiToUtf8(form.Caption) << '\n';
  int number = 0;
  for (const ControlView& control : form.Controls()) {
    const std::string caption = AnsiToUtf8(control.caption);
    const char* disabled = control.enabled ? "" : "  (disabled)";
    std::string line;
    switch (control.kind) {
      case ControlKind::Label: out << "  " << caption << '\n'; continue;
      case ControlKind::Button: continue;
      case ControlKind::CheckBox: line = (control.value == 1 ? "[x] " : "[ ] ") + caption; break;
      case ControlKind::TextBox: line = "    " + caption + " " + AnsiToUtf8(control.text); break;
      case ControlKind::Slider:
        line = caption + ": " + control.valueLabel + " " + control.unitLabel + "  (slider at " +
               std::to_string(control.value) + ", " + std::to_string(control.min) + " to " +
               std::to_string(control.max) + ")";
        break;
    }
    ++number;
    out << (number < 10 ? "   " : "  ") << number << ' ' << line << disabled << '\n';
  }
  out << "  [OK] [Cancel] [Restore Defaults]\n";
}

// The id of the changeable control numbered `number` as Show numbers them,
// or the id itself when `word` names one.
const ControlView* FindControl(const std::vector<ControlView>& controls, const std::string& word) {
  int wanted = 0;
  const bool numeric = std::from_chars(word.data(), word.data() + word.size(), wanted).ec == std::errc();
  int number = 0;
  for (const ControlView& control : controls) {
    if (!Changeable(control)) continue;
    ++number;
    if ((numeric && number == wanted) || control.id == word) return &control;
  }
  return nullptr;
}

// Applies one line; the problem with it, or empty when it was understood.
std::string Apply(frmOptions& form, const std::string& line) {
  if (line.empty()) {
    form.Form_KeyPress(frmOptions::kKeyEnter);
    return {};
  }
  if (line == "esc" || line == "\x1b") {
    form.Form_KeyPress(frmOptions::kKeyEscape);
    return {};
  }
  for (const auto& [word, button] : {std::pair{"ok", "cbOK"}, {"cancel", "cbCancel"}, {"reset", "cbReset"}}) {
    if (line == word) {
      form.Press(button);
      return {};
    }
  }

  const auto space = line.find(' ');
  const std::string word = line.substr(0, space);
  const bool hasValue = space != std::string::npos;
  const std::string value = hasValue ? line.substr(space + 1) : "";
  const auto controls = form.Controls();
  const ControlView* control = FindControl(controls, word);
  if (control == nullptr) return "no control " + word;
  if (!control->enabled) return control->id + " is disabled";
  if (control->kind == ControlKind::TextBox) {
    form.SetText(control->id, Utf8ToAnsi(value));
    return {};
  }
  int number = control->kind == ControlKind::CheckBox && !hasValue ? 1 - control->value : 0;
  if (hasValue && std::from_chars(value.data(), value.data() + value.size(), number).ec != std::errc()) {
    return "not a number: " + value;
  }
  if (!hasValue && control->kind == ControlKind::Slider) return "a slider needs a value";
  return form.SetValue(control->id, number) ? "" : "a check box takes 0 or 1";
}

}  // namespace

bool RunOptionsDialog(ToolbarProcess& process, std::istream& in, std::ostream& out) {
  frmOptions form(
      {*process.settings, process.options, process.DefaultTextWindowWidth, [&process] { process.LoadOptions(); }});
  form.Form_Load();
  std::string line;
  while (!form.Closed) {
    Show(form, out);
    out << kHelp << "> " << std::flush;
    if (!std::getline(in, line)) {
      out << '\n';
      form.Form_KeyPress(frmOptions::kKeyEscape);
      break;
    }
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (const std::string problem = Apply(form, line); !problem.empty()) out << "tarnwick: " << problem << '\n';
  }
  out << (form.Saved ? "Options saved.\n" : "Cancelled: nothing written.\n");
  return form.Saved;
}

}  // namespace tarnwick::cli
