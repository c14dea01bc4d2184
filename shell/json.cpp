#include "shell/json.h"

#include <fmt/format.h>

#include <cmath>
#include <string_view>

#include "embedded_host/array.h"
#include "embedded_host/object_system.h"
#include "embedded_host/text.h"
#include "language/values.h"

namespace shell {

namespace {

void appendText(std::string& out, std::u16string_view text) {
  out += '"';
  for (char const c : embedded_host::utf16ToUtf8(text)) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      out += fmt::format("\\u{:04x}", static_cast<unsigned char>(c));
    } else {
      out += c;
    }
  }
  out += '"';
}

void appendText(std::string& out, std::string_view utf8) {
  appendText(out, embedded_host::utf8ToUtf16(utf8));
}

void appendNumber(std::string& out, double x) {
  if (std::isnan(x)) {
    out += "\"NaN\"";
  } else if (std::isinf(x)) {
    out += x < 0 ? "\"-Inf\"" : "\"Inf\"";
  } else {
    fmt::format_to(std::back_inserter(out), "{:.17g}", x);
  }
}

template <class T>
void appendElement(std::string& out, T x) {
  if constexpr (std::is_floating_point_v<T>) {
    appendNumber(out, static_cast<double>(x));
  } else if constexpr (std::is_same_v<T, bool>) {
    out += x ? "true" : "false";
  } else {
    fmt::format_to(std::back_inserter(out), "{}", +x);
  }
}

void append(std::string& out, txArray const& value);

void appendElements(std::string& out, txArray const& value) {
  if (value.classID() == txClassChar) {
    return appendText(out, {value.dataAs<char16_t>(), value.numel()});
  }
  out += '[';
  language::visitElementType(value.classID(), [&]<class T>(T) {
    T const* data = value.dataAs<T>();
    for (std::uint64_t i = 0; i < value.numel(); ++i) {
      if (i > 0) out += ',';
      if (value.isComplex()) {
        out += '[';
        appendElement(out, data[2 * i]);
        out += ',';
        appendElement(out, data[2 * i + 1]);
        out += ']';
      } else {
        appendElement(out, data[i]);
      }
    }
  });
  out += ']';
}

void appendCells(std::string& out, txArray const& value) {
  out += '[';
  for (std::uint64_t i = 0; i < value.numel(); ++i) {
    if (i > 0) out += ',';
    txArray const* content = value.cell(i);
    content ? append(out, *content) : append(out, *language::emptyDouble());
  }
  out += ']';
}

void appendStrings(std::string& out, txArray const& value) {
  out += '[';
  for (std::uint64_t i = 0; i < value.numel(); ++i) {
    if (i > 0) out += ',';
    auto const text = embedded_host::stringAt(value, i);
    text ? appendText(out, *text) : void(out += "null");
  }
  out += ']';
}

void appendProperties(std::string& out, txArray const& value) {
  out += '{';
  bool first = true;
  if (auto const definition = embedded_host::classOf(value)) {
    for (auto const& property : definition->properties) {
      txArrayPtr const content = property.hidden ? nullptr : txGetProperty(value, property.name);
      if (!content) continue;
      if (!first) out += ',';
      first = false;
      appendText(out, property.name);
      out += ':';
      append(out, *content);
    }
  }
  out += '}';
}

void append(std::string& out, txArray const& value) {
  out += "{\"class\":";
  appendText(out, language::classText(value));
  out += ",\"size\":[";
  bool first = true;
  for (std::uint64_t const extent : value.dims()) {
    out += first ? "" : ",";
    first = false;
    out += std::to_string(extent);
  }
  out += value.isComplex() ? "],\"complex\":true" : "],\"complex\":false";
  if (value.isSparse()) out += ",\"sparse\":true";
  switch (value.classID()) {
    case txClassObject:
      out += ",\"properties\":";
      appendProperties(out, value);
      break;
    case txClassCell:
      out += ",\"data\":";
      appendCells(out, value);
      break;
    case txClassString:
      out += ",\"data\":";
      appendStrings(out, value);
      break;
    default:
      out += ",\"data\":";
      language::hasElements(value.classID()) ? appendElements(out, *txToFull(value))
                                             : void(out += "null");
  }
  out += '}';
}

}  // namespace

std::string toJson(txArray const& value) {
  std::string out;
  append(out, value);
  return out;
}

std::string toJson(ErrorFacts const& error) {
  std::string out = "{\"error\":{\"identifier\":";
  appendText(out, error.identifier);
  out += ",\"message\":";
  appendText(out, error.message);
  out += ",\"hint\":";
  error.hint.empty() ? void(out += "null") : appendText(out, error.hint);
  out += error.drawn ? ",\"drawn\":true" : ",\"drawn\":false";
  out += error.place
             ? fmt::format(",\"line\":{},\"column\":{}", error.place->line, error.place->column)
             : ",\"line\":null,\"column\":null";
  return out + "}}";
}

}  // namespace shell
