// Allocator, messages, settings, the store of the virtual machine, dispatcher, classes, sort.

#include <algorithm>
#include <atomic>
#include <cmath>
#include <functional>
#include <new>
#include <numeric>
#include <typeinfo>

#include "host/messages.h"
#include "host/settings.h"
#include "host/sort.h"
#include "host/tcos.h"
#include "host/tdispatcher.h"
#include "host/usm.h"
#include "tests/second_host/value.h"

using foundation::core::except::MessageId;
using SettingsGroup = settings::core::Settings;

MessageId::~MessageId() = default;
foundation::core::except::AnyException::~AnyException() = default;
SettingsGroup::~Settings() = default;

namespace second_host {

namespace {

constexpr char kRandomNumbers[] = "talvor.general.randomnumbers";

using Level = std::map<std::string, std::variant<std::u16string, double>, std::less<>>;
Level const kFactory = {{"DefaultAlgorithm", u"twister"}, {"DefaultSeed", 0.0}};

// The virtual machine of this thread.
struct State {
  struct Record {
    std::size_t id;
    void* value;
    void (*destroy)(void*) noexcept;
  };

  std::vector<Record> records;  // oldest first
  std::map<std::string, txBuiltin, std::less<>> functions;
  Level user;
  std::vector<std::string> warnings;
};
thread_local std::unique_ptr<State> current;

std::atomic<std::int64_t> blocks = 0;
constexpr std::align_val_t kAlignment{64};

State::Record* findRecord(std::size_t id) {
  if (!current) return nullptr;
  auto const found = std::ranges::find(current->records, id, &State::Record::id);
  return found == current->records.end() ? nullptr : &*found;
}

// The store's root, and the one group that it has.
class Group final : public SettingsGroup {
 public:
  explicit Group(bool isRoot) : isRoot_(isRoot) {}

  std::shared_ptr<SettingsGroup> getSettingsByFullName(std::string_view name) const override {
    return isRoot_ && name == kRandomNumbers ? std::make_shared<Group>(false) : nullptr;
  }

 private:
  template <class T>
  T value(std::string_view key, std::string_view level) const {
    auto const in = [&](Level const& rows) {
      auto const found = isRoot_ ? rows.end() : rows.find(key);
      return found == rows.end() ? nullptr : &found->second;
    };
    auto const* found = current && level.empty() ? in(current->user) : nullptr;
    if (!found) found = in(kFactory);
    if (!found) raise("TALVOR:settings:UnknownKey", {std::string(key)});
    if (!std::holds_alternative<T>(*found)) raise("TALVOR:settings:WrongType", {std::string(key)});
    return std::get<T>(*found);
  }
  std::u16string getText(std::string_view key, std::string_view level) const override {
    return value<std::u16string>(key, level);
  }
  double getNumber(std::string_view key, std::string_view level) const override {
    return value<double>(key, level);
  }

  bool isRoot_;
};

}  // namespace

void raise(std::string_view identifier, std::vector<foundation::core::except::Argument> arguments) {
  std::size_t const colon = identifier.rfind(':');
  txErrMsgId(MessageId(std::string(identifier.substr(0, colon)),
                       std::string(identifier.substr(colon + 1)), std::move(arguments)));
}

Vm::Vm() { current = std::make_unique<State>(); }
Vm::~Vm() {
  // A record's destroyer may still look up others.
  while (!current->records.empty()) {
    State::Record const newest = current->records.back();
    current->records.pop_back();
    newest.destroy(newest.value);
  }
  current.reset();
}
void Vm::addFunction(std::string name, txBuiltin function) {
  current->functions.insert_or_assign(std::move(name), function);
}
void Vm::set(std::string key, std::variant<std::u16string, double> value) {
  current->user.insert_or_assign(std::move(key), std::move(value));
}
std::vector<std::string> const& Vm::warnings() const { return current->warnings; }

std::int64_t blocksInUse() { return blocks; }

}  // namespace second_host

using second_host::current;

void* txMallocEx(std::size_t bytes) {
  void* const block = operator new(std::max<std::size_t>(bytes, 1), second_host::kAlignment,
                                   std::nothrow);
  if (!block) second_host::raise("TALVOR:nomem");
  ++second_host::blocks;
  return block;
}
void txFreeEx(void* memory) noexcept {
  if (!memory) return;
  --second_host::blocks;
  operator delete(memory, second_host::kAlignment);
}

