// The bundled sample, read back: what its generator says it recorded, kind by kind, is
// what `kplan list --kind` prints for the committed drawing.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <string>

#include "tests/cli/Json.h"
#include "tests/cli/RunKplan.h"

namespace {

// The generator's own account of the records it wrote.
const Json& written() {
    static const Json records = [] {
        std::string dxf = testFolder() + "/sample.dxf", json = testFolder() + "/records.json";
        std::string command = std::string("'") + KPLAN_MAKE_SAMPLE_PLAN + "' '" + dxf + "' '" +
                              json + "' >/dev/null 2>&1";
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
        return Json::parse(slurp(json));
    }();
    return records;
}

}  // namespace

TEST(KplanSamplePlanTest, ListPrintsWhatTheGeneratorWroteOfEveryKind) {
    ASSERT_TRUE(written().ok());
    // Not a vacuous comparison: the sample holds records of every kind.
    struct Kind {
        const char* name;
        std::size_t atLeast;
    } kinds[] = {{"parcel", 60},  {"unit", 1},  {"block", 6},
                 {"building", 3}, {"hatch", 5}, {"redline", 15}};
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        const Json& expected = written()[kind.name];
        ASSERT_GE(expected.size(), kind.atLeast);
        Outcome run = kplan(std::string("list --format json --kind ") + kind.name);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        Json rows = Json::parse(run.out);
        ASSERT_TRUE(rows.ok()) << run.out;
        ASSERT_EQ(rows.size(), expected.size());
        // Rows come in the drawing's order; each record is found by its handle.
        std::map<std::string, const Json*> byHandle;
        for (std::size_t r = 0; r < rows.size(); ++r)
            byHandle[rows[r]["handle"].string()] = &rows[r];
        for (std::size_t r = 0; r < expected.size(); ++r) {
            const Json& want = expected[r];
            SCOPED_TRACE(want["handle"].string());
            ASSERT_EQ(byHandle.count(want["handle"].string()), 1u);
            const Json& got = *byHandle[want["handle"].string()];
            for (const std::string& key : want.keys()) {
                const Json& value = got[key];
                if (value.type() == Json::Type::Number) {
                    EXPECT_EQ(value.number(), std::stod(want[key].string())) << key;
                } else {
                    EXPECT_EQ(value.string(), want[key].string()) << key;
                }
            }
        }
    }
}
