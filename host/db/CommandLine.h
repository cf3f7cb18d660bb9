#pragma once
// The command line of the portable host: where prompts and messages go (a transcript that
// tests read, optionally echoed to a stream or a callback for the command-line program)
// and where the user's answers come from (an input source: a scripted queue in tests, the
// terminal in the program).
#include <array>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace db {

// One answer of the user.
struct Answer {
    enum class Kind {
        Text,        // typed text: a keyword, a number, "x,y[,z]", a string
        PickPoint,   // a pick with the mouse at a point of the drawing
        PickHandle,  // a pick of one object, named by its handle
        Handles,     // a whole selection of objects, named by their handles
        Enter,       // an empty answer
        Cancel,      // Esc
    };
    Kind kind = Kind::Cancel;
    std::wstring text;
    std::array<double, 3> point{};      // PickPoint
    std::vector<std::wstring> handles;  // PickHandle (one) and Handles

    static Answer typed(std::wstring text) { return {Kind::Text, std::move(text), {}, {}}; }
    static Answer pick(double x, double y, double z = 0) {
        return {Kind::PickPoint, {}, {x, y, z}, {}};
    }
    static Answer pickHandle(std::wstring handle) {
        return {Kind::PickHandle, {}, {}, {std::move(handle)}};
    }
    static Answer select(std::vector<std::wstring> handles) {
        return {Kind::Handles, {}, {}, std::move(handles)};
    }
    static Answer enter() { return {Kind::Enter, {}, {}, {}}; }
    static Answer cancel() { return {Kind::Cancel, {}, {}, {}}; }
};

// Reads one answer as a script or the terminal writes it:
//   ""                      Enter
//   "<esc>" or "^C"         Esc (either case)
//   "pick:x,y[,z]"          a pick at a point
//   "handle:2A"             a pick of the object with handle 2A
//   "handles:2A,2B,..."     a selection of those objects
//   anything else           typed text
// A "pick:" whose coordinates are not numbers is typed text.
Answer parseAnswer(std::wstring_view line);

// A decimal number ("12.5", "-3", "1e3", "+.5"), blanks around it allowed; nothing else.
bool parseReal(std::wstring_view text, double& value);
// "x,y" or "x,y,z" of such numbers; count is 2 or 3. A missing z is 0.
bool parseCoordinates(std::wstring_view text, std::array<double, 3>& point, int& count);

// What the host is asking for, so that a source can tell a pick from typed text.
struct InputRequest {
    enum class Kind { Keyword, Real, Integer, Distance, Point, String, Entity, Selection };
    Kind kind = Kind::String;
    std::wstring prompt;
};

class InputSource {
  public:
    virtual ~InputSource() = default;
    // The answer to a prompt that has just been shown. A source with nothing more to
    // give answers Cancel, never waits forever.
    virtual Answer next(const InputRequest& request) = 0;
};

// Answers from a queue; when the queue runs dry every answer is Cancel.
class ScriptedInput : public InputSource {
  public:
    ScriptedInput() = default;
    // Each line as parseAnswer reads it.
    explicit ScriptedInput(std::initializer_list<std::wstring_view> lines);

    ScriptedInput& push(Answer answer);
    ScriptedInput& push(std::wstring_view line) { return push(parseAnswer(line)); }
    ScriptedInput& type(std::wstring text) { return push(Answer::typed(std::move(text))); }
    ScriptedInput& pick(double x, double y, double z = 0) { return push(Answer::pick(x, y, z)); }
    ScriptedInput& pickHandle(std::wstring handle) {
        return push(Answer::pickHandle(std::move(handle)));
    }
    ScriptedInput& select(std::vector<std::wstring> handles) {
        return push(Answer::select(std::move(handles)));
    }
    ScriptedInput& enter() { return push(Answer::enter()); }
    ScriptedInput& cancel() { return push(Answer::cancel()); }

    Answer next(const InputRequest& request) override;
    std::size_t pending() const { return queue_.size(); }
    void clear() { queue_.clear(); }
    // The prompts answered so far (a dry queue's Cancel included).
    const std::vector<std::wstring>& prompts() const { return prompts_; }

  private:
    std::deque<Answer> queue_;
    std::vector<std::wstring> prompts_;
};

class CommandLine {
  public:
    CommandLine();

    // Everything shown on the command line: prompts, messages, and the answers typed.
    const std::wstring& transcript() const { return transcript_; }
    // Clears the commands run as well.
    void clearTranscript() {
        transcript_.clear();
        commands_.clear();
    }
    // The commands acedCommand ran, one line each with their answers as given, an empty
    // answer as "" and a selection set as <N selected>: draworder <2 selected> "" B "".
    const std::vector<std::wstring>& commands() const { return commands_; }
    void noteCommand(std::wstring line) { commands_.push_back(std::move(line)); }
    // A program that shows nothing of the command line keeps no transcript either: a long
    // statistic may say the same thing for every parcel.
    void keepTranscript(bool keep) { keepTranscript_ = keep; }
    // Appends to the transcript and hands the text to the echo stream and callback. Threads
    // measuring drawings at once may print together: one message goes whole at a time.
    void print(std::wstring_view text);

    // Echo targets; null / empty to stop echoing.
    void setEchoStream(std::wostream* stream) { echoStream_ = stream; }
    void setEchoCallback(std::function<void(std::wstring_view)> callback) {
        echoCallback_ = std::move(callback);
    }

    // The source of answers; null restores an empty scripted queue.
    void setInput(std::shared_ptr<InputSource> input);
    InputSource& input() const { return *input_; }

    // Shows the prompt and returns the answer. Typed text is echoed after the prompt as
    // the host's command history shows it; Esc shows "*Cancel*".
    Answer ask(InputRequest::Kind kind, std::wstring_view prompt);

  private:
    std::mutex printing_;
    std::wstring transcript_;
    std::vector<std::wstring> commands_;
    bool keepTranscript_ = true;
    std::wostream* echoStream_ = nullptr;
    std::function<void(std::wstring_view)> echoCallback_;
    std::shared_ptr<InputSource> input_;
};

// The one command line of the process.
CommandLine& commandLine();

// Installs a fresh scripted queue as the process's input and returns it.
std::shared_ptr<ScriptedInput> useScriptedInput();

}  // namespace db
