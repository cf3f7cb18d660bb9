#pragma once
// The debug trace: a line appended to the platform's debug file, only when that file
// exists already. Creating the file is how a developer switches the trace on; deleting it
// switches it off. The file is "c:\dbg.txt" on Windows, as inside the CAD; elsewhere the
// file named by the environment variable KPLAN_DBG_FILE, else "/tmp/dbg.txt". The text is
// written in UTF-8.
#include "host/mfc/CString.h"
#include "kplan/Export.h"

// Appends "\n", the text and "\n"; nothing happens, and nothing is reported, when the
// file does not exist or cannot be written.
KPLAN_API void dbgOutput(const CString& text);
