#pragma once
#include <functional>
// Database objects and entities, the drawing database, and opening and closing.
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "host/arx/acadstrc.h"
#include "host/arx/adsdef.h"
#include "host/arx/dbcolor.h"
#include "host/arx/dbid.h"
#include "host/arx/geplane.h"
#include "host/arx/gepnt3d.h"
#include "host/arx/rxobject.h"
#include "host/db/Value.h"
#include "kplan/Export.h"

namespace AcDb {
enum OpenMode { kForRead = 0, kForWrite = 1, kForNotify = 2 };
enum Visibility { kVisible = 0, kInvisible = 1 };
enum Poly2dType { k2dSimplePoly = 0, k2dFitCurvePoly, k2dQuadSplinePoly, k2dCubicSplinePoly };
enum Vertex2dType { k2dVertex = 0, k2dSplineCtlVertex, k2dSplineFitVertex, k2dCurveFitVertex };
enum DuplicateRecordCloning { kDrcNotApplicable = 0, kDrcIgnore, kDrcReplace };
}  // namespace AcDb

class AcDbDatabase;
class AcDbDictionary;
class AcDbBlockTable;
class AcDbLayerTable;
class AcDbRegAppTable;
class AcDbLinetypeTable;
class AcDbSymbolTable;

class KPLAN_API AcDbExtents {
  public:
    AcDbExtents() = default;
    AcDbExtents(const AcGePoint3d& min, const AcGePoint3d& max)
        : min_(min), max_(max), set_(true) {}
    const AcGePoint3d& minPoint() const { return min_; }
    const AcGePoint3d& maxPoint() const { return max_; }
    bool isEmpty() const { return !set_; }
    void addPoint(const AcGePoint3d& p);
    void addExt(const AcDbExtents& other);
    Acad::ErrorStatus set(const AcGePoint3d& min, const AcGePoint3d& max);

  private:
    AcGePoint3d min_, max_;
    bool set_ = false;
};

class KPLAN_API AcDbObject : public AcRxObject {
  public:
    ACRX_DECLARE_ABSTRACT_MEMBERS(AcDbObject)
    AcDbObject() = default;
    // A copy is a new, non-resident object with the same data and xdata.
    AcDbObject(const AcDbObject& other);
    AcDbObject& operator=(const AcDbObject&) = delete;
    ~AcDbObject() override;

    AcDbObjectId objectId() const { return AcDbObjectId(stub_); }
    AcDbObjectId ownerId() const { return owner_; }
    Acad::ErrorStatus setOwnerId(AcDbObjectId owner);
    AcDbDatabase* database() const;
    void getAcDbHandle(AcDbHandle& handle) const;
    AcDbHandle handle() const;

    // Ends this open of the object. A write open that ends tells the object's
    // persistent reactors that it was modified.
    Acad::ErrorStatus close();
    Acad::ErrorStatus upgradeOpen();
    Acad::ErrorStatus downgradeOpen();
    bool isReadEnabled() const;
    bool isWriteEnabled() const;
    bool isNotifyEnabled() const;
    bool isErased() const;
    bool isNewObject() const { return stub_ == nullptr; }
    bool isDatabaseResident() const { return stub_ != nullptr; }
    Acad::ErrorStatus erase(bool erasing = true);
    Acad::ErrorStatus assertReadEnabled() const;
    Acad::ErrorStatus assertWriteEnabled() const;

