#include <algorithm>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>

#include "host/arx/dbblkref.h"
#include "host/arx/dbdict.h"
#include "host/arx/dbents.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"
#include "host/db/GroupCode.h"
#include "host/db/Progress.h"
#include "host/db/TextCodec.h"
#include "host/db/Utf8Path.h"
#include "host/dxf/AttributeCodecs.h"
#include "host/dxf/Codecs.h"
#include "host/dxf/Dxf.h"
#include "host/dxf/DxfModel.h"
#include "host/dxf/HandOff.h"

namespace dxf {

namespace {

std::string_view trimmed(std::string_view s) {
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t'))
        s.remove_suffix(1);
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
        s.remove_prefix(1);
    return s;
}

bool is(const TagView& t, int code, std::string_view value) {
    return t.code == code && trimmed(t.value) == value;
}

bool equalsNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        char x = a[i], y = b[i];
        if (x >= 'a' && x <= 'z') x = static_cast<char>(x - 'a' + 'A');
        if (y >= 'a' && y <= 'z') y = static_cast<char>(y - 'a' + 'A');
        if (x != y) return false;
    }
    return true;
}

// Names that frame sections, tables and blocks: never an entity or an object.
bool isStructural(const TagView& t) {
    if (t.code != 0) return false;
    std::string_view v = trimmed(t.value);
    return v == "SECTION" || v == "ENDSEC" || v == "EOF" || v == "TABLE" || v == "ENDTAB" ||
           v == "BLOCK" || v == "ENDBLK";
}

std::string describe(const TagView& t) {
    std::string value(t.value.substr(0, 40));
    return "\"" + std::to_string(t.code) + " " + value + "\"";
}

// Whole entities read ahead: their tags one after another, where each object starts
// among them, and where each entity starts among the objects. An entity is one
// object, or a POLYLINE or an INSERT with attributes and what follows it to SEQEND.
struct EntityBatch {
    std::vector<TagView> tags;
    std::vector<std::size_t> objects;
    std::vector<std::size_t> entities;
    std::uint64_t firstChunk = 0;  // of the reader, where the first tag lies
    std::uint64_t bytesRead = 0;   // of the file, once the batch was filled
    bool ended = false;            // by "0 ENDSEC"
    bool failed = false;           // the reader's error says why

    void clear() {
        tags.clear();
        objects.clear();
        entities.clear();
        ended = failed = false;
    }
    std::span<const TagView> object(std::size_t i) const {
        std::size_t end = i + 1 < objects.size() ? objects[i + 1] : tags.size();
        return {tags.data() + objects[i], end - objects[i]};
    }
    std::size_t entityEnd(std::size_t e) const {
        return e + 1 < entities.size() ? entities[e + 1] : objects.size();
    }
};

// From this size on, the entities of a drawing are made on a second core while the
// first reads on, unless the caller says otherwise: below it a thread costs more than
// it saves.
constexpr std::uint64_t kReadAsideFrom = 1 << 20;
// Tags per batch: enough to make the hand-over rare, few enough to keep little of the
// file in memory.
constexpr std::size_t kBatchTags = 1 << 14;

class Loader {
  public:
    Loader(std::istream& in, const std::string& name, AcDbDatabase& database)
        : in_(in),
          reader_(in, name),
          database_(database),
          file_(std::make_unique<FileData>()),
          ctx_(database, *file_, reader_),
          probe_(database, file_.get(), nullWriter_, DxfStrings("AC1024", "")) {
        ctx_.probe = &probe_;
        // A file without a header: UTF-8 where its bytes are, else the Chinese code page.
        ctx_.strings = DxfStrings(file_->version, file_->codePage);
    }

    bool run();
    const std::string& error() const { return reader_.error(); }
    TagReader& reader() { return reader_; }
    // The size of the file, when known: with $HANDSEED it sizes the handle index.
    void setFileSize(std::uint64_t bytes) { fileSize_ = bytes; }
    void setThreads(int threads) { threads_ = threads; }
    void setRecover(bool recover) { recover_ = recover; }
    void setCodePage(const std::string& codePage) { codePageOption_ = codePage; }

  private:
    bool next(TagView& t) {
        if (hasPending_) {
            t = pending_;
            hasPending_ = false;
            return true;
        }
        return reader_.next(t);
    }
    void unread(const TagView& t) {
        pending_ = t;
        hasPending_ = true;
    }
    bool fail(std::size_t line, const std::string& what) {
        reader_.fail(line, what);
        return false;
    }
    bool failAtEnd(const std::string& expected) {
        if (reader_.failed()) return false;
        return fail(reader_.line() + 1, "expected " + expected + ", found the end of the file");
    }
    // The end of the file where expected was due: with recover, what was read stands
    // (a warning says so); else the error.
    bool endsHere(const std::string& expected) {
        if (reader_.failed()) return false;
        if (!recover_) return failAtEnd(expected);
        warn(reader_.line() + 1, "the file ends without " + expected + ": what was read stands");
        return true;
    }
    // A section left without its "0 ENDSEC" where the next section or the end begins:
    // with recover, the section ends there (t is read again).
    bool sectionCutShort(const TagView& t) {
        if (!recover_ || !(is(t, 0, "SECTION") || is(t, 0, "EOF"))) return false;
        warn(t.line, "no \"0 ENDSEC\" before " + describe(t) + ": the section ends there");
        unread(t);
        return true;
    }
    // The tags of one object, from its "0 TYPE" to before the next 0; collectInto adds
    // them to what tags holds.
    bool collect(const TagView& first, std::vector<TagView>& tags, const char* sectionEnd) {
        tags.clear();
        return collectInto(first, tags, sectionEnd);
    }
    bool collectInto(const TagView& first, std::vector<TagView>& tags, const char* sectionEnd);
    void parse(std::span<const TagView> tags, ParsedObject& parsed) const;

    bool readHeader();
    bool readKeptSection(const std::string& name);
    bool readTables();
    bool readBlocks();
    bool readEntities();
    bool readObjects();
    bool finish();

