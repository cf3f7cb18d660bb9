// A file that cannot be read gives one error naming the file, the line and what was
// expected, and never a drawing.
#include <gtest/gtest.h>

#include <string>

#include "host/arx/dbents.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"
#include "host/dxf/Dxf.h"
#include "tests/host/dxf/DxfTestSupport.h"

namespace {

std::string tags(std::initializer_list<std::pair<int, const char*>> list) {
    std::string out;
    for (const auto& [code, value] : list)
        out += std::to_string(code) + "\n" + value + "\n";
    return out;
}

const std::string kHead = tags({{0, "SECTION"}, {2, "ENTITIES"}});

TEST(DxfErrorTest, BrokenFilesGiveOneErrorWithLineAndExpectation) {
    struct Case {
        const char* what;
        std::string text;
        const char* expected;  // a part of the message
    } cases[] = {
        {"empty file", "", "test.dxf: line 1: expected \"0 SECTION\" (the file is empty)"},
        {"not DXF at all", "hello world\nthis is text\n",
         "test.dxf: line 1: expected a group code, found \"hello world\""},
        {"another format's bytes", std::string("\x89PNG\r\n\x1a\n\0\0", 10),
         "line 1: expected a group code, found \"\\x89PNG\""},
        {"a group code that is not a number", kHead + "0\nLINE\n8\n0\nten\n1.0\n",
         "test.dxf: line 9: expected a group code, found \"ten\""},
        {"a value missing at the end", kHead + "0\nLINE\n10\n",
         "test.dxf: line 8: expected the value of group code 10"},
        {"a section without ENDSEC", kHead + tags({{0, "LINE"}, {8, "0"}}),
         "test.dxf: line 9: expected \"0 ENDSEC\", found the end of the file"},
        {"ENDSEC missing before EOF", kHead + tags({{0, "LINE"}, {8, "0"}, {0, "EOF"}}),
         "test.dxf: line 9: expected an entity or \"0 ENDSEC\", found \"0 EOF\""},
        {"a block among the entities", kHead + tags({{0, "BLOCK"}, {2, "B"}, {0, "ENDSEC"}}),
         "test.dxf: line 5: expected an entity or \"0 ENDSEC\", found \"0 BLOCK\""},
        {"no EOF", kHead + tags({{0, "ENDSEC"}}),
         "test.dxf: line 7: expected \"0 EOF\", found the end of the file"},
        {"a section without a name", tags({{0, "SECTION"}, {8, "X"}}),
         "test.dxf: line 3: expected \"2\" with the section name, found \"8 X\""},
        {"something other than a section",
         tags({{0, "SECTION"}, {2, "HEADER"}, {0, "ENDSEC"}, {0, "LINE"}}),
         "test.dxf: line 7: expected \"0 SECTION\" or \"0 EOF\", found \"0 LINE\""},
        {"a polyline without SEQEND",
         kHead + tags({{0, "POLYLINE"}, {8, "0"}, {0, "VERTEX"}, {8, "0"}, {0, "LINE"}}),
         "test.dxf: line 13: expected \"0 SEQEND\" after the POLYLINE, found \"0 LINE\""},
        {"a table without a name",
         tags({{0, "SECTION"}, {2, "TABLES"}, {0, "TABLE"}, {5, "1"}, {0, "ENDTAB"}}),
         "test.dxf: line 7: expected \"2\" with the name of the table"},
        {"a record of another table",
         tags({{0, "SECTION"}, {2, "TABLES"}, {0, "TABLE"}, {2, "LAYER"}, {0, "APPID"}, {2, "A"}}),
         "test.dxf: line 9: expected a LAYER record, found \"0 APPID\""},
        {"a block without ENDBLK",
         tags({{0, "SECTION"}, {2, "BLOCKS"}, {0, "BLOCK"}, {2, "B"}, {0, "ENDSEC"}}),
         "test.dxf: line 9: expected an entity or \"0 ENDBLK\", found \"0 ENDSEC\""},
        {"an over-long line", kHead + "0\nTEXT\n1\n" + std::string(600000, 'x') + "\n",
         "test.dxf: line 8: line too long (over 524288 bytes)"},
        {"a truncated binary file", std::string("AutoCAD Binary DXF\r\n\x1a\0\0\0SECT", 28),
         "test.dxf: byte 22: unterminated string of group code 0"},
    };
    for (const Case& c : cases) {
        // Read on one thread, and with the entities on a second.
        for (int threads : {1, 2}) {
            SCOPED_TRACE(std::string(c.what) + ", threads " + std::to_string(threads));
            std::string error;
            auto database = dxftest::loadText(c.text, error, dxftest::withThreads(threads));
            EXPECT_EQ(database, nullptr);
            EXPECT_NE(error.find(c.expected), std::string::npos) << error;
            EXPECT_EQ(error.find('\n'), std::string::npos) << "one line: " << error;
        }
    }
}

TEST(DxfErrorTest, MissingFileIsNamed) {
    std::string error;
    EXPECT_EQ(dxf::load("/nonexistent/drawing.dxf", error), nullptr);
    EXPECT_EQ(error, "/nonexistent/drawing.dxf: cannot open the file");
}

// Values a class cannot take do not fail the file: the tags are kept as they were. A
// number that is not one fails it, unless the read recovers: then the entity is kept as
// read, and the report says so.
TEST(DxfErrorTest, BadValuesInKnownEntitiesAreKeptAsRead) {
    std::string text = tags({{0, "SECTION"},
                             {2, "ENTITIES"},
                             {0, "CIRCLE"},
                             {8, "0"},
                             {10, "one"},
                             {20, "2"},
                             {30, "0"},
                             {40, "-5"},
                             {0, "LWPOLYLINE"},
                             {8, "0"},
                             {90, "7"},
                             {10, "0"},
                             {20, "0"},
                             {0, "ENDSEC"},
                             {0, "EOF"}});
    std::string error;
    EXPECT_EQ(dxftest::loadText(text, error), nullptr);
    EXPECT_EQ(error, "test.dxf: line 9: group code 10: expected a number, found \"one\"");
    dxf::ReadOptions recover;
    recover.recover = true;
    auto database = dxftest::loadText(text, error, recover);
    ASSERT_TRUE(database) << error;
    const dxf::ReadReport& report = dxf::readReport(*database);
    EXPECT_EQ(report.warnings,
              std::vector<std::string>{"test.dxf: line 9: group code 10: expected a number, "
                                       "found \"one\"; the CIRCLE is kept as read"});
    ASSERT_EQ(report.keptAsRead.size(), 1u);
    EXPECT_FALSE(AcDbCircle::cast(arx::peekObject(report.keptAsRead[0])));
    std::string saved = dxftest::saveText(*database);
    EXPECT_NE(saved.find(" 10\none\n 20\n2\n 30\n0\n"), std::string::npos) << saved;
    EXPECT_NE(saved.find(" 40\n-5\n"), std::string::npos);
    // A polyline that announces 7 vertices and has 1 is kept whole.
    EXPECT_NE(saved.find(" 90\n7\n 10\n0\n 20\n0\n"), std::string::npos);
}

}  // namespace

