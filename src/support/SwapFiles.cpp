#include "support/SwapFiles.h"

#include "support/FileMoves.h"
#include "support/Files.h"

namespace tarnwick {
namespace {

std::optional<SwapFailure> Move(const std::filesystem::path& from, const std::filesystem::path& to,
                                const SwapObserver& observe) {
  if (const auto error = MoveFileOver(from, to)) return SwapFailure{{from, to}, error};
  observe({from, to});
  return std::nullopt;
}

}  // namespace

VersionedFile VersionedFile::In(const std::filesystem::path& folder, std::string_view current) {
  const auto path = folder / std::string(current);
  return {path, std::filesystem::path(path).replace_extension(".new"),
          std::filesystem::path(path).replace_extension(".old")};
}

std::optional<SwapFailure> SwapInPending(const VersionedFile& file, const SwapObserver& observe) {
  if (FileExists(file.previous)) {
    if (const auto error = RemoveFile(file.previous)) return SwapFailure{{file.previous, {}}, error};
    observe({file.previous, {}});
  }
  const bool hadCurrent = FileExists(file.current);
  if (hadCurrent) {
    if (auto failure = Move(file.current, file.previous, observe)) return failure;
  }
  auto failure = Move(file.pending, file.current, observe);
  if (failure && hadCurrent) Move(file.previous, file.current, observe);
  return failure;
}

std::optional<SwapFailure> RecoverSwap(const VersionedFile& file, const SwapObserver& observe) {
  if (FileExists(file.current) || !FileExists(file.previous)) return std::nullopt;
  return Move(FileExists(file.pending) ? file.pending : file.previous, file.current, observe);
}

}  // namespace tarnwick
