#include "language/unicode.h"

namespace language {

namespace {
constexpr bool isSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }
}  // namespace

std::optional<DecodedPoint> decodeUtf8(std::string_view text, std::size_t position) {
  if (position >= text.size()) return std::nullopt;
  auto const byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  unsigned const lead = byte(position);
  if (lead < 0x80) return DecodedPoint{lead, position + 1};
  int const extra = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
  if (lead < 0xC2 || lead > 0xF4 || position + extra >= text.size()) return std::nullopt;
  char32_t point = lead & (0x3Fu >> extra);
  for (int i = 1; i <= extra; ++i) {
    unsigned const next = byte(position + i);
    if ((next & 0xC0) != 0x80) return std::nullopt;
    point = (point << 6) | (next & 0x3F);
  }
  constexpr char32_t kSmallest[] = {0x80, 0x800, 0x10000};
  if (point < kSmallest[extra - 1] || point > 0x10FFFF || isSurrogate(point)) return std::nullopt;
  return DecodedPoint{point, position + 1 + extra};
}

void appendUtf16(std::u16string& target, char32_t point) {
  if (point < 0x10000) {
    target += static_cast<char16_t>(point);
  } else {
    point -= 0x10000;
    target += static_cast<char16_t>(0xD800 + (point >> 10));
    target += static_cast<char16_t>(0xDC00 + (point & 0x3FF));
  }
}

}  // namespace language
