// The comment of a JPEG file.
#pragma once

#include <string>

// The file with a comment before its tables.
std::string with_comment(const std::string& jpeg, const std::string& comment);
// Bytes that the comment adds.
size_t size_of_comment(const std::string& comment);
