#pragma once
// The host application's services: which drawing commands work on.
#include <atomic>

#include "host/arx/dbmain.h"
#include "kplan/Export.h"

class KPLAN_API AcDbHostApplicationServices {
  public:
    // The current document's drawing, unless a caller set another one.
    AcDbDatabase* workingDatabase() const;
    void setWorkingDatabase(AcDbDatabase* database) { working_ = database; }
    // True when a caller set database as the working one.
    bool settingOf(const AcDbDatabase* database) const;

  private:
    std::atomic<AcDbDatabase*> working_{nullptr};
};

KPLAN_API AcDbHostApplicationServices* acdbHostApplicationServices();
inline AcDbDatabase* acdbCurDwg() {
    return acdbHostApplicationServices()->workingDatabase();
}
