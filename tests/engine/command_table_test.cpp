// What the rows of the table say of the opening that each command gets.

#include "engine/command_table.h"

#include <gmock/gmock.h>

#include <set>
#include <string_view>

#include "script/names.h"

namespace lumo::engine {
namespace {

namespace names = script::names;
using Names = std::set<std::string_view>;

/// Block commands and comments; they decide for themselves.
const Names kOwnFlow{names::kDoWhile,
                     names::kDoEnd,
                     names::kElseStart,
                     names::kElseEnd,
                     names::kExit,
                     names::kIfCondition,
                     names::kIfFirstFile,
                     names::kIfLastFile,
                     names::kIfEnd,
                     names::kLoopStart,
                     names::kLoopEnd,
                     names::kScriptInfo,
                     names::kStartImageLoop,
                     names::kSubroutineExecute,
                     names::kSubroutineStart,
                     names::kSubroutineEnd};
const Names kNeedNoImage{names::kInputFixedImage, names::kBatchLogComments, names::kCounter,
                         names::kDeleteInputFile, names::kNewCanvas,        names::kInputTemporary,
                         names::kReloadImageFile};
const Names kSkippedInARunToo{names::kFlipHorizontal, names::kGrid};
/// They look for the skip test, and for the image, in an order of their own.
const Names kFileCommands{names::kOutputSetup, names::kCopyMove, names::kJpgFileHeader,
                          names::kWriterPreferences};

TEST(CommandTable, EveryCommandIsOpenedAsItsKindIs) {
    for (const CommandRow& row : CommandTable()) {
        if (row.command == nullptr) continue;
        const Opening& opening = row.command->opening;
        EXPECT_EQ(opening.ownFlow, kOwnFlow.contains(row.name)) << row.name;
        EXPECT_EQ(opening.skipInRun, kSkippedInARunToo.contains(row.name)) << row.name;
        if (opening.ownFlow) continue;
        EXPECT_EQ(opening.skipInTest,
                  row.name == names::kCopyMove || !kFileCommands.contains(row.name))
            << row.name;
        if (kFileCommands.contains(row.name)) continue;
        EXPECT_EQ(opening.needsImage, !kNeedNoImage.contains(row.name)) << row.name;
    }
}

TEST(CommandTable, OnlyTheMarkersHaveNothingToRun) {
    for (const CommandRow& row : CommandTable()) {
        if (row.command == nullptr) continue;
        EXPECT_EQ(row.command->run == nullptr, row.name == names::kStartImageLoop) << row.name;
    }
}

}  // namespace
}  // namespace lumo::engine
