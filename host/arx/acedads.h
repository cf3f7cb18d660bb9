#pragma once
// The host's command-line interface: user input with prompts and keywords, entity
// picks, selection sets with filter lists, and system variables.
//
// On the portable host prompts and messages go to db::commandLine()'s transcript and
// answers come from its input source; a source with nothing more to give answers Esc.
// PICKBOX, the half side of the square pick box, is in drawing units here (pixels in
// the CAD host): a pick finds the topmost visible entity of the current space whose
// outline passes through that square.
#include <cstddef>

#include "host/arx/adesk.h"
#include "host/arx/adscodes.h"
#include "host/arx/adsdef.h"
#include "kplan/Export.h"

KPLAN_API int acedPrompt(const ACHAR* text);

// Control bits and keywords for the next input call only. Keywords are separated by
// blanks; capital letters mark the abbreviation ("eXit" takes X, EX, EXI, EXIT), as does
// a comma ("LTYPE,LT"); a unique prefix is taken as well. Local names may be followed by
// their global names after an underscore ("Yes No _Y N"); the global name is returned.
KPLAN_API int acedInitGet(int flags, const ACHAR* keywords);

// RTNORM with the keyword, RTNONE on Enter, RTCAN on Esc; a result that does not fit
// is cut and RTINPUTTRUNCATED returned. Invalid answers are asked again.
KPLAN_API int acedGetKword(const ACHAR* prompt, ACHAR* result, std::size_t bufsize);
KPLAN_API int acedGetKword(const ACHAR* prompt, ACHAR* result);  // result holds 132 characters
// The keyword (or, with RSG_OTHER, the text) of the last input call that returned
// RTKWORD.
KPLAN_API int acedGetInput(ACHAR* result, std::size_t bufsize);
KPLAN_API int acedGetInput(ACHAR* result);  // result holds 132 characters

// Numbers and points: RTNORM, RTNONE on Enter, RTCAN on Esc, RTKWORD for a keyword set
// by acedInitGet (read it with acedGetInput). Points are typed "x,y[,z]", relative to
// the base point "@dx,dy[,dz]", polar "[@]distance<degrees", or picked.
KPLAN_API int acedGetReal(const ACHAR* prompt, ads_real* result);
KPLAN_API int acedGetInt(const ACHAR* prompt, int* result);
KPLAN_API int acedGetDist(const ads_point base, const ACHAR* prompt, ads_real* result);
KPLAN_API int acedGetPoint(const ads_point base, const ACHAR* prompt, ads_point result);
// Any text; with cronly 0 the text ends at its first blank. Enter gives "" and RTNORM.
KPLAN_API int acedGetString(int cronly, const ACHAR* prompt, ACHAR* result, std::size_t bufsize);
KPLAN_API int acedGetString(int cronly, const ACHAR* prompt, ACHAR* result);  // holds 132

// Lets the user pick one entity. RTNORM with its name and the picked point; RTERROR
// when the pick hits nothing (ERRNO 7) or on Enter (ERRNO 52); RTCAN on Esc; RTKWORD
// for a keyword set by acedInitGet.
KPLAN_API int acedEntSel(const ACHAR* prompt, ads_name entity, ads_point pickedPoint);

// System variables, names in any case: OSMODE, CMDECHO, PICKBOX, ERRNO, HIGHLIGHT,
// LASTPOINT, and of the working drawing CLAYER, CECOLOR, TILEMODE, CVPORT (read only)
// and DWGNAME (read only). A string result is a copy the caller frees with
// acutDelString. RTERROR for an unknown name; acedSetVar gives RTREJ for a read-only
// variable or a value of the wrong type or out of range.
KPLAN_API int acedGetVar(const ACHAR* name, resbuf* result);
KPLAN_API int acedSetVar(const ACHAR* name, const resbuf* value);

// Selection sets. Modes: null (the user selects; ":$" with pt1 an array of two prompts,
// ":S" for one pick), "X" (every entity of every layout), "CP"/"WP" (crossing / window
// polygon, pt1 a list of RTPOINT or RT3DPOINT vertices), "C"/"W" (crossing / window
// rectangle, pt1 and pt2 its corners), "L" (the last entity of the current space),
// "A" (everything of the current space not on a frozen layer). Graphical modes look at
// the current space and at visible entities only. An empty result is RTERROR and
// allocates no set; every set made must be freed with acedSSFree.
// Filter items are ANDed: 0 type, 8 layer, 6 linetype, 1 text (wildcards, case
// ignored), 62 colour, 67 space, 70 flags, 38 elevation, 39 thickness, 40 radius or
// height, 43 constant width, 90 vertex count; -3 then 1001 names (the entity has xdata
// of each named application; a name may be a comma list with wildcards); -4 brackets
// "<AND" "AND>" "<OR" "OR>" "<XOR" "XOR>" "<NOT" "NOT>", and -4 relational operators
// "=" "!=" "/=" "<>" "<" "<=" ">" ">=" "*" "&" "&=" before a numeric item. A malformed
// filter is RTERROR.
KPLAN_API int acedSSGet(const ACHAR* mode, const void* pt1, const void* pt2, const resbuf* filter,
                        ads_name ss);
KPLAN_API int acedSSFree(const ads_name ss);
KPLAN_API int acedSSLength(const ads_name ss, Adesk::Int32* length);
KPLAN_API int acedSSName(const ads_name ss, Adesk::Int32 index, ads_name entity);
// Null entity and set: a new empty set; entity only: a new set holding it; both: the
// entity added to the set, which is also the result.
KPLAN_API int acedSSAdd(const ads_name entity, const ads_name ss, ads_name result);
KPLAN_API int acedSSDel(const ads_name entity, const ads_name ss);
KPLAN_API int acedSSMemb(const ads_name entity, const ads_name ss);

namespace arx {
// Puts the system variables that belong to the application (not to a drawing) back to
// their initial values; for tests and for the start of a command-line run.
KPLAN_API void resetSystemVariables();
}  // namespace arx

// Runs a command of the host from (type, value) pairs ended by 0 or RTNONE, as
// acutBuildList takes them; acedCmd takes the list already built. The portable host
// knows ZOOM ("W" with two corner points, "E" for the extents of the current space),
// written with or without the "_" and "." prefixes, and answers RTNORM; an unknown
// command or option is refused with a message and RTERROR.
KPLAN_API int acedCommand(int type, ...);
KPLAN_API int acedCmd(const resbuf* list);
