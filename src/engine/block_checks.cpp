#include "engine/block_checks.h"

#include <array>

#include "engine/subroutines.h"
#include "script/names.h"

namespace lumo::engine {
namespace {

namespace names = script::names;

enum SectionIndex { kPreImage, kImage, kPostImage };

struct Section {
    int first, last;  // last is exclusive
};

std::array<Section, 3> SectionsOf(const RunList& list) {
    return {Section{0, list.startIdx}, Section{list.startIdx, list.endIdx},
            Section{list.endIdx, list.commands.Count()}};
}

/// The two kinds of commands that open and close one kind of block, and the words for its faults
/// in each section.
struct BlockKind {
    std::string_view starter, ender;
    std::array<std::string_view, 3> order;
    std::array<std::string_view, 3> count;
};

constexpr BlockKind kLoops{
    names::kLoopStart,
    names::kLoopEnd,
    {"Preprocessing error: Loop End before Loop Start in pre-Image loop",
     "Preprocessing error: Loop End before Loop Start in Image loop",
     "Preprocessing error: Loop End before Loop Start in post-Image loop"},
    {"Preprocessing error: Loop Start - Loop End count mismatch pre-Image loop",
     "Preprocessing error: Loop Start - Loop End count mismatch Image loop",
     "Preprocessing error: Loop Start - Loop End count mismatch post-Image loop"}};

constexpr BlockKind kDoWhile{
    names::kDoWhile,
    names::kDoEnd,
    {"Preprocessing error: DO_END before DO_WHILE (condition) in pre-Image loop",
     "Preprocessing error: DO_END before DO_WHILE (condition) in Image loop",
     "Preprocessing error: DO_END before DO_WHILE (condition) in post-Image loop"},
    {"Preprocessing error: DO_WHILE - DO_END count mismatch pre-Image loop",
     "Preprocessing error: DO_WHILE - DO_END count mismatch Image loop",
     "Preprocessing error: DO_WHILE - DO_END count mismatch post-Image loop"}};

constexpr BlockKind kIf{
    names::kIfCondition,
    names::kIfEnd,
    {"Preprocessing error: IF_END before IF_START in pre-Image loop",
     "Preprocessing error: IF_END before IF_START in Image loop",
     "Preprocessing error: IF_END before IF_START in post-Image loop"},
    {"Preprocessing error: IF_START  IF_END count mismatch in pre-Image loop",
     "Preprocessing error: IF_START  IF_END count mismatch in Image loop",
     "Preprocessing error: IF_START  IF_END count mismatch in post-Image loop"}};

// The last text names the wrong loop on purpose: users know it in these words.
constexpr BlockKind kElse{
    names::kElseStart,
    names::kElseEnd,
    {"Preprocessing error: ELSE_END before ELSE_START in pre-Image loop",
     "Preprocessing error: ELSE_END before ELSE_START in Image loop",
     "Preprocessing error: ELSE_END before ELSE_START in post-Image loop"},
    {"Preprocessing error: ELSE_START  ELSE_END count mismatch in pre-Image loop",
     "Preprocessing error: ELSE_START  ELSE_END count mismatch in Image loop",
     "Preprocessing error: ELSE_START  ELSE_END count post-mismatch in Image loop"}};

constexpr BlockKind kSubroutine{
    names::kSubroutineStart,
    names::kSubroutineEnd,
    {"Preprocessing error: SUBROUTINE_END before SUBROUTINE_START in pre-Image loop",
     "Preprocessing error: SUBROUTINE_END before SUBROUTINE_START in Image loop",
     "Preprocessing error: SUBROUTINE_END before SUBROUTINE_START in post-Image loop"},
    {"Preprocessing error: SUBROUTINE_START  SUBROUTINE_END count mismatch pre-Image loop",
     "Preprocessing error: SUBROUTINE_START  SUBROUTINE_END count mismatch in Image loop",
     "Preprocessing error: SUBROUTINE_START  SUBROUTINE_END count mismatch post-Image loop"}};

/// Scans the three sections; `alsoStarts(name, section)` tells of further starters.
template <class AlsoStarts>
bool CheckBlocks(const RunList& list, const BlockKind& kind, const FaultSink& fault,
                 AlsoStarts alsoStarts) {
    bool ok = true;
    const auto sections = SectionsOf(list);
    for (std::size_t s = 0; s < sections.size(); ++s) {
        int starters = 0, enders = 0;
        bool orderToldOf = false;
        for (int i = sections[s].first; i < sections[s].last; ++i) {
            const std::string& name = list.commands.NameAt(i);
            if (name == kind.starter || alsoStarts(name, s)) ++starters;
            if (name == kind.ender) ++enders;
            if (enders > starters && !orderToldOf) {
                orderToldOf = true;
                ok = false;
                fault(kind.order[s]);
            }
        }
        if (starters != enders) {
            ok = false;
            fault(kind.count[s]);
        }
    }
    return ok;
}

bool CheckBlocks(const RunList& list, const BlockKind& kind, const FaultSink& fault) {
    return CheckBlocks(list, kind, fault, [](std::string_view, std::size_t) { return false; });
}

/// ELSE_START stands directly behind an IF_END, before and inside the image loop.
bool CheckElseFollowsIf(const RunList& list, const FaultSink& fault) {
    bool ok = true;
    const auto sections = SectionsOf(list);
    for (const std::size_t s : {std::size_t{kPreImage}, std::size_t{kImage}}) {
        int distance = 0;
        for (int i = sections[s].first; i < sections[s].last; ++i) {
            const std::string& name = list.commands.NameAt(i);
            --distance;
            if (name == names::kIfEnd) distance = 2;
            if (name == names::kElseStart && distance != 1) {
                ok = false;
                if (s == kPreImage)
                    fault(
                        "Preprocessing error: ELSE_START not preceded by IF_END in pre-Image "
                        "loop");
            }
        }
    }
    return ok;
}

}  // namespace

bool CheckLoops(const RunList& list, const FaultSink& fault) {
    return CheckBlocks(list, kLoops, fault);
}

bool CheckDoWhile(const RunList& list, const FaultSink& fault) {
    return CheckBlocks(list, kDoWhile, fault);
}

bool CheckIf(const RunList& list, const FaultSink& fault) {
    bool ok = CheckBlocks(list, kIf, fault, [](std::string_view name, std::size_t section) {
        return section == kImage && IsFileIf(name);
    });
    // There is no first and no last file outside of the image loop.
    const auto sections = SectionsOf(list);
    for (const std::size_t s : {std::size_t{kPreImage}, std::size_t{kPostImage}})
        for (int i = sections[s].first; i < sections[s].last; ++i)
            if (IsFileIf(list.commands.NameAt(i))) ok = false;
    return ok;
}

bool CheckElse(const RunList& list, const FaultSink& fault) {
    const bool follows = CheckElseFollowsIf(list, fault);
    return CheckBlocks(list, kElse, fault) && follows;
}

bool CheckSubroutines(const RunList& list, const FaultSink& fault) {
    return CheckBlocks(list, kSubroutine, fault);
}

}  // namespace lumo::engine