    // Whether a number of the object just read was not one: then, with recover, a
    // warning; without, the error the load fails with at the next check.
    bool badNumberIn(const ParsedObject& parsed);
    // False, with the reader failed, once a number was not one in a strict read.
    bool numbersOk() {
        if (numberError_.empty()) return true;
        reader_.fail(numberErrorLine_, numberError_);
        return false;
    }
    // Called by the thread that reads and the one that makes objects.
    void warn(std::size_t line, const std::string& what) {
        std::lock_guard<std::mutex> lock(warningsMutex_);
        warnings_.emplace_back(line, reader_.where(line) + ": " + what);
    }
    // Says that the object read with a handle already taken got the one of id.
    void renumbered(const ParsedObject& parsed, AcDbObjectId id);
    // The numbers of the objects of a POLYLINE's run to SEQEND, xdata included, checked
    // before they are made, so that the run is kept as read as a whole.
    bool treeNumbersOk(const EntityBatch& batch, std::size_t first, std::size_t end);
    // Makes the object from its tags and places it at its handle.
    AcDbObjectId place(ParsedObject& parsed, bool entity, AcDbObjectId defaultOwner,
                       const Codec* codec);
    // An entity and, for POLYLINE and INSERT with attributes, what follows it to SEQEND:
    // its tags are gathered into a batch, and the batch's entities made into objects.
    bool readEntity(const TagView& first, AcDbObjectId defaultOwner, AcDbObjectId& id);
    bool gatherEntity(const TagView& first, EntityBatch& batch);
    AcDbObjectId placeEntity(const EntityBatch& batch, std::size_t entity,
                             AcDbObjectId defaultOwner);
    void placeModelSpaceBatch(const EntityBatch& batch);
    // Reading on a second thread, the gatherer, while this one makes the objects.
    bool readEntitiesAside(HandOff<EntityBatch>& gatherer);
    void gatherBatch(EntityBatch& batch);
    void ensureBlockTable();
    void setWellKnown() {
        database_.setWellKnownIds(blockTable_, layerTable_, appTable_, linetypeTable_,
                                  namedObjects_, modelSpace_, paperSpace_);
    }

    // Keeps the handles of the file free before the loader makes anything: the objects
    // it adds and those the file gave no handle get handles the file does not use.
    void reserveHandles();
    // Decides the code page of the strings once, before the first string is read: the
    // option's, the file's, else one guessed from the bytes of the whole file.
    void decideCodePage(const std::string& declared);

    std::istream& in_;
    TagReader reader_;
    AcDbDatabase& database_;
    std::unique_ptr<FileData> file_;
    ReadContext ctx_;
    TagWriter nullWriter_{[](std::string_view) { return true; }};
    WriteContext probe_;
    TagView pending_;
    bool hasPending_ = false;
    std::vector<TagView> tags_;
    ParsedObject parsed_;
    EntityBatch entity_;               // readEntity's
    ParsedObject gathered_;            // gatherEntity's, on the reading thread
    bool gatherDone_ = false;          // the gatherer met the end of the section or an error
    std::uint64_t gatheredChunk_ = 0;  // first chunk of the batch filled last
    ParsedObject placing_, child_;     // placeEntity's, on the thread that makes objects
    std::uint64_t handseed_ = 0;
    std::uint64_t fileSize_ = 0;
    int threads_ = 1;  // that read the entities
    bool recover_ = false;
    std::mutex warningsMutex_;
    std::vector<std::pair<std::size_t, std::string>> warnings_;  // with their lines
    std::string codePageOption_;
    bool codePageDecided_ = false;
    bool handlesReserved_ = false;
    std::size_t numberErrorLine_ = 0;
    std::string numberError_;  // the first number that was not one, in a strict read
    std::vector<AcDbObjectId> keptAsRead_;
    bool treeKept_ = false;  // the run being placed is kept as read for a number
    int tilemode_ = 1;
    std::wstring clayer_;
    AcDbObjectId blockTable_, layerTable_, appTable_, linetypeTable_, namedObjects_, modelSpace_,
        paperSpace_;
};

// R12 writers put the handle after the layer ("0 LINE", "8 0", "5 2A"): it is moved
// to the head, where the reader takes handles, and where the writer writes them. The 5
// of a DIMSTYLE is its arrow block, not a handle (its handle is 105).
void handleToHead(std::vector<TagView>& tags, std::size_t start) {
    std::size_t n = tags.size();
    if (n < start + 3 || tags[start + 1].code == 5 || tags[start + 1].code == 105) return;
    std::string_view type = trimmed(tags[start].value);
    if (type == "DIMSTYLE" || type == "TABLE") return;  // a TABLE's name comes first
    for (std::size_t k = start + 2; k < n; ++k) {
        int code = tags[k].code;
        if (code == 100 || code == 102 || code == 105 || code >= 1000) return;
        if (code == 5) {
            std::rotate(tags.begin() + static_cast<std::ptrdiff_t>(start + 1),
                        tags.begin() + static_cast<std::ptrdiff_t>(k),
                        tags.begin() + static_cast<std::ptrdiff_t>(k + 1));
            return;
        }
    }
}

bool Loader::collectInto(const TagView& first, std::vector<TagView>& tags, const char* sectionEnd) {
    std::size_t start = tags.size();
    tags.push_back(first);
    // Read straight into the list: a tag copied in from a local is reloaded before its
    // stores have landed, which costs more than the reading itself.
    for (;;) {
        TagView& t = tags.emplace_back();
        if (!next(t)) break;
        if (t.code == 0) {
            unread(t);
            tags.pop_back();
            handleToHead(tags, start);
            return true;
        }
    }
    tags.pop_back();
    handleToHead(tags, start);
    // With recover, the enclosing section says that the file ended.
    if (recover_ && !reader_.failed()) return true;
    return failAtEnd(std::string("\"0 ") + sectionEnd + "\"");
}

// The reactors of a {ACAD_REACTORS group from begin to end into p; false, with none
// taken, when one is named twice.
bool takeReactors(std::span<const TagView> tags, std::size_t begin, std::size_t end,
                  ParsedObject& p) {
    std::size_t first = p.reactors.size();
    for (std::size_t k = begin; k < end; ++k) {
        if (tags[k].code != 330) continue;
        std::uint64_t h = ReadContext::parseHandle(tags[k].value);
        if (std::find(p.reactors.begin() + static_cast<std::ptrdiff_t>(first), p.reactors.end(),
                      h) != p.reactors.end()) {
            p.reactors.resize(first);
            return false;
        }
        p.reactors.push_back(h);
    }
    return true;
}

