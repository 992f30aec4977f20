#pragma once

// "Batch Log comments": facts of the machine, the user's words and the camera's data in Batch.log.

#include <string>
#include <string_view>

#include "engine/command.h"

namespace lumo::io {

/// A comma at every third digit from the right: "1,048,576".
std::string GroupThousands(std::string_view digits);

extern const engine::Command kBatchLogCommentsCommand;

}  // namespace lumo::io
