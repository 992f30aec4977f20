#include "cli/command_line.h"

#include <CLI/CLI.hpp>
#include <cctype>
#include <sstream>

#include "cli/version.h"

namespace lumo::cli {
namespace {

/// "/r" and "-R" as "-r"; everything else unchanged. CLI11 takes "/r" for a path, and a path that
/// begins with "/r" for a switch, unless whole arguments are told apart before it sees them.
std::string NormaliseSwitch(const std::string& argument) {
    if (argument.size() != 2 || (argument[0] != '/' && argument[0] != '-')) return argument;
    const char letter = static_cast<char>(std::tolower(static_cast<unsigned char>(argument[1])));
    if (letter != 'r' && letter != 'x' && letter != 's' && letter != 'e') return argument;
    return std::string{'-', letter};
}

const char* NameOf(Program program) {
    return program == Program::Batch ? "lumoscript-batch" : "lumoscript";
}

constexpr const char* kFooter =
    "\nSwitches may be written /r or -r, in either case.\n\n"
    "Exit status of an unattended run:\n"
    "  0    all done\n"
    "  1    finished, but at least one image or command failed\n"
    "  2    wrong use of the command line\n"
    "  3    the Script was refused before the first image\n"
    "  4    a fatal error of the run\n"
    "  130  ended by SIGINT (Ctrl+C); 143 by SIGTERM\n\n"
    "Example:\n"
    "  lumoscript Thumbnails.whs /r /x /s /e\n";

}  // namespace

std::string VersionText(Program program) {
    return std::string(NameOf(program)) + " " LUMO_VERSION "\n";
}

CommandLine ParseCommandLine(const std::vector<std::string>& arguments, Program program) {
    CommandLine line;
    const bool batch = program == Program::Batch;
    CLI::App app(batch
                     ? "Runs a Script of image commands unattended over its folder of pictures."
                     : "Builds, tries and runs Scripts of image commands over folders of pictures.",
                 NameOf(program));
    app.footer(kFooter);
    bool version = false;
    app.add_option("SCRIPT", line.scriptPath, "Script file (.whs)");
    app.add_flag("-r", line.autoRun, "run the Script at once");
    app.add_flag("-x", line.autoExit, "end when the run has ended (only with /r)");
    app.add_flag("-s", line.noPrompts, "ask nothing: questions become lines in the logs");
    app.add_flag("-e", line.forceErrorLog, "keep Error.log whatever the settings say");
    app.add_flag("--debug-log", line.debugLog, "keep Debug.log: the commands of the image in hand");
    app.add_flag("--quiet", line.quiet, "no summary and no progress");
    app.add_flag("--version", version, "show the version and end");

    // CLI11 takes arguments from the back.
    std::vector<std::string> reversed;
    for (auto it = arguments.rbegin(); it != arguments.rend(); ++it)
        reversed.push_back(NormaliseSwitch(*it));
    try {
        app.parse(reversed);
    } catch (const CLI::ParseError& error) {
        std::ostringstream out, err;
        line.stop = true;
        line.exitCode = app.exit(error, out, err) == 0 ? 0 : 2;
        line.text = out.str() + err.str();
        return line;
    }
    if (version) {
        line.stop = true;
        line.text = VersionText(program);
        return line;
    }
    if (batch) {
        line.autoRun = line.autoExit = line.noPrompts = true;
        if (line.scriptPath.empty()) {
            line.stop = true;
            line.exitCode = 2;
            line.text = "lumoscript-batch: which Script? See lumoscript-batch --help.\n";
        }
    }
    if (!line.autoRun) line.autoExit = false;
    if (line.Unattended() && line.scriptPath.empty() && !line.stop) {
        line.stop = true;
        line.exitCode = 2;
        line.text = "lumoscript: which Script is to run? See lumoscript --help.\n";
    }
    return line;
}

}  // namespace lumo::cli
