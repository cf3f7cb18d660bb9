// "kplan symbolize": parcels onto their class layers with associative fills behind the
// linework, read back with ezdxf. The layers, patterns and loops expected come from the
// default class tables by hand: prefix "GH-", hatch suffix "-TC", G1 GRASS, underground
// classes on their own "DX-" layers with ANSI31.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "host/arx/acdocman.h"
#include "host/arx/dbhatch.h"
#include "host/arx/dbpl.h"
#include "host/dxf/Dxf.h"
#include "host/kova/KovaEnt.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/DKTCInfo.h"
#include "tests/cli/RunKplan.h"
#include "tests/support/Shapes.h"

namespace {

const std::string kSample = std::string(KPLAN_SOURCE_DIR) + "/data/samples/sample-plan.dxf";
const std::string kSymbolized =
    std::string(KPLAN_SOURCE_DIR) + "/data/samples/sample-plan-symbolized.dxf";

std::string check(const std::string& drawing) {
    std::string out = testFolder() + "/check.txt";
    std::string command = "/usr/bin/python3 '" + std::string(KPLAN_SOURCE_DIR) +
                          "/tests/cli/check_symbolized.py' '" + drawing + "' >'" + out + "' 2>&1";
    std::system(command.c_str());
    return slurp(out);
}

CStringArray list(std::initializer_list<const wchar_t*> items) {
    CStringArray out;
    for (const wchar_t* item : items)
        out.Add(item);
    return out;
}

// A residential parcel; a park with a substation as its island; a commercial parcel that
// already has a (non-associative) fill; a parcel without class; an underground shopping
// space; a current-status water parcel.
const std::string& fixture() {
    static const std::string path = [] {
        AcApDocument* document = acDocManager->appendDocument();
        const CStringArray keys = list({dk::FS_DKBH, dk::FS_DKXZ});
        AcDbObjectId home = addClosedRectangle(0, 0, 100, 100);
        CDKBJXDInfo(home).SetData(keys, list({L"A-01", L"R21"}));
        AcDbObjectId park = addClosedRectangle(100, 0, 300, 200),
                     station = addClosedRectangle(150, 50, 200, 100);
        CDKBJXDInfo(station).SetData(keys, list({L"A-03", L"U12"}));
        AcDbObjectIdArray islands;
        islands.append(station);
        CDKBJXDInfo(park).SetData(keys, list({L"A-02", L"G1"}), islands);
        AcDbObjectId shop = addClosedRectangle(0, 100, 100, 200);
        CDKBJXDInfo(shop).SetData(keys, list({L"A-04", L"B1"}));
        auto* fill = new AcDbHatch();
        fill->setPattern(AcDbHatch::kPreDefined, L"SOLID");
        AcDbObjectIdArray loop;
        loop.append(shop);
        fill->appendLoop(AcDbHatch::kExternal, loop);
        AcDbEntity* entity = fill;
        CDKTCInfo(kova::ent::SafeAddToDb(entity))
            .SetData(list({dk::LBL_DKBH, dk::LBL_DKLB}), list({L"A-04", L"B1"}));
        CDKBJXDInfo(addClosedRectangle(0, 200, 100, 300)).SetData(keys, list({L"A-05", L""}));
        CDKBJXDInfo(addClosedRectangle(300, 0, 400, 100))
            .SetDXKJData(list({dk::FS_DXKJBH, dk::FS_DXKJXZ}), list({L"DX-01", L"B1"}),
                         dk::FAPP_GHDK_DX, 1);
        CDKBJXDInfo(addClosedRectangle(400, 0, 500, 100)).SetXZData(keys, list({L"XZ-01", L"E1"}));
        std::string made = testFolder() + "/parcels.dxf";
        std::string error;
        EXPECT_TRUE(dxf::save(*document->database(), made, error)) << error;
        acDocManager->closeDocument(document);
        return made;
    }();
    return path;
}

TEST(KplanSymbolizeTest, ParcelsGoOntoTheirLayersWithAssociativeFills) {
    std::string out = testFolder() + "/symbolized.dxf";
    Outcome run = kplan("symbolize '" + fixture() + "' -o '" + out + "'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out,
              "symbolized 5 parcels on 9 layers (9 new): 4 hatches (2 patterned, 2 "
              "solid), 1 fill kept: " +
                  out + "\n");
    EXPECT_EQ(run.err, "kplan: 1 parcel has no class and is left as it was\n");
    // The park's fill has the substation as a second loop; the shop keeps its own fill;
    // the parcel without class and the current one are not touched.
    EXPECT_EQ(check(out),
              "A-01 R21 GH-R21 assoc SOLID GH-R21-TC 1\n"
              "A-02 G1 GH-G1 assoc GRASS GH-G1-TC 2\n"
              "A-03 U12 GH-U12 assoc SOLID GH-U12-TC 1\n"
              "A-04 B1 GH-B1 recorded SOLID 0\n"
              "A-05 - 0 none\n"
              "DX-01 B1 DX-B1 assoc ANSI31 DX-B1-TC 1\n"
              "XZ-01 E1 0 none\n"
              "order ok\n"
              "audit 0\n");

    // A second run finds every fill in place and makes none.
    run = kplan("symbolize '" + out + "' -o '" + out + "'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out,
              "symbolized 5 parcels on 5 layers (0 new): 0 hatches (0 patterned, 0 "
              "solid), 5 fills kept: " +
                  out + "\n");
    EXPECT_TRUE(std::filesystem::exists(out + ".bak"));
}

TEST(KplanSymbolizeTest, FlagsChooseSolidFillsNoFillsOrTheCurrentParcels) {
    std::string solid = testFolder() + "/solid.dxf";
    Outcome run = kplan("symbolize '" + fixture() + "' -o '" + solid + "' --solid");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    std::string checked = check(solid);
    EXPECT_NE(checked.find("A-02 G1 GH-G1 assoc SOLID GH-G1-TC 2\n"), std::string::npos) << checked;
    EXPECT_NE(checked.find("DX-01 B1 DX-B1 assoc SOLID DX-B1-TC 1\n"), std::string::npos)
        << checked;

    std::string bare = testFolder() + "/bare.dxf";
    run = kplan("symbolize '" + fixture() + "' -o '" + bare + "' --no-hatch");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out,
              "symbolized 5 parcels on 5 layers (5 new): no hatches (--no-hatch): " + bare + "\n");
    checked = check(bare);
    EXPECT_NE(checked.find("A-01 R21 GH-R21 none\n"), std::string::npos) << checked;

