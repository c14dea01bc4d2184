#include "embedded_host/object_system.h"

#include <algorithm>

#include "embedded_host/array_impl.h"
#include "embedded_host/messages.h"
#include "embedded_host/text.h"
#include "embedded_host/vm_context.h"
#include "host/tcos.h"

namespace embedded_host {

namespace {

constexpr std::array<std::uint64_t, 2> kOneByOne{1, 1};

Shared<Object> const& objectOf(txArray const& value) {
  auto const* object = impl(value).shares<Object>();
  if (!object) raiseHostError("TALVOR:object:NotObject", tcos::className(value));
  return *object;
}

// The object for a change: a handle as it stands, a value after it is no longer shared.
Object& objectForChange(txArray& value) {
  objectOf(value);
  auto& object = *impl(value).shares<Object>();
  return object->definition->handle ? object.common() : object.own();
}

Property const& requireProperty(Object const& object, std::string_view name) {
  Property const* const property = object.definition->findProperty(name);
  if (!property) raiseHostError("TALVOR:object:UnknownProperty", object.definition->name, name);
  return *property;
}

std::size_t slotOf(Object const& object, Property const& property) {
  return static_cast<std::size_t>(&property - object.definition->properties.data());
}

Function const* findIn(std::map<std::string, Function, std::less<>> const& table,
                       std::string_view name) {
  auto const found = table.find(name);
  return found == table.end() ? nullptr : &found->second;
}

}  // namespace

Object::Object(ClassPtr definitionToUse, txArrayPtr underlyingArray)
    : definition(std::move(definitionToUse)),
      stored(definition->properties.size()),
      underlying(std::move(underlyingArray)) {}

Object::Object(Object const& other)
    : definition(other.definition),
      underlying(other.underlying ? txShare(*other.underlying) : nullptr) {
  stored.reserve(other.stored.size());
  for (auto const& value : other.stored) stored.push_back(value ? txShare(*value) : nullptr);
}

void Object::farewell(Shared<Object> last) const noexcept {
  if (!definition->handle || !definition->destroyer) return;
  try {
    Array object(txClassObject, kOneByOne, std::move(last));
    definition->destroyer(object);
  } catch (...) {
    // Nobody is left who could be told.
  }
}

Property const* ClassDefinition::findProperty(std::string_view property) const {
  auto const found = std::find_if(properties.begin(), properties.end(),
                                  [&](Property const& p) { return p.name == property; });
  return found == properties.end() ? nullptr : &*found;
}

void Classes::add(ClassDefinition definition) {
  std::string const name = definition.name;
  classes_.insert_or_assign(name, std::make_shared<ClassDefinition const>(std::move(definition)));
}

bool Classes::remove(std::string_view name) {
  auto const found = classes_.find(name);
  if (found == classes_.end()) return false;
  classes_.erase(found);
  return true;
}

ClassPtr Classes::find(std::string_view name) const {
  auto const found = classes_.find(name);
  return found == classes_.end() ? nullptr : found->second;
}

std::vector<std::string> Classes::names() const {
  std::vector<std::string> result;
  result.reserve(classes_.size());
  for (auto const& [name, definition] : classes_) result.push_back(name);
  return result;
}

txArrayPtr makeObject(ClassPtr definition, txArrayPtr underlying) {
  std::vector<std::uint64_t> dims(kOneByOne.begin(), kOneByOne.end());
  if (underlying) dims.assign(underlying->dims().begin(), underlying->dims().end());
  return makeImpl(txClassObject, Dims(dims),
                  Shared<Object>::make(std::move(definition), std::move(underlying)));
}

ClassPtr classOf(txArray const& value) {
  auto const* object = impl(value).shares<Object>();
  return object ? (*object)->definition : nullptr;
}

bool sameObject(txArray const& a, txArray const& b) {
  auto const* first = impl(a).shares<Object>();
  auto const* second = impl(b).shares<Object>();
  return first && second && *first == *second && (*first)->definition->handle;
}

void setProperty(txArray& object, std::string_view name, txArray const& value) {
  Property const& property = requireProperty(*objectOf(object), name);
  if (property.readOnly || (property.get && !property.set)) {
    raiseHostError("TALVOR:object:ReadOnlyProperty", tcos::className(object), name);
  }
  if (property.set) return property.set(object, value);
  setStoredProperty(object, name, txShare(value));
}

txArray const* storedProperty(txArray const& object, std::string_view name) {
  Object const& instance = *objectOf(object);
  return instance.stored[slotOf(instance, requireProperty(instance, name))].get();
}

void setStoredProperty(txArray& object, std::string_view name, txArrayPtr value) {
  Object& instance = objectForChange(object);
  instance.stored[slotOf(instance, requireProperty(instance, name))] = std::move(value);
}

}  // namespace embedded_host

