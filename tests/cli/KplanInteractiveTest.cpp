// "kplan stats --interactive": the scope dialogue answered from standard input (a script)
// and in a real terminal (tmux), on a drawing without scope lines whose figures are known
// by construction.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "host/arx/acdocman.h"
#include "host/arx/dbpl.h"
#include "host/dxf/Dxf.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaEnt.h"
#include "record/DKKeys.h"
#include "tests/cli/Json.h"
#include "tests/cli/RunKplan.h"
#include "tests/support/Shapes.h"

namespace {

struct Plan {
    std::string path, frame;  // frame: a plain closed line around parcel C
    std::string across;       // a plain closed line holding A and 80 m of B
};

void planned(AcDbObjectId id, const wchar_t* cls) {
    ARX_DATA::CFGisXData::SetTo(id, dk::FAPP_GHDK, L"", dk::TYPE_KGDK);
    ARX_DATA::CFGisXData::SetTo(id, dk::FS_DKXZ, cls, dk::FAPP_GHDK);
}

// A: R21 100 x 100 m (1 ha); B: G1 150 x 100 m beside it (1.5 ha); C: B1 100 x 100 m far
// off (1 ha), inside a plain closed line.
const Plan& plan() {
    static const Plan made = [] {
        Plan p;
        AcApDocument* document = acDocManager->appendDocument();
        planned(addClosedRectangle(0, 0, 100, 100), L"R21");
        planned(addClosedRectangle(100, 0, 250, 100), L"G1");
        planned(addClosedRectangle(1000, 0, 1100, 100), L"B1");
        AcDbObjectId frame = addClosedRectangle(900, -10, 1200, 200);
        ACHAR text[17] = {};
        frame.handle().getIntoAsciiBuffer(text);
        p.frame = CString(text).ToUtf8();
        addClosedRectangle(0, 0, 180, 100).handle().getIntoAsciiBuffer(text);
        p.across = CString(text).ToUtf8();
        p.path = testFolder() + "/interactive.dxf";
        std::string error;
        EXPECT_TRUE(dxf::save(*document->database(), p.path, error)) << error;
        acDocManager->closeDocument(document);
        return p;
    }();
    return made;
}

const std::string kNoScope = "无规划范围线，是否继续统计[(Y)/(N)]<Y>:";
const std::string kMode = "确定统计方式[选地块(S)/选闭合线(F)/绘闭合线(D)]<S>:";
const std::string kDrawD = "Y\nD\n0,0\n250,0\n250,100\n0,100\n\n";

TEST(KplanInteractiveTest, AnswersFromStandardInputChooseTheScope) {
    struct Case {
        const char* what;
        std::string answers;
        int parcels;
        double h, r21, g1, b1;
        std::string boundary;  // "" none
    } cases[] = {
        {"D: the parcels inside the drawn line", kDrawD, 2, 2.5, 1, 1.5, 0, ""},
        {"F: the closed line is the boundary", "Y\nF\n#" + plan().frame + "\n", 1, 1, 0, 0, 1,
         plan().frame},
        {"S: ALL, total left open", "\n\nALL\n\n\n", 3, 3.5, 1, 1.5, 1, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        std::string in = testFolder() + "/answers";
        std::ofstream(in) << c.answers;
        Outcome run =
            kplan("stats '" + plan().path + "' --interactive --format json <'" + in + "'");
        ASSERT_EQ(run.exitCode, 0) << run.err;
        EXPECT_NE(run.err.find(kNoScope), std::string::npos) << run.err;
        EXPECT_NE(run.err.find(kMode), std::string::npos) << run.err;
        Json json = Json::parse(run.out);
        ASSERT_TRUE(json.ok()) << run.out;
        EXPECT_EQ(json["parcels"].number(), c.parcels);
        EXPECT_NEAR(json["totals"]["H"].number(), c.h, 1e-9);
        if (c.boundary.empty()) {
            EXPECT_TRUE(json["boundary"].isNull());
        } else {
            EXPECT_EQ(json["boundary"]["handle"].string(), c.boundary);
        }
        for (std::size_t i = 0; i < json["classes"].size(); ++i) {
            std::string code = json["classes"][i]["code"].string();
            double expected = code == "R21" ? c.r21 : code == "G1" ? c.g1 : c.b1;
            EXPECT_NEAR(json["classes"][i]["area_ha"].number(), expected, 1e-9) << code;
        }
    }

    // The preview: B's part inside the line hatched in a copy, the drawing unchanged.
    std::string in = testFolder() + "/across", out = testFolder() + "/preview.dxf";
    std::ofstream(in) << "Y\nF\n#" + plan().across + "\n";
    std::string before = slurp(plan().path);
    Outcome previewed =
        kplan("stats '" + plan().path + "' --interactive --format json --preview '" + out + "' <'" +
              in + "'");
    ASSERT_EQ(previewed.exitCode, 0) << previewed.err;
    Json json = Json::parse(previewed.out);
    EXPECT_NEAR(json["totals"]["H"].number(), 1 + 0.8, 1e-9);
    std::string copy = slurp(out);
    std::size_t hatches = 0;
    for (std::size_t at = copy.find("\nHATCH\n"); at != std::string::npos;
         at = copy.find("\nHATCH\n", at + 1))
        ++hatches;
    EXPECT_EQ(hatches, 1u);
    EXPECT_EQ(slurp(plan().path), before);
    // Without one scope line there is nothing to preview.
    std::ofstream(in) << kDrawD;
    previewed =
        kplan("stats '" + plan().path + "' --interactive --preview '" + out + "' <'" + in + "'");
    EXPECT_EQ(previewed.exitCode, 1);
    EXPECT_NE(previewed.err.find("kplan: --preview shows one scope line"), std::string::npos)
        << previewed.err;
    EXPECT_EQ(kplan("stats --preview '" + out + "'").exitCode, 2);

    // No: nothing chosen, one message, no table.
    in = testFolder() + "/no";
    std::ofstream(in) << "N\n";
    Outcome run = kplan("stats '" + plan().path + "' --interactive <'" + in + "'");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.out.empty()) << run.out;
    EXPECT_NE(run.err.find("kplan: no statistics scope chosen in " + plan().path),
              std::string::npos)
        << run.err;
}

std::string shell(const std::string& command) {
    std::string out;
    if (FILE* pipe = ::popen(command.c_str(), "r")) {
        char buffer[4096];
        std::size_t n = 0;
        while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0)
            out.append(buffer, n);
        ::pclose(pipe);
    }
    return out;
}

