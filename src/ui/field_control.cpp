#include "ui/field_control.h"

#include "ui/choice_controls.h"
#include "ui/colour_control.h"
#include "ui/number_control.h"
#include "ui/path_control.h"
#include "ui/text_controls.h"

namespace lumo::ui {

FieldControl* MakeFieldControl(const engine::CLumoscriptView& view,
                               std::span<const script::FieldSpec> specs, int field,
                               ControlSize size, QWidget* parent) {
    using script::FieldKind;
    const auto index = static_cast<std::size_t>(field);
    const script::FieldSpec& spec = specs[index];
    switch (spec.kind) {
        case FieldKind::Integer:
        case FieldKind::Real:
            return new NumberControl(spec, field, size, parent);
        case FieldKind::Flag:
            return new FlagControl(spec, field, parent);
        case FieldKind::Choice:
            return new ChoiceControl(spec, field, size, parent);
        case FieldKind::Text:
            if (spec.multiLine) return new MultiLineControl(spec, field, parent);
            return new TextControl(spec, field, parent);
        case FieldKind::Path:
        case FieldKind::Folder:
            return new PathControl(view, spec, field, parent);
        case FieldKind::Red:
            return new ColourControl(specs.subspan(index, 3), field, parent);
        case FieldKind::Green:  // with red
        case FieldKind::Blue:
        case FieldKind::Reserved:
            return nullptr;
    }
    return nullptr;
}

}  // namespace lumo::ui
