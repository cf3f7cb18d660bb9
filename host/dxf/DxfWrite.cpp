#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <new>
#include <ostream>
#include <stdexcept>
#include <unordered_set>

#include "host/arx/dbblkref.h"
#include "host/arx/dbdict.h"
#include "host/arx/dbents.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"
#include "host/db/Progress.h"
#include "host/db/TextCodec.h"
#include "host/db/Utf8Path.h"
#include "host/dxf/Codecs.h"
#include "host/dxf/Dxf.h"
#include "host/dxf/DxfModel.h"

namespace dxf {

namespace {

const char* const kStandardTables[] = {"VPORT", "LTYPE", "LAYER",    "STYLE",       "VIEW",
                                       "UCS",   "APPID", "DIMSTYLE", "BLOCK_RECORD"};

std::wstring upper(std::wstring text) {
    for (wchar_t& c : text) {
        if (c >= L'a' && c <= L'z') c = static_cast<wchar_t>(c - L'a' + L'A');
    }
    return text;
}

bool live(AcDbObjectId id) {
    return WriteContext::handleOf(id) != 0;
}

class Saver {
  public:
    Saver(const AcDbDatabase& database, TagWriter& out, const SaveOptions& options)
        : database_(database),
          file_(dynamic_cast<const FileData*>(database.fileData())),
          version_(chooseVersion(options)),
          ctx_(database, file_, out, DxfStrings(version_, file_ ? file_->codePage : "ANSI_936")) {}

    bool run();
    // Shows the progress bar under message while run writes, a step per object.
    void showProgress(std::wstring message) { progressMessage_ = std::move(message); }

  private:
    std::string chooseVersion(const SaveOptions& options) const {
        if (!options.version.empty()) return options.version;
        if (file_ && file_->version.size() == 6 && file_->version > "AC1024") return file_->version;
        return "AC1024";
    }
    std::uint64_t fresh() { return nextHandle_++; }
    void plan();
    void writeHeader();
    void writeTables();
    void writeBlocks();
    void writeEntities();
    void writeObjects();
    void writeKept(const std::string& name);

    void writeObject(const AcDbObject& obj, const std::string* tableName = nullptr);
    void writeEntityTree(AcDbObjectId id);
    void writeSequence(const AcDbEntity& owner, const std::vector<AcDbObjectId>& children,
                       AcDbObjectId seqend);
    void writeHead(const AcDbObject& obj, std::string_view dxfName, const ObjectRecord* record,
                   const std::string* tableName);
    void writeTable(const std::string& name, AcDbObjectId head);
    std::vector<std::pair<std::string, AcDbObjectId>> tableOrder() const;
    std::vector<AcDbObjectId> blockOrder() const;
    std::pair<AcDbObjectId, AcDbObjectId> blockEnds(AcDbObjectId record) const;
    void synthTable(const std::string& name);

    const AcDbDatabase& database_;
    const FileData* file_;
    std::wstring progressMessage_;
    bool progressShown_ = false;
    std::size_t objectsWritten_ = 0;
    std::string version_;
    WriteContext ctx_;
    std::uint64_t nextHandle_ = 0;
    bool missingAppsWritten_ = false;
    std::uint64_t handseed_ = 0;
    std::vector<std::wstring> missingApps_;
    std::unordered_set<const db::Stub*> written_;
    // Entities the file had in ENTITIES (or in a layout's block) that are still in a
    // block: written there again, also when their owner is a block record of another
    // name (a model space some writer called "*U").
    std::unordered_set<const db::Stub*> entitiesSection_;
};

void Saver::plan() {
    if (file_) {
        for (AcDbObjectId id : file_->entities) {
            const AcDbObject* obj = live(id) ? arx::peekObject(id) : nullptr;
            if (obj && arx::peek<AcDbBlockTableRecord>(obj->ownerId())) {
                entitiesSection_.insert(id.stub());
            }
        }
    }
    // Handles for what the writer adds (block ends, tables a drawing made here lacks,
    // missing application names) come after every handle in use.
    nextHandle_ = database_.handseed().value();
    std::uint64_t needed = 0;
    for (AcDbObjectId id : blockOrder()) {
        auto ends = blockEnds(id);
        needed += (live(ends.first) ? 0 : 1) + (live(ends.second) ? 0 : 1);
    }
    for (const auto& [name, id] : tableOrder()) {
        if (!live(id)) needed += name == "VPORT" || name == "STYLE" ? 2 : 1;
    }
    std::unordered_set<std::wstring> registered;
    if (auto* apps = arx::peek<AcDbRegAppTable>(database_.regAppTableId())) {
        for (AcDbObjectId id : apps->recordIds()) {
            if (auto* r = arx::peek<AcDbRegAppTableRecord>(id); r && live(id)) {
                registered.insert(upper(r->nameText()));
            }
        }
    }
    for (const db::Stub& stub : database_.stubs()) {
        auto* obj = static_cast<const AcDbObject*>(stub.object.get());
        if (obj == nullptr || stub.erased) continue;
        if (auto* pline = AcDb2dPolyline::cast(obj); pline && !live(pline->sequenceEndId())) {
            ++needed;
        }
        auto check = [&](const std::wstring& app) {
            if (registered.insert(upper(app)).second) missingApps_.push_back(app);
        };
        // Xdata still packed as read is looked at in that form: unpacking all of it
        // would cost what keeping it packed saved.
        if (const std::string* packed = obj->packedXdata()) {
            forEachPacked(*packed, [&](int code, std::string_view text) {
                if (code == 1001) check(db::utf8ToWide(text));
            });
            continue;
        }
        for (const db::Value& v : obj->xdataValues()) {
            if (v.code == 1001 && v.text()) check(*v.text());
        }
    }
    needed += missingApps_.size();
    handseed_ = nextHandle_ + needed;
}

namespace {

bool sameCodePage(const std::string& a, const std::string& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return std::toupper(static_cast<unsigned char>(x)) ==
               std::toupper(static_cast<unsigned char>(y));
    });
}

}  // namespace

