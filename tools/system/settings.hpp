// What holds for the whole run: the options that may stand anywhere on the command line.
#pragma once

struct Settings {
    bool quiet = false;   // no progress bar, no messages but errors
    bool verbose = false; // status numbers, and notes that tell of nothing lost
    bool json = false;    // results as JSON
    bool force = false;   // files that exist are replaced
};

inline Settings settings;
