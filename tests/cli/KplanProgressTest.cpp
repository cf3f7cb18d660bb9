// The progress bar as a real terminal shows it: kplan runs in a tmux pane of a given width
// and every byte it draws there is recorded.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "host/arx/acdocman.h"
#include "host/arx/dbpl.h"
#include "host/dxf/Dxf.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaEnt.h"
#include "record/DKKeys.h"
#include "tests/cli/RunKplan.h"
#include "tests/support/Shapes.h"

namespace {

namespace fs = std::filesystem;

const std::string kSample = std::string(KPLAN_SOURCE_DIR) + "/data/samples/sample-plan.dxf";

// What kplan wrote to a terminal `columns` wide, with `environment` set: stats of the
// sample, or the command given.
std::string drawnOnTerminal(int columns, const std::string& environment,
                            const std::string& options = "",
                            const std::string& command = "stats '" + kSample + "'") {
    std::string folder = testFolder() + "/tmux-" + std::to_string(columns);
    fs::remove_all(folder);
    fs::create_directories(folder);
    std::string tmux = "tmux -S '" + folder + "/socket' ";
    // The program waits for "go" so that recording starts before it does.
    std::string script = "cd '" + folder + "'; while [ ! -e go ]; do sleep 0.05; done; env " +
                         environment + " '" + KPLAN_EXE + "' " + command + " " + options +
                         " >/dev/null; touch done; sleep 30";
    std::string start = tmux + "new-session -d -s bar -x " + std::to_string(columns) +
                        " -y 10 \"sh -c \\\"" + script + "\\\"\"";
    if (std::system(start.c_str()) != 0) return "tmux did not start";
    std::system((tmux + "pipe-pane -t bar -o 'cat > \"" + folder + "/drawn\"'").c_str());
    std::system(("touch '" + folder + "/go'").c_str());
    for (int i = 0; i < 1200 && !fs::exists(folder + "/done"); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    std::system((tmux + "kill-server").c_str());
    return fs::exists(folder + "/done") ? slurp(folder + "/drawn") : "kplan did not finish";
}

// Columns a line takes: one a character, two for the wide ones of three UTF-8 bytes (CJK).
std::size_t columnsOf(const std::string& line) {
    std::size_t width = 0;
    for (char c : line) {
        auto byte = static_cast<unsigned char>(c);
        if ((byte & 0xC0) != 0x80) width += byte >= 0xE0 && byte < 0xF0 ? 2 : 1;
    }
    return width;
}

// The lines as the terminal shows them: split at carriage returns and line breaks, the
// erase-line sequence taken out.
std::vector<std::string> shownLines(std::string drawn) {
    for (std::size_t at; (at = drawn.find("\033[K")) != std::string::npos;)
        drawn.erase(at, 3);
    std::vector<std::string> lines;
    std::string line;
    for (char c : drawn) {
        if (c == '\r' || c == '\n') {
            if (!line.empty()) lines.push_back(line);
            line.clear();
        } else {
            line += c;
        }
    }
    if (!line.empty()) lines.push_back(line);
    return lines;
}

TEST(KplanProgressTest, BarFitsTheTerminalAndSpeaksEnglish) {
    for (int columns : {40, 120}) {
        SCOPED_TRACE(columns);
        std::string drawn = drawnOnTerminal(columns, "TERM=xterm NO_COLOR=1");
        std::vector<std::string> lines = shownLines(drawn);
        ASSERT_FALSE(lines.empty()) << drawn;
        bool reading = false, clipping = false;
        for (const std::string& line : lines) {
            if (line.rfind("kplan: ", 0) == 0) continue;  // the run's warnings, not the bar
            EXPECT_LT(columnsOf(line), static_cast<std::size_t>(columns)) << line;
            EXPECT_EQ(line.find("读取"), std::string::npos) << line;
            EXPECT_EQ(line.find("范围线内地块"), std::string::npos) << line;
            reading |= line.rfind("reading ", 0) == 0;
            clipping |= line.rfind("clipping parcels", 0) == 0;
            EXPECT_NE(line.find('%'), std::string::npos) << line;
        }
        EXPECT_TRUE(reading) << drawn;
        EXPECT_TRUE(clipping) << drawn;
        // No colour: the only escape sequence is the one that clears the line.
        EXPECT_EQ(drawn.find("\033[0m"), std::string::npos);
        EXPECT_EQ(drawn.find("m\033"), std::string::npos);
    }
}

// 22,500 planned parcels of 20 x 20 m under a scope line shaped as a comb: a tooth 10 m
// wide runs up through every column of parcels, so that every parcel is clipped.
const std::string& combPlan() {
    static const std::string path = [] {
        AcApDocument* document = acDocManager->appendDocument();
        constexpr int kSide = 150;
        constexpr double kCell = 20, kTop = kSide * kCell + 10;
        auto* comb = new AcDbPolyline();
        auto add = [&](double x, double y) {
            comb->addVertexAt(comb->numVerts(), AcGePoint2d(x, y));
        };
        add(0, -20);
        add(kSide * kCell, -20);
        for (int i = kSide - 1; i >= 0; --i) {
            add(i * kCell + 15, -10);
            add(i * kCell + 15, kTop);
            add(i * kCell + 5, kTop);
            add(i * kCell + 5, -10);
        }
        add(0, -10);
        comb->setClosed(true);
        AcDbEntity* entity = comb;
        AcDbObjectId scope = kova::ent::SafeAddToDb(entity);
        ARX_DATA::CFGisXData::SetTo(scope, dk::FAPP_GHFWX, L"", L"规划范围线");
        for (int row = 0; row < kSide; ++row) {
            for (int column = 0; column < kSide; ++column) {
                AcDbObjectId id = addClosedRectangle(column * kCell, row * kCell,
                                                     (column + 1) * kCell, (row + 1) * kCell);
                ARX_DATA::CFGisXData::SetTo(id, dk::FAPP_GHDK, L"", dk::TYPE_KGDK);
                ARX_DATA::CFGisXData::SetTo(id, dk::FS_DKXZ, L"R21", dk::FAPP_GHDK);
            }
        }
        std::string made = testFolder() + "/comb.dxf";
        std::string error;
        EXPECT_TRUE(dxf::save(*document->database(), made, error)) << error;
        acDocManager->closeDocument(document);
        return made;
    }();
    return path;
}

// The percentages a bar whose line starts with label showed.
std::vector<int> percentsOf(const std::vector<std::string>& lines, const std::string& label) {
    std::vector<int> percents;
    for (const std::string& line : lines) {
        std::size_t sign = line.rfind('%');
        if (line.rfind(label, 0) != 0 || sign == std::string::npos || sign < 3) continue;
        percents.push_back(std::atoi(line.substr(sign - 3, 3).c_str()));
    }
    return percents;
}

TEST(KplanProgressTest, TheBarMovesWhileClippingAndWhileSaving) {
    const std::string& plan = combPlan();
    std::vector<std::string> lines =
        shownLines(drawnOnTerminal(100, "TERM=xterm", "", "stats '" + plan + "'"));
    std::vector<int> clipping = percentsOf(lines, "clipping parcels to the scope");
    ASSERT_FALSE(clipping.empty());
    EXPECT_TRUE(std::any_of(clipping.begin(), clipping.end(), [](int p) {
        return p > 0 && p < 100;
    })) << ::testing::PrintToString(clipping);

    std::string out = testFolder() + "/comb-again.dxf";
    lines =
        shownLines(drawnOnTerminal(100, "TERM=xterm", "", "convert '" + plan + "' '" + out + "'"));
    std::vector<int> saving = percentsOf(lines, "saving ");
    ASSERT_FALSE(saving.empty()) << ::testing::PrintToString(lines);
    EXPECT_TRUE(fs::exists(out));
    for (const std::string& line : lines) {
        if (line.rfind("saving ", 0) == 0) {
            EXPECT_NE(line.find("comb-again.dxf"), std::string::npos) << line;
        }
    }
}

TEST(KplanProgressTest, DumbTerminalAndNoProgressGetNoBar) {
    for (const auto& [environment, options] :
         {std::pair<std::string, std::string>{"TERM=dumb", ""}, {"TERM=xterm", "--no-progress"}}) {
        SCOPED_TRACE(environment + " " + options);
        std::string drawn = drawnOnTerminal(80, environment, options);
        EXPECT_EQ(drawn.find('%'), std::string::npos) << drawn;
        EXPECT_EQ(drawn.find("\033[K"), std::string::npos) << drawn;
    }
}

}  // namespace
