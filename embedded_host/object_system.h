#pragma once

// Classes of the host language, defined from C++, and their instances (host/tcos.h).

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "embedded_host/dispatcher.h"
#include "host/export.h"
#include "host/tx_array.h"

namespace embedded_host {

// A property of a class. Without hooks it is a stored value, an empty double matrix at first.
struct Property {
  std::string name;
  // Computes the value. Without it the stored value is read.
  std::function<txArrayPtr(txArray const& object)> get = {};
  // Takes a new value. Without it the value is stored; see readOnly.
  std::function<void(txArray& object, txArray const& value)> set = {};
  bool readOnly = false;  // setProperty refuses it
  bool hidden = false;    // left out of listings
};

// A class. Shared by its instances and the registry, so fill it in before it is registered and
// leave it alone afterwards.
struct ClassDefinition {
  std::string name;
  // Instances are handles: shares of an object are the same object, and a change through one is
  // seen through all. Otherwise an instance is a value, copied when it is changed.
  bool handle = false;
  // A call is one of a method where its first argument is an instance. Otherwise an instance
  // anywhere among the arguments makes it one.
  bool objectFirst = false;
  // Makes an instance; called for name(args...).
  Function constructor = {};
  // Called with the object among the arguments.
  std::map<std::string, Function, std::less<>> methods = {};
  // Called for name.method(args...), with the arguments alone.
  std::map<std::string, Function, std::less<>> staticMethods = {};
  // In the order in which they are listed.
  std::vector<Property> properties = {};
  // Runs when the last share of a handle object goes, before its properties do. It runs once: an
  // object that it shares lives on. Errors that leave it are dropped.
  std::function<void(txArray& object)> destroyer = {};

  TV_EXPORT Property const* findProperty(std::string_view property) const;
};
using ClassPtr = std::shared_ptr<ClassDefinition const>;

// The classes of one VM by name.
class TV_EXPORT Classes {
 public:
  // Adds or replaces; objects keep the definition they were made from.
  void add(ClassDefinition definition);
  bool remove(std::string_view name);
  // Empty when there is none.
  ClassPtr find(std::string_view name) const;
  // In alphabetical order.
  std::vector<std::string> names() const;

 private:
  std::map<std::string, ClassPtr, std::less<>> classes_;
};

// A new 1-by-1 object with stored properties empty. `underlying` is its built-in array, if the
// class has one; the object then has its dimensions.
TV_EXPORT txArrayPtr makeObject(ClassPtr definition, txArrayPtr underlying = nullptr);

// The class of an object; empty for every other value.
TV_EXPORT ClassPtr classOf(txArray const& value);

// True when both are shares of one handle object.
TV_EXPORT bool sameObject(txArray const& a, txArray const& b);

// Sets a property as the host language does: through its hook, if it has one. No such property is
// the host error "TALVOR:object:UnknownProperty", one that cannot be set
// "TALVOR:object:ReadOnlyProperty". Reading is txGetProperty.
TV_EXPORT void setProperty(txArray& object, std::string_view name, txArray const& value);

// The stored value behind a property, past its hooks: what constructors and hooks work on. Null and
// "TALVOR:object:UnknownProperty" when the class has no such property.
TV_EXPORT txArray const* storedProperty(txArray const& object, std::string_view name);
TV_EXPORT void setStoredProperty(txArray& object, std::string_view name, txArrayPtr value);

}  // namespace embedded_host