void Loader::parse(std::span<const TagView> tags, ParsedObject& p) const {
    p.type = trimmed(tags[0].value);
    p.line = tags[0].line;
    p.handle = 0;
    p.handleCode = 5;
    p.owner = 0;
    p.hasOwner = false;
    p.ownerAsRead = 0;
    p.reactors.clear();
    p.extensionDictionary = 0;
    p.dictionaryFirst = false;
    p.appGroups.clear();
    p.body = {};
    p.xdata = {};
    std::size_t i = 1, n = tags.size();
    bool handled = false;
    while (i < n) {
        const TagView& t = tags[i];
        if ((t.code == 5 || t.code == 105) && !handled) {
            p.handle = ReadContext::parseHandle(t.value);
            p.handleCode = t.code;
            handled = true;
            ++i;
        } else if (t.code == 102 && !t.value.empty() && t.value[0] == '{') {
            std::string_view group = trimmed(t.value);
            std::size_t close = i + 1;
            while (close < n && !(tags[close].code == 102 && trimmed(tags[close].value) == "}"))
                ++close;
            // A reactor named twice is no second reactor: such a group is kept as read.
            if (group == "{ACAD_REACTORS" && takeReactors(tags, i + 1, close, p)) {
                i = close < n ? close + 1 : n;
                continue;
            }
            if (group == "{ACAD_XDICTIONARY") {
                p.dictionaryFirst = p.reactors.empty();
                for (std::size_t k = i + 1; k < close; ++k) {
                    if (tags[k].code == 360) {
                        p.extensionDictionary = ReadContext::parseHandle(tags[k].value);
                    }
                }
            } else {
                for (std::size_t k = i; k < close && k < n; ++k)
                    p.appGroups.push_back(ctx_.raw(tags[k]));
                if (close < n) p.appGroups.push_back(ctx_.raw(tags[close]));
            }
            i = close < n ? close + 1 : n;  // a group left open runs to the end
        } else if (t.code == 330 && !p.hasOwner) {
            p.owner = ReadContext::parseHandle(t.value);
            p.hasOwner = true;
            ++i;
            break;
        } else {
            break;
        }
    }
    std::size_t x = i;
    while (x < n && tags[x].code != 1001)
        ++x;
    p.body = std::span<const TagView>(tags.data() + i, x - i);
    p.xdata = std::span<const TagView>(tags.data() + x, n - x);
}

bool Loader::badNumberIn(const ParsedObject& p) {
    std::size_t line = 0;
    std::string what;
    if (!ctx_.takeBadNumber(line, what)) return false;
    if (treeKept_) return true;  // said once for the whole run
    if (!recover_) {
        if (numberError_.empty()) {
            numberErrorLine_ = line;
            numberError_ = what;
        }
    } else {
        warn(line, what + "; the " + std::string(p.type) + " is kept as read");
    }
    return true;
}

void Loader::renumbered(const ParsedObject& p, AcDbObjectId id) {
    char given[17], taken[17];
    std::snprintf(given, sizeof given, "%llX", static_cast<unsigned long long>(p.handle));
    std::snprintf(taken, sizeof taken, "%llX",
                  static_cast<unsigned long long>(id.handle().value()));
    warn(p.line, "handle " + std::string(given) + " given twice: the " + std::string(p.type) +
                     " takes handle " + taken);
}

bool Loader::treeNumbersOk(const EntityBatch& batch, std::size_t first, std::size_t end) {
    for (std::size_t o = first; o < end; ++o) {
        for (const TagView& t : batch.object(o)) {
            double real = 0;
            std::int64_t whole = 0;
            switch (db::kindOfGroupCode(t.code)) {
                case db::ValueKind::Real:
                case db::ValueKind::Point:
                    if (!ctx_.real(t, real)) return false;
                    break;
                case db::ValueKind::Int16:
                case db::ValueKind::Int32:
                case db::ValueKind::Int64:
                case db::ValueKind::Bool:
                    if (!parseInt(t.value, whole) && !ctx_.real(t, real)) return false;
                    break;
                default:
                    break;
            }
        }
    }
    return true;
}

AcDbObjectId Loader::place(ParsedObject& p, bool entity, AcDbObjectId defaultOwner,
                           const Codec* codec) {
    ObjectRecord record;
    AcDbObject* obj = codec ? codec->read(p, ctx_, record) : nullptr;
    std::string xdata = p.xdata.empty() ? std::string() : packXdata(ctx_, p.xdata);
    bool bad = badNumberIn(p);
    if (bad && obj != nullptr) {
        delete obj;  // a number that is not one: the object is kept as read
        obj = nullptr;
    }
    if (obj == nullptr) {
        record = ObjectRecord();
        AcDbRawTags raw;
        raw.reserve(p.body.size());
        for (const TagView& t : p.body)
            raw.push_back(ctx_.raw(t));
        if (entity) {
            obj = new AcDbUnknownEntity(std::string(p.type), std::move(raw));
        } else {
            obj = new AcDbUnknownObject(std::string(p.type), std::move(raw));
        }
        codec = nullptr;
    }
    obj->setOwnerId(p.hasOwner && p.owner != 0 ? ctx_.idOf(p.owner) : defaultOwner);
    for (std::uint64_t h : p.reactors)
        obj->addPersistentReactor(ctx_.idOf(h));
    if (p.extensionDictionary) obj->setExtensionDictionaryId(ctx_.idOf(p.extensionDictionary));
    if (!p.xdata.empty()) obj->restorePackedXdata(std::move(xdata), &unpackXdata);
    AcDbObjectId id;
    if (database_.restoreObject(id, obj, AcDbHandle(p.handle)) != Acad::eOk) {
        // A handle given twice or none at all: the object gets a fresh one.
        database_.restoreObject(id, obj, AcDbHandle());
        if (p.handle != 0 && recover_) renumbered(p, id);
    }
    if (bad && entity && !treeKept_) keptAsRead_.push_back(id);
    record.handleCode = p.handleCode;
    record.ownerAsRead = entity ? p.ownerAsRead : 0;
    record.dictionaryFirst = p.dictionaryFirst && !p.reactors.empty();
    record.appGroups = std::move(p.appGroups);
    if (codec && record.hasPresent && codec->isCanonical(*obj, probe_, record)) {
        record.hasPresent = false;
        record.present = 0;
        record.extras.clear();
    }
    if (!record.empty()) file_->records[id.stub()] = std::move(record);
    return id;
}

