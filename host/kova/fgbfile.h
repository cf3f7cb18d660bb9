#pragma once
// The maker's file library: existence test, a line reader and writer for text files, and
// an ini reader that also serves the class tables (which are ini files with class lines).
//
// Paths are wide strings; "\" separates directories as on the maker's platform and is
// turned into "/". Text files are decoded once when opened: UTF-8 with or without BOM,
// UTF-16 LE or BE with BOM, otherwise GBK. Whatever is written is UTF-8 with a BOM.
#include <cstdio>
#include <string>
#include <vector>

#include "host/mfc/CString.h"
#include "host/mfc/CStringArray.h"
#include "host/mfc/afx.h"
#include "kplan/Export.h"

namespace fgbfile {

// TRUE when the path names an existing regular file (or a link to one).
KPLAN_API BOOL FileExist(LPCTSTR path);

class KPLAN_API CFStdioFile {
  public:
    enum OpenFlags : UINT {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        modeReadWrite = 0x0002,
        shareDenyNone = 0x0040,
        modeCreate = 0x1000,
        modeNoTruncate = 0x2000,
        typeText = 0x4000,
        typeBinary = 0x8000,
    };

    CFStdioFile() = default;
    ~CFStdioFile();
    CFStdioFile(const CFStdioFile&) = delete;
    CFStdioFile& operator=(const CFStdioFile&) = delete;

    // Reading (no modeWrite): the file must exist; it is read and decoded at once. Writing
    // (modeWrite): modeCreate starts a new file with a UTF-8 BOM, modeCreate|modeNoTruncate
    // appends to an existing file or starts a new one, modeWrite alone appends to an
    // existing file. modeReadWrite is not supported and fails. Open closes what was open.
    BOOL Open(LPCTSTR path, UINT flags);
    // The next line without its end (\r\n, \n or \r); FALSE after the last line. A final
    // line break does not start another line.
    BOOL ReadString(CString& line);
    // Writes the text as UTF-8, line breaks as given. FALSE when not open for writing or
    // the write fails.
    BOOL WriteString(LPCTSTR text);
    // Reading starts again at the first line.
    void SeekToBegin() { next_ = 0; }
    BOOL IsOpen() const { return reading_ || out_ != nullptr; }
    CString GetFilePath() const { return path_; }
    // Flushes and closes a written file; FALSE when that fails. Safe to call twice.
    BOOL Close();

  private:
    CString path_;
    bool reading_ = false;
    std::vector<std::wstring> lines_;
    std::size_t next_ = 0;
    std::FILE* out_ = nullptr;
};

// An ini file read once at construction. Sections "[name]" and keys "key=value" are
// trimmed; a value enclosed in a pair of matching quotes loses them. Lines starting with
// ";" are comments and lines without "=" (the class lines of a class table) are not keys.
// Section and key names are matched ignoring ASCII case. When a section occurs twice only
// the first one is read, and within a section the first of two equal keys wins, as with
// the Windows profile functions. Keys before the first section belong to none.
class KPLAN_API CIniFile {
  public:
    // The flag is part of the maker's interface and changes nothing here.
    explicit CIniFile(LPCTSTR path, int flag = 0);

    // TRUE when the file was read at construction (or has been saved since).
    BOOL IsOpen() const { return open_; }
    // TRUE when the file exists on disk now.
    BOOL Exists() const;
    CString GetPath() const { return path_; }

    // "" when the section or key is missing.
    CString GetValue(LPCTSTR section, LPCTSTR key) const;
    // Every key and value of the section in file order, repeated keys included; FALSE and
    // empty lists when the section is missing.
    BOOL GetValue(LPCTSTR section, CStringArray& keys, CStringArray& values) const;
    // Section names in file order, each once; returns their count.
    int GetSections(CStringArray& sections) const;

    // Changes the first occurrence of the key, or adds it at the end of its section, or
    // adds the section at the end of the file. Other lines, comments and class lines stay
    // as they are. FALSE for an empty name, a section name with "]", a key with "=" or a
    // line break anywhere. A value that would not survive trimming or quote removal is
    // written in double quotes.
    BOOL SetValue(LPCTSTR section, LPCTSTR key, LPCTSTR value);
    // Writes the file as UTF-8 with BOM through a temporary file renamed over it, so a
    // failed save leaves the old file whole. FALSE when that fails.
    BOOL Save();

  private:
    struct Entry {
        std::wstring key;
        std::wstring value;
        std::size_t line = 0;
    };
    struct Section {
        std::wstring name;
        std::size_t end = 0;  // one past its last non-comment line
        std::vector<Entry> entries;
    };

    void parse();
    const Section* findSection(LPCTSTR name) const;

    CString path_;
    bool open_ = false;
    std::vector<std::wstring> lines_;
    std::string newline_ = "\n";
    std::vector<Section> sections_;
};

}  // namespace fgbfile
