// What the terminal can show.
#pragma once

/// Returns the columns of a terminal; 80 if a descriptor is no terminal or does not know them.
int TerminalWidth(int descriptor);

/// Tells whether box-drawing characters can be shown: the user's locale has them, and the terminal
/// is more than a line printer.
bool HasBoxCharacters();

/// Tells whether standard output is a terminal with colours, and its user wants them (NO_COLOR is not
/// set).
bool HasColors();

/// Clears the line of the terminal on standard error.
void EraseLine();