// The code page of a file that names none. Chinese text in GBK is pairs of bytes above
// ASCII (GB2312's characters lie in A1-F7 followed by A1-FE); Western text in ANSI_1252,
// the DXF default, has such bytes one at a time among ASCII. Streams that cannot seek
// keep the default.
std::string guessCodePage(std::istream& in) {
    std::ios::iostate state = in.rdstate();
    in.clear();
    std::istream::pos_type at = in.tellg();
    if (at == std::istream::pos_type(-1)) {
        in.clear(state);
        return "ANSI_1252";
    }
    in.seekg(0);
    std::uint64_t pairs = 0, single = 0;
    int lead = -1;
    // Text that is UTF-8 throughout was written by a program that ignored the code page:
    // read as the DXF default, as other readers read it.
    bool utf8 = true;
    int continuations = 0;
    std::vector<char> buffer(1 << 16);
    while (in.read(buffer.data(), static_cast<std::streamsize>(buffer.size())) || in.gcount() > 0) {
        std::size_t n = static_cast<std::size_t>(in.gcount());
        for (std::size_t i = 0; i < n; ++i) {
            int b = static_cast<unsigned char>(buffer[i]);
            if (continuations > 0) {
                utf8 = utf8 && (b & 0xC0) == 0x80;
                --continuations;
            } else if (b >= 0x80) {
                continuations = b >= 0xC2 && b <= 0xDF ? 1 : b >= 0xE0 && b <= 0xEF ? 2 : 3;
                utf8 = utf8 && b >= 0xC2 && b <= 0xF4;
            }
            if (lead >= 0) {
                if (lead >= 0xA1 && lead <= 0xF7 && b >= 0xA1 && b <= 0xFE) {
                    ++pairs;
                } else {
                    ++single;
                }
                lead = -1;
            } else if (b >= 0x81 && b <= 0xFE) {
                lead = b;
            } else if (b >= 0x80) {
                ++single;
            }
        }
    }
    in.clear();
    in.seekg(at);
    in.clear(state);
    return pairs > 0 && single * 4 <= pairs && !utf8 ? "ANSI_936" : "ANSI_1252";
}

// One past the largest handle a file names (defines or refers to), read ahead in a
// stream that can seek; 0 when it cannot.
std::uint64_t scanHandles(std::istream& in) {
    std::ios::iostate state = in.rdstate();
    in.clear();
    std::istream::pos_type at = in.tellg();
    if (at == std::istream::pos_type(-1)) {
        in.clear(state);
        return 0;
    }
    in.seekg(0);
    std::uint64_t next = 0;
    {
        TagReader scan(in, "");
        TagView t;
        while (scan.next(t)) {
            int c = t.code;
            if (c == 5 || c == 105 || (c >= 320 && c <= 369) || (c >= 390 && c <= 399) ||
                c == 480 || c == 481 || c == 1005) {
                std::uint64_t h = ReadContext::parseHandle(t.value);
                if (h < UINT64_MAX) next = std::max(next, h + 1);
            }
            scan.release();
        }
    }
    in.clear();
    in.seekg(at);
    in.clear(state);
    return next;
}

void Loader::reserveHandles() {
    handlesReserved_ = true;
    if (handseed_ == 0) handseed_ = scanHandles(in_);
    database_.setHandseed(handseed_);
}

void Loader::decideCodePage(const std::string& declared) {
    codePageDecided_ = true;
    if (!codePageOption_.empty()) {
        file_->codePage = codePageOption_;
    } else if (!declared.empty()) {
        file_->codePage = declared;
    } else if (!isUtf8Version(file_->version) || !file_->hasHeader) {
        file_->codePage = guessCodePage(in_);
    }
    ctx_.strings = DxfStrings(file_->version, file_->codePage);
}

bool Loader::readHeader() {
    // Strings of the header can only be decoded once its version and code page are known.
    std::vector<std::pair<int, std::string>> raw;
    std::vector<std::size_t> lines;
    std::string version, codePage;
    TagView t;
    bool ended = false;
    while (next(t)) {
        if (is(t, 0, "ENDSEC")) {
            // Some writers (dxflib) put header variables after the HEADER's ENDSEC.
            TagView after;
            if (recover_ && next(after)) {
                if (after.code == 9) {
                    warn(after.line,
                         "header variables after the HEADER's \"0 ENDSEC\": read "
                         "as part of the HEADER");
                    raw.emplace_back(after.code, std::string(after.value));
                    lines.push_back(after.line);
                    continue;
                }
                unread(after);
            }
            ended = true;
            break;
        }
        if (t.code == 0) {
            if (sectionCutShort(t)) {
                ended = true;
                break;
            }
            return fail(t.line, "expected \"0 ENDSEC\" to end the HEADER, found " + describe(t));
        }
        raw.emplace_back(t.code, std::string(t.value));
        lines.push_back(t.line);
    }
    if (reader_.failed()) return false;
    if (!ended && !endsHere("\"0 ENDSEC\"")) return false;
    for (std::size_t i = 0; i + 1 < raw.size(); ++i) {
        if (raw[i].first != 9) continue;
        std::string_view name = trimmed(raw[i].second);
        std::string_view value = trimmed(raw[i + 1].second);
        if (name == "$ACADVER") version = value;
        if (name == "$DWGCODEPAGE") codePage = value;
        if (name == "$HANDSEED") {
            handseed_ = ReadContext::parseHandle(value);
            // No object takes fewer than some 40 bytes of a file: a seed far beyond what
            // the file can hold reserves nothing it does not need.
            if (fileSize_ > 0) database_.reserve(std::min(handseed_, fileSize_ / 40));
            // Kept free from now on, for what has no handle in the file.
            database_.setHandseed(handseed_);
        }
        if (name == "$INSUNITS" || name == "$TILEMODE" || name == "$MEASUREMENT") {
            std::int64_t v = 0;
            if (ctx_.integer(TagView{raw[i + 1].first, value, lines[i + 1]}, v)) {
                if (name == "$MEASUREMENT") {
                    // Anything but 1 is taken as imperial, as the host does; kept as read.
                    if (v != 0 && v != 1) file_->headerAsRead.emplace_back(name);
                    database_.setMeasurement(v == 1 ? 1 : 0);
                } else {
                    (name == "$INSUNITS" ? file_->insUnits : tilemode_) = static_cast<int>(v);
                }
            }
            std::size_t line = 0;
            std::string what;
            if (ctx_.takeBadNumber(line, what)) {
                if (!recover_) return fail(line, what);
                warn(line,
                     what + "; the header variable " + std::string(name) + " is kept as read");
                file_->headerAsRead.emplace_back(name);
            }
        }
    }
    if (!version.empty()) file_->version = version;
    file_->hasHeader = true;
    decideCodePage(codePage);
    ctx_.r12 = file_->version <= "AC1009";
    for (std::size_t i = 0; i < raw.size(); ++i) {
        file_->header.push_back({raw[i].first, ctx_.strings.toUtf8(raw[i].second)});
        if (raw[i].first == 9 && trimmed(raw[i].second) == "$CLAYER" && i + 1 < raw.size()) {
            clayer_ = ctx_.strings.toWide(trimmed(raw[i + 1].second));
        }
    }
    return true;
}

