// Paths port: the folders the program reads from and writes to.
#pragma once

#include <filesystem>
#include <memory>

namespace tarnwick {

class Paths {
 public:
  virtual ~Paths() = default;
  // Where the components and data files live and where updates write.
  virtual std::filesystem::path ProgramFolder() = 0;
  // The user's local (non-roaming) application data folder; the log lives in
  // Tarnwick/Toolbar below it.
  virtual std::filesystem::path LocalAppDataFolder() = 0;
};

// The platform's folders. TARNWICK_PROGRAM_DIR overrides the program folder.
std::unique_ptr<Paths> MakePlatformPaths();

// The folder of the running executable file (or, on Windows, of the module
// this code is linked into): where updater.exe works, whatever the
// environment says.
std::filesystem::path RunningModuleFolder();

}  // namespace tarnwick