txArrayPtr txGetProperty(txArray const& object, std::string_view name) {
  using namespace embedded_host;
  ClassPtr const definition = classOf(object);
  Property const* const property = definition ? definition->findProperty(name) : nullptr;
  if (!property) return nullptr;
  if (property->get) return property->get(object);
  txArray const* const stored = storedProperty(object, name);
  constexpr std::array<std::uint64_t, 2> kEmpty{0, 0};
  return stored ? txShare(*stored) : txCreateUninitialized(kEmpty, txClassDouble);
}

namespace tcos {

using namespace embedded_host;

namespace {

struct BuiltinClass {
  std::string_view name;
  txClassID id;
};

constexpr BuiltinClass kBuiltinClasses[] = {
    {"cell", txClassCell},     {"logical", txClassLogical}, {"char", txClassChar},
    {"string", txClassString}, {"double", txClassDouble},   {"single", txClassSingle},
    {"int8", txClassInt8},     {"uint8", txClassUint8},     {"int16", txClassInt16},
    {"uint16", txClassUint16}, {"int32", txClassInt32},     {"uint32", txClassUint32},
    {"int64", txClassInt64},   {"uint64", txClassUint64},
};

bool callIfFound(Function const* function, int nlhs, txArrayPtr* plhs,
                 std::span<txArray const* const> args) {
  if (!function) return false;
  callFunction(*function, nlhs, plhs, args);
  return true;
}

}  // namespace

std::string className(txArray const& value) {
  if (ClassPtr const definition = classOf(value)) return definition->name;
  if (auto const named = namedClass(value)) return "class identifier";
  return std::string(builtinClassName(value.classID()));
}

txArray const* underlyingArray(txArray const& value) {
  auto const* object = impl(value).shares<Object>();
  return object ? (*object)->underlying.get() : &value;
}

std::optional<std::u16string> namedClass(txArray const& value) {
  auto const* name = impl(value).holds<HostText>();
  if (!name) return std::nullopt;
  return std::u16string(name->begin(), name->end());
}

txClassID builtinClass(std::u16string_view name) {
  for (auto const& [known, id] : kBuiltinClasses) {
    if (std::equal(known.begin(), known.end(), name.begin(), name.end(),
                   [](char a, char16_t b) { return static_cast<char16_t>(a) == b; })) {
      return id;
    }
  }
  return txClassUnknown;
}

bool callMethod(std::string_view method, int nlhs, txArrayPtr* plhs,
                std::span<txArray const* const> args) {
  ClassPtr const definition = args.empty() ? nullptr : classOf(*args[0]);
  return definition && callIfFound(findIn(definition->methods, method), nlhs, plhs, args);
}

bool callMethodOfClass(txArray const& object, std::string_view method, int nlhs, txArrayPtr* plhs,
                       std::span<txArray const* const> args) {
  ClassPtr const definition = classOf(object);
  return definition && callIfFound(findIn(definition->staticMethods, method), nlhs, plhs, args);
}

bool callStaticMethod(std::u16string_view className, std::string_view method, int nlhs,
                      txArrayPtr* plhs, std::span<txArray const* const> args) {
  VmContext* const vm = VmContext::current();
  ClassPtr const definition = vm ? vm->classes().find(utf16ToUtf8(className)) : nullptr;
  return definition && callIfFound(findIn(definition->staticMethods, method), nlhs, plhs, args);
}

}  // namespace tcos

std::string_view embedded_host::builtinClassName(txClassID classID) noexcept {
  for (auto const& [name, id] : tcos::kBuiltinClasses) {
    if (id == classID) return name;
  }
  return {};
}
