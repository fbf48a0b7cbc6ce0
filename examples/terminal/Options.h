// The arguments of a command.
#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

/// Thrown for a wrong command line. Its text is the reason.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Returns a question such as "; did you mean 'list'?", or nothing if no name is near.
std::string DidYouMean(const std::string& mistyped, const std::vector<std::string>& names);

/// An option that a command takes.
struct Option {
  std::string name;   ///< with its two hyphens
  std::string value;  ///< the name of its value in the help; empty if it takes none
  std::string help;
};

/// The arguments after a command. A word is an option if it begins with two hyphens, so a text may
/// begin with a minus. The value is the next argument, or follows a "=". After "--", no word is an
/// option.
class Options {
 public:
  /// Reads the arguments. Throws `UsageError` for an unknown option or a missing value.
  Options(const std::vector<std::string>& arguments, const std::vector<Option>& known);

  bool Has(const std::string& name) const { return Find(name) != nullptr; }

  /// Returns the value of an option, or null if the option was not given.
  const std::string* Find(const std::string& name) const;

  /// Returns the value of an option as a number, or `otherwise` if the option was not given. Throws
  /// `UsageError` if the value is not a number from `least` to `most`.
  int Number(const std::string& name, int least, int most, int otherwise) const;

  const std::vector<std::string>& Words() const {
    return words_;
  }  ///< all arguments except options

  /// Returns the words from `first` up to but not including `end`, with blanks between them.
  std::string Text(std::size_t first, std::size_t end) const;

 private:
  std::map<std::string, std::string> values_;
  std::vector<std::string> words_;
};