    // Xdata of one application, or of all when appName is null; the caller releases
    // the list with acutRelRb. Null when there is none.
    resbuf* xData(const ACHAR* appName = nullptr) const;
    // Replaces the data of every application the list names; an application with
    // nothing after its 1001 loses its data. Names must be registered (APPID table).
    Acad::ErrorStatus setXData(const resbuf* xdata);
    // The xdata as stored: every application block starting with its 1001 item.
    const db::ValueList& xdataValues() const { return unpackedXdata(); }
    // The same for a reader that needs it only for a moment: xdata still in the loader's
    // compact form is decoded into scratch and stays compact, so that reading every
    // record of a large drawing does not multiply its memory.
    const db::ValueList& xdataValues(db::ValueList& scratch) const {
        if (packedXdata_.empty()) return xdata_;
        unpack_(packedXdata_, scratch);
        return scratch;
    }
    // The same with scratch lists of the host's own, one per depth of nesting.
    void withXdata(const std::function<void(const db::ValueList&)>& use) const;
    // The applications the xdata names (its 1001 items) in stored order, each shown to
    // use until it returns false; xdata still in the loader's compact form is decoded no
    // further than the names.
    void forEachXdataApp(const std::function<bool(const std::wstring& app)>& use) const;
    bool hasXdata() const { return !packedXdata_.empty() || !xdata_.empty(); }
    // For loaders that bring xdata in unchecked (the application table may come later).
    void restoreXdataValues(db::ValueList values) {
        xdata_ = std::move(values);
        packedXdata_.clear();
    }
    // For loaders: xdata kept in the loader's compact form until it is first used, when
    // unpack turns it into values. A drawing of many records costs far less memory so.
    using XdataUnpacker = void (*)(const std::string& packed, db::ValueList& values);
    void restorePackedXdata(std::string packed, XdataUnpacker unpack);
    // The packed form while nothing has used it (a writer may copy it as it is), else null.
    const std::string* packedXdata() const {
        return packedXdata_.empty() ? nullptr : &packedXdata_;
    }

    AcDbObjectId extensionDictionary() const { return extDict_; }
    Acad::ErrorStatus createExtensionDictionary();
    Acad::ErrorStatus releaseExtensionDictionary();
    void setExtensionDictionaryId(AcDbObjectId id) { extDict_ = id; }

    void addPersistentReactor(AcDbObjectId reactor);
    Acad::ErrorStatus removePersistentReactor(AcDbObjectId reactor);
    const std::vector<AcDbObjectId>& persistentReactorIds() const { return reactors_; }
    bool hasPersistentReactor(AcDbObjectId reactor) const;

    // Called on a persistent reactor, open for notify, when an object it watches is
    // closed after a write.
    virtual void modified(const AcDbObject* dbObj);

    // The stub this object lives in; set by the database when the object is added.
    db::Stub* stub() const { return stub_; }
    void attachStub(db::Stub* stub) { stub_ = stub; }

  protected:
    friend class AcDbDatabase;
    // Called once the object is in a database, for objects that bring sub-objects
    // of their own (the vertices of a 2D polyline).
    virtual void subAddedToDatabase() {}

  private:
    db::Stub* stub_ = nullptr;
    AcDbObjectId owner_;
    AcDbObjectId extDict_;
    std::vector<AcDbObjectId> reactors_;
    const db::ValueList& unpackedXdata() const;
    mutable db::ValueList xdata_;
    mutable std::string packedXdata_;
    mutable XdataUnpacker unpack_ = nullptr;
    // Tells one packed form from every other in the process, so that a reader's scratch
    // decoded from it can be used again by the next reader of the same object.
    std::uint64_t packedSerial_ = 0;
};

class KPLAN_API AcDbEntity : public AcDbObject {
  public:
    ACRX_DECLARE_ABSTRACT_MEMBERS(AcDbEntity)
    AcDbEntity() = default;
    AcDbEntity(const AcDbEntity&) = default;

    // The block (model space, paper space or a block definition) that owns it.
    AcDbObjectId blockId() const { return ownerId(); }

    // A copy of the layer name that the caller frees with acutDelString.
    ACHAR* layer() const;
    const std::wstring& layerName() const { return layer_; }
    AcDbObjectId layerId() const;
    Acad::ErrorStatus setLayer(const ACHAR* name, bool doSubents = true,
                               bool allowHiddenLayer = false);
    Acad::ErrorStatus setLayer(AcDbObjectId layerId, bool doSubents = true,
                               bool allowHiddenLayer = false);

    AcCmColor color() const { return color_; }
    Adesk::UInt16 colorIndex() const { return color_.colorIndex(); }
    Acad::ErrorStatus setColor(const AcCmColor& color, bool doSubents = true);
    Acad::ErrorStatus setColorIndex(Adesk::UInt16 index, bool doSubents = true);
    AcCmEntityColor entityColor() const { return color_.entityColor(); }

    AcDb::Visibility visibility() const { return visible_ ? AcDb::kVisible : AcDb::kInvisible; }
    Acad::ErrorStatus setVisibility(AcDb::Visibility visibility, bool doSubents = true);
    // Shows the entity highlighted (or plainly again). Highlighting is a state of the
    // display, not of the drawing: the entity need only be open for read, and nothing of
    // it is saved. eNotInDatabase for an entity that is not resident.
    Acad::ErrorStatus highlight() const;
    Acad::ErrorStatus unhighlight() const;

