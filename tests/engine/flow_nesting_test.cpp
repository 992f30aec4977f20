// Random well-formed nestings: a run by the tables executes the same commands as a plain recursive
// interpreter.

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

#include "support/flow_runner.h"

namespace lumo::engine {
namespace {

namespace names = script::names;
using test::CommandList;
using test::FlowRunner;

constexpr imaging::Size kPicture{4, 3};
constexpr int kSubroutines = 2;

/// Where a block of commands stands, as far as it says what may stand in it.
struct Place {
    int depth = 0;
    bool inNumberedLoop = false;  // those do not nest
    bool inElse = false;          // an ELSE ends at the next ELSE_END, so it holds no other
    int subroutine = -1;          // subroutines call those below them only
};

/// Makes a list: a main block, the markers, and the subroutines behind them.
class ListMaker {
  public:
    explicit ListMaker(std::uint32_t seed) : random_(seed) {
        Block({});
        Add(names::kStartImageLoop);
        Add(names::kEndImageLoop);
        for (int i = 0; i < kSubroutines; ++i) {
            Add(names::kSubroutineStart, Called(i));
            Block({.depth = 1, .subroutine = i});
            Add(names::kSubroutineEnd);
        }
    }

    CommandList list;

  private:
    void Add(std::string_view name, const std::string& params = "0") {
        list.emplace_back(std::string(name), params);
    }
    int Roll(int sides) { return static_cast<int>(random_() % static_cast<unsigned>(sides)); }
    static std::string Called(int subroutine) {
        return "1,\"S" + std::to_string(subroutine) + "\",";
    }

    void Block(Place place) {
        const int commands = 1 + Roll(4);
        for (int i = 0; i < commands; ++i) {
            const int kind = place.depth >= 3 ? Roll(2) : Roll(7);
            if (kind == 0 || kind == 1)
                AddCounter();
            else if (kind == 2 || kind == 3)
                AddIf(place);
            else if (kind == 4)
                AddDoWhile(place);
            else if (kind == 5 && !place.inNumberedLoop)
                AddNumberedLoop(place);
            else if (kind == 6 && place.subroutine + 1 < kSubroutines)
                Add(names::kSubroutineExecute,
                    Called(place.subroutine + 1 + Roll(kSubroutines - place.subroutine - 1)));
        }
    }

    // A to G are played with; H to J are the loops' own.
    void AddCounter() {
        Add(names::kCounter, "3," + std::to_string(Roll(3)) + "," + std::to_string(Roll(5) - 1) +
                                 "," + std::to_string(Roll(7)) + ",");
    }

    void AddIf(Place place) {
        Add(names::kIfCondition, Condition());
        Place inside = place;
        ++inside.depth;
        Block(inside);
        Add(names::kIfEnd);
        if (place.inElse || Roll(2) == 0) return;
        Add(names::kElseStart);
        inside.inElse = true;
        Block(inside);
        Add(names::kElseEnd);
    }

    // One that ends: while the counter of its depth is below a bound.
    void AddDoWhile(Place place) {
        const std::string counter = std::to_string(7 + place.depth);
        Add(names::kCounter, "3,0,0," + counter + ",");
        const std::string bound = std::to_string(Roll(3));
        const std::string item = std::to_string(14 + place.depth);
        if (Roll(2) == 0)
            Add(names::kDoWhile, "5," + item + ",1," + bound + ".9,0,0,");
        else
            Add(names::kDoWhile, "5," + item + ",0,-1.0," + bound + ".0,1,");
        ++place.depth;
        Block(place);
        --place.depth;
        Add(names::kCounter, "3,1,1," + counter + ",");
        Add(names::kDoEnd);
    }

    void AddNumberedLoop(Place place) {
        Add(names::kLoopStart, "1," + std::to_string(Roll(4)) + ",");
        ++place.depth;
        place.inNumberedLoop = true;
        Block(place);
        Add(names::kLoopEnd);
    }

    // A measured item keeps to the form in which its answer goes to the flag of an IF.
    std::string Condition() {
        constexpr int kItems[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13};
        const int item = kItems[Roll(std::size(kItems))];
        const bool measured = item >= 9 && item <= 11;
        const bool range = !measured && Roll(3) == 0;
        const int lower = Roll(8) - 2;
        return "5," + std::to_string(item) + "," + std::to_string(Roll(5)) + "," +
               std::to_string(lower) + ".25," + std::to_string(lower + Roll(6)) + ".75," +
               (range ? "1," : "0,");
    }

    std::mt19937 random_;
};

/// Walks a list as its author reads it.
class PlainInterpreter {
  public:
    static constexpr std::size_t kMost = 20'000;

    explicit PlainInterpreter(const CommandList& commands) : list_(commands) {
        const int start = static_cast<int>(
            std::ranges::find(list_, names::kStartImageLoop, &Entry::first) - list_.begin());
        Walk(0, start);
        trace.push_back(start);
    }

    bool TooLong() const { return trace.size() >= kMost; }

    std::vector<int> trace;
    std::array<int, 10> counters{};

  private:
    using Entry = CommandList::value_type;

    const std::string& NameAt(int i) const { return list_[static_cast<std::size_t>(i)].first; }
    script::Fields FieldsAt(int i) const {
        return script::ParseParams(list_[static_cast<std::size_t>(i)].second);
    }

