#pragma once
// Layers of the working drawing: whether one exists, making one, and its colour.
// Nothing is printed; results alone tell what happened.
#include "host/arx/dbcolor.h"
#include "host/mfc/CString.h"
#include "kplan/Export.h"

// True when the working drawing's layer table holds the name (without regard to ASCII
// case, as the host compares layer names); false when not or when there is no drawing.
KPLAN_API bool FIsLayerExist(const CString& name);

// Makes sure the layer exists: true when it did already (it is left as it is) or was
// added; false when the name is not a valid layer name or there is no drawing. A new
// layer gets the colour index clamped into 0 (by block) .. 256 (by layer), and always the
// continuous linetype: the linetype name is accepted and deliberately not used.
KPLAN_API bool FMakeLayer(const CString& name, int colorIndex, const CString& linetype);
// The same with a full colour, set as given.
KPLAN_API bool FMakeLayer(const CString& name, const AcCmColor& color, const CString& linetype);

// Sets the layer's colour. Unlike the other functions, 0 means success: 1 when there is
// no such layer, 2 when its record cannot be opened for write (it is open elsewhere).
KPLAN_API int FChangeLayerColor(const wchar_t* name, const AcCmColor& color);

// 1 with the layer's colour; 0 with color untouched when the layer is missing or its
// record cannot be opened.
KPLAN_API int FGetLayerColor(const CString& name, AcCmColor& color);