void Saver::writeHeader() {
    TagWriter& out = ctx_.out;
    out.text(0, "SECTION");
    out.text(2, "HEADER");
    bool wroteVersion = false, wroteSeed = false;
    // A file that named no code page was read with one decided from its text; a reader of a
    // copy before AC1021 must not fall back to the DXF default ANSI_1252 where that decision
    // said otherwise (from AC1021 on, strings are UTF-8 and the code page names nothing).
    bool declaresCodePage = false;
    if (file_ && file_->hasHeader)
        for (const AcDbRawTag& t : file_->header)
            if (t.code == 9 && t.value == "$DWGCODEPAGE") declaresCodePage = true;
    const std::string& codePage = ctx_.strings.codePage();
    auto writeVersion = [&] {
        out.text(9, "$ACADVER");
        out.text(1, version_);
        wroteVersion = true;
        if (file_ && file_->hasHeader && !declaresCodePage && !codePage.empty() &&
            codePage != "ANSI_1252" && version_ < "AC1021") {
            out.text(9, "$DWGCODEPAGE");
            out.text(3, codePage);
        }
    };
    auto writeSeed = [&] {
        out.text(9, "$HANDSEED");
        out.handle(5, handseed_);
        wroteSeed = true;
    };
    if (file_ && file_->hasHeader) {
        const AcDbRawTags& tags = file_->header;
        for (std::size_t i = 0; i < tags.size(); ++i) {
            const AcDbRawTag& t = tags[i];
            if (t.code == 9 && i + 1 < tags.size()) {
                const std::string& name = t.value;
                if (name == "$ACADVER") {
                    writeVersion();
                    ++i;
                    continue;
                }
                if (name == "$HANDSEED") {
                    if (!wroteVersion) writeVersion();
                    writeSeed();
                    ++i;
                    continue;
                }
                // --codepage overrode what the file declares: the strings are written in that one.
                if (name == "$DWGCODEPAGE" && !codePage.empty() &&
                    !sameCodePage(tags[i + 1].value, codePage)) {
                    if (!wroteVersion) writeVersion();
                    out.text(9, name);
                    out.text(3, codePage);
                    ++i;
                    continue;
                }
                bool asRead = std::find(file_->headerAsRead.begin(), file_->headerAsRead.end(),
                                        name) != file_->headerAsRead.end();
                if (name == "$INSUNITS" && !asRead) {
                    out.text(9, name);
                    out.integer(70, file_->insUnits);
                    ++i;
                    continue;
                }
                if (name == "$MEASUREMENT" && !asRead) {
                    out.text(9, name);
                    out.integer(70, database_.measurement());
                    ++i;
                    continue;
                }
                if (name == "$TILEMODE" && !asRead) {
                    out.text(9, name);
                    out.integer(70, database_.tilemode() ? 1 : 0);
                    ++i;
                    continue;
                }
                if (!wroteVersion) writeVersion();
            }
            ctx_.raw(t);
        }
        if (!wroteVersion) writeVersion();
        if (!wroteSeed) writeSeed();
    } else {
        writeVersion();
        out.text(9, "$DWGCODEPAGE");
        out.text(3, ctx_.strings.codePage());
        writeSeed();
        out.text(9, "$INSUNITS");
        out.integer(70, file_ ? file_->insUnits : 6);
        // Which pattern file the hatches were made from (other programs remake them).
        out.text(9, "$MEASUREMENT");
        out.integer(70, database_.measurement());
        out.text(9, "$TILEMODE");
        out.integer(70, database_.tilemode() ? 1 : 0);
    }
    out.text(0, "ENDSEC");
}

