#include <algorithm>
#include <span>

#include "builtins/builtins.h"
#include "embedded_host/dispatcher.h"
#include "host/tcos.h"
#include "runtime/loaded.h"
#include "vmstate/global_stream.h"
#include "vmstate/legacy_mode.h"

namespace runtime {
namespace {

struct Row {
  char const* name;
  txBuiltin builtin;
};

// The builtins that take or give bare stream handles are for the class RandStream alone: a handle
// is an address, and no text that a user types may become one.
constexpr Row kBuiltins[] = {
    {"rand", mathrngRandFcn},
    {"randi", mathrngRandiFcn},
    {"randn", mathrngRandnFcn},
    {"randperm", mathrngRandpermFcn},
    {"clearGlobalRandStream", clearGlobalRandStream},
    {"getFactoryDefaultRandStreamType", getFactoryDefaultRandStreamType},
    {"inLegacyMode", inLegacyMode},
    {"setDefaultRandStream", setDefaultRandStream},
};

// Names that users of other systems try, and what does it here.
struct Advice {
  char const* name;
  char const* text;
};
constexpr char kHowToSeed[] = "to seed the global stream: reset(RandStream.global(),5)";
constexpr char kHowToOrder[] = "x(randperm(numel(x))) is x in random order";
constexpr char kHowToChoose[] =
    "x(randi(numel(x),1,k)) chooses k with repetition, x(randperm(numel(x),k)) without";
constexpr char kHowToUniform[] = "a + (b-a)*rand(m,n) is uniform between a and b";
constexpr char kHowToNormal[] = "mu + sigma*randn(m,n) is normal";
constexpr char kHowToInteger[] = "randi([a b],m,n) draws whole numbers from a to b";
constexpr char kHowToJump[] =
    "advance(s,n) passes over n draws, s.Substream = k goes to substream k";
constexpr Advice kAdvice[] = {
    {"rng", kHowToSeed},         {"seed", kHowToSeed},         {"srand", kHowToSeed},
    {"setseed", kHowToSeed},     {"shuffle", kHowToOrder},     {"permutation", kHowToOrder},
    {"permute", kHowToOrder},    {"choice", kHowToChoose},     {"choices", kHowToChoose},
    {"sample", kHowToChoose},    {"randsample", kHowToChoose}, {"uniform", kHowToUniform},
    {"random", kHowToUniform},   {"runif", kHowToUniform},     {"normal", kHowToNormal},
    {"gauss", kHowToNormal},     {"rnorm", kHowToNormal},      {"randint", kHowToInteger},
    {"integers", kHowToInteger}, {"jump", kHowToJump},         {"skip", kHowToJump},
    {"discard", kHowToJump},
};

// [a, b, ...] = convertSizeArgToDouble(a, b, ...): objects whose class has a method "double" are
// converted by it, everything else is handed back. Text is no size, so it stays text.
void convertSizeArgToDouble(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  for (int i = 0; i < std::min(nlhs, nrhs); ++i) {
    if (!tcos::callMethod("double", 1, &plhs[i], std::span(prhs + i, 1)) || !plhs[i])
      plhs[i] = txShare(*prhs[i]);
  }
}

}  // namespace

void addFunctions(std::shared_ptr<Loaded> const& loaded) {
  embedded_host::Functions& functions = loaded->vm->functions();
  for (Row const& row : kBuiltins) functions.add(row.name, row.builtin);
  for (Advice const& row : kAdvice) functions.addAdvice(row.name, row.text);
  functions.add("talvor.internal.builtinhelper.convertSizeArgToDouble", convertSizeArgToDouble);
}

}  // namespace runtime
