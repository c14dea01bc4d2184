#pragma once

/** @file
 * Random-number streams for C, and for the languages that call C (C99 and later). No exception
 * crosses this border.
 *
 * Every function that can fail returns a status. After a failure tvrng_error_identifier() and
 * tvrng_error_text() tell, in the same thread, what was wrong; a call refused for its arguments has
 * drawn nothing and changed nothing. Sizes stand before the memory that they are the size of, in
 * elements; memory of no elements may be a null pointer. A stream is used by one thread at a time.
 * Indices count from 0. */

#include <stddef.h>
#include <stdint.h>

#include <tvmathrng/version.h>

#if defined(__GNUC__)
#define TVRNG_API __attribute__((visibility("default")))
#else
#define TVRNG_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** One source of random numbers. */
typedef struct tvrng_stream tvrng_stream;

typedef enum tvrng_status {
  TVRNG_OK = 0,
  TVRNG_ERROR = 1,        /**< See tvrng_error_identifier(). */
  TVRNG_OUT_OF_MEMORY = 2 /**< The same, where memory was missing. */
} tvrng_status;

/** A value of the call that an error's text names: a text, or where that is a null pointer a
 * number. */
typedef struct tvrng_error_argument {
  char const* text;
  double number;
} tvrng_error_argument;

/** What went wrong. */
typedef struct tvrng_error {
  tvrng_status status;
  char const* identifier; /**< For programs: "TALVOR:RandStream:create:UnknownRNGType". */
  char const* text;       /**< For people; complete sentences. */
  size_t argument_count;  /**< At most 4. */
  tvrng_error_argument const* arguments;
} tvrng_error;

/** @name Errors
 * Of the last call of this thread that failed; TVRNG_OK and empty texts before. They stay until the
 * next failure. Beyond the identifiers of the library there are "TALVOR:c:NullPointer" and
 * "TALVOR:c:SnapshotSize". Texts of more than 127 bytes, 511 of an error's own, are cut.
 * @{ */
TVRNG_API tvrng_error const* tvrng_last_error(void);
TVRNG_API char const* tvrng_error_identifier(void);
TVRNG_API char const* tvrng_error_text(void);
/** @} */

/** The version of the library at run time, as TVRNG_VERSION_TEXT. */
TVRNG_API char const* tvrng_version(void);

/** @name Generators
 * @{ */
TVRNG_API size_t tvrng_generator_count(void);
/** The name of generator i; a null pointer from tvrng_generator_count() on. */
TVRNG_API char const* tvrng_generator_name(size_t i);
/** @} */

/** @name Making streams
 * @{ */
/** Makes stream `index`, below `count`, of the `count` streams that a generator has for a seed; 0
 * of 1 is the usual one. The generator may be called by a short name ("twister", "philox", ...), in
 * any case. On failure *stream is a null pointer. */
TVRNG_API tvrng_status tvrng_create(char const* generator, uint32_t seed, uint64_t index,
                                    uint64_t count, tvrng_stream** stream);
/** Makes a stream of its own with the settings of `stream`, at the start of substream k: what work
 * item k draws from. */
TVRNG_API tvrng_status tvrng_at_substream(tvrng_stream const* stream, uint64_t k,
                                          tvrng_stream** item);
/** Ends a stream; a null pointer is none. */
TVRNG_API void tvrng_destroy(tvrng_stream* stream);
/** @} */

/** @name Drawing
 * Each fills out[0, n).
 * @{ */
/** Uniform values of the open interval (0,1). */
TVRNG_API tvrng_status tvrng_uniform(tvrng_stream* stream, size_t n, double* out);
TVRNG_API tvrng_status tvrng_uniform_float(tvrng_stream* stream, size_t n, float* out);
/** Standard normal values. */
TVRNG_API tvrng_status tvrng_normal(tvrng_stream* stream, size_t n, double* out);
TVRNG_API tvrng_status tvrng_normal_float(tvrng_stream* stream, size_t n, float* out);
/** n complex normal values of variance 1: 2n numbers, real and imaginary parts in turn. */
TVRNG_API tvrng_status tvrng_normal_complex(tvrng_stream* stream, size_t n, double* out);
TVRNG_API tvrng_status tvrng_normal_complex_float(tvrng_stream* stream, size_t n, float* out);
/** Whole numbers from `lowest` to `highest`, both whole and below 2^53 in magnitude; where a type
 * cannot hold a value it takes the nearest that it can. */
TVRNG_API tvrng_status tvrng_integers(tvrng_stream* stream, double lowest, double highest, size_t n,
                                      double* out);
TVRNG_API tvrng_status tvrng_integers_float(tvrng_stream* stream, double lowest, double highest,
                                            size_t n, float* out);
