// The three standard streams: what they lead to, and text set for a terminal.
#pragma once

#include <cstdio>
#include <string>

bool is_terminal(std::FILE* stream);
// Columns of the terminal behind standard error; 80 where it does not tell.
int terminal_width();

enum class Style { heading, name, error };

// The text in a style, when the stream is a terminal that shows colours and NO_COLOR is not set.
std::string styled(std::FILE* stream, Style style, const std::string& text);

// Pictures on a standard stream: bytes pass as they are.
void make_binary(std::FILE* stream);

// Tells on standard error what went wrong.
void complain(const std::string& message);
