#pragma once
// The classes of a land-use class table as a tree: codes and names in the table's order,
// each class under the longest code of the table that begins it (R21 under R2, R2 under
// R). Any standard's table gives its tree this way; the layouts of the national standards
// only choose which parts of it become rows.
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

class ParsedClassTable;

namespace kplan::report {

class ClassHierarchy {
  public:
    struct Node {
        std::string code, name;  // code as the table writes it
        int parent = -1;
        std::vector<int> children;
    };

    ClassHierarchy() = default;
    // Classes as (code, name) in table order; a code listed twice keeps its first place
    // and its last name, as the class lookups do.
    explicit ClassHierarchy(const std::vector<std::pair<std::string, std::string>>& classes);
    static ClassHierarchy FromTable(const ParsedClassTable& table);
    // The tree of the current standard's current class table; empty when it cannot be read.
    static ClassHierarchy Current();

    const std::vector<Node>& nodes() const { return nodes_; }
    const Node& node(int index) const { return nodes_[static_cast<std::size_t>(index)]; }
    std::vector<int> roots() const;
    // The class of a code, trimmed and compared ignoring ASCII letter case as the class
    // lookups compare; -1 when the table has no such class.
    int find(const std::string& code) const;
    // Whether ancestor is index itself or one of the classes above it.
    bool within(int index, int ancestor) const;
    bool empty() const { return nodes_.empty(); }

  private:
    std::vector<Node> nodes_;
    std::map<std::string, int> index_;  // folded code to node
};

// Trimmed of ASCII blanks (and the full-width blank planners type).
std::string trimCode(const std::string& code);

}  // namespace kplan::report
