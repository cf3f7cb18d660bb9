#include "gis/GpkgSpatialIndex.h"

#include <sqlite3.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <memory>

namespace gis {

namespace {

// SQLite's R-tree keeps 32-bit floats, a lower bound rounded down and an upper bound up,
// nudged by the same factors SQLite uses so that the stored boxes are the ones its own
// inserts would store.
constexpr double kTowardsZero = 1.0 - 1.0 / 8388608.0;
constexpr double kAwayFromZero = 1.0 + 1.0 / 8388608.0;

float roundedDown(double d) {
    auto f = static_cast<float>(d);
    if (f > d) f = static_cast<float>(d * (d < 0 ? kAwayFromZero : kTowardsZero));
    return f;
}

float roundedUp(double d) {
    auto f = static_cast<float>(d);
    if (f < d) f = static_cast<float>(d * (d < 0 ? kTowardsZero : kAwayFromZero));
    return f;
}

// A node's entry: a feature id in a leaf, the index of a child node above.
struct Cell {
    long long id = 0;
    float box[4] = {};  // minX, maxX, minY, maxY
};

constexpr std::size_t kCellBytes = 8 + 4 * 4;

double centre(const Cell& cell, int axis) {
    return (static_cast<double>(cell.box[2 * axis]) + cell.box[2 * axis + 1]) / 2;
}

Cell bounds(long long id, const std::vector<Cell>& cells) {
    Cell out{id, {cells[0].box[0], cells[0].box[1], cells[0].box[2], cells[0].box[3]}};
    for (const Cell& cell : cells) {
        out.box[0] = (std::min)(out.box[0], cell.box[0]);
        out.box[1] = (std::max)(out.box[1], cell.box[1]);
        out.box[2] = (std::min)(out.box[2], cell.box[2]);
        out.box[3] = (std::max)(out.box[3], cell.box[3]);
    }
    return out;
}

// Sort-tile-recursive grouping of one level: sorted by x into vertical slices, each slice
// by y into nodes. Every node of the level holds the same count give or take one, so no
// node but a lone root is less than half full.
std::vector<std::vector<Cell>> tiles(std::vector<Cell> cells, std::size_t capacity) {
    const std::size_t n = cells.size();
    const std::size_t nodes = (n + capacity - 1) / capacity;
    const auto slices = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(nodes))));
    auto along = [](int axis) {
        return [axis](const Cell& a, const Cell& b) { return centre(a, axis) < centre(b, axis); };
    };
    auto firstOf = [n, nodes](std::size_t node) { return node * n / nodes; };
    std::sort(cells.begin(), cells.end(), along(0));
    std::vector<std::vector<Cell>> out;
    out.reserve(nodes);
    for (std::size_t s = 0; s < slices; ++s) {
        std::size_t from = s * nodes / slices, to = (s + 1) * nodes / slices;
        auto begin = cells.begin() + static_cast<std::ptrdiff_t>(firstOf(from));
        std::sort(begin, cells.begin() + static_cast<std::ptrdiff_t>(firstOf(to)), along(1));
        for (std::size_t k = from; k < to; ++k)
            out.emplace_back(cells.begin() + static_cast<std::ptrdiff_t>(firstOf(k)),
                             cells.begin() + static_cast<std::ptrdiff_t>(firstOf(k + 1)));
    }
    return out;
}

struct Tree {
    std::vector<std::vector<Cell>> nodes;  // leaves first, the root last
    std::size_t leaves = 0;
    int depth = 0;  // levels below the root

    // SQLite numbers the root 1; the others follow in any order.
    long long number(std::size_t node) const {
        return node + 1 == nodes.size() ? 1 : static_cast<long long>(node) + 2;
    }
};

Tree pack(std::vector<Cell> level, std::size_t capacity) {
    Tree tree;
    for (;;) {
        std::vector<std::vector<Cell>> groups = tiles(std::move(level), capacity);
        level.clear();
        for (std::vector<Cell>& group : groups) {
            level.push_back(bounds(static_cast<long long>(tree.nodes.size()), group));
            tree.nodes.push_back(std::move(group));
        }
        if (tree.leaves == 0) tree.leaves = tree.nodes.size();
        if (groups.size() == 1) return tree;
        ++tree.depth;
    }
}

void putBigEndian(unsigned char* at, std::uint64_t value, int bytes) {
    for (int i = bytes - 1; i >= 0; --i) {
        at[i] = static_cast<unsigned char>(value & 0xff);
        value >>= 8;
    }
}

// A node as SQLite stores it: the tree's depth (root only) and the cell count as 16-bit
// big-endian numbers, then each cell's 64-bit id and four floats, big-endian, zeros after.
std::vector<unsigned char> nodeBlob(const Tree& tree, std::size_t node, std::size_t size) {
    std::vector<unsigned char> blob(size, 0);
    const std::vector<Cell>& cells = tree.nodes[node];
    if (tree.number(node) == 1) putBigEndian(blob.data(), static_cast<unsigned>(tree.depth), 2);
    putBigEndian(blob.data() + 2, cells.size(), 2);
    unsigned char* at = blob.data() + 4;
    const bool leaf = node < tree.leaves;
    for (const Cell& cell : cells) {
        long long id = leaf ? cell.id : tree.number(static_cast<std::size_t>(cell.id));
        putBigEndian(at, static_cast<std::uint64_t>(id), 8);
        for (int k = 0; k < 4; ++k)
            putBigEndian(at + 8 + 4 * k, std::bit_cast<std::uint32_t>(cell.box[k]), 4);
        at += kCellBytes;
    }
    return blob;
}

