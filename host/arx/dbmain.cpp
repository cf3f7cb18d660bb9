#include "host/arx/dbmain.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cwchar>

#include "host/arx/acutads.h"
#include "host/arx/dbapserv.h"
#include "host/arx/dbdict.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"
#include "host/db/Leaks.h"
#include "host/db/PackedXdata.h"
#include "host/db/TextCodec.h"

ACRX_DEFINE_MEMBERS(AcDbObject, AcRxObject, L"")
ACRX_DEFINE_MEMBERS(AcDbEntity, AcDbObject, L"")

AcRxClass* AcRxObject::desc() {
    static AcRxClass cls(L"AcRxObject", L"", nullptr);
    return &cls;
}

namespace arx {
std::wstring foldCase(const ACHAR* text) {
    std::wstring key(text ? text : L"");
    for (wchar_t& c : key) {
        if (c >= L'a' && c <= L'z') c = static_cast<wchar_t>(c - L'a' + L'A');
    }
    return key;
}
}  // namespace arx

namespace {

// The host's limit of xdata per object.
constexpr std::size_t kMaxXdataBytes = 16383;

// Size of xdata as the host counts it: a code byte and the stored value, strings as
// UTF-16 with a length word, application names as a table reference.
std::size_t xdataSize(const db::ValueList& values) {
    std::size_t size = 0;
    for (const db::Value& v : values) {
        size += 1;
        if (v.code == 1001) {
            size += 2;
            continue;
        }
        switch (db::kindOfGroupCode(v.code)) {
            case db::ValueKind::String:
                size += 2 + 2 * (v.text() ? v.text()->size() : 0);
                break;
            case db::ValueKind::Handle:
                size += 8;
                break;
            case db::ValueKind::Point:
                size += 24;
                break;
            case db::ValueKind::Real:
                size += 8;
                break;
            case db::ValueKind::Int16:
            case db::ValueKind::Bool:
                size += 2;
                break;
            case db::ValueKind::Int32:
                size += 4;
                break;
            case db::ValueKind::Binary:
                size += 1 + std::get<db::Bytes>(v.data).size();
                break;
            default:
                size += 8;
                break;
        }
    }
    return size;
}

struct AppBlock {
    std::wstring app;
    db::ValueList values;  // starting with the 1001 item
};

std::vector<AppBlock> splitByApp(const db::ValueList& values) {
    std::vector<AppBlock> blocks;
    for (const db::Value& v : values) {
        if (v.code == 1001) blocks.push_back({v.text() ? *v.text() : L"", {}});
        if (!blocks.empty()) blocks.back().values.push_back(v);
    }
    return blocks;
}

// The application's name as registered, or empty when it is not.
std::wstring registeredName(AcDbDatabase* database, const std::wstring& app) {
    auto* table = arx::peek<AcDbRegAppTable>(database->regAppTableId());
    AcDbObjectId id;
    if (table == nullptr || table->getAt(app.c_str(), id) != Acad::eOk) return {};
    return arx::peek<AcDbRegAppTableRecord>(id)->nameText();
}

}  // namespace

// ---------------------------------------------------------------- AcDbObjectId

const AcDbObjectId AcDbObjectId::kNull;

bool AcDbObjectId::isErased() const {
    return stub_ != nullptr && stub_->erased;
}

AcDbDatabase* AcDbObjectId::database() const {
    return stub_ ? static_cast<AcDbDatabase*>(stub_->database) : nullptr;
}

AcDbHandle AcDbObjectId::handle() const {
    return stub_ ? AcDbHandle(stub_->handle) : AcDbHandle();
}

AcDbHandle::AcDbHandle(const ACHAR* hex) {
    value_ = 0;
    if (hex == nullptr) return;
    for (const ACHAR* p = hex; *p; ++p) {
        wchar_t c = *p;
        int digit = (c >= L'0' && c <= L'9')   ? c - L'0'
                    : (c >= L'a' && c <= L'f') ? c - L'a' + 10
                    : (c >= L'A' && c <= L'F') ? c - L'A' + 10
                                               : -1;
        if (digit < 0 || (value_ >> 60) != 0) {
            value_ = 0;
            return;
        }
        value_ = (value_ << 4) | static_cast<std::uint64_t>(digit);
    }
}

