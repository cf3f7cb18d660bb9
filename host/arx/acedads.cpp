// User input on the command line: prompts, keywords, numbers, points and entity picks.
#include "host/arx/acedads.h"

#include <array>
#include <cmath>
#include <cstdarg>
#include <cwchar>
#include <string>
#include <vector>

#include "host/arx/acedinternal.h"
#include "host/arx/acutads.h"
#include "host/arx/dbapserv.h"
#include "host/arx/peek.h"
#include "host/db/CommandLine.h"
#include "host/db/Database.h"
#include "host/db/WildcardMatch.h"
#include "host/db/WindowsFormat.h"

namespace {

using Kind = db::InputRequest::Kind;
using AnswerKind = db::Answer::Kind;

constexpr std::size_t kLegacyBuffer = 132;
// ERRNO values of entity picks.
constexpr short kErrnoPickMissed = 7;
constexpr short kErrnoNullInput = 52;

wchar_t upper(wchar_t c) {
    return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - 32) : c;
}

std::wstring upperText(std::wstring_view text) {
    std::wstring out(text);
    for (wchar_t& c : out)
        c = upper(c);
    return out;
}

std::wstring_view trim(std::wstring_view s) {
    while (!s.empty() && (s.front() == L' ' || s.front() == L'\t'))
        s.remove_prefix(1);
    while (!s.empty() && (s.back() == L' ' || s.back() == L'\t'))
        s.remove_suffix(1);
    return s;
}

struct Keyword {
    std::wstring name;          // as written, without the abbreviation after a comma
    std::wstring global;        // what is returned
    std::size_t required = 0;   // leading characters that must be typed
    std::wstring abbreviation;  // typed alone, enough (the capitals, or after a comma)
};

Keyword makeKeyword(std::wstring_view word) {
    Keyword k;
    std::size_t comma = word.find(L',');
    if (comma != std::wstring_view::npos) {
        k.name = word.substr(0, comma);
        k.abbreviation = word.substr(comma + 1);
        k.required = k.abbreviation.size();
        return k;
    }
    k.name = word;
    std::size_t start = 0;
    while (start < word.size() && !(word[start] >= L'A' && word[start] <= L'Z'))
        ++start;
    if (start == word.size()) {
        k.abbreviation = word;  // no capitals: the whole word
        k.required = word.size();
        return k;
    }
    std::size_t end = start;
    while (end < word.size() && word[end] >= L'A' && word[end] <= L'Z')
        ++end;
    k.abbreviation = word.substr(start, end - start);
    k.required = end;
    return k;
}

std::vector<std::wstring_view> words(std::wstring_view text) {
    std::vector<std::wstring_view> out;
    std::size_t i = 0;
    while (i < text.size()) {
        while (i < text.size() && (text[i] == L' ' || text[i] == L'\t'))
            ++i;
        std::size_t start = i;
        while (i < text.size() && text[i] != L' ' && text[i] != L'\t')
            ++i;
        if (i > start) out.push_back(text.substr(start, i - start));
    }
    return out;
}

enum class Match { None, One, Ambiguous };

