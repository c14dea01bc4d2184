#include "shell/version.h"

#include <fmt/format.h>

#include "golden/check.h"
#include "golden/table.h"

namespace shell {

std::string versionText() {
  return fmt::format("tvrng " TV_VERSION "\nsequence version {}\ncompiled by {}\nkernels for {}\n",
                     golden::sequenceVersion(), kCompiler, golden::settings().front().targetName());
}

}  // namespace shell
