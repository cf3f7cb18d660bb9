#pragma once
// Fills behind the linework: the host's DRAWORDER command over every hatch (and solid) of
// the current space. Both rely on the caller's context (a command or a document lock).

#include "kplan/Export.h"

// Sends every hatch and 2D solid of the current space to the back, running "draworder"
// with the selection, an empty answer, "B" and one more empty answer. Nothing happens
// when the space has none.
KPLAN_API void FSolidHatchDown();

// Sends every hatch of the current space to the front when top is exactly 1, to the back
// for any other value: "draworder" with the selection, an empty answer and "F" or "B".
KPLAN_API void FSetHatchBottomOrTop(int top);
