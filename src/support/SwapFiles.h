// Putting a downloaded new version of a file in place without ever writing
// over the file in use: the component swap (pagefetch.new) and the updater
// (twtb.new) both work this way, and both recover from a swap that was cut
// short by the same rule.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>
#include <system_error>

namespace tarnwick {

// The three names of a file that is replaced by renames: the file in use
// ("pagefetch.dll"), the new version waiting beside it ("pagefetch.new") and
// the version the last swap replaced ("pagefetch.old").
struct VersionedFile {
  std::filesystem::path current;
  std::filesystem::path pending;
  std::filesystem::path previous;

  // folder/<current>, folder/<stem>.new and folder/<stem>.old.
  static VersionedFile In(const std::filesystem::path& folder, std::string_view current);
};

// One step taken, for the caller's log: a file deleted (`to` empty) or moved.
struct SwapStep {
  std::filesystem::path from;
  std::filesystem::path to;
};
using SwapObserver = std::function<void(const SwapStep&)>;

// The step that failed and the system's reason.
struct SwapFailure {
  SwapStep step;
  std::error_code error;
};

// Deletes `previous`, moves `current` (when there is one) to `previous` and
// `pending` to `current`, telling `observe` after each step. When the last
// move fails, the first is undone, so a failure leaves `current` in place
// unless the undo fails as well (RecoverSwap then repairs it later).
std::optional<SwapFailure> SwapInPending(const VersionedFile& file, const SwapObserver& observe);

// Repairs a swap that was cut short between its two moves: when `current` is
// missing but `previous` exists, moves `pending` into place (the swap is
// finished) or, without one, moves `previous` back (it is undone). Does
// nothing in any other state.
std::optional<SwapFailure> RecoverSwap(const VersionedFile& file, const SwapObserver& observe);

}  // namespace tarnwick
