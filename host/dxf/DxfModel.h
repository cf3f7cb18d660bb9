#pragma once
// What the DXF reader keeps beside the database to write a drawing back as it was
// read, and the contexts the per-class codecs read and write with.
#include <cstdint>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/arx/dbmain.h"
#include "host/arx/dbunknown.h"
#include "host/db/PackedXdata.h"
#include "host/dxf/Dxf.h"
#include "host/dxf/DxfStrings.h"
#include "host/dxf/TagReader.h"
#include "host/dxf/TagWriter.h"

namespace dxf {

// A tag of a known class that no field of the class takes, written back after the
// field it followed (its anchor).
struct Extra {
    int anchor = 0;
    AcDbRawTag tag;
};

// A real as the file wrote it, where the value kept in memory gives another text: an
// angle kept in radians, a normal the object keeps of unit length. Written back as read
// while the object still holds that value.
struct Spelling {
    int code = 0;
    double value = 0;  // as the object holds it
    std::string text;
};

// What one object had in the file beyond its typed state. Objects whose file form is
// exactly what the writer makes of them have none.
struct ObjectRecord {
    std::uint64_t present = 0;  // fields of the class table found in the file
    bool hasPresent = false;
    std::vector<Extra> extras;
    AcDbRawTags appGroups;  // 102 groups other than reactors and extension dictionary
    int handleCode = 5;
    bool dictionaryFirst = false;  // {ACAD_XDICTIONARY came before {ACAD_REACTORS
    // The owner the file named when it is no block an entity can be in (the entity is
    // then in the space its flags say), written back as read.
    std::uint64_t ownerAsRead = 0;
    // The VERTEX/ATTRIB ... SEQEND that follow an entity the host does not model.
    std::vector<AcDbObjectId> children;
    std::vector<Spelling> spellings;
    bool empty() const {
        return !hasPresent && extras.empty() && appGroups.empty() && handleCode == 5 &&
               !dictionaryFirst && children.empty() && spellings.empty() && ownerAsRead == 0;
    }
};

class FileData : public db::ObjectBase {
  public:
    std::string version = "AC1024";
    std::string codePage = "ANSI_936";
    int insUnits = 6;

    AcDbRawTags header;  // every header variable, UTF-8
    // Header variables kplan keeps up to date ($INSUNITS, $TILEMODE) that are written
    // as read, their value being no number.
    std::vector<std::string> headerAsRead;
    bool hasHeader = false;
    struct Section {
        std::string name;
        AcDbRawTags tags;  // between "2 NAME" and "0 ENDSEC"
    };
    std::vector<std::string> sectionOrder;
    std::vector<Section> keptSections;  // CLASSES, THUMBNAILIMAGE, ACDSDATA, ...

    std::vector<AcDbObjectId> tables;  // TABLE heads in file order
    std::unordered_map<db::Stub*, std::string> tableNames;
    std::unordered_map<db::Stub*, std::vector<AcDbObjectId>> tableRecords;  // of kept tables
    std::unordered_map<db::Stub*, std::pair<AcDbObjectId, AcDbObjectId>> blockEnds;
    std::vector<AcDbObjectId> blocks;    // block records in the order of BLOCKS
    std::vector<AcDbObjectId> entities;  // ENTITIES in file order
    std::vector<AcDbObjectId> objects;   // OBJECTS in file order
    std::unordered_map<db::Stub*, ObjectRecord> records;
    ReadReport report;

    const ObjectRecord* record(const AcDbObject* obj) const {
        auto it = records.find(obj->stub());
        return it == records.end() ? nullptr : &it->second;
    }
};

// The parts every object has, taken off before its class reads the rest.
struct ParsedObject {
    std::string_view type;
    std::size_t line = 0;
    std::uint64_t handle = 0;
    int handleCode = 5;
    std::uint64_t owner = 0;
    bool hasOwner = false;
    std::uint64_t ownerAsRead = 0;  // see ObjectRecord
    std::vector<std::uint64_t> reactors;
    std::uint64_t extensionDictionary = 0;
    bool dictionaryFirst = false;
    AcDbRawTags appGroups;
    // Views into the object's tags, which live while it is read.
    std::span<const TagView> body;   // after the owner, before the xdata
    std::span<const TagView> xdata;  // from the first 1001
};

// Numbers of tags, tolerant of the padding some writers add. A real is finite and in
// range: "nan", "inf" and "1e400" are refused.
bool parseReal(std::string_view text, double& value);
bool parseInt(std::string_view text, std::int64_t& value);
// Why a tag's text that did not parse is no number: "not a number", "out of range", ...
std::string numberProblem(std::string_view text);

class ReadContext {
  public:
    ReadContext(AcDbDatabase& database, FileData& file, TagReader& reader)
        : database(database), file(file), reader(reader), strings("AC1024", "") {}