// Types the lines into a tmux pane running kplan and returns the pane when the program
// has ended.
std::string inTerminal(const std::string& name, const std::vector<std::string>& lines) {
    // Builds testing side by side each get their own session.
    const std::string session = name + "-" + std::to_string(::getpid());
    std::string done = testFolder() + "/" + session + ".done";
    std::remove(done.c_str());
    shell("tmux new-session -d -s " + session + " -x 200 -y 100 \"'" + std::string(KPLAN_EXE) +
          "' stats '" + plan().path + "' --interactive; touch '" + done + "'; sleep 30\" 2>&1");
    for (const std::string& line : lines) {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        shell("tmux send-keys -t " + session + " -l '" + line + "'");
        shell("tmux send-keys -t " + session + " Enter");
    }
    for (int i = 0; i < 100 && !std::filesystem::exists(done); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    std::string pane = shell("tmux capture-pane -p -S -200 -t " + session);
    shell("tmux kill-session -t " + session + " 2>&1");
    return pane;
}

// Whether a line of text, its runs of blanks taken as one, is a line of the pane.
bool hasLine(const std::string& text, const std::string& words) {
    std::string line;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        if (i == text.size() || text[i] == '\n') {
            while (!line.empty() && line.back() == ' ')
                line.pop_back();
            if (line == words) return true;
            line.clear();
        } else if (text[i] != ' ' || (!line.empty() && line.back() != ' ')) {
            line += text[i];
        }
    }
    return false;
}

TEST(KplanInteractiveTest, ATerminalUserDrawsOrPicksTheScope) {
    std::string drawn =
        inTerminal("kplan-interactive-d", {"Y", "D", "0,0", "250,0", "250,100", "0,100", ""});
    EXPECT_NE(drawn.find(kMode), std::string::npos) << drawn;
    EXPECT_NE(drawn.find("指定下一点:"), std::string::npos) << drawn;
    for (const char* line : {"范围线：无，统计全图", "规划地块：2",
                             "R2 其中：二类居住用地 1.00 40.00", "G1 其中：公园绿地 1.50 60.00",
                             "B 商业服务业设施用地 0.00 0.00", "H11 城市建设用地 2.50 100.00"})
        EXPECT_TRUE(hasLine(drawn, line)) << line << "\n" << drawn;

    std::string picked = inTerminal("kplan-interactive-f", {"Y", "F", "#" + plan().frame});
    EXPECT_NE(picked.find("选择闭合线:"), std::string::npos) << picked;
    for (const std::string& line : {std::string("规划地块：1（0 块与范围线相交）"),
                                    std::string("B 商业服务业设施用地 1.00 100.00"),
                                    std::string("B1 其中：商业用地 1.00 100.00"),
                                    std::string("H11 城市建设用地 1.00 100.00")})
        EXPECT_TRUE(hasLine(picked, line)) << line << "\n" << picked;
    EXPECT_NE(picked.find("范围线：" + plan().frame + "，6.30 公顷"), std::string::npos) << picked;
}

}  // namespace