    std::string current = testFolder() + "/current.dxf";
    run = kplan("symbolize '" + fixture() + "' -o '" + current + "' --status");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    checked = check(current);
    // The class table names the layer of every class, with its planned prefix; that comes
    // before the current-status prefix, so current parcels share the planned layers.
    EXPECT_NE(checked.find("XZ-01 E1 GH-E1 assoc DASH GH-E1-TC 1\n"), std::string::npos) << checked;
    EXPECT_NE(checked.find("A-01 R21 0 none\n"), std::string::npos) << checked;
}

TEST(KplanSymbolizeTest, TheSamplePlanBecomesAMapThatEzdxfReads) {
    std::string out = testFolder() + "/sample-symbolized.dxf";
    Outcome run = kplan("symbolize '" + kSample + "' -o '" + out + "'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.err, "");
    std::string checked = check(out);
    // 59 planned parcels: the 8 green, plaza and water parcels keep the fills the sample
    // has, the other 51 get one associative fill each; current parcels stay as they are.
    int assoc = 0, recorded = 0, other = 0;
    std::size_t at = 0;
    while (at < checked.size()) {
        std::size_t end = checked.find('\n', at);
        std::string line = checked.substr(at, end - at);
        at = end == std::string::npos ? checked.size() : end + 1;
        if (line.rfind("XZ-", 0) == 0 || line.rfind("order", 0) == 0 || line.rfind("audit", 0) == 0)
            continue;
        if (line.find(" assoc ") != std::string::npos) {
            ++assoc;
        } else if (line.find(" recorded ") != std::string::npos) {
            ++recorded;
        } else {
            ++other;
            ADD_FAILURE() << line;
        }
    }
    EXPECT_EQ(assoc, 51);
    EXPECT_EQ(recorded, 8);
    EXPECT_EQ(other, 0);
    EXPECT_NE(checked.find("B-03 B1/R2 GH-B1R2 assoc SOLID GH-B1R2-TC 1\n"), std::string::npos)
        << checked;
    EXPECT_NE(checked.find("order ok\naudit 0\n"), std::string::npos) << checked;

    // The committed symbolized sample is what the program makes of the committed sample.
    EXPECT_EQ(slurp(out), slurp(kSymbolized))
        << "data/samples/sample-plan-symbolized.dxf is stale: kplan symbolize "
           "data/samples/sample-plan.dxf -o data/samples/sample-plan-symbolized.dxf";
}

TEST(KplanSymbolizeTest, BadInputLosesNothing) {
    std::string out = testFolder() + "/never.dxf";
    Outcome run = kplan("symbolize /nonexistent/plan.dxf -o '" + out + "'");
    EXPECT_NE(run.exitCode, 0);
    EXPECT_EQ(run.err, "kplan: /nonexistent/plan.dxf: cannot open the file\n");
    EXPECT_FALSE(std::filesystem::exists(out));

    run = kplan("symbolize '" + kSample + "' -o /nonexistent/dir/out.dxf");
    EXPECT_NE(run.exitCode, 0);
    EXPECT_NE(run.err.find("/nonexistent/dir/out.dxf"), std::string::npos) << run.err;
    EXPECT_EQ(run.out, "");
}

}  // namespace
