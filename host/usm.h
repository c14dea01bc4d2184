#pragma once

// The host's per-VM state manager: one store of records for each virtual machine. A record is
// reached only from its VM's thread; the manager destroys the records, newest first, when the VM
// ends. On a thread without a VM there are no records, and making one is the host error
// "TALVOR:vm:NoVirtualMachine".

#include <cstddef>
#include <typeinfo>

#include "host/export.h"

namespace foundation::usm {

namespace scope {
struct Tvm;  // one virtual machine
}

template <class Scope>
class Detail;

template <>
class TV_EXPORT Detail<scope::Tvm> {
 public:
  using Maker = void* (*)();
  using Destroyer = void (*)(void* record) noexcept;

  // A new process-wide number for a record type; safe against concurrent calls.
  static std::size_t getNextID(std::type_info const& recordType);

  // The current VM's record (id, type), or null.
  static void* find(std::size_t id, std::type_info const& recordType);
  // The same; when there is none, stores what `make` returns, owned through `destroy`.
  static void* findOrInsert(std::size_t id, std::type_info const& recordType, Maker make,
                            Destroyer destroy);
  // Destroys the current VM's record, if there is one.
  static void erase(std::size_t id, std::type_info const& recordType);
};

}  // namespace foundation::usm
