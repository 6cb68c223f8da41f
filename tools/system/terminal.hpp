// The three standard streams: what they lead to, and text set for a terminal.
#pragma once

#include <cstdio>
#include <string>

bool is_terminal(std::FILE* stream);
// Columns of the terminal behind standard error; 80 where it does not tell.
int terminal_width();

// Consoles of Windows show UTF-8 from now on, until they are given back as they were.
void prepare_console();
void restore_console();

enum class Style { heading, name, warning, error };

// The text in a style, when the stream is a terminal that shows colours and NO_COLOR is not set.
std::string styled(std::FILE* stream, Style style, const std::string& text);

// Pictures on a standard stream: bytes pass as they are.
void make_binary(std::FILE* stream);

// Tells on standard error what went wrong, and what is worth knowing though it went well.
void complain(const std::string& message);
void warn(const std::string& message);
