// A process in a temporary folder for tests that load real component
// libraries: the built files, copies of them in the program folder, and
// their registrations removed again at the end (on Windows they live in the
// registry, which outlives the test).
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "band/ComponentFactory.h"
#include "common/TestSupport.h"

namespace tarnwick::testing {

// The files the build made (compile definitions of the test).
inline const std::filesystem::path kBuiltRex = TARNWICK_REX_FILE;
inline const std::filesystem::path kBuiltProbe = TARNWICK_PROBE_FILE;

inline constexpr const char* kRexProgId = "Tarnwick.Rex";
inline constexpr const char* kRexClassId = "{6B0E3C52-8F4D-4C1A-9E27-3D5A1F7B9C40}";
inline constexpr const char* kProbeProgId = "Tarnwick.Probe";
inline constexpr const char* kProbeClassId = "{0D6F2A91-5C3B-4E7A-8B14-72E9C05A3F18}";

class ComponentTest : public ::testing::Test {
 protected:
  ComponentTest();
  ~ComponentTest() override;

  // Copies `built` into the program folder and returns the copy's path.
  std::filesystem::path Install(const std::filesystem::path& built);
  // Registers `file` and creates the object `progId`; fails the test when
  // there is none.
  std::unique_ptr<ComponentObject> Create(const std::filesystem::path& file, const char* progId);
  // Turns the debug log on, as the Debug setting does for the program and
  // the components it creates from then on.
  void EnableDebugLog();
  // The messages of the program's log and of the log the components write
  // (one file on POSIX, where the test's folders are the platform's).
  std::vector<std::string> ProgramLog();
  std::vector<std::string> ComponentLog();

  TestProcess t;
  ToolbarProcess& process = t.process;
};

}  // namespace tarnwick::testing
