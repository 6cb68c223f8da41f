// Options that several commands have.
#pragma once

#include "commands/convert.hpp"
#include "line/command.hpp"

// With what names of outputs may tell of sizes.
void add_operands(Command* command, Operands& operands, const char* help, const char* sizes);
void add_run(Command* command, Run& run);
void add_format(Command* command, std::string& to);
void add_strip(Command* command, WriteOptions& writing);
