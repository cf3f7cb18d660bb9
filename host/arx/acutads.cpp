#include "host/arx/acutads.h"

#include <cmath>
#include <cstdarg>
#include <cstring>
#include <cwchar>

#include "host/arx/dbid.h"
#include "host/db/Database.h"
#include "host/db/Leaks.h"

namespace {

ACHAR* copyString(const ACHAR* text) {
    if (text == nullptr) text = L"";
    std::size_t n = std::wcslen(text);
    auto* copy = new ACHAR[n + 1];
    std::wmemcpy(copy, text, n + 1);
    return copy;
}

// A list built front to back.
struct Chain {
    resbuf* head = nullptr;
    resbuf* tail = nullptr;
    void append(resbuf* rb) {
        (tail ? tail->rbnext : head) = rb;
        tail = rb;
    }
};

void setBinary(resbuf* rb, const char* data, short length) {
    rb->resval.rbinary.clen = length;
    rb->resval.rbinary.buf = new char[length > 0 ? length : 1];
    if (length > 0) std::memcpy(rb->resval.rbinary.buf, data, static_cast<std::size_t>(length));
}

bool isStringKind(db::ValueKind kind) {
    return kind == db::ValueKind::String || kind == db::ValueKind::Handle;
}

}  // namespace

db::ValueKind acutValueKindOfType(int type) {
    switch (type) {
        case RTREAL:
        case RTANG:
        case RTORINT:
            return db::ValueKind::Real;
        case RTPOINT:
        case RT3DPOINT:
            return db::ValueKind::Point;
        case RTSHORT:
            return db::ValueKind::Int16;
        case RTLONG:
            return db::ValueKind::Int32;
        case RTINT64:
        case RTLONG_PTR:
            return db::ValueKind::Int64;
        case RTSTR:
        case RTDXF0:
            return db::ValueKind::String;
        case RTENAME:
        case RTPICKS:
        case -1:
        case -2:
            return db::ValueKind::ObjectRef;
        case -4:
            return db::ValueKind::String;
        case RTLB:
        case RTLE:
        case RTDOTE:
        case RTNIL:
        case RTT:
        case RTVOID:
        case RTNONE:
        case -3:
            return db::ValueKind::None;
        default:
            if (type < 0 || type >= 5000) return db::ValueKind::None;
            return db::kindOfGroupCode(type);
    }
}

resbuf* acutNewRb(int type) {
    auto* rb = new resbuf{};
    rb->restype = static_cast<short>(type);
    db::leakCounts().liveResbufs++;
    return rb;
}

resbuf* acutNewRbList(int count) {
    resbuf* head = nullptr;
    for (int i = 0; i < count; ++i) {
        resbuf* rb = acutNewRb(RTNONE);
        rb->rbnext = head;
        head = rb;
    }
    return head;
}

int acutRelRb(resbuf* list) {
    while (list != nullptr) {
        resbuf* next = list->rbnext;
        db::ValueKind kind = acutValueKindOfType(list->restype);
        if (isStringKind(kind)) {
            delete[] list->resval.rstring;
        } else if (kind == db::ValueKind::Binary) {
            delete[] list->resval.rbinary.buf;
        }
        delete list;
        db::leakCounts().liveResbufs--;
        list = next;
    }
    return RTNORM;
}

ACHAR* acutNewString(const ACHAR* text) {
    return copyString(text);
}

void acutDelString(ACHAR*& text) {
    delete[] text;
    text = nullptr;
}

int acutUpdString(const ACHAR* text, ACHAR*& target) {
    delete[] target;
    target = copyString(text);
    return RTNORM;
}

resbuf* acutBuildList(int type, ...) {
    va_list args;
    va_start(args, type);
    resbuf* list = acutBuildListV(type, args);
    va_end(args);
    return list;
}

resbuf* acutBuildListV(int type, va_list args) {
    Chain chain;
    bool ok = true;
    while (type != 0 && type != RTNONE) {
        resbuf* rb = acutNewRb(type);
        switch (acutValueKindOfType(type)) {
            case db::ValueKind::String:
            case db::ValueKind::Handle:
                rb->resval.rstring = copyString(va_arg(args, const ACHAR*));
                break;
            case db::ValueKind::Real:
                rb->resval.rreal = va_arg(args, double);
                break;
            case db::ValueKind::Point: {
                const double* p = va_arg(args, const double*);
                for (int i = 0; i < 3; ++i)
                    rb->resval.rpoint[i] = p ? p[i] : 0.0;
                break;
            }
            case db::ValueKind::Int16:
            case db::ValueKind::Bool:
                rb->resval.rint = static_cast<short>(va_arg(args, int));
                break;
            case db::ValueKind::Int32:
                rb->resval.rlong = static_cast<std::int32_t>(va_arg(args, int));
                break;
            case db::ValueKind::Int64:
                rb->resval.mnInt64 = va_arg(args, std::int64_t);
                break;
            case db::ValueKind::ObjectRef: {
                const std::int64_t* name = va_arg(args, const std::int64_t*);
                rb->resval.rlname[0] = name ? name[0] : 0;
                rb->resval.rlname[1] = name ? name[1] : 0;
                break;
            }
            case db::ValueKind::Binary: {
                const ads_binary* bin = va_arg(args, const ads_binary*);
                setBinary(rb, bin ? bin->buf : nullptr, bin ? bin->clen : 0);
                break;
            }
            case db::ValueKind::None:
                if (type != RTLB && type != RTLE && type != RTDOTE && type != RTNIL &&
                    type != RTT && type != RTVOID && type != -3) {
                    ok = false;  // a type the host does not know: the host gives no list
                }
                break;
        }
        chain.append(rb);
        if (!ok) break;
        type = va_arg(args, int);
    }
    if (!ok) {
        acutRelRb(chain.head);
        return nullptr;
    }
    return chain.head;
}

