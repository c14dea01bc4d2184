#pragma once

// Stream handles: a 1-by-1 uint64 host array whose value is the address of a heap-allocated
// std::shared_ptr<randstream>, one owner of the stream; 0 is no handle. Host RandStream objects
// keep theirs in the property "StreamID".

#include <memory>

#include "host/tx_array.h"
#include "rng/randstream.h"

// A new handle that owns `stream` too. Released with releaseStreamHandle.
txArrayPtr makeStreamHandle(std::shared_ptr<randstream> stream);

// The stream of a handle. Errors: "TALVOR:RandStream:InvalidHandle" when it is not a uint64 scalar
// or is 0.
std::shared_ptr<randstream> streamOfHandle(txArray const& handle);

// The stream of a host RandStream object, through its property "StreamID".
// Errors: "TALVOR:RandStream:InvalidHandle" when the property is missing or no handle.
std::shared_ptr<randstream> streamOfObject(txArray const& object);

// Drops the handle's owner and frees it; an array that is no handle is ignored. Once per handle.
void releaseStreamHandle(txArray const& handle) noexcept;
