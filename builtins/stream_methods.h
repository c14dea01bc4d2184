#pragma once

// The native methods of the host-language class RandStream. An object keeps its stream behind a
// handle (rng/stream_handle.h) in the property "StreamID"; a missing or invalid handle is the error
// "TALVOR:RandStream:InvalidHandle".

#include "host/export.h"
#include "host/matrix.h"
#include "host/tx_array.h"

namespace RandStream {

// handle = create(type, numStreams, streamIndex, seed, params): a new stream behind a new handle.
// Classes char, uint64, uint64 (from 1), uint32, and uint64 or empty; their values are checked by
// the stream factory. Errors: create:InvalidRNGType, BadNumStreams, BadStreamIndex, BadSeed,
// BadParams, in this order, and those of the factory.
TV_EXPORT void create(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);
// deletefcn(handle): releases a handle, once each. Anything that is no handle is ignored.
TV_EXPORT void deletefcn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);

// value = getset(name, object) and getset(name, object, value): the properties State, Substream,
// RandnAlg, Antithetic, FullPrecision and Parameters, whose names may be abbreviated. A name that
// is none of them is passed over in silence. A refused value changes nothing.
TV_EXPORT void getset(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);

// resetFcn(object), resetFcn(object, seed): back to the start of the sequence. Errors:
// reset:LegacySeedNotAllowed, SeedNotAllowed, BadSeed.
TV_EXPORT void resetFcn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);
// advance(object, steps). Errors: advance:BadNsteps.
TV_EXPORT void advance(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);

// text = snapshotFcn(object): the stream as text (rng/snapshot.h). restoreFcn(object, text) makes
// the stream the one that a snapshot was taken of; handle = restoreFcn(text) is a new one behind a
// new handle. Errors: those of restoreSnapshot, set:WrongNumberArgs for any other shape of call.
TV_EXPORT void snapshotFcn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);
TV_EXPORT void restoreFcn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);

// The builtins rand, randn, randi and randperm on the object's own stream: object first, then their
// arguments; no call is offered to other classes.
TV_EXPORT void randstreamRand(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);
TV_EXPORT void randn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);
TV_EXPORT void randi(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);
TV_EXPORT void randperm(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);

// As mathrng::randVariant and mathrng::randnVariant, from the object's stream.
TV_EXPORT txArrayPtr randVariant(txArray const* object, double n);
TV_EXPORT txArrayPtr randVariant(txArray const* object, double m, double n);
TV_EXPORT txArrayPtr randVariant(txArray const* object,
                                 matrix::typed_row_vector<double> const* sizes);
TV_EXPORT txArrayPtr randnVariant(txArray const* object, double n);
TV_EXPORT txArrayPtr randnVariant(txArray const* object, double m, double n);
TV_EXPORT txArrayPtr randnVariant(txArray const* object,
                                  matrix::typed_row_vector<double> const* sizes);

}  // namespace RandStream
