// What a component object gets from the kit: the settings store and its own
// log (see Component.h).
#pragma once

#include <memory>

#include "settings/SettingsStore.h"
#include "support/Clock.h"
#include "support/Log.h"
#include "support/Paths.h"

namespace tarnwick::kit {

class ComponentContext {
 public:
  ComponentContext();
  ComponentContext(const ComponentContext&) = delete;
  ComponentContext& operator=(const ComponentContext&) = delete;

  Log& log() { return log_; }
  SettingsStore& settings() { return *settings_; }

 private:
  std::unique_ptr<Paths> paths_;
  std::unique_ptr<Clock> clock_;
  bool debug_ = false;
  Log log_{*paths_, *clock_, debug_};
  std::unique_ptr<SettingsStore> settings_;
};

}  // namespace tarnwick::kit
