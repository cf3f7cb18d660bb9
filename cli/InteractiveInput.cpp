#include "cli/InteractiveInput.h"

#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "host/db/Console.h"
#include "host/db/TextCodec.h"

namespace kplan::cli {

namespace {

bool isPick(db::InputRequest::Kind kind) {
    return kind == db::InputRequest::Kind::Entity || kind == db::InputRequest::Kind::Selection;
}

}  // namespace

db::Answer LineInput::next(const db::InputRequest& request) {
    std::string line;
    if (!std::getline(in_, line)) return db::Answer::cancel();
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.find('\x1b') != std::string::npos) return db::Answer::cancel();
    std::wstring text = db::utf8ToWide(line);
    if (isPick(request.kind)) {
        std::array<double, 3> point{};
        int count = 0;
        if (db::parseCoordinates(text, point, count))
            return db::Answer::pick(point[0], point[1], point[2]);
        if (!text.empty() && text[0] == L'#') {
            std::vector<std::wstring> handles;
            std::wistringstream words(text);
            std::wstring word;
            while (words >> word)
                handles.push_back(word[0] == L'#' ? word.substr(1) : word);
            if (request.kind == db::InputRequest::Kind::Entity && handles.size() == 1)
                return db::Answer::pickHandle(handles[0]);
            return db::Answer::select(handles);
        }
    }
    db::Answer answer = db::parseAnswer(text);
    if (answer.kind == db::Answer::Kind::Text) typed_ = answer.text;
    return answer;
}

InteractiveSession::InteractiveSession() {
    auto input = std::make_shared<LineInput>(std::cin);
    db::commandLine().setInput(input);
    bool terminal = db::isTerminal(stdin);
    db::commandLine().setEchoCallback([input, terminal](std::wstring_view text) {
        std::wstring typed = input->takeTyped();
        if (terminal && !typed.empty() && text == typed) return;
        std::cerr << db::wideToUtf8(text) << std::flush;
    });
}

InteractiveSession::~InteractiveSession() {
    db::commandLine().setEchoCallback(nullptr);
    db::commandLine().setInput(nullptr);
}

}  // namespace kplan::cli
