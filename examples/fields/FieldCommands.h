// The commands that show how entry fields read texts.
#pragma once

#include "terminal/Command.h"

ExitStatus RunParse(const Options& options);
ExitStatus RunFields(const Options& options);

std::string ExplainParse();
