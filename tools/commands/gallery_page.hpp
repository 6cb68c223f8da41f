// The web page of a gallery.
#pragma once

#include "commands/exhibits.hpp"

std::string gallery_page(const std::vector<Exhibit>& all);