resbuf* acutDuplicateRb(const resbuf* list) {
    Chain chain;
    for (; list != nullptr; list = list->rbnext) {
        resbuf* rb = acutNewRb(list->restype);
        rb->resval = list->resval;
        db::ValueKind kind = acutValueKindOfType(list->restype);
        if (isStringKind(kind)) {
            rb->resval.rstring = copyString(list->resval.rstring);
        } else if (kind == db::ValueKind::Binary) {
            setBinary(rb, list->resval.rbinary.buf, list->resval.rbinary.clen);
        }
        chain.append(rb);
    }
    return chain.head;
}

resbuf* acutValuesToRb(const db::ValueList& values) {
    Chain chain;
    for (const db::Value& v : values) {
        resbuf* rb = acutNewRb(v.code);
        switch (acutValueKindOfType(v.code)) {
            case db::ValueKind::String:
            case db::ValueKind::Handle:
                rb->resval.rstring = copyString(v.text() ? v.text()->c_str() : L"");
                break;
            case db::ValueKind::Real:
                rb->resval.rreal =
                    std::holds_alternative<double>(v.data) ? std::get<double>(v.data) : 0.0;
                break;
            case db::ValueKind::Point:
                if (auto* p = std::get_if<db::Point>(&v.data)) {
                    for (int i = 0; i < 3; ++i)
                        rb->resval.rpoint[i] = (*p)[i];
                }
                break;
            case db::ValueKind::Int16:
            case db::ValueKind::Bool:
                if (auto* n = std::get_if<std::int64_t>(&v.data)) {
                    rb->resval.rint = static_cast<short>(*n);
                }
                break;
            case db::ValueKind::Int32:
                if (auto* n = std::get_if<std::int64_t>(&v.data)) {
                    rb->resval.rlong = static_cast<std::int32_t>(*n);
                }
                break;
            case db::ValueKind::Int64:
                if (auto* n = std::get_if<std::int64_t>(&v.data)) rb->resval.mnInt64 = *n;
                break;
            case db::ValueKind::ObjectRef:
                if (auto* s = std::get_if<db::Stub*>(&v.data))
                    db::stubToName(*s, rb->resval.rlname);
                break;
            case db::ValueKind::Binary: {
                const db::Bytes* bytes = std::get_if<db::Bytes>(&v.data);
                setBinary(rb, bytes ? reinterpret_cast<const char*>(bytes->data()) : nullptr,
                          bytes ? static_cast<short>(bytes->size()) : 0);
                break;
            }
            case db::ValueKind::None:
                break;
        }
        chain.append(rb);
    }
    return chain.head;
}

bool acutRbToValues(const resbuf* list, db::ValueList& values) {
    db::ValueList out;
    for (; list != nullptr; list = list->rbnext) {
        db::Value v;
        v.code = list->restype;
        switch (acutValueKindOfType(list->restype)) {
            case db::ValueKind::String:
            case db::ValueKind::Handle:
                v.data = std::wstring(list->resval.rstring ? list->resval.rstring : L"");
                break;
            case db::ValueKind::Real:
                v.data = list->resval.rreal;
                break;
            case db::ValueKind::Point:
                v.data = db::Point{list->resval.rpoint[0], list->resval.rpoint[1],
                                   list->resval.rpoint[2]};
                break;
            case db::ValueKind::Int16:
            case db::ValueKind::Bool:
                v.data = std::int64_t{list->resval.rint};
                break;
            case db::ValueKind::Int32:
                v.data = std::int64_t{list->resval.rlong};
                break;
            case db::ValueKind::Int64:
                v.data = list->resval.mnInt64;
                break;
            case db::ValueKind::ObjectRef:
                v.data = db::nameToStub(list->resval.rlname);
                break;
            case db::ValueKind::Binary: {
                const char* buf = list->resval.rbinary.buf;
                short n = list->resval.rbinary.clen;
                v.data = db::Bytes(buf, buf + (n > 0 ? n : 0));
                break;
            }
            case db::ValueKind::None:
                return false;
        }
        out.push_back(std::move(v));
    }
    values = std::move(out);
    return true;
}

ads_real acutAngle(const ads_point pt1, const ads_point pt2) {
    double a = std::atan2(pt2[Y] - pt1[Y], pt2[X] - pt1[X]);
    return a < 0 ? a + 2 * M_PI : a;
}

void acutPolar(const ads_point pt, ads_real angle, ads_real dist, ads_point result) {
    // Written through temporaries: result may be pt itself.
    double x = pt[X] + dist * std::cos(angle), y = pt[Y] + dist * std::sin(angle);
    result[X] = x;
    result[Y] = y;
    result[Z] = pt[Z];
}

ads_real acutDistance(const ads_point pt1, const ads_point pt2) {
    return std::sqrt((pt2[X] - pt1[X]) * (pt2[X] - pt1[X]) + (pt2[Y] - pt1[Y]) * (pt2[Y] - pt1[Y]) +
                     (pt2[Z] - pt1[Z]) * (pt2[Z] - pt1[Z]));
}
