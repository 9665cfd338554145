// NewObject and RegisterDLL over real library files: a registered component,
// one whose registration is gone, one whose file is gone, and files that are
// no component at all.
#include <gtest/gtest.h>

#include <array>
#include <fstream>

#include "band/ClassRegistry.h"
#include "components/ComponentTest.h"

namespace tarnwick::testing {
namespace {

using Lines = std::vector<std::string>;

const Lines kGaveUp = {"(debug) (NewObject) Attempting to re-register DLL",
                       "Failed to create Tarnwick.Rex object after re-registering DLL - giving up"};

constexpr const char* kBrokenProgId = "Tarnwick.Broken";
constexpr const char* kBrokenClassId = "{9A1C4E27-3B8D-4F60-A2E5-6C7D8E9F0A1B}";

void WriteText(const std::filesystem::path& file, const char* text) { std::ofstream(file) << text; }

// True when `object` answers a call, as a working Tarnwick.Rex does.
bool Answers(ComponentObject& object) {
  std::array<Variant, 2> args{std::string("abc"), std::string("b")};
  Variant result;
  std::string error;
  return object.Invoke("Test", args, result, error) == kInvokeOk && result == Variant(true);
}

class ComponentFactoryTest : public ComponentTest {
 protected:
  ComponentFactoryTest() { EnableDebugLog(); }
  ~ComponentFactoryTest() override { RemoveClassRegistration(*process.settings, kBrokenProgId, kBrokenClassId); }

  // Registers `file` as the class Tarnwick.Broken, as a damaged installation
  // might have left it.
  void RegisterBroken(const std::filesystem::path& file) {
    ASSERT_EQ(WriteClassRegistration(*process.settings, {kBrokenProgId, kBrokenClassId, "broken", file}),
              kErrorSuccess);
  }

  std::filesystem::path rex = Install(kBuiltRex);
};

TEST_F(ComponentFactoryTest, ARegisteredComponentIsCreatedAtOnce) {
  ASSERT_TRUE(RegisterDLL(process, rex, true));
  EXPECT_EQ(RegisteredServerFile(*process.settings, kRexProgId), rex);
  const auto object = NewObject(process, rex, kRexProgId);
  ASSERT_NE(object, nullptr);
  EXPECT_TRUE(Answers(*object));
  EXPECT_EQ(ProgramLog(), Lines{});
}

TEST_F(ComponentFactoryTest, AMissingRegistrationIsRepairedUnnoticed) {
  const auto object = NewObject(process, rex, kRexProgId);
  ASSERT_NE(object, nullptr);
  EXPECT_TRUE(Answers(*object));
  EXPECT_EQ(ProgramLog(), Lines{"(debug) (NewObject) Attempting to re-register DLL"});
  EXPECT_EQ(RegisteredServerFile(*process.settings, kRexProgId), rex);

  // Unregistering takes it away again, and the next creation repairs it.
  ASSERT_TRUE(RegisterDLL(process, rex, false));
  EXPECT_EQ(RegisteredServerFile(*process.settings, kRexProgId), std::nullopt);
  EXPECT_NE(NewObject(process, rex, kRexProgId), nullptr);
}

TEST_F(ComponentFactoryTest, AMissingFileGivesUpWithExactlyTwoLines) {
  std::filesystem::remove(rex);
  EXPECT_EQ(NewObject(process, rex, kRexProgId), nullptr);
  EXPECT_EQ(ProgramLog(), kGaveUp);
}

TEST_F(ComponentFactoryTest, AFileGoneFromUnderItsRegistrationGivesUpTheSameWay) {
  ASSERT_TRUE(RegisterDLL(process, rex, true));
  const auto elsewhere = process.paths.ProgramFolder() / "moved.dll";
  std::filesystem::rename(rex, elsewhere);
  EXPECT_EQ(NewObject(process, rex, kRexProgId), nullptr);
  EXPECT_EQ(ProgramLog(), kGaveUp);
}

TEST_F(ComponentFactoryTest, AFileThatIsNoComponentIsAnErrorWithoutRepair) {
  const auto text = process.paths.ProgramFolder() / "notalibrary.dll";
  WriteText(text, "MZ? not a library at all");
  const std::filesystem::path library = TARNWICK_NOT_A_COMPONENT_FILE;
  for (const auto& file : {text, library}) {
    std::filesystem::remove(process.log.LogFilePath());
    RegisterBroken(file);
    EXPECT_EQ(NewObject(process, file, kBrokenProgId), nullptr) << file;
    const auto log = ProgramLog();
    ASSERT_EQ(log.size(), 1u) << file;
    EXPECT_EQ(log[0].rfind("(NewObject) Error: ", 0), 0u) << log[0];
  }
}

TEST_F(ComponentFactoryTest, RegisterDLLLogsOnlyAFailingEntryPoint) {
  const std::filesystem::path library = TARNWICK_NOT_A_COMPONENT_FILE;
  EXPECT_FALSE(RegisterDLL(process, library, true));
  EXPECT_EQ(ProgramLog(), Lines{"Failed to DllRegisterServer " + library.string()});

  // No DllUnregisterServer, no library, no file: nothing to call, nothing said.
  std::filesystem::remove(process.log.LogFilePath());
  const auto text = process.paths.ProgramFolder() / "notalibrary.dll";
  WriteText(text, "plain text");
  EXPECT_FALSE(RegisterDLL(process, library, false));
  EXPECT_FALSE(RegisterDLL(process, text, true));
  EXPECT_FALSE(RegisterDLL(process, process.paths.ProgramFolder() / "absent.dll", true));
  EXPECT_EQ(ProgramLog(), Lines{});
}

}  // namespace
}  // namespace tarnwick::testing
