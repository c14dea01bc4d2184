/* Random numbers in a C program. */

#include <stdio.h>
#include <tvmathrng/tvmathrng.h>

int main(void) {
  tvrng_stream* stream;
  if (tvrng_create("philox4x32_10", 42, 0, 1, &stream) != TVRNG_OK) {
    fprintf(stderr, "%s\n", tvrng_error_text());
    return 1;
  }
  double heights[4];
  uint8_t dice[5];
  if (tvrng_normal(stream, 4, heights) != TVRNG_OK ||
      tvrng_integers_uint8(stream, 1, 6, 5, dice) != TVRNG_OK) {
    fprintf(stderr, "%s\n", tvrng_error_text());
    tvrng_destroy(stream);
    return 1;
  }
  for (int i = 0; i < 4; ++i) printf("%.17g ", heights[i]);
  for (int i = 0; i < 5; ++i) printf("%d ", dice[i]);
  printf("\n");

  tvrng_stream* none;
  if (tvrng_create("philox", 42, 0, 1, &none) != TVRNG_OK)
    printf("%s: %s\n", tvrng_error_identifier(), tvrng_error_text());
  tvrng_destroy(stream);
  return 0;
}
