// What the terminal can show.
#pragma once

#include <string>

/// A standard stream of the program.
enum class Stream { kInput, kOutput, kError };

/// The columns of a terminal whose width is unknown.
inline constexpr int kUsualWidth = 80;

/// Prepares the standard streams, so that a failure to write is an error and not a signal.
void PrepareStreams();

/// Whether a stream is a terminal.
bool IsTerminal(Stream stream);

/// Returns the number of columns of a terminal, or `kUsualWidth` if it is unknown.
int TerminalWidth(Stream stream);

/// Whether the terminal expects texts in UTF-8.
bool UsesUtf8();

/// Whether the terminal can show box-drawing characters: it expects UTF-8, and is not "dumb".
bool HasBoxCharacters();

/// Whether to write colours: standard output is a terminal that has them, and NO_COLOR is not set.
bool HasColors();

/// Clears the current line of the terminal on standard error.
void EraseLine();

/// Returns why standard output did not take a text, as a number of <cerrno>, such as `EPIPE` if
/// nobody reads it any more. To find out, it writes a line end; 0 means that this worked.
int OutputError();

/// "standard output is full", or what else such a number means
std::string OutputErrorText(int error);

/// Asks a question on the terminal. Returns whether the answer is yes; the end of input means no.
bool Confirm(const std::string& question);