std::string quoted(const std::string& name) {
    std::string out = "\"";
    for (char c : name) {
        out += c;
        if (c == '"') out += '"';
    }
    return out + "\"";
}

struct CloseDatabase {
    void operator()(sqlite3* db) const { sqlite3_close_v2(db); }
};
struct FinalizeStatement {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

class Writer {
  public:
    Writer(sqlite3* db, std::string& error) : db_(db), error_(error) {}

    bool run(const std::string& sql) {
        char* message = nullptr;
        if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, &message) == SQLITE_OK) return true;
        error_ = message != nullptr ? message : sqlite3_errmsg(db_);
        sqlite3_free(message);
        return false;
    }

    Statement prepare(const std::string& sql) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
            error_ = sqlite3_errmsg(db_);
        return Statement(statement);
    }

    // Runs a prepared statement whose parameters are bound, ready for the next binding.
    bool step(sqlite3_stmt* statement) {
        int status = sqlite3_step(statement);
        sqlite3_reset(statement);
        if (status == SQLITE_DONE || status == SQLITE_ROW) return true;
        error_ = sqlite3_errmsg(db_);
        return false;
    }

    bool pairs(const std::string& table, const std::string& columns,
               const std::vector<std::pair<long long, long long>>& rows) {
        Statement insert = prepare("INSERT INTO " + quoted(table) + columns + " VALUES (?, ?)");
        if (!insert) return false;
        for (const auto& [a, b] : rows) {
            sqlite3_bind_int64(insert.get(), 1, a);
            sqlite3_bind_int64(insert.get(), 2, b);
            if (!step(insert.get())) return false;
        }
        return true;
    }

    bool index(const LayerIndex& layer);

  private:
    bool tree(const std::string& rtree, std::vector<Cell> cells);
    bool triggers(const LayerIndex& layer, const std::string& rtree);

    sqlite3* db_;
    std::string& error_;
};

bool Writer::tree(const std::string& rtree, std::vector<Cell> cells) {
    // The node size SQLite chose for the file's page size, from the empty root it made.
    Statement size =
        prepare("SELECT length(data) FROM " + quoted(rtree + "_node") + " WHERE nodeno = 1");
    if (!size) return false;
    if (sqlite3_step(size.get()) != SQLITE_ROW) {
        error_ = rtree + " has no root node";
        return false;
    }
    const auto nodeSize = static_cast<std::size_t>(sqlite3_column_int64(size.get(), 0));
    const std::size_t capacity = nodeSize < 4 ? 0 : (nodeSize - 4) / kCellBytes;
    if (capacity < 2) {
        error_ = rtree + ": nodes of " + std::to_string(nodeSize) + " bytes";
        return false;
    }
    if (cells.empty()) return true;
    const Tree packed = pack(std::move(cells), capacity);
    Statement node = prepare("INSERT OR REPLACE INTO " + quoted(rtree + "_node") +
                             " (nodeno, data) VALUES (?, ?)");
    if (!node) return false;
    std::vector<std::pair<long long, long long>> rowids, parents;
    for (std::size_t i = 0; i < packed.nodes.size(); ++i) {
        std::vector<unsigned char> blob = nodeBlob(packed, i, nodeSize);
        sqlite3_bind_int64(node.get(), 1, packed.number(i));
        sqlite3_bind_blob(node.get(), 2, blob.data(), static_cast<int>(blob.size()),
                          SQLITE_TRANSIENT);
        if (!step(node.get())) return false;
        for (const Cell& cell : packed.nodes[i]) {
            if (i < packed.leaves) {
                rowids.emplace_back(cell.id, packed.number(i));
            } else {
                parents.emplace_back(packed.number(static_cast<std::size_t>(cell.id)),
                                     packed.number(i));
            }
        }
    }
    // In key order each row lands at the end of its table's b-tree.
    std::sort(rowids.begin(), rowids.end());
    std::sort(parents.begin(), parents.end());
    return pairs(rtree + "_rowid", " (rowid, nodeno)", rowids) &&
           pairs(rtree + "_parent", " (nodeno, parentnode)", parents);
}