namespace {

// What ezdxf's recover reads, kplan's recover reads too, saying what it repaired; the
// default read refuses the same files.
TEST(DxfErrorTest, RecoverReadsWhatOtherReadersRepairAndSaysSo) {
    const std::string line =
        tags({{0, "LINE"}, {5, "2A"}, {8, "0"}, {10, "0"}, {20, "0"}, {11, "1"}, {21, "1"}});
    struct Case {
        const char* what;
        std::string text;
        std::vector<std::string> warnings;
        int lines;  // LINEs read
    } cases[] = {
        {"no EOF",
         kHead + line + tags({{0, "ENDSEC"}}),
         {"test.dxf: line 21: the file ends without \"0 EOF\": what was read stands"},
         1},
        {"no ENDSEC before EOF",
         kHead + line + tags({{0, "EOF"}}),
         {"test.dxf: line 19: no \"0 ENDSEC\" before \"0 EOF\": the section ends there"},
         1},
        {"no ENDSEC and no EOF",
         kHead + line,
         {"test.dxf: line 19: the file ends without \"0 ENDSEC\": what was read stands",
          "test.dxf: line 19: the file ends without \"0 EOF\": what was read stands"},
         1},
        {"header variables after ENDSEC (dxflib)",
         tags({{0, "SECTION"},
               {2, "HEADER"},
               {9, "$ACADVER"},
               {1, "AC1015"},
               {0, "ENDSEC"},
               {9, "$INSUNITS"},
               {70, "4"},
               {0, "ENDSEC"}}) +
             kHead + line + tags({{0, "ENDSEC"}, {0, "EOF"}}),
         {"test.dxf: line 11: header variables after the HEADER's \"0 ENDSEC\": read as part of "
          "the HEADER"},
         1},
        {"no SECTION before a section name",
         tags({{0, "SECTION"}, {2, "HEADER"}, {0, "ENDSEC"}, {2, "ENTITIES"}}) + line +
             tags({{0, "ENDSEC"}, {0, "EOF"}}),
         {"test.dxf: line 7: no \"0 SECTION\" before \"2 ENTITIES\": read as a section"},
         1},
        {"a header number that is none",
         tags({{0, "SECTION"}, {2, "HEADER"}, {9, "$INSUNITS"}, {70, "four"}, {0, "ENDSEC"}}) +
             kHead + line + tags({{0, "ENDSEC"}, {0, "EOF"}}),
         {"test.dxf: line 7: group code 70: expected a number, found \"four\"; the header "
          "variable $INSUNITS is kept as read"},
         1},
        {"a view number that is none",
         tags({{0, "SECTION"},
               {2, "TABLES"},
               {0, "TABLE"},
               {2, "VPORT"},
               {0, "VPORT"},
               {2, "*ACTIVE"},
               {40, "abc"},
               {0, "ENDTAB"},
               {0, "ENDSEC"}}) +
             kHead + line + tags({{0, "ENDSEC"}, {0, "EOF"}}),
         {"test.dxf: line 13: group code 40: expected a number, found \"abc\"; the VPORT is "
          "kept as read"},
         1},
        // The loader made the block table and the two spaces (2B to 2D) before.
        {"a handle given twice",
         kHead + line + line + tags({{0, "ENDSEC"}, {0, "EOF"}}),
         {"test.dxf: line 19: handle 2A given twice: the LINE takes handle 2E"},
         2},
    };
    for (const Case& c : cases) {
        for (int threads : {1, 2}) {
            SCOPED_TRACE(std::string(c.what) + ", threads " + std::to_string(threads));
            dxf::ReadOptions options = dxftest::withThreads(threads);
            std::string error;
            if (std::string(c.what) != "a handle given twice") {
                EXPECT_EQ(dxftest::loadText(c.text, error, options), nullptr);
            }
            options.recover = true;
            auto database = dxftest::loadText(c.text, error, options);
            ASSERT_TRUE(database) << error;
            EXPECT_EQ(dxf::readReport(*database).warnings, c.warnings);
            auto* space = arx::peek<AcDbBlockTableRecord>(database->modelSpaceId());
            ASSERT_NE(space, nullptr);
            EXPECT_EQ(static_cast<int>(space->entityIds().size()), c.lines);
            if (std::string(c.what).starts_with("header")) {
                EXPECT_EQ(dxf::drawingInfo(*database).insUnits, 4);
            }
            if (std::string(c.what).starts_with("a header number")) {
                EXPECT_NE(dxftest::saveText(*database).find("$INSUNITS\n 70\nfour\n"),
                          std::string::npos);
            }
            if (std::string(c.what).starts_with("a view number")) {
                EXPECT_NE(dxftest::saveText(*database).find(" 40\nabc\n"), std::string::npos);
            }
        }
    }
}

}  // namespace

