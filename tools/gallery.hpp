// kirvo gallery: every effect on one picture.
#pragma once

#include <string>

// Writes numbered JPEG files, contact-sheet.jpg and index.html into a folder, which is made.
void make_gallery(const std::string& input, const std::string& folder);