void Saver::writeHead(const AcDbObject& obj, std::string_view dxfName, const ObjectRecord* record,
                      const std::string* tableName) {
    TagWriter& out = ctx_.out;
    out.text(0, dxfName);
    if (tableName) ctx_.textUtf8(2, *tableName);
    out.handle(record ? record->handleCode : 5, obj.objectId().handle().value());
    if (record) {
        for (const AcDbRawTag& t : record->appGroups)
            ctx_.raw(t);
    }
    bool anyReactor = false;
    for (AcDbObjectId id : obj.persistentReactorIds())
        anyReactor = anyReactor || WriteContext::refOf(id) != 0;
    auto reactors = [&] {
        if (!anyReactor) return;
        out.text(102, "{ACAD_REACTORS");
        for (AcDbObjectId id : obj.persistentReactorIds()) {
            if (WriteContext::refOf(id) != 0) ctx_.ref(330, id);
        }
        out.text(102, "}");
    };
    auto dictionary = [&] {
        if (WriteContext::refOf(obj.extensionDictionary()) == 0) return;
        out.text(102, "{ACAD_XDICTIONARY");
        ctx_.ref(360, obj.extensionDictionary());
        out.text(102, "}");
    };
    if (record && record->dictionaryFirst) {
        dictionary();
        reactors();
    } else {
        reactors();
        dictionary();
    }
    out.handle(330, record && record->ownerAsRead ? record->ownerAsRead
                                                  : WriteContext::refOf(obj.ownerId()));
}

void Saver::writeObject(const AcDbObject& obj, const std::string* tableName) {
    written_.insert(obj.stub());
    // A step now and then: the sink's call costs more than writing a small object.
    constexpr std::size_t kObjectsPerStep = 1024;
    if (progressShown_ && ++objectsWritten_ % kObjectsPerStep == 0)
        db::progressSink().step(static_cast<long>(objectsWritten_));
    const ObjectRecord* record = ctx_.record(&obj);
    if (const Codec* codec = codecOf(obj)) {
        writeHead(obj, tableName ? "TABLE" : codec->dxfName, record, tableName);
        codec->write(obj, ctx_, record);
    } else if (auto* entity = AcDbUnknownEntity::cast(&obj)) {
        writeHead(obj, entity->dxfName(), record, nullptr);
        for (const AcDbRawTag& t : entity->tags())
            ctx_.raw(t);
    } else if (auto* kept = AcDbUnknownObject::cast(&obj)) {
        writeHead(obj, tableName ? "TABLE" : kept->dxfName(), record, tableName);
        bool active = false;
        // The active view is written as the drawing holds it, once it holds one.
        bool view = kept->dxfName() == "VPORT" && database_.view().known;
        for (const AcDbRawTag& t : kept->tags()) {
            if (view && t.code == 2)
                active = upper(std::wstring(t.value.begin(), t.value.end())) == L"*ACTIVE";
            if (view && active && (t.code == 12 || t.code == 22 || t.code == 40 || t.code == 41)) {
                const AcDbDatabase::View& v = database_.view();
                ctx_.out.real(t.code, t.code == 12   ? v.centerX
                                      : t.code == 22 ? v.centerY
                                      : t.code == 40 ? v.height
                                                     : v.aspect);
                continue;
            }
            ctx_.raw(t);
        }
    } else {
        // A class of the host that no codec writes (a region made in memory): the save
        // fails rather than leave it out and lose it.
        char handle[24];
        std::snprintf(handle, sizeof handle, "%llX",
                      static_cast<unsigned long long>(WriteContext::handleOf(obj.objectId())));
        throw std::runtime_error(db::wideToUtf8(obj.isA()->dxfName()) + " " + handle +
                                 ": kplan cannot write this kind of object to DXF");
    }
    if (const std::string* packed = obj.packedXdata()) {
        writePackedXdata(ctx_, *packed);
    } else {
        writeValues(ctx_, obj.xdataValues());
    }
}

void Saver::synthTable(const std::string& name) {
    TagWriter& out = ctx_.out;
    std::uint64_t head = fresh();
    out.text(0, "TABLE");
    out.text(2, name);
    out.handle(5, head);
    out.handle(330, 0);
    out.text(100, "AcDbSymbolTable");
    out.integer(70, name == "VPORT" || name == "STYLE" ? 1 : 0);
    if (name == "DIMSTYLE") {
        out.text(100, "AcDbDimStyleTable");
        out.integer(71, 0);
    }
    if (name == "VPORT") {
        const AcDbDatabase::View& v = database_.view();
        out.text(0, "VPORT");
        out.handle(5, fresh());
        out.handle(330, head);
        out.text(100, "AcDbSymbolTableRecord");
        out.text(100, "AcDbViewportTableRecord");
        out.text(2, "*Active");
        out.integer(70, 0);
        out.point(10, 0, 0);
        out.point(11, 1, 1);
        out.point(12, v.centerX, v.centerY);
        out.point(13, 0, 0);
        out.point(14, 10, 10);
        out.point(15, 10, 10);
        out.point(16, 0, 0, 1);
        out.point(17, 0, 0, 0);
        out.real(40, v.height);
        out.real(41, v.aspect);
        out.real(42, 50);
        out.real(43, 0);
        out.real(44, 0);
        out.real(50, 0);
        out.real(51, 0);
    } else if (name == "STYLE") {
        out.text(0, "STYLE");
        out.handle(5, fresh());
        out.handle(330, head);
        out.text(100, "AcDbSymbolTableRecord");
        out.text(100, "AcDbTextStyleTableRecord");
        out.text(2, "Standard");
        out.integer(70, 0);
        out.real(40, 0);
        out.real(41, 1);
        out.real(50, 0);
        out.integer(71, 0);
        out.real(42, 2.5);
        out.text(3, "txt");
        out.text(4, "");
    }
    out.text(0, "ENDTAB");
}

