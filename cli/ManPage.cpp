#include "cli/ManPage.h"

#include <cstdio>
#include <sstream>
#include <vector>

#include "cli/Commands.h"
#include "cli/OptionValues.h"

namespace kplan::cli {

namespace {

// Text as roff prints it: backslashes and minus signs escaped, characters beyond ASCII
// named by their code point, and a line never starting with a control character.
std::string roff(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size();) {
        auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x80) {
            if (byte == '\\') {
                out += "\\e";
            } else if (byte == '-') {
                out += "\\-";
            } else if ((byte == '.' || byte == '\'') && (out.empty() || out.back() == '\n')) {
                out += "\\&";
                out += static_cast<char>(byte);
            } else {
                out += static_cast<char>(byte);
            }
            ++i;
            continue;
        }
        // UTF-8: the lead byte says how many continuation bytes follow.
        int more = byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : 1;
        unsigned long code = byte & (0x3F >> more);
        for (int k = 1; k <= more && i + k < text.size(); ++k)
            code = (code << 6) | (static_cast<unsigned char>(text[i + k]) & 0x3F);
        char name[16];
        std::snprintf(name, sizeof name, "\\[u%04lX]", code);
        out += name;
        i += static_cast<std::size_t>(more) + 1;
    }
    return out;
}

// Text whose paragraphs are apart by an empty line, as the help prints it.
std::string paragraphs(const std::string& text) {
    std::string out = roff(text);
    for (std::size_t blank; (blank = out.find("\n\n")) != std::string::npos;)
        out.replace(blank, 2, "\n.PP\n");
    return out;
}

std::string bold(const std::string& text) {
    return "\\fB" + roff(text) + "\\fR";
}

std::string italic(const std::string& text) {
    return "\\fI" + roff(text) + "\\fR";
}

// "kplan: planning data in CAD drawings" names the program before what it does.
std::string purpose(const CLI::App& app) {
    std::string text = app.get_description();
    std::string prefix = app.get_name() + ": ";
    return text.compare(0, prefix.size(), prefix) == 0 ? text.substr(prefix.size()) : text;
}

// The value an option takes as the help prints it: its choices in braces, else its type
// name ("FILE", "INT"), with what a check of it says ("INT in [0 - 6]").
std::string valueOf(const CLI::Option& option) {
    if (valueKindOf(option) == ValueKind::None) return "";
    std::string value;
    std::vector<std::string> choices = choicesOf(option);
    if (!choices.empty()) {
        for (const std::string& choice : choices)
            value += (value.empty() ? "" : ",") + bold(choice);
        value = "{" + value + "}";
    } else {
        std::string type = option.get_type_name();
        std::size_t colon = type.find(':');
        value = italic(type.substr(0, colon));
        if (colon != std::string::npos) value += " (" + roff(type.substr(colon + 1)) + ")";
    }
    if (option.get_items_expected_max() > 1) value += " ...";
    return value;
}

std::string namesOf(const CLI::Option& option) {
    std::string names;
    for (const std::string& s : option.get_snames())
        names += (names.empty() ? "" : ", ") + bold("-" + s);
    for (const std::string& l : option.get_lnames())
        names += (names.empty() ? "" : ", ") + bold("--" + l);
    return names;
}

void item(std::ostream& out, const std::string& head, const CLI::Option& option) {
    out << ".TP\n" << head << "\n" << roff(option.get_description());
    if (!option.get_default_str().empty())
        out << " (default: " << roff(option.get_default_str()) << ")";
    out << "\n";
}

void namedOption(std::ostream& out, const CLI::Option& option) {
    std::string value = valueOf(option);
    std::string head = namesOf(option) + (value.empty() ? "" : " " + value);
    if (option.get_required()) head += " (required)";
    item(out, head, option);
}

// "kplan import [OPTIONS] LAYER --into DXF -o DXF": the positionals and the options that
// must be given.
std::string usage(const CLI::App& parent, const CLI::App& command) {
    std::string line =
        bold(parent.get_name()) + " [" + italic("OPTIONS") + "] " + bold(command.get_name());
    for (const CLI::Option* option : positionals(command)) {
        std::string name = italic(option->get_name(true));
        if (option->get_items_expected_max() > 1) name += "...";
        line += " " + (option->get_required() ? name : "[" + name + "]");
    }
    for (const CLI::Option* option : namedOptions(command)) {
        if (!option->get_required() || option->get_positional()) continue;
        std::string name = option->get_snames().empty() ? "--" + option->get_lnames().front()
                                                        : "-" + option->get_snames().front();
        line += " " + bold(name) + " " + valueOf(*option);
    }
    return line;
}

// What a command's help says after its options beyond the program's own footer, which
// every command repeats.
std::string ownFooter(const CLI::App& app, const CLI::App& command) {
    std::string footer = command.get_footer(), common = app.get_footer();
    if (footer.size() >= common.size() &&
        footer.compare(footer.size() - common.size(), common.size(), common) == 0)
        footer.erase(footer.size() - common.size());
    while (!footer.empty() && (footer.back() == '\n' || footer.back() == ' '))
        footer.pop_back();
    return footer;
}

