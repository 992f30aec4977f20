#pragma once

// Everything that lives: the Script, the pictures, the run, the settings, the logs. It is data;
// subsystems are modules of free functions on it. During a run the worker thread is its only
// writer, but for `keepRunning`.

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "engine/user_interface.h"
#include "imaging/image.h"
#include "platform/files.h"
#include "script/fields.h"
#include "script/script.h"
#include "settings/settings.h"

namespace lumo::engine {

inline constexpr int kMaxRunCommands = 2000;
inline constexpr int kSubroutineStackWords = 2400;

/// The Script in the window, and its file.
struct ScriptState {
    script::Script commands;
    int selected = 0;     // index in `commands`; editing.h keeps it inside
    script::Script undo;  // valid if undoValid
    bool undoValid = false;
    bool hasFile = false;
    bool modified = false;
    std::string path;                                 // of the file, if hasFile
    std::string caption = "Batch script: (unsaved)";  // as the logs name it
};

/// The working image and what writers and later commands are told of it.
struct WorkingImage {
    imaging::Image main;
    int imageBits = 24;       // 24, 8 or 1; the pixels stay 24-bit
    int imageBitsForced = 0;  // 1 when a command has reduced the picture
    bool grey = false;        // skips a second conversion to grey
};

/// The sample image and its copies.
struct SampleImages {
    imaging::Image left;  // as opened; never changed by a command
    std::string path;     // where it came from
    imaging::Image held;  // a copy made on demand
    std::string heldPath;
    imaging::Image blendSource;  // second image of "Blend images"
    std::string leftDepthLabel;
    std::string rightDepthLabel;
};

/// Pictures that the commands of a run lay over the working image, kept until it ends so that each
/// file is decoded once. Only io/second_picture.h touches it, in the thread that runs commands.
struct SecondPictures {
    struct Entry {
        std::string path;
        platform::FileVersion version;
        std::shared_ptr<const imaging::Image> picture;
    };
    std::vector<Entry> entries;  // the one used last stands last
};

/// Who works on what.
enum class RunMode : std::int8_t {
    Idle = -1,
    OneCommand = 1,     // one command on the sample
    WholeScript = 2,    // the Script on the sample, step by step
    BatchOnSample = 3,  // the batch machinery over the sample
    Batch = 4,          // over the input
};

/// One batch run, or none.
struct RunState {
    /// 0: stop before the next command. The one word that both threads write.
    std::atomic<int> keepRunning{1};
    std::atomic<bool> batchRunning{false};  // from the start of the worker to the end of the run
    bool inRun = false;                     // the run loop is dispatching
    RunMode mode = RunMode::Idle;
    bool onLeftImage = false;  // over the sample instead of the input; writes nothing
    // Unattended: begin by timer 2, end the program afterwards, ask nobody, and keep Error.log
    // whatever its setting. All four hold for one run.
    bool autoRun = false, autoExit = false, noPrompts = false, forceErrorLog = false;
    bool showEachImage = false;        // in the right frame
    settings::LogSettings logOptions;  // as they were at the start; they come back at the end

    script::Script list;  // the run list: the Script without comments, then its subroutines
    int startIdx = -1, endIdx = -1, runCount = 0;  // its markers and its length
    int startIdxBefore = -1, endIdxBefore = -1;    // before subroutines were loaded
    // The tables of branch_tables.h. `pc` is the command to be executed next, `prevPc` the one
    // entered last; a `pc` beyond the list ends the run with an error.
    std::vector<std::int32_t> nextPc = std::vector<std::int32_t>(kMaxRunCommands);
    std::vector<std::int32_t> branchPc = std::vector<std::int32_t>(kMaxRunCommands);
    std::vector<std::vector<std::int32_t>> loopsAround;  // each call, see branch_tables.h
    std::array<std::int32_t, kSubroutineStackWords> stack{-1};
    int stackIndex = 0;
    int pc = 0, prevPc = -1;

    std::vector<std::string> inputList;
    int imageIndex = -1;         // in the input list; -1 before its first file
    int imageCount = 0;          // files of the input list
    bool imageLoopOver = false;  // the input list is used up
    int firstScanCount = 0;      // "Total input images: "
    // Files of the input list, files written, errors, images taken up, warnings; zeroed when a run
    // is asked for, so that they can be read behind it.
    int statFiles = 0, statOutputs = 0, errorCount = 0, statInputs = 0, warningCount = 0;
    int failureReports = 0;  // calls of OnCommandFailure; counts for the exit status only
    int fatalCode = 0;       // of ReportFatal, 0 none
    bool refused = false;    // ended before its first image
    bool aborted = false;
    std::chrono::system_clock::time_point startTime;
    std::thread worker;  // of the run that lasts, or of the last one
};

/// Flags of a walk over the Script on the sample image.
struct TestWalk {
    int ifFlag = 1, doFlag = 1, exitFlag = 0;
    int subSkip = 0, subDepth = 0;
    std::string ifStack, elseStack;  // letters T and F, one for each open IF
    std::vector<int> subReturnList;  // newest last
    int testPc = 0;                  // the command in hand
    int next = 0;                    // the next one of the walk itself, outside of subroutines
    int loopReturn = 0, loopCount = 0, doReturn = 0;
    bool running = false;
};

/// The current input file, set by SplitInputPath.
struct InputFile {
    std::string path;       // as it stands in the list
    std::string folder;     // up to and including the last separator
    std::string title;      // name without extension
    std::string name;       // name with extension
    std::string extension;  // with the dot
    int type = 0;           // GetExtType of the extension
};

/// Lines of the logs while a run lasts.
struct RunLogs {
    std::vector<std::string> batch;
    std::vector<std::string> error;
    bool debugOn = false;  // Debug.log; off at each program start
    int executions = 0;    // commands on the current image, for Debug.log
};

using MarkerList = std::vector<std::pair<int, std::vector<std::uint8_t>>>;  // code, payload
using TextPairs = std::vector<std::pair<std::string, std::string>>;         // key, text

/// What was read from the current input file, and what goes into the next output.
struct MetadataStores {
    MarkerList jpgInput, jpgOutput;
    TextPairs pngInput, pngOutput;
    void Clear() { *this = {}; }
};

/// The generator that old Scripts rely on: fixed, so that a run repeats.
class Random {
  public:
    void Seed(std::uint32_t seed) { state_ = seed; }
    /// 0 to 32767.
    int Next() {
        state_ = state_ * 214013U + 2531011U;
        return static_cast<int>((state_ >> 16) & 0x7fffU);
    }

  private:
    std::uint32_t state_ = 2;
};

/// The main view: the one owner of all state.
struct CLumoscriptView {
    explicit CLumoscriptView(UserInterface& userInterface) : ui(userInterface) {}
    CLumoscriptView(const CLumoscriptView&) = delete;
    CLumoscriptView& operator=(const CLumoscriptView&) = delete;

    UserInterface& ui;
    settings::Settings settings;
    ScriptState script;
    WorkingImage working;
    SampleImages sample;
    SecondPictures secondPictures;
    RunState run;
    TestWalk test;
    std::array<std::int32_t, 10> counters{};  // A to J
    InputFile input;
    script::Fields inputSettings;  // fields of the current START command
    int openedImages = 0;          // AutoNumeric; goes on from run to run
    int incrementalCount = 0;      // goes on from run to run
    RunLogs logs;
    /// Of the sample between runs; a run has stores of its own, and the sample's wait meanwhile.
    MetadataStores metadata, waitingMetadata;
    Random random;
};

}  // namespace lumo::engine
