#pragma once

// explain EXPRESSION: evaluates it, then tells what each of its calls drew and where the streams
// stand now.

#include <string>
#include <string_view>
#include <vector>

#include "embedded_host/vm_context.h"
#include "host/tx_array.h"
#include "shell/call_watch.h"

namespace shell {

// Whether a source is an explain command: returns where its expression begins, or npos. A variable
// of that name is none.
std::size_t explainedFrom(std::string_view source);

// Watches the streams of a session while it lives: the global one and those of its variables.
class Explanation final : public CallWatch {
 public:
  // `streams`: objects with the names that they have for the reader.
  struct Named {
    std::string name;
    txArrayPtr object;
  };
  explicit Explanation(std::vector<Named> streams);
  ~Explanation() override;

  void called(Call const& call) override;
  // What was seen, in lines.
  std::string text() const;

 private:
  struct Watched;

  std::vector<Watched> streams_;
  std::vector<std::string> lines_;
};

}  // namespace shell