class KeywordList {
  public:
    KeywordList() = default;
    explicit KeywordList(const ACHAR* text) {
        std::vector<std::wstring_view> all = words(text ? text : L"");
        std::size_t split = all.size();
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (all[i].front() == L'_') {
                split = i;
                break;
            }
        }
        for (std::size_t i = 0; i < split; ++i)
            locals_.push_back(makeKeyword(all[i]));
        std::vector<std::wstring_view> globals(all.begin() + static_cast<long>(split), all.end());
        if (!globals.empty()) globals.front().remove_prefix(1);
        bool paired = globals.size() == locals_.size();
        for (std::size_t i = 0; i < locals_.size(); ++i) {
            Keyword g = makeKeyword(paired ? globals[i] : std::wstring_view(locals_[i].name));
            locals_[i].global = g.name;
            globals_.push_back(std::move(g));
            globals_.back().global = globals_.back().name;
        }
    }

    bool empty() const { return locals_.empty(); }

    Match match(std::wstring_view input, std::wstring& keyword) const {
        input = trim(input);
        if (input.empty() || locals_.empty()) return Match::None;
        // "_name" answers with a global name whatever the local language.
        if (input.front() == L'_' && input.size() > 1)
            return matchIn(globals_, input.substr(1), keyword);
        return matchIn(locals_, input, keyword);
    }

  private:
    static Match matchIn(const std::vector<Keyword>& list, std::wstring_view input,
                         std::wstring& keyword) {
        std::wstring typed = upperText(input);
        for (const Keyword& k : list) {
            std::wstring name = upperText(k.name);
            bool full = name.rfind(typed, 0) == 0 && typed.size() >= k.required;
            if (full || typed == upperText(k.abbreviation)) {
                keyword = k.global;
                return Match::One;
            }
        }
        const Keyword* found = nullptr;
        for (const Keyword& k : list) {
            if (upperText(k.name).rfind(typed, 0) != 0) continue;
            if (found != nullptr) return Match::Ambiguous;
            found = &k;
        }
        if (found == nullptr) return Match::None;
        keyword = found->global;
        return Match::One;
    }

    std::vector<Keyword> locals_, globals_;
};

struct InitGet {
    int flags = 0;
    KeywordList keywords;
};

InitGet& pendingInitGet() {
    static InitGet pending;
    return pending;
}

InitGet takeInitGet() {
    InitGet taken = std::move(pendingInitGet());
    pendingInitGet() = InitGet();
    return taken;
}

std::wstring& lastKeyword() {
    static std::wstring keyword;
    return keyword;
}

db::CommandLine& line() {
    return db::commandLine();
}

void say(const wchar_t* message) {
    line().print(message);
}

int copyOut(const std::wstring& text, ACHAR* result, std::size_t size, int status) {
    if (result == nullptr || size == 0) return RTERROR;
    std::size_t n = std::min(text.size(), size - 1);
    std::wmemcpy(result, text.data(), n);
    result[n] = 0;
    return n < text.size() ? RTINPUTTRUNCATED : status;
}

// The keyword answers common to the numeric and point inputs: RTKWORD when the text is
// a keyword (or any text with RSG_OTHER), 0 when it is not.
int keywordAnswer(const InitGet& init, std::wstring_view text) {
    std::wstring keyword;
    Match m = init.keywords.match(text, keyword);
    if (m == Match::One) {
        lastKeyword() = keyword;
        return RTKWORD;
    }
    if (m == Match::None && (init.flags & RSG_OTHER) != 0) {
        lastKeyword() = std::wstring(trim(text));
        return RTKWORD;
    }
    return 0;
}

// Keeps what the caller asked for: zero and negative numbers refused when it said so.
const wchar_t* rejectNumber(int flags, double value) {
    bool noZero = (flags & RSG_NOZERO) != 0, noNeg = (flags & RSG_NONEG) != 0;
    if (value == 0 && noZero) {
        return noNeg ? L"\nValue must be positive and nonzero." : L"\nValue must be nonzero.";
    }
    if (value < 0 && noNeg) return L"\nValue must be positive.";
    return nullptr;
}

// "@dx,dy[,dz]" and "[@]distance<angle" from the base point; plain coordinates.
bool parsePointText(std::wstring_view text, const ads_point base, AcGePoint3d& out) {
    text = trim(text);
    bool relative = !text.empty() && text.front() == L'@';
    if (relative) text.remove_prefix(1);
    AcGePoint3d origin;
    if (relative) origin = base ? asPnt3d(base) : arx::lastPoint();
    if (relative && text.empty()) {
        out = origin;
        return true;
    }
    std::size_t angleMark = text.find(L'<');
    if (angleMark != std::wstring_view::npos) {
        double distance = 0, degrees = 0;
        if (!db::parseReal(text.substr(0, angleMark), distance) ||
            !db::parseReal(text.substr(angleMark + 1), degrees)) {
            return false;
        }
        double a = degrees * M_PI / 180;
        out = {origin.x + distance * std::cos(a), origin.y + distance * std::sin(a), origin.z};
        return true;
    }
    std::array<double, 3> p{};
    int count = 0;
    if (!db::parseCoordinates(text, p, count)) return false;
    out = {origin.x + p[0], origin.y + p[1], (count == 3 ? p[2] : 0.0) + origin.z};
    return true;
}

