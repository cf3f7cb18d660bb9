#pragma once
// The layer of a parcel boundary or hatch, derived from its land-use class code.
//
// Sources, first answer wins:
//  1. the names the drawing remembered (KovaDB layer-name dictionary) under the layer key,
//     then, for a compound class (R2/B1), under the key of its first code with that code
//     replaced by the full one;
//  2. the layer the current class table gives the class (its first code for a compound
//     class without a line of its own);
//  3. the configured prefix + class + suffix (the planned affixes of the current table
//     for underground parcels);
//  4. the layer standard, which knows the blank-land layers and the layers "现状水域" and
//     "现状公共绿地" shared by current water (E1) and green (G1, G2) parcels, else the
//     built-in default name ("R21规划用地边界").
// A remembered name loses its "/" and is upper-cased. A name from 2 to 4 has "\" and "/"
// removed, is upper-cased and is remembered in the drawing, under the layer key with "/"
// removed. Blank land ("KB") skips 1 to 3 and is
// not remembered. Layer keys: "FL_YS_" boundary or "FL_FZ_" hatch, "YDGH_" planned or
// "YDXZ_" current, the class code, and "_DX" for underground space.
//
// A class table that exists names a layer for every class (its fixed layer, the class
// line's own, or prefix + code + suffix, the bare code without affixes), so 3 and 4 speak
// only when the current table is missing, or, below ground, its underground variant.
//
// Each function returns 1 with the name in layerName, or 0 with layerName untouched for
// an empty class code (or a name that was nothing but "\" and "/"). Class codes are
// trimmed first.
#include "host/kova/KovaDB.h"
#include "host/mfc/CString.h"
#include "kplan/Export.h"

// Parcel boundary, planned (non-zero) or current.
KPLAN_API int FGetDKLayer(CString classCode, CString& layerName, int planned);
// Parcel hatch, planned (non-zero) or current.
KPLAN_API int FGetDKTCLayer(CString classCode, CString& layerName, int planned);
// Underground-space parcel boundary (always planned; names from the underground table).
KPLAN_API int FGetDXKJLayer(CString classCode, CString& layerName);
// Underground-space parcel hatch. Blank land is a class like any other here.
KPLAN_API int FGetDXKJTCLayer(CString classCode, CString& layerName);

enum class ParcelLayerKind { Boundary, Hatch, UndergroundBoundary, UndergroundHatch };

// The record the functions above hand to the layer standard for a class, preset with
// what a new layer should be: the default name and description ("!" before the
// description of underground layers, which marks them for the layer manager), the
// parcel record's application (boundaries only), the group "YD用地图层_" + class
// ("YD用地图层地块_" underground), 4 and "U". Returns the key it is looked up under:
// the layer key, or "现状水域" / "现状公共绿地" for current E1 / G1, G2 parcels. The
// class code is taken as given (trimmed).
KPLAN_API CString FPresetParcelLayerParam(ParcelLayerKind kind, const CString& classCode,
                                          int planned, KovaDB::LAYERPARAM2013EX& param);
