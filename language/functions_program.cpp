// Functions about the program itself: printing, time, errors, variables.

#include "embedded_host/text.h"
#include "host/messages.h"
#include "language/fault.h"
#include "language/functions.h"
#include "language/strings.h"

namespace language {

namespace {

// print(a,b,...): texts and scalars on one line, everything else as the prompt shows it.
void print(Call& call) {
  std::string line;
  bool onLine = true;
  for (txArray const* value : call.arguments()) {
    bool const text = isScalarText(*value);
    bool const scalar = value->isScalar() && hasElements(value->classID());
    if (!text && !scalar) {
      if (!line.empty()) call.session().output().print(line + '\n');
      line.clear();
      call.session().output().printValue(*value);
      onLine = false;
      continue;
    }
    if (!line.empty()) line += ' ';
    txArrayPtr const strings = toStrings(*value);
    line += embedded_host::utf16ToUtf8(embedded_host::stringAt(*strings, 0).value_or(u"<missing>"));
    onLine = true;
  }
  if (onLine) call.session().output().print(line + '\n');
}

void tic(Call& call) { call.session().timer() = std::chrono::steady_clock::now(); }

void toc(Call& call) {
  auto const& start = call.session().timer();
  if (!start) raiseFault("timer", "The clock was never started.", "tic starts it");
  std::chrono::duration<double> const passed = std::chrono::steady_clock::now() - *start;
  if (call.outputs() > 0) return call.give(makeDouble(passed.count()));
  call.session().output().print(numberText(passed.count(), 6) + " seconds\n");
}

// error('id:part','text') or error('text'); error(e) raises a caught one again.
void error(Call& call) {
  txArray const& first = call[0];
  if (first.classID() == txClassObject) {
    txArrayPtr const identifier = txGetProperty(first, "identifier");
    txArrayPtr const message = txGetProperty(first, "message");
    if (!identifier || !message) raiseFault("textExpected", "This is no caught error.", "", 1);
    raiseUserError(utf8Of(*identifier), utf8Of(*message));
  }
  std::string const text = textArgument(first, 1);
  if (call.size() == 1) raiseUserError("TALVOR:language:error", text);
  raiseUserError(text, textArgument(call[1], 2));
}

void variables(Call& call) {
  auto const& all = call.session().variables();
  txArrayPtr names = txCreateCell(Shape{1, all.size()});
  std::uint64_t i = 0;
  for (auto const& [name, value] : all) names->setCell(i++, makeText(name));
  call.give(std::move(names));
}

void clear(Call& call) { call.session().clearVariables(); }

void exist(Call& call) {
  call.give(txCreateLogical(call.session().variable(textArgument(call[0], 1)) != nullptr));
}

constexpr FunctionRow kRows[] = {
    {"print", print, 0, -1, 0, "writes texts and values", "print('mean',0.5)"},
    {"tic", tic, 0, 0, 0, "starts the clock", "tic"},
    {"toc", toc, 0, 0, 1, "seconds since tic", "tic, t = toc;"},
    {"error", error, 1, 2, 0, "raises an error",
     "try, error('my:id','text'), catch e, e.message, end"},
    {"exist", exist, 1, 1, 1, "is there a variable of that name", "exist('x')"},
    {"who", variables, 0, 0, 1, "the names of all variables", "who"},
    {"clear", clear, 0, 0, 0, "forgets all variables", "clear"},
};

}  // namespace

FunctionTable programFunctions() { return kRows; }

}  // namespace language
