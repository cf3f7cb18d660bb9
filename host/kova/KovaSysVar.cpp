#include "host/kova/KovaSysVar.h"

#include "host/arx/acedads.h"
#include "host/arx/acutads.h"
#include "host/kova/KovaCad.h"

namespace kova {

bool CSysVar::save(const ACHAR* name) {
    name_ = name ? name : L"";
    saved_ = !name_.empty() && acedGetVar(name_.c_str(), &old_) == RTNORM;
    return saved_;
}

CSysVar::CSysVar(const ACHAR* name, int value) {
    if (save(name)) set_ = kova::cad::SetSysVar(name_.c_str(), value) == 1;
}

CSysVar::CSysVar(const ACHAR* name, double value) {
    if (save(name)) set_ = kova::cad::SetSysVar(name_.c_str(), value) == 1;
}

CSysVar::CSysVar(const ACHAR* name, const ACHAR* value) {
    if (save(name)) set_ = kova::cad::SetSysVar(name_.c_str(), value) == 1;
}

CSysVar::~CSysVar() {
    if (set_) acedSetVar(name_.c_str(), &old_);
    if (saved_ && old_.restype == RTSTR) acutDelString(old_.resval.rstring);
}

CSaveSysVar::CSaveSysVar(bool echoOff) {
    saved_ = kova::cad::GetSysVar(L"CMDECHO", echo_) == 1;
    if (saved_ && echoOff) kova::cad::SetSysVar(L"CMDECHO", 0);
}

CSaveSysVar::~CSaveSysVar() {
    if (saved_) kova::cad::SetSysVar(L"CMDECHO", echo_);
}

}  // namespace kova