    AcDbDatabase& database;
    FileData& file;
    TagReader& reader;
    DxfStrings strings;
    bool r12 = false;
    // For reading back what a field took, to keep a value that did not survive it.
    const class WriteContext* probe = nullptr;

    AcDbObjectId idOf(std::uint64_t handle);
    AcDbObjectId idOf(std::string_view hex) { return idOf(parseHandle(hex)); }
    std::wstring wide(std::string_view bytes) const { return strings.toWide(bytes); }
    std::string utf8(std::string_view bytes) const { return strings.toUtf8(bytes); }
    AcDbRawTag raw(const TagView& tag) const { return {tag.code, utf8(tag.value)}; }
    void keep(ObjectRecord& record, int anchor, const TagView& tag) const {
        record.extras.push_back({anchor, raw(tag)});
    }
    static std::uint64_t parseHandle(std::string_view hex);

    // Numbers of the object being read. One that is not a number (text, out of range,
    // NaN or infinity) is noted as the object's bad number, and the object is then kept
    // as read, or the file refused. An integer written as a real ("1.0", as some writers
    // do) is no bad number: the field does not take it and it is kept as written.
    bool real(const TagView& tag, double& value) {
        if (parseReal(tag.value, value)) return true;
        badNumber(tag);
        return false;
    }
    bool integer(const TagView& tag, std::int64_t& value) {
        if (parseInt(tag.value, value)) return true;
        double real = 0;
        if (!parseReal(tag.value, real)) badNumber(tag);
        return false;
    }
    // Keeps the text of a real whose value in memory (value) is written otherwise.
    static void spell(ObjectRecord& record, const TagView& tag, double value, double written) {
        double read = 0;
        if (!parseReal(tag.value, read) || read == written) return;
        record.spellings.push_back({tag.code, value, std::string(tag.value)});
    }
    void badNumber(const TagView& tag);
    // The first bad number of the object read since the last call, if any: the message
    // without the file name ("line 12: group code 10: ...") and its line.
    bool takeBadNumber(std::size_t& line, std::string& what);

  private:
    std::size_t badLine_ = 0;
    std::string badWhat_;
    bool bad_ = false;
    std::uint64_t lastHandle_ = 0;
    AcDbObjectId lastId_;
};

class WriteContext {
  public:
    WriteContext(const AcDbDatabase& database, const FileData* file, TagWriter& out,
                 DxfStrings strings)
        : database(database), file(file), out(out), strings(std::move(strings)) {}

    const AcDbDatabase& database;
    const FileData* file;
    TagWriter& out;
    DxfStrings strings;

    const ObjectRecord* record(const AcDbObject* obj) const {
        return file ? file->record(obj) : nullptr;
    }
    void text(int code, std::wstring_view value) { out.text(code, strings.fromWide(value)); }
    void textUtf8(int code, std::string_view value) { out.text(code, strings.fromUtf8(value)); }
    void raw(const AcDbRawTag& tag);
    void ref(int code, AcDbObjectId id) { out.handle(code, refOf(id)); }
    // A real the object holds, written as the file had it (see Spelling); written is
    // its text otherwise (an angle in degrees).
    void real(const ObjectRecord* record, int code, double value, double written) {
        if (record != nullptr) {
            for (const Spelling& s : record->spellings) {
                if (s.code == code && s.value == value) {
                    out.text(code, s.text);
                    return;
                }
            }
        }
        out.real(code, written);
    }
    void point(const ObjectRecord* record, int code, double x, double y, double z) {
        if (record == nullptr || record->spellings.empty()) return out.point(code, x, y, z);
        real(record, code, x, x);
        real(record, code + 10, y, y);
        real(record, code + 20, z, z);
    }
    // The handle of a live object; 0 for none and for an object that is gone.
    static std::uint64_t handleOf(AcDbObjectId id);
    // The handle a reference is written with: that of a live object, or the one a file
    // named without holding it (kept as read: another program may hold the object);
    // 0 for none and for an object that was erased.
    static std::uint64_t refOf(AcDbObjectId id);
    void extras(const ObjectRecord* record, int anchor) {
        if (record == nullptr) return;
        for (const Extra& e : record->extras) {
            if (e.anchor == anchor) raw(e.tag);
        }
    }
};

// Xdata and xrecord values between tags and the stored form.
db::ValueList readValues(ReadContext& ctx, const TagView* begin, const TagView* end);
void writeValues(WriteContext& ctx, const db::ValueList& values);

// Xdata as the loader keeps it until used: per tag its code and its text (strings in
// UTF-8, numbers as the file wrote them and checked), packed into one string.
std::string packXdata(ReadContext& ctx, std::span<const TagView> tags);
void unpackXdata(const std::string& packed, db::ValueList& values);
void writePackedXdata(WriteContext& ctx, const std::string& packed);
// Calls f(code, text) for each packed tag.
using db::forEachPacked;

}  // namespace dxf
