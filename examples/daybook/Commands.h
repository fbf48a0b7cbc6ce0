// The commands of daybook.
#pragma once

#include "terminal/Command.h"

ExitStatus RunNext(const Options& options);
ExitStatus RunAdd(const Options& options);
ExitStatus RunEdit(const Options& options);
ExitStatus RunDone(const Options& options);
ExitStatus RunList(const Options& options);
ExitStatus RunRemove(const Options& options);
ExitStatus RunMonth(const Options& options);
ExitStatus RunExport(const Options& options);
ExitStatus RunCopy(const Options& options);
ExitStatus RunRename(const Options& options);
ExitStatus RunDelete(const Options& options);
ExitStatus RunStress(const Options& options);
ExitStatus RunStressUser(const Options& options);

std::string ExplainNext();
std::string ExplainEntry();
std::string ExplainList();
std::string ExplainMonth();
std::string ExplainExport();
std::string ExplainStress();
