#include "host/dxf/FieldTable.h"

#include <cstring>

#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"

namespace dxf {

FieldTable::FieldTable(std::vector<Subclass> subclasses) : subclasses_(std::move(subclasses)) {
    std::size_t bit = 0;
    for (const Subclass& s : subclasses_) {
        firstBit_.push_back(bit);
        bit += s.fields.size();
    }
}

bool FieldTable::same(FieldKind kind, const FieldValue& a, const FieldValue& b) {
    switch (kind) {
        case FieldKind::Real:
        case FieldKind::Angle:
            return a.real == b.real;
        case FieldKind::Int:
            return a.integer == b.integer;
        case FieldKind::Text:
            return a.text == b.text;
        case FieldKind::Point2:
        case FieldKind::Point3:
            return a.point == b.point;
        case FieldKind::Ref:
            return a.id == b.id;
    }
    return false;
}

void FieldTable::read(AcDbObject& obj, const TagView* begin, const TagView* end, ReadContext& ctx,
                      ObjectRecord& record) const {
    bool flat = true;
    for (const TagView* t = begin; t < end; ++t) {
        if (t->code == 100) {
            flat = false;
            break;
        }
    }
    record.hasPresent = true;
    struct Taken {
        const Field* field;
        std::size_t bit;
        int anchor;
        FieldValue value;
        const TagView* first;
        const TagView* last;
    };
    std::vector<Taken> taken;
    int current = -1;
    bool inUnknown = false;
    // From "101 Embedded Object" on, the tags are another object's (an ATTDEF's or MTEXT's
    // text), whose codes the fields must not take: kept as read.
    bool embedded = false;
    int anchor = -1;
    for (const TagView* t = begin; t < end; ++t) {
        if (t->code == 101) embedded = true;
        if (embedded) {
            ctx.keep(record, kTail, *t);
            continue;
        }
        if (t->code == 100 && !flat) {
            inUnknown = true;
            for (std::size_t s = static_cast<std::size_t>(current + 1); s < subclasses_.size();
                 ++s) {
                if (t->value == subclasses_[s].marker) {
                    current = static_cast<int>(s);
                    anchor = anchorOf(s, -1);
                    inUnknown = false;
                    break;
                }
            }
            if (inUnknown) ctx.keep(record, kTail, *t);
            continue;
        }
        if (inUnknown) {
            ctx.keep(record, kTail, *t);
            continue;
        }
        const Field* field = nullptr;
        std::size_t fieldSubclass = 0, fieldIndex = 0;
        std::size_t from = flat || current < 0 ? 0 : static_cast<std::size_t>(current);
        std::size_t to = flat || current < 0 ? subclasses_.size() : from + 1;
        for (std::size_t s = from; s < to && field == nullptr; ++s) {
            for (std::size_t i = 0; i < subclasses_[s].fields.size(); ++i) {
                const Field& f = subclasses_[s].fields[i];
                if (f.code != t->code) continue;
                if (record.present & (std::uint64_t(1) << (firstBit_[s] + i))) continue;
                field = &f;
                fieldSubclass = s;
                fieldIndex = i;
                break;
            }
        }
        if (field == nullptr) {
            ctx.keep(record, anchor, *t);
            continue;
        }
        FieldValue v;
        bool ok = true;
        const TagView* first = t;
        switch (field->kind) {
            case FieldKind::Real:
                ok = ctx.real(*t, v.real);
                break;
            case FieldKind::Angle:
                ok = ctx.real(*t, v.real);
                v.real = degToRad(v.real);
                if (ok) ReadContext::spell(record, *t, v.real, radToDeg(v.real));
                break;
            case FieldKind::Int:
                ok = ctx.integer(*t, v.integer);
                break;
            case FieldKind::Text:
                v.text = ctx.wide(t->value);
                break;
            case FieldKind::Ref:
                v.id = ctx.idOf(t->value);
                break;
            case FieldKind::Point2:
            case FieldKind::Point3: {
                ok = ctx.real(*t, v.point.x);
                if (t + 1 < end && t[1].code == field->code + 10) {
                    ok = ctx.real(*++t, v.point.y) && ok;
                } else {
                    ok = false;
                }
                if (field->kind == FieldKind::Point3 && t + 1 < end &&
                    t[1].code == field->code + 20) {
                    ok = ctx.real(*++t, v.point.z) && ok;
                }
                break;
            }
        }
        if (ok && field->set(obj, v)) {
            record.present |= std::uint64_t(1) << (firstBit_[fieldSubclass] + fieldIndex);
            anchor = anchorOf(fieldSubclass, static_cast<int>(fieldIndex));
            if (ctx.probe) {
                taken.push_back(
                    {field, firstBit_[fieldSubclass] + fieldIndex, anchor, std::move(v), first, t});
            }
        } else {
            for (const TagView* k = first; k <= t; ++k)
                ctx.keep(record, anchor, *k);
        }
    }
    // A value the object changed on the way in (an index beside a true colour, an angle
    // it normalised) is kept as it was written, in the field's place.
    for (const Taken& t : taken) {
        FieldValue back;
        t.field->get(obj, back, *ctx.probe);
        if (same(t.field->kind, back, t.value)) continue;
        record.present &= ~(std::uint64_t(1) << t.bit);
        auto at = record.extras.begin();
        while (at != record.extras.end() && at->anchor != t.anchor)
            ++at;
        for (const TagView* k = t.first; k <= t.last; ++k)
            at = record.extras.insert(at, Extra{t.anchor, ctx.raw(*k)}) + 1;
    }
}

void FieldTable::writeField(const Field& f, const FieldValue& v, WriteContext& ctx,
                            const ObjectRecord* record) const {
    switch (f.kind) {
        case FieldKind::Real:
            ctx.out.real(f.code, v.real);
            break;
        case FieldKind::Angle:
            ctx.real(record, f.code, v.real, radToDeg(v.real));
            break;
        case FieldKind::Int:
            ctx.out.integer(f.code, v.integer);
            break;
        case FieldKind::Text:
            ctx.text(f.code, v.text);
            break;
        case FieldKind::Ref:
            ctx.ref(f.code, v.id);
            break;
        case FieldKind::Point2:
            ctx.out.point(f.code, v.point.x, v.point.y);
            break;
        case FieldKind::Point3:
            ctx.out.point(f.code, v.point.x, v.point.y, v.point.z);
            break;
    }
}

void FieldTable::write(const AcDbObject& obj, WriteContext& ctx, const ObjectRecord* record) const {
    ctx.extras(record, -1);
    for (std::size_t s = 0; s < subclasses_.size(); ++s) {
        ctx.out.text(100, subclasses_[s].marker);
        ctx.extras(record, anchorOf(s, -1));
        for (std::size_t i = 0; i < subclasses_[s].fields.size(); ++i) {
            const Field& f = subclasses_[s].fields[i];
            FieldValue v;
            f.get(obj, v, ctx);
            bool write = record && record->hasPresent ? (record->present >> (firstBit_[s] + i)) & 1
                                                      : !f.hasDefault || !isDefault(f, v);
            if (write && f.writeOverride) {
                f.writeOverride(v, ctx);
            } else if (write) {
                writeField(f, v, ctx, record);
            }
            ctx.extras(record, anchorOf(s, static_cast<int>(i)));
        }
    }
    ctx.extras(record, kTail);
}

std::uint64_t FieldTable::defaultPresence(const AcDbObject& obj, const WriteContext& ctx) const {
    std::uint64_t mask = 0;
    for (std::size_t s = 0; s < subclasses_.size(); ++s) {
        for (std::size_t i = 0; i < subclasses_[s].fields.size(); ++i) {
            const Field& f = subclasses_[s].fields[i];
            FieldValue v;
            f.get(obj, v, ctx);
            if (!f.hasDefault || !isDefault(f, v)) mask |= std::uint64_t(1) << (firstBit_[s] + i);
        }
    }
    return mask;
}

Subclass entitySubclass() {
    Subclass s{"AcDbEntity", {}};
    Field paper;
    paper.code = 67;
    paper.kind = FieldKind::Int;
    paper.hasDefault = true;
    paper.get = [](const AcDbObject& o, FieldValue& v, const WriteContext& ctx) {
        v.integer = o.ownerId() == ctx.database.paperSpaceId() && !o.ownerId().isNull() ? 1 : 0;
    };
    // The space follows from the owner; the flag is only checked for sense.
    paper.set = [](AcDbObject&, const FieldValue& v) { return v.integer == 0 || v.integer == 1; };
    s.fields.push_back(paper);

    Field layer;
    layer.code = 8;
    layer.kind = FieldKind::Text;
    layer.get = [](const AcDbObject& o, FieldValue& v, const WriteContext&) {
        v.text = static_cast<const AcDbEntity&>(o).layerName();
    };
    layer.set = [](AcDbObject& o, const FieldValue& v) {
        return static_cast<AcDbEntity&>(o).setLayer(v.text.c_str()) == Acad::eOk;
    };
    s.fields.push_back(layer);

    Field linetype;
    linetype.code = 6;
    linetype.kind = FieldKind::Text;
    linetype.hasDefault = true;
    linetype.fallback.text = L"ByLayer";
    linetype.get = [](const AcDbObject& o, FieldValue& v, const WriteContext&) {
        v.text = static_cast<const AcDbEntity&>(o).linetypeName();
    };
    linetype.set = [](AcDbObject& o, const FieldValue& v) {
        return static_cast<AcDbEntity&>(o).setLinetype(v.text.c_str()) == Acad::eOk;
    };
    s.fields.push_back(linetype);

    Field color;
    color.code = 62;
    color.kind = FieldKind::Int;
    color.hasDefault = true;
    color.fallback.integer = 256;
    color.get = [](const AcDbObject& o, FieldValue& v, const WriteContext&) {
        v.integer = static_cast<const AcDbEntity&>(o).colorIndex();
    };
    color.set = [](AcDbObject& o, const FieldValue& v) {
        if (v.integer < 0 || v.integer > 257) return false;
        return static_cast<AcDbEntity&>(o).setColorIndex(static_cast<Adesk::UInt16>(v.integer)) ==
               Acad::eOk;
    };
    s.fields.push_back(color);

    Field trueColor;
    trueColor.code = 420;
    trueColor.kind = FieldKind::Int;
    trueColor.hasDefault = true;
    trueColor.fallback.integer = -1;
    trueColor.get = [](const AcDbObject& o, FieldValue& v, const WriteContext&) {
        AcCmColor c = static_cast<const AcDbEntity&>(o).color();
        v.integer = c.isByColor() ? (c.red() << 16 | c.green() << 8 | c.blue()) : -1;
    };
    trueColor.set = [](AcDbObject& o, const FieldValue& v) {
        if (v.integer < 0 || v.integer > 0xFFFFFF) return false;
        AcCmColor c;
        c.setRGB(static_cast<Adesk::UInt8>(v.integer >> 16),
                 static_cast<Adesk::UInt8>(v.integer >> 8), static_cast<Adesk::UInt8>(v.integer));
        return static_cast<AcDbEntity&>(o).setColor(c) == Acad::eOk;
    };
    s.fields.push_back(trueColor);

    Field weight;
    weight.code = 370;
    weight.kind = FieldKind::Int;
    weight.hasDefault = true;
    weight.fallback.integer = -1;
    weight.get = [](const AcDbObject& o, FieldValue& v, const WriteContext&) {
        v.integer = static_cast<const AcDbEntity&>(o).lineWeight();
    };
    weight.set = [](AcDbObject& o, const FieldValue& v) {
        return static_cast<AcDbEntity&>(o).setLineWeight(static_cast<Adesk::Int16>(v.integer)) ==
               Acad::eOk;
    };
    s.fields.push_back(weight);

    Field scale;
    scale.code = 48;
    scale.kind = FieldKind::Real;
    scale.hasDefault = true;
    scale.fallback.real = 1.0;
    scale.get = [](const AcDbObject& o, FieldValue& v, const WriteContext&) {
        v.real = static_cast<const AcDbEntity&>(o).linetypeScale();
    };
    scale.set = [](AcDbObject& o, const FieldValue& v) {
        return static_cast<AcDbEntity&>(o).setLinetypeScale(v.real) == Acad::eOk;
    };
    s.fields.push_back(scale);

    Field invisible;
    invisible.code = 60;
    invisible.kind = FieldKind::Int;
    invisible.hasDefault = true;
    invisible.get = [](const AcDbObject& o, FieldValue& v, const WriteContext&) {
        v.integer = static_cast<const AcDbEntity&>(o).visibility() == AcDb::kInvisible ? 1 : 0;
    };
    invisible.set = [](AcDbObject& o, const FieldValue& v) {
        if (v.integer != 0 && v.integer != 1) return false;
        return static_cast<AcDbEntity&>(o).setVisibility(v.integer ? AcDb::kInvisible
                                                                   : AcDb::kVisible) == Acad::eOk;
    };
    s.fields.push_back(invisible);
    return s;
}

}  // namespace dxf
