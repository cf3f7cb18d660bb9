// Selection sets: the graphical and whole-drawing selections, user selection from the
// command line, and filter lists.
#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "host/arx/acedads.h"
#include "host/arx/acedinternal.h"
#include "host/arx/acutads.h"
#include "host/arx/dbapserv.h"
#include "host/arx/dbents.h"
#include "host/arx/dbmtext.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/dbunknown.h"
#include "host/arx/peek.h"
#include "host/db/CommandLine.h"
#include "host/db/Database.h"
#include "host/db/SelectionSets.h"
#include "host/db/TextCodec.h"
#include "host/db/WildcardMatch.h"

namespace {

// ---------------------------------------------------------------- entity values

using GroupValue = std::variant<std::monostate, std::wstring, double>;

bool inPaperSpace(const AcDbEntity* entity) {
    AcDbDatabase* database = entity->database();
    auto* block = arx::peek<AcDbBlockTableRecord>(entity->ownerId());
    return database != nullptr && block != nullptr && block->isLayout() &&
           entity->ownerId() != database->modelSpaceId();
}

// The value an entity carries under a group code, as its DXF record would show it.
GroupValue groupValue(const AcDbEntity* entity, int code) {
    // The casts only for the codes that read a polyline: code 0 and 8 are asked of every
    // entity of a whole-drawing selection.
    bool polylineCode = code == 70 || code == 38 || code == 39 || code == 43 || code == 90;
    auto* pline = polylineCode ? AcDbPolyline::cast(entity) : nullptr;
    auto* pline2d = code == 70 ? AcDb2dPolyline::cast(entity) : nullptr;
    switch (code) {
        case 0:
            // An entity kept as read has the type its file gave it (SOLID, POINT, ...).
            if (auto* kept = AcDbUnknownEntity::cast(entity))
                return db::utf8ToWide(kept->dxfName());
            return std::wstring(entity->isA()->dxfName());
        case 8:
            return entity->layerName();
        case 6:
            return entity->linetypeName();
        case 1:
            if (auto* text = AcDbText::cast(entity)) return text->text();
            if (auto* mtext = AcDbMText::cast(entity)) return mtext->contentsText();
            break;
        case 62:
            return static_cast<double>(entity->colorIndex());
        case 67:
            return inPaperSpace(entity) ? 1.0 : 0.0;
        case 70:
            if (pline)
                return (pline->isClosed() ? 1.0 : 0.0) + (pline->hasPlinegen() ? 128.0 : 0.0);
            if (pline2d) {
                int flags = pline2d->isClosed() ? 1 : 0;
                switch (pline2d->polyType()) {
                    case AcDb::k2dFitCurvePoly:
                        flags |= 2;
                        break;
                    case AcDb::k2dQuadSplinePoly:
                    case AcDb::k2dCubicSplinePoly:
                        flags |= 4;
                        break;
                    default:
                        break;
                }
                return static_cast<double>(flags);
            }
            break;
        case 38:
            if (pline) return pline->elevation();
            break;
        case 39:
            if (pline) return pline->thickness();
            break;
        case 40:
            if (auto* circle = AcDbCircle::cast(entity)) return circle->radius();
            if (auto* arc = AcDbArc::cast(entity)) return arc->radius();
            if (auto* text = AcDbText::cast(entity)) return text->height();
            if (auto* mtext = AcDbMText::cast(entity)) return mtext->textHeight();
            break;
        case 43:
            if (pline) {
                double width = 0;
                if (pline->getConstantWidth(width) == Acad::eOk) return width;
            }
            break;
        case 90:
            if (pline) return static_cast<double>(pline->numVerts());
            break;
        default:
            break;
    }
    return std::monostate();
}

// ---------------------------------------------------------------- filters

enum class Op { Equal, NotEqual, Less, LessEqual, Greater, GreaterEqual, Any, BitAny, BitAll };

std::optional<Op> relationalOp(const std::wstring& text) {
    if (text == L"=") return Op::Equal;
    if (text == L"!=" || text == L"/=" || text == L"<>") return Op::NotEqual;
    if (text == L"<") return Op::Less;
    if (text == L"<=") return Op::LessEqual;
    if (text == L">") return Op::Greater;
    if (text == L">=") return Op::GreaterEqual;
    if (text == L"*") return Op::Any;
    if (text == L"&") return Op::BitAny;
    if (text == L"&=") return Op::BitAll;
    return std::nullopt;
}

struct Node {
    enum class Type { And, Or, Xor, Not, Test, Xdata };
    Type type = Type::And;
    std::vector<Node> children;
    int code = 0;
    Op op = Op::Equal;
    GroupValue value;
    std::vector<std::wstring> apps;
};

std::wstring upperTrimmed(const ACHAR* text) {
    std::wstring s = arx::foldCase(text);
    std::size_t a = s.find_first_not_of(L" \t"), b = s.find_last_not_of(L" \t");
    return a == std::wstring::npos ? L"" : s.substr(a, b - a + 1);
}

class FilterParser {
  public:
    explicit FilterParser(const resbuf* list) : rb_(list) {}