// The statements GDAL 3.6 runs for a layer's index, names substituted alike.
bool Writer::triggers(const LayerIndex& layer, const std::string& rtree) {
    const std::string r = quoted(rtree), t = quoted(layer.table), c = quoted(layer.geometryColumn),
                      i = quoted(layer.fidColumn);
    const std::string values = " VALUES (NEW." + i + ",ST_MinX(NEW." + c + "), ST_MaxX(NEW." + c +
                               "),ST_MinY(NEW." + c + "), ST_MaxY(NEW." + c + ")); ";
    const std::string notEmpty = "(NEW." + c + " NOTNULL AND NOT ST_IsEmpty(NEW." + c + "))";
    const std::string empty = "(NEW." + c + " ISNULL OR ST_IsEmpty(NEW." + c + "))";
    const std::string statements[] = {
        "CREATE TRIGGER " + quoted(rtree + "_insert") + " AFTER INSERT ON " + t + " WHEN (new." +
            c + " NOT NULL AND NOT ST_IsEmpty(NEW." + c + ")) BEGIN INSERT OR REPLACE INTO " + r +
            values + "END",
        "CREATE TRIGGER " + quoted(rtree + "_update1") + " AFTER UPDATE OF " + c + " ON " + t +
            " WHEN OLD." + i + " = NEW." + i + " AND " + notEmpty +
            " BEGIN INSERT OR REPLACE INTO " + r + values + "END",
        "CREATE TRIGGER " + quoted(rtree + "_update2") + " AFTER UPDATE OF " + c + " ON " + t +
            " WHEN OLD." + i + " = NEW." + i + " AND " + empty + " BEGIN DELETE FROM " + r +
            " WHERE id = OLD." + i + "; END",
        "CREATE TRIGGER " + quoted(rtree + "_update3") + " AFTER UPDATE ON " + t + " WHEN OLD." +
            i + " != NEW." + i + " AND " + notEmpty + " BEGIN DELETE FROM " + r +
            " WHERE id = OLD." + i + "; INSERT OR REPLACE INTO " + r + values + "END",
        "CREATE TRIGGER " + quoted(rtree + "_update4") + " AFTER UPDATE ON " + t + " WHEN OLD." +
            i + " != NEW." + i + " AND " + empty + " BEGIN DELETE FROM " + r +
            " WHERE id IN (OLD." + i + ", NEW." + i + "); END",
        "CREATE TRIGGER " + quoted(rtree + "_delete") + " AFTER DELETE ON " + t + " WHEN old." + c +
            " NOT NULL BEGIN DELETE FROM " + r + " WHERE id = OLD." + i + "; END",
    };
    for (const std::string& statement : statements) {
        if (!run(statement)) return false;
    }
    return true;
}

bool Writer::index(const LayerIndex& layer) {
    const std::string rtree = "rtree_" + layer.table + "_" + layer.geometryColumn;
    if (!run("CREATE VIRTUAL TABLE " + quoted(rtree) + " USING rtree(id, minx, maxx, miny, maxy)"))
        return false;
    std::vector<Cell> cells;
    cells.reserve(layer.entries.size());
    for (const IndexEntry& entry : layer.entries) {
        // No box holds a coordinate that is not a number, and sorting could not place it.
        if (!(entry.minX <= entry.maxX && entry.minY <= entry.maxY)) continue;
        cells.push_back({entry.fid,
                         {roundedDown(entry.minX), roundedUp(entry.maxX), roundedDown(entry.minY),
                          roundedUp(entry.maxY)}});
    }
    if (!tree(rtree, std::move(cells)) || !triggers(layer, rtree)) return false;
    Statement extension = prepare(
        "INSERT INTO gpkg_extensions (table_name,column_name,extension_name,definition,"
        "scope) VALUES (?, ?, 'gpkg_rtree_index', "
        "'http://www.geopackage.org/spec120/#extension_rtree', 'write-only')");
    if (!extension) return false;
    sqlite3_bind_text(extension.get(), 1, layer.table.c_str(), -1, SQLITE_TRANSIENT);
    sqlite3_bind_text(extension.get(), 2, layer.geometryColumn.c_str(), -1, SQLITE_TRANSIENT);
    return step(extension.get());
}

}  // namespace

bool writeSpatialIndexes(const std::string& path, const std::vector<LayerIndex>& layers,
                         std::string& error) {
    sqlite3* opened = nullptr;
    int status = sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
    std::unique_ptr<sqlite3, CloseDatabase> db(opened);
    std::string failure;
    Writer writer(opened, failure);
    if (status != SQLITE_OK) {
        failure = opened != nullptr ? sqlite3_errmsg(opened) : sqlite3_errstr(status);
    } else {
        // The R-tree's own tables are written directly, which a defensive connection refuses.
        sqlite3_db_config(opened, SQLITE_DBCONFIG_DEFENSIVE, 0, nullptr);
        bool done = writer.run("BEGIN IMMEDIATE") &&
                    writer.run(
                        "CREATE TABLE IF NOT EXISTS gpkg_extensions (table_name TEXT,"
                        "column_name TEXT,extension_name TEXT NOT NULL,definition TEXT NOT "
                        "NULL,scope TEXT NOT NULL,CONSTRAINT ge_tce UNIQUE (table_name, "
                        "column_name, extension_name))");
        for (const LayerIndex& layer : layers) {
            if (!done) break;
            done = writer.index(layer);
        }
        // Closing with the transaction open rolls it back.
        if (done && writer.run("COMMIT")) return true;
    }
    error = "cannot write the spatial index: " + failure;
    return false;
}

}  // namespace gis