bool Loader::readKeptSection(const std::string& name) {
    FileData::Section section;
    section.name = name;
    TagView t;
    while (next(t)) {
        if (is(t, 0, "ENDSEC")) {
            file_->keptSections.push_back(std::move(section));
            return true;
        }
        if (is(t, 0, "EOF") || is(t, 0, "SECTION")) {
            if (sectionCutShort(t)) break;
            return fail(t.line, "expected \"0 ENDSEC\" to end the " + name + " section, found " +
                                    describe(t));
        }
        section.tags.push_back(ctx_.raw(t));
        if (section.tags.size() % 4096 == 0) reader_.release();
    }
    file_->keptSections.push_back(std::move(section));
    return reader_.failed() ? false : t.code == 0 ? true : endsHere("\"0 ENDSEC\"");
}

bool Loader::readTables() {
    TagView t;
    while (next(t)) {
        if (is(t, 0, "ENDSEC")) return true;
        if (!is(t, 0, "TABLE")) {
            if (sectionCutShort(t)) return true;
            return fail(t.line, "expected \"0 TABLE\" or \"0 ENDSEC\", found " + describe(t));
        }
        if (!collect(t, tags_, "ENDTAB")) return false;
        std::string tableName;
        if (tags_.size() > 1 && tags_[1].code == 2) {
            tableName = std::string(trimmed(tags_[1].value));
            tags_.erase(tags_.begin() + 1);
        } else {
            return fail(t.line + 2, "expected \"2\" with the name of the table");
        }
        parse(tags_, parsed_);
        const Codec* head = tableCodec(tableName);
        AcDbObjectId tableId = place(parsed_, false, AcDbObjectId(), head);
        if (!numbersOk()) return false;
        file_->tables.push_back(tableId);
        if (head == nullptr) file_->tableNames[tableId.stub()] = tableName;
        auto* typed = arx::peek<AcDbSymbolTable>(tableId);
        // A head kept as read (recover: a number in it is none) is not the drawing's table
        // of its kind: the drawing makes a typed one of its own when it needs it.
        if (typed) {
            if (tableName == "LAYER") layerTable_ = tableId;
            if (tableName == "LTYPE") linetypeTable_ = tableId;
            if (tableName == "APPID") appTable_ = tableId;
            if (tableName == "BLOCK_RECORD") blockTable_ = tableId;
        }
        setWellKnown();
        reader_.release();
        for (;;) {
            if (!next(t)) return endsHere("\"0 ENDTAB\"");
            if (is(t, 0, "ENDTAB")) {
                if (!collect(t, tags_, "ENDSEC")) return false;
                break;
            }
            if (t.code != 0 || isStructural(t)) {
                return fail(t.line, "expected a " + tableName + " record or \"0 ENDTAB\", found " +
                                        describe(t));
            }
            const Codec* codec = typed ? objectCodec(trimmed(t.value)) : nullptr;
            if (codec && codec->dxfName != tableName) codec = nullptr;
            if (typed && codec == nullptr) {
                return fail(t.line, "expected a " + tableName + " record, found " + describe(t));
            }
            if (!collect(t, tags_, "ENDTAB")) return false;
            parse(tags_, parsed_);
            if (tableName == "VPORT") {
                bool active = false, numbers = true;
                AcDbDatabase::View view = database_.view();
                for (const TagView& b : parsed_.body) {
                    if (b.code == 2) active = equalsNoCase(trimmed(b.value), "*ACTIVE");
                    if (!active) continue;
                    if (b.code == 12) numbers = ctx_.real(b, view.centerX) && numbers;
                    if (b.code == 22) numbers = ctx_.real(b, view.centerY) && numbers;
                    if (b.code == 40) numbers = ctx_.real(b, view.height) && numbers;
                    if (b.code == 41) numbers = ctx_.real(b, view.aspect) && numbers;
                }
                // A view with a number that is none stays as read (with recover).
                if (active && numbers) database_.setView(view);
            }
            AcDbObjectId id = place(parsed_, false, tableId, codec);
            if (!numbersOk()) return false;
            if (typed) {
                typed->restoreRecord(id);
            } else {
                file_->tableRecords[tableId.stub()].push_back(id);
            }
            reader_.release();
        }
    }
    return endsHere("\"0 ENDSEC\"");
}

void Loader::ensureBlockTable() {
    if (blockTable_.isNull()) {
        auto* table = new AcDbBlockTable();
        database_.restoreObject(blockTable_, table, AcDbHandle());
        setWellKnown();
    }
    auto* table = arx::peek<AcDbBlockTable>(blockTable_);
    for (const ACHAR* name : {ACDB_MODEL_SPACE, ACDB_PAPER_SPACE}) {
        AcDbObjectId id;
        if (table->getAt(name, id) != Acad::eOk) {
            auto* record = new AcDbBlockTableRecord();
            record->setName(name);
            record->setOwnerId(blockTable_);
            database_.restoreObject(id, record, AcDbHandle());
            table->restoreRecord(id);
        }
        (std::wstring(name) == ACDB_MODEL_SPACE ? modelSpace_ : paperSpace_) = id;
    }
    setWellKnown();
}

bool Loader::readEntity(const TagView& first, AcDbObjectId defaultOwner, AcDbObjectId& id) {
    entity_.clear();
    if (!gatherEntity(first, entity_)) return false;
    id = placeEntity(entity_, 0, defaultOwner);
    return true;
}

