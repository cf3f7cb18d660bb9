#pragma once
// Scoped system variables: the value a variable had is put back when the holder goes, on
// every path out of the code that changed it.
#include <string>

#include "host/arx/adsdef.h"
#include "kplan/Export.h"

namespace kova {

// Sets a system variable for its lifetime. When the variable cannot be read or the new
// value is refused, nothing is changed and nothing is restored.
class KPLAN_API CSysVar {
  public:
    CSysVar(const ACHAR* name, int value);
    CSysVar(const ACHAR* name, double value);
    CSysVar(const ACHAR* name, const ACHAR* value);
    ~CSysVar();
    CSysVar(const CSysVar&) = delete;
    CSysVar& operator=(const CSysVar&) = delete;

    // True when the new value was set (and will be restored).
    bool isSet() const { return set_; }

  private:
    bool save(const ACHAR* name);

    std::wstring name_;
    resbuf old_{};
    bool saved_ = false;
    bool set_ = false;
};

// Keeps the command echo (CMDECHO) as it was: with echoOff the echo is switched off for
// the holder's lifetime, otherwise only whatever the holder's owner does to it is undone.
class KPLAN_API CSaveSysVar {
  public:
    explicit CSaveSysVar(bool echoOff = true);
    ~CSaveSysVar();
    CSaveSysVar(const CSaveSysVar&) = delete;
    CSaveSysVar& operator=(const CSaveSysVar&) = delete;

  private:
    int echo_ = 1;
    bool saved_ = false;
};

}  // namespace kova