    bool parse(Node& root) {
        root = Node{Node::Type::And, {}, 0, Op::Equal, {}, {}};
        while (rb_ != nullptr) {
            Node item;
            if (!parseItem(item)) return false;
            root.children.push_back(std::move(item));
        }
        return true;
    }

  private:
    bool parseItem(Node& out) {
        if (rb_ == nullptr) return false;
        if (rb_->restype == -4) {
            std::wstring s = upperTrimmed(rb_->resval.rstring);
            if (s == L"<AND") return parseGroup(out, Node::Type::And, L"AND>");
            if (s == L"<OR") return parseGroup(out, Node::Type::Or, L"OR>");
            if (s == L"<XOR") return parseGroup(out, Node::Type::Xor, L"XOR>");
            if (s == L"<NOT") return parseGroup(out, Node::Type::Not, L"NOT>");
            std::optional<Op> op = relationalOp(s);
            if (!op) return false;
            rb_ = rb_->rbnext;
            if (rb_ == nullptr || rb_->restype == -4 || rb_->restype == -3) return false;
            if (!parseTest(out)) return false;
            out.op = *op;
            if (*op != Op::Equal && *op != Op::NotEqual && *op != Op::Any &&
                std::holds_alternative<std::wstring>(out.value)) {
                return false;  // strings compare only for (in)equality
            }
            return true;
        }
        if (rb_->restype == -3 || rb_->restype == 1001) {
            out.type = Node::Type::Xdata;
            if (rb_->restype == -3) rb_ = rb_->rbnext;
            while (rb_ != nullptr && rb_->restype == 1001) {
                out.apps.emplace_back(rb_->resval.rstring ? rb_->resval.rstring : L"");
                rb_ = rb_->rbnext;
            }
            return true;
        }
        return parseTest(out);
    }

    bool parseGroup(Node& out, Node::Type type, const wchar_t* closer) {
        out.type = type;
        rb_ = rb_->rbnext;
        for (;;) {
            if (rb_ == nullptr) return false;
            if (rb_->restype == -4 && upperTrimmed(rb_->resval.rstring) == closer) {
                rb_ = rb_->rbnext;
                break;
            }
            Node child;
            if (!parseItem(child)) return false;
            out.children.push_back(std::move(child));
        }
        std::size_t n = out.children.size();
        switch (type) {
            case Node::Type::Not:
                return n == 1;
            case Node::Type::Xor:
                return n == 2;
            default:
                return n >= 1;
        }
    }

    bool parseTest(Node& out) {
        out.type = Node::Type::Test;
        // Lists are built with RTDXF0 for group 0, since 0 ends an argument list.
        out.code = rb_->restype == RTDXF0 ? 0 : rb_->restype;
        switch (acutValueKindOfType(rb_->restype)) {
            case db::ValueKind::String:
            case db::ValueKind::Handle:
                out.value = std::wstring(rb_->resval.rstring ? rb_->resval.rstring : L"");
                break;
            case db::ValueKind::Real:
                out.value = rb_->resval.rreal;
                break;
            case db::ValueKind::Int16:
            case db::ValueKind::Bool:
                out.value = static_cast<double>(rb_->resval.rint);
                break;
            case db::ValueKind::Int32:
                out.value = static_cast<double>(rb_->resval.rlong);
                break;
            case db::ValueKind::Int64:
                out.value = static_cast<double>(rb_->resval.mnInt64);
                break;
            default:
                // Points, names and markers are not conditions the host filters on here.
                return false;
        }
        rb_ = rb_->rbnext;
        return true;
    }

    const resbuf* rb_;
};

bool compareNumbers(double have, Op op, double want) {
    switch (op) {
        case Op::Equal:
            return have == want;
        case Op::NotEqual:
            return have != want;
        case Op::Less:
            return have < want;
        case Op::LessEqual:
            return have <= want;
        case Op::Greater:
            return have > want;
        case Op::GreaterEqual:
            return have >= want;
        case Op::Any:
            return true;
        case Op::BitAny:
            return (static_cast<long long>(have) & static_cast<long long>(want)) != 0;
        case Op::BitAll: {
            long long mask = static_cast<long long>(want);
            return (static_cast<long long>(have) & mask) == mask;
        }
    }
    return false;
}

bool hasXdataOf(const AcDbEntity* entity, const std::wstring& pattern) {
    bool found = false;
    entity->forEachXdataApp([&](const std::wstring& app) {
        found = db::wcmatch(app, pattern);
        return !found;
    });
    return found;
}

bool evaluate(const Node& node, const AcDbEntity* entity) {
    switch (node.type) {
        case Node::Type::And:
            return std::all_of(node.children.begin(), node.children.end(),
                               [&](const Node& c) { return evaluate(c, entity); });
        case Node::Type::Or:
            return std::any_of(node.children.begin(), node.children.end(),
                               [&](const Node& c) { return evaluate(c, entity); });
        case Node::Type::Xor:
            return evaluate(node.children[0], entity) != evaluate(node.children[1], entity);
        case Node::Type::Not:
            return !evaluate(node.children[0], entity);
        case Node::Type::Xdata:
            if (node.apps.empty()) {
                return entity->hasXdata();
            }
            // Each named application must be there; one name may offer alternatives.
            return std::all_of(node.apps.begin(), node.apps.end(),
                               [&](const std::wstring& app) { return hasXdataOf(entity, app); });
        case Node::Type::Test:
            break;
    }
    if (node.op == Op::Any) return true;
    GroupValue have = groupValue(entity, node.code);
    if (auto* text = std::get_if<std::wstring>(&have)) {
        auto* pattern = std::get_if<std::wstring>(&node.value);
        if (pattern == nullptr) return false;
        return db::wcmatch(*text, *pattern) == (node.op == Op::Equal);
    }
    if (auto* number = std::get_if<double>(&have)) {
        auto* want = std::get_if<double>(&node.value);
        return want != nullptr && compareNumbers(*number, node.op, *want);
    }
    return false;
}

// ---------------------------------------------------------------- gathering

struct Selection {
    std::optional<Node> filter;
    std::vector<db::EntityName> names;
    std::set<db::EntityName> seen;  // a whole-drawing selection must stay linear

    bool accepts(const AcDbEntity* entity) const {
        return entity != nullptr && (!filter || evaluate(*filter, entity));
    }
    // False when the entity was there already.
    bool add(AcDbObjectId id) {
        db::EntityName name{};
        db::stubToName(id.stub(), name.data());
        if (!seen.insert(name).second) return false;
        names.push_back(name);
        return true;
    }
};

std::vector<AcDbObjectId> liveEntities(AcDbObjectId blockId) {
    std::vector<AcDbObjectId> out;
    if (auto* block = arx::peek<AcDbBlockTableRecord>(blockId)) {
        for (AcDbObjectId id : block->entityIds()) {
            if (!id.isErased() && arx::peek<AcDbEntity>(id) != nullptr) out.push_back(id);
        }
    }
    return out;
}

std::vector<AcDbObjectId> layoutBlocks(AcDbDatabase* database) {
    std::vector<AcDbObjectId> out;
    auto* table = arx::peek<AcDbBlockTable>(database->blockTableId());
    if (table == nullptr) return out;
    // Model space first, then the paper-space layouts in table order.
    out.push_back(database->modelSpaceId());
    for (AcDbObjectId id : table->recordIds()) {
        auto* block = arx::peek<AcDbBlockTableRecord>(id);
        if (!id.isErased() && block && block->isLayout() && id != database->modelSpaceId()) {
            out.push_back(id);
        }
    }
    return out;
}

bool onFrozenLayer(const AcDbEntity* entity) {
    auto* layer = arx::peek<AcDbLayerTableRecord>(entity->layerId());
    return layer != nullptr && layer->isFrozen();
}

void selectAll(AcDbDatabase* database, Selection& selection) {
    // Each entity is in one block once, so nothing is looked up for repeats: this runs
    // over the whole drawing at every scan of a command.
    for (AcDbObjectId blockId : layoutBlocks(database)) {
        auto* block = arx::peek<AcDbBlockTableRecord>(blockId);
        if (block == nullptr) continue;
        for (AcDbObjectId id : block->entityIds()) {
            if (id.isErased() || !selection.accepts(arx::peek<AcDbEntity>(id))) continue;
            db::EntityName name{};
            db::stubToName(id.stub(), name.data());
            selection.names.push_back(name);
        }
    }
}

// Everything of the current space that is not on a frozen layer; the count added.
int selectAllInSpace(AcDbDatabase* database, Selection& selection) {
    int added = 0;
    for (AcDbObjectId id : liveEntities(database->currentSpaceId())) {
        auto* entity = arx::peek<AcDbEntity>(id);
        if (!onFrozenLayer(entity) && selection.accepts(entity) && selection.add(id)) ++added;
    }
    return added;
}

bool selectLast(AcDbDatabase* database, Selection& selection) {
    std::vector<AcDbObjectId> ids = liveEntities(database->currentSpaceId());
    for (auto it = ids.rbegin(); it != ids.rend(); ++it) {
        auto* entity = arx::peek<AcDbEntity>(*it);
        if (!arx::isEntityVisible(entity)) continue;
        if (selection.accepts(entity)) selection.add(*it);
        return true;
    }
    return false;
}

void selectByPolygon(AcDbDatabase* database, const std::vector<AcGePoint2d>& polygon, bool window,
                     Selection& selection) {
    for (AcDbObjectId id : liveEntities(database->currentSpaceId())) {
        auto* entity = arx::peek<AcDbEntity>(id);
        arx::EntityShape shape;
        if (!arx::isEntityVisible(entity) || !arx::entityShape(entity, shape)) continue;
        bool hit = window ? arx::shapeInsidePolygon(shape, polygon)
                          : arx::shapeCrossesPolygon(shape, polygon);
        if (hit && selection.accepts(entity)) selection.add(id);
    }
}

bool polygonFromList(const void* list, std::vector<AcGePoint2d>& polygon) {
    for (auto* rb = static_cast<const resbuf*>(list); rb != nullptr; rb = rb->rbnext) {
        if (rb->restype != RTPOINT && rb->restype != RT3DPOINT) return false;
        polygon.emplace_back(rb->resval.rpoint[0], rb->resval.rpoint[1]);
    }
    // A repeated first vertex at the end closes nothing more.
    if (polygon.size() > 3 && polygon.front() == polygon.back()) polygon.pop_back();
    return polygon.size() >= 3;
}

bool rectangle(const void* pt1, const void* pt2, std::vector<AcGePoint2d>& polygon) {
    if (pt1 == nullptr || pt2 == nullptr) return false;
    auto* a = static_cast<const double*>(pt1);
    auto* b = static_cast<const double*>(pt2);
    double x0 = std::min(a[0], b[0]), x1 = std::max(a[0], b[0]);
    double y0 = std::min(a[1], b[1]), y1 = std::max(a[1], b[1]);
    polygon = {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
    return true;
}

AcDbObjectId entityInSpace(AcDbDatabase* database, const std::wstring& hex) {
    AcDbHandle handle(hex.c_str());
    AcDbObjectId id;
    if (handle.isNull() || database->getAcDbObjectId(id, false, handle) != Acad::eOk) {
        return AcDbObjectId();
    }
    auto* entity = arx::peek<AcDbEntity>(id);
    if (id.isErased() || entity == nullptr || entity->ownerId() != database->currentSpaceId()) {
        return AcDbObjectId();
    }
    return id;
}

void reportFound(int found, int filtered) {
    std::wstring text = L"\n" + std::to_wstring(found) + L" found";
    if (filtered > 0) {
        text += L"\n" + std::to_wstring(filtered) + (filtered == 1 ? L" was" : L" were") +
                L" filtered out.";
    }
    db::commandLine().print(text);
}

// Adds one picked or named entity, telling the user what came of it.
void addPicked(AcDbObjectId id, Selection& selection) {
    if (id.isNull()) {
        reportFound(0, 0);
        return;
    }
    bool accepted = selection.accepts(arx::peek<AcDbEntity>(id));
    if (accepted) selection.add(id);
    reportFound(accepted ? 1 : 0, accepted ? 0 : 1);
}

// The user's selection; RTNORM when it ended with Enter (or a whole selection), RTCAN
// on Esc.
int userSelect(AcDbDatabase* database, const std::wstring& prompt, bool single,
               Selection& selection) {
    arx::dropInitGet();
    double half = arx::systemVariableShort(L"PICKBOX", 3);
    for (;;) {
        std::size_t before = selection.names.size();
        db::Answer answer = db::commandLine().ask(db::InputRequest::Kind::Selection, prompt);
        switch (answer.kind) {
            case db::Answer::Kind::Cancel:
                return RTCAN;
            case db::Answer::Kind::Enter:
                return RTNORM;
            case db::Answer::Kind::Handles: {
                // A list of handles is a whole selection, as if picked and confirmed.
                int found = 0, filtered = 0;
                for (const std::wstring& h : answer.handles) {
                    AcDbObjectId id = entityInSpace(database, h);
                    if (id.isNull()) continue;
                    if (selection.accepts(arx::peek<AcDbEntity>(id))) {
                        selection.add(id);
                        ++found;
                    } else {
                        ++filtered;
                    }
                }
                reportFound(found, filtered);
                return RTNORM;
            }
            case db::Answer::Kind::PickHandle:
                addPicked(answer.handles.size() == 1 ? entityInSpace(database, answer.handles[0])
                                                     : AcDbObjectId(),
                          selection);
                break;
            case db::Answer::Kind::PickPoint:
                addPicked(arx::pickEntity(database->currentSpaceId(),
                                          {answer.point[0], answer.point[1]}, half),
                          selection);
                break;
            case db::Answer::Kind::Text: {
                std::wstring word = upperTrimmed(answer.text.c_str());
                std::array<double, 3> p{};
                int count = 0;
                if (word == L"ALL" || word == L"_ALL") {
                    reportFound(selectAllInSpace(database, selection), 0);
                } else if (word == L"L" || word == L"LAST" || word == L"_L" || word == L"_LAST") {
                    if (!selectLast(database, selection)) reportFound(0, 0);
                } else if (db::parseCoordinates(answer.text, p, count)) {
                    addPicked(arx::pickEntity(database->currentSpaceId(), {p[0], p[1]}, half),
                              selection);
                } else {
                    db::commandLine().print(L"\n*Invalid selection*\nExpects a point or Last/ALL");
                }
                break;
            }
        }
        if (single && selection.names.size() > before) return RTNORM;
    }
}

std::wstring modeKey(const ACHAR* mode) {
    std::wstring key = upperTrimmed(mode ? mode : L"");
    if (!key.empty() && key.front() == L'_') key.erase(0, 1);
    return key;
}

bool liveSetMembers(const ads_name ss, std::vector<db::EntityName>*& members) {
    members = ss ? db::selectionSets().find(db::SelectionSets::fromName(ss)) : nullptr;
    return members != nullptr;
}

bool nameOfEntity(const ads_name name, db::EntityName& out) {
    if (name == nullptr) return false;
    db::Stub* stub = db::nameToStub(name);
    if (stub == nullptr || stub->erased || !stub->object) return false;
    out = {name[0], name[1]};
    return true;
}

int makeSet(std::vector<db::EntityName> names, ads_name ss) {
    std::int64_t id = db::selectionSets().create(std::move(names));
    if (id == 0) return RTERROR;
    db::SelectionSets::toName(id, ss);
    return RTNORM;
}

}  // namespace

int acedSSGet(const ACHAR* mode, const void* pt1, const void* pt2, const resbuf* filter,
              ads_name ss) {
    if (ss != nullptr) ads_name_clear(ss);
    AcDbDatabase* database = acdbHostApplicationServices()->workingDatabase();
    if (database == nullptr || ss == nullptr) return RTERROR;
    Selection selection;
    if (filter != nullptr) {
        Node root;
        if (!FilterParser(filter).parse(root)) return RTERROR;
        selection.filter = std::move(root);
    }
    std::wstring key = modeKey(mode);
    std::vector<AcGePoint2d> polygon;
    if (key.empty() || key.front() == L':') {
        bool single = false;
        std::wstring prompt = L"\nSelect objects: ";
        for (std::size_t i = 0; i < key.size(); i += 2) {
            std::wstring flag = key.substr(i, 2);
            if (flag == L":S") {
                single = true;
            } else if (flag == L":$" && pt1 != nullptr) {
                auto* prompts = static_cast<const ACHAR* const*>(pt1);
                if (prompts[0] != nullptr) prompt = prompts[0];
            } else {
                return RTERROR;
            }
        }
        int rc = userSelect(database, prompt, single, selection);
        if (rc != RTNORM) return rc;
    } else if (key == L"X") {
        selectAll(database, selection);
    } else if (key == L"A" || key == L"ALL") {
        selectAllInSpace(database, selection);
    } else if (key == L"L") {
        selectLast(database, selection);
    } else if (key == L"CP" || key == L"WP") {
        if (!polygonFromList(pt1, polygon)) return RTERROR;
        selectByPolygon(database, polygon, key == L"WP", selection);
    } else if (key == L"C" || key == L"W") {
        if (!rectangle(pt1, pt2, polygon)) return RTERROR;
        selectByPolygon(database, polygon, key == L"W", selection);
    } else {
        return RTERROR;
    }
    if (selection.names.empty()) return RTERROR;
    return makeSet(std::move(selection.names), ss);
}

int acedSSFree(const ads_name ss) {
    if (ss == nullptr) return RTERROR;
    return db::selectionSets().free(db::SelectionSets::fromName(ss)) ? RTNORM : RTERROR;
}

int acedSSLength(const ads_name ss, Adesk::Int32* length) {
    std::vector<db::EntityName>* members = nullptr;
    if (!liveSetMembers(ss, members) || length == nullptr) return RTERROR;
    *length = static_cast<Adesk::Int32>(members->size());
    return RTNORM;
}

int acedSSName(const ads_name ss, Adesk::Int32 index, ads_name entity) {
    std::vector<db::EntityName>* members = nullptr;
    if (!liveSetMembers(ss, members) || entity == nullptr || index < 0 ||
        static_cast<std::size_t>(index) >= members->size()) {
        return RTERROR;
    }
    const db::EntityName& name = (*members)[static_cast<std::size_t>(index)];
    entity[0] = name[0];
    entity[1] = name[1];
    return RTNORM;
}

int acedSSAdd(const ads_name entity, const ads_name ss, ads_name result) {
    if (result == nullptr) return RTERROR;
    db::EntityName name{};
    bool hasEntity = entity != nullptr && !ads_name_nil(entity);
    if (hasEntity && !nameOfEntity(entity, name)) return RTERROR;
    if (ss == nullptr || ads_name_nil(ss)) {
        std::vector<db::EntityName> names;
        if (hasEntity) names.push_back(name);
        return makeSet(std::move(names), result);
    }
    std::vector<db::EntityName>* members = nullptr;
    if (!liveSetMembers(ss, members)) return RTERROR;
    if (hasEntity) db::selectionSets().add(db::SelectionSets::fromName(ss), name);
    ads_name_set(ss, result);
    return RTNORM;
}

int acedSSDel(const ads_name entity, const ads_name ss) {
    std::vector<db::EntityName>* members = nullptr;
    if (entity == nullptr || !liveSetMembers(ss, members)) return RTERROR;
    return db::selectionSets().remove(db::SelectionSets::fromName(ss),
                                      db::EntityName{entity[0], entity[1]})
               ? RTNORM
               : RTERROR;
}

int acedSSMemb(const ads_name entity, const ads_name ss) {
    std::vector<db::EntityName>* members = nullptr;
    if (entity == nullptr || !liveSetMembers(ss, members)) return RTERROR;
    bool member = std::find(members->begin(), members->end(),
                            db::EntityName{entity[0], entity[1]}) != members->end();
    return member ? RTNORM : RTERROR;
}
