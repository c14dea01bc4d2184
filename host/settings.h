#pragma once

// The host's settings store: named groups of keys, each with a factory and a user level.

#include <memory>
#include <string>
#include <string_view>

#include "host/export.h"

namespace settings {

namespace core {

class TV_EXPORT Settings {
 public:
  virtual ~Settings();

  // The group of that dotted name below this node; empty when there is none.
  virtual std::shared_ptr<Settings> getSettingsByFullName(std::string_view name) const = 0;

  // The value of `key` at a level: "factory" is the value as shipped, "" the value in effect.
  // Instantiated for std::u16string and double. A missing key is the host error
  // "TALVOR:settings:UnknownKey", a value of another type "TALVOR:settings:WrongType".
  template <class T>
  T get(std::string_view key, std::string_view level) const;

 protected:
  virtual std::u16string getText(std::string_view key, std::string_view level) const = 0;
  virtual double getNumber(std::string_view key, std::string_view level) const = 0;
};

template <>
inline std::u16string Settings::get(std::string_view key, std::string_view level) const {
  return getText(key, level);
}
template <>
inline double Settings::get(std::string_view key, std::string_view level) const {
  return getNumber(key, level);
}

}  // namespace core

namespace standalone {
TV_EXPORT std::shared_ptr<core::Settings> getSettingsRoot();
}

}  // namespace settings
