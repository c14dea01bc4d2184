// Saving and restoring the state of a stream's generator.

#include <cstddef>
#include <string_view>

#include "errors/keys.h"
#include "host/strings.h"
#include "plugin_rng/legacy_plugin.h"
#include "rng/guard.h"
#include "rng/in_use.h"
#include "rng/randstream.h"
#include "rng/state_components.h"

namespace get = TALVOR::RandStream::get;
namespace set = TALVOR::RandStream::set;

namespace {

// A plug-in counts element classes from 0; the host's numbers start with double.
constexpr int kFirstHostClass = txClassDouble;

}  // namespace

std::uint64_t randstream::getNumStateComponents() const {
  const InUse inUse(*this);
  return guarded([&] { return requiredPlugin().getNumStateComponents(); });
}

void randstream::getStateComponentTypes(std::uint64_t count, txClassID* classes,
                                        std::uint64_t* lengths) const {
  const InUse inUse(*this);
  if (count != getNumStateComponents())
    errors::raise(get::InvalidNumStateComponents(generatorType()));
  if (count == 0) return;
  guarded([&] { plugin_->getStateComponentTypes(count, classes, lengths); });
  for (std::size_t i = 0; i < count; ++i)
    classes[i] = static_cast<txClassID>(classes[i] + kFirstHostClass);
}

void randstream::getStateComponents(std::uint64_t count, void* const* dest) const {
  const InUse inUse(*this);
  if (count != getNumStateComponents())
    errors::raise(get::InvalidNumStateComponents(generatorType()));
  guarded([&] { plugin_->getStateComponents(dest); });
}

void randstream::setStateComponents(std::uint64_t count, void const* const* src) {
  const InUse inUse(*this);
  if (count != getNumStateComponents())
    errors::raise(set::InvalidNumStateComponents(generatorType()));
  guarded([&] { plugin_->setStateComponents(src); });
  ++counts_.moves;
  // The legacy generators have their method for normals in their state.
  if (ownView_ && normalView_ &&
      std::string_view(generatorType_) == plugin_rng::legacy_plugin::kType)
    utStrncpy(randnAlg_, normalView_->getDefaultRandnAlg(), kNameSize - 1);
}

std::uint64_t randstream::getStateBufLen() const {
  const InUse inUse(*this);
  return StateComponents(*this).flatSize();
}

void randstream::getStateBuf(void* buf, std::uint64_t len) const {
  const InUse inUse(*this);
  if (len != getStateBufLen()) errors::raise(get::InvalidStateBufLen());
  StateComponents components(*this);
  if (components.count() == 0) return;
  components.fetch(*this);
  components.copyTo(buf);
}

void randstream::setStateBuf(void const* buf, std::uint64_t len) {
  const InUse inUse(*this);
  if (len != getStateBufLen()) errors::raise(set::InvalidStateBufLen());
  StateComponents components(*this);
  if (components.count() == 0) return;
  void* const* const pieces = components.allocate();
  components.copyFrom(buf);
  setStateComponents(components.count(), pieces);
}
