// The tree of a class table: every class under the longest code of the table that begins
// it, from the shipped tables and from codes alone.
#include <gtest/gtest.h>

#include "report/ClassHierarchy.h"
#include "standard/ParsedClassTable.h"

namespace kplan::report {
namespace {

std::string parentOf(const ClassHierarchy& tree, const std::string& code) {
    int index = tree.find(code);
    if (index < 0) return "(none)";
    int parent = tree.node(index).parent;
    return parent < 0 ? "" : tree.node(parent).code;
}

TEST(ClassHierarchyTest, TheShippedTablesGiveTheirTrees) {
    const std::string folder = std::string(KPLAN_SOURCE_DIR) + "/data/standards/通用国标/用地分类/";
    auto table2011 = ParsedClassTable::Load(CString::FromUtf8(folder + "2011国标城乡用地类别.txt"));
    ASSERT_TRUE(table2011);
    ClassHierarchy tree = ClassHierarchy::FromTable(*table2011);
    struct Case {
        const char* code;
        const char* parent;
    } cases[] = {{"H", ""},     {"H1", "H"},   {"H11", "H1"},    {"H14", "H1"}, {"E9", "E"},
                 {"R", ""},     {"R21", "R2"}, {"A33", "A3"},    {"S1", "S"},   {"G", ""},
                 {"r21", "R2"}, {" A3 ", "A"}, {"Q1", "(none)"}, {"", "(none)"}};
    for (const Case& c : cases)
        EXPECT_EQ(parentOf(tree, c.code), c.parent) << c.code;
    // The major classes in the table's order: H and E, then the city's R A B M W S U G.
    std::string roots;
    for (int root : tree.roots())
        roots += tree.node(root).code;
    EXPECT_EQ(roots, "HERABMWSUG");
    EXPECT_EQ(tree.node(tree.find("E9")).name, "其他非建设用地");
    EXPECT_TRUE(tree.within(tree.find("H12"), tree.find("H")));
    EXPECT_FALSE(tree.within(tree.find("R21"), tree.find("H")));

    auto table1990 = ParsedClassTable::Load(CString::FromUtf8(folder + "1990国标城市用地类别.txt"));
    ASSERT_TRUE(table1990);
    ClassHierarchy old = ClassHierarchy::FromTable(*table1990);
    roots.clear();
    for (int root : old.roots())
        roots += old.node(root).code;
    EXPECT_EQ(roots, "RCMWTSUGDE");
    EXPECT_EQ(parentOf(old, "C25"), "C2");
}

TEST(ClassHierarchyTest, CodesAloneGiveATree) {
    // A code listed twice keeps its first place and its last name; a class whose parent
    // the table lacks hangs under the nearest code it has.
    ClassHierarchy tree(
        {{"X", "甲"}, {"X123", "甲一二三"}, {"X1", "甲一"}, {"Y", "乙"}, {"X", "甲类"}});
    EXPECT_EQ(tree.nodes().size(), 4u);
    EXPECT_EQ(tree.node(0).name, "甲类");
    EXPECT_EQ(parentOf(tree, "X123"), "X1");
    EXPECT_EQ(parentOf(tree, "X1"), "X");
    EXPECT_EQ(trimCode(" \t\xE3\x80\x80R21\xE3\x80\x80 "), "R21");
}

}  // namespace
}  // namespace kplan::report