bool isHelp(const CLI::App& app, const CLI::Option& option) {
    return &option == app.get_help_ptr();
}

struct EnvironmentVariable {
    const char* name;
    const char* meaning;
};

// Every variable the program reads.
const EnvironmentVariable kEnvironment[] = {
    {"KPLAN_DATA",
     "The standards directory, over the one installed with the program (see FILES); --data "
     "overrides it. Hatch patterns are then read from the folder patterns beside it, when "
     "there is one."},
    {"KPLAN_STANDARD",
     "The standard, a folder of the standards directory (default: 通用国标); --standard "
     "overrides it."},
    {"KPLAN_CLASS_TABLE",
     "The land-use class table of the standard (default: 2011国标城乡用地类别.txt); --table "
     "(render: --class-table) overrides it."},
    {"KPLAN_PATTERNS",
     "The folder of the hatch pattern files kplan.pat (imperial) and kplaniso.pat (metric), "
     "unless --data names a standards directory with a patterns folder beside it."},
    {"KPLAN_DBG_FILE",
     "The file the debugging output of the library is appended to, only when that file "
     "exists (default: /tmp/dbg.txt)."},
    {"TERM", "dumb (or empty) draws no progress bar, as --no-progress."},
    {"COLUMNS", "The width of the progress bar's line when the terminal does not tell it."},
};

}  // namespace

std::string manPage(const CLI::App& app, const std::string& version) {
    std::ostringstream out;
    const std::string name = app.get_name();
    std::string upper = name;
    for (char& c : upper)
        c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    out << ".TH " << upper << " 1 \"\" \"" << roff(name + " " + version) << "\" \"User Commands\"\n"
        << ".ad l\n.nh\n";  // ragged right, no words broken: option names stay whole

    out << ".SH NAME\n" << roff(name) << " \\- " << roff(purpose(app)) << "\n";

    out << ".SH SYNOPSIS\n";
    for (const CLI::App* command : app.get_subcommands({}))
        out << usage(app, *command) << "\n.br\n";

    out << ".SH DESCRIPTION\n"
        << roff(name +
                " works on the planning data inside CAD drawings (DXF): land parcels "
                "as closed curves with their records, hatches, planning units, blocks, "
                "red lines and the land-use class tables of a standard.")
        << "\n.PP\n"
        << roff("Each command is described below with its options; " + name + " help COMMAND, or " +
                name +
                " COMMAND --help, prints them too. The options of the program may stand "
                "before or after the command.")
        << "\n";

    out << ".SH OPTIONS\n";
    for (const CLI::Option* option : namedOptions(app))
        namedOption(out, *option);

    out << ".SH COMMANDS\n";
    for (const CLI::App* command : app.get_subcommands({})) {
        out << ".SS " << roff(command->get_name()) << "\n"
            << usage(app, *command) << "\n.PP\n"
            << roff(command->get_description()) << "\n";
        if (std::string footer = ownFooter(app, *command); !footer.empty())
            out << ".PP\n" << paragraphs(footer) << "\n";
        for (const CLI::Option* option : positionals(*command)) {
            std::string head = italic(option->get_name(true));
            if (option->get_items_expected_max() > 1) head += " ...";
            item(out, head, *option);
        }
        for (const CLI::Option* option : namedOptions(*command))
            if (!isHelp(*command, *option)) namedOption(out, *option);
    }

    out << ".SH \"EXIT STATUS\"\n";
    for (const ExitCodeMeaning& exit : kExitCodes)
        out << ".TP\n.B " << exit.code << "\n" << roff(exit.meaning) << "\n";
    out << ".PP\n"
        << roff("Every error is one line on stderr that starts with \"" + name +
                ":\", and nothing on disk is changed.")
        << "\n";

    out << ".SH ENVIRONMENT\n";
    for (const EnvironmentVariable& variable : kEnvironment)
        out << ".TP\n.B " << roff(variable.name) << "\n" << roff(variable.meaning) << "\n";

    out << ".SH FILES\n"
        << ".TP\n"
        << italic("PREFIX") << roff("/share/kplan/standards") << "\n"
        << roff(
               "The standards directory installed with the program, PREFIX being the folder "
               "above the bin folder the program is in (/usr for the Debian package): a "
               "folder per standard, 通用国标 the default.")
        << "\n.TP\n"
        << italic("PREFIX") << roff("/share/kplan/patterns") << "\n"
        << roff("The hatch pattern files kplan.pat and kplaniso.pat.") << "\n"
        << ".TP\n"
        << italic("PREFIX") << roff("/share/kplan/samples/sample-plan.dxf") << "\n"
        << roff("The sample plan that stats and list read when no drawing is given.") << "\n";
    return out.str();
}

}  // namespace kplan::cli
