#pragma once

// The condition that "IF_START (condition)" and "DO_WHILE (condition)" share: an item, a test and
// a value, or a range.

#include <optional>
#include <span>
#include <string>

#include "engine/view.h"
#include "script/fields.h"
#include "script/schema.h"

namespace lumo::engine::flow {

enum ConditionField { kItem, kTest, kLowerValue, kUpperValue, kRangeForm };

/// Item codes, in the order of the dialog's list.
enum ConditionItem {
    kAspectRatio = 0,
    kWidth = 1,
    kHeight = 2,
    kTotalPixels = 3,
    kFirstCounterAToE = 4,  // to 8
    kImageBrightnessItem = 9,
    kBorderBrightnessItem = 10,
    kColoursUsed = 11,
    kFirstCounterFToJ = 12,  // to 16
};

std::span<const script::FieldSpec> ConditionFields();
std::string ConditionPanel(const script::Fields& fields);

/// True or false; none for an item or a test that does not exist.
std::optional<bool> EvaluateCondition(const CLumoscriptView& view, const script::Fields& fields);

/// True for the three items that are measured only when asked for. In one form of each command
/// their result goes to the other command's flag; old Scripts are built around it.
bool IsMeasuredItem(int item);

}  // namespace lumo::engine::flow
