#include "script/script_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "script/names.h"
#include "script/templates.h"
#include "support/temp_folder.h"

namespace lumo::script {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ScriptFile : public testing::Test {
  protected:
    std::string PathOf(std::string_view name) const { return folder_ / name; }

    std::string Put(std::string_view name, std::string_view bytes) const {
        test::PutFile(PathOf(name), bytes);
        return PathOf(name);
    }

    MessageSink Sink() {
        return [this](std::string_view message) { messages.emplace_back(message); };
    }

    std::vector<std::string> messages;
    Script script;

  private:
    test::TempFolder folder_;
};

TEST_F(ScriptFile, IsSavedAndLoaded) {
    const Script original = NewScript("32,a,", "11,\"b\nc\",");
    const std::string path = PathOf("a.whs");
    ASSERT_TRUE(SaveScriptChecked(original, path, FileKind::Script));
    EXPECT_EQ(test::FileText(path), SerializeScript(original, FileKind::Script));
    EXPECT_TRUE(LoadScript(path, script, Sink()));
    EXPECT_EQ(script, original);
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(ScriptFile, IsSavedAsASubroutineWithoutTheMarkers) {
    const std::string path = PathOf("a.sbr");
    EXPECT_TRUE(SaveScript(NewScript("32,a,", "11,b,"), path, FileKindOf(path)));
    EXPECT_TRUE(LoadScript(path, script, Sink()));
    EXPECT_THAT(script.names, ElementsAre(names::kOutputSetup));
}

TEST_F(ScriptFile, SaysTheTruthWhereSavingIsNotPossible) {
    const std::string path = PathOf("missing/a.whs");
    EXPECT_FALSE(SaveScriptChecked(NewSubroutine(), path, FileKind::Script));
    EXPECT_TRUE(SaveScript(NewSubroutine(), path, FileKind::Script));
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(ScriptFile, SavingReplacesTheWholeFile) {
    const std::string path = Put("a.whs", std::string(100000, 'x'));
    ASSERT_TRUE(SaveScriptChecked(NewSubroutine(), path, FileKind::Script));
    EXPECT_EQ(test::FileText(path), SerializeScript(NewSubroutine(), FileKind::Script));
}

TEST_F(ScriptFile, OfASubroutineIsKnownByItsExtension) {
    EXPECT_EQ(FileKindOf("/a/b.sbr"), FileKind::Subroutine);
    EXPECT_EQ(FileKindOf("b.SBR"), FileKind::Subroutine);
    EXPECT_EQ(FileKindOf("b.sBr"), FileKind::Subroutine);
    for (const char* path : {"b.whs", "b", "", "sbr", "b.sbr.whs", "b.sbr ", "bsbr"})
        EXPECT_EQ(FileKindOf(path), FileKind::Script) << path;
}

TEST_F(ScriptFile, OfAnotherKindIsToldInItsWords) {
    script.Add("Crop", "c");
    const auto status = LoadScript(Put("a.whs", "something else"), script, Sink());
    EXPECT_FALSE(status);
    EXPECT_THAT(messages, ElementsAre("Not a valid script or subroutine file!"));
    EXPECT_THAT(status.Message(), HasSubstr("a.whs"));
    EXPECT_EQ(script.Count(), 0);
}

TEST_F(ScriptFile, OfEightBytesIsRefusedWithoutAMessage) {
    EXPECT_FALSE(LoadScript(Put("a.whs", "BEGIN\r\nX"), script, Sink()));
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(ScriptFile, ThatIsNotThereIsRefusedWithoutAMessage) {
    script.Add("Crop", "c");
    EXPECT_FALSE(LoadScript(PathOf("a.whs"), script, Sink()));
    EXPECT_FALSE(LoadScript(PathOf(""), script, Sink()));  // a folder
    EXPECT_THAT(messages, IsEmpty());
    EXPECT_EQ(script.Count(), 0);
}

TEST_F(ScriptFile, WithoutAnEndLeavesWhatWasRead) {
    const auto status = LoadScript(Put("a.whs", "BEGIN\r\nCrop\r\nc\r\n"), script, Sink());
    EXPECT_FALSE(status);
    EXPECT_THAT(status.Message(), HasSubstr("END"));
    EXPECT_THAT(script.names, ElementsAre("Crop"));
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(ScriptFile, FarTooLargeIsRefusedBeforeItFillsTheMemory) {
    const std::string path = Put("a.whs", "BEGIN\r\n");
    fs::resize_file(path, std::uintmax_t{1} << 30);
    EXPECT_FALSE(LoadScript(path, script, Sink()));
    EXPECT_FALSE(LoadSubroutineForEdit(path, script, "32,", Sink()));
    EXPECT_FALSE(AppendSubroutine(path, script, Sink()));
}

TEST_F(ScriptFile, NeedsNobodyToListen) {
    const std::string path = Put("a.whs", "something else");
    EXPECT_FALSE(LoadScript(path, script, {}));
    EXPECT_FALSE(AppendSubroutine(path, script, {}));
}

TEST_F(ScriptFile, OfASubroutineIsEditedWithoutMarkers) {
    const std::string path = Put("a.sbr", "SUBRT\r\nExit\r\n0\r\nEND\r\n");
    EXPECT_TRUE(LoadSubroutineForEdit(path, script, "32,", Sink()));
    EXPECT_THAT(script.names, ElementsAre("Exit (get next image)"));
}

TEST_F(ScriptFile, OfASubroutineThatCannotBeOpenedLeavesTheMarkersAlone) {
    script.Add("Crop", "c");
    EXPECT_FALSE(LoadSubroutineForEdit(PathOf("a.sbr"), script, "32,", Sink()));
    EXPECT_THAT(script.names, ElementsAre(names::kStartImageLoop, names::kEndImageLoop));
    EXPECT_THAT(script.params, ElementsAre("32,", "0"));
}

TEST_F(ScriptFile, OfASubroutineThatCannotBeReadGetsNoMarkers) {
    EXPECT_FALSE(LoadSubroutineForEdit(Put("a.sbr", "something else"), script, "32,", Sink()));
    EXPECT_EQ(script.Count(), 0);
    EXPECT_THAT(messages, ElementsAre("Not a valid script or subroutine file!"));
}

TEST_F(ScriptFile, OfASubroutineIsAppendedUnderItsTitle) {
    const std::string path = Put("my stamp.v2.sbr", "SUBRT\r\nBlur\r\n1,25,\r\nEND\r\n");
    EXPECT_TRUE(AppendSubroutine(path, script, Sink()));
    EXPECT_THAT(script.names, ElementsAre("SUBROUTINE_START", "Blur", "SUBROUTINE_END"));
    EXPECT_THAT(script.params, ElementsAre("1,\"my stamp.v2\",", "1,25,", "0"));
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(ScriptFile, OfAnotherKindIsNoSubroutine) {
    EXPECT_FALSE(AppendSubroutine(Put("a.sbr", "something else"), script, Sink()));
    EXPECT_THAT(messages, ElementsAre("Not a valid subroutine file!"));
    EXPECT_FALSE(AppendSubroutine(PathOf("missing.sbr"), script, Sink()));
    EXPECT_EQ(messages.size(), 1u);
    EXPECT_EQ(script.Count(), 0);
}

TEST_F(ScriptFile, TakesAnyName) {
    const std::string path = PathOf("-\n\"$(date)\"\xff%s.whs");
    ASSERT_TRUE(SaveScriptChecked(NewSubroutine(), path, FileKind::Script));
    EXPECT_TRUE(LoadScript(path, script, Sink()));
    EXPECT_EQ(script, NewSubroutine());
    Put("\n.whs", "something else");
    const auto status = LoadScript(PathOf("\n.whs"), script, Sink());
    EXPECT_EQ(status.Message().find('\n'), std::string::npos);
}

}  // namespace
}  // namespace lumo::script
