#pragma once

#include <hwy/highway.h>

#include <cstdint>
#include <string>

namespace lumo::test {

/// Calls `body(name)` once for each instruction set that this processor has, from the best to none
/// at all. Kernels use that set meanwhile; those that are not built for it use their plain loops.
template <typename Body>
void ForEachSimdTarget(const Body& body) {
    const std::int64_t all = hwy::SupportedTargets();
    for (std::int64_t rest = all; rest != 0; rest &= rest - 1) {
        const std::int64_t target = rest & -rest;
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        body(std::string(hwy::TargetName(target)));
        hwy::SetSupportedTargetsForTest(0);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
}

}  // namespace lumo::test
