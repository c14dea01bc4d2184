#pragma once

// What help() says. The examples are run by the tests, with tvmathrng as tv and numpy as np.

namespace tvpython::docs {

inline constexpr char const* kRandStream =
    R"(RandStream(generator='mt19937ar', seed=0, *, stream_index=0, num_streams=1,
           substream=0, randn_alg=None, antithetic=False, full_precision=True)

A source of random numbers: the same arguments and calls give the same bits on every machine.

generator       a name of tv.generators(), or a short one: 'twister', 'simdTwister',
                'combRecursive', 'multFibonacci', 'philox', 'threefry'; in any case
seed            a whole number from 0 to 4294967295; None or 'entropy' for one that the operating
                system chooses: the attribute seed has it then. RandStream(7) is seed 7
stream_index    which of num_streams streams that do not overlap, from 0
substream       where to start, from 0; see the attribute
randn_alg, antithetic, full_precision
                see the attributes

A stream serves one thread at a time. A call that meets another thread's call on the same stream
raises TvThreadError and draws nothing. Streams can be copied and pickled: copy.copy and
copy.deepcopy alike make a stream of its own that goes on as the original would. Streams are equal
when all that they would draw is; they change, and so are no keys of dictionaries.

>>> s = tv.RandStream('philox4x32_10', seed=7)
>>> s.rand(2, 3).shape
(2, 3)
>>> s
RandStream('philox4x32_10', seed=7)
)";

inline constexpr char const* kRand =
    R"(rand($self, /, *shape, size=None, dtype='float64', out=None, order='C')
--

Uniform numbers of the open interval (0,1): never 0, never 1. One draw each, two for a complex one.

shape   whole numbers or one tuple of them, also as size=; without shape and out the result is one
        number
dtype   float64, float32, complex128 or complex64; the parts of a complex number are uniform
out     an array to be filled and returned: of one of these dtypes, writeable and contiguous
order   'C' or 'F', how a new array lies in memory. Numbers are drawn along memory: with 'F' a
        matrix has its numbers column by column, as in the host language

>>> s = tv.RandStream('mt19937ar')
>>> s.rand()
0.8147236863931789
>>> s.rand(2, 2)
array([[0.90579194, 0.12698682],
       [0.91337586, 0.63235925]])
>>> a = np.empty(3, np.float32)
>>> s.rand(out=a) is a
True
)";

inline constexpr char const* kRandn =
    R"(randn($self, /, *shape, size=None, dtype='float64', out=None, order='C')
--

Standard normal numbers by the method randn_alg. A complex one has variance 1, half of it in each
part. The arguments are those of rand.

>>> tv.RandStream('mrg32k3a', seed=7, randn_alg='Inversion').randn(3)
array([ 0.14451953, -1.00060502, -0.00419451])
)";

inline constexpr char const* kRandi =
    R"(randi($self, limits, /, *shape, size=None, dtype='int64', out=None, order='C')
--

Whole numbers of a closed range, one draw each.

limits  n, for 1 to n, or (lowest, highest), both included; below 2^53 in magnitude
dtype   an integer type, bool, float64 or float32, which must hold both limits
shape, out, order
        those of rand

>>> s = tv.RandStream()
>>> s.randi(6, 10)
array([5, 6, 1, 6, 4, 1, 2, 4, 6, 6])
>>> s.randi((-1, 1), 4, dtype=np.int8)
array([-1,  1,  1,  0], dtype=int8)
)";

inline constexpr char const* kRandperm =
    R"(randperm($self, n, k=None, /, *, dtype='int64', out=None)
--

The numbers 0 to n-1 in random order, or k of them: positions, to be used as indices. For k below
n/4, time and memory depend on k alone. Draws n uniforms for an order of all, n-1 for k = n, k for
k below n/4, 2k otherwise.

dtype   int64, int32, uint64, uint32 or float64
out     as in rand, of one dimension

>>> tv.RandStream().randperm(8)
array([5, 2, 6, 7, 4, 0, 1, 3])
>>> tv.RandStream().randperm(10**9, 3).shape
(3,)
)";

inline constexpr char const* kGlobalRand =
    R"(rand($module, /, *shape, size=None, dtype='float64', out=None, order='C')
--

RandStream.rand of the global stream.
)";
inline constexpr char const* kGlobalRandn =
    R"(randn($module, /, *shape, size=None, dtype='float64', out=None, order='C')
--

RandStream.randn of the global stream.
)";
inline constexpr char const* kGlobalRandi =
    R"(randi($module, limits, /, *shape, size=None, dtype='int64', out=None, order='C')
--

RandStream.randi of the global stream.
)";
inline constexpr char const* kGlobalRandperm =
    R"(randperm($module, n, k=None, /, *, dtype='int64', out=None)
--

RandStream.randperm of the global stream.
)";

inline constexpr char const* kGlobalStream = R"(global_stream()

The stream that tv.rand, tv.randn, tv.randi and tv.randperm draw from: mt19937ar with seed 0 when
the program starts. Threads share it, so that only one of them may draw from it at a time.

>>> tv.global_stream().reset(1)
>>> tv.rand() == tv.RandStream('mt19937ar', seed=1).rand()
True
)";

