#pragma once
// A standards directory of a test's own, in a fresh temporary folder, that the data set
// points at while it lives: standard "测试标准", class table "测试用地.txt".
#include <filesystem>
#include <string>

class TempStandards {
  public:
    enum class Encoding { Utf8, Utf8Bom, Utf16Le, Utf16Be, Gbk };
    static constexpr const wchar_t* kStandard = L"测试标准";
    static constexpr const wchar_t* kClassTable = L"测试用地.txt";

    TempStandards();
    ~TempStandards();
    TempStandards(const TempStandards&) = delete;
    TempStandards& operator=(const TempStandards&) = delete;

    // Writes a file below the current standard ("用地分类/测试用地.txt"), or below the
    // root when the path starts with "/" ("/通用国标/用地分类/x.txt").
    std::filesystem::path write(const std::wstring& relative, const std::wstring& content,
                                Encoding encoding = Encoding::Utf8);
    // A file of the shipped standard "通用国标" ("参数配置/图层标准.ini"), copied to the
    // same place below the current standard.
    std::filesystem::path copyShipped(const std::wstring& relative);
    // The current class table, written in one go.
    std::filesystem::path writeClassTable(const std::wstring& content,
                                          Encoding encoding = Encoding::Utf8);
    const std::filesystem::path& root() const { return root_; }

    // Bytes of text in an encoding, as a planner's editor would save it.
    static std::string encode(const std::wstring& text, Encoding encoding);

  private:
    std::filesystem::path root_;
};
