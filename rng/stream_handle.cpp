#include "rng/stream_handle.h"

#include "errors/keys.h"

namespace {

using Owner = std::shared_ptr<randstream>;

// The owner behind a handle, null when the array is none.
Owner* ownerOf(txArray const& handle) noexcept {
  if (handle.classID() != txClassUint64 || !handle.isScalar() || handle.isSparse()) return nullptr;
  return reinterpret_cast<Owner*>(*handle.dataAs<std::uint64_t>());
}

}  // namespace

txArrayPtr makeStreamHandle(std::shared_ptr<randstream> stream) {
  constexpr std::uint64_t kOneByOne[] = {1, 1};
  txArrayPtr handle = txCreateUninitialized(kOneByOne, txClassUint64);
  auto owner = std::make_unique<Owner>(std::move(stream));
  *handle->dataAs<std::uint64_t>() = reinterpret_cast<std::uintptr_t>(owner.release());
  return handle;
}

std::shared_ptr<randstream> streamOfHandle(txArray const& handle) {
  Owner const* const owner = ownerOf(handle);
  if (!owner || !*owner) errors::raise(component_TALVOR::catalog_RandStream::key_InvalidHandle());
  return *owner;
}

std::shared_ptr<randstream> streamOfObject(txArray const& object) {
  const txArrayPtr handle = txGetProperty(object, "StreamID");
  if (!handle) errors::raise(component_TALVOR::catalog_RandStream::key_InvalidHandle());
  return streamOfHandle(*handle);
}

void releaseStreamHandle(txArray const& handle) noexcept { delete ownerOf(handle); }
