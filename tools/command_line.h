// The command line: what the commands declare of themselves, and its parsing. It stands before CLI11, whose header
// takes longer to compile than any command: only this one's source and what writes the manual and the completions know
// it.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace nvx::tool {

// A value that is wrong in a way that the command alone can tell.
class UsageError : public std::runtime_error {
 public:
  UsageError(const std::string& option, const std::string& why) : std::runtime_error(option + ": " + why) {}
};

// An option or argument of a command. Each operation says one thing more of it.
class Option {
 public:
  explicit Option(CLI::Option* option) : option_(option) {}

  Option& Required();
  Option& Repeatable();                      // given several times, with one value each
  Option& Separated();                       // commas part its values
  Option& Count(int values);                 // as many, and no others
  Option& Type(const std::string& name);     // what stands for the value in help and manual
  Option& Default(const std::string& text);  // what help shows
  Option& Between(int least, int greatest);
  // One of the words, which stand for the value in help and manual.
  Option& OneOf(const std::vector<std::string>& words);
  Option& ExistingFolder();
  // `why` says what is wrong with a value, and nothing of one that is right.
  Option& Check(std::function<std::string(const std::string&)> why);
  Option& Needs(const Option& other);
  Option& Excludes(const Option& other);

 private:
  CLI::Option* option_;
};

// Where the values of an option go.
using OptionTarget = std::variant<std::string*, std::int32_t*, std::uint32_t*, std::optional<std::uint32_t>*,
                                  std::optional<std::int64_t>*, std::pair<std::string, std::string>*,
                                  std::vector<std::string>*, std::vector<std::int32_t>*, std::vector<std::uint32_t>*>;

// A command, or a group of options in one. What the declared options write to must outlive the command line: commands
// keep it in a shared pointer, which their action holds.
class Command {
 public:
  Command(CLI::App* app, int* status) : app_(app), status_(status) {}

  // Names are those of an option ("-o,--output") or, without a minus, of an argument.
  Option Add(const std::string& names, OptionTarget target, const std::string& description);
  // An argument of several files, with wildcards where shells leave them to programs.
  Option AddFiles(const std::string& name, std::vector<std::string>& files, const std::string& description);
  Option AddFlag(const std::string& names, bool& flag, const std::string& description);
  Option AddFlag(const std::string& names, std::function<void()> action, const std::string& description);
  // An option of one of the words, which stand for the values of an enumeration.
  template <class Enum, class Target>
  Option AddWords(const std::string& names, Target& target, const std::map<std::string, Enum>& words,
                  const std::string& description) {
    std::map<std::string, int> numbers;
    for (const auto& [word, value] : words) numbers[word] = static_cast<int>(value);
    return AddNumberedWords(
        names, [&target](int number) { target = static_cast<Enum>(number); }, numbers, description);
  }
  // Options of which at least and at most as many are given.
  Command AddGroup(const std::string& name, std::size_t least, std::size_t greatest);
  void Example(const std::string& commandLine);
  // What the command does; it gives the exit status.
  void Action(std::function<int()> action);

 private:
  Option AddNumberedWords(const std::string& names, const std::function<void(const int&)>& take,
                          const std::map<std::string, int>& words, const std::string& description);

  CLI::App* app_;
  int* status_;
};

class CommandLine {
 public:
  CommandLine(const std::string& description, const std::string& name);
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;
  ~CommandLine();

  Command AddCommand(const std::string& name, const std::string& description);
  void SetVersion(const std::string& text);
  // A flag that is not shown: the action is all that is done.
  void AddHiddenFlag(const std::string& name, std::function<void()> action);

  // Runs the command that the arguments name, and gives its exit status. What help shows goes to standard output,
  // complaints to standard error.
  int Run(std::vector<std::string> arguments);

  // What is declared, for those who write about it.
  const CLI::App& Declared() const { return *app_; }

 private:
  std::unique_ptr<CLI::App> app_;
  int status_ = 0;
};

}  // namespace nvx::tool