    ACHAR* linetype() const;
    const std::wstring& linetypeName() const { return linetype_; }
    Acad::ErrorStatus setLinetype(const ACHAR* name, bool doSubents = true);
    double linetypeScale() const { return linetypeScale_; }
    Acad::ErrorStatus setLinetypeScale(double scale, bool doSubents = true);
    Adesk::Int16 lineWeight() const { return lineWeight_; }
    Acad::ErrorStatus setLineWeight(Adesk::Int16 weight, bool doSubents = true);

    // Copies layer, colour, linetype and visibility of another entity, or sets the
    // drawing's current ones.
    Acad::ErrorStatus setPropertiesFrom(const AcDbEntity* other, bool doSubents = true);
    void setDatabaseDefaults(AcDbDatabase* database = nullptr);

    virtual Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const;
    // The plane the entity lies in; eNotApplicable for entities that do not say.
    virtual Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const;

  private:
    std::wstring layer_ = L"0";
    std::wstring linetype_ = L"ByLayer";
    AcCmColor color_;
    double linetypeScale_ = 1.0;
    Adesk::Int16 lineWeight_ = -1;  // by layer
    bool visible_ = true;
};

// Opens an object by id. Opening an erased object fails unless openErased is set;
// opening for write an object already open fails, as does a class that does not fit.
KPLAN_API Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& obj, AcDbObjectId id,
                                               AcDb::OpenMode mode, bool openErased = false);
KPLAN_API Acad::ErrorStatus acdbOpenAcDbEntity(AcDbEntity*& ent, AcDbObjectId id,
                                               AcDb::OpenMode mode, bool openErased = false);
KPLAN_API Acad::ErrorStatus acdbOpenObject(AcDbObject*& obj, AcDbObjectId id, AcDb::OpenMode mode,
                                           bool openErased = false);

template <typename T>
Acad::ErrorStatus acdbOpenObject(T*& obj, AcDbObjectId id, AcDb::OpenMode mode,
                                 bool openErased = false) {
    obj = nullptr;
    AcDbObject* base = nullptr;
    Acad::ErrorStatus es = acdbOpenAcDbObject(base, id, mode, openErased);
    if (es != Acad::eOk) return es;
    obj = T::cast(base);
    if (obj == nullptr) {
        base->close();
        return Acad::eNotThatKindOfClass;
    }
    return Acad::eOk;
}

class KPLAN_API AcDbDatabase : public db::Database {
  public:
    // With buildDefaultDrawing, the tables and the entries every drawing has: layer
    // "0", linetypes ByLayer/ByBlock/Continuous, application "ACAD", model and paper
    // space, and the named-object dictionary.
    explicit AcDbDatabase(bool buildDefaultDrawing = true, bool noDocument = false);
    ~AcDbDatabase() override;

    // Adds a non-resident object; the database owns it from now on and it stays
    // open for write until the caller closes it.
    Acad::ErrorStatus addAcDbObject(AcDbObjectId& id, AcDbObject* obj);
    // The same with a given handle (for loaders); fails with eHandleInUse.
    Acad::ErrorStatus addAcDbObjectWithHandle(AcDbObjectId& id, AcDbObject* obj, AcDbHandle handle);
    // For loaders: places an object at its handle, also into a stub that a forward
    // reference made; the object is not left open. eHandleInUse when an object has it.
    Acad::ErrorStatus restoreObject(AcDbObjectId& id, AcDbObject* obj, AcDbHandle handle);
    Acad::ErrorStatus getAcDbObjectId(AcDbObjectId& id, bool createIfNotFound,
                                      const AcDbHandle& handle, Adesk::UInt32 xRefId = 0);

