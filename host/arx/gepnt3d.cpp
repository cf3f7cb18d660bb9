#include "host/arx/gepnt3d.h"

AcGeTol AcGeContext::gTol;
const AcGePoint2d AcGePoint2d::kOrigin{0, 0};
const AcGePoint3d AcGePoint3d::kOrigin{0, 0, 0};
const AcGeVector3d AcGeVector3d::kXAxis{1, 0, 0};
const AcGeVector3d AcGeVector3d::kYAxis{0, 1, 0};
const AcGeVector3d AcGeVector3d::kZAxis{0, 0, 1};
const AcGeVector3d AcGeVector3d::kIdentity{0, 0, 0};
