// A large drawing's entities are read on one thread and made on another: the drawing,
// and any error, must be the same as when a small one is read on one thread.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "host/arx/dbents.h"
#include "host/arx/dbsymtb.h"
#include "host/dxf/Dxf.h"
#include "tests/host/dxf/DxfTestSupport.h"

namespace {

void tag(std::string& out, int code, const std::string& value) {
    out += std::to_string(code);
    out += '\n';
    out += value;
    out += '\n';
}

// Every kind of entity group the reader knows, again and again: a parcel with xdata,
// a 2D polyline with its vertices, a block reference with attributes, an entity of
// paper space and one the reader does not know. Megabytes, so that groups
// fall across batches and across the reader's chunks.
std::string largeDrawing(int groups, const std::string& brokenAt = "", int sectionAgainAt = -1) {
    std::string s;
    tag(s, 0, "SECTION");
    tag(s, 2, "HEADER");
    tag(s, 9, "$ACADVER");
    tag(s, 1, "AC1024");
    tag(s, 0, "ENDSEC");
    tag(s, 0, "SECTION");
    tag(s, 2, "ENTITIES");
    for (int i = 0; i < groups; ++i) {
        std::string n = std::to_string(i);
        if (std::to_string(i) == brokenAt) s += "ten\n1.0\n";
        if (i == sectionAgainAt) {
            tag(s, 0, "ENDSEC");
            tag(s, 0, "SECTION");
            tag(s, 2, "ENTITIES");
        }
        tag(s, 0, "LWPOLYLINE");
        tag(s, 8, "GH-R2");
        tag(s, 90, "4");
        tag(s, 70, "1");
        for (auto [x, y] : {std::pair{0, 0}, {30, 0}, {30, 20}, {0, 20}}) {
            tag(s, 10, std::to_string(500000 + i * 40 + x) + ".125");
            tag(s, 20, std::to_string(3000000 + y) + ".5");
            if (x == 30 && y == 0 && i % 3 == 0) tag(s, 42, "0.25");
        }
        tag(s, 1001, "FAPP_GHDK");
        tag(s, 1000, "FS_DKBH");
        tag(s, 1000, "A-" + n);
        tag(s, 1000, "FS_YDMC");
        tag(s, 1000, "二类居住用地");
        tag(s, 1040, "1.8");
        tag(s, 0, "POLYLINE");
        tag(s, 8, "0");
        tag(s, 66, "1");
        tag(s, 70, "1");
        for (int v = 0; v < 3; ++v) {
            tag(s, 0, "VERTEX");
            tag(s, 8, "0");
            tag(s, 10, std::to_string(i + v) + ".0");
            tag(s, 20, std::to_string(v * 2) + ".0");
        }
        tag(s, 0, "SEQEND");
        tag(s, 8, "0");
        tag(s, 0, "INSERT");
        tag(s, 8, "JF");
        tag(s, 66, "1");
        tag(s, 2, "FACILITY");
        tag(s, 10, n + ".0");
        tag(s, 20, "0.0");
        tag(s, 0, "ATTRIB");
        tag(s, 8, "JF");
        tag(s, 1, "公厕 " + n);
        tag(s, 2, "NAME");
        tag(s, 0, "SEQEND");
        tag(s, 0, "LINE");
        tag(s, 67, "1");
        tag(s, 8, "0");
        tag(s, 10, "0.0");
        tag(s, 20, "0.0");
        tag(s, 11, n + ".0");
        tag(s, 21, "1.0");
        tag(s, 0, "KPLAN_UNKNOWN_THING");
        tag(s, 8, "0");
        tag(s, 1, "kept as read " + n);
    }
    tag(s, 0, "ENDSEC");
    tag(s, 0, "EOF");
    return s;
}

// The message without the file name, which differs between the two ways of reading.
std::string withoutName(const std::string& error) {
    std::size_t at = error.find(": line ");
    return at == std::string::npos ? error : error.substr(at);
}

TEST(DxfLargeDrawingTest, ReadingOnTwoThreadsGivesTheSameDrawing) {
    const int groups = 4000;
    struct Case {
        const char* what;
        std::string text;
    } cases[] = {
        {"one ENTITIES section", largeDrawing(groups)},
        {"the entities in two sections", largeDrawing(groups, "", groups / 2)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ASSERT_GT(c.text.size(), 2u << 20) << "beyond two of the reader's chunks";
        std::string path = dxftest::makeTempFolder() + "/large.dxf";
        dxftest::writeFile(path, c.text);

        std::string error;
        auto aside = dxf::load(path, error);  // a file this size is read on two threads
        ASSERT_TRUE(aside) << error;
        auto here = dxftest::loadText(c.text, error, dxftest::withThreads(1));
        ASSERT_TRUE(here) << error;
        auto stream = dxftest::loadText(c.text, error);  // a stream that tells its size
        ASSERT_TRUE(stream) << error;
        std::string written = dxftest::saveText(*here);
        EXPECT_EQ(dxftest::saveText(*aside), written);
        EXPECT_EQ(dxftest::saveText(*stream), written);

        AcDbBlockTableRecord* model = nullptr;
        ASSERT_EQ(acdbOpenObject(model, aside->currentSpaceId(), AcDb::kForRead), Acad::eOk);
        int entities = 0;
        AcDbBlockTableRecordIterator* it = nullptr;
        model->newIterator(it);
        for (; !it->done(); it->step())
            ++entities;
        delete it;
        model->close();
        EXPECT_EQ(entities, groups * 4) << "the lines are in paper space";
    }
}

// The line at which a text first has the given one.
std::size_t lineOf(const std::string& text, const std::string& line) {
    std::size_t at = text.find("\n" + line + "\n");
    return static_cast<std::size_t>(std::count(text.begin(), text.begin() + at + 1, '\n')) + 1;
}

TEST(DxfLargeDrawingTest, ErrorsAreTheSameOnTwoThreads) {
    std::string broken = largeDrawing(4000, "3990");
    std::string complete = largeDrawing(4000);
    std::string truncated = complete.substr(0, complete.size() - 15);  // "0 ENDSEC 0 EOF"
    struct Case {
        const char* what;
        const std::string& text;
        std::string expected;
    } cases[] = {
        {"a broken group code near the end", broken,
         ": line " + std::to_string(lineOf(broken, "ten")) +
             ": expected a group code, found \"ten\""},
        {"the end of the file before ENDSEC", truncated,
         ": line " + std::to_string(std::count(truncated.begin(), truncated.end(), '\n') + 1) +
             ": expected \"0 ENDSEC\", found the end of the file"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        std::string path = dxftest::makeTempFolder() + "/broken.dxf";
        dxftest::writeFile(path, c.text);
        std::string aside, here;
        EXPECT_EQ(dxf::load(path, aside), nullptr);
        EXPECT_EQ(dxftest::loadText(c.text, here, dxftest::withThreads(1)), nullptr);
        EXPECT_EQ(withoutName(aside), c.expected);
        EXPECT_EQ(withoutName(here), c.expected);
    }
}

}  // namespace
