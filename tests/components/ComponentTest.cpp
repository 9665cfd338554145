#include "components/ComponentTest.h"

#include <fstream>

#include "band/ClassRegistry.h"
#include "settings/mdlRegistry.h"

namespace tarnwick::testing {
namespace {

void RemoveTestRegistrations(SettingsStore& store) {
  RemoveClassRegistration(store, kRexProgId, kRexClassId);
  RemoveClassRegistration(store, kProbeProgId, kProbeClassId);
}

// Where a component's own log goes: the platform's folders.
std::filesystem::path ComponentLogFile() {
  return MakePlatformPaths()->LocalAppDataFolder() / "Tarnwick" / "Toolbar" / "blocked.log";
}

// The lines of a log without their time stamps.
std::vector<std::string> Messages(const std::filesystem::path& file) {
  std::vector<std::string> messages;
  std::ifstream in(file);
  for (std::string line; std::getline(in, line);) {
    const auto stamp = line.find(": ");
    messages.push_back(stamp == std::string::npos ? line : line.substr(stamp + 2));
  }
  return messages;
}

}  // namespace

ComponentTest::ComponentTest() {
  RemoveTestRegistrations(*process.settings);
  std::error_code error;
  std::filesystem::remove(ComponentLogFile(), error);
}

ComponentTest::~ComponentTest() { RemoveTestRegistrations(*process.settings); }

std::filesystem::path ComponentTest::Install(const std::filesystem::path& built) {
  const auto copy = process.paths.ProgramFolder() / built.filename();
  std::filesystem::copy_file(built, copy, std::filesystem::copy_options::overwrite_existing);
  return copy;
}

std::unique_ptr<ComponentObject> ComponentTest::Create(const std::filesystem::path& file, const char* progId) {
  EXPECT_TRUE(RegisterDLL(process, file, true)) << file;
  auto object = NewObject(process, file, progId);
  EXPECT_NE(object, nullptr) << progId;
  return object;
}

void ComponentTest::EnableDebugLog() {
  mdlRegistry::SaveSetting(*process.settings, mdlRegistry::kSettingsKey, "Debug", std::string("True"), kRegSz);
  process.options.Debug = true;
}

std::vector<std::string> ComponentTest::ProgramLog() { return Messages(process.log.LogFilePath()); }

std::vector<std::string> ComponentTest::ComponentLog() { return Messages(ComponentLogFile()); }

}  // namespace tarnwick::testing
