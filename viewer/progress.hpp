// Has the library tell a window how far it is, for as long as this lives: also where nothing came of
// the work, so that the next one is not told of in its place.
#pragma once

#include "kirvo.h"

class Progress {
  public:
    Progress(HWND window, UINT command) { KirvoSetProcess(window, command, 1); }
    ~Progress() { KirvoSetProcess(nullptr, 0, 0); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
};
