// Several drawings in one run of kplan stats and kplan list: a folder with a broken file
// among good ones, the order of the output, the jsonl stream read back and summed, --quiet,
// and the recipe of scripts/ that fans the drawings out on GNU parallel.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "host/arx/acdocman.h"
#include "host/dxf/Dxf.h"
#include "host/kova/ArxDataXData.h"
#include "record/DKKeys.h"
#include "tests/cli/Json.h"
#include "tests/cli/RunKplan.h"
#include "tests/support/Shapes.h"

namespace {

namespace fs = std::filesystem;

void planned(AcDbObjectId id, const wchar_t* cls, const wchar_t* people) {
    ARX_DATA::CFGisXData::SetTo(id, dk::FAPP_GHDK, L"", dk::TYPE_KGDK);
    ARX_DATA::CFGisXData::SetTo(id, dk::FS_DKXZ, cls, dk::FAPP_GHDK);
    ARX_DATA::CFGisXData::SetTo(id, dk::FN_ZRKS, people, dk::FAPP_GHDK);
}

// A plan of whole hectares: residential parcels of 100 x 100 m, parks of 100 x 50 m, 100
// people a residential parcel; scopes > 1 gives it that many scope lines, the largest
// around everything.
void savePlan(const std::string& path, int residential, int parks, int scopes = 0) {
    AcApDocument* document = acDocManager->appendDocument();
    for (int k = 0; k < residential; ++k)
        planned(addClosedRectangle(k * 200.0, 0, k * 200.0 + 100, 100), L"R21", L"100");
    for (int k = 0; k < parks; ++k)
        planned(addClosedRectangle(k * 200.0, 300, k * 200.0 + 100, 350), L"G1", L"0");
    for (int s = 0; s < scopes; ++s) {
        AcDbObjectId scope = addClosedRectangle(-10 - s, -10 - s, 5000 - s * 100, 1000);
        ARX_DATA::CFGisXData::SetTo(scope, dk::FAPP_GHFWX, L"", L"规划范围线");
    }
    std::string error;
    EXPECT_TRUE(dxf::save(*document->database(), path, error)) << error;
    acDocManager->closeDocument(document);
}

// The folder: a.dxf 1 R + 1 G, b.dxf 2 R, c/ (a subfolder) d.dxf 3 R + 2 G, broken.dxf a
// DXF cut off in the middle, and notes.txt that is no drawing. Areas, by construction:
// R 1 + 2 (+ 3 in the subfolder) ha, G 0.5 (+ 1) ha.
struct Folder {
    std::string dir, a, b, broken, sub;
};

const Folder& folder() {
    static const Folder made = [] {
        Folder f;
        f.dir = testFolder() + "/plans";
        fs::create_directories(f.dir + "/c");
        f.a = f.dir + "/a.dxf";
        f.b = f.dir + "/b.dxf";
        f.broken = f.dir + "/broken.dxf";
        f.sub = f.dir + "/c/d.dxf";
        savePlan(f.a, 1, 1);
        savePlan(f.b, 2, 0);
        savePlan(f.sub, 3, 2);
        std::string whole = slurp(f.a);
        std::ofstream(f.broken, std::ios::binary) << whole.substr(0, whole.size() / 2);
        std::ofstream(f.dir + "/notes.txt") << "not a drawing\n";
        return f;
    }();
    return made;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

// The words of the row of code in the section of out that begins with title.
std::vector<std::string> rowAfter(const std::string& out, const std::string& title,
                                  const std::string& code) {
    std::size_t at = out.find(title);
    if (at == std::string::npos) return {};
    for (const std::string& line : linesOf(out.substr(at))) {
        std::istringstream words(line);
        std::vector<std::string> row;
        for (std::string w; words >> w;)
            row.push_back(w);
        if (!row.empty() && row[0] == code) return row;
    }
    return {};
}

const Json* tableOf(const Json& object, const std::string& key) {
    const Json& tables = object["tables"];
    for (std::size_t i = 0; i < tables.size(); ++i)
        if (tables[i]["key"].string() == key) return &tables[i];
    return nullptr;
}

// The value of a column (by measure) of the row with code, null when none.
const Json& valueOf(const Json& table, const std::string& code, const std::string& measure) {
    static const Json none;
    for (std::size_t r = 0; r < table["rows"].size(); ++r) {
        const Json& row = table["rows"][r];
        if (row["code"].string() != code) continue;
        for (std::size_t c = 0; c < table["columns"].size(); ++c)
            if (table["columns"][c]["measure"].string() == measure &&
                table["columns"][c]["scenario"].string() == "planned")
                return row["values"][c];
    }
    return none;
}

TEST(KplanBatchTest, AFolderWithABrokenDrawingReportsTheOthersAndExitsThree) {
    const Folder& f = folder();
    Outcome run = kplan("stats '" + f.dir + "'");
    EXPECT_EQ(run.exitCode, 3) << run.err;
    // One message, naming the broken file; the others' tables, in the folder's order.
    std::vector<std::string> errors = linesOf(run.err);
    ASSERT_EQ(errors.size(), 1u) << run.err;
    EXPECT_EQ(errors[0].rfind("kplan: " + f.broken + ":", 0), 0u) << errors[0];
    std::size_t a = run.out.find("图纸：" + f.a), b = run.out.find("图纸：" + f.b),
                total = run.out.find("== 合计：2 张图纸 ==");
    ASSERT_NE(a, std::string::npos) << run.out;
    ASSERT_NE(b, std::string::npos);
    ASSERT_NE(total, std::string::npos);
    EXPECT_LT(a, b);
    EXPECT_LT(b, total);
    EXPECT_EQ(run.out.find("d.dxf"), std::string::npos) << "the subfolder without --recursive";
    // The combined table: R 1 + 2 = 3 ha, G 0.5 ha of 3.5 ha; 300 people.
    std::string combined = run.out.substr(total);
    EXPECT_EQ(rowAfter(combined, "城市建设用地平衡表", "R"),
              (std::vector<std::string>{"R", "居住用地", "3.00", "85.71", "100.00"}));
    EXPECT_EQ(rowAfter(combined, "城市建设用地平衡表", "G"),
              (std::vector<std::string>{"G", "绿地与广场用地", "0.50", "14.29", "16.67"}));
    EXPECT_EQ(rowAfter(combined, "城市建设用地平衡表", "H11"),
              (std::vector<std::string>{"H11", "城市建设用地", "3.50", "100.00", "116.67"}));

    // --recursive takes the subfolder's drawing too (after the folder's own, by path).
    Outcome deep = kplan("stats --recursive '" + f.dir + "'");
    EXPECT_EQ(deep.exitCode, 3);
    EXPECT_LT(deep.out.find("图纸：" + f.b), deep.out.find("图纸：" + f.sub));
    EXPECT_EQ(rowAfter(deep.out.substr(deep.out.find("== 合计：3 张图纸 ==")), "城市建设用地平衡表",
                       "H11"),
              (std::vector<std::string>{"H11", "城市建设用地", "7.50", "100.00", "125.00"}));

    // Only broken drawings: exit 1, each named.
    Outcome none = kplan("stats '" + f.broken + "' '" + f.dir + "/missing.dxf'");
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_EQ(linesOf(none.err).size(), 2u) << none.err;
    EXPECT_EQ(none.out, "");
    // kplan list goes the same way.
    Outcome list = kplan("list '" + f.dir + "'");
    EXPECT_EQ(list.exitCode, 3);
    EXPECT_EQ(linesOf(list.err).size(), 1u) << list.err;
    EXPECT_NE(list.out.find("== total of 2 drawings: 4 parcels =="), std::string::npos) << list.out;
}

TEST(KplanBatchTest, DrawingsComeOutInTheOrderGivenWhateverOrderTheyFinish) {
    const Folder& f = folder();
    // The large drawing first: it finishes last, yet is printed first.
    std::string args = "stats '" + f.sub + "' '" + f.b + "' '" + f.a + "'";
    Outcome first = kplan(args);
    EXPECT_EQ(first.exitCode, 0) << first.err;
    std::size_t sub = first.out.find("图纸：" + f.sub), b = first.out.find("图纸：" + f.b),
                a = first.out.find("图纸：" + f.a);
    EXPECT_LT(sub, b);
    EXPECT_LT(b, a);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(kplan(args).out, first.out) << "run " << i;
    // One drawing as before: what kplan stats DRAWING printed is the first section here.
    Outcome alone = kplan("stats '" + f.sub + "'");
    EXPECT_EQ(first.out.substr(0, alone.out.size()), alone.out);
}

TEST(KplanBatchTest, TheJsonlStreamSummedIsTheCombinedTable) {
    const Folder& f = folder();
    Outcome run = kplan("stats --recursive --format jsonl '" + f.dir + "'");
    EXPECT_EQ(run.exitCode, 3);
    std::vector<std::string> lines = linesOf(run.out);
    ASSERT_EQ(lines.size(), 5u) << run.out;  // four drawings, then the total
    double r = 0, h11 = 0;
    long people = 0;
    int drawings = 0, failed = 0;
    for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
        Json line = Json::parse(lines[i]);
        ASSERT_TRUE(line.ok()) << lines[i];
        EXPECT_EQ(line["kind"].string(), "drawing");
        if (line.has("error")) {
            ++failed;
            EXPECT_EQ(line["name"].string(), "broken.dxf");
            EXPECT_EQ(line["error"].string().rfind(f.broken + ":", 0), 0u);
            continue;
        }
        ++drawings;
        // The content of --format json of that drawing alone.
        Outcome alone = kplan("stats --format json '" + line["path"].string() + "'");
        Json json = Json::parse(alone.out);
        ASSERT_TRUE(json.ok());
        for (const std::string& key : json.keys())
            EXPECT_TRUE(line.has(key)) << key;
        const Json* table = tableOf(line, "urban_construction");
        ASSERT_NE(table, nullptr);
        EXPECT_EQ(valueOf(*table, "R", "area").number(),
                  valueOf(*tableOf(json, "urban_construction"), "R", "area").number());
        r += valueOf(*table, "R", "area").number();
        h11 += valueOf(*table, "H11", "area").number();
        people += static_cast<long>(line["balance"][0]["population"].number());
    }
    EXPECT_EQ(drawings, 3);
    EXPECT_EQ(failed, 1);
    Json total = Json::parse(lines.back());
    ASSERT_TRUE(total.ok()) << lines.back();
    EXPECT_EQ(total["kind"].string(), "total");
    EXPECT_EQ(total["succeeded"].number(), 3);
    EXPECT_EQ(total["failed"].number(), 1);
    const Json* combined = tableOf(total, "urban_construction");
    ASSERT_NE(combined, nullptr);
    // Sums of the drawings' lines: areas added, shares and the area a person from them.
    EXPECT_NEAR(valueOf(*combined, "R", "area").number(), r, 1e-9);
    EXPECT_NEAR(valueOf(*combined, "H11", "area").number(), h11, 1e-9);
    EXPECT_NEAR(valueOf(*combined, "R", "share").number(), std::round(r / h11 * 10000) / 100, 1e-9);
    EXPECT_NEAR(valueOf(*combined, "H11", "per_person_m2").number(),
                std::round(h11 * 10000 / static_cast<double>(people) * 100) / 100, 1e-9);
    EXPECT_DOUBLE_EQ(r, 6);
    EXPECT_EQ(people, 600);
}

TEST(KplanBatchTest, QuietKeepsStderrForErrors) {
    const Folder& f = folder();
    // Two scope lines: stats says on stderr which one it uses, unless --quiet.
    std::string scoped = testFolder() + "/scoped.dxf";
    savePlan(scoped, 1, 0, 2);
    Outcome loud = kplan("stats '" + scoped + "'");
    EXPECT_EQ(loud.exitCode, 0);
    EXPECT_NE(loud.err.find("planning scope lines; using the largest"), std::string::npos);
    for (const std::string& place : {std::string("--quiet stats"), std::string("stats --quiet")}) {
        Outcome quiet = kplan(place + " '" + scoped + "' --format json");
        EXPECT_EQ(quiet.exitCode, 0);
        EXPECT_EQ(quiet.err, "") << place;
        // The warnings of the result stay in it (the land of the scope without parcels).
        Json json = Json::parse(quiet.out);
        ASSERT_TRUE(json.ok());
        EXPECT_GT(json["warnings"].size(), 0u);
    }
    // In a batch the warning names its drawing; --quiet drops it, not the error.
    Outcome batch = kplan("stats '" + scoped + "' '" + f.broken + "'");
    EXPECT_EQ(batch.exitCode, 3);
    EXPECT_NE(batch.err.find("kplan: " + scoped + ": 2 planning scope lines"), std::string::npos)
        << batch.err;
    Outcome quiet = kplan("stats --quiet '" + scoped + "' '" + f.broken + "'");
    EXPECT_EQ(quiet.exitCode, 3);
    ASSERT_EQ(linesOf(quiet.err).size(), 1u) << quiet.err;
    EXPECT_NE(quiet.err.find(f.broken), std::string::npos);
    // Options of one drawing refused for several; csv is written for one drawing.
    EXPECT_EQ(kplan("stats --format csv '" + f.dir + "'").exitCode, 2);
    EXPECT_EQ(kplan("stats --map x.png '" + f.a + "' '" + f.b + "'").exitCode, 2);
}

// The recipe of scripts/: GNU parallel with local workers, then the combining step; what
// it prints is the combined section of kplan's own run over the folder.
TEST(KplanBatchTest, TheParallelRecipeCombinesAsKplanDoes) {
    const Folder& f = folder();
    if (std::system("command -v parallel >/dev/null") != 0) GTEST_SKIP() << "no GNU parallel";
    std::string out = testFolder() + "/batch.jsonl";
    std::string script = std::string(KPLAN_SOURCE_DIR) + "/scripts/batch_stats.sh";
    std::string command = "KPLAN='" + std::string(KPLAN_EXE) + "' '" + script + "' '" + f.dir +
                          "' '" + out + "' -j 3 >'" + testFolder() + "/recipe.out' 2>'" +
                          testFolder() + "/recipe.err'";
    int status = std::system(command.c_str());
    std::string printed = slurp(testFolder() + "/recipe.out");
    std::string err = slurp(testFolder() + "/recipe.err");
    EXPECT_EQ(WEXITSTATUS(status), 3) << err;
    EXPECT_EQ(linesOf(err).size(), 1u) << err;
    EXPECT_NE(err.find(f.broken), std::string::npos) << err;
    Outcome own = kplan("stats --recursive '" + f.dir + "'");
    std::size_t total = own.out.find("== 合计：");
    ASSERT_NE(total, std::string::npos);
    EXPECT_EQ(printed, own.out.substr(total));
    // Four drawing lines and four totals, one of each per job.
    EXPECT_EQ(linesOf(slurp(out)).size(), 8u);
    // And in English, and as JSON equal to kplan's total line.
    Outcome jsonl = kplan("stats --recursive --format jsonl '" + f.dir + "'");
    std::string combine = std::string(KPLAN_SOURCE_DIR) + "/scripts/combine_jsonl.py";
    std::ofstream(testFolder() + "/own.jsonl") << jsonl.out;
    std::system(("'" + combine + "' --json '" + testFolder() + "/own.jsonl' >'" + testFolder() +
                 "/combined.json' 2>/dev/null")
                    .c_str());
    Json tables = Json::parse(slurp(testFolder() + "/combined.json"));
    Json kplanTotal = Json::parse(linesOf(jsonl.out).back());
    ASSERT_TRUE(tables.ok());
    ASSERT_EQ(tables.size(), kplanTotal["tables"].size());
    for (std::size_t t = 0; t < tables.size(); ++t) {
        const Json& mine = tables[t];
        const Json& theirs = kplanTotal["tables"][t];
        ASSERT_EQ(mine["rows"].size(), theirs["rows"].size());
        for (std::size_t r = 0; r < mine["rows"].size(); ++r) {
            const Json& a = mine["rows"][r]["values"];
            const Json& b = theirs["rows"][r]["values"];
            EXPECT_EQ(mine["rows"][r]["name"].string(), theirs["rows"][r]["name"].string());
            ASSERT_EQ(a.size(), b.size());
            for (std::size_t c = 0; c < a.size(); ++c) {
                EXPECT_EQ(a[c].isNull(), b[c].isNull());
                EXPECT_EQ(a[c].number(), b[c].number()) << t << " " << r << " " << c;
            }
        }
    }
    Outcome english = kplan("stats --recursive --lang en '" + f.dir + "'");
    std::system(("'" + combine + "' --lang en '" + testFolder() + "/own.jsonl' >'" + testFolder() +
                 "/combined.txt' 2>/dev/null")
                    .c_str());
    EXPECT_EQ(slurp(testFolder() + "/combined.txt"),
              english.out.substr(english.out.find("== total of ")));
}

}  // namespace
