// The bash completion kplan writes of itself, sourced into bash with bash-completion as a
// user's shell loads it, asked to complete command lines as the Tab key would.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/cli/HelpText.h"
#include "tests/cli/RunKplan.h"

namespace {

namespace fs = std::filesystem;

using Words = std::vector<std::string>;

// A folder to complete names in: drawings (one with an upper-case extension), other files
// and a subfolder.
std::string workFolder() {
    static const std::string made = [] {
        std::string folder = testFolder() + "/completion";
        fs::create_directories(folder + "/plans");
        for (const char* name : {"plan.dxf", "OLD.DXF", "notes.txt", "map.png"})
            std::ofstream(folder + "/" + name) << "x";
        return folder;
    }();
    return made;
}

std::string shellWord(const std::string& word) {
    std::string out = "'";
    for (char c : word)
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

// COMPREPLY for each command line (the last word the one completed), sorted, one line each.
std::vector<Words> complete(const std::vector<Words>& lines) {
    std::string script = testFolder() + "/kplan.bash", driver = testFolder() + "/driver.sh";
    Outcome generated = kplan("--generate complete-bash >'" + script + "'");
    EXPECT_EQ(generated.exitCode, 0) << generated.err;
    std::ofstream out(driver);
    out << "source /usr/share/bash-completion/bash_completion || exit 1\n"
        << "source " << shellWord(script) << " || exit 1\n"
        << "ask() {\n"
           "    COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); COMP_LINE=\"$*\"\n"
           "    COMP_POINT=${#COMP_LINE}; COMPREPLY=()\n"
           "    _kplan kplan \"${COMP_WORDS[COMP_CWORD]}\" \"${COMP_WORDS[COMP_CWORD - 1]}\"\n"
           "    printf '%s\\n' \"${COMPREPLY[@]}\" | LC_ALL=C sort | tr '\\n' ' '; echo\n"
           "}\n";
    for (const Words& words : lines) {
        out << "ask";
        for (const std::string& word : words)
            out << " " << shellWord(word);
        out << "\n";
    }
    out.close();
    Outcome run = shell("cd " + shellWord(workFolder()) + " && bash " + shellWord(driver));
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.err, "");
    std::vector<Words> replies;
    std::istringstream text(run.out);
    for (std::string line; std::getline(text, line);) {
        std::istringstream words(line);
        Words reply;
        for (std::string word; words >> word;)
            reply.push_back(word);
        replies.push_back(reply);
    }
    return replies;
}

TEST(KplanBashCompletionTest, CompletesCommandsOptionsValuesAndFiles) {
    struct Case {
        Words line, expected;  // expected sorted as sort(1) in the C locale sorts
    } cases[] = {
        {{"kplan", ""},
         {"convert", "export", "help", "import", "info", "label", "list", "render", "stats",
          "symbolize"}},
        {{"kplan", "s"}, {"stats", "symbolize"}},
        {{"kplan", "--"}, {"--generate", "--help", "--no-progress", "--quiet", "--version"}},
        {{"kplan", "--generate", ""}, {"complete-bash", "man"}},
        {{"kplan", "stats", "--fo"}, {"--format"}},
        {{"kplan", "stats", "--format", ""}, {"csv", "json", "jsonl", "table", "xlsx"}},
        {{"kplan", "list", "--format", ""}, {"csv", "json", "jsonl", "table"}},
        {{"kplan", "stats", "--format=j"}, {"json", "jsonl"}},
        {{"kplan", "--quiet", "stats", "--units", "m"}, {"m2", "mu"}},
        {{"kplan", "render", "--labels", ""}, {"both", "class", "none", "number"}},
        {{"kplan", "list", "--kind", "b"}, {"block", "building"}},
        {{"kplan", "import", "--kind", ""}, {"current", "planned"}},
        {{"kplan", "stats", "--lang", ""}, {"en", "zh"}},
        {{"kplan", "help", "s"}, {"stats", "symbolize"}},
        // Drawings: .dxf in either case, and folders to go into.
        {{"kplan", "stats", ""}, {"OLD.DXF", "plan.dxf", "plans"}},
        {{"kplan", "stats", "plan.dxf", "--format", "csv", ""}, {"OLD.DXF", "plan.dxf", "plans"}},
        {{"kplan", "info", "p"}, {"plan.dxf", "plans"}},
        {{"kplan", "import", "notes.txt", "--into", ""}, {"OLD.DXF", "plan.dxf", "plans"}},
        {{"kplan", "label", "plan.dxf", "-o", ""}, {"OLD.DXF", "plan.dxf", "plans"}},
        // Outputs of other kinds: any file.
        {{"kplan", "render", "-o", "m"}, {"map.png"}},
        {{"kplan", "export", "plan.dxf", ""},
         {"OLD.DXF", "map.png", "notes.txt", "plan.dxf", "plans"}},
        {{"kplan", "stats", "--map", ""}, {"OLD.DXF", "map.png", "notes.txt", "plan.dxf", "plans"}},
        {{"kplan", "stats", "--data", ""}, {"plans"}},
        // Nothing where nothing fits: free values, and words after the last operand.
        {{"kplan", "stats", "--remainder", ""}, {}},
        {{"kplan", "info", "plan.dxf", ""}, {}},
        {{"kplan", "convert", "plan.dxf", "out.dxf", ""}, {}},
    };
    std::vector<Words> lines;
    for (const Case& c : cases)
        lines.push_back(c.line);
    std::vector<Words> replies = complete(lines);
    ASSERT_EQ(replies.size(), lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::string line;
        for (const std::string& word : cases[i].line)
            line += word + " ";
        EXPECT_EQ(replies[i], cases[i].expected) << line;
    }
}

// "kplan COMMAND -" offers every option "kplan help COMMAND" lists, of every command the
// help lists.
TEST(KplanBashCompletionTest, OffersEveryOptionOfEveryCommand) {
    std::vector<std::string> commands = helpCommands();
    ASSERT_GE(commands.size(), 10u);
    std::vector<Words> lines;
    for (const std::string& command : commands)
        lines.push_back({"kplan", command, "-"});
    std::vector<Words> replies = complete(lines);
    ASSERT_EQ(replies.size(), commands.size());
    for (std::size_t i = 0; i < commands.size(); ++i) {
        SCOPED_TRACE(commands[i]);
        for (const std::string& name : helpOptions(commands[i]))
            EXPECT_NE(std::find(replies[i].begin(), replies[i].end(), name), replies[i].end())
                << name;
        // And the program's own, which every command passes on.
        EXPECT_NE(std::find(replies[i].begin(), replies[i].end(), "--quiet"), replies[i].end());
    }
}

}  // namespace
