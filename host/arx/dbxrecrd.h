#pragma once
// An xrecord: a list of tagged values kept in a dictionary.
#include "host/arx/dbmain.h"
#include "kplan/Export.h"

class KPLAN_API AcDbXrecord : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbXrecord)

    // The data as a new list that the caller releases with acutRelRb; object
    // references come back as entity names.
    Acad::ErrorStatus rbChain(resbuf** list, AcDbDatabase* auxDb = nullptr) const;
    Acad::ErrorStatus setFromRbChain(const resbuf& list, AcDbDatabase* auxDb = nullptr);
    const db::ValueList& values() const { return values_; }
    void restoreValues(db::ValueList values) { values_ = std::move(values); }

  private:
    db::ValueList values_;
};
