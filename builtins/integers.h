#pragma once

// randi, as builtin and as method: the grammar of rand with the limits in front.

#include <utility>

#include "builtins/arguments.h"
#include "builtins/policy.h"
#include "builtins/randi_arguments.h"
#include "builtins/sampling.h"
#include "host/tcos.h"

namespace builtins {

template <class Entry>
constexpr Grammar integerGrammar() {
  using Keys = typename Entry::Keys;
  return {.method = "randi",
          .methodLike = "randiLike",
          .asksClasses = Entry::kAsksClasses,
          .leading = 1,
          .canFill = isIntegerElement,
          .checkName =
              [](std::u16string_view name, int position) {
                if (name == u"int64")
                  errors::raise(typename Keys::invalidOutputType(u"int64"), position);
                if (name == u"uint64")
                  errors::raise(typename Keys::invalidOutputType(u"uint64"), position);
              },
          .unknownClass = raiseUnknownClass<typename Keys::unknownClass>,
          .objectPrototype = raiseAt<typename Keys::invalidPrototype>,
          .prototypeClass =
              [](txArray const& prototype, int position) {
                if constexpr (Entry::kAsksClasses) {
                  std::string const name = tcos::className(prototype);
                  errors::raise(typename Keys::invalidOutputType(name.c_str()), position);
                } else {
                  raiseAt<typename Keys::invalidPrototype>(position);
                }
              },
          .sparsePrototype = raiseAt<typename Keys::sparsePrototype>,
          .inputType = raiseAt<typename Keys::inputType>};
}

template <class Entry>
void sampleIntegers(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  using Source = typename Entry::Source;
  static constexpr Grammar kGrammar = integerGrammar<Entry>();
  errors::checkCounts(nlhs, 1, nrhs, 1, kAnyNumber);
  Source const source(prhs);
  Arguments const args = argumentsAfter<Source>(nrhs, prhs);
  if (args.size() == 0) matrix::detail::error_minrhs();
  std::optional<Output> const output = parseOutput(kGrammar, nlhs, plhs, args);
  if (!output) return;
  Limits const limits =
      parseLimits(args[0], raiseAt<typename Entry::Keys::invalidLimits>, args.position(0));
  Dimensions const dimensions = parseSizes(kGrammar, args.subrange(1, output->argumentsBefore));
  checkRange(limits, args.position(0));
  txArrayPtr result = txCreateUninitialized(dimensions.view(), output->classID, output->complexity);
  fillIntegers(*source.acquire(), limits, *result, drawsFor(*result));
  plhs[0] = finish(*output, std::move(result));
}

}  // namespace builtins
