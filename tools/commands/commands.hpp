// Each command, as it is added to the program.
#pragma once

#include "line/command.hpp"

// good becomes false where an input fails.
void add_info(Command& program, bool& good);
void add_convert(Command& program, bool& good);
void add_turn(Command& program, bool& good);
void add_make(Command& program);
void add_effects(Command& program);
void add_gallery(Command& program);
