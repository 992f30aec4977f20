// A user who does anything in any order.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "engine/editing.h"
#include "script/catalogue.h"
#include "script/names.h"
#include "script/templates.h"
#include "support/command_runner.h"
#include "support/random_text.h"

namespace lumo::engine {
namespace {

namespace names = script::names;
using script::Script;

class RandomUser {
  public:
    RandomUser(CLumoscriptView& view, test::RecordingInterface& ui, unsigned seed)
        : view_(view), ui_(ui), random_(seed) {
        ui_.onDialog = [this](std::string& params, bool& makeDefault) {
            params = "1," + std::to_string(Below(1000)) + ",";
            makeDefault = Below(4) == 0;
            return Below(3) != 0;
        };
    }

    void Step() {
        switch (Below(11)) {
            case 0:
            case 1:
            case 2:
                if (view_.script.commands.Count() > 7) return DeleteSelected(view_);
                AddCommand(view_, test::Pick(random_, script::Catalogue()).name, AddFrom::Tree);
                break;
            case 3:
                EditSelected(view_);
                break;
            case 4:
                SwapUp(view_);
                break;
            case 5:
                SwapDown(view_);
                break;
            case 6:
                MoveCommand(view_, Place(), Place());
                break;
            case 7:
                RandomClipboard();
                PasteCommand(view_);
                break;
            case 8:
                Below(2) == 0 ? CutCommand(view_) : CopyCommand(view_);
                break;
            case 9:
                DeleteSelected(view_);
                break;
            default:
                RestoreUndoCopy(view_);
        }
        if (Below(2) == 0) SelectCommand(view_, Place());
    }

  private:
    std::size_t Below(std::size_t bound) { return test::Below(random_, bound); }
    int Place() {
        return static_cast<int>(
                   Below(static_cast<std::size_t>(view_.script.commands.Count()) + 2)) -
               1;
    }
    void RandomClipboard() {
        if (Below(2) == 0) return;  // what the last copy put there
        ui_.clipboard = std::string(test::Pick(random_, script::Catalogue()).name) + "\r\n" +
                        test::RandomText(random_, 300, "0123,\"\n\r\xc3\xbc");
    }

    CLumoscriptView& view_;
    test::RecordingInterface& ui_;
    std::mt19937 random_;
};

int CountOf(const Script& script, std::string_view name) {
    return static_cast<int>(std::ranges::count(script.names, name));
}

void ExpectInvariants(const CLumoscriptView& view, int markers) {
    const Script& script = view.script.commands;
    ASSERT_EQ(script.names.size(), script.params.size());
    ASSERT_EQ(CountOf(script, names::kStartImageLoop), markers);
    ASSERT_EQ(CountOf(script, names::kEndImageLoop), markers);
    ASSERT_LE(script.Find(names::kStartImageLoop), script.Find(names::kEndImageLoop));
    ASSERT_GE(SelectedCommand(view), script.Count() == 0 ? -1 : 0);
    ASSERT_LT(SelectedCommand(view), script.Count());
    for (int i = 0; i < script.Count(); ++i) {
        ASSERT_TRUE(script::IsKnownCommand(script.NameAt(i)));
        ASSERT_EQ(script.ParamsAt(i).find('\r'), std::string::npos);
        if (script::FieldCountText(script.NameAt(i)) == "0") {
            ASSERT_EQ(script.ParamsAt(i), "0");
        }
    }
}

/// Steps of a random user; after each the invariants hold, and if it changed the Script, undo would
/// bring back the one before it.
void Play(CLumoscriptView& view, test::RecordingInterface& ui, unsigned seed, int steps) {
    const int markers = CountOf(view.script.commands, names::kStartImageLoop);
    RandomUser user(view, ui, seed);
    for (int i = 0; i < steps; ++i) {
        const Script before = view.script.commands;
        const bool hadUndo = view.script.undoValid;
        const Script kept = view.script.undo;
        user.Step();
        ASSERT_NO_FATAL_FAILURE(ExpectInvariants(view, markers)) << "step " << i;
        const Script& now = view.script.commands;
        if (now == before) continue;
        ASSERT_TRUE(view.script.modified);
        if (view.script.undoValid) {
            ASSERT_EQ(view.script.undo, before) << "step " << i;
        } else {
            ASSERT_TRUE(hadUndo);  // it was the undo itself
            ASSERT_EQ(now, kept) << "step " << i;
        }
    }
}

class RandomEditing : public testing::Test {
  protected:
    test::CommandRunner runner{test::CoordinateImage({20, 10})};
};

TEST_F(RandomEditing, KeepsAScriptWhole) {
    runner.view.script.commands = script::NewScript("32,start,", "11,output,");
    Play(runner.view, runner.ui, 1, 10'000);
}

TEST_F(RandomEditing, KeepsASubroutineWithoutMarkers) {
    runner.view.script.commands = script::NewSubroutine();
    Play(runner.view, runner.ui, 2, 10'000);
}

}  // namespace
}  // namespace lumo::engine