bool Loader::gatherEntity(const TagView& first, EntityBatch& batch) {
    batch.entities.push_back(batch.objects.size());
    batch.objects.push_back(batch.tags.size());
    if (!collectInto(first, batch.tags, "ENDSEC")) return false;
    std::string_view type = trimmed(first.value);  // in the file's memory, which stays
    bool withChildren = type == "POLYLINE";
    if (type == "INSERT") {
        parse(batch.object(batch.objects.size() - 1), gathered_);
        for (const TagView& t : gathered_.body) {
            std::int64_t follow = 0;
            if (t.code == 66 && parseInt(t.value, follow) && follow == 1) withChildren = true;
        }
    }
    if (!withChildren) return true;
    TagView t;
    for (;;) {
        if (!next(t)) return endsHere("\"0 SEQEND\"");
        std::string_view childType = trimmed(t.value);
        if (t.code != 0 ||
            (childType != "VERTEX" && childType != "ATTRIB" && childType != "SEQEND")) {
            // With recover, the next object ends it, as the end of the file does.
            if (recover_ && t.code == 0) {
                warn(t.line, "no \"0 SEQEND\" after the " + std::string(type) + " before " +
                                 describe(t) + ": it ends there");
                unread(t);
                return true;
            }
            return fail(t.line, "expected \"0 SEQEND\" after the " + std::string(type) +
                                    ", found " + describe(t));
        }
        batch.objects.push_back(batch.tags.size());
        if (!collectInto(t, batch.tags, "SEQEND")) return false;
        if (childType == "SEQEND") return true;
    }
}

AcDbObjectId Loader::placeEntity(const EntityBatch& batch, std::size_t entity,
                                 AcDbObjectId defaultOwner) {
    std::size_t first = batch.entities[entity], end = batch.entityEnd(entity);
    ParsedObject& parsed = placing_;
    parse(batch.object(first), parsed);
    // An entity belongs to a block; an owner that is none (a damaged file, or one whose
    // block records another program dropped) is written back as read, and the entity
    // is in the space its flag says.
    parsed.ownerAsRead = 0;
    if (parsed.hasOwner && !arx::peek<AcDbBlockTableRecord>(ctx_.idOf(parsed.owner))) {
        parsed.hasOwner = false;
        parsed.ownerAsRead = parsed.owner;
    }
    // R12 files give the space by the 67 flag, later ones by the owner.
    if (!parsed.hasOwner && defaultOwner == modelSpace_) {
        for (const TagView& b : parsed.body) {
            if (b.code == 67 && trimmed(b.value) == "1") defaultOwner = paperSpace_;
        }
    }
    const Codec* codec = entityCodec(parsed.type);
    if (parsed.type == "POLYLINE") {
        for (const TagView& t : parsed.body) {
            std::int64_t flags = 0;
            if (t.code == 70 && parseInt(t.value, flags) && (flags & (8 | 16 | 64))) {
                codec = nullptr;  // 3D polylines and meshes are kept as read
            }
        }
    }
    if (parsed.type == "INSERT" && codec != nullptr) {
        // A reference to a block the drawing lacks, or one owning more than attributes,
        // is kept as read.
        if (insertedBlock(parsed, ctx_).isNull()) codec = nullptr;
        for (std::size_t o = first + 1; o + 1 < end && codec != nullptr; ++o) {
            parse(batch.object(o), child_);
            if (child_.type != "ATTRIB") codec = nullptr;
        }
    }
    if (end - first == 1) return place(parsed, true, defaultOwner, codec);
    bool keptForNumbers = false;
    if (codec != nullptr && !treeNumbersOk(batch, first, end)) {
        badNumberIn(parsed);
        codec = nullptr;
        keptForNumbers = true;
    }
    treeKept_ = keptForNumbers;
    // The parent is placed after its children, which name it as their owner.
    if (parsed.handle == 0 || arx::peekObject(ctx_.idOf(parsed.handle)) != nullptr) {
        std::uint64_t free = database_.handseed().value();  // so the children can name it
        if (parsed.handle != 0 && recover_) {
            renumbered(parsed, ctx_.idOf(free));
        }
        parsed.handle = free;
    }
    AcDbObjectId parentId = ctx_.idOf(parsed.handle);
    std::vector<AcDbObjectId> children;
    AcDbObjectId seqend;
    for (std::size_t o = first + 1; o < end; ++o) {
        parse(batch.object(o), child_);
        // What follows an entity to its SEQEND is its own, whatever the file says (ezdxf
        // names the layout); a different owner is written back as read.
        if (child_.hasOwner && child_.owner != parsed.handle) {
            child_.ownerAsRead = child_.owner;
            child_.hasOwner = false;
        }
        const Codec* childCodec = codec ? entityCodec(child_.type) : nullptr;
        AcDbObjectId childId = place(child_, true, parentId, childCodec);
        if (o + 1 == end) {
            seqend = childId;
        } else {
            children.push_back(childId);
        }
    }
    AcDbObjectId id = place(parsed, true, defaultOwner, codec);
    treeKept_ = false;
    if (keptForNumbers) keptAsRead_.push_back(id);
    if (codec == nullptr) {
        ObjectRecord& kept = file_->records[id.stub()];
        kept.children = children;
        kept.children.push_back(seqend);
    } else if (auto* pline = arx::peek<AcDb2dPolyline>(id)) {
        pline->restoreVertices(children, seqend);
    } else if (auto* reference = arx::peek<AcDbBlockReference>(id)) {
        reference->restoreAttributes(children, seqend);
    }
    return id;
}

bool Loader::readBlocks() {
    ensureBlockTable();
    auto* table = arx::peek<AcDbBlockTable>(blockTable_);
    TagView t;
    while (next(t)) {
        if (is(t, 0, "ENDSEC")) return true;
        if (!is(t, 0, "BLOCK")) {
            if (sectionCutShort(t)) return true;
            return fail(t.line, "expected \"0 BLOCK\" or \"0 ENDSEC\", found " + describe(t));
        }
        if (!collect(t, tags_, "ENDBLK")) return false;
        parse(tags_, parsed_);
        std::wstring name;
        AcGePoint3d origin;
        for (const TagView& b : parsed_.body) {
            if (b.code == 2 && name.empty()) name = ctx_.wide(trimmed(b.value));
            if (b.code == 10) ctx_.real(b, origin.x);
            if (b.code == 20) ctx_.real(b, origin.y);
            if (b.code == 30) ctx_.real(b, origin.z);
        }
        AcDbObjectId recordId;
        if (name.empty() || table->getAt(name.c_str(), recordId) != Acad::eOk) {
            // Files before block records (R12) name the block only here.
            auto* record = new AcDbBlockTableRecord();
            if (name.empty() || record->setName(name.c_str()) != Acad::eOk) {
                delete record;
                return fail(parsed_.line, "expected a valid block name in \"2\"");
            }
            record->setOwnerId(blockTable_);
            database_.restoreObject(recordId, record, AcDbHandle());
            table->restoreRecord(recordId);
        }
        auto* record = arx::peek<AcDbBlockTableRecord>(recordId);
        record->setOrigin(origin);
        AcDbObjectId begin = place(parsed_, true, recordId, nullptr);
        if (!numbersOk()) return false;
        reader_.release();
        bool layout = recordId == modelSpace_ || recordId == paperSpace_;
        for (;;) {
            if (!next(t)) return endsHere("\"0 ENDBLK\"");
            if (is(t, 0, "ENDBLK")) break;
            if (t.code != 0 || isStructural(t)) {
                if (sectionCutShort(t)) return true;
                return fail(t.line, "expected an entity or \"0 ENDBLK\", found " + describe(t));
            }
            AcDbObjectId id;
            if (!readEntity(t, recordId, id) || !numbersOk()) return false;
            auto* owner = arx::peek<AcDbBlockTableRecord>(arx::peekObject(id)->ownerId());
            (owner ? owner : record)->restoreEntity(id);
            if (layout) file_->entities.push_back(id);
            reader_.release();
        }
        if (!collect(t, tags_, "ENDSEC")) return false;
        parse(tags_, parsed_);
        AcDbObjectId end = place(parsed_, true, recordId, nullptr);
        if (!numbersOk()) return false;
        file_->blockEnds[recordId.stub()] = {begin, end};
        file_->blocks.push_back(recordId);
        reader_.release();
    }
    return endsHere("\"0 ENDSEC\"");
}