void Saver::writeTable(const std::string& name, AcDbObjectId headId) {
    const AcDbObject* head = arx::peekObject(headId);
    writeObject(*head, &name);
    if (auto* typed = AcDbSymbolTable::cast(head)) {
        for (AcDbObjectId id : typed->recordIds()) {
            if (live(id)) writeObject(*arx::peekObject(id));
        }
        // Into the first application table only: a file may bring the table twice.
        if (AcDbRegAppTable::cast(head) && !missingAppsWritten_) {
            missingAppsWritten_ = true;
            for (const std::wstring& app : missingApps_) {
                TagWriter& out = ctx_.out;
                out.text(0, "APPID");
                out.handle(5, fresh());
                out.handle(330, headId.handle().value());
                out.text(100, "AcDbSymbolTableRecord");
                out.text(100, "AcDbRegAppTableRecord");
                ctx_.text(2, app);
                out.integer(70, 0);
            }
        }
    } else if (file_) {
        auto it = file_->tableRecords.find(headId.stub());
        if (it != file_->tableRecords.end()) {
            for (AcDbObjectId id : it->second) {
                if (live(id)) writeObject(*arx::peekObject(id));
            }
        }
    }
    ctx_.out.text(0, "ENDTAB");
}

std::vector<std::pair<std::string, AcDbObjectId>> Saver::tableOrder() const {
    std::vector<std::pair<std::string, AcDbObjectId>> order;
    if (file_) {
        for (AcDbObjectId id : file_->tables) {
            if (!live(id)) continue;
            const AcDbObject* head = arx::peekObject(id);
            const Codec* codec = codecOf(*head);
            auto name = file_->tableNames.find(id.stub());
            if (codec) {
                order.emplace_back(std::string(codec->dxfName), id);
            } else if (name != file_->tableNames.end()) {
                order.emplace_back(name->second, id);
            }
        }
    }
    const std::pair<const char*, AcDbObjectId> typed[] = {
        {"LTYPE", database_.linetypeTableId()},
        {"LAYER", database_.layerTableId()},
        {"APPID", database_.regAppTableId()},
        {"BLOCK_RECORD", database_.blockTableId()},
    };
    for (const char* name : kStandardTables) {
        bool present = false;
        for (const auto& entry : order)
            present = present || entry.first == name;
        if (present) continue;
        AcDbObjectId id;
        for (const auto& [typedName, typedId] : typed) {
            if (std::strcmp(typedName, name) == 0) id = typedId;
        }
        order.emplace_back(name, id);
    }
    auto rank = [](const std::string& name) {
        for (std::size_t i = 0; i < std::size(kStandardTables); ++i) {
            if (name == kStandardTables[i]) return static_cast<int>(i);
        }
        return static_cast<int>(std::size(kStandardTables));
    };
    // Files keep this order; one that lacked a table gets it in its place.
    std::stable_sort(order.begin(), order.end(),
                     [&](const auto& a, const auto& b) { return rank(a.first) < rank(b.first); });
    return order;
}

std::vector<AcDbObjectId> Saver::blockOrder() const {
    auto* table = arx::peek<AcDbBlockTable>(database_.blockTableId());
    std::vector<AcDbObjectId> order;
    std::unordered_set<const db::Stub*> listed;
    if (file_) {
        for (AcDbObjectId id : file_->blocks) {
            if (live(id) && listed.insert(id.stub()).second) order.push_back(id);
        }
    }
    if (table) {
        for (AcDbObjectId id : table->recordIds()) {
            if (live(id) && listed.insert(id.stub()).second) order.push_back(id);
        }
    }
    // A record whose name a damaged file did not give has no block a reader could find.
    std::erase_if(order, [this](AcDbObjectId id) {
        auto* record = arx::peek<AcDbBlockTableRecord>(id);
        return record == nullptr || (record->nameText().empty() && !live(blockEnds(id).first));
    });
    return order;
}

std::pair<AcDbObjectId, AcDbObjectId> Saver::blockEnds(AcDbObjectId record) const {
    if (file_) {
        auto it = file_->blockEnds.find(record.stub());
        if (it != file_->blockEnds.end()) return it->second;
    }
    return {};
}

