/* The C interface, as a C99 program: values, sizes, and that every misuse is told and harmless. */

#include <math.h>
#include <stdio.h>
#include <string.h>
#include <tvmathrng/tvmathrng.h>

static int faults = 0;

#define EXPECT(condition)                                                                \
  do {                                                                                   \
    if (!(condition)) {                                                                  \
      printf("line %d: %s; last error: %s\n", __LINE__, #condition, tvrng_error_text()); \
      ++faults;                                                                          \
    }                                                                                    \
  } while (0)

static void expect_error(int line, tvrng_status status, char const* identifier) {
  if (status != TVRNG_OK && strcmp(tvrng_error_identifier(), identifier) == 0) return;
  printf("line %d: status %d, %s instead of %s\n", line, (int)status, tvrng_error_identifier(),
         identifier);
  ++faults;
}
#define EXPECT_ERROR(call, identifier) expect_error(__LINE__, call, identifier)

static void draws_known_numbers(void) {
  tvrng_stream* stream;
  double u[2];
  uint8_t dice[100];
  double order[8], counts[9] = {0};
  float z[2];
  EXPECT(tvrng_create("mt19937ar", 5489, 0, 1, &stream) == TVRNG_OK);
  EXPECT(tvrng_uniform(stream, 2, u) == TVRNG_OK);
  EXPECT(u[0] == 0.81472368639317894 && u[1] == 0.90579193707561922);
  EXPECT(tvrng_integers_uint8(stream, 1, 6, 100, dice) == TVRNG_OK);
  for (int i = 0; i < 100; ++i) EXPECT(dice[i] >= 1 && dice[i] <= 6);
  EXPECT(tvrng_permutation(stream, 8, order) == TVRNG_OK);
  for (int i = 0; i < 8; ++i) counts[(int)order[i]] += 1;
  for (int i = 1; i <= 8; ++i) EXPECT(counts[i] == 1);
  EXPECT(tvrng_sample(stream, 1000000000, 8, order) == TVRNG_OK);
  EXPECT(tvrng_set_antithetic(stream, 1) == TVRNG_OK);
  EXPECT(tvrng_reset(stream, 0) == TVRNG_OK);
  EXPECT(tvrng_uniform(stream, 1, u) == TVRNG_OK && u[0] == 1 - 0.81472368639317894);
  EXPECT(tvrng_normal_complex_float(stream, 1, z) == TVRNG_OK && isfinite(z[1]));
  tvrng_destroy(stream);
  tvrng_destroy(NULL);
}

static void substreams_jump(void) {
  tvrng_stream *stream, *item;
  uint64_t k;
  double drawn, jumped;
  EXPECT(tvrng_create("Threefry", 3, 1, 2, &stream) == TVRNG_OK);
  EXPECT(tvrng_at_substream(stream, 7, &item) == TVRNG_OK);
  EXPECT(tvrng_get_substream(item, &k) == TVRNG_OK && k == 7);
  EXPECT(tvrng_set_substream(stream, 7) == TVRNG_OK);
  for (int i = 0; i < 6; ++i) EXPECT(tvrng_uniform(item, 1, &drawn) == TVRNG_OK);
  EXPECT(tvrng_advance(stream, 5) == TVRNG_OK);
  EXPECT(tvrng_uniform(stream, 1, &jumped) == TVRNG_OK && jumped == drawn);
  tvrng_destroy(item);
  tvrng_destroy(stream);
}

static void streams_tell_what_they_are(void) {
  tvrng_stream* stream;
  char const *generator, *method;
  uint32_t seed;
  uint64_t index, count;
  int antithetic, full;
  EXPECT(strcmp(tvrng_version(), TVRNG_VERSION_TEXT) == 0);
  EXPECT(TVRNG_VERSION < TVRNG_VERSION_NUMBER(TVRNG_VERSION_MAJOR, TVRNG_VERSION_MINOR + 1, 0));
  EXPECT(tvrng_create("combRecursive", 3, 1, 2, &stream) == TVRNG_OK);
  EXPECT(tvrng_set_normal_method(stream, "polar") == TVRNG_OK);
  EXPECT(tvrng_set_full_precision(stream, 0) == TVRNG_OK);
  EXPECT(tvrng_get_generator(stream, &generator) == TVRNG_OK && !strcmp(generator, "mrg32k3a"));
  EXPECT(tvrng_get_seed(stream, &seed) == TVRNG_OK && seed == 3);
  EXPECT(tvrng_get_index(stream, &index) == TVRNG_OK && index == 1);
  EXPECT(tvrng_get_count(stream, &count) == TVRNG_OK && count == 2);
  EXPECT(tvrng_get_normal_method(stream, &method) == TVRNG_OK && !strcmp(method, "Polar"));
  EXPECT(tvrng_get_antithetic(stream, &antithetic) == TVRNG_OK && antithetic == 0);
  EXPECT(tvrng_get_full_precision(stream, &full) == TVRNG_OK && full == 0);
  EXPECT(tvrng_set_antithetic(stream, 7) == TVRNG_OK);
  EXPECT(tvrng_get_antithetic(stream, &antithetic) == TVRNG_OK && antithetic == 1);
  EXPECT_ERROR(tvrng_get_seed(stream, NULL), "TALVOR:c:NullPointer");
  EXPECT_ERROR(tvrng_get_seed(NULL, &seed), "TALVOR:c:NullPointer");
  tvrng_destroy(stream);
}

static void the_last_error_has_its_values(void) {
  tvrng_stream* stream;
  tvrng_error const* const error = tvrng_last_error();
  char text[1];
  EXPECT(tvrng_create("mersenne", 0, 0, 1, &stream) == TVRNG_ERROR);
  EXPECT(error->status == TVRNG_ERROR && error->identifier == tvrng_error_identifier());
  EXPECT(error->text == tvrng_error_text() && error->argument_count == 1);
  EXPECT(strcmp(error->arguments[0].text, "mersenne") == 0);
  EXPECT(tvrng_create("philox", 0, 0, 1, &stream) == TVRNG_OK);
  EXPECT_ERROR(tvrng_snapshot(stream, 1, text), "TALVOR:c:SnapshotSize");
  EXPECT(error->arguments[0].text == NULL && error->arguments[0].number > 100);
  tvrng_destroy(stream);
}

static void misuse_is_told_and_draws_nothing(void) {
  tvrng_stream* stream = NULL;
  tvrng_stream* none;
  double u;
  int32_t n;
  EXPECT(strcmp(tvrng_error_identifier(), "") == 0);
  EXPECT_ERROR(tvrng_create("mersenne", 0, 0, 1, &none), "TALVOR:RandStream:create:UnknownRNGType");
  EXPECT(none == NULL && strstr(tvrng_error_text(), "mersenne"));
  EXPECT_ERROR(tvrng_create("philox", 0, 4, 4, &none), "TALVOR:RandStream:create:BadStreamIndex");
  EXPECT(strstr(tvrng_error_text(), "index 4 is not below 4"));
  EXPECT_ERROR(tvrng_create("philox", 0, 0, 0, &none), "TALVOR:RandStream:create:BadNumStreams");
  EXPECT_ERROR(tvrng_create(NULL, 0, 0, 1, &none), "TALVOR:c:NullPointer");
  EXPECT_ERROR(tvrng_create("mt19937ar", 0, 0, 1, NULL), "TALVOR:c:NullPointer");
  EXPECT(tvrng_create("mt19937ar", 0, 0, 1, &stream) == TVRNG_OK);
  EXPECT_ERROR(tvrng_uniform(stream, 1, NULL), "TALVOR:c:NullPointer");
  EXPECT_ERROR(tvrng_uniform(NULL, 1, &u), "TALVOR:c:NullPointer");
  EXPECT_ERROR(tvrng_at_substream(stream, 1, &none),
               "TALVOR:RandStream:set:SubstreamsNotSupported");
  EXPECT_ERROR(tvrng_integers_int32(stream, 6, 1, 1, &n), "TALVOR:RandStream:randi:invalidLimits");
  EXPECT_ERROR(tvrng_sample(stream, 2, 3, NULL), "TALVOR:c:NullPointer");
  EXPECT_ERROR(tvrng_set_normal_method(stream, "box"), "TALVOR:RandStream:set:UnknownRandnAlg");
  /* The permutation needs room of its own before it writes: more than there is. */
  EXPECT_ERROR(tvrng_permutation(stream, (size_t)1 << 50, &u), "TALVOR:array:SizeLimitExceeded");
  EXPECT(tvrng_uniform(stream, 0, NULL) == TVRNG_OK);
  EXPECT(tvrng_uniform(stream, 1, &u) == TVRNG_OK && u == 0.81472368639317894);
  tvrng_destroy(stream);
}

static void snapshots_take_the_size_they_tell(void) {
  tvrng_stream *stream, *later;
  size_t size;
  char text[20000];
  double next[2], again[2];
  EXPECT(tvrng_create("mrg32k3a", 3, 0, 1, &stream) == TVRNG_OK);
  EXPECT(tvrng_snapshot_size(stream, &size) == TVRNG_OK && size <= sizeof text);
  EXPECT_ERROR(tvrng_snapshot(stream, size - 1, text), "TALVOR:c:SnapshotSize");
  EXPECT_ERROR(tvrng_snapshot(stream, size + 1, text), "TALVOR:c:SnapshotSize");
  EXPECT(tvrng_snapshot(stream, size, text) == TVRNG_OK);
  EXPECT(tvrng_uniform(stream, 2, next) == TVRNG_OK);
  EXPECT(tvrng_from_snapshot(size, text, &later) == TVRNG_OK);
  EXPECT(tvrng_uniform(later, 2, again) == TVRNG_OK);
  EXPECT(again[0] == next[0] && again[1] == next[1]);
  tvrng_destroy(later);
  EXPECT(tvrng_restore(stream, size, text) == TVRNG_OK);
  EXPECT(tvrng_uniform(stream, 1, again) == TVRNG_OK && again[0] == next[0]);
  EXPECT(tvrng_from_snapshot(size - 1, text, &later) == TVRNG_ERROR && later == NULL);
  tvrng_destroy(stream);
}

static void every_generator_can_be_made(void) {
  for (size_t i = 0; i < tvrng_generator_count(); ++i) {
    tvrng_stream* stream;
    double u;
    EXPECT(tvrng_create(tvrng_generator_name(i), 1, 0, 1, &stream) == TVRNG_OK);
    EXPECT(tvrng_uniform(stream, 1, &u) == TVRNG_OK && u > 0 && u < 1);
    tvrng_destroy(stream);
  }
  EXPECT(tvrng_generator_name(tvrng_generator_count()) == NULL);
}

int main(void) {
  misuse_is_told_and_draws_nothing();
  draws_known_numbers();
  substreams_jump();
  streams_tell_what_they_are();
  the_last_error_has_its_values();
  snapshots_take_the_size_they_tell();
  every_generator_can_be_made();
  return faults != 0;
}
