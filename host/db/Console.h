#pragma once
// What the program asks of the terminal it runs in.
#include <cstdio>
#include <string>
#include <vector>

namespace db {

// True when the stream is a terminal (a console on Windows), not a file or a pipe.
bool isTerminal(std::FILE* stream);

// The width of the terminal the stream writes to in columns; 0 when it does not say.
int terminalColumns(std::FILE* stream);

// The program's arguments in UTF-8, as every name of the program is. On Linux they are
// argv; on Windows argv is in the ANSI code page, so they are taken from the wide command
// line the system keeps.
std::vector<std::string> utf8Arguments(int argc, char** argv);

// Text written to a console is shown as UTF-8 (on Windows the console's code page is set
// for the process; elsewhere nothing needs doing).
void useUtf8Console();

}  // namespace db
