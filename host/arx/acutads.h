#pragma once
// Result-buffer lists and strings of the host's utility interface. Every list made
// here is counted until acutRelRb releases it.
#include <cstdarg>

#include "host/arx/adscodes.h"
#include "host/arx/adsdef.h"
#include "host/db/Value.h"
#include "kplan/Export.h"

KPLAN_API resbuf* acutNewRb(int type);
KPLAN_API int acutRelRb(resbuf* list);
// Builds a list from (type, value) pairs ended by 0 (RTNONE ends it too). Strings are
// const ACHAR*, reals double, points const double*, shorts and longs int, entity
// names ads_name; RTLB, RTLE, RTDOTE, RTNIL, RTT and -3 take no value.
KPLAN_API resbuf* acutBuildList(int type, ...);
// The same from a list of arguments already started, for the host's other functions that
// take (type, value) pairs; the caller ends args.
KPLAN_API resbuf* acutBuildListV(int type, va_list args);
KPLAN_API resbuf* acutNewRbList(int count);  // count RTNONE buffers chained
KPLAN_API ACHAR* acutNewString(const ACHAR* text);
KPLAN_API void acutDelString(ACHAR*& text);
KPLAN_API int acutUpdString(const ACHAR* text, ACHAR*& target);
// Copies of lists, counted like any other.
KPLAN_API resbuf* acutDuplicateRb(const resbuf* list);

// The angle of the line from pt1 to pt2 in the XY plane, counter-clockwise from the x
// axis, in radians in [0, 2*pi).
KPLAN_API ads_real acutAngle(const ads_point pt1, const ads_point pt2);
// The point at the angle (radians) and distance from pt in the XY plane; z is pt's.
KPLAN_API void acutPolar(const ads_point pt, ads_real angle, ads_real dist, ads_point result);
// The distance between two points in space.
KPLAN_API ads_real acutDistance(const ads_point pt1, const ads_point pt2);

KPLAN_API int acutPrintf(const ACHAR* format, ...);
// The host's wcmatch (see host/db/WildcardMatch.h), case-sensitive: RTNORM on a match,
// RTERROR otherwise.
KPLAN_API int acutWcMatch(const ACHAR* string, const ACHAR* pattern);

// What kind of value a result-buffer type carries (an RT code or a group code).
KPLAN_API db::ValueKind acutValueKindOfType(int type);

// Between the stored form of tagged values and result-buffer lists.
KPLAN_API resbuf* acutValuesToRb(const db::ValueList& values);
// False, with values untouched, when an item has a type that carries no value.
KPLAN_API bool acutRbToValues(const resbuf* list, db::ValueList& values);
