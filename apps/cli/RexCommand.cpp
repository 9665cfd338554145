// tarnwick rex test|match SUBJECT PATTERN [FLAGS]
// tarnwick rex replace SUBJECT PATTERN REPLACEMENT [FLAGS]
// The regular-expression component's own answer, for people writing block
// lists: arguments in the component's order, text in the terminal's UTF-8.
#include <iostream>

#include "Cli.h"
#include "band/ComponentFactory.h"
#include "band/Components.h"
#include "support/Text.h"

namespace tarnwick::cli {
namespace {

constexpr const char* kUsage =
    "usage: tarnwick rex test|match SUBJECT PATTERN [FLAGS]\n"
    "       tarnwick rex replace SUBJECT PATTERN REPLACEMENT [FLAGS]\n";

int Print(const std::string& operation, const Variant& answer) {
  if (operation == "test") {
    const bool matched = std::holds_alternative<bool>(answer) && std::get<bool>(answer);
    std::cout << (matched ? "True" : "False") << '\n';
    return matched ? kExitOk : kExitFound;
  }
  if (operation == "match") {
    const auto* groups = std::get_if<std::vector<std::string>>(&answer);
    if (groups == nullptr) {
      std::cout << "no match\n";
      return kExitFound;
    }
    for (const auto& group : *groups) std::cout << AnsiToUtf8(group) << '\n';
    return kExitOk;
  }
  const auto* text = std::get_if<std::string>(&answer);
  std::cout << AnsiToUtf8(text != nullptr ? *text : std::string()) << '\n';
  return kExitOk;
}

}  // namespace

int RunRex(const std::vector<std::string>& args) {
  const std::string operation = args.empty() ? std::string() : args[0];
  const std::size_t least = operation == "replace" ? 4 : 3;
  if ((operation != "test" && operation != "match" && operation != "replace") || args.size() < least ||
      args.size() > least + 1) {
    std::cerr << kUsage;
    return kExitError;
  }
  Host host;
  ToolbarProcess& process = host.process();
  const auto object = NewObject(process, process.paths.ProgramFolder() / kRexComponent.file, kRexComponent.progId);
  if (!object) {
    std::cerr << "tarnwick: the regular-expression component could not be created (see the log)\n";
    return kExitError;
  }
  std::vector<Variant> values;
  for (std::size_t i = 1; i < args.size(); ++i) values.emplace_back(Utf8ToAnsi(args[i]));
  const std::string flags = args.size() > least ? args.back() : std::string();

  // The component answers "no match" for a pattern it cannot compile; say why.
  std::vector<Variant> prepare{values[1], flags};
  Variant compiled;
  std::string error;
  if (object->Invoke("Prepare", prepare, compiled, error) == kInvokeOk && compiled == Variant(false)) {
    std::cerr << "tarnwick: the pattern does not compile; the component treats it as no match\n";
  }

  const char* member = operation == "test" ? "Test" : operation == "match" ? "Match" : "Replace";
  Variant answer;
  if (object->Invoke(member, values, answer, error) != kInvokeOk) {
    std::cerr << "tarnwick: " << AnsiToUtf8(error) << '\n';
    return kExitError;
  }
  return Print(operation, answer);
}

}  // namespace tarnwick::cli
