#include "engine/run_reports.h"

#include "io/run_logs.h"

namespace lumo::engine {

void ReportFault(CLumoscriptView& view, std::string_view line) {
    if (io::ErrorLogOn(view)) io::LogErrorLine(view, io::kNoNumber, line);
    if (view.run.noPrompts) view.ui.Notice(line);
}

void ReportRefusal(CLumoscriptView& view, std::string_view words, std::string_view unattended) {
    if (!view.run.noPrompts) {
        view.ui.ShowMessage(words);
        return;
    }
    io::LogFatalRefusal(view, unattended);
    view.ui.Notice(unattended);
}

void ReportCommandFailure(CLumoscriptView& view) {
    RunState& run = view.run;
    ++run.errorCount;
    const bool known = run.prevPc >= 0 && run.prevPc < run.list.Count();
    io::LogCommandFailure(view, known ? run.list.NameAt(run.prevPc) : std::string());
}

std::string FatalText(int code) {
    switch (code) {
        case 8010:
            return "Fatal error:8010 Unable to find ELSE_END location";
        case 8020:
            return "Fatal error:8020 Unable to find Subroutine_END location";
        case 8030:
            return "Fatal error:8030 Unable to find IF_END location";
        case 8040:
            return "Fatal error:8040 Unable to find Loop End location";
        case 8050:
            return "Fatal error:8050 Unable to find Loop Start location";
        case 8060:
            return "Fatal error:8060 Unable to find DO_END location";
        case 8070:
            return "Fatal error:8070 Unable to find DO_WHILE location";
        case 8080:
            return "Fatal error:8080 Subroutine stack overlow";
        default:
            break;
    }
    std::string text = "Fatal error: " + std::to_string(code);
    if (code > 8000) text += " Unknown cause";
    return text;
}

void ReportFatal(CLumoscriptView& view, int code) {
    view.run.fatalCode = code;
    if (code > 8000) ++view.run.errorCount;
    const std::string text = FatalText(code);
    io::LogLine(view, view.run.imageIndex + 1, text);
    if (view.run.noPrompts) view.ui.Notice(text);
}

}  // namespace lumo::engine
