// The catalogue as menus.
#pragma once

#include "effects/effects.hpp"

#include <windows.h>

HMENU make_effects_menu();
// Null where the command is no effect's.
const Effect* effect_of(WORD command);
