// Files shaped as other programs write them come back as they were read: one small file
// per way a writer once lost or moved something.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "host/arx/dbents.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"
#include "host/dxf/Dxf.h"
#include "host/dxf/TagReader.h"
#include "tests/host/dxf/DxfTestSupport.h"

namespace {

using Tags = dxftest::Tags;

std::string text(const Tags& tags) {
    std::string out;
    for (const auto& [code, value] : tags)
        out += std::to_string(code) + "\n" + value + "\n";
    return out;
}

Tags section(const char* name, const Tags& body) {
    Tags tags = {{0, "SECTION"}, {2, name}};
    tags.insert(tags.end(), body.begin(), body.end());
    tags.push_back({0, "ENDSEC"});
    return tags;
}

Tags join(std::initializer_list<Tags> parts) {
    Tags all;
    for (const Tags& p : parts)
        all.insert(all.end(), p.begin(), p.end());
    return all;
}

// The saved tags of a drawing read from tags.
Tags roundTrip(const Tags& tags, std::string& saved) {
    std::string error;
    auto database = dxftest::loadText(text(join({tags, {{0, "EOF"}}})), error);
    EXPECT_TRUE(database) << error;
    if (!database) return {};
    saved = dxftest::saveText(*database);
    Tags out;
    EXPECT_TRUE(dxf::readTags(saved, out, error)) << error;
    return out;
}

// The tags of the record with this handle, from its "0 TYPE" to the next 0.
Tags recordOf(const Tags& tags, const std::string& handle) {
    for (std::size_t i = 0; i + 1 < tags.size(); ++i) {
        if (tags[i].first != 0 || tags[i + 1].first != 5 || tags[i + 1].second != handle) continue;
        Tags record = {tags[i]};
        for (std::size_t k = i + 1; k < tags.size() && tags[k].first != 0; ++k)
            record.push_back(tags[k]);
        return record;
    }
    return {};
}

// The tags of a record after its subclass marker, up to the next marker.
Tags subclassOf(const Tags& record, const std::string& marker) {
    Tags part;
    bool in = false;
    for (const auto& tag : record) {
        if (tag.first == 100) {
            in = tag.second == marker;
            continue;
        }
        if (in) part.push_back(tag);
    }
    return part;
}

int count(const Tags& tags, int code) {
    int n = 0;
    for (const auto& tag : tags)
        n += tag.first == code;
    return n;
}

// A solid hatch with seed points and a gradient, as AutoCAD writes it: the tags after
// the pattern stay there, once.
TEST(DxfLosslessTest, HatchTailTagsStayAfterThePattern) {
    Tags hatch = {
        {0, "HATCH"},       {5, "2A"},  {100, "AcDbEntity"}, {8, "0"},   {440, "33554661"},
        {100, "AcDbHatch"}, {10, "0"},  {20, "0"},           {30, "0"},  {210, "0"},
        {220, "0"},         {230, "1"}, {2, "SOLID"},        {70, "1"},  {71, "0"},
        {91, "1"},          {92, "2"},  {72, "0"},           {73, "1"},  {93, "3"},
        {10, "0"},          {20, "0"},  {10, "4"},           {20, "0"},  {10, "0"},
        {20, "3"},          {97, "0"},  {75, "1"},           {76, "1"},  {47, "0.25"},
        {98, "1"},          {10, "1"},  {20, "1"},           {450, "1"}, {451, "0"},
        {452, "0"},         {453, "2"}, {460, "0"},          {461, "0"}, {462, "1"},
        {470, "LINEAR"}};
    std::string saved;
    Tags out = recordOf(roundTrip(section("ENTITIES", hatch), saved), "2A");
    ASSERT_FALSE(out.empty()) << saved;
    Tags entity = subclassOf(out, "AcDbEntity"), own = subclassOf(out, "AcDbHatch");
    EXPECT_EQ(entity, (Tags{{8, "0"}, {440, "33554661"}}));
    Tags tail(hatch.begin() + 29, hatch.end());
    ASSERT_GE(own.size(), tail.size());
    EXPECT_EQ(Tags(own.end() - static_cast<std::ptrdiff_t>(tail.size()), own.end()), tail);
    EXPECT_EQ(count(out, 450), 1);
}

// A tag of the entity part that no field takes stays in the entity part: a polyline's
// own part does not get it a second time.
TEST(DxfLosslessTest, EntityTagsOfAPolylineAreWrittenOnce) {
    Tags polyline = {{0, "LWPOLYLINE"},
                     {5, "2B"},
                     {100, "AcDbEntity"},
                     {67, "0"},
                     {440, "33554661"},
                     {8, "0"},
                     {100, "AcDbPolyline"},
                     {90, "2"},
                     {70, "0"},
                     {10, "1"},
                     {20, "2"},
                     {10, "3"},
                     {20, "4"}};
    std::string saved;
    Tags out = recordOf(roundTrip(section("ENTITIES", polyline), saved), "2B");
    ASSERT_FALSE(out.empty()) << saved;
    EXPECT_EQ(count(out, 440), 1) << saved;
    EXPECT_EQ(count(subclassOf(out, "AcDbPolyline"), 440), 0);
}

// An ATTDEF's embedded text object ("101 Embedded Object" and what follows, as AutoCAD
// writes multi-line attributes) is the embedded object's: its 73 is no field length of
// the ATTDEF. An INSERT that says attributes follow (66 1) but has none keeps its SEQEND,
// or readers take the next entity for one of its attributes.
TEST(DxfLosslessTest, EmbeddedObjectsAndEmptyAttributeRunsStayAsRead) {
    Tags block = {{0, "BLOCK"}, {5, "B1"},         {8, "0"},   {2, "B"},
                  {70, "2"},    {10, "0"},         {20, "0"},  {30, "0"},
                  {3, "B"},     {0, "ATTDEF"},     {5, "A1"},  {100, "AcDbEntity"},
                  {8, "0"},     {100, "AcDbText"}, {10, "1"},  {20, "2"},
                  {30, "0"},    {40, "1"},         {1, ""},    {100, "AcDbAttributeDefinition"},
                  {280, "0"},   {3, "prompt"},     {2, "TAG"}, {70, "0"},
                  {74, "3"}};
    Tags embedded = {{101, "Embedded Object"},
                     {10, "1"},
                     {20, "2"},
                     {30, "0"},
                     {40, "1"},
                     {71, "1"},
                     {72, "5"},
                     {1, ""},
                     {73, "1"},
                     {44, "1.0"}};
    block.insert(block.end(), embedded.begin(), embedded.end());
    block.insert(block.end(), {{0, "ENDBLK"}, {5, "B2"}, {8, "0"}});
    Tags insert = {{0, "INSERT"},
                   {5, "C1"},
                   {100, "AcDbEntity"},
                   {8, "0"},
                   {100, "AcDbBlockReference"},
                   {66, "1"},
                   {2, "B"},
                   {10, "5"},
                   {20, "6"},
                   {30, "0"},
                   {0, "SEQEND"},
                   {5, "C2"},
                   {100, "AcDbEntity"},
                   {8, "0"},
                   {0, "LINE"},
                   {5, "C3"},
                   {100, "AcDbEntity"},
                   {8, "0"},
                   {100, "AcDbLine"},
                   {10, "0"},
                   {20, "0"},
                   {30, "0"},
                   {11, "1"},
                   {21, "1"},
                   {31, "0"}};
    std::string saved;
    Tags out = roundTrip(join({section("BLOCKS", block), section("ENTITIES", insert)}), saved);
    ASSERT_FALSE(out.empty()) << saved;

    Tags attdef = recordOf(out, "A1");
    ASSERT_FALSE(attdef.empty()) << saved;
    auto at = std::find(attdef.begin(), attdef.end(), embedded.front());
    ASSERT_NE(at, attdef.end()) << saved;
    Tags before(attdef.begin(), at), after(at, attdef.end());
    EXPECT_EQ(count(before, 73), 0) << saved;
    EXPECT_EQ(count(before, 44), 0);
    EXPECT_EQ(after, embedded);

    Tags seqend = recordOf(out, "C2");
    ASSERT_FALSE(seqend.empty()) << saved;
    EXPECT_EQ(seqend.front(), (std::pair<int, std::string>{0, "SEQEND"}));
    std::string error;
    auto again = dxftest::loadText(saved, error);
    ASSERT_TRUE(again) << error;
    auto* space = arx::peek<AcDbBlockTableRecord>(again->modelSpaceId());
    ASSERT_NE(space, nullptr);
    EXPECT_EQ(space->entityIds().size(), 2u);
}

// Files with only ENTITIES, or ENTITIES before BLOCKS, are written in the order readers
// expect, and read back with all their entities.
TEST(DxfLosslessTest, EntitiesBeforeBlocksAreWrittenAfterThem) {
    Tags line = {{0, "LINE"}, {8, "0"},  {10, "0"}, {20, "0"},
                 {30, "0"},   {11, "1"}, {21, "1"}, {31, "0"}};
    Tags block = {{0, "BLOCK"}, {8, "0"},  {2, "B"}, {70, "0"},     {10, "0"},
                  {20, "0"},    {30, "0"}, {3, "B"}, {0, "ENDBLK"}, {8, "0"}};
    for (const Tags& file :
         {section("ENTITIES", line), join({section("ENTITIES", line), section("BLOCKS", block)})}) {
        std::string saved, error;
        Tags out = roundTrip(file, saved);
        std::vector<std::string> sections;
        for (std::size_t i = 0; i + 1 < out.size(); ++i) {
            if (out[i] == std::pair<int, std::string>{0, "SECTION"})
                sections.push_back(out[i + 1].second);
        }
        EXPECT_EQ(sections,
                  (std::vector<std::string>{"HEADER", "TABLES", "BLOCKS", "ENTITIES", "OBJECTS"}));
        auto again = dxftest::loadText(saved, error);
        ASSERT_TRUE(again) << error;
        auto* space = arx::peek<AcDbBlockTableRecord>(again->modelSpaceId());
        ASSERT_NE(space, nullptr);
        ASSERT_EQ(space->entityIds().size(), 1u);
        EXPECT_TRUE(AcDbLine::cast(arx::peekObject(space->entityIds()[0])));
    }
}

}  // namespace

