// User input on the command line: keywords, numbers, points, strings and messages.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "host/arx/acdocman.h"
#include "host/arx/acedads.h"
#include "host/arx/acutads.h"
#include "host/db/CommandLine.h"
#include "tests/support/LeakCheck.h"

namespace {

class CommandLineTest : public ::testing::Test {
  protected:
    void SetUp() override {
        input = db::useScriptedInput();
        db::commandLine().clearTranscript();
        arx::resetSystemVariables();
        acedInitGet(0, nullptr);
    }
    void TearDown() override {
        leaks.expectNone();
        db::commandLine().setInput(nullptr);
        db::commandLine().clearTranscript();
    }
    void script(const std::vector<std::wstring>& lines) {
        for (const std::wstring& l : lines)
            input->push(l);
    }
    const std::wstring& transcript() const { return db::commandLine().transcript(); }

    LeakCheck leaks;
    std::shared_ptr<db::ScriptedInput> input;
};

TEST(AnswerParsing, ReadsEveryKindOfScriptedLine) {
    using K = db::Answer::Kind;
    struct Case {
        std::wstring line;
        K kind;
        std::wstring text;
        std::array<double, 3> point;
        std::vector<std::wstring> handles;
    } cases[] = {
        {L"", K::Enter, L"", {}, {}},
        {L"   ", K::Enter, L"", {}, {}},
        {L"<Esc>", K::Cancel, L"", {}, {}},
        {L"^C", K::Cancel, L"", {}, {}},
        {L"Y", K::Text, L"Y", {}, {}},
        {L"12.5", K::Text, L"12.5", {}, {}},
        {L"pick:1,2", K::PickPoint, L"", {1, 2, 0}, {}},
        {L"PICK: -1.5 , 2e1 , 3", K::PickPoint, L"", {-1.5, 20, 3}, {}},
        {L"pick:a,b", K::Text, L"pick:a,b", {}, {}},
        {L"handle:2A", K::PickHandle, L"", {}, {L"2A"}},
        {L"handles:2A, 2B,,3C", K::Handles, L"", {}, {L"2A", L"2B", L"3C"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.line.begin(), c.line.end()));
        db::Answer a = db::parseAnswer(c.line);
        EXPECT_EQ(a.kind, c.kind);
        EXPECT_EQ(a.text, c.text);
        if (c.kind == K::PickPoint) {
            EXPECT_EQ(a.point, c.point);
        }
        EXPECT_EQ(a.handles, c.handles);
    }
}

TEST(AnswerParsing, NumbersAreStrictlyDecimal) {
    struct Case {
        const wchar_t* text;
        bool ok;
        double value;
    } cases[] = {
        {L"12.5", true, 12.5}, {L" -3 ", true, -3}, {L"+.5", true, 0.5}, {L"1e3", true, 1000},
        {L"inf", false, 0},    {L"nan", false, 0},  {L"1,5", false, 0},  {L"12a", false, 0},
        {L"", false, 0},       {L"--1", false, 0},  {L"0x10", false, 0}, {L"1e999", false, 0},
    };
    for (const Case& c : cases) {
        double v = -99;
        EXPECT_EQ(db::parseReal(c.text, v), c.ok) << c.text;
        if (c.ok) {
            EXPECT_DOUBLE_EQ(v, c.value) << c.text;
        }
    }
}

TEST_F(CommandLineTest, ADryScriptCancelsAndRemembersThePrompts) {
    ACHAR kw[32];
    acedInitGet(0, L"A B");
    EXPECT_EQ(acedGetKword(L"\nFirst:", kw, 32), RTCAN);
    double r = 0;
    EXPECT_EQ(acedGetReal(L"\nSecond:", &r), RTCAN);
    EXPECT_EQ(input->prompts(), (std::vector<std::wstring>{L"\nFirst:", L"\nSecond:"}));
    EXPECT_EQ(transcript(), L"\nFirst:*Cancel*\nSecond:*Cancel*");
}

TEST_F(CommandLineTest, KeywordAnswers) {
    struct Case {
        const char* what;
        int flags;
        const wchar_t* keywords;
        std::vector<std::wstring> answers;
        int rc;
        std::wstring result;
        std::wstring message;  // shown on the way, or empty
    } cases[] = {
        {"Enter takes the caller's default", 0, L"S F D", {L""}, RTNONE, L"", L""},
        {"case is ignored", 0, L"S F D", {L"f"}, RTNORM, L"F", L""},
        {"capital abbreviation", 0, L"Yes No", {L"y"}, RTNORM, L"Yes", L""},
        {"longer than the abbreviation", 0, L"Yes No", {L"YE"}, RTNORM, L"Yes", L""},
        {"whole word", 0, L"Yes No", {L"no"}, RTNORM, L"No", L""},
        {"inner capital", 0, L"eXit Undo", {L"x"}, RTNORM, L"eXit", L""},
        {"prefix through the capital", 0, L"eXit Undo", {L"exi"}, RTNORM, L"eXit", L""},
        {"comma abbreviation", 0, L"LTYPE,LT Layer", {L"lt"}, RTNORM, L"LTYPE", L""},
        {"abbreviation of the other", 0, L"LTYPE,LT Layer", {L"L"}, RTNORM, L"Layer", L""},
        {"unique prefix", 0, L"ALL Window", {L"AL"}, RTNORM, L"ALL", L""},
        {"global names are returned", 0, L"Yes No _Y N", {L"yes"}, RTNORM, L"Y", L""},
        {"underscore answers a global", 0, L"Ja Nein _Yes No", {L"_no"}, RTNORM, L"No", L""},
        {"wide keywords", 0, L"是 否", {L"否"}, RTNORM, L"否", L""},
        {"invalid then valid", 0, L"S F D", {L"Q", L"d"}, RTNORM, L"D", L"Invalid option keyword."},
        {"ambiguous prefix",
         0,
         L"erase extend",
         {L"e", L"ext"},
         RTNORM,
         L"extend",
         L"Ambiguous response"},
        {"no null refuses Enter",
         RSG_NONULL,
         L"S F D",
         {L"", L"S"},
         RTNORM,
         L"S",
         L"Invalid option keyword."},
        {"a pick is no keyword",
         0,
         L"S",
         {L"pick:1,1", L"s"},
         RTNORM,
         L"S",
         L"Invalid option keyword."},
        {"other input passes", RSG_OTHER, L"Yes No", {L"maybe"}, RTNORM, L"maybe", L""},
        {"Esc", 0, L"S F D", {L"<esc>"}, RTCAN, L"", L""},
        {"Esc after invalid", 0, L"S F D", {L"x", L"^C"}, RTCAN, L"", L"Invalid option keyword."},
        {"script runs dry", RSG_NONULL, L"S F D", {L""}, RTCAN, L"", L"Invalid option keyword."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        input->clear();
        db::commandLine().clearTranscript();
        script(c.answers);
        acedInitGet(c.flags, c.keywords);
        ACHAR result[64] = L"unchanged";
        int rc = acedGetKword(L"\nChoose:", result, 64);
        EXPECT_EQ(rc, c.rc);
        if (rc == RTNORM || rc == RTNONE) {
            EXPECT_EQ(std::wstring(result), c.result);
        }
        if (!c.message.empty()) {
            EXPECT_NE(transcript().find(c.message), std::wstring::npos);
        }
        EXPECT_EQ(input->pending(), 0u);
    }
}

TEST_F(CommandLineTest, InitGetAppliesToTheNextCallOnly) {
    script({L"A", L"A", L"<esc>"});
    acedInitGet(0, L"A B");
    ACHAR kw[8];
    ASSERT_EQ(acedGetKword(L"\nOne:", kw, 8), RTNORM);
    EXPECT_EQ(std::wstring(kw), L"A");
    // No keywords any more: the same answer is now invalid.
    EXPECT_EQ(acedGetKword(L"\nTwo:", kw, 8), RTCAN);
    EXPECT_NE(transcript().find(L"Invalid option keyword."), std::wstring::npos);
}

TEST_F(CommandLineTest, KeywordThatDoesNotFitIsCut) {
    script({L"y"});
    acedInitGet(0, L"Yes No");
    ACHAR kw[3];
    EXPECT_EQ(acedGetKword(L"", kw, 3), RTINPUTTRUNCATED);
    EXPECT_EQ(std::wstring(kw), L"Ye");
}

TEST_F(CommandLineTest, RealAnswers) {
    struct Case {
        const char* what;
        int flags;
        const wchar_t* keywords;
        std::vector<std::wstring> answers;
        int rc;
        double value;
        std::wstring keyword;
        std::wstring message;
    } cases[] = {
        {"plain", 0, nullptr, {L"12.5"}, RTNORM, 12.5, L"", L""},
        {"exponent", 0, nullptr, {L"2.5e3"}, RTNORM, 2500, L"", L""},
        {"negative", 0, nullptr, {L"-4"}, RTNORM, -4, L"", L""},
        {"Enter", 0, nullptr, {L""}, RTNONE, 0, L"", L""},
        {"not a number", 0, nullptr, {L"abc", L"3"}, RTNORM, 3, L"", L"Requires numeric value."},
        {"a pick is no number",
         0,
         nullptr,
         {L"pick:1,2", L"3"},
         RTNORM,
         3,
         L"",
         L"Requires numeric value."},
        {"no null", RSG_NONULL, nullptr, {L"", L"1"}, RTNORM, 1, L"", L"Requires numeric value."},
        {"no zero", RSG_NOZERO, nullptr, {L"0", L"2"}, RTNORM, 2, L"", L"Value must be nonzero."},
        {"no negative",
         RSG_NONEG,
         nullptr,
         {L"-1", L"0"},
         RTNORM,
         0,
         L"",
         L"Value must be positive."},
        {"keyword", 0, L"Undo Exit", {L"u"}, RTKWORD, 0, L"Undo", L""},
        {"other text", RSG_OTHER, nullptr, {L"area"}, RTKWORD, 0, L"area", L""},
        {"Esc", 0, nullptr, {L"<esc>"}, RTCAN, 0, L"", L""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        input->clear();
        db::commandLine().clearTranscript();
        script(c.answers);
        acedInitGet(c.flags, c.keywords);
        double value = -777;
        int rc = acedGetReal(L"\nValue:", &value);
        EXPECT_EQ(rc, c.rc);
        if (rc == RTNORM) {
            EXPECT_DOUBLE_EQ(value, c.value);
        }
        if (rc != RTNORM) {
            EXPECT_EQ(value, -777);
        }
        if (rc == RTKWORD) {
            ACHAR kw[32];
            ASSERT_EQ(acedGetInput(kw, 32), RTNORM);
            EXPECT_EQ(std::wstring(kw), c.keyword);
        }
        if (!c.message.empty()) {
            EXPECT_NE(transcript().find(c.message), std::wstring::npos);
        }
        EXPECT_EQ(input->pending(), 0u);
    }
}

TEST_F(CommandLineTest, IntegerAnswers) {
    struct Case {
        std::vector<std::wstring> answers;
        int rc;
        int value;
        std::wstring message;
    } cases[] = {
        {{L"7"}, RTNORM, 7, L""},
        {{L"-32768"}, RTNORM, -32768, L""},
        {{L"7.5", L"8"}, RTNORM, 8, L"Requires an integer value."},
        {{L"40000", L"1"}, RTNORM, 1, L"Requires an integer between -32768 and 32767."},
        {{L""}, RTNONE, 0, L""},
    };
    for (const Case& c : cases) {
        input->clear();
        db::commandLine().clearTranscript();
        script(c.answers);
        int value = -1;
        int rc = acedGetInt(L"\nCount:", &value);
        EXPECT_EQ(rc, c.rc) << c.answers.front();
        if (rc == RTNORM) {
            EXPECT_EQ(value, c.value);
        }
        if (!c.message.empty()) {
            EXPECT_NE(transcript().find(c.message), std::wstring::npos);
        }
    }
}

TEST_F(CommandLineTest, PointAnswers) {
    struct Case {
        const char* what;
        bool hasBase;
        std::vector<std::wstring> answers;
        int rc;
        std::array<double, 3> point;
        std::wstring message;
    } cases[] = {
        {"typed x,y", false, {L"1,2"}, RTNORM, {1, 2, 0}, L""},
        {"typed x,y,z", false, {L"1,2,3"}, RTNORM, {1, 2, 3}, L""},
        {"picked", false, {L"pick:4.5,-5"}, RTNORM, {4.5, -5, 0}, L""},
        {"relative to the base", true, {L"@1,-1"}, RTNORM, {11, 9, 0}, L""},
        {"polar from the base", true, {L"@2<90"}, RTNORM, {10, 12, 0}, L""},
        {"polar from the origin", false, {L"10<180"}, RTNORM, {-10, 0, 0}, L""},
        {"not a point", false, {L"abc", L"0,0"}, RTNORM, {0, 0, 0}, L"Invalid point."},
        {"a handle is no point",
         false,
         {L"handle:1F", L"0,1"},
         RTNORM,
         {0, 1, 0},
         L"Invalid point."},
        {"Enter", false, {L""}, RTNONE, {}, L""},
        {"Esc", false, {L"<esc>"}, RTCAN, {}, L""},
    };
    ads_point base = {10, 10, 0};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        input->clear();
        db::commandLine().clearTranscript();
        script(c.answers);
        ads_point p = {-1, -1, -1};
        int rc = acedGetPoint(c.hasBase ? base : nullptr, L"\nPoint:", p);
        EXPECT_EQ(rc, c.rc);
        if (rc == RTNORM) {
            for (int i = 0; i < 3; ++i)
                EXPECT_NEAR(p[i], c.point[i], 1e-9);
            resbuf last;
            ASSERT_EQ(acedGetVar(L"LASTPOINT", &last), RTNORM);
            EXPECT_NEAR(last.resval.rpoint[0], c.point[0], 1e-9);
            EXPECT_NEAR(last.resval.rpoint[1], c.point[1], 1e-9);
        }
        if (!c.message.empty()) {
            EXPECT_NE(transcript().find(c.message), std::wstring::npos);
        }
    }
}

TEST_F(CommandLineTest, PointOrKeyword) {
    script({L"x", L"c"});
    acedInitGet(0, L"Close Undo");
    ads_point p;
    EXPECT_EQ(acedGetPoint(nullptr, L"\nNext point [Close/Undo]:", p), RTKWORD);
    ACHAR kw[16];
    acedGetInput(kw, 16);
    EXPECT_EQ(std::wstring(kw), L"Close");
    EXPECT_NE(transcript().find(L"Point or option keyword required."), std::wstring::npos);
}

TEST_F(CommandLineTest, DistanceAnswers) {
    struct Case {
        bool hasBase;
        std::vector<std::wstring> answers;
        int rc;
        double distance;
    } cases[] = {
        {false, {L"5"}, RTNORM, 5},           {true, {L"3,4"}, RTNORM, 5},  // from the base point
        {false, {L"1,1", L"4,5"}, RTNORM, 5},                               // two points
        {false, {L"1,1", L""}, RTNONE, 0},    {false, {L"<esc>"}, RTCAN, 0},
    };
    ads_point base = {0, 0, 0};
    for (const Case& c : cases) {
        input->clear();
        script(c.answers);
        double d = -1;
        EXPECT_EQ(acedGetDist(c.hasBase ? base : nullptr, L"\nDistance:", &d), c.rc);
        if (c.rc == RTNORM) {
            EXPECT_DOUBLE_EQ(d, c.distance);
        }
        EXPECT_EQ(input->pending(), 0u);
    }
}

TEST_F(CommandLineTest, StringAnswers) {
    struct Case {
        int cronly;
        std::wstring answer;
        int rc;
        std::wstring result;
    } cases[] = {
        {1, L"地块 A", RTNORM, L"地块 A"},
        {0, L"地块 A", RTNORM, L"地块"},
        {1, L"", RTNORM, L""},
        {1, L"<esc>", RTCAN, L""},
    };
    for (const Case& c : cases) {
        input->clear();
        input->push(c.answer);
        ACHAR s[32] = L"unchanged";
        EXPECT_EQ(acedGetString(c.cronly, L"\nName:", s, 32), c.rc);
        if (c.rc == RTNORM) {
            EXPECT_EQ(std::wstring(s), c.result);
        }
    }
}

TEST_F(CommandLineTest, PrintfFollowsTheWindowsConventions) {
    struct Case {
        std::function<int()> print;
        std::wstring expected;
    } cases[] = {
        {[] { return acutPrintf(L"\n%s出现异常!", L"FHatch"); }, L"\nFHatch出现异常!"},
        {[] { return acutPrintf(L"%d 个地块, %.2f 公顷", 3, 1.255); }, L"3 个地块, 1.25 公顷"},
        {[] { return acutPrintf(L"%S|%hs|%ls|%ws", "a", "b", L"c", L"d"); }, L"a|b|c|d"},
        {[] { return acutPrintf(L"%c%C", L'地', 'k'); }, L"地k"},
        {[] { return acutPrintf(L"%I64d %I32u %Iu", 1234567890123LL, 7u, std::size_t{9}); },
         L"1234567890123 7 9"},
        {[] { return acutPrintf(L"%-4s|%5.1s|%%", L"ab", L"xyz"); }, L"ab  |    x|%"},
        {[] { return acutPrintf(L"%*d", 4, 7); }, L"   7"},
    };
    for (const Case& c : cases) {
        db::commandLine().clearTranscript();
        EXPECT_EQ(c.print(), RTNORM);
        EXPECT_EQ(transcript(), c.expected);
    }
}

TEST_F(CommandLineTest, OutputIsEchoedToStreamAndCallback) {
    std::wostringstream stream;
    std::wstring seen;
    db::commandLine().setEchoStream(&stream);
    db::commandLine().setEchoCallback([&seen](std::wstring_view t) { seen += t; });
    script({L"2"});
    acutPrintf(L"\n%s", L"统计");
    double r = 0;
    acedGetReal(L"\n面积:", &r);
    acedPrompt(L"\ndone");
    db::commandLine().setEchoStream(nullptr);
    db::commandLine().setEchoCallback(nullptr);
    acutPrintf(L"\nnot echoed");
    const std::wstring expected = L"\n统计\n面积:2\ndone";
    EXPECT_EQ(stream.str(), expected);
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(transcript(), expected + L"\nnot echoed");
}

}  // namespace
