// What the terminal can show.
#pragma once

/// Returns the number of columns of a terminal, or 80 if it is unknown.
int TerminalWidth(int descriptor);

/// Whether the terminal can show box-drawing characters: the locale uses UTF-8, and the terminal is
/// not "dumb".
bool HasBoxCharacters();

/// Whether to write colours: standard output is a terminal that has them, and NO_COLOR is not set.
bool HasColors();

/// Clears the current line of the terminal on standard error.
void EraseLine();
