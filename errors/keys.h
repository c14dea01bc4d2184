#pragma once

// The key types of the catalogue: TALVOR::RandStream::create::UnknownRNGType is the identifier
// "TALVOR:RandStream:create:UnknownRNGType". A key is built from its arguments and raised with
// errors::raise.

#include "errors/key.h"

// Defines one key class with a constructor that takes exactly `arguments` values by const
// reference, so that their types are deduced as the caller has them (char[32], char const*, ...).
#define TV_DEFINE_KEY(pathText, type, keyText, arguments)                             \
  class type final : public ::errors::Key {                                           \
   public:                                                                            \
    static constexpr ::errors::PathText kPath{pathText};                              \
    template <class... Args>                                                          \
    requires(sizeof...(Args) == arguments) explicit type(Args const&... args)         \
        : Key(std::string(kPath.view()), keyText, {::errors::toArgument(args)...}) {} \
  };

#define TV_KEY(path, key, arguments)                    \
  namespace TALVOR::path {                              \
  TV_DEFINE_KEY("TALVOR::" #path, key, #key, arguments) \
  }
#define TV_COMPONENT_KEY(catalog, key, arguments)                  \
  namespace component_TALVOR::catalog_##catalog {                  \
    TV_DEFINE_KEY("TALVOR::" #catalog, key_##key, #key, arguments) \
  }
#define TV_PLAIN_KEY(key, arguments)            \
  namespace TALVOR {                            \
  TV_DEFINE_KEY("TALVOR", key, #key, arguments) \
  }
#include "errors/catalogue.def"
#undef TV_PLAIN_KEY
#undef TV_COMPONENT_KEY
#undef TV_KEY