TVRNG_API tvrng_status tvrng_integers_int8(tvrng_stream* stream, double lowest, double highest,
                                           size_t n, int8_t* out);
TVRNG_API tvrng_status tvrng_integers_uint8(tvrng_stream* stream, double lowest, double highest,
                                            size_t n, uint8_t* out);
TVRNG_API tvrng_status tvrng_integers_int16(tvrng_stream* stream, double lowest, double highest,
                                            size_t n, int16_t* out);
TVRNG_API tvrng_status tvrng_integers_uint16(tvrng_stream* stream, double lowest, double highest,
                                             size_t n, uint16_t* out);
TVRNG_API tvrng_status tvrng_integers_int32(tvrng_stream* stream, double lowest, double highest,
                                            size_t n, int32_t* out);
TVRNG_API tvrng_status tvrng_integers_uint32(tvrng_stream* stream, double lowest, double highest,
                                             size_t n, uint32_t* out);
/** Any limits of the type. Limits, or a number of values between them, of 2^53 and above take two
 * draws a try. */
TVRNG_API tvrng_status tvrng_integers_int64(tvrng_stream* stream, int64_t lowest, int64_t highest,
                                            size_t n, int64_t* out);
TVRNG_API tvrng_status tvrng_integers_uint64(tvrng_stream* stream, uint64_t lowest,
                                             uint64_t highest, size_t n, uint64_t* out);
/** The numbers 1 to n in random order. */
TVRNG_API tvrng_status tvrng_permutation(tvrng_stream* stream, size_t n, double* out);
/** n distinct numbers of 1 to `population` in random order. */
TVRNG_API tvrng_status tvrng_sample(tvrng_stream* stream, uint64_t population, size_t n,
                                    double* out);
/** @} */

/** @name Position
 * @{ */
/** Back to the start of the stream of a seed. Settings stay. */
TVRNG_API tvrng_status tvrng_reset(tvrng_stream* stream, uint32_t seed);
TVRNG_API tvrng_status tvrng_set_substream(tvrng_stream* stream, uint64_t k);
TVRNG_API tvrng_status tvrng_get_substream(tvrng_stream const* stream, uint64_t* k);
/** Passes over n draws. */
TVRNG_API tvrng_status tvrng_advance(tvrng_stream* stream, uint64_t n);
/** @} */

/** @name Snapshots
 * The whole stream as text, for a file or another machine: ask for its size, give that much room.
 * @{ */
/** The number of bytes that a snapshot of the stream, as it is, takes. */
TVRNG_API tvrng_status tvrng_snapshot_size(tvrng_stream const* stream, size_t* size);
/** Writes the snapshot to text[0, size), without a terminating zero. Another size than the one
 * asked for is an error, "TALVOR:c:SnapshotSize". */
TVRNG_API tvrng_status tvrng_snapshot(tvrng_stream const* stream, size_t size, char* text);
/** Makes a stream that goes on as the one of the snapshot would have. */
TVRNG_API tvrng_status tvrng_from_snapshot(size_t size, char const* text, tvrng_stream** stream);
/** Takes a stream of the same generator back to where the snapshot was taken. */
TVRNG_API tvrng_status tvrng_restore(tvrng_stream* stream, size_t size, char const* text);
/** @} */

/** @name Settings
 * @{ */
/** "Ziggurat", "Polar" or "Inversion". */
TVRNG_API tvrng_status tvrng_set_normal_method(tvrng_stream* stream, char const* name);
/** 1 draws 1 - u for u and -z for z; 0 does not. */
TVRNG_API tvrng_status tvrng_set_antithetic(tvrng_stream* stream, int on);
/** 0 lets some generators make a double of fewer bits, in less time. */
TVRNG_API tvrng_status tvrng_set_full_precision(tvrng_stream* stream, int on);
/** @} */

/** @name What a stream is
 * Names belong to the stream: that of the generator to its end, that of the method until it is set
 * again.
 * @{ */
TVRNG_API tvrng_status tvrng_get_generator(tvrng_stream const* stream, char const** name);
TVRNG_API tvrng_status tvrng_get_seed(tvrng_stream const* stream, uint32_t* seed);
/** Which stream it is, and of how many. */
TVRNG_API tvrng_status tvrng_get_index(tvrng_stream const* stream, uint64_t* index);
TVRNG_API tvrng_status tvrng_get_count(tvrng_stream const* stream, uint64_t* count);
TVRNG_API tvrng_status tvrng_get_normal_method(tvrng_stream const* stream, char const** name);
TVRNG_API tvrng_status tvrng_get_antithetic(tvrng_stream const* stream, int* on);
TVRNG_API tvrng_status tvrng_get_full_precision(tvrng_stream const* stream, int* on);
/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif
