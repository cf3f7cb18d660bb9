#include "host/dxf/AttributeCodecs.h"

#include "host/arx/dbattr.h"
#include "host/arx/dbblkref.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"
#include "host/db/TextCodec.h"

namespace dxf {

namespace {

template <typename T>
Field intOf(int code, std::int64_t fallback, std::int64_t (*get)(const T&),
            bool (*set)(T&, std::int64_t)) {
    return intField(
        code, true, fallback,
        [get](const AcDbObject& o, const WriteContext&) { return get(static_cast<const T&>(o)); },
        [set](AcDbObject& o, std::int64_t v) { return set(static_cast<T&>(o), v); });
}

template <typename T>
Field textOf(int code, std::wstring (*get)(const T&), bool (*set)(T&, const std::wstring&)) {
    return textField(
        code, false, L"", [get](const AcDbObject& o) { return get(static_cast<const T&>(o)); },
        [set](AcDbObject& o, const std::wstring& v) { return set(static_cast<T&>(o), v); });
}

// Tag, flags, field length and vertical alignment: what ATTRIB and ATTDEF share after
// their text part (the vertical alignment is a 74 here, not TEXT's 73).
template <typename T>
std::vector<Field> attributeFields() {
    Field tag = textOf<T>(
        2, [](const T& a) { return a.tagText(); },
        [](T& a, const std::wstring& s) { return a.setTag(s.c_str()) == Acad::eOk; });
    Field flags = intOf<T>(
        70, 0, [](const T& a) -> std::int64_t { return a.flags(); },
        [](T& a, std::int64_t v) { return v >= 0 && v <= 15 && a.setFlags(int(v)) == Acad::eOk; });
    Field length = intOf<T>(
        73, 0, [](const T& a) -> std::int64_t { return a.fieldLength(); },
        [](T& a, std::int64_t v) {
            return v >= 0 && v <= 0xFFFF &&
                   a.setFieldLength(static_cast<Adesk::UInt16>(v)) == Acad::eOk;
        });
    Field vertical = intOf<T>(
        74, 0, [](const T& a) -> std::int64_t { return a.verticalMode(); },
        [](T& a, std::int64_t v) {
            return v >= 0 && v <= 3 &&
                   a.setVerticalMode(static_cast<AcDb::TextVertMode>(v)) == Acad::eOk;
        });
    Field version = intOf<T>(
        280, 0, [](const T&) -> std::int64_t { return 0; },
        [](T&, std::int64_t v) { return v == 0; });
    return {version, tag, flags, length, vertical};
}

const FieldTable& attribTable() {
    static const FieldTable table(
        {entitySubclass(), textSubclass(), {"AcDbAttribute", attributeFields<AcDbAttribute>()}});
    return table;
}

const FieldTable& attdefTable() {
    std::vector<Field> fields = attributeFields<AcDbAttributeDefinition>();
    // The prompt comes between the version and the tag.
    fields.insert(
        fields.begin() + 1,
        textOf<AcDbAttributeDefinition>(
            3, [](const AcDbAttributeDefinition& a) { return std::wstring(a.promptConst()); },
            [](AcDbAttributeDefinition& a, const std::wstring& s) {
                return a.setPrompt(s.c_str()) == Acad::eOk;
            }));
    static const FieldTable table(
        {entitySubclass(), textSubclass(), {"AcDbAttributeDefinition", fields}});
    return table;
}

// The block name's place among the INSERT fields: after the entity's and the 66.
std::size_t insertNameBit() {
    return entitySubclass().fields.size() + 1;
}

Field scaleField(int code, double AcGeScale3d::*factor) {
    Field f;
    f.code = code;
    f.kind = FieldKind::Real;
    f.hasDefault = true;
    f.fallback.real = 1;
    f.get = [factor](const AcDbObject& o, FieldValue& v, const WriteContext&) {
        v.real = static_cast<const AcDbBlockReference&>(o).scaleFactors().*factor;
    };
    f.set = [factor](AcDbObject& o, const FieldValue& v) {
        auto& ref = static_cast<AcDbBlockReference&>(o);
        AcGeScale3d scale = ref.scaleFactors();
        scale.*factor = v.real;
        return ref.setScaleFactors(scale) == Acad::eOk;
    };
    return f;
}

const FieldTable& insertTable() {
    using Ref = AcDbBlockReference;
    // Attributes follow when the reference owns any; the flag itself is derived.
    Field follow = intOf<Ref>(
        66, 0, [](const Ref& r) -> std::int64_t { return r.attributeIds().empty() ? 0 : 1; },
        [](Ref&, std::int64_t v) { return v == 0 || v == 1; });
    Field name;
    name.code = 2;
    name.kind = FieldKind::Text;
    name.get = [](const AcDbObject& o, FieldValue& v, const WriteContext&) {
        auto* block =
            arx::peek<AcDbBlockTableRecord>(static_cast<const Ref&>(o).blockTableRecord());
        v.text = block ? block->nameText() : L"";
    };
    name.set = [](AcDbObject&, const FieldValue&) { return false; };  // see readInsert
    static const FieldTable table(
        {entitySubclass(),
         {"AcDbBlockReference",
          {follow, name, pointField<Ref>(10, &Ref::position, &Ref::setPosition),
           scaleField(41, &AcGeScale3d::sx), scaleField(42, &AcGeScale3d::sy),
           scaleField(43, &AcGeScale3d::sz),
           angleField<Ref>(50, &Ref::rotation, &Ref::setRotation, true),
           normalField<Ref>(210, &Ref::normal, &Ref::setNormal)}}});
    return table;
}

AcDbObject* readInsert(const ParsedObject& p, ReadContext& ctx, ObjectRecord& record) {
    auto* ref = new AcDbBlockReference();
    insertTable().read(*ref, p.body.data(), p.body.data() + p.body.size(), ctx, record);
    // The block is named; its record was read before (the loader keeps an INSERT whose
    // block it does not know as read). The name field refuses the name, taken here from
    // the kept tag.
    for (auto it = record.extras.begin(); it != record.extras.end(); ++it) {
        if (it->tag.code != 2) continue;
        AcDbObjectId block = insertedBlock(p, ctx);
        ref->setBlockTableRecord(block);
        if (arx::peek<AcDbBlockTableRecord>(block)->nameText() == db::utf8ToWide(it->tag.value)) {
            record.extras.erase(it);
            record.present |= std::uint64_t(1) << insertNameBit();
        }
        break;
    }
    return ref;
}

bool canonical(const FieldTable& table, const AcDbObject& obj, const WriteContext& ctx,
               const ObjectRecord& record) {
    return record.extras.empty() && record.present == table.defaultPresence(obj, ctx);
}

template <typename T, const FieldTable& (*table)()>
Codec tableCodec(std::string_view name) {
    return Codec{name, &T::desc,
                 [](const ParsedObject& p, ReadContext& ctx, ObjectRecord& r) -> AcDbObject* {
                     auto* obj = new T();
                     table().read(*obj, p.body.data(), p.body.data() + p.body.size(), ctx, r);
                     return obj;
                 },
                 [](const AcDbObject& o, WriteContext& ctx, const ObjectRecord* r) {
                     table().write(o, ctx, r);
                 },
                 [](const AcDbObject& o, const WriteContext& ctx, const ObjectRecord& r) {
                     return canonical(table(), o, ctx, r);
                 }};
}

}  // namespace

AcDbObjectId insertedBlock(const ParsedObject& parsed, const ReadContext& ctx) {
    auto* blocks = arx::peek<AcDbBlockTable>(ctx.database.blockTableId());
    for (const TagView& t : parsed.body) {
        if (t.code != 2) continue;
        AcDbObjectId id;
        if (blocks == nullptr || blocks->getAt(ctx.wide(t.value).c_str(), id) != Acad::eOk)
            return {};
        return id;
    }
    return {};
}

Codec insertCodec() {
    return Codec{"INSERT", &AcDbBlockReference::desc, &readInsert,
                 [](const AcDbObject& o, WriteContext& ctx, const ObjectRecord* r) {
                     insertTable().write(o, ctx, r);
                 },
                 [](const AcDbObject& o, const WriteContext& ctx, const ObjectRecord& r) {
                     return canonical(insertTable(), o, ctx, r);
                 }};
}

Codec attribCodec() {
    return tableCodec<AcDbAttribute, attribTable>("ATTRIB");
}

Codec attdefCodec() {
    return tableCodec<AcDbAttributeDefinition, attdefTable>("ATTDEF");
}

}  // namespace dxf