void Saver::writeTables() {
    TagWriter& out = ctx_.out;
    out.text(0, "SECTION");
    out.text(2, "TABLES");
    for (const auto& [name, id] : tableOrder()) {
        if (live(id)) {
            writeTable(name, id);
        } else {
            synthTable(name);
        }
    }
    out.text(0, "ENDSEC");
}

// The objects an entity owns and the SEQEND that ends them, made up when the owner
// was built in memory without one.
void Saver::writeSequence(const AcDbEntity& owner, const std::vector<AcDbObjectId>& children,
                          AcDbObjectId seqend) {
    for (AcDbObjectId child : children)
        writeObject(*arx::peekObject(child));
    if (live(seqend)) {
        writeObject(*arx::peekObject(seqend));
        return;
    }
    TagWriter& out = ctx_.out;
    out.text(0, "SEQEND");
    out.handle(5, fresh());
    out.handle(330, owner.objectId().handle().value());
    out.text(100, "AcDbEntity");
    ctx_.text(8, owner.layerName());
}

void Saver::writeEntityTree(AcDbObjectId id) {
    if (!live(id)) return;
    const AcDbObject* obj = arx::peekObject(id);
    writeObject(*obj);
    if (auto* pline = AcDb2dPolyline::cast(obj)) {
        writeSequence(*pline, pline->vertexIds(), pline->sequenceEndId());
    } else if (auto* reference = AcDbBlockReference::cast(obj)) {
        std::vector<AcDbObjectId> attributes = reference->attributeIds();
        // A reference read with a SEQEND and no attributes (66 1 alone) keeps its SEQEND.
        if (!attributes.empty() || live(reference->sequenceEndId()))
            writeSequence(*reference, attributes, reference->sequenceEndId());
    } else if (const ObjectRecord* record = ctx_.record(obj)) {
        for (AcDbObjectId child : record->children) {
            if (live(child)) writeObject(*arx::peekObject(child));
        }
    }
}

void Saver::writeBlocks() {
    TagWriter& out = ctx_.out;
    out.text(0, "SECTION");
    out.text(2, "BLOCKS");
    for (AcDbObjectId recordId : blockOrder()) {
        auto* record = arx::peek<AcDbBlockTableRecord>(recordId);
        if (record == nullptr) continue;
        std::pair<AcDbObjectId, AcDbObjectId> ends = blockEnds(recordId);
        bool paper = recordId == database_.paperSpaceId();
        if (live(ends.first)) {
            writeObject(*arx::peekObject(ends.first));
        } else {
            out.text(0, "BLOCK");
            out.handle(5, fresh());
            out.handle(330, recordId.handle().value());
            out.text(100, "AcDbEntity");
            if (paper) out.integer(67, 1);
            out.text(8, "0");
            out.text(100, "AcDbBlockBegin");
            ctx_.text(2, record->nameText());
            out.integer(70, 0);
            AcGePoint3d o = record->origin();
            out.point(10, o.x, o.y, o.z);
            ctx_.text(3, record->nameText());
            out.text(1, "");
        }
        if (recordId != database_.modelSpaceId() && !paper) {
            for (AcDbObjectId id : record->entityIds()) {
                if (!entitiesSection_.count(id.stub())) writeEntityTree(id);
            }
        }
        if (live(ends.second)) {
            writeObject(*arx::peekObject(ends.second));
        } else {
            out.text(0, "ENDBLK");
            out.handle(5, fresh());
            out.handle(330, recordId.handle().value());
            out.text(100, "AcDbEntity");
            if (paper) out.integer(67, 1);
            out.text(8, "0");
            out.text(100, "AcDbBlockEnd");
        }
    }
    out.text(0, "ENDSEC");
}

void Saver::writeEntities() {
    TagWriter& out = ctx_.out;
    out.text(0, "SECTION");
    out.text(2, "ENTITIES");
    AcDbObjectId spaces[] = {database_.modelSpaceId(), database_.paperSpaceId()};
    if (file_) {
        for (AcDbObjectId id : file_->entities) {
            if (live(id) && entitiesSection_.count(id.stub())) writeEntityTree(id);
        }
    }
    for (AcDbObjectId space : spaces) {
        auto* record = arx::peek<AcDbBlockTableRecord>(space);
        if (record == nullptr) continue;
        for (AcDbObjectId id : record->entityIds()) {
            if (!written_.count(id.stub())) writeEntityTree(id);
        }
    }
    out.text(0, "ENDSEC");
}

