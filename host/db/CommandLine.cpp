#include "host/db/CommandLine.h"

#include <charconv>
#include <cmath>

namespace db {

namespace {

std::wstring_view trim(std::wstring_view s) {
    while (!s.empty() && (s.front() == L' ' || s.front() == L'\t'))
        s.remove_prefix(1);
    while (!s.empty() &&
           (s.back() == L' ' || s.back() == L'\t' || s.back() == L'\r' || s.back() == L'\n')) {
        s.remove_suffix(1);
    }
    return s;
}

bool startsWithNoCase(std::wstring_view text, std::wstring_view prefix) {
    if (text.size() < prefix.size()) return false;
    for (std::size_t i = 0; i < prefix.size(); ++i) {
        wchar_t a = text[i], b = prefix[i];
        if (a >= L'A' && a <= L'Z') a = static_cast<wchar_t>(a - L'A' + L'a');
        if (a != b) return false;
    }
    return true;
}

std::vector<std::wstring_view> splitCommas(std::wstring_view text) {
    std::vector<std::wstring_view> parts;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        if (i == text.size() || text[i] == L',') {
            parts.push_back(text.substr(start, i - start));
            start = i + 1;
        }
    }
    return parts;
}

}  // namespace

bool parseReal(std::wstring_view text, double& value) {
    text = trim(text);
    if (!text.empty() && text.front() == L'+') text.remove_prefix(1);
    if (text.empty() || text.size() > 64) return false;
    std::string narrow;
    for (wchar_t c : text) {
        // Letters other than an exponent would let "inf" and "nan" through.
        bool allowed = (c >= L'0' && c <= L'9') || c == L'.' || c == L'-' || c == L'+' ||
                       c == L'e' || c == L'E';
        if (!allowed) return false;
        narrow.push_back(static_cast<char>(c));
    }
    double parsed = 0;
    auto [end, ec] = std::from_chars(narrow.data(), narrow.data() + narrow.size(), parsed);
    if (ec != std::errc() || end != narrow.data() + narrow.size() || !std::isfinite(parsed)) {
        return false;
    }
    value = parsed;
    return true;
}

bool parseCoordinates(std::wstring_view text, std::array<double, 3>& point, int& count) {
    std::vector<std::wstring_view> parts = splitCommas(text);
    if (parts.size() < 2 || parts.size() > 3) return false;
    std::array<double, 3> p{};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (!parseReal(parts[i], p[i])) return false;
    }
    point = p;
    count = static_cast<int>(parts.size());
    return true;
}

Answer parseAnswer(std::wstring_view line) {
    std::wstring_view t = trim(line);
    if (t.empty()) return Answer::enter();
    if (startsWithNoCase(t, L"<esc>") && t.size() == 5) return Answer::cancel();
    if (t == L"^C" || t == L"^c") return Answer::cancel();
    if (startsWithNoCase(t, L"pick:")) {
        std::array<double, 3> p{};
        int count = 0;
        if (parseCoordinates(t.substr(5), p, count)) return Answer::pick(p[0], p[1], p[2]);
    } else if (startsWithNoCase(t, L"handles:")) {
        std::vector<std::wstring> handles;
        for (std::wstring_view h : splitCommas(t.substr(8))) {
            h = trim(h);
            if (!h.empty()) handles.emplace_back(h);
        }
        return Answer::select(std::move(handles));
    } else if (startsWithNoCase(t, L"handle:")) {
        return Answer::pickHandle(std::wstring(trim(t.substr(7))));
    }
    return Answer::typed(std::wstring(line));
}

ScriptedInput::ScriptedInput(std::initializer_list<std::wstring_view> lines) {
    for (std::wstring_view line : lines)
        push(line);
}

ScriptedInput& ScriptedInput::push(Answer answer) {
    queue_.push_back(std::move(answer));
    return *this;
}

Answer ScriptedInput::next(const InputRequest& request) {
    prompts_.push_back(request.prompt);
    if (queue_.empty()) return Answer::cancel();
    Answer answer = std::move(queue_.front());
    queue_.pop_front();
    return answer;
}

CommandLine::CommandLine() : input_(std::make_shared<ScriptedInput>()) {}

void CommandLine::print(std::wstring_view text) {
    if (text.empty()) return;
    std::lock_guard<std::mutex> lock(printing_);
    if (keepTranscript_) transcript_ += text;
    if (echoStream_ != nullptr) {
        *echoStream_ << text;
        echoStream_->flush();
    }
    if (echoCallback_) echoCallback_(text);
}

void CommandLine::setInput(std::shared_ptr<InputSource> input) {
    input_ = input ? std::move(input) : std::make_shared<ScriptedInput>();
}

Answer CommandLine::ask(InputRequest::Kind kind, std::wstring_view prompt) {
    print(prompt);
    // Hold the source for the call, so that a source replaced while answering lives on.
    std::shared_ptr<InputSource> source = input_;
    Answer answer = source->next(InputRequest{kind, std::wstring(prompt)});
    switch (answer.kind) {
        case Answer::Kind::Text:
            print(answer.text);
            break;
        case Answer::Kind::Cancel:
            print(L"*Cancel*");
            break;
        default:
            break;
    }
    return answer;
}

CommandLine& commandLine() {
    static CommandLine line;
    return line;
}

std::shared_ptr<ScriptedInput> useScriptedInput() {
    auto input = std::make_shared<ScriptedInput>();
    commandLine().setInput(input);
    return input;
}

}  // namespace db
