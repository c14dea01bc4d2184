#include "embedded_host/vm_context.h"

#include <atomic>
#include <typeinfo>
#include <vector>

#include "embedded_host/messages.h"
#include "host/usm.h"

namespace embedded_host {

namespace {

// Asked for in every call: the model spares a function call, and takes little of the room that the
// system keeps for it in programs that load the library late.
[[gnu::tls_model("initial-exec")]] thread_local VmContext* currentVm = nullptr;

}  // namespace

struct VmContext::Records {
  struct Record {
    std::size_t id;
    std::type_info const* type;
    void* value;
    void (*destroy)(void*) noexcept;
  };

  std::vector<Record>::iterator find(std::size_t id, std::type_info const& type) {
    auto at = list.begin();
    while (at != list.end() && !(at->id == id && (at->type == &type || *at->type == type))) ++at;
    return at;
  }

  void* valueOf(std::size_t id, std::type_info const& type) {
    auto const found = find(id, type);
    return found == list.end() ? nullptr : found->value;
  }

  // A destroyer may look up, add and erase records.
  void destroyAll() noexcept {
    while (!list.empty()) {
      Record const newest = list.back();
      list.pop_back();
      newest.destroy(newest.value);
    }
  }

  std::vector<Record> list;  // oldest first; a VM has a handful
};

struct VmContext::State {
  Records records;
  Functions functions;
  Classes classes;
  std::optional<UserSettingsFile> settingsFile;
  std::shared_ptr<settings::core::Settings> settings;
  WarningSink warningSink;
  // The thread that is in the VM, by the address of a variable of its own, and how many times.
  std::atomic<void const*> thread{nullptr};
  int entries = 0;
};

VmContext::VmContext() : state_(std::make_unique<State>()) {}

VmContext::~VmContext() {
  EnterVm const inside(*this);
  state_->records.destroyAll();
  state_->functions = {};
  state_->classes = {};
}

Functions& VmContext::functions() noexcept { return state_->functions; }
Classes& VmContext::classes() noexcept { return state_->classes; }
VmContext::Records& VmContext::records() noexcept { return state_->records; }

std::shared_ptr<settings::core::Settings> VmContext::settings() {
  if (!state_->settings) {
    state_->settings =
        readSettings(state_->settingsFile ? state_->settingsFile : userSettingsFile());
  }
  return state_->settings;
}

void VmContext::useSettingsFile(std::filesystem::path file) {
  state_->settingsFile = UserSettingsFile{std::move(file)};
  reloadSettings();
}

void VmContext::reloadSettings() noexcept { state_->settings.reset(); }

void VmContext::setWarningSink(WarningSink sink) { state_->warningSink = std::move(sink); }
WarningSink const& VmContext::warningSink() const noexcept { return state_->warningSink; }

VmContext* VmContext::current() noexcept { return currentVm; }

VmContext& VmContext::required() {
  if (!currentVm) raiseHostError("TALVOR:vm:NoVirtualMachine");
  return *currentVm;
}

EnterVm::EnterVm(VmContext& vm) : vm_(vm), outer_(currentVm) {
  auto& state = *vm.state_;
  void const* const self = &currentVm;
  void const* inside = nullptr;
  if (!state.thread.compare_exchange_strong(inside, self, std::memory_order_acquire) &&
      inside != self) {
    raiseHostError("TALVOR:vm:InUse");
  }
  ++state.entries;
  currentVm = &vm;
}

EnterVm::~EnterVm() {
  auto& state = *vm_.state_;
  currentVm = outer_;
  if (--state.entries == 0) state.thread.store(nullptr, std::memory_order_release);
}

}  // namespace embedded_host

namespace foundation::usm {

using embedded_host::VmContext;

std::size_t Detail<scope::Tvm>::getNextID(std::type_info const& /*recordType*/) {
  static std::atomic<std::size_t> next{1};
  return next.fetch_add(1, std::memory_order_relaxed);
}

void* Detail<scope::Tvm>::find(std::size_t id, std::type_info const& recordType) {
  VmContext* const vm = VmContext::current();
  return vm ? vm->records().valueOf(id, recordType) : nullptr;
}

void* Detail<scope::Tvm>::findOrInsert(std::size_t id, std::type_info const& recordType, Maker make,
                                       Destroyer destroy) {
  VmContext& vm = VmContext::required();
  if (void* const found = vm.records().valueOf(id, recordType)) return found;
  std::unique_ptr<void, Destroyer> record(make(), destroy);
  vm.records().list.push_back({id, &recordType, record.get(), destroy});
  return record.release();
}

void Detail<scope::Tvm>::erase(std::size_t id, std::type_info const& recordType) {
  VmContext* const vm = VmContext::current();
  if (!vm) return;
  auto& list = vm->records().list;
  auto const found = vm->records().find(id, recordType);
  if (found == list.end()) return;
  auto const record = *found;
  list.erase(found);
  record.destroy(record.value);
}

}  // namespace foundation::usm
