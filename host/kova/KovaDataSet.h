#pragma once
// The application's data set: where the standards live, which standard and which land-use
// class table are current, and the planning type cached while the program runs.
//
// A file of a standard is <root>/<standard>/<sub-directory>/<file>. Sub-directories and
// file names may use "\" (as the configuration names them: "用地分类\\"); it becomes "/".
//
// Settings, each from the first that gives one: the setter (the command-line program's
// --data, --standard and --table), the environment (KPLAN_DATA, KPLAN_STANDARD,
// KPLAN_CLASS_TABLE), the default. The default root is the first existing of the install's
// share/kplan/standards (seen from the program or the shared library this code is in),
// <exe dir>/../share/kplan/standards, <exe dir>/data/standards, <exe dir>/../data/standards
// and the source tree's data/standards; the default standard is "通用国标" and the default
// class table "2011国标城乡用地类别.txt".
#include "host/arx/adesk.h"
#include "host/mfc/CString.h"
#include "kplan/Export.h"

class KPLAN_API CKovaDataSet {
  public:
    static CString FGetGStandardDirPath();
    static CString FGetStandardName();
    static CString FGetCurYDLB();

    // An empty value drops the setting, so that the environment or the default applies.
    // A root whose parent folder holds "patterns" (as data/standards beside data/patterns)
    // also gives the hatch pattern files.
    static void FSetGStandardDirPath(const ACHAR* root);
    static void FSetStandardName(const ACHAR* standard);
    static void FSetCurYDLB(const ACHAR* classTable);

    // Composes the path of one file of a standard (an empty standard name leaves that
    // level out, for names such as "通用国标\\用地分类\\..." that carry it). Returns 1 when
    // the file exists. The flag is 1 for class tables, which are national standards that
    // every local standard shares: when the named standard lacks the file, the copy in
    // "通用国标" is used if there is one. Configuration files (flag 0) belong to their
    // standard and are never borrowed.
    static int FGetGStandardOneFilePath(CString& path, const ACHAR* subDirectory,
                                        const ACHAR* fileName, const ACHAR* standardName, int flag);

    // The planning type cached while the program runs ("" until set).
    static CString FGetNameDict_GHType();
    static void FSetNameDict_GHType(const ACHAR* value);

    // The common standard that class tables fall back to.
    static const ACHAR* CommonStandardName() { return L"通用国标"; }
};