void store(const AcGePoint3d& p, ads_point result) {
    result[0] = p.x;
    result[1] = p.y;
    result[2] = p.z;
}

// A point from a pick or from typed text; 0 when it was a point, else the status to
// return (RTKWORD) or -1 to ask again.
int pointAnswer(const InitGet& init, const db::Answer& answer, const ads_point base,
                AcGePoint3d& point) {
    if (answer.kind == AnswerKind::PickPoint) {
        point = {answer.point[0], answer.point[1], answer.point[2]};
        return 0;
    }
    if (answer.kind == AnswerKind::Text) {
        if (parsePointText(answer.text, base, point)) return 0;
        if (int status = keywordAnswer(init, answer.text)) return status;
    }
    say(init.keywords.empty() ? L"\nInvalid point." : L"\nPoint or option keyword required.");
    return -1;
}

AcDbObjectId entityByHandle(AcDbDatabase* database, const std::wstring& hex) {
    AcDbHandle handle(hex.c_str());
    if (database == nullptr || handle.isNull()) return AcDbObjectId();
    AcDbObjectId id;
    if (database->getAcDbObjectId(id, false, handle) != Acad::eOk || id.isErased()) {
        return AcDbObjectId();
    }
    return arx::peek<AcDbEntity>(id) ? id : AcDbObjectId();
}

// A point on the entity, for a pick made by naming it.
AcGePoint3d pointOn(AcDbObjectId id) {
    arx::EntityShape shape;
    if (arx::entityShape(arx::peek<AcDbEntity>(id), shape) && !shape.points.empty()) {
        return {shape.points.front().x, shape.points.front().y, 0};
    }
    return AcGePoint3d();
}

}  // namespace

int acutPrintf(const ACHAR* format, ...) {
    va_list args;
    va_start(args, format);
    std::wstring text = db::formatVa(format, args);
    va_end(args);
    line().print(text);
    return RTNORM;
}

int acedPrompt(const ACHAR* text) {
    if (text != nullptr) line().print(text);
    return RTNORM;
}

int acutWcMatch(const ACHAR* string, const ACHAR* pattern) {
    if (string == nullptr || pattern == nullptr) return RTERROR;
    return db::wcmatch(string, pattern, true) ? RTNORM : RTERROR;
}

int acedInitGet(int flags, const ACHAR* keywords) {
    pendingInitGet() = InitGet{flags, KeywordList(keywords)};
    return RTNORM;
}

namespace arx {
void dropInitGet() {
    takeInitGet();
}
}  // namespace arx

int acedGetKword(const ACHAR* prompt, ACHAR* result, std::size_t bufsize) {
    InitGet init = takeInitGet();
    for (;;) {
        db::Answer answer = line().ask(Kind::Keyword, prompt ? prompt : L"");
        switch (answer.kind) {
            case AnswerKind::Cancel:
                return RTCAN;
            case AnswerKind::Enter:
                if ((init.flags & RSG_NONULL) != 0) break;
                return copyOut(L"", result, bufsize, RTNONE);
            case AnswerKind::Text: {
                std::wstring keyword;
                Match m = init.keywords.match(answer.text, keyword);
                if (m == Match::One) return copyOut(keyword, result, bufsize, RTNORM);
                if (m == Match::None && (init.flags & RSG_OTHER) != 0) {
                    return copyOut(std::wstring(trim(answer.text)), result, bufsize, RTNORM);
                }
                if (m == Match::Ambiguous) {
                    say(L"\nAmbiguous response, please clarify...");
                    continue;
                }
                break;
            }
            default:
                break;
        }
        say(L"\nInvalid option keyword.");
    }
}

