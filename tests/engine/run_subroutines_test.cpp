// Runs of Scripts that call subroutines.

#include <gmock/gmock.h>

#include <filesystem>

#include "run_fixture.h"

namespace lumo::engine {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

class SubroutineRun : public RunFixture {};

std::string SubroutineFile(std::string_view commands) {
    return "SUBRT\r\n" + std::string(commands) + "END\r\n";
}

TEST_F(SubroutineRun, SubroutinesAreLoadedFromTheThreeFoldersInOrder) {
    AddPicture("1.png");
    const std::string write = "Output setup\r\n11,0,\"" + (folder / "out") + "\",0,png,0,3,,";
    test::PutFile(folder / "subroutines/S.sbr", SubroutineFile(write + "one,0,0,1,\r\n"));
    test::PutFile(folder / "scripts/S.sbr", SubroutineFile(write + "two,0,0,1,\r\n"));
    test::PutFile(folder / "scripts/T.sbr", SubroutineFile(write + "three,0,0,1,\r\n"));
    test::PutFile(folder / "install/Subroutines/U.sbr", SubroutineFile(write + "four,0,0,1,\r\n"));
    AddStart();
    for (const char* name : {"S", "T", "U", "S"})
        Add(names::kSubroutineExecute, "1,\"" + std::string(name) + "\",");
    Add(names::kEndImageLoop);
    ASSERT_TRUE(RunHere()) << ErrorLog();
    EXPECT_THAT(Out(), ElementsAre("four.png", "one.png", "three.png"));
}

TEST_F(SubroutineRun, SubroutinesCalledFromSubroutinesAreFoundToo) {
    AddPicture("1.png");
    test::PutFile(folder / "subroutines/Outer.sbr",
                  SubroutineFile("SUBROUTINE Execute\r\n1,\"Inner\",\r\n"));
    test::PutFile(
        folder / "subroutines/Inner.sbr",
        SubroutineFile("Counter (reset or increment)\r\n3,1,1,5,\r\nOutput setup\r\n11,0,\"" +
                       (folder / "out") + "\",0,png,0,3,,in$(F),0,0,1,\r\n"));
    AddStart();
    Add(names::kSubroutineExecute, "1,\"Outer\",");
    Add(names::kEndImageLoop);
    ASSERT_TRUE(RunHere()) << ErrorLog();
    EXPECT_EQ(view.run.statOutputs, 1);
}

TEST_F(SubroutineRun, AMissingSubroutineIsNamedAndNothingRuns) {
    AddStart();
    Add(names::kSubroutineExecute, "1,\"Nowhere\",");
    Add(names::kSubroutineExecute, "1,\"Neither\",");
    Add(names::kEndImageLoop);
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ErrorLog(),
                HasSubstr("Preprocessing error: Unable to load called subroutine; Nowhere\r\n"
                          "Preprocessing error: Unable to load called subroutine; Neither\r\n"));
}

TEST_F(SubroutineRun, ASubroutineThatWritesNowhereIsRefused) {
    test::PutFile(folder / "subroutines/S.sbr",
                  SubroutineFile("Output setup\r\n11,0,,0,jpg,0,0,,,0,0,0,\r\n"));
    AddStart();
    Add(names::kSubroutineExecute, "1,\"S\",");
    Add(names::kEndImageLoop);
    EXPECT_FALSE(RunHere());
    constexpr auto kWords =
        "In subroutine 'Output setup' command(s) you must uncheck 'Set at runtime' and set the "
        "output folder. Then run again";
    EXPECT_THAT(ui.messages, ElementsAre(kWords));
    Unattended();
    EXPECT_FALSE(RunHere());
    EXPECT_EQ(ui.messages.size(), 1u);
    EXPECT_THAT(ui.notices, ElementsAre(kWords));
    EXPECT_THAT(ErrorLog(), HasSubstr(std::string(kWords) + "\r\n"));
    EXPECT_THAT(BatchLog(), HasSubstr(std::string(kWords) + "\r\n"));
    view.run.onLeftImage = true;  // writes nothing anyway
    view.sample.left = test::CoordinateImage({4, 4});
    EXPECT_TRUE(RunHere());
}

TEST_F(SubroutineRun, EndlessRecursionIsAFatalError) {
    AddPicture("1.png");
    AddStart();
    Add(names::kSubroutineExecute, "1,\"S\",");
    Add(names::kEndImageLoop);
    Add(names::kSubroutineStart, "1,\"S\",");
    Add(names::kLoopStart, "1,1000,");
    Add(names::kSubroutineExecute, "1,\"T\",");
    Add(names::kLoopEnd);
    Add(names::kSubroutineEnd);
    Add(names::kSubroutineStart, "1,\"T\",");
    Add(names::kExit);  // leaves without a return: frames pile up over the images
    Add(names::kSubroutineEnd);
    for (int i = 0; i < 300; ++i)
        fs::copy_file(folder / "in/1.png", folder / ("in/x" + std::to_string(i) + ".png"));
    ASSERT_TRUE(RunHere());
    EXPECT_EQ(view.run.fatalCode, 8080);
    EXPECT_THAT(ErrorLog(), HasSubstr("Fatal error:8080 Subroutine stack overlow"));
}

}  // namespace
}  // namespace lumo::engine
