// The small dialog a transfer can show while it waits: a message, an
// animation and a Cancel button. The host draws it (a one-line indicator on a
// terminal, nothing at all where no one watches); pressing Cancel calls
// `onCancel` from within the host's pending events.
#pragma once

#include <functional>
#include <string_view>

namespace tarnwick {

class DownloadDialog {
 public:
  virtual ~DownloadDialog() = default;
  virtual void Show(std::string_view message) = 0;
  virtual void Hide() = 0;
  virtual bool Visible() const = 0;
  // Draws one frame of the animation strip.
  virtual void DrawFrame(int frame) = 0;

  std::function<void()> onCancel;
};

}  // namespace tarnwick
