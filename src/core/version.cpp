#include "platform/platform.hpp"

uint32_t WINAPI GetVerKirvoDll(void) { return 0x01000402; }