// This host has no catalogue: the identifier and its arguments are the text.
std::string renderMessage(MessageId const& id) {
  std::string text = id.identifier();
  for (auto const& argument : id.arguments()) {
    auto const* const words = std::get_if<std::string>(&argument);
    text += ' ' + (words ? *words : std::to_string(std::get<double>(argument)));
  }
  return text;
}
void txWarningMsgId(MessageId const& id) {
  if (current) current->warnings.push_back(renderMessage(id));
}

std::shared_ptr<SettingsGroup> settings::standalone::getSettingsRoot() {
  return std::make_shared<second_host::Group>(true);
}

namespace foundation::usm {

using Store = Detail<scope::Tvm>;

std::size_t Store::getNextID(std::type_info const& /*recordType*/) {
  static std::atomic<std::size_t> next{1};
  return next++;
}
void* Store::find(std::size_t id, std::type_info const& /*recordType*/) {
  auto const* const record = second_host::findRecord(id);
  return record ? record->value : nullptr;
}
void* Store::findOrInsert(std::size_t id, std::type_info const& recordType, Maker make,
                          Destroyer destroy) {
  if (void* const found = find(id, recordType)) return found;
  if (!current) second_host::raise("TALVOR:vm:NoVirtualMachine");
  std::unique_ptr<void, Destroyer> made(make(), destroy);
  current->records.push_back({id, made.get(), destroy});
  return made.release();
}
void Store::erase(std::size_t id, std::type_info const& /*recordType*/) {
  auto* const record = second_host::findRecord(id);
  if (!record) return;
  auto const erased = *record;
  current->records.erase(current->records.begin() + (record - current->records.data()));
  erased.destroy(erased.value);
}

}  // namespace foundation::usm

bool Tdispatcher::call(std::string_view name, int nlhs, txArrayPtr* plhs,
                       std::span<txArray const* const> args) {
  auto const found = current->functions.find(name);
  if (found == current->functions.end()) return false;
  std::vector<txArray const*> borrowed(args.begin(), args.end());
  found->second(nlhs, plhs, static_cast<int>(borrowed.size()), borrowed.data());
  return true;
}
bool Tdispatcher::has(std::string_view name) { return current->functions.contains(name); }

namespace tcos {

std::string className(txArray const& value) {
  return value.classID() == txClassObject ? second_host::valueOf(value).className
                                          : second_host::builtinName(value.classID());
}
txArray const* underlyingArray(txArray const& value) {
  return value.classID() == txClassObject ? nullptr : &value;
}
std::optional<std::u16string> namedClass(txArray const& /*value*/) { return std::nullopt; }
txClassID builtinClass(std::u16string_view name) {
  for (int id = txClassLogical; id <= txClassUint64; ++id)
    if (std::ranges::equal(name, std::string_view(second_host::builtinName(txClassID(id)))))
      return txClassID(id);
  return txClassUnknown;
}
bool callMethod(std::string_view, int, txArrayPtr*, std::span<txArray const* const>) {
  return false;
}
bool callMethodOfClass(txArray const&, std::string_view, int, txArrayPtr*,
                       std::span<txArray const* const>) {
  return false;
}
bool callStaticMethod(std::u16string_view, std::string_view, int, txArrayPtr*,
                      std::span<txArray const* const>) {
  return false;
}

}  // namespace tcos

void mathcoreSortFcn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  if (nlhs > 2) matrix::detail::error_maxlhs();
  if (nrhs > 1) matrix::detail::error_maxrhs();
  if (nrhs < 1) matrix::detail::error_minrhs();
  txArray const& values = *prhs[0];
  double const* const from = values.dataAs<double>();
  std::vector<std::uint64_t> order(values.numel());
  std::iota(order.begin(), order.end(), 0);
  std::ranges::stable_sort(order, [&](std::uint64_t a, std::uint64_t b) {
    return from[a] < from[b] || (std::isnan(from[b]) && !std::isnan(from[a]));
  });
  for (int i = 0; i < std::max(nlhs, 1); ++i) {
    plhs[i] = txCreateUninitialized(values.dims(), txClassDouble);
    std::ranges::transform(order, plhs[i]->dataAs<double>(), [&](std::uint64_t at) {
      return i == 0 ? from[at] : static_cast<double>(at + 1);
    });
  }
}
