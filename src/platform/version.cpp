#include "platform/platform.hpp"

uint32_t WINAPI GetVerKirvoDll(void) { return KIRVO_VERSION; }