std::wstring AcDbHandle::text() const {
    wchar_t buffer[17];
    std::swprintf(buffer, 17, L"%llX", static_cast<unsigned long long>(value_));
    return buffer;
}

bool AcDbHandle::getIntoAsciiBuffer(ACHAR* buffer, std::size_t size) const {
    std::wstring hex = text();
    if (buffer == nullptr || size <= hex.size()) return false;
    std::wmemcpy(buffer, hex.c_str(), hex.size() + 1);
    return true;
}

Acad::ErrorStatus acdbGetAdsName(ads_name& name, AcDbObjectId id) {
    if (id.isNull()) return Acad::eNullObjectId;
    db::stubToName(id.stub(), name);
    return Acad::eOk;
}

Acad::ErrorStatus acdbGetObjectId(AcDbObjectId& id, const ads_name name) {
    db::Stub* stub = db::nameToStub(name);
    if (stub == nullptr) return Acad::eInvalidAdsName;
    id = AcDbObjectId(stub);
    return Acad::eOk;
}

// ---------------------------------------------------------------- AcDbExtents

void AcDbExtents::addPoint(const AcGePoint3d& p) {
    if (!set_) {
        min_ = max_ = p;
        set_ = true;
        return;
    }
    min_ = {std::min(min_.x, p.x), std::min(min_.y, p.y), std::min(min_.z, p.z)};
    max_ = {std::max(max_.x, p.x), std::max(max_.y, p.y), std::max(max_.z, p.z)};
}

void AcDbExtents::addExt(const AcDbExtents& other) {
    if (other.isEmpty()) return;
    addPoint(other.min_);
    addPoint(other.max_);
}

Acad::ErrorStatus AcDbExtents::set(const AcGePoint3d& min, const AcGePoint3d& max) {
    if (min.x > max.x || min.y > max.y || min.z > max.z) return Acad::eInvalidExtents;
    min_ = min;
    max_ = max;
    set_ = true;
    return Acad::eOk;
}

// ---------------------------------------------------------------- opening

Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& obj, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased) {
    obj = nullptr;
    db::Stub* stub = id.stub();
    if (stub == nullptr) return Acad::eNullObjectId;
    if (!stub->object) return Acad::eUnknownHandle;  // referred to but never loaded
    if (stub->erased && !openErased) return Acad::eWasErased;
    switch (mode) {
        case AcDb::kForRead:
        case AcDb::kForNotify:
            if (stub->writer) return Acad::eWasOpenForWrite;
            if (stub->readers >= 256) return Acad::eAtMaxReaders;
            stub->readers++;
            break;
        case AcDb::kForWrite:
            if (stub->writer) return Acad::eWasOpenForWrite;
            if (stub->readers > 0) return Acad::eWasOpenForRead;
            stub->writer = true;
            break;
    }
    db::leakCounts().openObjects++;
    obj = static_cast<AcDbObject*>(stub->object.get());
    return Acad::eOk;
}

Acad::ErrorStatus acdbOpenObject(AcDbObject*& obj, AcDbObjectId id, AcDb::OpenMode mode,
                                 bool openErased) {
    return acdbOpenAcDbObject(obj, id, mode, openErased);
}

Acad::ErrorStatus acdbOpenAcDbEntity(AcDbEntity*& ent, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased) {
    return acdbOpenObject(ent, id, mode, openErased);
}

// ---------------------------------------------------------------- AcDbObject

// A copy keeps xdata that is still packed so: copies made only to be measured (a label point's
// temporary copy) would otherwise decode every record they copy.
AcDbObject::AcDbObject(const AcDbObject& other)
    : AcRxObject(other),
      xdata_(other.xdata_),
      packedXdata_(other.packedXdata_),
      unpack_(other.unpack_),
      packedSerial_(other.packedSerial_) {}

const db::ValueList& AcDbObject::unpackedXdata() const {
    if (!packedXdata_.empty()) {
        db::ValueList values;
        unpack_(packedXdata_, values);
        xdata_ = std::move(values);
        std::string().swap(packedXdata_);
    }
    return xdata_;
}

AcDbObject::~AcDbObject() = default;

Acad::ErrorStatus AcDbObject::setOwnerId(AcDbObjectId owner) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    owner_ = owner;
    return Acad::eOk;
}

