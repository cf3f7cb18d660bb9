#pragma once
// A parcel's record shown in an attribute block reference (the "地块指标图则" block a
// sibling module places beside each parcel): each attribute whose tag names a field of
// the parcel record, by key ("FS_DKBH") or by Chinese label ("地块编号"), shows the
// parcel's value of that field. Other attributes are never touched. Nothing is reported
// to the user; every object opened is closed again on every path.
#include "host/arx/dbmain.h"
#include "kplan/Export.h"

// Writes the parcel's values into the reference's attributes whose field the record
// holds (read as CDKBJXDInfo::GetData reads it: any record generation, empty values
// included); attributes whose field the record lacks keep the value they have (the
// definition's default, say). Returns the number of attributes written, 0 when no tag
// names a field the record holds (a reference without attributes, for one); -1 when
// parcelId is not a live parcel (invalid, erased, or a curve without a parcel record) or
// blockRefId is not a live block reference, or an attribute cannot be written
// (those before it keep their new values).
KPLAN_API int FCopyDKToAttblk(AcDbObjectId parcelId, AcDbObjectId blockRefId);

// Brings a reference filled earlier in line with the parcel's record as it is now: an
// attribute whose field the record holds gets its value, and one tagged with a field of
// the parcel form (dk::BASIC_FIELDS or a key or label of dk::LABEL_KEYS) that the record no
// longer holds is emptied, so the block never shows a value the record has lost. Only
// attributes whose value differs are opened for write. Returns the number of attributes
// changed (0 when the reference was in sync); -1 as FCopyDKToAttblk.
KPLAN_API int FUpdateDataOfAttrBlockRef(AcDbObjectId blockRefId, AcDbObjectId parcelId);
