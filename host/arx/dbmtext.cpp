#include "host/arx/dbmtext.h"

#include <algorithm>
#include <cmath>

#include "host/arx/acutads.h"

ACRX_DEFINE_MEMBERS(AcDbMText, AcDbEntity, L"MTEXT")

#define KPLAN_WRITE_GUARD \
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite

Acad::ErrorStatus AcDbMText::setLocation(const AcGePoint3d& location) {
    KPLAN_WRITE_GUARD;
    location_ = location;
    return Acad::eOk;
}

ACHAR* AcDbMText::contents() const {
    return acutNewString(contents_.c_str());
}

Acad::ErrorStatus AcDbMText::setContents(const ACHAR* text) {
    KPLAN_WRITE_GUARD;
    contents_ = text ? text : L"";
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setTextHeight(double height) {
    KPLAN_WRITE_GUARD;
    if (!(height > 0)) return Acad::eInvalidInput;
    height_ = height;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setWidth(double width) {
    KPLAN_WRITE_GUARD;
    if (width < 0) return Acad::eInvalidInput;
    width_ = width;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setRotation(double rotation) {
    KPLAN_WRITE_GUARD;
    rotation_ = rotation;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setAttachment(AttachmentPoint attachment) {
    KPLAN_WRITE_GUARD;
    attachment_ = attachment;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setTextStyle(AcDbObjectId style) {
    KPLAN_WRITE_GUARD;
    style_ = style;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::getGeomExtents(AcDbExtents& extents) const {
    // Without font metrics: one line per "\P", a character as wide as it is high.
    std::size_t lines = 1, longest = 0, current = 0;
    for (std::size_t i = 0; i < contents_.size(); ++i) {
        if (contents_.compare(i, 2, L"\\P") == 0) {
            ++lines;
            longest = std::max(longest, current);
            current = 0;
            ++i;
        } else {
            ++current;
        }
    }
    longest = std::max(longest, current);
    double w = width_ > 0 ? width_ : height_ * static_cast<double>(longest);
    double h = height_ * 1.667 * static_cast<double>(lines);
    int column = (static_cast<int>(attachment_) - 1) % 3;  // 0 left, 1 centre, 2 right
    int row = (static_cast<int>(attachment_) - 1) / 3;     // 0 top, 1 middle, 2 bottom
    double left = -w * column / 2.0, top = h * row / 2.0;
    AcGeVector3d along(std::cos(rotation_), std::sin(rotation_), 0);
    AcGeVector3d up(-std::sin(rotation_), std::cos(rotation_), 0);
    extents = AcDbExtents();
    for (double dx : {left, left + w}) {
        for (double dy : {top, top - h})
            extents.addPoint(location_ + along * dx + up * dy);
    }
    return Acad::eOk;
}