namespace {

// Angles (degrees in files, radians in memory) and normals (of unit length in memory)
// are written with the numbers the file had, which read back to the same doubles.
TEST(DxfLosslessTest, AnglesAndNormalsAreWrittenAsRead) {
    Tags arc = {{0, "ARC"},
                {5, "30"},
                {100, "AcDbEntity"},
                {8, "0"},
                {100, "AcDbCircle"},
                {10, "1"},
                {20, "2"},
                {30, "0"},
                {40, "5"},
                {100, "AcDbArc"},
                {50, "61.92751944444445"},
                {51, "30.010137640318135"}};
    Tags text = {
        {0, "TEXT"}, {5, "31"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbText"},        {10, "0"},
        {20, "0"},   {30, "0"}, {40, "2.5"},         {1, "A"}, {50, "343.9706310263608"}};
    Tags polyline = {{0, "LWPOLYLINE"},
                     {5, "32"},
                     {100, "AcDbEntity"},
                     {8, "0"},
                     {100, "AcDbPolyline"},
                     {90, "2"},
                     {70, "0"},
                     {10, "1"},
                     {20, "2"},
                     {10, "3"},
                     {20, "4"},
                     {210, "-0.0160080086036236"},
                     {220, "0.3"},
                     {230, "0.9"}};
    Tags hatch = {{0, "HATCH"},
                  {5, "33"},
                  {100, "AcDbEntity"},
                  {8, "0"},
                  {100, "AcDbHatch"},
                  {10, "7"},
                  {20, "8"},
                  {30, "0"},
                  {210, "0"},
                  {220, "0.3"},
                  {230, "0.9"},
                  {2, "SOLID"},
                  {70, "1"},
                  {71, "0"},
                  {91, "1"},
                  {92, "1"},
                  {93, "1"},
                  {72, "2"},
                  {10, "0"},
                  {20, "0"},
                  {40, "1"},
                  {50, "-45.189688093741324"},
                  {51, "19.193015881499786"},
                  {73, "1"},
                  {97, "0"},
                  {75, "1"},
                  {76, "1"},
                  {98, "0"}};
    std::string saved;
    Tags out = roundTrip(section("ENTITIES", join({arc, text, polyline, hatch})), saved);
    for (const Tags& in : {arc, text, polyline, hatch}) {
        Tags record = recordOf(out, in[1].second);
        SCOPED_TRACE(in[0].second);
        for (const auto& tag : in) {
            if (tag.first != 10 && tag.first != 20 && (tag.first < 50 || tag.first > 51) &&
                (tag.first < 210 || tag.first > 230))
                continue;
            bool found = false;
            for (const auto& written : record) {
                found = found || (written.first == tag.first &&
                                  std::stod(written.second) == std::stod(tag.second));
            }
            EXPECT_TRUE(found) << tag.first << " " << tag.second << "\n" << saved;
        }
    }
}

}  // namespace

namespace {

// References to handles the file does not hold are written back as read: another program
// may hold those objects, and a reader that checks them finds the file as it was. So are
// a draw-order entry for no entity and a reactor named twice.
TEST(DxfLosslessTest, DanglingReferencesAreKeptAsRead) {
    Tags line = {{0, "LINE"},
                 {5, "40"},
                 {102, "{ACAD_REACTORS"},
                 {330, "9A1"},
                 {102, "}"},
                 {330, "9A2"},
                 {100, "AcDbEntity"},
                 {67, "1"},
                 {8, "0"},
                 {100, "AcDbLine"},
                 {10, "0"},
                 {20, "0"},
                 {30, "0"},
                 {11, "1"},
                 {21, "1"},
                 {31, "0"}};
    Tags hatch = {{0, "HATCH"},       {5, "41"},  {330, "9A2"}, {100, "AcDbEntity"}, {8, "0"},
                  {100, "AcDbHatch"}, {10, "0"},  {20, "0"},    {30, "0"},           {210, "0"},
                  {220, "0"},         {230, "1"}, {2, "SOLID"}, {70, "1"},           {71, "1"},
                  {91, "1"},          {92, "3"},  {72, "0"},    {73, "1"},           {93, "3"},
                  {10, "0"},          {20, "0"},  {10, "1"},    {20, "0"},           {10, "0"},
                  {20, "1"},          {97, "1"},  {330, "9A3"}, {75, "1"},           {76, "1"},
                  {98, "0"}};
    Tags objects = {{0, "DICTIONARY"},
                    {5, "C"},
                    {330, "0"},
                    {100, "AcDbDictionary"},
                    {281, "1"},
                    {3, "A"},
                    {350, "9A4"},
                    {3, "B"},
                    {350, "50"},
                    {0, "XRECORD"},
                    {5, "50"},
                    {330, "C"},
                    {100, "AcDbXrecord"},
                    {280, "1"},
                    {1, "x"},
                    {330, "9A5"},
                    {0, "SORTENTSTABLE"},
                    {5, "51"},
                    {330, "9A6"},
                    {100, "AcDbSortentsTable"},
                    {330, "9A2"},
                    {331, "9A7"},
                    {5, "9A8"},
                    {331, "40"},
                    {5, "52"},
                    {331, "0"},
                    {5, "9A9"},
                    // A reactor named twice.
                    {0, "XRECORD"},
                    {5, "53"},
                    {102, "{ACAD_REACTORS"},
                    {330, "C"},
                    {330, "C"},
                    {102, "}"},
                    {330, "C"},
                    {100, "AcDbXrecord"},
                    {280, "1"},
                    {1, "y"}};
    std::string saved;
    Tags out = roundTrip(
        join({section("ENTITIES", join({line, hatch})), section("OBJECTS", objects)}), saved);
    for (const Tags& in : {line, hatch}) {
        Tags record = recordOf(out, in[1].second);
        for (const auto& tag : in) {
            if (tag.first != 330 && tag.first != 67) continue;
            EXPECT_NE(std::find(record.begin(), record.end(), tag), record.end())
                << in[0].second << ": " << tag.first << " " << tag.second << "\n"
                << saved;
        }
    }
    for (const char* handle : {"C", "50", "51", "53"}) {
        Tags in = recordOf(objects, handle), record = recordOf(out, handle);
        EXPECT_EQ(record, in) << saved;
    }
}

}  // namespace

namespace {

// R12 files give records without handles, and write the handle after the layer: those
// records get handles the file does not use, and the file's own stay where they were.
TEST(DxfLosslessTest, RecordsWithoutHandlesTakeNoHandleOfTheFile) {
    Tags header = section("HEADER", {{9, "$ACADVER"}, {1, "AC1009"}});
    Tags tables = section("TABLES", {{0, "TABLE"},
                                     {2, "LAYER"},
                                     {70, "2"},
                                     {0, "LAYER"},
                                     {2, "A"},
                                     {70, "0"},
                                     {62, "1"},
                                     {6, "CONTINUOUS"},
                                     {0, "LAYER"},
                                     {2, "B"},
                                     {70, "0"},
                                     {62, "2"},
                                     {6, "CONTINUOUS"},
                                     {0, "ENDTAB"}});
    Tags blocks = section("BLOCKS", {{0, "BLOCK"},
                                     {8, "0"},
                                     {2, "K"},
                                     {70, "0"},
                                     {10, "0"},
                                     {20, "0"},
                                     {30, "0"},
                                     {3, "K"},
                                     {0, "ENDBLK"},
                                     {8, "0"}});
    Tags entities = section("ENTITIES", {{0, "LINE"},
                                         {8, "A"},
                                         {5, "1"},
                                         {10, "0"},
                                         {20, "0"},
                                         {30, "0"},
                                         {11, "1"},
                                         {21, "1"},
                                         {31, "0"},
                                         {0, "CIRCLE"},
                                         {8, "B"},
                                         {5, "2"},
                                         {10, "0"},
                                         {20, "0"},
                                         {30, "0"},
                                         {40, "1"}});
    for (bool seed : {false, true}) {
        Tags withSeed = header;
        if (seed) withSeed.insert(withSeed.end() - 1, {{9, "$HANDSEED"}, {5, "3"}});
        std::string saved;
        Tags out = roundTrip(join({withSeed, tables, blocks, entities}), saved);
        EXPECT_EQ(recordOf(out, "1").front(), (std::pair<int, std::string>{0, "LINE"})) << saved;
        EXPECT_EQ(recordOf(out, "2").front(), (std::pair<int, std::string>{0, "CIRCLE"}));
        std::string error;
        auto again = dxftest::loadText(saved, error);
        ASSERT_TRUE(again) << error;
        auto* space = arx::peek<AcDbBlockTableRecord>(again->modelSpaceId());
        ASSERT_EQ(space->entityIds().size(), 2u);
        EXPECT_TRUE(AcDbLine::cast(arx::peekObject(space->entityIds()[0])));
    }
}

std::wstring textOf(const std::string& bytes, const std::string& codePage = "") {
    std::string file = text(join({section("HEADER", {{9, "$ACADVER"}, {1, "AC1015"}}),
                                  section("ENTITIES", {{0, "TEXT"},
                                                       {5, "A1"},
                                                       {8, "0"},
                                                       {10, "0"},
                                                       {20, "0"},
                                                       {30, "0"},
                                                       {40, "1"},
                                                       {1, bytes}}),
                                  {{0, "EOF"}}}));
    dxf::ReadOptions options;
    options.codePage = codePage;
    std::string error;
    auto database = dxftest::loadText(file, error, options);
    EXPECT_TRUE(database) << error;
    if (!database) return L"";
    auto* space = arx::peek<AcDbBlockTableRecord>(database->modelSpaceId());
    auto* textEntity = space && !space->entityIds().empty()
                           ? AcDbText::cast(arx::peekObject(space->entityIds()[0]))
                           : nullptr;
    EXPECT_TRUE(textEntity);
    return textEntity ? textEntity->text() : L"";
}

// A file before AC1021 without $DWGCODEPAGE: GBK when its text is Chinese in GBK, the
// DXF default ANSI_1252 otherwise (also for UTF-8 bytes, as other readers read them);
// the option overrides both.
TEST(DxfLosslessTest, CodePageOfAFileThatNamesNoneComesFromItsText) {
    struct Case {
        const char* what;
        std::string bytes;
        std::string option;
        std::wstring expected;
    } cases[] = {
        {"Western", "caf\xE9 \xBF\\U+03BB", "", L"caf\u00E9 \u00BF\u03BB"},
        {"Chinese in GBK", "\xB5\xD8\xBF\xE9 A1", "", L"\u5730\u5757 A1"},
        {"UTF-8", "\xC3\xB8", "", L"\u00C3\u00B8"},
        {"GBK by option", "\xB5\xD8", "ANSI_936", L"\u5730"},
        {"Chinese read as Western by option", "\xB5\xD8\xBF\xE9", "ANSI_1252",
         L"\u00B5\u00D8\u00BF\u00E9"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(textOf(c.bytes, c.option), c.expected);
    }
    std::string error;
    dxf::ReadOptions unknown;
    unknown.codePage = "ANSI_99999";
    EXPECT_EQ(dxftest::loadText(text(section("ENTITIES", {})), error, unknown), nullptr);
    EXPECT_EQ(error, "test.dxf: unknown code page \"ANSI_99999\"");
}

// The copy of such a file names the code page it was read with, so that a reader that takes
// the DXF default (ezdxf) reads the same text from it; a Western one stays as it was.
TEST(DxfLosslessTest, CopyOfAFileThatNamesNoCodePageNamesTheOneDecided) {
    struct Case {
        const char* what;
        std::string declared;  // the file's $DWGCODEPAGE, if any
        std::string option;
        std::string bytes;
        std::string written;  // the copy's $DWGCODEPAGE, if any
        std::wstring expected;
    } cases[] = {
        {"Chinese in GBK", "", "", "\xB5\xD8\xBF\xE9", "ANSI_936", L"\u5730\u5757"},
        {"Western", "", "", "caf\xE9", "", L"caf\u00E9"},
        {"declared, as read", "ansi_936", "", "\xB5\xD8", "ansi_936", L"\u5730"},
        {"declared, overridden", "ANSI_1252", "ANSI_936", "\xB5\xD8", "ANSI_936", L"\u5730"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Tags header = {{9, "$ACADVER"}, {1, "AC1015"}};
        if (!c.declared.empty())
            header.insert(header.end(), {{9, "$DWGCODEPAGE"}, {3, c.declared}});
        std::string file = text(join({section("HEADER", header),
                                      section("ENTITIES", {{0, "TEXT"},
                                                           {5, "A1"},
                                                           {8, "0"},
                                                           {10, "0"},
                                                           {20, "0"},
                                                           {30, "0"},
                                                           {40, "1"},
                                                           {1, c.bytes}}),
                                      {{0, "EOF"}}}));
        std::string error;
        dxf::ReadOptions options;
        options.codePage = c.option;
        auto database = dxftest::loadText(file, error, options);
        ASSERT_TRUE(database) << error;
        // From AC1021 on strings are UTF-8: a copy names no code page the file did not.
        std::string utf8 = dxftest::saveText(*database, "AC1024");
        EXPECT_EQ(utf8.find("$DWGCODEPAGE") != std::string::npos, !c.declared.empty());
        std::string saved = dxftest::saveText(*database, "AC1015");
        if (c.written.empty())
            EXPECT_EQ(saved.find("$DWGCODEPAGE"), std::string::npos);
        else
            EXPECT_NE(saved.find("$DWGCODEPAGE\n  3\n" + c.written + "\n"), std::string::npos);
        auto again = dxftest::loadText(saved, error);
        ASSERT_TRUE(again) << error;
        auto* space = arx::peek<AcDbBlockTableRecord>(again->modelSpaceId());
        ASSERT_EQ(space->entityIds().size(), 1u);
        auto* textEntity = AcDbText::cast(arx::peekObject(space->entityIds()[0]));
        ASSERT_TRUE(textEntity);
        EXPECT_EQ(textEntity->text(), c.expected);
    }
}

}  // namespace

namespace {

// A solid fill that also carries a pattern definition keeps it.
TEST(DxfLosslessTest, SolidHatchKeepsItsPatternTags) {
    Tags hatch = {{0, "HATCH"},
                  {5, "2C"},
                  {100, "AcDbEntity"},
                  {8, "0"},
                  {100, "AcDbHatch"},
                  {10, "0"},
                  {20, "0"},
                  {30, "0"},
                  {210, "0"},
                  {220, "0"},
                  {230, "1"},
                  {2, "SOLID"},
                  {70, "1"},
                  {71, "0"},
                  {91, "1"},
                  {92, "2"},
                  {72, "0"},
                  {73, "1"},
                  {93, "3"},
                  {10, "0"},
                  {20, "0"},
                  {10, "4"},
                  {20, "0"},
                  {10, "0"},
                  {20, "3"},
                  {97, "0"},
                  {75, "1"},
                  {76, "1"},
                  {52, "0"},
                  {41, "1"},
                  {77, "0"},
                  {78, "1"},
                  {53, "45"},
                  {43, "0"},
                  {44, "0"},
                  {45, "-0.0883883476483184"},
                  {46, "0.0883883476483185"},
                  {79, "0"},
                  {98, "0"}};
    std::string saved;
    Tags out = recordOf(roundTrip(section("ENTITIES", hatch), saved), "2C");
    Tags pattern(hatch.begin() + 28, hatch.end());
    Tags own = subclassOf(out, "AcDbHatch");
    ASSERT_GE(own.size(), pattern.size()) << saved;
    Tags tail(own.end() - static_cast<std::ptrdiff_t>(pattern.size()), own.end());
    ASSERT_EQ(tail.size(), pattern.size());
    for (std::size_t i = 0; i < tail.size(); ++i) {
        EXPECT_EQ(tail[i].first, pattern[i].first) << saved;
        if (tail[i].first != 2) {
            EXPECT_EQ(std::stod(tail[i].second), std::stod(pattern[i].second));
        }
    }
}

}  // namespace

namespace {

// A polyline that needs a record only for its owner (one the file does not hold) keeps
// its fields as the writer writes them: its constant width too.
TEST(DxfLosslessTest, APolylineWithADanglingOwnerKeepsItsWidth) {
    Tags polyline = {{0, "LWPOLYLINE"}, {5, "215"},
                     {330, "1F"},       {100, "AcDbEntity"},
                     {8, "test"},       {100, "AcDbPolyline"},
                     {90, "2"},         {70, "129"},
                     {43, "0.5"},       {10, "1"},
                     {20, "2"},         {10, "3"},
                     {20, "4"}};
    std::string saved;
    Tags out = recordOf(roundTrip(section("ENTITIES", polyline), saved), "215");
    Tags own = subclassOf(out, "AcDbPolyline");
    EXPECT_NE(std::find(own.begin(), own.end(), std::pair<int, std::string>{43, "0.5"}), own.end())
        << saved;
    EXPECT_NE(std::find(out.begin(), out.end(), std::pair<int, std::string>{330, "1F"}), out.end());
}

}  // namespace

namespace {

// An entity of the ENTITIES section stays there when its owner is a block record of
// another name (a model space some writer called "*U"), and is not copied into BLOCKS.
TEST(DxfLosslessTest, EntitiesOfTheEntitiesSectionStayThere) {
    Tags tables = section("TABLES", {{0, "TABLE"},
                                     {2, "BLOCK_RECORD"},
                                     {5, "1"},
                                     {330, "0"},
                                     {100, "AcDbSymbolTable"},
                                     {70, "1"},
                                     {0, "BLOCK_RECORD"},
                                     {5, "1F"},
                                     {330, "1"},
                                     {100, "AcDbSymbolTableRecord"},
                                     {100, "AcDbBlockTableRecord"},
                                     {2, "*U"},
                                     {0, "ENDTAB"}});
    Tags blocks = section("BLOCKS", {{0, "BLOCK"},
                                     {5, "20"},
                                     {330, "1F"},
                                     {100, "AcDbEntity"},
                                     {8, "0"},
                                     {100, "AcDbBlockBegin"},
                                     {2, "*U"},
                                     {70, "1"},
                                     {10, "0"},
                                     {20, "0"},
                                     {30, "0"},
                                     {3, "*U"},
                                     {0, "ENDBLK"},
                                     {5, "21"},
                                     {330, "1F"},
                                     {100, "AcDbEntity"},
                                     {8, "0"},
                                     {100, "AcDbBlockEnd"}});
    Tags entities = section("ENTITIES", {{0, "LINE"},
                                         {5, "8B"},
                                         {330, "1F"},
                                         {100, "AcDbEntity"},
                                         {8, "0"},
                                         {100, "AcDbLine"},
                                         {10, "0"},
                                         {20, "0"},
                                         {30, "0"},
                                         {11, "1"},
                                         {21, "1"},
                                         {31, "0"}});
    std::string saved;
    Tags out = roundTrip(join({tables, blocks, entities}), saved);
    std::string section;
    int lines = 0;
    for (std::size_t i = 0; i + 1 < out.size(); ++i) {
        if (out[i] == std::pair<int, std::string>{0, "SECTION"}) section = out[i + 1].second;
        if (out[i] == std::pair<int, std::string>{0, "LINE"}) {
            ++lines;
            EXPECT_EQ(section, "ENTITIES") << saved;
        }
    }
    EXPECT_EQ(lines, 1) << saved;
}

}  // namespace
