#include "cli/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <optional>
#include <sstream>
#include <utility>

#include "cli/version.h"
#include "engine/command_reference.h"
#include "platform/paths.h"

namespace lumo::cli {
namespace {

/// "/r" and "-R" as "-r"; none for what is no switch.
std::optional<std::string> AsSwitch(const std::string& argument) {
    if (argument.size() != 2 || (argument[0] != '/' && argument[0] != '-')) return std::nullopt;
    const char letter = static_cast<char>(std::tolower(static_cast<unsigned char>(argument[1])));
    if (std::string_view("rxse").find(letter) == std::string_view::npos) return std::nullopt;
    return std::string{'-', letter};
}

/// Arguments told apart by their whole text. CLI11 sees the options alone: it would take "/r" for
/// a path, a path that begins with "/r" for a switch, and "-web.whs" for four of them.
struct Arguments {
    std::vector<std::string> options;
    std::vector<std::string> paths;
};

Arguments Sort(const std::vector<std::string>& arguments) {
    Arguments sorted;
    bool onlyPaths = false;  // behind "--"
    bool isValue = false;    // behind "--input"
    for (const std::string& argument : arguments) {
        if (std::exchange(isValue, false))
            sorted.options.push_back(argument);
        else if (onlyPaths)
            sorted.paths.push_back(argument);
        else if (argument == "--")
            onlyPaths = true;
        else if (auto letter = AsSwitch(argument))
            sorted.options.push_back(std::move(*letter));
        else if (argument.starts_with("--") || argument == "-h") {
            sorted.options.push_back(argument);
            isValue = argument == "--input";
        } else if (argument == "/?" || argument == "-?")
            sorted.options.emplace_back("--help");
        else
            sorted.paths.push_back(argument);
    }
    return sorted;
}

std::string Quoted(std::string_view argument) {
    return "\"" + platform::Printable(argument) + "\"";
}

const char* NameOf(Program program) {
    return program == Program::Batch ? "lumoscript-batch" : "lumoscript";
}

void RefuseUse(CommandLine& line, Program program, std::string_view words) {
    const std::string name = NameOf(program);
    line.stop = true;
    line.exitCode = 2;
    line.text = name + ": " + std::string(words) + " See " + name + " --help.\n";
}

std::string Footer(Program program) {
    const bool batch = program == Program::Batch;
    std::string text =
        "\nSCRIPT is a file, or the name of a Script in your Scripts folder or among the\n"
        "shipped ones; \".whs\" may be left out.";
    text += batch ? " The folder of pictures and that of the results\nstand in the Script; --input "
                    "states another folder of pictures.\n"
                  : "\nSwitches may be written /r or -r, in either case.\n";
    text +=
        "\nExit status of an unattended run:\n"
        "  0    all done\n"
        "  1    finished, but at least one image or command failed, or the input is missing\n"
        "  2    wrong use of the command line\n"
        "  3    the Script was refused before the first image\n"
        "  4    a fatal error of the run\n"
        "  130  ended by SIGINT (Ctrl+C); 143 by SIGTERM\n"
        "\nLogs:      Batch.log and Error.log in ~/Documents/Lumoscript/Logs\n"
        "Settings:  ~/.config/lumoscript/settings.toml\n"
        "\nExample:\n";
    text +=
        batch ? "  lumoscript-batch Thumbnails.whs\n" : "  lumoscript Thumbnails.whs /r /x /s /e\n";
    return text;
}

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
    app.footer(Footer(program));
    app.allow_extras();  // answered below, in our own words
    bool version = false, commands = false;
    std::string shownInHelpOnly;
    app.add_option("SCRIPT", shownInHelpOnly, "Script file (.whs)")->type_name("");
    // The batch program takes these three for granted.
    const char* shown = batch ? "" : "Options";
    app.add_flag("-r", line.autoRun, "run the Script at once")->group(shown);
    app.add_flag("-x", line.autoExit, "end when the run has ended (only with /r)")->group(shown);
    app.add_flag("-s", line.noPrompts, "ask nothing: questions become lines in the logs")
        ->group(shown);
    app.add_flag("-e", line.forceErrorLog, "keep Error.log whatever the settings say");
    app.add_option("--input", line.inputPath,
                   "folder of pictures or Image list (.lst) in place of the Script's")
        ->type_name("PATH");
    app.add_flag("--debug-log", line.debugLog, "keep Debug.log: the commands of the image in hand");
    app.add_flag("--quiet", line.quiet, "no summary and no progress");
    app.add_flag("--commands", commands, "list all commands with their parameters and end");
    app.add_flag("--version", version, "show the version and end");

    Arguments sorted = Sort(arguments);
    std::ranges::reverse(sorted.options);  // CLI11 takes arguments from the back
    try {
        app.parse(sorted.options);
    } catch (const CLI::ParseError& error) {
        std::ostringstream out, err;
        if (app.exit(error, out, err) != 0) {
            RefuseUse(line, program, std::string(error.what()) + ".");
        } else {
            line.stop = true;
            line.text = out.str();
        }
        return line;
    }
    if (const std::vector<std::string> unknown = app.remaining(); !unknown.empty()) {
        RefuseUse(line, program, Quoted(unknown.front()) + " is no option.");
        return line;
    }
    if (version || commands) {
        line.stop = true;
        line.text = version ? VersionText(program) : engine::CommandReference();
        return line;
    }
    if (batch) line.autoRun = line.autoExit = line.noPrompts = true;
    if (!line.autoRun) line.autoExit = false;
    if (!sorted.paths.empty()) line.scriptPath = sorted.paths.front();
    if (sorted.paths.size() > 1)
        RefuseUse(line, program,
                  "one Script at a time, not " + Quoted(sorted.paths[0]) + " and " +
                      Quoted(sorted.paths[1]) + ". Each switch stands alone.");
    else if (line.Unattended() && line.scriptPath.empty())
        RefuseUse(line, program, "which Script is to run?");
    else if (!line.Unattended() && !line.inputPath.empty())
        RefuseUse(line, program, "--input is for runs with /r /x /s.");
    return line;
}

}  // namespace lumo::cli