void Saver::writeObjects() {
    TagWriter& out = ctx_.out;
    out.text(0, "SECTION");
    out.text(2, "OBJECTS");
    // The root dictionary comes first; readers take the first object for it.
    if (live(database_.namedObjectsDictionaryId())) {
        writeObject(*arx::peekObject(database_.namedObjectsDictionaryId()));
    }
    if (file_) {
        for (AcDbObjectId id : file_->objects) {
            if (live(id) && !written_.count(id.stub())) writeObject(*arx::peekObject(id));
        }
    }
    // Heads and records of the tables the host does not model belong to TABLES, even
    // when a file put OBJECTS first.
    std::unordered_set<const db::Stub*> tabled;
    if (file_) {
        for (AcDbObjectId id : file_->tables)
            tabled.insert(id.stub());
        for (const auto& [head, records] : file_->tableRecords) {
            for (AcDbObjectId id : records)
                tabled.insert(id.stub());
        }
    }
    for (const db::Stub& stub : database_.stubs()) {
        auto* obj = static_cast<const AcDbObject*>(stub.object.get());
        if (obj == nullptr || stub.erased || written_.count(&stub) || tabled.count(&stub)) continue;
        if (AcDbEntity::cast(obj) || AcDbSymbolTable::cast(obj) ||
            AcDbSymbolTableRecord::cast(obj)) {
            continue;
        }
        writeObject(*obj);
    }
    out.text(0, "ENDSEC");
}

void Saver::writeKept(const std::string& name) {
    if (!file_) return;
    for (const FileData::Section& section : file_->keptSections) {
        if (section.name != name) continue;
        ctx_.out.text(0, "SECTION");
        ctx_.out.text(2, name);
        for (const AcDbRawTag& t : section.tags)
            ctx_.raw(t);
        ctx_.out.text(0, "ENDSEC");
    }
}

bool Saver::run() {
    struct Bar {
        bool& shown;
        ~Bar() {
            if (shown) db::progressSink().end();
            shown = false;
        }
    } bar{progressShown_};
    if (!progressMessage_.empty()) {
        // Every object is written once at most: the stubs bound the steps.
        db::progressSink().start(progressMessage_, static_cast<long>(database_.stubs().size()));
        progressShown_ = true;
    }
    plan();
    std::vector<std::string> order;
    if (file_) order = file_->sectionOrder;
    static const char* const kOrder[] = {"HEADER", "CLASSES",  "TABLES",
                                         "BLOCKS", "ENTITIES", "OBJECTS"};
    for (const char* name : kOrder) {
        if (std::find(order.begin(), order.end(), name) != order.end()) continue;
        if (std::string(name) == "CLASSES") continue;  // nothing to say
        order.push_back(name);
    }
    // The sections a drawing has go in the order readers expect (a file may have had
    // ENTITIES first, or none but ENTITIES); others stay after the one they followed.
    auto rank = [](const std::string& name) {
        for (std::size_t i = 0; i < std::size(kOrder); ++i) {
            if (name == kOrder[i]) return static_cast<int>(i) * 2;
        }
        return -1;
    };
    std::vector<std::pair<int, std::string>> ranked;
    int last = 1;  // a section before any known one goes after the HEADER
    for (const std::string& name : order) {
        int r = rank(name);
        if (r >= 0) last = r;
        ranked.emplace_back(r >= 0 ? r : last + 1, name);
    }
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    order.clear();
    for (auto& [r, name] : ranked)
        order.push_back(std::move(name));
    std::unordered_set<std::string> done;
    for (const std::string& name : order) {
        if (!done.insert(name).second) continue;
        if (name == "HEADER") {
            writeHeader();
        } else if (name == "TABLES") {
            writeTables();
        } else if (name == "BLOCKS") {
            writeBlocks();
        } else if (name == "ENTITIES") {
            writeEntities();
        } else if (name == "OBJECTS") {
            writeObjects();
        } else {
            writeKept(name);
        }
    }
    ctx_.out.text(0, "EOF");
    return ctx_.out.flush() && nextHandle_ <= handseed_;
}

// progress: the name the progress bar shows; empty for none.
bool writeTo(const AcDbDatabase& database, TagWriter& out, std::string& error,
             const SaveOptions& options, const std::string& progress = {}) {
    const std::string& v = options.version;
    if (!v.empty() && !(v == "AC1015" || v == "AC1018" || v == "AC1021" || v == "AC1024" ||
                        v == "AC1027" || v == "AC1032")) {
        error = "cannot write DXF version " + v + " (AC1015 to AC1032 are written)";
        return false;
    }
    Saver saver(database, out, options);
    if (!progress.empty()) saver.showProgress(L"保存 " + db::utf8ToWide(progress));
    if (!saver.run()) {
        if (error.empty()) error = "the drawing could not be written";
        return false;
    }
    return true;
}

#ifdef _WIN32
// The message of the system's last error.
std::string windowsError(const std::string& what) {
    return what + ": " + std::system_category().message(static_cast<int>(GetLastError()));
}
#else
std::string systemError(const std::string& what, int code) {
    return what + ": " + std::strerror(code);
}
#endif

}  // namespace

