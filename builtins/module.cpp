#include "builtins/builtins.h"

void TLInitialize_libtvmathrng() {}
void TLTerminate_libtvmathrng() {}