    Acad::ErrorStatus getBlockTable(AcDbBlockTable*& table, AcDb::OpenMode mode);
    Acad::ErrorStatus getLayerTable(AcDbLayerTable*& table, AcDb::OpenMode mode);
    Acad::ErrorStatus getRegAppTable(AcDbRegAppTable*& table, AcDb::OpenMode mode);
    Acad::ErrorStatus getLinetypeTable(AcDbLinetypeTable*& table, AcDb::OpenMode mode);
    Acad::ErrorStatus getSymbolTable(AcDbBlockTable*& table, AcDb::OpenMode mode) {
        return getBlockTable(table, mode);
    }
    Acad::ErrorStatus getSymbolTable(AcDbLayerTable*& table, AcDb::OpenMode mode) {
        return getLayerTable(table, mode);
    }
    Acad::ErrorStatus getSymbolTable(AcDbRegAppTable*& table, AcDb::OpenMode mode) {
        return getRegAppTable(table, mode);
    }
    Acad::ErrorStatus getSymbolTable(AcDbLinetypeTable*& table, AcDb::OpenMode mode) {
        return getLinetypeTable(table, mode);
    }
    Acad::ErrorStatus getNamedObjectsDictionary(AcDbDictionary*& dict, AcDb::OpenMode mode);
    // The linetype record "Continuous"; null when the drawing has none.
    AcDbObjectId continuousLinetype() const;

    AcDbObjectId blockTableId() const { return blockTable_; }
    AcDbObjectId layerTableId() const { return layerTable_; }
    AcDbObjectId regAppTableId() const { return regAppTable_; }
    AcDbObjectId linetypeTableId() const { return linetypeTable_; }
    AcDbObjectId namedObjectsDictionaryId() const { return namedObjects_; }
    AcDbObjectId modelSpaceId() const { return modelSpace_; }
    AcDbObjectId paperSpaceId() const { return paperSpace_; }
    // Model space while TILEMODE is 1, else paper space.
    AcDbObjectId currentSpaceId() const { return tilemode_ ? modelSpace_ : paperSpace_; }
    bool tilemode() const { return tilemode_; }
    // $MEASUREMENT: 0 imperial, 1 metric; it chooses the pattern file of new hatches.
    int measurement() const { return measurement_; }
    Acad::ErrorStatus setMeasurement(int measurement);
    Acad::ErrorStatus setTilemode(bool tilemode);

    AcDbObjectId clayer() const { return clayer_; }
    Acad::ErrorStatus setClayer(AcDbObjectId layerId);
    AcCmColor cecolor() const { return cecolor_; }
    Acad::ErrorStatus setCecolor(const AcCmColor& color);

    AcDbHandle handseed() const { return AcDbHandle(db::Database::handseed()); }

    // The view of model space in the active viewport, in drawing units: what ZOOM changes
    // and what a saved drawing opens at. known is false until a file or a zoom sets it.
    struct View {
        double centerX = 0, centerY = 0, height = 1000, aspect = 1.5;
        bool known = false;
    };
    const View& view() const { return view_; }
    void setView(const View& view);

    // The entities shown highlighted (AcDbEntity::highlight), as the display knows them.
    bool isHighlighted(AcDbObjectId id) const { return highlighted_.count(id) != 0; }
    void setHighlighted(AcDbObjectId id, bool on);

    // For loaders: the well-known objects of a drawing read from a file.
    void setWellKnownIds(AcDbObjectId blockTable, AcDbObjectId layerTable, AcDbObjectId regAppTable,
                         AcDbObjectId linetypeTable, AcDbObjectId namedObjects,
                         AcDbObjectId modelSpace, AcDbObjectId paperSpace);

    // What a file format keeps to write the drawing back as it was read (the tags of
    // what the host does not model); owned by the database, null when not loaded.
    db::ObjectBase* fileData() const { return fileData_.get(); }
    void setFileData(std::unique_ptr<db::ObjectBase> data) { fileData_ = std::move(data); }

  private:
    std::unique_ptr<db::ObjectBase> fileData_;
    AcDbObjectId blockTable_, layerTable_, regAppTable_, linetypeTable_;
    AcDbObjectId namedObjects_, modelSpace_, paperSpace_, clayer_;
    AcCmColor cecolor_;
    bool tilemode_ = true;
    int measurement_ = 0;
    View view_;
    std::set<AcDbObjectId> highlighted_;
};

// Entity names of the command-line interface and object ids.
KPLAN_API Acad::ErrorStatus acdbGetAdsName(ads_name& name, AcDbObjectId id);
KPLAN_API Acad::ErrorStatus acdbGetObjectId(AcDbObjectId& id, const ads_name name);