namespace {

// A POLYLINE with a vertex whose number is none is kept as read as a whole, with one
// warning: never typed with a vertex kept apart.
TEST(DxfErrorTest, APolylineWithABadVertexIsKeptWhole) {
    std::string text =
        kHead +
        tags({{0, "POLYLINE"}, {8, "0"},      {66, "1"},     {10, "0"}, {20, "0"},   {30, "0"},
              {0, "VERTEX"},   {8, "0"},      {10, "1"},     {20, "1"}, {30, "0"},   {1001, "ACAD"},
              {1040, "xyz"},   {0, "VERTEX"}, {8, "0"},      {10, "2"}, {20, "inf"}, {30, "0"},
              {0, "SEQEND"},   {8, "0"},      {0, "ENDSEC"}, {0, "EOF"}});
    std::string error;
    EXPECT_EQ(dxftest::loadText(text, error), nullptr);
    EXPECT_EQ(error, "test.dxf: line 29: group code 1040: expected a number, found \"xyz\"");
    dxf::ReadOptions recover;
    recover.recover = true;
    auto database = dxftest::loadText(text, error, recover);
    ASSERT_TRUE(database) << error;
    const dxf::ReadReport& report = dxf::readReport(*database);
    EXPECT_EQ(report.warnings,
              std::vector<std::string>{"test.dxf: line 29: group code 1040: expected a number, "
                                       "found \"xyz\"; the POLYLINE is kept as read"});
    ASSERT_EQ(report.keptAsRead.size(), 1u);
    EXPECT_FALSE(AcDb2dPolyline::cast(arx::peekObject(report.keptAsRead[0])));
    std::string saved = dxftest::saveText(*database);
    EXPECT_NE(saved.find("1040\nxyz\n"), std::string::npos);
    EXPECT_NE(saved.find(" 20\ninf\n"), std::string::npos);
}

}  // namespace

