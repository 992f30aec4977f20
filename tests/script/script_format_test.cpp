#include "script/script_format.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "reference/plain_script_reader.h"
#include "script/catalogue.h"
#include "script/fields.h"
#include "script/names.h"
#include "script/templates.h"
#include "support/random_text.h"

namespace lumo::script {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string Lines(std::initializer_list<std::string_view> lines) {
    std::string text;
    for (const std::string_view line : lines) text.append(line).append("\r\n");
    return text;
}

Script ParseComplete(std::string_view bytes) {
    const ParsedScript parsed = ParseScriptBytes(bytes);
    EXPECT_EQ(parsed.outcome, ReadOutcome::Complete);
    return parsed.script;
}

TEST(SerializeScript, WritesTheFileToTheByte) {
    const Script script = NewScript("32,0,,", "11,0,,");
    EXPECT_EQ(SerializeScript(script, FileKind::Script),
              "BEGIN\r\n"
              "; ; = Comment. Do not edit. This is a script.\r\n"
              "; File must have no format characters.\r\n"
              "START image loop (setup)\r\n"
              "32,0,,\r\n"
              "Output setup\r\n"
              "11,0,,\r\n"
              "END image loop\r\n"
              "0\r\n"
              "END\r\n"
              "; Do not edit - Lumoscript script.whs\r\n");
}

TEST(SerializeScript, LeavesTheMarkersOutOfASubroutine) {
    const Script script = NewScript("32,0,,", "11,0,,");
    EXPECT_EQ(SerializeScript(script, FileKind::Subroutine),
              "SUBRT\r\n"
              "; ; = Comment. Do not edit. This is a script.\r\n"
              "; File must have no format characters.\r\n"
              "Output setup\r\n"
              "11,0,,\r\n"
              "END\r\n"
              "; Do not edit - Lumoscript script.whs\r\n");
    EXPECT_EQ(script.Count(), 3);  // the one in memory keeps them
}

TEST(SerializeScript, WritesAnEmptyLineForMissingParameters) {
    const Script script{.names = {"Crop"}, .params = {}};
    EXPECT_EQ(ParseComplete(SerializeScript(script, FileKind::Script)),
              (Script{.names = {"Crop"}, .params = {""}}));
}

TEST(SerializeScript, WritesNoCarriageReturnInsideOfALine) {
    Script script;
    script.Add("Text\r\n", "1,\"one\r\ntwo\r\",");
    const Script read = ParseComplete(SerializeScript(script, FileKind::Script));
    EXPECT_THAT(read.names, ElementsAre("Text\n"));
    EXPECT_THAT(read.params, ElementsAre("1,\"one\ntwo\","));
}

TEST(SerializeScript, KeepsCommandsInPlaceBehindALineThatLooksLikeNone) {
    Script script;
    script.Add("Crop", "END");
    script.Add("Crop", ";1,a,");
    script.Add("Crop", "E\rND\r");
    script.Add("Crop", "\r;");
    script.Add("Blur", "1,25,");
    const Script read = ParseComplete(SerializeScript(script, FileKind::Script));
    EXPECT_THAT(read.names, ElementsAre("Crop", "Crop", "Crop", "Crop", "Blur"));
    EXPECT_THAT(read.params, ElementsAre(" END", " ;1,a,", " END", " ;", "1,25,"));
}

TEST(ParseScriptBytes, ReadsWhatTheWriterWrote) {
    const std::string text = "BEGIN\r\n; a comment\r\nCrop\r\n6,1,2,3,4,0,0,\r\nEND\r\n; rest\r\n";
    const ParsedScript parsed = ParseScriptBytes(text);
    EXPECT_TRUE(parsed.Complete());
    EXPECT_EQ(parsed.kind, FileKind::Script);
    EXPECT_EQ(parsed.script, (Script{.names = {"Crop"}, .params = {"6,1,2,3,4,0,0,"}}));
}

TEST(ParseScriptBytes, ReadsASubroutineToo) {
    const ParsedScript parsed = ParseScriptBytes(Lines({"SUBRT", "Crop", "c", "END"}));
    EXPECT_TRUE(parsed.Complete());
    EXPECT_EQ(parsed.kind, FileKind::Subroutine);
    EXPECT_THAT(parsed.script.names, ElementsAre("Crop"));

    Script opened = parsed.script;
    EnsureMarkers(opened, "32,");
    EXPECT_THAT(opened.names, ElementsAre(names::kStartImageLoop, "Crop", names::kEndImageLoop));
}

TEST(ParseScriptBytes, RefusesEightBytesAndTakesNine) {
    EXPECT_EQ(ParseScriptBytes("BEGIN\r\nX").outcome, ReadOutcome::TooShort);
    EXPECT_EQ(ParseScriptBytes("").outcome, ReadOutcome::TooShort);
    EXPECT_EQ(ParseScriptBytes("no Scrip").outcome, ReadOutcome::TooShort);
    EXPECT_EQ(ParseScriptBytes("BEGIN\r\nXY").outcome, ReadOutcome::NoEnd);
    EXPECT_EQ(ParseScriptBytes("BEGINEND\r").outcome, ReadOutcome::NoEnd);
    EXPECT_EQ(ParseScriptBytes("BEGIN??END\r").outcome, ReadOutcome::Complete);
}

TEST(ParseScriptBytes, RefusesOtherFirstWords) {
    for (const char* text :
         {"begin\r\nEND\r\n", "BEGAN\r\nEND\r\n", " BEGIN\r\nEND\r\n", ";BEGIN\r\nEND\r\n",
          "\xef\xbb\xbf"
          "BEGIN\r\nEND\r\n"}) {
        const ParsedScript parsed = ParseScriptBytes(text);
        EXPECT_EQ(parsed.outcome, ReadOutcome::WrongKind) << text;
        EXPECT_EQ(parsed.script, Script{});
    }
}

TEST(ParseScriptBytes, LooksAtFiveBytesAndSkipsTwo) {
    EXPECT_EQ(ParseComplete("BEGINxyCrop\r\nc\r\nEND\r\n"),
              (Script{.names = {"Crop"}, .params = {"c"}}));
}

TEST(ParseScriptBytes, EndsLinesAtTheCarriageReturnAndSkipsOneByte) {
    EXPECT_EQ(ParseComplete("BEGIN\r\nA\nB\r\n1,\"x\ny\",\rzEND\r"),
              (Script{.names = {"A\nB"}, .params = {"1,\"x\ny\","}}));
    // A file of lone LF has no lines at all.
    EXPECT_EQ(ParseScriptBytes("BEGIN\n\nCrop\nc\nEND\n").outcome, ReadOutcome::NoEnd);
}

TEST(ParseScriptBytes, DropsCommentsWhereverTheyStand) {
    EXPECT_EQ(
        ParseComplete(Lines({"BEGIN", ";", "Crop", "; between", ";more", "c", ";END", "END"})),
        (Script{.names = {"Crop"}, .params = {"c"}}));
    // A blank before the mark makes it data.
    EXPECT_THAT(ParseComplete(Lines({"BEGIN", "Crop", " ;c", "END"})).params, ElementsAre(" ;c"));
}

TEST(ParseScriptBytes, TakesAnEmptyLineAsData) {
    EXPECT_EQ(ParseComplete(Lines({"BEGIN", "", "", "Crop", "", "END"})),
              (Script{.names = {"", "Crop"}, .params = {"", ""}}));
}

TEST(ParseScriptBytes, EndsAtEndWhereverItStands) {
    EXPECT_EQ(ParseComplete(Lines({"BEGIN", "Crop", "END", "Blur", "b", "END"})),
              (Script{.names = {"Crop"}, .params = {}}));
    EXPECT_EQ(ParseComplete(Lines({"BEGIN", "END"})), Script{});
    EXPECT_EQ(ParseComplete(Lines({"BEGIN", "Crop", "c", "END ", "e", "END"})).names.size(), 2u);
}

TEST(ParseScriptBytes, KeepsWhatWasReadWithoutAnEnd) {
    const ParsedScript open = ParseScriptBytes(Lines({"BEGIN", "Crop", "c", "Blur"}));
    EXPECT_EQ(open.outcome, ReadOutcome::NoEnd);
    EXPECT_EQ(open.script, (Script{.names = {"Crop", "Blur"}, .params = {"c"}}));

    // The line of a last CR with nothing behind it is not taken.
    const ParsedScript bare = ParseScriptBytes("BEGIN\r\nCrop\r\nc\r");
    EXPECT_EQ(bare.outcome, ReadOutcome::NoEnd);
    EXPECT_EQ(bare.script, (Script{.names = {"Crop"}, .params = {}}));

    EXPECT_EQ(ParseScriptBytes("BEGIN\r\nCrop\r\nc\r\nEND").outcome, ReadOutcome::NoEnd);
}

TEST(ParseScriptBytes, LeavesALastNameWithoutParameters) {
    const Script script = ParseComplete(Lines({"BEGIN", "Crop", "c", "Blur", "END"}));
    EXPECT_THAT(script.names, ElementsAre("Crop", "Blur"));
    EXPECT_THAT(script.params, ElementsAre("c"));
    EXPECT_EQ(script.ParamsAt(1), "");
}

TEST(ParseScriptBytes, MapsTheNamesOfOlderScripts) {
    const Script script = ParseComplete(
        Lines({"BEGIN", "Exit", "0", "Start: Input setup", "32,a,", "Set: Canvas size", "7,b,",
               "No final output", "0", "Output (intermediate)", "9,old,", "Exits", "0", "END"}));
    EXPECT_THAT(script.names,
                ElementsAre("Exit (get next image)", "START image loop (setup)", "Canvas size",
                            "Exit (get next image)", "Output setup", "Exits"));
    EXPECT_THAT(script.params,
                ElementsAre("0", "32,a,", "7,b,", "0", "11,0,,0,jpg,0,0,,,1,1,0,", "0"));
}

TEST(ParseScriptBytes, TurnsTheOldEndIntoTwoCommands) {
    EXPECT_EQ(ParseComplete(Lines({"BEGIN", "End: Output setup", "11,a,", "END"})),
              (Script{.names = {"Output setup", "END image loop"}, .params = {"11,a,", "0"}}));
    const Script between = ParseComplete(
        Lines({"BEGIN", "Crop", "c", "End: Output setup", "; note", "11,a,", "Blur", "b", "END"}));
    EXPECT_THAT(between.names, ElementsAre("Crop", "Output setup", "END image loop", "Blur"));
    EXPECT_THAT(between.params, ElementsAre("c", "11,a,", "0", "b"));
}

TEST(ParseScriptBytes, MapsNamesOnly) {
    EXPECT_EQ(ParseComplete(Lines({"BEGIN", "Crop", "Exit", "END"})),
              (Script{.names = {"Crop"}, .params = {"Exit"}}));
}

TEST(AppendSubroutineBytes, EnclosesTheCommands) {
    Script script;
    script.Add("Crop", "c");
    const auto outcome =
        AppendSubroutineBytes(script, Lines({"SUBRT", "; x", "Blur", "b", "END", "x"}), "stamp");
    EXPECT_EQ(outcome, ReadOutcome::Complete);
    EXPECT_THAT(script.names, ElementsAre("Crop", "SUBROUTINE_START", "Blur", "SUBROUTINE_END"));
    EXPECT_THAT(script.params, ElementsAre("c", "1,\"stamp\",", "b", "0"));
}

TEST(AppendSubroutineBytes, DropsTheMarkersOfAWholeScript) {
    Script script;
    EXPECT_EQ(AppendSubroutineBytes(
                  script, SerializeScript(NewScript("32,", "11,a,"), FileKind::Script), "whole"),
              ReadOutcome::Complete);
    EXPECT_THAT(script.names, ElementsAre("SUBROUTINE_START", "Output setup", "SUBROUTINE_END"));
    EXPECT_THAT(script.params, ElementsAre("1,\"whole\",", "11,a,", "0"));
}

TEST(AppendSubroutineBytes, MapsNoNames) {
    Script script;
    EXPECT_EQ(AppendSubroutineBytes(
                  script, Lines({"BEGIN", "Exit", "0", "End: Output setup", "p", "END"}), "old"),
              ReadOutcome::Complete);
    EXPECT_THAT(script.names,
                ElementsAre("SUBROUTINE_START", "Exit", "End: Output setup", "SUBROUTINE_END"));
}

TEST(AppendSubroutineBytes, RecordsFortyCharactersOfTheTitle) {
    const auto recorded = [](const std::string& title) {
        Script script;
        EXPECT_EQ(AppendSubroutineBytes(script, Lines({"SUBRT", "END"}), title),
                  ReadOutcome::Complete);
        return ParseParams(script.params.front()).Text(0);
    };
    const std::string title = "123456789 123456789 123456789 123456789 12345";
    ASSERT_EQ(title.size(), 45u);
    EXPECT_EQ(recorded(title), title.substr(0, 40));
    EXPECT_EQ(recorded(title.substr(0, 40)), title.substr(0, 40));
    EXPECT_EQ(recorded("a,b"), "a,b");
    EXPECT_EQ(recorded(""), "");
    std::string umlauts;
    for (int i = 0; i < 45; ++i) umlauts += "\xc3\xa4";
    EXPECT_EQ(recorded(umlauts), umlauts.substr(0, 80));
}

TEST(AppendSubroutineBytes, AddsNothingFromAnotherKindOfFile) {
    for (const char* text : {"", "SUBR", "subrt\r\nEND\r\n", "no Subroutine at all"}) {
        Script script;
        script.Add("Crop", "c");
        EXPECT_EQ(AppendSubroutineBytes(script, text, "t"), ReadOutcome::WrongKind) << text;
        EXPECT_EQ(script.Count(), 1) << text;
    }
}

TEST(AppendSubroutineBytes, KeepsWhatWasReadWithoutAnEnd) {
    Script script;
    EXPECT_EQ(AppendSubroutineBytes(script, Lines({"SUBRT", "Blur", "b"}), "t"),
              ReadOutcome::NoEnd);
    EXPECT_THAT(script.names, ElementsAre("SUBROUTINE_START", "Blur"));
    Script bare;
    EXPECT_EQ(AppendSubroutineBytes(bare, "SUBRT", "t"), ReadOutcome::NoEnd);
    EXPECT_THAT(bare.names, ElementsAre("SUBROUTINE_START"));
}

TEST(AppendSubroutineBytes, KeepsALastNameWithoutParametersInItsPlace) {
    Script script;
    EXPECT_EQ(AppendSubroutineBytes(script, Lines({"SUBRT", "Blur", "END"}), "t"),
              ReadOutcome::Complete);
    EXPECT_THAT(script.names, ElementsAre("SUBROUTINE_START", "Blur", "SUBROUTINE_END"));
    EXPECT_THAT(script.params, ElementsAre("1,\"t\",", "", "0"));
}

TEST(AppendSubroutineBytes, KeepsParametersWithTheirNamesBehindAnOddScript) {
    Script script{.names = {"Crop"}, .params = {}};
    EXPECT_EQ(AppendSubroutineBytes(script, Lines({"SUBRT", "Blur", "b", "END"}), "t"),
              ReadOutcome::Complete);
    EXPECT_THAT(script.params, ElementsAre("", "1,\"t\",", "b", "0"));
}

// ---- Properties ----

std::string RandomLine(std::mt19937& random) {
    static const std::vector<std::string> kLines{"END",
                                                 "BEGIN",
                                                 "SUBRT",
                                                 "",
                                                 ";",
                                                 "; note",
                                                 "Exit",
                                                 "End: Output setup",
                                                 "Crop",
                                                 "Start: Input setup",
                                                 "Output (intermediate)",
                                                 "START image loop (setup)",
                                                 "END image loop",
                                                 "6,1,2,3,4,0,0,",
                                                 "0",
                                                 "Set: Canvas size",
                                                 "No final output"};
    return random() % 4 == 0 ? test::RandomText(random, 6, std::string_view("a;,\"\n\0END", 9))
                             : test::Pick(random, kLines);
}

std::string RandomFile(std::mt19937& random) {
    static const std::vector<std::string> kEnds{"\r\n", "\r\n", "\r\n", "\r\n", "\r", "\n", "\rx"};
    std::string file =
        random() % 8 == 0 ? RandomLine(random) : (random() % 2 == 0 ? "BEGIN" : "SUBRT");
    for (std::size_t lines = test::Below(random, 20); lines > 0; --lines)
        file += test::Pick(random, kEnds) + RandomLine(random);
    if (random() % 4 != 0) file += "\r\nEND\r\n";
    if (random() % 4 == 0) file.resize(test::Below(random, file.size() + 1));
    return file;
}

TEST(ParseScriptBytes, AgreesWithAPlainReaderOnAnyFile) {
    std::mt19937 random(6);
    int complete = 0;
    for (int i = 0; i < 50000; ++i) {
        const std::string file =
            random() % 10 == 0 ? test::RandomBytes(random, 60) : RandomFile(random);
        const ParsedScript parsed = ParseScriptBytes(file);
        const reference::PlainScript plain = reference::ReadScript(file);
        ASSERT_EQ(parsed.Complete(), plain.complete) << testing::PrintToString(file);
        ASSERT_EQ(parsed.script.names, plain.names) << testing::PrintToString(file);
        ASSERT_EQ(parsed.script.params, plain.params) << testing::PrintToString(file);
        complete += parsed.Complete() ? 1 : 0;
    }
    EXPECT_GT(complete, 10000);
}

TEST(AppendSubroutineBytes, AgreesWithAPlainReaderOnAnyFile) {
    std::mt19937 random(7);
    for (int i = 0; i < 50000; ++i) {
        const std::string file = RandomFile(random);
        Script script;
        const ReadOutcome outcome = AppendSubroutineBytes(script, file, "title");
        const reference::PlainScript plain = reference::ReadSubroutine(file, "title");
        ASSERT_EQ(outcome == ReadOutcome::Complete, plain.complete) << testing::PrintToString(file);
        ASSERT_EQ(script.names, plain.names) << testing::PrintToString(file);
        ASSERT_EQ(script.params, plain.params) << testing::PrintToString(file);
    }
}

/// A Script as the editor makes them: commands of the catalogue with any parameters.
Script RandomScript(std::mt19937& random) {
    Script script;
    for (std::size_t n = test::Below(random, 12); n > 0; --n) {
        std::string text = test::RandomBytes(random, 30);
        std::erase(text, '\r');
        script.Add(test::Pick(random, Catalogue()).name, QuoteField(text, CarriageReturns::Strip));
    }
    return script;
}

TEST(SerializeScript, ReadsBackAsTheScriptItWasMadeOf) {
    std::mt19937 random(8);
    for (int i = 0; i < 5000; ++i) {
        const Script script = RandomScript(random);
        ASSERT_EQ(ParseComplete(SerializeScript(script, FileKind::Script)), script);
        Script unmarked = script;
        RemoveMarkers(unmarked);
        ASSERT_EQ(ParseComplete(SerializeScript(script, FileKind::Subroutine)), unmarked);
    }
}

TEST(SerializeScript, KeepsTheMeaningOfAnyParameters) {
    std::mt19937 random(9);
    for (int i = 0; i < 20000; ++i) {
        Script script;
        for (std::size_t n = test::Below(random, 6); n > 0; --n)
            script.Add("Crop", test::RandomText(random, 8, "END;\r\n1,\"a"));
        const Script read = ParseComplete(SerializeScript(script, FileKind::Script));
        ASSERT_EQ(read.names, script.names);
        ASSERT_EQ(read.params.size(), script.params.size());
        for (int k = 0; k < script.Count(); ++k) {
            std::string written = script.ParamsAt(k);
            std::erase(written, '\r');
            const Fields before = ParseParams(written);
            const Fields after = ParseParams(read.ParamsAt(k));
            ASSERT_EQ(after.count, before.count) << written;
            ASSERT_EQ(after.complete, before.complete) << written;
            for (int slot = 0; slot < Fields::kSlots; ++slot)
                ASSERT_EQ(after.Text(slot), before.Text(slot)) << written;
        }
    }
}

TEST(SerializeScript, GivesTheSameScriptAgainForWhateverWasRead) {
    std::mt19937 random(10);
    for (int i = 0; i < 20000; ++i) {
        Script script = ParseScriptBytes(RandomFile(random)).script;
        script.params.resize(script.names.size());
        ASSERT_EQ(ParseComplete(SerializeScript(script, FileKind::Script)), script);
    }
}

}  // namespace
}  // namespace lumo::script
