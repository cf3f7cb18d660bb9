#pragma once
// Entities and objects of classes the host does not model. They keep the tags a file
// gave them, after the part every entity or object shares, so that a drawing written
// back carries them unchanged.
#include <string>
#include <vector>

#include "host/arx/dbmain.h"
#include "kplan/Export.h"

// One tag as read: its group code and its text (UTF-8, as every string in memory).
struct KPLAN_API AcDbRawTag {
    int code = 0;
    std::string value;
    bool operator==(const AcDbRawTag&) const = default;
};
using AcDbRawTags = std::vector<AcDbRawTag>;

class KPLAN_API AcDbUnknownEntity : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbUnknownEntity)
    AcDbUnknownEntity() = default;
    AcDbUnknownEntity(std::string dxfName, AcDbRawTags tags)
        : dxfName_(std::move(dxfName)), tags_(std::move(tags)) {}

    // The class name of the file ("SPLINE", "ACAD_PROXY_ENTITY", ...).
    const std::string& dxfName() const { return dxfName_; }
    const AcDbRawTags& tags() const { return tags_; }

  private:
    std::string dxfName_;
    AcDbRawTags tags_;
};

class KPLAN_API AcDbUnknownObject : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbUnknownObject)
    AcDbUnknownObject() = default;
    AcDbUnknownObject(std::string dxfName, AcDbRawTags tags)
        : dxfName_(std::move(dxfName)), tags_(std::move(tags)) {}

    const std::string& dxfName() const { return dxfName_; }
    const AcDbRawTags& tags() const { return tags_; }

  private:
    std::string dxfName_;
    AcDbRawTags tags_;
};
