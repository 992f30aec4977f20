#pragma once

#include <hwy/highway.h>

#include <cstdint>
#include <string>

namespace lumo::test {

/// Calls `body(name)` once for each instruction set that this processor has and the kernels are
/// built for; they use that set meanwhile.
template <typename Body>
void ForEachSimdTarget(const Body& body) {
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        body(std::string(hwy::TargetName(target)));
        hwy::SetSupportedTargetsForTest(0);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
}

}  // namespace lumo::test