AcDbDatabase* AcDbObject::database() const {
    return stub_ ? static_cast<AcDbDatabase*>(stub_->database) : nullptr;
}

void AcDbObject::getAcDbHandle(AcDbHandle& handle) const {
    handle = this->handle();
}

AcDbHandle AcDbObject::handle() const {
    return stub_ ? AcDbHandle(stub_->handle) : AcDbHandle();
}

Acad::ErrorStatus AcDbObject::close() {
    if (stub_ == nullptr) {
        // A new object that never reached a database: the host would complain; we
        // free it so that the mistake costs no memory.
        delete this;
        return Acad::eOk;
    }
    if (stub_->writer) {
        stub_->writer = false;
        db::leakCounts().openObjects--;
        for (AcDbObjectId reactorId : std::vector<AcDbObjectId>(reactors_)) {
            db::Stub* r = reactorId.stub();
            if (r == nullptr || r->erased || !r->object || r->isOpen()) continue;
            r->notifying = true;
            r->readers++;
            static_cast<AcDbObject*>(r->object.get())->modified(this);
            r->readers--;
            r->notifying = false;
        }
        return Acad::eOk;
    }
    if (stub_->readers > 0) {
        stub_->readers--;
        db::leakCounts().openObjects--;
        return Acad::eOk;
    }
    return Acad::eNotOpenForRead;
}