void Loader::placeModelSpaceBatch(const EntityBatch& batch) {
    for (std::size_t e = 0; e < batch.entities.size(); ++e) {
        AcDbObjectId id = placeEntity(batch, e, modelSpace_);
        arx::peek<AcDbBlockTableRecord>(arx::peekObject(id)->ownerId())->restoreEntity(id);
        file_->entities.push_back(id);
    }
}

void Loader::gatherBatch(EntityBatch& batch) {
    batch.clear();
    if (gatherDone_) return;
    // The batch filled before this one is being placed; those before it are done with.
    reader_.releaseBefore(gatheredChunk_);
    TagView t;
    bool first = true;
    while (batch.tags.size() < kBatchTags) {
        if (!next(t)) {
            if (endsHere("\"0 ENDSEC\"")) {
                batch.ended = true;
            } else {
                batch.failed = true;
            }
            break;
        }
        if (is(t, 0, "ENDSEC")) {
            batch.ended = true;
            break;
        }
        if (t.code != 0 || isStructural(t)) {
            if (sectionCutShort(t)) {
                batch.ended = true;
                break;
            }
            fail(t.line, "expected an entity or \"0 ENDSEC\", found " + describe(t));
            batch.failed = true;
            break;
        }
        if (first) batch.firstChunk = reader_.chunkSerial();
        first = false;
        if (!gatherEntity(t, batch)) {
            batch.failed = true;
            break;
        }
    }
    gatherDone_ = batch.ended || batch.failed;
    gatheredChunk_ = batch.firstChunk;
    batch.bytesRead = reader_.bytesRead();
}

bool Loader::readEntitiesAside(HandOff<EntityBatch>& gatherer) {
    // The gatherer fills one batch while this thread places the one before; objects are
    // made here, where the rest of the drawing's memory comes from. Until the section
    // ends only the gatherer touches the reader, and reports progress through here.
    auto progress = reader_.takeOnChunk();
    gatherer.submit(EntityBatch());
    EntityBatch free;
    for (;;) {
        EntityBatch filled = gatherer.submit(std::move(free));
        if (!filled.failed) {
            if (progress) progress(filled.bytesRead);
            placeModelSpaceBatch(filled);
        }
        bool numbers = numberError_.empty();
        if (filled.failed || filled.ended || !numbers) {
            gatherer.wait();  // then the reader is this thread's again
            reader_.onChunk(std::move(progress));
            return !filled.failed && numbersOk();
        }
        free = std::move(filled);
    }
}

bool Loader::readEntities() {
    ensureBlockTable();
    gatherDone_ = false;  // a file may have a second ENTITIES section
    gatheredChunk_ = 0;
    // Binary values are made text in storage released as a whole: one thread only.
    if (threads_ > 1 && !reader_.isBinary()) {
        std::unique_ptr<HandOff<EntityBatch>> gatherer;
        try {
            gatherer = std::make_unique<HandOff<EntityBatch>>(
                [this](EntityBatch& batch) { gatherBatch(batch); });
        } catch (const std::system_error&) {
            // No thread to be had: read on this one.
        }
        if (gatherer) return readEntitiesAside(*gatherer);
    }
    // On one thread, each batch is placed before the next is read.
    for (;;) {
        gatherBatch(entity_);
        if (!entity_.failed) placeModelSpaceBatch(entity_);
        if (!numbersOk()) return false;
        if (entity_.failed || entity_.ended) return !entity_.failed;
        reader_.release();
    }
}

bool Loader::readObjects() {
    TagView t;
    while (next(t)) {
        if (is(t, 0, "ENDSEC")) return true;
        if (t.code != 0 || isStructural(t)) {
            if (sectionCutShort(t)) return true;
            return fail(t.line, "expected an object or \"0 ENDSEC\", found " + describe(t));
        }
        if (!collect(t, tags_, "ENDSEC")) return false;
        parse(tags_, parsed_);
        AcDbObjectId id = place(parsed_, false, AcDbObjectId(), objectCodec(parsed_.type));
        if (!numbersOk()) return false;
        if (namedObjects_.isNull() && arx::peek<AcDbDictionary>(id)) namedObjects_ = id;
        file_->objects.push_back(id);
        reader_.release();
    }
    return endsHere("\"0 ENDSEC\"");
}