    /// The end of the block that begins at `begin`.
    int EndOf(int begin, std::string_view starter, std::string_view ender) const {
        int level = 0;
        for (int i = begin;; ++i) {
            if (NameAt(i) == starter) ++level;
            if (NameAt(i) == ender && --level == 0) return i;
        }
    }

    static double MeasureOf(int item) {
        switch (item) {
            case 0:
                return 4.0 / 3;
            case 1:
                return 4;
            case 2:
                return 3;
            case 3:
                return 12;
            case 9:
                return 0.299 * (1.5 + 1 + 7);
            case 10:
                return 0.299 * 1.5 + 0.587 * 1 + 0.114 * 7;
            default:
                return 12;  // colours
        }
    }

    bool Holds(int i) const {
        const script::Fields f = FieldsAt(i);
        const int item = f.Integer(0);
        const bool isCounter = (item >= 4 && item <= 8) || item >= 12;
        const bool range = !f.Is(4, "0");
        double x, lower = f.Real(2), upper = f.Real(3);
        if (isCounter) {
            x = counters[static_cast<std::size_t>(item <= 8 ? item - 4 : item - 7)];
        } else {
            x = MeasureOf(item);
        }
        if (isCounter || (item == 11 && !range)) {
            lower = std::trunc(lower);
            upper = std::trunc(upper);
        }
        if (range) return lower < x && x <= upper;
        switch (f.Integer(1)) {
            case 0:
                return x > lower;
            case 1:
                return x < lower;
            case 2:
                return x == lower;
            case 3:
                return x >= lower;
            default:
                return x <= lower;
        }
    }

    void Count(int i) {
        const script::Fields f = FieldsAt(i);
        int& counter = counters[static_cast<std::size_t>(f.Integer(2))];
        counter = (f.Is(0, "0") ? 0 : counter) + f.Integer(1);
    }

    int WalkIf(int i, int to) {
        const int end = EndOf(i, names::kIfCondition, names::kIfEnd);
        const bool hasElse = end + 1 < to && NameAt(end + 1) == names::kElseStart;
        const int elseEnd = hasElse ? EndOf(end + 1, names::kElseStart, names::kElseEnd) : end;
        if (Holds(i)) {
            Walk(i + 1, end);
            trace.push_back(end);
        } else if (hasElse) {
            trace.push_back(end + 1);
            Walk(end + 2, elseEnd);
            trace.push_back(elseEnd);
        }
        return elseEnd;
    }

    int WalkDoWhile(int i) {
        const int end = EndOf(i, names::kDoWhile, names::kDoEnd);
        while (Holds(i) && !TooLong()) {
            Walk(i + 1, end);
            trace.push_back(end);
            trace.push_back(i);
        }
        return end;
    }

    int WalkNumberedLoop(int i) {
        const int end = EndOf(i, names::kLoopStart, names::kLoopEnd);
        for (int left = std::max(1, FieldsAt(i).Integer(0)); left > 0 && !TooLong(); --left) {
            Walk(i + 1, end);
            trace.push_back(end);
        }
        return end;
    }

    /// All counters come back but F, and G takes what F was.
    void Call(int i) {
        const std::string name = FieldsAt(i).Text(0);
        int start = 0;
        while (NameAt(start) != names::kSubroutineStart || FieldsAt(start).Text(0) != name) ++start;
        const int end = EndOf(start, names::kSubroutineStart, names::kSubroutineEnd);
        const auto before = counters;
        Walk(start + 1, end);
        trace.push_back(end);
        const int f = counters[5];
        counters = before;
        counters[5] = f;
        counters[6] = before[5];
    }

    void Walk(int from, int to) {
        for (int i = from; i < to && !TooLong(); ++i) {
            const std::string& name = NameAt(i);
            trace.push_back(i);
            if (name == names::kCounter)
                Count(i);
            else if (name == names::kIfCondition)
                i = WalkIf(i, to);
            else if (name == names::kDoWhile)
                i = WalkDoWhile(i);
            else if (name == names::kLoopStart)
                i = WalkNumberedLoop(i);
            else if (name == names::kSubroutineExecute)
                Call(i);
        }
    }

    const CommandList& list_;
};

TEST(FlowNesting, RandomNestingsRunAsPlainRecursionWould) {
    int compared = 0;
    std::size_t longest = 0;
    for (std::uint32_t seed = 1; seed <= 1500; ++seed) {
        const CommandList list = ListMaker(seed).list;
        const PlainInterpreter plain(list);
        if (plain.TooLong()) continue;
        FlowRunner flow(list);
        flow.View().working.main = test::CoordinateImage(kPicture);
        flow.Walk(PlainInterpreter::kMost + 1);
        ASSERT_EQ(flow.trace, plain.trace) << "seed " << seed;
        EXPECT_THAT(flow.View().counters, testing::ElementsAreArray(plain.counters));
        EXPECT_EQ(flow.Run().stackIndex, 0);
        ++compared;
        longest = std::max(longest, plain.trace.size());
    }
    EXPECT_GT(compared, 1000);
    EXPECT_GT(longest, 1000U);
}

}  // namespace
}  // namespace lumo::engine
