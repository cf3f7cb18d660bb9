#pragma once
// Block attributes: the definitions a block carries (ATTDEF) and the values a block
// reference carries (ATTRIB, owned by the reference, ended by a SEQEND).
#include <string>

#include "host/arx/dbents.h"
#include "kplan/Export.h"

// What attribute definitions and attributes share: the tag and the flags. Setters refuse
// with eNotOpenForWrite on a resident object not open for write.
class KPLAN_API AcDbAttributeTag {
  public:
    // The bits of group 70.
    static constexpr int kInvisibleBit = 1, kConstantBit = 2, kVerifiableBit = 4, kPresetBit = 8;
    virtual ~AcDbAttributeTag() = default;
    // A copy the caller frees with acutDelString.
    ACHAR* tag() const;
    const ACHAR* tagConst() const { return tag_.c_str(); }
    const std::wstring& tagText() const { return tag_; }
    Acad::ErrorStatus setTag(const ACHAR* tag);
    bool isInvisible() const { return flags_ & kInvisibleBit; }
    bool isConstant() const { return flags_ & kConstantBit; }
    bool isVerifiable() const { return flags_ & kVerifiableBit; }
    bool isPreset() const { return flags_ & kPresetBit; }
    Acad::ErrorStatus setInvisible(bool on) { return setFlag(kInvisibleBit, on); }
    Acad::ErrorStatus setConstant(bool on) { return setFlag(kConstantBit, on); }
    Acad::ErrorStatus setVerifiable(bool on) { return setFlag(kVerifiableBit, on); }
    Acad::ErrorStatus setPreset(bool on) { return setFlag(kPresetBit, on); }
    // All four bits at once, as group 70 holds them.
    int flags() const { return flags_; }
    Acad::ErrorStatus setFlags(int flags);
    Adesk::UInt16 fieldLength() const { return fieldLength_; }
    Acad::ErrorStatus setFieldLength(Adesk::UInt16 length);

  protected:
    virtual bool tagWritable() const = 0;
    Acad::ErrorStatus setFlag(int bit, bool on);
    std::wstring tag_;
    int flags_ = 0;
    Adesk::UInt16 fieldLength_ = 0;
};

class KPLAN_API AcDbAttributeDefinition : public AcDbText, public AcDbAttributeTag {
  public:
    ACRX_DECLARE_MEMBERS(AcDbAttributeDefinition)
    AcDbAttributeDefinition() = default;
    AcDbAttributeDefinition(const AcGePoint3d& position, const ACHAR* text, const ACHAR* tag,
                            const ACHAR* prompt, AcDbObjectId style = {});

    // A copy the caller frees with acutDelString.
    ACHAR* prompt() const;
    const ACHAR* promptConst() const { return prompt_.c_str(); }
    Acad::ErrorStatus setPrompt(const ACHAR* prompt);

  protected:
    bool tagWritable() const override { return isWriteEnabled() || !isDatabaseResident(); }

  private:
    std::wstring prompt_;
};

class KPLAN_API AcDbAttribute : public AcDbText, public AcDbAttributeTag {
  public:
    ACRX_DECLARE_MEMBERS(AcDbAttribute)
    AcDbAttribute() = default;
    AcDbAttribute(const AcGePoint3d& position, const ACHAR* text, const ACHAR* tag,
                  AcDbObjectId style = {});

  protected:
    bool tagWritable() const override { return isWriteEnabled() || !isDatabaseResident(); }
};
