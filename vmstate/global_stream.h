#pragma once

// Each VM's global stream, which every draw that names no stream comes from, and its default
// stream, the template of the next global stream.

#include <memory>

#include "host/export.h"
#include "host/tx_array.h"
#include "rng/acquire_global_stream.h"
#include "rng/randstream.h"

// The current VM's global stream; empty when there is none yet. Makes nothing.
std::shared_ptr<randstream> findGlobalRandStream();

// Makes `stream` the global stream; the one before loses this owner.
void setGlobalRandStream(std::shared_ptr<randstream> stream);

// Builtins. Stream handles are those of rng/stream_handle.h.

// name = getFactoryDefaultRandStreamType(): the generator that the host was shipped with.
TV_EXPORT void getFactoryDefaultRandStreamType(int nlhs, txArrayPtr* plhs, int nrhs,
                                               txArray const** prhs);
// [handle, type, seed, numStreams, streamIndex] = getsetGlobalRandStream() reads the global stream,
// made if needed, behind a new handle; the index counts from 1. getsetGlobalRandStream(handle)
// replaces it. Errors: set:WrongNumberArgs for any other shape of call, InvalidHandle.
TV_EXPORT void getsetGlobalRandStream(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);
// clearGlobalRandStream(): the next draw makes a new global stream.
TV_EXPORT void clearGlobalRandStream(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);
// clearGlobalRandStreamIfMatches(handle): the same, if the handle's stream is the global one. Fails
// on argument counts only, since it runs while a stream object is being deleted.
TV_EXPORT void clearGlobalRandStreamIfMatches(int nlhs, txArrayPtr* plhs, int nrhs,
                                              txArray const** prhs);
// setDefaultRandStream(object): new global streams continue from where this object's stream then
// stands. setDefaultRandStream([]): they come from the settings again. Errors: InvalidHandle.
TV_EXPORT void setDefaultRandStream(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);
