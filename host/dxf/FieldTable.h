#pragma once
// A class's DXF fields declared once, as a table of (group code, kind, default,
// accessors) per subclass marker, which drives both reading and writing. Tags of the
// class that no field takes are kept, anchored after the field they followed.
#include <functional>
#include <string>
#include <vector>

#include "host/dxf/DxfModel.h"

namespace dxf {

enum class FieldKind { Real, Angle, Int, Text, Point2, Point3, Ref };

struct FieldValue {
    double real = 0;  // Real; Angle in radians (degrees in the file)
    std::int64_t integer = 0;
    std::wstring text;
    AcGePoint3d point;
    AcDbObjectId id;
};

struct Field {
    int code = 0;
    FieldKind kind = FieldKind::Int;
    bool hasDefault = false;
    FieldValue fallback;  // written only when the value differs (or the file had it)
    std::function<void(const AcDbObject&, FieldValue&, const WriteContext&)> get;
    // False when the object refuses the value; the tag is then kept as it was.
    std::function<bool(AcDbObject&, const FieldValue&)> set;
    // For fields whose file form is not one tag (long text in chunks).
    std::function<void(const FieldValue&, WriteContext&)> writeOverride;
};

struct Subclass {
    std::string marker;
    std::vector<Field> fields;
};

class FieldTable {
  public:
    FieldTable(std::vector<Subclass> subclasses);

    // Reads the tags from begin to end into the object. Fields found are marked in
    // record.present; other tags go to record.extras.
    void read(AcDbObject& obj, const TagView* begin, const TagView* end, ReadContext& ctx,
              ObjectRecord& record) const;
    // Writes every subclass with its fields and the kept tags between them.
    void write(const AcDbObject& obj, WriteContext& ctx, const ObjectRecord* record) const;
    // The fields a writer would write for this object without a record of the file.
    std::uint64_t defaultPresence(const AcDbObject& obj, const WriteContext& ctx) const;

    // Anchors: after subclass s's marker, and after its field f; the tail follows all.
    static int anchorOf(std::size_t subclass, int field) {
        return static_cast<int>(subclass) * 64 + field + 1;
    }
    static constexpr int kTail = 1 << 20;
    // Anchors from here on are free for a codec's own part after the table's.
    static constexpr int kOwn = 1 << 21;
    std::size_t size() const { return subclasses_.size(); }

  private:
    static bool same(FieldKind kind, const FieldValue& a, const FieldValue& b);
    bool isDefault(const Field& f, const FieldValue& v) const {
        return same(f.kind, v, f.fallback);
    }
    void writeField(const Field& f, const FieldValue& v, WriteContext& ctx,
                    const ObjectRecord* record) const;

    std::vector<Subclass> subclasses_;
    std::vector<std::size_t> firstBit_;
};

// Helpers that make fields from getters and setters of the host classes.
inline Field intField(int code, bool hasDefault, std::int64_t fallback,
                      std::function<std::int64_t(const AcDbObject&, const WriteContext&)> get,
                      std::function<bool(AcDbObject&, std::int64_t)> set) {
    Field f;
    f.code = code;
    f.kind = FieldKind::Int;
    f.hasDefault = hasDefault;
    f.fallback.integer = fallback;
    f.get = [get](const AcDbObject& o, FieldValue& v, const WriteContext& ctx) {
        v.integer = get(o, ctx);
    };
    f.set = [set](AcDbObject& o, const FieldValue& v) { return set(o, v.integer); };
    return f;
}

inline Field textField(int code, bool hasDefault, std::wstring fallback,
                       std::function<std::wstring(const AcDbObject&)> get,
                       std::function<bool(AcDbObject&, const std::wstring&)> set) {
    Field f;
    f.code = code;
    f.kind = FieldKind::Text;
    f.hasDefault = hasDefault;
    f.fallback.text = std::move(fallback);
    f.get = [get](const AcDbObject& o, FieldValue& v, const WriteContext&) { v.text = get(o); };
    f.set = [set](AcDbObject& o, const FieldValue& v) { return set(o, v.text); };
    return f;
}

template <typename T>
Field realField(int code, double (T::*get)() const, Acad::ErrorStatus (T::*set)(double),
                bool hasDefault = false, double fallback = 0) {
    Field f;
    f.code = code;
    f.kind = FieldKind::Real;
    f.hasDefault = hasDefault;
    f.fallback.real = fallback;
    f.get = [get](const AcDbObject& o, FieldValue& v, const WriteContext&) {
        v.real = (static_cast<const T&>(o).*get)();
    };
    f.set = [set](AcDbObject& o, const FieldValue& v) {
        return (static_cast<T&>(o).*set)(v.real) == Acad::eOk;
    };
    return f;
}

template <typename T>
Field angleField(int code, double (T::*get)() const, Acad::ErrorStatus (T::*set)(double),
                 bool hasDefault = false) {
    Field f = realField<T>(code, get, set, hasDefault, 0);
    f.kind = FieldKind::Angle;
    return f;
}

template <typename T>
Field pointField(int code, AcGePoint3d (T::*get)() const,
                 Acad::ErrorStatus (T::*set)(const AcGePoint3d&), bool hasDefault = false) {
    Field f;
    f.code = code;
    f.kind = FieldKind::Point3;
    f.hasDefault = hasDefault;
    f.get = [get](const AcDbObject& o, FieldValue& v, const WriteContext&) {
        v.point = (static_cast<const T&>(o).*get)();
    };
    f.set = [set](AcDbObject& o, const FieldValue& v) {
        return (static_cast<T&>(o).*set)(v.point) == Acad::eOk;
    };
    return f;
}

template <typename T>
Field normalField(int code, AcGeVector3d (T::*get)() const,
                  Acad::ErrorStatus (T::*set)(const AcGeVector3d&)) {
    Field f;
    f.code = code;
    f.kind = FieldKind::Point3;
    f.hasDefault = true;
    f.fallback.point = AcGePoint3d(0, 0, 1);
    f.get = [get](const AcDbObject& o, FieldValue& v, const WriteContext&) {
        AcGeVector3d n = (static_cast<const T&>(o).*get)();
        v.point = AcGePoint3d(n.x, n.y, n.z);
    };
    f.set = [set](AcDbObject& o, const FieldValue& v) {
        return (static_cast<T&>(o).*set)(AcGeVector3d(v.point.x, v.point.y, v.point.z)) ==
               Acad::eOk;
    };
    return f;
}

// The AcDbEntity subclass every entity begins with.
Subclass entitySubclass();

// Angles are degrees in files and radians in memory; radToDeg gives back the degrees
// as they were written.
double degToRad(double degrees);
double radToDeg(double radians);

}  // namespace dxf
