#pragma once
// Colours between the forms of dialogs and of the drawing. A colour reference is
// 0x00BBGGRR (red in the lowest byte), as colour pickers hand it out; a colour index is
// the host's palette index. (The palette colour of an index as a reference is
// FIndexToColorRef, beside the record helpers.)
#include "host/arx/dbcolor.h"
#include "kplan/Export.h"

// The reference's red, green and blue as the colour's true colour, exactly.
KPLAN_API void RGBToCmColor(unsigned long colorRef, AcCmColor& color);

// The palette index (1..255) nearest to the reference's colour.
KPLAN_API int FColorToIndex(unsigned long colorRef);

// The palette colour nearest to the reference, as a true colour: never the exact input
// unless it is a palette colour. The snapping is deliberate, so that a colour picked in a
// dialog prints like the indexed colours beside it.
KPLAN_API AcCmColor FColorToCmColor(unsigned long colorRef);
