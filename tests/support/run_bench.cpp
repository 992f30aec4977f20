#include "support/run_bench.h"

#include <cstdlib>
#include <filesystem>

#include "engine/dispatch.h"
#include "io/input.h"
#include "io/output.h"
#include "platform/files.h"

namespace lumo::test {

RunBench::RunBench() {
    for (const char* name : {"In", "Out", "Logs", "Temp"})
        std::filesystem::create_directory(folder / name);
    view.settings.installFolder = folder / "Install";
    view.settings.folders.logs = folder / "Logs";
    view.settings.folders.temp = folder / "Temp";
    view.run.mode = engine::RunMode::Batch;
    view.run.batchRunning = true;
    view.run.inRun = true;
    view.run.startTime = std::chrono::system_clock::now();
}

void RunBench::PutPicture(const std::string& path, imaging::Size size) {
    if (!platform::MakeFolders(std::filesystem::path(path).parent_path().native())) std::abort();
    if (io::WriteSampleImage(view, CoordinateImage(size).View(), path) == 0) std::abort();
}

void RunBench::TakeInput(const std::string& path, imaging::Size size) {
    view.run.inputList = {path};
    view.run.imageCount = view.run.statFiles = 1;
    view.run.imageIndex = 0;
    view.openedImages = 1;
    io::SplitInputPath(view, path);
    view.working.main = CoordinateImage(size);
}

engine::Outcome RunBench::Execute(const engine::Command& command, std::string_view params) {
    engine::RunState& run = view.run;
    run.list.Clear();
    run.list.Add(command.spec.name, params);
    run.runCount = 1;
    run.pc = 0;
    run.nextPc[0] = 1;
    return engine::ExecuteCommand(view, &command, command.spec.name, params);
}

std::string RunBench::LogFile(std::string_view name) const {
    return FileText(folder / "Logs/" + std::string(name));
}

}  // namespace lumo::test
