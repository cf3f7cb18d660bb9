// The manual page kplan writes of itself: well-formed for groff and man, and holding every
// command and option the help lists, the exit codes and every variable the program reads.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/cli/HelpText.h"
#include "tests/cli/RunKplan.h"

namespace {

namespace fs = std::filesystem;

struct Page {
    std::string file, roff, text;
};

// The page as kplan writes it and as man shows it (plain text, wide lines).
const Page& page() {
    static const Page made = [] {
        Page p;
        p.file = testFolder() + "/kplan.1";
        Outcome generated = kplan("--generate man >'" + p.file + "'");
        EXPECT_EQ(generated.exitCode, 0) << generated.err;
        p.roff = slurp(p.file);
        p.text = shell("LC_ALL=C.UTF-8 MANWIDTH=200 man -E UTF-8 -l '" + p.file +
                       "' | LC_ALL=C.UTF-8 col -bx")
                     .out;
        return p;
    }();
    return made;
}

// The text of a section ("EXIT STATUS") or command ("   stats") of the page as shown.
std::string part(const std::string& text, const std::string& heading, const std::string& next) {
    std::size_t start = text.find("\n" + heading + "\n");
    if (start == std::string::npos) return "";
    std::size_t end = text.find("\n" + next, start + heading.size() + 2);
    return text.substr(start, end == std::string::npos ? std::string::npos : end - start);
}

TEST(KplanManPageTest, GroffAndManFormatItWithoutAWarning) {
    ASSERT_FALSE(page().roff.empty());
    // Chinese text is written as groff's \[uXXXX], so the page is ASCII whatever the locale.
    for (char c : page().roff)
        ASSERT_EQ(static_cast<unsigned char>(c) & 0x80, 0) << c;
    Outcome groff = shell("groff -Tutf8 -man -ww -z '" + page().file + "'");
    EXPECT_EQ(groff.exitCode, 0);
    EXPECT_EQ(groff.err, "");
    // As lintian checks a page.
    Outcome man = shell("LC_ALL=C.UTF-8 man --warnings -E UTF-8 -l -Tutf8 -Z '" + page().file +
                        "' >/dev/null");
    EXPECT_EQ(man.exitCode, 0);
    EXPECT_EQ(man.err, "");
    for (const char* section : {"\nNAME\n       kplan - planning data in CAD drawings\n",
                                "\nSYNOPSIS\n", "\nDESCRIPTION\n", "\nOPTIONS\n", "\nCOMMANDS\n",
                                "\nEXIT STATUS\n", "\nENVIRONMENT\n", "\nFILES\n"})
        EXPECT_NE(page().text.find(section), std::string::npos) << section << page().text;
    // whatis reads the NAME line.
    EXPECT_NE(page().roff.find(".SH NAME\nkplan \\- planning data in CAD drawings\n"),
              std::string::npos);
}

TEST(KplanManPageTest, EveryCommandIsThereWithEachOfItsOptions) {
    std::vector<std::string> commands = helpCommands();
    ASSERT_GE(commands.size(), 10u);
    for (std::size_t i = 0; i < commands.size(); ++i) {
        SCOPED_TRACE(commands[i]);
        std::string next = i + 1 < commands.size() ? "   " + commands[i + 1] + "\n" : "EXIT STATUS";
        std::string shown = part(page().text, "   " + commands[i], next);
        ASSERT_NE(shown, "") << page().text;
        EXPECT_NE(page().text.find("kplan [OPTIONS] " + commands[i]), std::string::npos);
        for (const std::string& option : helpOptions(commands[i])) {
            if (option == "-h" || option == "--help") continue;  // said once, for the program
            std::regex item("\n       (-[a-z], )?" + option + "[ ,\n]");
            EXPECT_TRUE(std::regex_search(shown, item)) << option << shown;
        }
    }
    // The program's own options, the command line's choices and defaults as the help has them.
    std::string options = part(page().text, "OPTIONS", "COMMANDS");
    for (const char* shown :
         {"--no-progress", "--quiet", "--version", "--generate {man,complete-bash}"})
        EXPECT_NE(options.find(shown), std::string::npos) << shown << options;
    std::string stats = part(page().text, "   stats", "   list");
    for (const char* shown :
         {"--format {table,csv,json,jsonl,xlsx}", "(default: table)", "--units {hm2,m2,mu,km2}",
          "--data DIR", "-o, --output FILE", "DRAWING ...", "城市建设用地平衡表"})
        EXPECT_NE(stats.find(shown), std::string::npos) << shown << stats;
    EXPECT_NE(page().text.find("kplan [OPTIONS] import LAYER --into DXF -o DXF"),
              std::string::npos);
}

TEST(KplanManPageTest, ExitCodesAreThoseOfTheReadme) {
    std::string exits = part(page().text, "EXIT STATUS", "ENVIRONMENT");
    for (const char* code :
         {"\n       0      success\n",
          "\n       1      the input is unreadable or wrong (a drawing, a class table, a "
          "standard)\n",
          "\n       2      the command line is wrong",
          "\n       3      partly done: of several drawings, some could not be read"})
        EXPECT_NE(exits.find(code), std::string::npos) << code << exits;
}

// Every variable named in the sources, as getenv("NAME") or as a "KPLAN_..." string.
TEST(KplanManPageTest, EveryVariableTheProgramReadsIsExplained) {
    std::set<std::string> variables;
    std::regex named(R"re(getenv\("([A-Z_]+)"\)|"(KPLAN_[A-Z_]+)")re");
    for (const char* folder : {"cli", "host", "record", "standard", "stats", "draw", "geometry",
                               "gis", "report", "render"}) {
        for (const auto& entry :
             fs::recursive_directory_iterator(fs::path(KPLAN_SOURCE_DIR) / folder)) {
            std::string extension = entry.path().extension().string();
            if (extension != ".cpp" && extension != ".h") continue;
            std::string source = slurp(entry.path().string());
            for (std::sregex_iterator it(source.begin(), source.end(), named), end; it != end; ++it)
                variables.insert((*it)[1].matched ? (*it)[1].str() : (*it)[2].str());
        }
    }
    for (const char* known :
         {"KPLAN_DATA", "KPLAN_STANDARD", "KPLAN_CLASS_TABLE", "KPLAN_PATTERNS"})
        EXPECT_EQ(variables.count(known), 1u) << known;
    std::string environment = part(page().text, "ENVIRONMENT", "FILES");
    for (const std::string& variable : variables)
        EXPECT_TRUE(std::regex_search(environment, std::regex("\n       " + variable + "\\s")))
            << variable << environment;
    std::string files = part(page().text, "FILES", "\n\n\n");
    EXPECT_NE(files.find("PREFIX/share/kplan/standards"), std::string::npos) << page().text;
}

TEST(KplanManPageTest, GenerateTakesOnlyWhatItMakes) {
    Outcome wrong = kplan("--generate html");
    EXPECT_EQ(wrong.exitCode, 2);
    EXPECT_EQ(wrong.out, "");
    EXPECT_NE(wrong.err.find("kplan: --generate"), std::string::npos) << wrong.err;
    // After a command too, as the program's other options.
    Outcome bash = kplan("stats --generate complete-bash");
    EXPECT_EQ(bash.exitCode, 0) << bash.err;
    EXPECT_EQ(bash.out, kplan("--generate complete-bash").out);
}

}  // namespace
