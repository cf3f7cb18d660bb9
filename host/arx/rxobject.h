#pragma once
// Run-time class information: the host's isKindOf / cast / isA.
#include "host/arx/adesk.h"
#include "host/db/Database.h"
#include "kplan/Export.h"

class KPLAN_API AcRxClass {
  public:
    AcRxClass(const ACHAR* name, const ACHAR* dxfName, const AcRxClass* parent)
        : name_(name), dxfName_(dxfName), parent_(parent) {}
    const ACHAR* name() const { return name_; }
    const ACHAR* dxfName() const { return dxfName_; }
    const AcRxClass* myParent() const { return parent_; }
    bool isDerivedFrom(const AcRxClass* other) const {
        for (const AcRxClass* c = this; c; c = c->parent_) {
            if (c == other) return true;
        }
        return false;
    }

  private:
    const ACHAR* name_;
    const ACHAR* dxfName_;
    const AcRxClass* parent_;
};

class KPLAN_API AcRxObject : public db::ObjectBase {
  public:
    static AcRxClass* desc();
    static AcRxObject* cast(AcRxObject* obj) { return obj; }
    virtual AcRxClass* isA() const { return desc(); }
    bool isKindOf(const AcRxClass* cls) const { return isA()->isDerivedFrom(cls); }
    // A non-resident copy with the same data.
    virtual AcRxObject* clone() const = 0;
};

// Declares desc(), cast(), isA() and clone() of a concrete class.
#define ACRX_DECLARE_MEMBERS(CLASS)                                 \
    static AcRxClass* desc();                                       \
    static CLASS* cast(const AcRxObject* obj) {                     \
        return const_cast<CLASS*>(dynamic_cast<const CLASS*>(obj)); \
    }                                                               \
    AcRxClass* isA() const override {                               \
        return desc();                                              \
    }                                                               \
    AcRxObject* clone() const override {                            \
        return new CLASS(*this);                                    \
    }

// The same for a class that is never instantiated on its own.
#define ACRX_DECLARE_ABSTRACT_MEMBERS(CLASS)                        \
    static AcRxClass* desc();                                       \
    static CLASS* cast(const AcRxObject* obj) {                     \
        return const_cast<CLASS*>(dynamic_cast<const CLASS*>(obj)); \
    }                                                               \
    AcRxClass* isA() const override {                               \
        return desc();                                              \
    }

#define ACRX_WIDEN2(x) L##x
#define ACRX_WIDEN(x) ACRX_WIDEN2(x)

#define ACRX_DEFINE_MEMBERS(CLASS, PARENT, DXFNAME)                        \
    AcRxClass* CLASS::desc() {                                             \
        static AcRxClass cls(ACRX_WIDEN(#CLASS), DXFNAME, PARENT::desc()); \
        return &cls;                                                       \
    }
