// The arguments of a command.
#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

/// A command line that cannot be carried out; its text tells the user why.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// An option that a command takes.
struct Option {
  std::string name;   ///< with its two hyphens
  std::string value;  ///< what its value is called, or empty if it takes none
  std::string help;
};

/// What the user wrote behind a command. Only what begins with two hyphens is an option, so a text
/// may begin with a minus; "--" alone ends the options.
class Options {
 public:
  /// Reads the arguments. Throws `UsageError` for an option that is not known or lacks its value.
  Options(const std::vector<std::string>& arguments, const std::vector<Option>& known);

  bool Has(const std::string& name) const { return Find(name) != nullptr; }

  /// The value of an option, or null if it was not given.
  const std::string* Find(const std::string& name) const;

  /// The value of an option as a number. Throws `UsageError` if it is none in the range.
  int Number(const std::string& name, int least, int most, int otherwise) const;

  const std::vector<std::string>& Words() const { return words_; }  ///< all that is no option

  /// The words from one on and before another, with a blank between them.
  std::string Text(std::size_t first, std::size_t end) const;

 private:
  std::map<std::string, std::string> values_;
  std::vector<std::string> words_;
};