Acad::ErrorStatus AcDbObject::upgradeOpen() {
    if (stub_ == nullptr || stub_->writer) return Acad::eOk;
    if (stub_->readers != 1) return Acad::eHadMultipleReaders;
    stub_->readers = 0;
    stub_->writer = true;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::downgradeOpen() {
    if (stub_ == nullptr || !stub_->writer) return Acad::eOk;
    stub_->writer = false;
    stub_->readers = 1;
    return Acad::eOk;
}

bool AcDbObject::isReadEnabled() const {
    return stub_ == nullptr || stub_->isOpen();
}
bool AcDbObject::isWriteEnabled() const {
    return stub_ == nullptr || stub_->writer;
}
bool AcDbObject::isNotifyEnabled() const {
    return stub_ != nullptr && stub_->notifying;
}
bool AcDbObject::isErased() const {
    return stub_ != nullptr && stub_->erased;
}

Acad::ErrorStatus AcDbObject::assertReadEnabled() const {
    return isReadEnabled() ? Acad::eOk : Acad::eNotOpenForRead;
}

Acad::ErrorStatus AcDbObject::assertWriteEnabled() const {
    return isWriteEnabled() ? Acad::eOk : Acad::eNotOpenForWrite;
}

Acad::ErrorStatus AcDbObject::erase(bool erasing) {
    if (stub_ == nullptr) return Acad::eNotInDatabase;
    if (!stub_->writer) return Acad::eNotOpenForWrite;
    if (!erasing && !stub_->erased) return Acad::eWasNotErased;
    stub_->erased = erasing;
    return Acad::eOk;
}

void AcDbDatabase::setView(const View& view) {
    view_ = view;
    // A view the host could not show is kept at its nearest sensible size.
    if (!(view_.height > 0) || !std::isfinite(view_.height)) view_.height = 1000;
    if (!(view_.aspect > 0) || !std::isfinite(view_.aspect)) view_.aspect = 1.5;
    view_.known = true;
}

void AcDbObject::restorePackedXdata(std::string packed, XdataUnpacker unpack) {
    static std::atomic<std::uint64_t> serials{0};
    xdata_.clear();
    packedXdata_ = std::move(packed);
    unpack_ = unpack;
    packedSerial_ = ++serials;
}

void AcDbObject::withXdata(const std::function<void(const db::ValueList&)>& use) const {
    if (packedXdata_.empty()) {
        use(xdata_);
        return;
    }
    // One scratch list per depth of nesting: a reader may read another object inside.
    struct Scratch {
        db::ValueList values;
        std::uint64_t serial = 0;  // of the packed form values were decoded from
    };
    thread_local std::vector<std::unique_ptr<Scratch>> scratch;
    thread_local std::size_t depth = 0;
    if (scratch.size() <= depth) scratch.push_back(std::make_unique<Scratch>());
    struct Nest {
        std::size_t& depth;
        ~Nest() { --depth; }
    } nest{++depth};
    Scratch& s = *scratch[depth - 1];
    // Readers of a record often read the same object several times in a row.
    if (s.serial != packedSerial_) {
        s.serial = 0;
        unpack_(packedXdata_, s.values);
        s.serial = packedSerial_;
    }
    use(s.values);
}

void AcDbObject::forEachXdataApp(const std::function<bool(const std::wstring& app)>& use) const {
    if (packedXdata_.empty()) {
        for (const db::Value& v : xdata_) {
            if (v.code == 1001 && v.text() && !use(*v.text())) return;
        }
        return;
    }
    std::wstring name;
    db::forEachPacked(packedXdata_, [&](int code, std::string_view text) {
        if (code != 1001) return true;
        db::utf8ToWide(text, name);
        return use(name);
    });
}

resbuf* AcDbObject::xData(const ACHAR* appName) const {
    resbuf* found = nullptr;
    withXdata([&](const db::ValueList& values) {
        if (appName == nullptr || *appName == 0) {
            found = values.empty() ? nullptr : acutValuesToRb(values);
            return;
        }
        std::wstring key = arx::foldCase(appName);
        for (const AppBlock& block : splitByApp(values)) {
            if (arx::foldCase(block.app.c_str()) == key) {
                found = acutValuesToRb(block.values);
                return;
            }
        }
    });
    return found;
}

Acad::ErrorStatus AcDbObject::setXData(const resbuf* xdata) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    db::ValueList incoming;
    if (!acutRbToValues(xdata, incoming)) return Acad::eInvalidResBuf;
    if (incoming.empty()) return Acad::eOk;
    if (incoming.front().code != 1001) return Acad::eInvalidResBuf;
    for (const db::Value& v : incoming) {
        if (v.code < 1000 || v.code > 1071 || db::kindOfGroupCode(v.code) == db::ValueKind::None) {
            return Acad::eInvalidResBuf;
        }
    }
    std::vector<AppBlock> changes = splitByApp(incoming);
    for (AppBlock& block : changes) {
        if (block.app.empty()) return Acad::eInvalidResBuf;
        int depth = 0;
        for (const db::Value& v : block.values) {
            if (v.code != 1002 || !v.text()) continue;
            depth += *v.text() == L"{" ? 1 : (*v.text() == L"}" ? -1 : 0);
            if (depth < 0) return Acad::eInvalidResBuf;
        }
        if (depth != 0) return Acad::eInvalidResBuf;
        if (database()) {
            std::wstring name = registeredName(database(), block.app);
            if (name.empty()) return Acad::eRegappIdNotFound;
            block.app = name;
            block.values.front().data = name;
        }
    }

    std::vector<AppBlock> blocks = splitByApp(xdataValues());
    for (AppBlock& change : changes) {
        std::wstring key = arx::foldCase(change.app.c_str());
        auto it = std::find_if(blocks.begin(), blocks.end(), [&](const AppBlock& b) {
            return arx::foldCase(b.app.c_str()) == key;
        });
        if (it != blocks.end()) {
            it->values = std::move(change.values);
        } else {
            blocks.push_back(std::move(change));
        }
    }
    db::ValueList merged;
    for (AppBlock& block : blocks) {
        if (block.values.size() <= 1) continue;  // an empty block removes the application
        merged.insert(merged.end(), block.values.begin(), block.values.end());
    }
    if (xdataSize(merged) > kMaxXdataBytes) return Acad::eXdataSizeExceeded;
    xdata_ = std::move(merged);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::createExtensionDictionary() {
    if (stub_ == nullptr) return Acad::eNotInDatabase;
    if (!stub_->writer) return Acad::eNotOpenForWrite;
    if (!extDict_.isNull() && !extDict_.isErased()) return Acad::eAlreadyInDb;
    auto* dict = new AcDbDictionary();
    dict->setHardOwner(true);
    AcDbObjectId id;
    Acad::ErrorStatus es = database()->addAcDbObject(id, dict);
    if (es != Acad::eOk) {
        delete dict;
        return es;
    }
    dict->setOwnerId(objectId());
    dict->addPersistentReactor(objectId());
    dict->close();
    extDict_ = id;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::releaseExtensionDictionary() {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (extDict_.isNull()) return Acad::eOk;
    auto* dict = arx::peek<AcDbDictionary>(extDict_);
    if (dict && dict->numEntries() > 0) return Acad::eContainerNotEmpty;
    AcDbObject* obj = nullptr;
    if (!extDict_.isErased() && acdbOpenObject(obj, extDict_, AcDb::kForWrite) == Acad::eOk) {
        obj->erase();
        obj->close();
    }
    extDict_.setNull();
    return Acad::eOk;
}

void AcDbObject::addPersistentReactor(AcDbObjectId reactor) {
    if (!hasPersistentReactor(reactor)) reactors_.push_back(reactor);
}

Acad::ErrorStatus AcDbObject::removePersistentReactor(AcDbObjectId reactor) {
    auto it = std::find(reactors_.begin(), reactors_.end(), reactor);
    if (it == reactors_.end()) return Acad::eKeyNotFound;
    reactors_.erase(it);
    return Acad::eOk;
}

bool AcDbObject::hasPersistentReactor(AcDbObjectId reactor) const {
    return std::find(reactors_.begin(), reactors_.end(), reactor) != reactors_.end();
}

void AcDbObject::modified(const AcDbObject*) {}

// ---------------------------------------------------------------- AcDbEntity

ACHAR* AcDbEntity::layer() const {
    return acutNewString(layer_.c_str());
}

AcDbObjectId AcDbEntity::layerId() const {
    AcDbDatabase* db = database();
    auto* table = db ? arx::peek<AcDbLayerTable>(db->layerTableId()) : nullptr;
    AcDbObjectId id;
    if (table) table->getAt(layer_.c_str(), id);
    return id;
}

Acad::ErrorStatus AcDbEntity::setLayer(const ACHAR* name, bool, bool) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (name == nullptr || *name == 0) return Acad::eInvalidInput;
    if (AcDbDatabase* db = database()) {
        auto* table = arx::peek<AcDbLayerTable>(db->layerTableId());
        AcDbObjectId id;
        if (table == nullptr || table->getAt(name, id) != Acad::eOk) return Acad::eKeyNotFound;
        layer_ = arx::peek<AcDbLayerTableRecord>(id)->nameText();
        return Acad::eOk;
    }
    layer_ = name;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLayer(AcDbObjectId layerId, bool, bool) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    auto* record = arx::peek<AcDbLayerTableRecord>(layerId);
    if (record == nullptr || layerId.isErased()) return Acad::eInvalidLayer;
    layer_ = record->nameText();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setColor(const AcCmColor& color, bool) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    color_ = color;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setColorIndex(Adesk::UInt16 index, bool) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (index > 256) return Acad::eOutOfRange;
    return color_.setColorIndex(index);
}

Acad::ErrorStatus AcDbEntity::setVisibility(AcDb::Visibility visibility, bool) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    visible_ = visibility == AcDb::kVisible;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::highlight() const {
    if (database() == nullptr) return Acad::eNotInDatabase;
    database()->setHighlighted(objectId(), true);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::unhighlight() const {
    if (database() == nullptr) return Acad::eNotInDatabase;
    database()->setHighlighted(objectId(), false);
    return Acad::eOk;
}

ACHAR* AcDbEntity::linetype() const {
    return acutNewString(linetype_.c_str());
}

Acad::ErrorStatus AcDbEntity::setLinetype(const ACHAR* name, bool) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (name == nullptr || *name == 0) return Acad::eInvalidInput;
    if (AcDbDatabase* db = database()) {
        auto* table = arx::peek<AcDbLinetypeTable>(db->linetypeTableId());
        AcDbObjectId id;
        if (table == nullptr || table->getAt(name, id) != Acad::eOk) return Acad::eKeyNotFound;
        linetype_ = arx::peek<AcDbLinetypeTableRecord>(id)->nameText();
        return Acad::eOk;
    }
    linetype_ = name;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLinetypeScale(double scale, bool) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (!(scale > 0)) return Acad::eInvalidInput;
    linetypeScale_ = scale;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLineWeight(Adesk::Int16 weight, bool) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    lineWeight_ = weight;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setPropertiesFrom(const AcDbEntity* other, bool) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (other == nullptr) return Acad::eNullEntityPointer;
    layer_ = other->layer_;
    linetype_ = other->linetype_;
    color_ = other->color_;
    linetypeScale_ = other->linetypeScale_;
    lineWeight_ = other->lineWeight_;
    visible_ = other->visible_;
    return Acad::eOk;
}

void AcDbEntity::setDatabaseDefaults(AcDbDatabase* database) {
    if (database == nullptr) database = this->database();
    // A new entity takes the defaults of the drawing being worked on, as in the host.
    if (database == nullptr) database = acdbHostApplicationServices()->workingDatabase();
    if (database == nullptr) return;
    if (auto* record = arx::peek<AcDbLayerTableRecord>(database->clayer())) {
        layer_ = record->nameText();
    }
    color_ = database->cecolor();
    linetype_ = L"ByLayer";
    linetypeScale_ = 1.0;
    lineWeight_ = -1;
    visible_ = true;
}

Acad::ErrorStatus AcDbEntity::getPlane(AcGePlane&, AcDb::Planarity& planarity) const {
    planarity = AcDb::kNonPlanar;
    return Acad::eNotApplicable;
}

Acad::ErrorStatus AcDbEntity::getGeomExtents(AcDbExtents&) const {
    return Acad::eInvalidExtents;
}

// ---------------------------------------------------------------- AcDbDatabase

AcDbDatabase::AcDbDatabase(bool buildDefaultDrawing, bool) {
    if (!buildDefaultDrawing) return;
    auto add = [this](AcDbObject* obj) {
        AcDbObjectId id;
        addAcDbObject(id, obj);
        return id;
    };
    auto* blocks = new AcDbBlockTable();
    auto* layers = new AcDbLayerTable();
    auto* apps = new AcDbRegAppTable();
    auto* linetypes = new AcDbLinetypeTable();
    auto* named = new AcDbDictionary();
    named->setHardOwner(true);
    blockTable_ = add(blocks);
    layerTable_ = add(layers);
    regAppTable_ = add(apps);
    linetypeTable_ = add(linetypes);
    namedObjects_ = add(named);

    for (const ACHAR* name : {L"ByBlock", L"ByLayer", L"Continuous"}) {
        auto* record = new AcDbLinetypeTableRecord();
        record->setName(name);
        if (std::wcscmp(name, L"Continuous") == 0) record->setComments(L"Solid line");
        linetypes->add(record);
        record->close();
    }
    auto* layer0 = new AcDbLayerTableRecord();
    layer0->setName(L"0");
    AcDbObjectId continuous;
    linetypes->getAt(L"Continuous", continuous);
    layer0->setLinetypeObjectId(continuous);
    layers->add(clayer_, layer0);
    layer0->close();
    auto* acad = new AcDbRegAppTableRecord();
    acad->setName(L"ACAD");
    apps->add(acad);
    acad->close();
    for (const ACHAR* name : {ACDB_MODEL_SPACE, ACDB_PAPER_SPACE}) {
        auto* record = new AcDbBlockTableRecord();
        record->setName(name);
        AcDbObjectId id;
        blocks->add(id, record);
        record->close();
        (std::wcscmp(name, ACDB_MODEL_SPACE) == 0 ? modelSpace_ : paperSpace_) = id;
    }
    auto* groups = new AcDbDictionary();
    AcDbObjectId groupsId;
    named->setAt(L"ACAD_GROUP", groups, groupsId);
    groups->close();
    for (AcDbObject* obj :
         std::initializer_list<AcDbObject*>{blocks, layers, apps, linetypes, named}) {
        obj->close();
    }
}

AcDbDatabase::~AcDbDatabase() = default;

Acad::ErrorStatus AcDbDatabase::addAcDbObject(AcDbObjectId& id, AcDbObject* obj) {
    return addAcDbObjectWithHandle(id, obj, AcDbHandle());
}

Acad::ErrorStatus AcDbDatabase::addAcDbObjectWithHandle(AcDbObjectId& id, AcDbObject* obj,
                                                        AcDbHandle handle) {
    if (obj == nullptr) return Acad::eNullObjectPointer;
    if (obj->stub() != nullptr) return Acad::eAlreadyInDb;
    std::unique_ptr<db::ObjectBase> owned(obj);
    db::Stub* stub = add(owned, handle.value());
    if (stub == nullptr) {
        (void)owned.release();  // the caller keeps it
        return Acad::eHandleInUse;
    }
    obj->attachStub(stub);
    stub->writer = true;
    db::leakCounts().openObjects++;
    id = AcDbObjectId(stub);
    obj->subAddedToDatabase();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::restoreObject(AcDbObjectId& id, AcDbObject* obj,
                                              AcDbHandle handle) {
    if (obj == nullptr) return Acad::eNullObjectPointer;
    if (obj->stub() != nullptr) return Acad::eAlreadyInDb;
    db::Stub* stub = handle.isNull() ? nullptr : find(handle.value());
    if (stub != nullptr && stub->object != nullptr) return Acad::eHandleInUse;
    if (stub == nullptr) {
        std::unique_ptr<db::ObjectBase> owned(obj);
        stub = add(owned, handle.value());
        if (stub == nullptr) {
            (void)owned.release();
            return Acad::eHandleInUse;
        }
    } else {
        stub->object.reset(obj);
    }
    obj->attachStub(stub);
    id = AcDbObjectId(stub);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::getAcDbObjectId(AcDbObjectId& id, bool createIfNotFound,
                                                const AcDbHandle& handle, Adesk::UInt32) {
    if (handle.isNull()) return Acad::eNullHandle;
    db::Stub* stub = find(handle.value());
    if (stub == nullptr && createIfNotFound) {
        std::unique_ptr<db::ObjectBase> none;
        stub = add(none, handle.value());
    }
    if (stub == nullptr) return Acad::eUnknownHandle;
    id = AcDbObjectId(stub);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::getBlockTable(AcDbBlockTable*& table, AcDb::OpenMode mode) {
    return acdbOpenObject(table, blockTable_, mode);
}
Acad::ErrorStatus AcDbDatabase::getLayerTable(AcDbLayerTable*& table, AcDb::OpenMode mode) {
    return acdbOpenObject(table, layerTable_, mode);
}
Acad::ErrorStatus AcDbDatabase::getRegAppTable(AcDbRegAppTable*& table, AcDb::OpenMode mode) {
    return acdbOpenObject(table, regAppTable_, mode);
}
Acad::ErrorStatus AcDbDatabase::getLinetypeTable(AcDbLinetypeTable*& table, AcDb::OpenMode mode) {
    return acdbOpenObject(table, linetypeTable_, mode);
}
Acad::ErrorStatus AcDbDatabase::getNamedObjectsDictionary(AcDbDictionary*& dict,
                                                          AcDb::OpenMode mode) {
    return acdbOpenObject(dict, namedObjects_, mode);
}

AcDbObjectId AcDbDatabase::continuousLinetype() const {
    auto* linetypes = arx::peek<AcDbLinetypeTable>(linetypeTable_);
    AcDbObjectId id;
    if (linetypes == nullptr || linetypes->getAt(L"Continuous", id) != Acad::eOk) return {};
    return id;
}

void AcDbDatabase::setHighlighted(AcDbObjectId id, bool on) {
    if (on) {
        highlighted_.insert(id);
    } else {
        highlighted_.erase(id);
    }
}

Acad::ErrorStatus AcDbDatabase::setMeasurement(int measurement) {
    if (measurement != 0 && measurement != 1) return Acad::eInvalidInput;
    measurement_ = measurement;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::setTilemode(bool tilemode) {
    tilemode_ = tilemode;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::setClayer(AcDbObjectId layerId) {
    if (arx::peek<AcDbLayerTableRecord>(layerId) == nullptr || layerId.isErased()) {
        return Acad::eInvalidLayer;
    }
    clayer_ = layerId;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::setCecolor(const AcCmColor& color) {
    cecolor_ = color;
    return Acad::eOk;
}

void AcDbDatabase::setWellKnownIds(AcDbObjectId blockTable, AcDbObjectId layerTable,
                                   AcDbObjectId regAppTable, AcDbObjectId linetypeTable,
                                   AcDbObjectId namedObjects, AcDbObjectId modelSpace,
                                   AcDbObjectId paperSpace) {
    blockTable_ = blockTable;
    layerTable_ = layerTable;
    regAppTable_ = regAppTable;
    linetypeTable_ = linetypeTable;
    namedObjects_ = namedObjects;
    modelSpace_ = modelSpace;
    paperSpace_ = paperSpace;
}