bool Loader::finish() {
    // What a drawing needs and an older or partial file lacked.
    auto addTable = [&](AcDbObjectId& id, AcDbObject* table) {
        if (id.isNull()) {
            database_.restoreObject(id, table, AcDbHandle());
        } else {
            delete table;
        }
    };
    addTable(layerTable_, new AcDbLayerTable());
    addTable(linetypeTable_, new AcDbLinetypeTable());
    addTable(appTable_, new AcDbRegAppTable());
    ensureBlockTable();
    if (namedObjects_.isNull()) {
        auto* named = new AcDbDictionary();
        named->setHardOwner(true);
        database_.restoreObject(namedObjects_, named, AcDbHandle());
    }
    setWellKnown();
    auto* layers = arx::peek<AcDbLayerTable>(layerTable_);
    AcDbObjectId layer;
    if (!layers->has(L"0")) {
        auto* zero = new AcDbLayerTableRecord();
        zero->setName(L"0");
        zero->setOwnerId(layerTable_);
        database_.restoreObject(layer, zero, AcDbHandle());
        layers->restoreRecord(layer);
    }
    if (clayer_.empty() || layers->getAt(clayer_.c_str(), layer) != Acad::eOk)
        layers->getAt(L"0", layer);
    database_.setClayer(layer);
    database_.setTilemode(tilemode_ != 0);
    database_.setHandseed(handseed_);
    file_->report.keptAsRead = std::move(keptAsRead_);
    // In the order of the file: the reading and the making of objects warn apart.
    std::stable_sort(warnings_.begin(), warnings_.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (auto& [line, warning] : warnings_)
        file_->report.warnings.push_back(std::move(warning));
    database_.setFileData(std::move(file_));
    return true;
}

bool Loader::run() {
    TagView t;
    bool any = false;
    while (next(t)) {
        if (t.code == 999) continue;
        if (is(t, 0, "EOF")) {
            if (!any) return fail(t.line, "not a DXF file: no section before \"0 EOF\"");
            return finish();
        }
        if (!is(t, 0, "SECTION")) {
            // A section name without its "0 SECTION", as some writers leave it.
            if (recover_ && any && t.code == 2) {
                warn(t.line, "no \"0 SECTION\" before " + describe(t) + ": read as a section");
            } else {
                return fail(t.line, std::string(any ? "" : "not a DXF file: ") +
                                        "expected \"0 SECTION\" or \"0 EOF\", found " +
                                        describe(t));
            }
        } else {
            if (!next(t)) return endsHere("\"2\" with the section name") && finish();
            if (t.code != 2) {
                if (recover_ && any && is(t, 0, "EOF")) {
                    warn(t.line, "a section without a name before \"0 EOF\": left out");
                    unread(t);
                    continue;
                }
                return fail(t.line, "expected \"2\" with the section name, found " + describe(t));
            }
        }
        std::string name(trimmed(t.value));
        any = true;
        file_->sectionOrder.push_back(name);
        if (name != "HEADER" && !codePageDecided_) decideCodePage("");
        if (name != "HEADER" && !handlesReserved_) reserveHandles();
        bool ok = false;
        if (name == "HEADER") {
            ok = readHeader();
        } else if (name == "TABLES") {
            ok = readTables();
        } else if (name == "BLOCKS") {
            ok = readBlocks();
        } else if (name == "ENTITIES") {
            ok = readEntities();
        } else if (name == "OBJECTS") {
            ok = readObjects();
        } else {
            ok = readKeptSection(name);
        }
        if (!ok) return false;
        reader_.release();
    }
    if (reader_.failed()) return false;
    if (any && endsHere("\"0 EOF\"")) return finish();
    return failAtEnd(any ? "\"0 EOF\"" : "\"0 SECTION\" (the file is empty)");
}

}  // namespace

namespace {

// Reads with the loader; fileSize non-zero shows the progress bar in megabytes and sizes
// the handle index.
bool readWith(std::istream& in, AcDbDatabase& database, std::string& error, const std::string& name,
              std::uint64_t fileSize, int threads, const ReadOptions& options) {
    constexpr std::uint64_t kStep = 1 << 20;
    struct Bar {
        bool shown = false;
        ~Bar() {
            if (shown) db::progressSink().end();
        }
    } bar;
    std::wstring probe;
    if (!options.codePage.empty() && !db::decodeCodePage("A", options.codePage, probe)) {
        error = name + ": unknown code page \"" + options.codePage + "\"";
        return false;
    }
    try {
        Loader loader(in, name, database);
        loader.setFileSize(fileSize);
        loader.setThreads(threads);
        loader.setRecover(options.recover);
        loader.setCodePage(options.codePage);
        if (fileSize > 0) {
            std::wstring message = L"读取 " + db::utf8ToWide(name);
            db::progressSink().start(message, static_cast<long>((fileSize + kStep - 1) / kStep));
            bar.shown = true;
            loader.reader().onChunk([](std::uint64_t bytes) {
                db::progressSink().step(static_cast<long>((bytes + kStep - 1) / kStep));
            });
        }
        if (loader.run()) {
            error.clear();
            return true;
        }
        error = loader.error();
    } catch (const std::bad_alloc&) {
        error = name + ": not enough memory to read the drawing";
    } catch (const std::exception& e) {
        error = name + ": " + e.what();
    }
    return false;
}

// The threads that read a drawing of this size (0: unknown).
int threadsFor(const ReadOptions& options, std::uint64_t size) {
    if (options.threads > 0) return options.threads;
    return size >= kReadAsideFrom && std::thread::hardware_concurrency() > 1 ? 2 : 1;
}

// What is left of a stream that can tell, else 0.
std::uint64_t sizeLeft(std::istream& in) {
    std::istream::pos_type at = in.tellg();
    if (at == std::istream::pos_type(-1)) return 0;
    in.seekg(0, std::ios::end);
    std::istream::pos_type end = in.tellg();
    in.seekg(at);
    if (!in || end == std::istream::pos_type(-1) || end < at) {
        in.clear();
        in.seekg(at);
        return 0;
    }
    return static_cast<std::uint64_t>(end - at);
}

}  // namespace

bool read(std::istream& in, AcDbDatabase& database, std::string& error, const std::string& name,
          const ReadOptions& options) {
    // No progress bar for a stream.
    return readWith(in, database, error, name, 0, threadsFor(options, sizeLeft(in)), options);
}

bool load(const std::string& path, AcDbDatabase& database, std::string& error,
          const ReadOptions& options) {
    std::ifstream in(db::utf8Path(path), std::ios::binary);
    if (!in) {
        error = path + ": cannot open the file";
        return false;
    }
    std::error_code ec;
    std::uint64_t size = std::filesystem::file_size(db::utf8Path(path), ec);
    if (ec) size = 0;
    return readWith(in, database, error, path, size, threadsFor(options, size), options);
}

const ReadReport& readReport(const AcDbDatabase& database) {
    static const ReadReport none;
    const auto* file = dynamic_cast<const FileData*>(database.fileData());
    return file ? file->report : none;
}

std::unique_ptr<AcDbDatabase> load(const std::string& path, std::string& error,
                                   const ReadOptions& options) {
    auto database = std::make_unique<AcDbDatabase>(false);
    if (!load(path, *database, error, options)) return nullptr;
    return database;
}

}  // namespace dxf
