#include "imaging/rotate_kernels.h"

namespace lumo::imaging::kernels {

void DrawRun(const RotatedRun& run) {
    plain::DrawRun(run);
}

}  // namespace lumo::imaging::kernels
