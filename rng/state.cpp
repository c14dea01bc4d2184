// Saving and restoring the state of a stream's generator.

#include <cstddef>
#include <cstring>

#include "errors/keys.h"
#include "host/allocator.h"
#include "rng/guard.h"
#include "rng/randstream.h"

namespace get = TALVOR::RandStream::get;
namespace set = TALVOR::RandStream::set;

namespace {

// A plug-in counts element classes from 0; the host's numbers start with double.
constexpr int kFirstHostClass = txClassDouble;

std::size_t elementSize(txClassID classID) {
  switch (classID) {
    case txClassDouble:
    case txClassInt64:
    case txClassUint64:
      return 8;
    case txClassSingle:
    case txClassInt32:
    case txClassUint32:
      return 4;
    case txClassInt16:
    case txClassUint16:
      return 2;
    case txClassInt8:
    case txClassUint8:
      return 1;
    default:
      return 0;
  }
}

// Temporary storage for the components of a stream's state, each aligned for its elements; the flat
// form of the state is their bytes back to back.
class StateComponents {
 public:
  explicit StateComponents(randstream const& stream)
      : count_(stream.getNumStateComponents()), sizes_(txMakeBuffer<std::size_t>(count_)) {
    const auto classes = txMakeBuffer<txClassID>(count_);
    const auto lengths = txMakeBuffer<unsigned long>(count_);
    stream.getStateComponentTypes(count_, classes.get(), lengths.get());
    for (std::size_t i = 0; i < count_; ++i) {
      sizes_[i] = lengths[i] * elementSize(classes[i]);
      flatSize_ += sizes_[i];
    }
  }

  unsigned long count() const { return count_; }
  std::size_t flatSize() const { return flatSize_; }

  // Makes the storage and returns the address of each component.
  void* const* allocate() {
    storage_ = txMakeBuffer<std::byte>(flatSize_ + count_ * kAlignment);
    pieces_ = txMakeBuffer<void*>(count_);
    std::size_t at = 0;
    for (std::size_t i = 0; i < count_; ++i) {
      pieces_[i] = storage_.get() + at;
      at += (sizes_[i] + kAlignment - 1) / kAlignment * kAlignment;
    }
    return pieces_.get();
  }
  void copyTo(void* flat) const {
    auto* to = static_cast<std::byte*>(flat);
    for (std::size_t i = 0; i < count_; to += sizes_[i++]) std::memcpy(to, pieces_[i], sizes_[i]);
  }
  void copyFrom(void const* flat) {
    auto const* from = static_cast<std::byte const*>(flat);
    for (std::size_t i = 0; i < count_; from += sizes_[i++])
      std::memcpy(pieces_[i], from, sizes_[i]);
  }

 private:
  static constexpr std::size_t kAlignment = 8;

  unsigned long count_;
  std::size_t flatSize_ = 0;
  txBuffer<std::size_t> sizes_;
  txBuffer<std::byte> storage_;
  txBuffer<void*> pieces_;
};

}  // namespace

unsigned long randstream::getNumStateComponents() const {
  return guarded([&] { return requiredPlugin().getNumStateComponents(); });
}

void randstream::getStateComponentTypes(unsigned long count, txClassID* classes,
                                        unsigned long* lengths) const {
  if (count != getNumStateComponents())
    errors::raise(get::InvalidNumStateComponents(generatorType()));
  if (count == 0) return;
  guarded([&] { plugin_->getStateComponentTypes(count, classes, lengths); });
  for (std::size_t i = 0; i < count; ++i)
    classes[i] = static_cast<txClassID>(classes[i] + kFirstHostClass);
}

void randstream::getStateComponents(unsigned long count, void* const* dest) const {
  if (count != getNumStateComponents())
    errors::raise(get::InvalidNumStateComponents(generatorType()));
  if (count != 0) guarded([&] { plugin_->getStateComponents(dest); });
}

void randstream::setStateComponents(unsigned long count, void const* const* src) {
  if (count != getNumStateComponents())
    errors::raise(set::InvalidNumStateComponents(generatorType()));
  if (count != 0) guarded([&] { plugin_->setStateComponents(src); });
}

unsigned long randstream::getStateBufLen() const {
  return getNumStateComponents() == 0 ? 0 : StateComponents(*this).flatSize();
}

void randstream::getStateBuf(void* buf, unsigned long len) const {
  if (len != getStateBufLen()) errors::raise(get::InvalidStateBufLen());
  if (len == 0) return;
  StateComponents components(*this);
  getStateComponents(components.count(), components.allocate());
  components.copyTo(buf);
}

void randstream::setStateBuf(void const* buf, unsigned long len) {
  if (len != getStateBufLen()) errors::raise(set::InvalidStateBufLen());
  if (len == 0) return;
  StateComponents components(*this);
  void* const* const pieces = components.allocate();
  components.copyFrom(buf);
  setStateComponents(components.count(), pieces);
}
