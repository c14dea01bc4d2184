#pragma once

// The current VM's record of one type, kept by the host's per-VM state manager.

#include <cstddef>
#include <typeinfo>

#include "host/usm.h"

template <class Record>
class VmRecord {
 public:
  // Null when this VM has none.
  static Record* find() { return static_cast<Record*>(Store::find(id(), typeid(Record))); }
  // A value-initialised record when this VM has none; destroyed when the VM ends.
  static Record& findOrInsert() {
    return *static_cast<Record*>(Store::findOrInsert(
        id(), typeid(Record), []() -> void* { return new Record(); },
        [](void* record) noexcept { delete static_cast<Record*>(record); }));
  }
  static void erase() { Store::erase(id(), typeid(Record)); }

 private:
  using Store = foundation::usm::Detail<foundation::usm::scope::Tvm>;

  static std::size_t id() {
    static std::size_t const id = Store::getNextID(typeid(Record));
    return id;
  }
};
