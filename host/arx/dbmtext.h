#pragma once
// Multi-line text.
#include <string>

#include "host/arx/dbmain.h"
#include "kplan/Export.h"

class KPLAN_API AcDbMText : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbMText)
    enum AttachmentPoint {
        kTopLeft = 1,
        kTopCenter,
        kTopRight,
        kMiddleLeft,
        kMiddleCenter,
        kMiddleRight,
        kBottomLeft,
        kBottomCenter,
        kBottomRight
    };

    AcGePoint3d location() const { return location_; }
    Acad::ErrorStatus setLocation(const AcGePoint3d& location);
    // A copy the caller frees with acutDelString.
    ACHAR* contents() const;
    const std::wstring& contentsText() const { return contents_; }
    Acad::ErrorStatus setContents(const ACHAR* text);
    double textHeight() const { return height_; }
    Acad::ErrorStatus setTextHeight(double height);
    double width() const { return width_; }
    Acad::ErrorStatus setWidth(double width);
    double rotation() const { return rotation_; }
    Acad::ErrorStatus setRotation(double rotation);
    AttachmentPoint attachment() const { return attachment_; }
    Acad::ErrorStatus setAttachment(AttachmentPoint attachment);
    AcDbObjectId textStyle() const { return style_; }
    Acad::ErrorStatus setTextStyle(AcDbObjectId style);
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;

  private:
    AcGePoint3d location_;
    std::wstring contents_;
    AcDbObjectId style_;
    double height_ = 2.5, width_ = 0, rotation_ = 0;
    AttachmentPoint attachment_ = kTopLeft;
};
