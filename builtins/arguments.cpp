#include "builtins/arguments.h"

#include <algorithm>

#include "builtins/inline_buffer.h"
#include "host/tcos.h"
#include "host/tdispatcher.h"

namespace builtins {
namespace {

constexpr char const* kConvertSizes = "talvor.internal.builtinhelper.convertSizeArgToDouble";

bool isLikeKeyword(txArray const& value) {
  constexpr std::u16string_view kLike = u"like";
  std::optional<std::u16string> const text = value.scalarText();
  return text && std::equal(text->begin(), text->end(), kLike.begin(), kLike.end(),
                            [](char16_t given, char16_t lower) {
                              return given == lower || given + (u'a' - u'A') == lower;
                            });
}

// The class that a value names: by text, or as a class-identifier object.
std::optional<std::u16string> classNamedBy(txArray const& value) {
  std::optional<std::u16string> name = value.scalarText();
  return name ? name : tcos::namedClass(value);
}

// The class of this name in small letters, when it can be filled; "" otherwise.
std::string fillableInSmallLetters(Grammar const& grammar, std::u16string name) {
  std::ranges::transform(name, name.begin(), [](char16_t c) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c - u'A' + u'a') : c;
  });
  bool const canFill = grammar.canFill(tcos::builtinClass(name));
  return canFill ? std::string(name.begin(), name.end()) : std::string();
}

bool prototypeTakesCall(Grammar const& grammar, int nlhs, txArrayPtr* plhs,
                        txArray const& prototype, Arguments const& before) {
  InlineBuffer<txArray const*> withPrototype(before.size() + 1);
  withPrototype.data()[0] = &prototype;
  std::ranges::copy(before.values, withPrototype.data() + 1);
  return tcos::callMethod(grammar.methodLike, nlhs, plhs, withPrototype.view()) ||
         tcos::callMethodOfClass(prototype, grammar.method, nlhs, plhs, before.values);
}

std::optional<Output> parsePrototype(Grammar const& grammar, int nlhs, txArrayPtr* plhs,
                                     Arguments const& args) {
  Output output{args.size() - 2};
  txArray const& prototype = *args.values.back();
  int const position = args.position(args.size() - 1);
  txArray const* values = &prototype;

  if (grammar.asksClasses && prototype.classID() == txClassObject) {
    if (prototypeTakesCall(grammar, nlhs, plhs, prototype,
                           args.subrange(0, output.argumentsBefore)))
      return std::nullopt;
    values = tcos::underlyingArray(prototype);
    if (!values || !isNumericOrLogical(*values)) grammar.objectPrototype(position);
    output.castThrough = tcos::className(prototype);
  }
  if (!grammar.canFill(values->classID())) grammar.prototypeClass(prototype, position);
  if (values->isSparse()) grammar.sparsePrototype(position);
  // A class without a constructor: the prototype is none to build on.
  if (!output.castThrough.empty() && !Tdispatcher::has(output.castThrough))
    grammar.objectPrototype(position);
  output.classID = values->classID();
  if (values->isComplex()) output.complexity = txComplexity::complex;
  return output;
}

std::optional<Output> parseClassName(Grammar const& grammar, int nlhs, txArrayPtr* plhs,
                                     Arguments const& args, std::u16string_view name) {
  int const position = args.position(args.size() - 1);
  if (grammar.checkName) grammar.checkName(name, position);
  Output output{args.size() - 1, tcos::builtinClass(name)};
  if (grammar.canFill(output.classID)) return output;
  if (grammar.asksClasses &&
      tcos::callStaticMethod(name, grammar.method, nlhs, plhs,
                             args.subrange(0, output.argumentsBefore).values))
    return std::nullopt;
  grammar.unknownClass(position, fillableInSmallLetters(grammar, std::u16string(name)));
  return std::nullopt;
}

}  // namespace

std::optional<Output> parseOutput(Grammar const& grammar, int nlhs, txArrayPtr* plhs,
                                  Arguments const& args) {
  if (args.size() >= grammar.leading + 2 && isLikeKeyword(args[args.size() - 2]))
    return parsePrototype(grammar, nlhs, plhs, args);
  if (args.size() >= grammar.leading + 1) {
    txArray const& last = *args.values.back();
    if (std::optional<std::u16string> const name = classNamedBy(last))
      return parseClassName(grammar, nlhs, plhs, args, *name);
    if (last.isText()) grammar.unknownClass(args.position(args.size() - 1), "");
  }
  return Output{args.size()};
}

Dimensions parseSizes(Grammar const& grammar, Arguments const& sizes) {
  InlineBuffer<txArray const*> arrays(sizes.size());
  auto const isNumber = [](txArray const* array) { return array && isNumericOrLogical(*array); };
  auto const behindObject = [](auto const& array) {
    return array ? tcos::underlyingArray(*array) : nullptr;
  };

  std::ranges::transform(sizes.values, arrays.data(), behindObject);
  if (std::ranges::all_of(arrays.view(), isNumber)) return Dimensions(arrays.view());

  InlineBuffer<txArrayPtr> converted(sizes.size());
  if (Tdispatcher::call(kConvertSizes, static_cast<int>(sizes.size()), converted.data(),
                        sizes.values))
    std::ranges::transform(converted.view(), arrays.data(), behindObject);
  auto const refused = std::ranges::find_if_not(arrays.view(), isNumber) - arrays.view().begin();
  if (refused < std::ssize(sizes.values))
    grammar.inputType(sizes.position(static_cast<std::size_t>(refused)));
  return Dimensions(arrays.view());
}

txArrayPtr finish(Output const& output, txArrayPtr result) {
  if (output.castThrough.empty()) return result;
  txArray const* const filled = result.get();
  txArrayPtr cast;
  Tdispatcher::call(output.castThrough, 1, &cast, {&filled, 1});
  return cast;
}

}  // namespace builtins
