#include "host/db/WildcardMatch.h"

#include <string>
#include <utility>
#include <vector>

namespace db {

namespace {

enum class TokenKind { Literal, Any, Digit, Letter, Other, Star, Set };

struct Token {
    TokenKind kind = TokenKind::Literal;
    wchar_t ch = 0;
    bool negated = false;
    std::vector<std::pair<wchar_t, wchar_t>> ranges;
};

wchar_t fold(wchar_t c, bool caseSensitive) {
    if (!caseSensitive && c >= L'a' && c <= L'z') return static_cast<wchar_t>(c - L'a' + L'A');
    return c;
}

bool isDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}
bool isLetter(wchar_t c) {
    return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c > 0x7F;
}

// Reads a bracket set starting after "["; false when it is not closed.
bool readSet(std::wstring_view p, std::size_t& i, Token& token) {
    std::size_t j = i;
    token.kind = TokenKind::Set;
    if (j < p.size() && p[j] == L'~') {
        token.negated = true;
        ++j;
    }
    bool first = true;
    while (j < p.size()) {
        wchar_t c = p[j];
        if (c == L']' && !first) {
            i = j + 1;
            return true;
        }
        first = false;
        if (c == L'`' && j + 1 < p.size()) c = p[++j];
        ++j;
        wchar_t hi = c;
        if (j + 1 < p.size() && p[j] == L'-' && p[j + 1] != L']') {
            hi = p[j + 1];
            if (hi == L'`' && j + 2 < p.size()) {
                hi = p[j + 2];
                ++j;
            }
            j += 2;
        }
        token.ranges.emplace_back(c, hi);
    }
    return false;
}

std::vector<Token> tokenize(std::wstring_view p) {
    std::vector<Token> tokens;
    std::size_t i = 0;
    while (i < p.size()) {
        wchar_t c = p[i++];
        Token token;
        switch (c) {
            case L'`':
                token.ch = i < p.size() ? p[i++] : L'`';
                break;
            case L'?':
                token.kind = TokenKind::Any;
                break;
            case L'#':
                token.kind = TokenKind::Digit;
                break;
            case L'@':
                token.kind = TokenKind::Letter;
                break;
            case L'.':
                token.kind = TokenKind::Other;
                break;
            case L'*':
                if (!tokens.empty() && tokens.back().kind == TokenKind::Star) continue;
                token.kind = TokenKind::Star;
                break;
            case L'[': {
                std::size_t j = i;
                if (!readSet(p, j, token)) {
                    token = Token{};
                    token.ch = L'[';
                } else {
                    i = j;
                }
                break;
            }
            default:
                token.ch = c;
        }
        tokens.push_back(std::move(token));
    }
    return tokens;
}

bool matchesOne(const Token& t, wchar_t c, bool caseSensitive) {
    switch (t.kind) {
        case TokenKind::Literal:
            return fold(t.ch, caseSensitive) == fold(c, caseSensitive);
        case TokenKind::Any:
            return true;
        case TokenKind::Digit:
            return isDigit(c);
        case TokenKind::Letter:
            return isLetter(c);
        case TokenKind::Other:
            return !isDigit(c) && !isLetter(c);
        case TokenKind::Set: {
            wchar_t f = fold(c, caseSensitive);
            bool in = false;
            for (const auto& [lo, hi] : t.ranges) {
                if ((c >= lo && c <= hi) ||
                    (f >= fold(lo, caseSensitive) && f <= fold(hi, caseSensitive))) {
                    in = true;
                    break;
                }
            }
            return in != t.negated;
        }
        case TokenKind::Star:
            break;
    }
    return false;
}

// Every token but "*" takes one character, so one backtracking point suffices.
bool matchTokens(std::wstring_view text, const std::vector<Token>& tokens, bool caseSensitive) {
    std::size_t t = 0, k = 0;
    std::size_t starToken = std::wstring_view::npos, starText = 0;
    while (t < text.size()) {
        if (k < tokens.size() && tokens[k].kind == TokenKind::Star) {
            starToken = k++;
            starText = t;
        } else if (k < tokens.size() && matchesOne(tokens[k], text[t], caseSensitive)) {
            ++k;
            ++t;
        } else if (starToken != std::wstring_view::npos) {
            k = starToken + 1;
            t = ++starText;
        } else {
            return false;
        }
    }
    while (k < tokens.size() && tokens[k].kind == TokenKind::Star)
        ++k;
    return k == tokens.size();
}

// Splits at commas that are neither escaped nor inside a closed bracket set.
std::vector<std::wstring_view> alternatives(std::wstring_view p) {
    std::vector<std::wstring_view> parts;
    std::size_t start = 0, i = 0;
    while (i < p.size()) {
        wchar_t c = p[i];
        if (c == L'`') {
            i += 2;
        } else if (c == L'[') {
            Token ignored;
            std::size_t j = i + 1;
            i = readSet(p, j, ignored) ? j : i + 1;
        } else if (c == L',') {
            parts.push_back(p.substr(start, i - start));
            start = ++i;
        } else {
            ++i;
        }
    }
    parts.push_back(p.substr(start));
    return parts;
}

// A pattern of plain names (commas between them at most), as selection filters mostly
// give: compared name by name, without building tokens.
bool isNameList(std::wstring_view pattern) {
    return pattern.find_first_of(L"`?#@.*[~") == std::wstring_view::npos;
}

bool sameText(std::wstring_view a, std::wstring_view b, bool caseSensitive) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (fold(a[i], caseSensitive) != fold(b[i], caseSensitive)) return false;
    }
    return true;
}

bool matchesNameList(std::wstring_view text, std::wstring_view pattern, bool caseSensitive) {
    for (;;) {
        std::size_t comma = pattern.find(L',');
        if (sameText(text, pattern.substr(0, comma), caseSensitive)) return true;
        if (comma == std::wstring_view::npos) return false;
        pattern.remove_prefix(comma + 1);
    }
}

struct Alternative {
    bool negate = false;
    std::vector<Token> tokens;
};

struct Compiled {
    std::wstring pattern;
    std::vector<Alternative> alternatives;
};

// A selection filter asks the same few patterns of every entity of the drawing: each is
// tokenized once. A reference stays valid until the next call.
const Compiled& compiled(std::wstring_view pattern) {
    thread_local std::vector<Compiled> cache;
    for (const Compiled& c : cache) {
        if (c.pattern == pattern) return c;
    }
    if (cache.size() >= 16) cache.erase(cache.begin());
    Compiled c{std::wstring(pattern), {}};
    for (std::wstring_view alt : alternatives(pattern)) {
        bool negate = !alt.empty() && alt.front() == L'~';
        if (negate) alt.remove_prefix(1);
        c.alternatives.push_back({negate, tokenize(alt)});
    }
    cache.push_back(std::move(c));
    return cache.back();
}

}  // namespace

bool wcmatch(std::wstring_view text, std::wstring_view pattern, bool caseSensitive) {
    if (isNameList(pattern)) return matchesNameList(text, pattern, caseSensitive);
    for (const Alternative& alt : compiled(pattern).alternatives) {
        if (matchTokens(text, alt.tokens, caseSensitive) != alt.negate) return true;
    }
    return false;
}

}  // namespace db