namespace {

// With recover, a table head whose number is none is kept as read; the drawing still gets
// the typed table of that kind it needs (the reader once took the kept head for it, and
// crashed on it).
TEST(DxfErrorTest, ATableHeadKeptAsReadLeavesTheDrawingItsOwnTable) {
    for (const char* name : {"LAYER", "LTYPE", "APPID", "BLOCK_RECORD"}) {
        SCOPED_TRACE(name);
        std::string text = tags({{0, "SECTION"},
                                 {2, "TABLES"},
                                 {0, "TABLE"},
                                 {2, name},
                                 {70, "four"},
                                 {0, "ENDTAB"},
                                 {0, "ENDSEC"},
                                 {0, "SECTION"},
                                 {2, "ENTITIES"},
                                 {0, "LINE"},
                                 {8, "0"},
                                 {10, "0"},
                                 {20, "0"},
                                 {11, "1"},
                                 {21, "1"},
                                 {0, "ENDSEC"},
                                 {0, "EOF"}});
        std::string error;
        EXPECT_EQ(dxftest::loadText(text, error), nullptr);
        EXPECT_EQ(error, "test.dxf: line 9: group code 70: expected a number, found \"four\"");
        dxf::ReadOptions recover;
        recover.recover = true;
        auto database = dxftest::loadText(text, error, recover);
        ASSERT_TRUE(database) << error;
        EXPECT_EQ(dxf::readReport(*database).warnings.size(), 1u);
        auto* layers = arx::peek<AcDbLayerTable>(database->layerTableId());
        ASSERT_NE(layers, nullptr);
        EXPECT_TRUE(layers->has(L"0"));
        ASSERT_NE(arx::peek<AcDbBlockTable>(database->blockTableId()), nullptr);
        auto* space = arx::peek<AcDbBlockTableRecord>(database->modelSpaceId());
        ASSERT_NE(space, nullptr);
        EXPECT_EQ(space->entityIds().size(), 1u);
        // What it saves reads back.
        std::string saved = dxftest::saveText(*database);
        EXPECT_NE(dxftest::loadText(saved, error), nullptr) << error;
    }
}

}  // namespace

namespace {

// With recover, a POLYLINE without its "0 SEQEND" ends where the next object begins, as
// it ends at the end of the file; what is saved then reads back (it once did not).
TEST(DxfErrorTest, APolylineWithoutItsSeqendEndsAtTheNextObject) {
    std::string text = kHead + tags({{0, "POLYLINE"},
                                     {8, "0"},
                                     {66, "1"},
                                     {10, "0"},
                                     {20, "0"},
                                     {0, "VERTEX"},
                                     {8, "0"},
                                     {10, "1"},
                                     {20, "2"},
                                     {0, "LINE"},
                                     {8, "0"},
                                     {10, "0"},
                                     {20, "0"},
                                     {11, "1"},
                                     {21, "1"},
                                     {0, "ENDSEC"},
                                     {0, "EOF"}});
    std::string error;
    EXPECT_EQ(dxftest::loadText(text, error), nullptr);
    EXPECT_EQ(error,
              "test.dxf: line 23: expected \"0 SEQEND\" after the POLYLINE, found \"0 LINE\"");
    dxf::ReadOptions recover;
    recover.recover = true;
    auto database = dxftest::loadText(text, error, recover);
    ASSERT_TRUE(database) << error;
    EXPECT_EQ(dxf::readReport(*database).warnings,
              std::vector<std::string>{"test.dxf: line 23: no \"0 SEQEND\" after the POLYLINE "
                                       "before \"0 LINE\": it ends there"});
    auto* space = arx::peek<AcDbBlockTableRecord>(database->modelSpaceId());
    ASSERT_NE(space, nullptr);
    EXPECT_EQ(space->entityIds().size(), 2u);
    std::string saved = dxftest::saveText(*database);
    EXPECT_NE(dxftest::loadText(saved, error, recover), nullptr) << error;
}

}  // namespace
