#pragma once

#include <histedit.h>

#include <filesystem>
#include <memory>
#include <string>

namespace shell {

// Statements for recall: in memory for the line editor, and in a file of which the latest ones are
// loaded. Each new one is added to the file at once, so that prompts side by side lose none of each
// other's, and a prompt that a signal ends none of its own. A file that cannot be kept is no reason
// to complain.
class StatementHistory {
 public:
  // "" keeps no file; neither does what is no regular file.
  explicit StatementHistory(std::filesystem::path file);

  void add(std::string const& statement);
  History* inMemory() const { return memory_.get(); }

 private:
  struct End {
    void operator()(History* history) const { history_end(history); }
  };

  void load();
  void append(std::string const& statement) const;

  std::filesystem::path file_;
  std::unique_ptr<History, End> memory_;
  std::string last_;
};

}  // namespace shell
