#pragma once
// The sub-directories of a standard, in the host's spelling ("\\" is turned into the
// platform's separator where the path is composed).

namespace standard_folders {

inline const wchar_t* const kClassDir = L"用地分类\\";
inline const wchar_t* const kParamDir = L"参数配置\\";
inline const wchar_t* const kFacilityDir = L"配套公建\\";
inline const wchar_t* const kRoadFacilityDir = L"道路配套设施\\";

}  // namespace standard_folders