inline constexpr char const* kSetGlobalStream = R"(set_global_stream(stream)

Makes another stream the global one and returns the one before.

>>> before = tv.set_global_stream(tv.RandStream('philox', seed=1))
>>> tv.rand()
0.7476373552759091
>>> _ = tv.set_global_stream(before)
)";

inline constexpr char const* kGenerators = R"(generators()

The names of all generators, a list.

>>> 'philox4x32_10' in tv.generators()
True
)";

inline constexpr char const* kReset = R"(reset(seed=None)

Back to the start of the stream, or to that of another seed: a whole number or 'entropy'. The
settings and the place in the family stay; the substream is 0.

>>> s = tv.RandStream(seed=3)
>>> first = s.rand(4)
>>> s.reset()
>>> bool((s.rand(4) == first).all())
True
)";

inline constexpr char const* kAdvance = R"(advance(n)

Passes over n draws, any number below 2^64. Every generator jumps: in microseconds, the two twisters
in some tens of milliseconds.

>>> s, t = tv.RandStream('philox'), tv.RandStream('philox')
>>> s.advance(10)
>>> bool(s.rand() == t.rand(11)[10])
True
)";

inline constexpr char const* kAtSubstream = R"(at_substream(k)

A new stream of the same generator, seed, place and settings, at the start of substream k: what work
item k draws from, on whichever thread or machine.

>>> s = tv.RandStream('philox', seed=42)
>>> means = [s.at_substream(item).rand(1000).mean() for item in range(4)]
)";

inline constexpr char const* kSnapshot = R"(snapshot()

The stream as text, complete: RandStream.from_snapshot makes the same stream from it, on any machine
and in the host language too. Draws nothing.

>>> s = tv.RandStream('mrg32k3a', seed=1, randn_alg='Polar')
>>> first = s.randn()
>>> t = tv.RandStream.from_snapshot(s.snapshot())
>>> s.randn() == t.randn()
True
)";

inline constexpr char const* kRestore = R"(restore(snapshot)

Makes this stream the one that the snapshot was taken of, which must have the same generator. A
snapshot that is refused changes nothing.

>>> s = tv.RandStream(seed=1)
>>> kept = s.snapshot()
>>> first = s.rand()
>>> s.restore(kept)
>>> s.rand() == first
True
)";

inline constexpr char const* kFromSnapshot = R"(from_snapshot(snapshot)

A new stream that goes on as the one that the snapshot was taken of.
)";

inline constexpr char const* kGenerator = "The name of the generator.";
inline constexpr char const* kSeed = "The seed, a whole number from 0 to 4294967295.";
inline constexpr char const* kNumStreams = "How many streams that do not overlap there are.";
inline constexpr char const* kStreamIndex = "Which of them this one is, from 0.";

inline constexpr char const* kSubstream =
    R"(The substream that was last gone to, from 0. Setting it goes to the start of another one.

Substream k here is substream k + 1 of the host language.

>>> s = tv.RandStream('mrg32k3a', seed=1)
>>> s.substream = 4
>>> s.rand() == s.at_substream(4).rand()
True
)";

inline constexpr char const* kRandnAlg =
    R"(How randn makes normal numbers: 'Ziggurat', 'Polar' or 'Inversion', in any case.

Inversion takes one draw for each number and keeps their order.

>>> s = tv.RandStream('mrg32k3a')
>>> s.randn_alg
'Ziggurat'
)";

inline constexpr char const* kAntithetic =
    R"(Whether the stream delivers 1 - u where it would deliver u, and -z for z.

>>> s, t = tv.RandStream(seed=1), tv.RandStream(seed=1, antithetic=True)
>>> s.rand() + t.rand()
1.0
)";

inline constexpr char const* kFullPrecision =
    "False lets some generators make a double of fewer bits, in less time.";

inline constexpr char const* kState =
    R"(Where the generator stands, as an array of one dimension that belongs to the caller.

It has neither the settings nor a second normal number that the method Polar keeps: a copy or a
snapshot of the stream is complete.

>>> s = tv.RandStream('philox', seed=5)
>>> kept = s.state
>>> first = s.rand(3)
>>> s.state = kept
>>> bool((s.rand(3) == first).all())
True
)";

inline constexpr char const* kParameters =
    R"(Sizes of the family: num_streams, num_substreams, log2_stream_length, log2_substream_length.

Lengths are in draws, for mrg32k3a in steps of which a draw of full precision takes two.

>>> tv.RandStream('philox').parameters.log2_substream_length
64
)";

inline constexpr char const* kBitGenerator = R"(bit_generator()

This stream as a bit generator of NumPy. It draws from the stream itself, not from a copy: whoever
draws next gets the next numbers.

>>> s, twin = tv.RandStream('philox', seed=7), tv.RandStream('philox', seed=7)
>>> g = np.random.Generator(s.bit_generator())
>>> [g.random(), s.rand(), g.random()] == twin.rand(3).tolist()
True
)";
inline constexpr char const* kLock = "The right to draw from a stream, for a with statement.";

}  // namespace tvpython::docs
