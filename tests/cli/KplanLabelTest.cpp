// "kplan label": the labels land inside their parcels (checked with ezdxf), a second run
// replaces them, and bad input loses nothing.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/cli/RunKplan.h"

namespace {

const std::string kSample = std::string(KPLAN_SOURCE_DIR) + "/data/samples/sample-plan.dxf";

std::string checkLabels(const std::string& drawing, const std::string& layer) {
    std::string out = testFolder() + "/check.txt";
    std::string command = "/usr/bin/python3 '" + std::string(KPLAN_SOURCE_DIR) +
                          "/tests/cli/check_labels.py' '" + drawing + "' '" + layer + "' >'" + out +
                          "' 2>&1";
    std::system(command.c_str());
    return slurp(out);
}

TEST(KplanLabelTest, LabelsLieInsideTheirParcels) {
    std::string out = testFolder() + "/labelled.dxf";
    Outcome run = kplan("label '" + kSample + "' -o '" + out + "'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, "labelled 63 parcels on layer labels: " + out + "\n");
    EXPECT_EQ(run.err, "");
    // Every parcel of the sample has a number and a class: two lines each.
    EXPECT_EQ(checkLabels(out, "labels"), "ok 126 63\n");

    // Labelling the labelled drawing again replaces the labels instead of adding more.
    run = kplan("label '" + out + "' -o '" + out + "'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(checkLabels(out, "labels"), "ok 126 63\n");
    EXPECT_TRUE(std::filesystem::exists(out + ".bak"));

    std::string custom = testFolder() + "/custom.dxf";
    run = kplan("label '" + kSample + "' -o '" + custom + "' --layer 地块标注");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(checkLabels(custom, "地块标注"), "ok 126 63\n");
}

TEST(KplanLabelTest, BadInputLosesNothing) {
    std::string out = testFolder() + "/never.dxf";
    Outcome run = kplan("label /nonexistent/plan.dxf -o '" + out + "'");
    EXPECT_NE(run.exitCode, 0);
    EXPECT_EQ(run.err, "kplan: /nonexistent/plan.dxf: cannot open the file\n");
    EXPECT_FALSE(std::filesystem::exists(out));

    run = kplan("label '" + kSample + "' -o /nonexistent/dir/out.dxf");
    EXPECT_NE(run.exitCode, 0);
    EXPECT_NE(run.err.find("/nonexistent/dir/out.dxf"), std::string::npos) << run.err;
    EXPECT_EQ(run.out, "");

    run = kplan("label '" + kSample + "'");
    EXPECT_NE(run.exitCode, 0);  // no -o
}

}  // namespace