int acedGetKword(const ACHAR* prompt, ACHAR* result) {
    return acedGetKword(prompt, result, kLegacyBuffer);
}

int acedGetInput(ACHAR* result, std::size_t bufsize) {
    return copyOut(lastKeyword(), result, bufsize, RTNORM);
}

int acedGetInput(ACHAR* result) {
    return acedGetInput(result, kLegacyBuffer);
}

int acedGetReal(const ACHAR* prompt, ads_real* result) {
    InitGet init = takeInitGet();
    for (;;) {
        db::Answer answer = line().ask(Kind::Real, prompt ? prompt : L"");
        if (answer.kind == AnswerKind::Cancel) return RTCAN;
        if (answer.kind == AnswerKind::Enter && (init.flags & RSG_NONULL) == 0) return RTNONE;
        if (answer.kind == AnswerKind::Text) {
            double value = 0;
            if (db::parseReal(answer.text, value)) {
                if (const wchar_t* refusal = rejectNumber(init.flags, value)) {
                    say(refusal);
                    continue;
                }
                if (result) *result = value;
                return RTNORM;
            }
            if (int status = keywordAnswer(init, answer.text)) return status;
        }
        say(L"\nRequires numeric value.");
    }
}

int acedGetInt(const ACHAR* prompt, int* result) {
    InitGet init = takeInitGet();
    for (;;) {
        db::Answer answer = line().ask(Kind::Integer, prompt ? prompt : L"");
        if (answer.kind == AnswerKind::Cancel) return RTCAN;
        if (answer.kind == AnswerKind::Enter && (init.flags & RSG_NONULL) == 0) return RTNONE;
        if (answer.kind == AnswerKind::Text) {
            std::wstring_view t = trim(answer.text);
            double value = 0;
            bool integral = db::parseReal(t, value) && t.find_first_of(L".eE") == t.npos;
            if (integral && (value < -32768 || value > 32767)) {
                say(L"\nRequires an integer between -32768 and 32767.");
                continue;
            }
            if (integral) {
                if (const wchar_t* refusal = rejectNumber(init.flags, value)) {
                    say(refusal);
                    continue;
                }
                if (result) *result = static_cast<int>(value);
                return RTNORM;
            }
            if (int status = keywordAnswer(init, answer.text)) return status;
        }
        say(L"\nRequires an integer value.");
    }
}

int acedGetPoint(const ads_point base, const ACHAR* prompt, ads_point result) {
    InitGet init = takeInitGet();
    for (;;) {
        db::Answer answer = line().ask(Kind::Point, prompt ? prompt : L"");
        if (answer.kind == AnswerKind::Cancel) return RTCAN;
        if (answer.kind == AnswerKind::Enter) {
            if ((init.flags & RSG_NONULL) == 0) return RTNONE;
            say(L"\nPoint or option keyword required.");
            continue;
        }
        AcGePoint3d point;
        int status = pointAnswer(init, answer, base, point);
        if (status == RTKWORD) return status;
        if (status != 0) continue;
        if ((init.flags & RSG_2D) != 0) point.z = 0;
        arx::setLastPoint(point);
        if (result) store(point, result);
        return RTNORM;
    }
}

