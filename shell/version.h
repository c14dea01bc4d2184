#pragma once

#include <string>

namespace shell {

// What `tvrng --version` says: version and sequence version, the compiler, the instruction set that
// the kernels use on this machine.
std::string versionText();

#if defined(__clang__)
inline constexpr char kCompiler[] = "clang " __clang_version__;
#else
inline constexpr char kCompiler[] = "g++ " __VERSION__;
#endif

}  // namespace shell
