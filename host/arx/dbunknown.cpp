#include "host/arx/dbunknown.h"

ACRX_DEFINE_MEMBERS(AcDbUnknownEntity, AcDbEntity, L"")
ACRX_DEFINE_MEMBERS(AcDbUnknownObject, AcDbObject, L"")
