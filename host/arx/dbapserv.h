#pragma once
// The host application's services: which drawing commands work on.
#include "host/arx/dbmain.h"

class AcDbHostApplicationServices {
  public:
    // The current document's drawing, unless a caller set another one.
    AcDbDatabase* workingDatabase() const;
    void setWorkingDatabase(AcDbDatabase* database) { working_ = database; }

  private:
    AcDbDatabase* working_ = nullptr;
};

AcDbHostApplicationServices* acdbHostApplicationServices();
inline AcDbDatabase* acdbCurDwg() {
    return acdbHostApplicationServices()->workingDatabase();
}