int acedGetDist(const ads_point base, const ACHAR* prompt, ads_real* result) {
    InitGet init = takeInitGet();
    for (;;) {
        db::Answer answer = line().ask(Kind::Distance, prompt ? prompt : L"");
        if (answer.kind == AnswerKind::Cancel) return RTCAN;
        if (answer.kind == AnswerKind::Enter) {
            if ((init.flags & RSG_NONULL) == 0) return RTNONE;
            say(L"\nRequires numeric distance or two points.");
            continue;
        }
        double distance = 0;
        if (answer.kind == AnswerKind::Text && db::parseReal(answer.text, distance)) {
            if (const wchar_t* refusal = rejectNumber(init.flags, distance)) {
                say(refusal);
                continue;
            }
            if (result) *result = distance;
            return RTNORM;
        }
        AcGePoint3d first;
        int status = pointAnswer(init, answer, base, first);
        if (status == RTKWORD) return status;
        if (status != 0) continue;
        AcGePoint3d second;
        if (base != nullptr) {
            second = first;
            first = asPnt3d(base);
        } else {
            // Without a base point the first point is one end; ask for the other.
            ads_point from = {first.x, first.y, first.z};
            ads_point to;
            int rc = acedGetPoint(from, L"\nSpecify second point: ", to);
            if (rc != RTNORM) return rc;
            second = asPnt3d(to);
        }
        if ((init.flags & RSG_2D) != 0) first.z = second.z = 0;
        distance = first.distanceTo(second);
        if (const wchar_t* refusal = rejectNumber(init.flags, distance)) {
            say(refusal);
            continue;
        }
        if (result) *result = distance;
        return RTNORM;
    }
}

int acedGetString(int cronly, const ACHAR* prompt, ACHAR* result, std::size_t bufsize) {
    takeInitGet();
    db::Answer answer = line().ask(Kind::String, prompt ? prompt : L"");
    switch (answer.kind) {
        case AnswerKind::Cancel:
            return RTCAN;
        case AnswerKind::Text: {
            std::wstring text = answer.text;
            // Without cronly a blank ends the input, as Enter would.
            if (cronly == 0) text = text.substr(0, text.find_first_of(L" \t"));
            return copyOut(text, result, bufsize, RTNORM);
        }
        default:
            return copyOut(L"", result, bufsize, RTNORM);
    }
}

int acedGetString(int cronly, const ACHAR* prompt, ACHAR* result) {
    return acedGetString(cronly, prompt, result, kLegacyBuffer);
}

int acedEntSel(const ACHAR* prompt, ads_name entity, ads_point pickedPoint) {
    InitGet init = takeInitGet();
    const ACHAR* shown = prompt ? prompt : L"\nSelect object: ";
    for (;;) {
        db::Answer answer = line().ask(Kind::Entity, shown);
        AcDbDatabase* database = acdbHostApplicationServices()->workingDatabase();
        AcDbObjectId found;
        AcGePoint3d at;
        switch (answer.kind) {
            case AnswerKind::Cancel:
                return RTCAN;
            case AnswerKind::Enter:
                arx::setSystemVariableShort(L"ERRNO", kErrnoNullInput);
                return RTERROR;
            case AnswerKind::Text: {
                if (!parsePointText(answer.text, nullptr, at)) {
                    if (int status = keywordAnswer(init, answer.text)) return status;
                    say(L"\n*Invalid selection*");
                    continue;
                }
                break;
            }
            case AnswerKind::PickPoint:
                at = {answer.point[0], answer.point[1], answer.point[2]};
                break;
            case AnswerKind::PickHandle:
            case AnswerKind::Handles:
                if (answer.handles.size() != 1) {
                    say(L"\n*Invalid selection*");
                    continue;
                }
                found = entityByHandle(database, answer.handles.front());
                // Only what the current space shows can be picked.
                if (!found.isNull() &&
                    (database == nullptr ||
                     arx::peek<AcDbEntity>(found)->ownerId() != database->currentSpaceId())) {
                    found = AcDbObjectId();
                }
                if (found.isNull()) {
                    arx::setSystemVariableShort(L"ERRNO", kErrnoPickMissed);
                    return RTERROR;
                }
                at = pointOn(found);
                break;
        }
        if (found.isNull()) {
            double half = arx::systemVariableShort(L"PICKBOX", 3);
            if (database != nullptr) {
                found = arx::pickEntity(database->currentSpaceId(), {at.x, at.y}, half);
            }
            if (found.isNull()) {
                arx::setSystemVariableShort(L"ERRNO", kErrnoPickMissed);
                return RTERROR;
            }
        }
        if (entity) db::stubToName(found.stub(), entity);
        if (pickedPoint) store(at, pickedPoint);
        return RTNORM;
    }
}
