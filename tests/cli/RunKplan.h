#pragma once
// Runs the kplan program as a user does, capturing what it prints and its exit code.
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

struct Outcome {
    int exitCode = -1;
    std::string out, err;
};

// A folder of this test process for inputs and outputs.
inline std::string testFolder() {
    static const std::string made = [] {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "kplan-cli-XXXXXX").string();
        return std::string(::mkdtemp(pattern.data()) ? pattern : "");
    }();
    return made;
}

inline std::string slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

// A shell command line (quote paths with '), run with what it prints captured.
inline Outcome shell(const std::string& command) {
    std::string out = testFolder() + "/stdout", err = testFolder() + "/stderr";
    std::string line = "{ " + command + "; } >'" + out + "' 2>'" + err + "'";
    Outcome run;
    int status = std::system(line.c_str());
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.out = slurp(out);
    run.err = slurp(err);
    return run;
}

// args as a shell would take them (quote paths with ').
inline Outcome kplan(const std::string& args) {
    return shell(std::string("'") + KPLAN_EXE + "' " + args);
}