bool write(const AcDbDatabase& database, std::ostream& out, std::string& error,
           const SaveOptions& options) {
    try {
        error.clear();
        TagWriter writer([&](std::string_view bytes) {
            out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
            return static_cast<bool>(out);
        });
        if (!writeTo(database, writer, error, options)) {
            if (!out) error = "the stream refused the drawing";
            return false;
        }
        return true;
    } catch (const std::bad_alloc&) {
        error = "not enough memory to write the drawing";
    } catch (const std::exception& e) {
        error = e.what();
    }
    return false;
}

#ifdef _WIN32
// The same steps with the platform's calls: a new file beside the target, written and
// flushed, the previous file kept as the backup, then renamed over the target.
bool save(const AcDbDatabase& database, const std::string& named, std::string& error,
          const SaveOptions& options) {
    namespace fs = std::filesystem;
    std::wstring tmp;
    HANDLE file = INVALID_HANDLE_VALUE;
    try {
        error.clear();
        std::error_code linkError;
        const fs::path target = fs::is_symlink(db::utf8Path(named), linkError)
                                    ? fs::weakly_canonical(db::utf8Path(named))
                                    : db::utf8Path(named);
        const std::string path = db::utf8Name(target);
        const fs::path folder = target.parent_path().empty() ? fs::path(".") : target.parent_path();
        const DWORD folderAttributes = GetFileAttributesW(folder.c_str());
        if (folderAttributes == INVALID_FILE_ATTRIBUTES ||
            !(folderAttributes & FILE_ATTRIBUTE_DIRECTORY)) {
            error = windowsError(path + ": cannot save into " + db::utf8Name(folder));
            return false;
        }
        const DWORD attributes = GetFileAttributesW(target.c_str());
        const bool exists = attributes != INVALID_FILE_ATTRIBUTES;
        if (exists && (attributes & FILE_ATTRIBUTE_DIRECTORY)) {
            error = path + ": not a regular file";
            return false;
        }
        if (exists && (attributes & FILE_ATTRIBUTE_READONLY)) {
            error = path + ": the file is read-only";
            return false;
        }
        const std::wstring stem = (folder / (L"." + target.filename().wstring())).wstring();
        for (unsigned attempt = 0; file == INVALID_HANDLE_VALUE && attempt < 100; ++attempt) {
            tmp = stem + L"." + std::to_wstring(GetCurrentProcessId()) + L"-" +
                  std::to_wstring(attempt);
            file = CreateFileW(tmp.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                               FILE_ATTRIBUTE_NORMAL, nullptr);
            if (file == INVALID_HANDLE_VALUE && GetLastError() != ERROR_FILE_EXISTS) break;
        }
        if (file == INVALID_HANDLE_VALUE) {
            error = windowsError(path + ": cannot create a file in " + db::utf8Name(folder));
            tmp.clear();
            return false;
        }
        bool writeFailed = false;
        TagWriter writer([&](std::string_view bytes) {
            while (!bytes.empty()) {
                const DWORD chunk =
                    static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1u << 30));
                DWORD written = 0;
                if (!WriteFile(file, bytes.data(), chunk, &written, nullptr) || written == 0) {
                    writeFailed = true;
                    return false;
                }
                bytes.remove_prefix(written);
            }
            return true;
        });
        bool ok = writeTo(database, writer, error, options, named);
        if (!ok && writeFailed) error = windowsError(path + ": the drawing could not be written");
        if (ok && !FlushFileBuffers(file)) {
            error = windowsError(path + ": the drawing could not be flushed to disk");
            ok = false;
        }
        CloseHandle(file);
        file = INVALID_HANDLE_VALUE;
        if (ok && exists) {
            // The previous file stays as the backup: a second name for the same bytes.
            const std::wstring backup = target.wstring() + L".bak";
            DeleteFileW(backup.c_str());
            if (!CreateHardLinkW(backup.c_str(), target.c_str(), nullptr) &&
                !CopyFileW(target.c_str(), backup.c_str(), FALSE)) {
                error = windowsError(path + ": cannot keep the previous file as " + path + ".bak");
                ok = false;
            }
        }
        if (ok && !MoveFileExW(tmp.c_str(), target.c_str(),
                               MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
            error = windowsError(path + ": cannot replace the file");
            ok = false;
        }
        if (!ok) DeleteFileW(tmp.c_str());
        return ok;
    } catch (const std::exception& e) {
        if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
        if (!tmp.empty()) DeleteFileW(tmp.c_str());
        error = named + ": " + e.what();
    }
    return false;
}
#else
bool save(const AcDbDatabase& database, const std::string& named, std::string& error,
          const SaveOptions& options) {
    namespace fs = std::filesystem;
    std::string tmp;
    int fd = -1;
    try {
        error.clear();
        // A symbolic link stays a link: the file it points to is the one replaced.
        std::error_code linkError;
        const std::string path = fs::is_symlink(named, linkError)
                                     ? fs::weakly_canonical(fs::path(named)).string()
                                     : named;
        fs::path target(path);
        fs::path folder = target.parent_path().empty() ? fs::path(".") : target.parent_path();
        struct stat info;
        if (::stat(folder.c_str(), &info) != 0) {
            error = systemError(path + ": cannot save into " + folder.string(), errno);
            return false;
        }
        // Checked by mode as well, since the super-user is not refused by the system.
        if ((info.st_mode & 0222) == 0) {
            error = path + ": the folder " + folder.string() + " is read-only";
            return false;
        }
        bool exists = ::stat(path.c_str(), &info) == 0;
        if (exists && !S_ISREG(info.st_mode)) {
            error = path + ": not a regular file";
            return false;
        }
        if (exists && (info.st_mode & 0222) == 0) {
            error = path + ": the file is read-only";
            return false;
        }
        // The temporary name is the file's own with a dot before and six characters after,
        // cut short to fit the folder's limit on a name.
        std::string stem = "." + target.filename().string();
        long nameMax = ::pathconf(folder.c_str(), _PC_NAME_MAX);
        std::size_t limit = nameMax > 8 ? static_cast<std::size_t>(nameMax) : 255;
        if (stem.size() + 7 > limit) stem.resize(limit - 7);
        tmp = (folder / (stem + ".XXXXXX")).string();
        fd = ::mkstemp(tmp.data());
        if (fd < 0) {
            std::string reason =
                systemError(path + ": cannot create a file in " + folder.string(), errno);
            tmp.clear();
            error = reason;
            return false;
        }
        int writeErrno = 0;
        TagWriter writer([&](std::string_view bytes) {
            while (!bytes.empty()) {
                ssize_t n = ::write(fd, bytes.data(), bytes.size());
                if (n < 0) {
                    if (errno == EINTR) continue;
                    writeErrno = errno;
                    return false;
                }
                bytes.remove_prefix(static_cast<std::size_t>(n));
            }
            return true;
        });
        bool ok = writeTo(database, writer, error, options, named);
        if (!ok && writeErrno)
            error = systemError(path + ": the drawing could not be written", writeErrno);
        if (ok && ::fsync(fd) != 0) {
            error = systemError(path + ": the drawing could not be flushed to disk", errno);
            ok = false;
        }
        if (ok) {
            // A new drawing gets the permissions any program's new file gets, not the
            // private ones of the temporary file.
            mode_t mask = ::umask(0);
            ::umask(mask);
            ::fchmod(fd, exists ? info.st_mode & 07777 : 0666 & ~mask);
        }
        if (::close(fd) != 0 && ok) {
            error = systemError(path + ": the drawing could not be written", errno);
            ok = false;
        }
        fd = -1;
        if (ok && exists) {
            // The previous file stays as the backup: a second name for the same bytes.
            std::string backup = path + ".bak";
            ::unlink(backup.c_str());
            if (::link(path.c_str(), backup.c_str()) != 0) {
                std::error_code ec;
                fs::copy_file(target, backup, fs::copy_options::overwrite_existing, ec);
                if (ec) {
                    error =
                        path + ": cannot keep the previous file as " + backup + ": " + ec.message();
                    ok = false;
                }
            }
        }
        if (ok && ::rename(tmp.c_str(), path.c_str()) != 0) {
            error = systemError(path + ": cannot replace the file", errno);
            ok = false;
        }
        if (!ok) {
            ::unlink(tmp.c_str());
            return false;
        }
        int dir = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY);
        if (dir >= 0) {
            ::fsync(dir);
            ::close(dir);
        }
        return true;
    } catch (const std::exception& e) {
        if (fd >= 0) ::close(fd);
        if (!tmp.empty()) ::unlink(tmp.c_str());
        error = named + ": " + e.what();
    }
    return false;
}
#endif

DrawingInfo drawingInfo(const AcDbDatabase& database) {
    DrawingInfo info;
    const auto* file = dynamic_cast<const FileData*>(database.fileData());
    FileData defaults;
    if (file == nullptr) file = &defaults;
    info.version = file->version;
    info.codePage = file->codePage;
    info.insUnits = file->insUnits;
    const AcDbDatabase::View& view = database.view();
    info.viewCenterX = view.centerX;
    info.viewCenterY = view.centerY;
    info.viewHeight = view.height;
    info.viewAspect = view.aspect;
    info.hasView = view.known;
    return info;
}

namespace {
FileData& fileDataOf(AcDbDatabase& database) {
    auto* file = dynamic_cast<FileData*>(database.fileData());
    if (file == nullptr) {
        database.setFileData(std::make_unique<FileData>());
        file = static_cast<FileData*>(database.fileData());
    }
    return *file;
}
}  // namespace

void setView(AcDbDatabase& database, double centerX, double centerY, double height, double aspect) {
    database.setView({centerX, centerY, height, aspect, true});
}

void setInsUnits(AcDbDatabase& database, int units) {
    fileDataOf(database).insUnits = units;
}

}  // namespace dxf
