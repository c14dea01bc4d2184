#pragma once

// One virtual machine as the host sees it: its functions, classes, settings, warnings and records.

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "embedded_host/dispatcher.h"
#include "embedded_host/object_system.h"
#include "embedded_host/settings.h"
#include "host/except.h"
#include "host/export.h"

namespace embedded_host {

// Takes each warning with its rendered text. Must not throw.
using WarningSink =
    std::function<void(foundation::core::except::MessageId const& id, std::string const& text)>;

// VMs are independent of each other. Each is used by one thread at a time, namely the one that has
// entered it; it may move to another thread between two entries.
class TV_EXPORT VmContext {
 public:
  VmContext();
  // Ends the VM: its records are destroyed, newest first, while it is the current VM. Values that
  // the VM's owner still keeps must be gone by then.
  ~VmContext();
  VmContext(VmContext const&) = delete;
  VmContext& operator=(VmContext const&) = delete;

  Functions& functions() noexcept;
  Classes& classes() noexcept;

  // The settings, read at their first use in this VM and kept. A broken user file is an error of
  // each use until it is mended.
  std::shared_ptr<settings::core::Settings> settings();
  // Uses this user file from now on instead of the one that the environment names; one that is
  // missing, such as an empty path, leaves the settings as shipped.
  void useSettingsFile(std::filesystem::path file);
  // Reads the settings again at their next use.
  void reloadSettings() noexcept;

  // An empty sink restores the default, which writes to standard error.
  void setWarningSink(WarningSink sink);
  WarningSink const& warningSink() const noexcept;

  // The VM that this thread has entered last and not left; null without one.
  static VmContext* current() noexcept;
  // The same; without one it is the host error "TALVOR:vm:NoVirtualMachine".
  static VmContext& required();

  struct Records;
  Records& records() noexcept;

 private:
  friend class EnterVm;
  struct State;
  std::unique_ptr<State> state_;
};

// Makes a VM the current one of this thread while it lives; scopes nest. A VM that another thread
// is in is the host error "TALVOR:vm:InUse".
class TV_EXPORT EnterVm {
 public:
  explicit EnterVm(VmContext& vm);
  ~EnterVm();
  EnterVm(EnterVm const&) = delete;
  EnterVm& operator=(EnterVm const&) = delete;

 private:
  VmContext& vm_;
  VmContext* outer_;
};

}  // namespace embedded_host
