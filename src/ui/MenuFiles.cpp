#include "ui/MenuFiles.h"

#include <algorithm>

#include "support/Files.h"
#include "support/RoutineError.h"

namespace tarnwick {
namespace {

const RefreshEntry& MenuRefreshEntry(std::string_view file) {
  const auto& table = MenuRefreshTable();
  const auto entry =
      std::find_if(table.begin(), table.end(), [file](const RefreshEntry& row) { return row.file == file; });
  if (entry == table.end()) {
    throw RoutineError(kErrInvalidProcedureCall, std::string(file) + " has no row in the menu refresh table");
  }
  return *entry;
}

}  // namespace

std::string ReadAndRefreshMenuFile(MenuPorts& ports, std::string_view file) {
  const RefreshEntry& entry = MenuRefreshEntry(file);
  const auto path = ports.paths.ProgramFolder() / std::string(entry.target);
  std::string text = ReadFile(ports.log, path);
  if (text.empty()) return text;
  if (ports.updates.Refresh(entry, ports.agent)) text = ReadFile(ports.log, path);
  return text;
}

}  // namespace tarnwick
