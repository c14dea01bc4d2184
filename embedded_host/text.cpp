#include "embedded_host/text.h"

#include <cstdint>
#include <cstring>

#include "embedded_host/messages.h"
#include "host/ascii_case.h"
#include "host/strings.h"

namespace embedded_host {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isSurrogate(char32_t code) { return code >= 0xD800 && code <= 0xDFFF; }

// Takes one code point off the front of `rest`. An ill-formed sequence takes one byte.
char32_t takeUtf8(std::string_view& rest) {
  auto const byte = [&](std::size_t i) { return static_cast<unsigned char>(rest[i]); };
  unsigned char const lead = byte(0);
  std::size_t const length = lead < 0x80   ? 1
                             : lead < 0xC2 ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF5 ? 4
                                           : 0;
  char32_t code = length == 1 ? lead : lead & (0x7Fu >> length);
  bool good = length > 0 && length <= rest.size();
  for (std::size_t i = 1; good && i < length; ++i) {
    good = (byte(i) & 0xC0) == 0x80;
    code = code << 6 | (byte(i) & 0x3F);
  }
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  good = good && code >= kSmallest[length] && code <= 0x10FFFF && !isSurrogate(code);
  rest.remove_prefix(good ? length : 1);
  return good ? code : kReplacement;
}

char32_t takeUtf16(std::u16string_view& rest) {
  char32_t code = rest[0];
  rest.remove_prefix(1);
  if (!isSurrogate(code)) return code;
  if (code >= 0xDC00 || rest.empty() || rest[0] < 0xDC00 || rest[0] > 0xDFFF) return kReplacement;
  code = 0x10000 + ((code - 0xD800) << 10) + (rest[0] - 0xDC00u);
  rest.remove_prefix(1);
  return code;
}

void appendUtf8(std::string& text, char32_t code) {
  auto const put = [&](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (code < 0x80) return put(code);
  if (code < 0x800) {
    put(0xC0 | code >> 6);
  } else if (code < 0x10000) {
    put(0xE0 | code >> 12);
    put(0x80 | (code >> 6 & 0x3F));
  } else {
    put(0xF0 | code >> 18);
    put(0x80 | (code >> 12 & 0x3F));
    put(0x80 | (code >> 6 & 0x3F));
  }
  put(0x80 | (code & 0x3F));
}

}  // namespace

std::u16string utf8ToUtf16(std::string_view utf8) {
  std::u16string text;
  text.reserve(utf8.size());
  while (!utf8.empty()) {
    char32_t const code = takeUtf8(utf8);
    if (code < 0x10000) {
      text.push_back(static_cast<char16_t>(code));
    } else {
      text.push_back(static_cast<char16_t>(0xD7C0 + (code >> 10)));
      text.push_back(static_cast<char16_t>(0xDC00 | (code & 0x3FF)));
    }
  }
  return text;
}

std::string utf16ToUtf8(std::u16string_view utf16) {
  std::string text;
  text.reserve(utf16.size());
  while (!utf16.empty()) appendUtf8(text, takeUtf16(utf16));
  return text;
}

bool equalIgnoringAsciiCase(std::string_view a, std::string_view b) noexcept {
  return ascii_case::equal(a, b);
}

}  // namespace embedded_host

void utStrncpy(char* target, char const* source, std::size_t limit) noexcept {
  std::size_t const length = source ? strnlen(source, limit) : 0;
  if (length > 0) std::memcpy(target, source, length);
  target[length] = '\0';
}

std::string utToAscii(std::u16string_view text) {
  std::string ascii;
  ascii.reserve(text.size());
  for (char16_t unit : text) {
    if (unit > 127) {
      embedded_host::raiseHostError("TALVOR:string:NotAscii", embedded_host::utf16ToUtf8(text));
    }
    ascii.push_back(static_cast<char>(unit));
  }
  return ascii;
}
