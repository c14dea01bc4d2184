#pragma once

// A minimal host, written against host/*.h alone: what libtvmathrng.so needs of its surroundings
// and little more. It stands in for libtvhost.so under the same name. Arrays are full; there are
// objects with properties, and no sparse arrays, string arrays or classes with methods. One virtual
// machine at a time.

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "host/export.h"
#include "host/tx_array.h"

namespace second_host {

using Properties = std::map<std::string, txArrayPtr, std::less<>>;

// The virtual machine, on the thread that made it. Its end destroys what the library has stored.
class TV_EXPORT Vm {
 public:
  Vm();
  ~Vm();
  Vm(Vm const&) = delete;
  Vm& operator=(Vm const&) = delete;

  // Functions that the dispatcher calls.
  void addFunction(std::string name, txBuiltin function);
  // A key of the settings group "talvor.general.randomnumbers", as a user would set it.
  void set(std::string key, std::variant<std::u16string, double> value);
  // The texts of all warnings so far.
  std::vector<std::string> const& warnings() const;
};

TV_EXPORT txArrayPtr makeObject(std::string className, Properties properties);

// Blocks of the allocator that are in use.
TV_EXPORT std::int64_t blocksInUse();

}  // namespace second_host
