#include "ui/form_fields.h"

#include <QGroupBox>
#include <algorithm>
#include <cassert>
#include <utility>

#include "ui/number_control.h"
#include "ui/text.h"

namespace lumo::ui {
namespace {

enum Column { kLabel, kControl, kColumns };

constexpr int kMostColumns = 8;  // of labels and fields behind a switch

const script::DialogSpec kNoDialog;

const script::DialogSpec& DialogOf(const script::CommandSpec& spec) {
    return spec.dialog ? *spec.dialog : kNoDialog;
}

/// Without the colon and blanks that only part it from its control.
QString Spoken(QString label) {
    while (!label.isEmpty() && (label.back() == QLatin1Char(':') || label.back().isSpace()))
        label.chop(1);
    return label;
}

}  // namespace

FormFields::FormFields(const engine::CLumoscriptView& view, const script::CommandSpec& spec,
                       const script::Fields& fields, Mnemonics& mnemonics, QWidget* parent)
    : QWidget(parent),
      view_(view),
      spec_(spec),
      mnemonics_(mnemonics),
      grid_(new QGridLayout(this)) {
    grid_->setContentsMargins(0, 0, 0, 0);
    grid_->setColumnStretch(kControl, 1);
    const int count = static_cast<int>(spec.fields.size());
    for (int i = 0; i < count; ++i) {
        const script::FieldSpec& field = spec.fields[static_cast<std::size_t>(i)];
        const bool fixed = field.kind == script::FieldKind::Reserved && fields.IsEmpty(i);
        loaded_.push_back(fixed ? std::string(field.factory) : fields.Text(i));
    }
    for (int i = 0; i < count; ++i) {
        const script::FieldGroup* group = GroupOf(i);
        if (!group)
            AddLine(i);
        else if (group->fields.front() == i)
            AddGroup(*group);
    }
    AddFollow();
    AddNotes();
    grid_->setRowStretch(grid_->rowCount(), 1);
    for (const Line& line : lines_) {
        line.control->Load(fields);
        Bind(line);
        connect(line.control, &FieldControl::Changed, this, [this, line] {
            Bind(line);
            if (updating_) return;
            Update();
            Q_EMIT Changed();
        });
    }
    Update();
}

std::vector<std::string> FormFields::Texts() const {
    std::vector<std::string> texts = loaded_;
    for (const Line& line : lines_) line.control->Store(texts);
    return texts;
}

void FormFields::Settle() {
    for (const Line& line : lines_) line.control->Settle();
}

FieldControl* FormFields::Control(int field) const {
    const Line* line = LineOf(field);
    return line ? line->control : nullptr;
}

QLabel* FormFields::LabelOf(int field) const {
    const Line* line = LineOf(field);
    return line ? line->label : nullptr;
}

FieldControl* FormFields::Make(int field, ControlSize size) {
    FieldControl* control = MakeFieldControl(view_, spec_.fields, field, size, this);
    if (!control) return nullptr;
    if (!control->NeedsLabel()) control->SetLabel(mnemonics_.Mark(LabelText(field)));
    control->SetAccessibleLabel(Spoken(LabelText(field)));
    return control;
}

void FormFields::Bind(const Line& line) {
    line.control->setFocusProxy(line.control->Buddy());
    if (line.label) line.label->setBuddy(line.control->Buddy());
}

void FormFields::AddLine(int field) {
    FieldControl* control = Make(field, ControlSize::Line);
    if (!control) return;
    const int row = grid_->rowCount();
    Line line{.control = control};
    if (control->NeedsLabel()) {
        line.label = new QLabel(mnemonics_.Mark(LabelText(field)));
        const bool tall = control->sizeHint().height() > 2 * line.label->sizeHint().height();
        grid_->addWidget(line.label, row, kLabel, tall ? Qt::AlignTop : Qt::AlignVCenter);
        grid_->addWidget(control, row, kControl);
    } else {
        grid_->addWidget(control, row, kLabel, 1, kColumns);
    }
    lines_.push_back(line);
}

void FormFields::AddGroup(const script::FieldGroup& group) {
    if (group.switched)
        AddSwitchedGroup(group);
    else
        AddGrid(group);
}

void FormFields::AddSwitchedGroup(const script::FieldGroup& group) {
    // Such lines that follow one another share a grid, so that their fields stand in columns.
    if (!switched_ || grid_->itemAt(grid_->count() - 1)->widget() != switched_) {
        switched_ = new QWidget;
        auto* fresh = new QGridLayout(switched_);
        fresh->setContentsMargins(0, 0, 0, 0);
        fresh->setColumnStretch(kMostColumns, 1);
        grid_->addWidget(switched_, grid_->rowCount(), kLabel, 1, kColumns);
    }
    auto* cells = static_cast<QGridLayout*>(switched_->layout());
    const int row = cells->rowCount();
    const int lead = group.fields.front();
    FieldControl* box = Make(lead, ControlSize::Cell);
    cells->addWidget(box, row, 0);
    lines_.push_back({.control = box});
    int column = 1;
    for (const int field : group.fields.subspan(1)) {
        FieldControl* control = Make(field, ControlSize::Cell);
        assert(control);  // groups hold no reserved fields
        control->SetAccessibleLabel(Spoken(LabelText(lead)) + QStringLiteral(": ") +
                                    Spoken(LabelText(field)));
        lines_.push_back({.control = control, .label = AddCell(*cells, row, column, control)});
        column += 2;
    }
}

void FormFields::AddGrid(const script::FieldGroup& group) {
    QWidget* box = group.title.empty() ? new QWidget : new QGroupBox(Literally(ToQt(group.title)));
    auto* cells = new QGridLayout(box);
    if (group.title.empty()) cells->setContentsMargins(0, 0, 0, 0);
    const int columns = std::max(1, group.columns);
    const QString title = Spoken(ToQt(group.title));
    int place = 0;
    for (const int field : group.fields) {
        FieldControl* control = Make(field, ControlSize::Cell);
        const int row = place / columns, column = place % columns;
        ++place;
        lines_.push_back({.control = control, .label = AddCell(*cells, row, 2 * column, control)});
        if (!control->NeedsLabel()) continue;
        QString name = Spoken(LabelText(field));
        if (name.isEmpty()) name = QStringLiteral("row %1, column %2").arg(row + 1).arg(column + 1);
        control->SetAccessibleLabel(title.isEmpty() ? name : title + QStringLiteral(": ") + name);
    }
    cells->setColumnStretch(2 * columns, 1);
    grid_->addWidget(box, grid_->rowCount(), kLabel, 1, kColumns);
}

QLabel* FormFields::AddCell(QGridLayout& cells, int row, int column, FieldControl* control) {
    cells.addWidget(control, row, column + 1);
    const QString text = LabelText(control->Field());
    if (!control->NeedsLabel() || text.isEmpty()) return nullptr;
    auto* label = new QLabel(Literally(text));
    cells.addWidget(label, row, column, Qt::AlignRight | Qt::AlignVCenter);
    return label;
}

void FormFields::AddFollow() {
    const script::Follow& follow = DialogOf(spec_).follow;
    if (follow.leader < 0) return;
    follow_ = new QCheckBox(mnemonics_.Mark(ToQt(follow.label)));
    follow_->setAccessibleName(ToQt(follow.label));
    grid_->addWidget(follow_, grid_->rowCount(), kControl);
    connect(follow_, &QCheckBox::toggled, this, [this] {
        Update();
        Q_EMIT Changed();
    });
}

void FormFields::AddNotes() {
    for (const std::string_view note : DialogOf(spec_).notes) {
        auto* label = new QLabel(Literally(ToQt(note)));
        label->setWordWrap(true);
        notes_.push_back(label);
        grid_->addWidget(label, grid_->rowCount(), kLabel, 1, kColumns);
    }
    if (!DialogOf(spec_).line) return;
    noteLine_ = new QLineEdit;
    noteLine_->setReadOnly(true);
    if (!notes_.empty()) noteLine_->setAccessibleName(Spoken(notes_.back()->text()));
    grid_->addWidget(noteLine_, grid_->rowCount(), kLabel, 1, kColumns);
}

const script::FieldGroup* FormFields::GroupOf(int field) const {
    for (const script::FieldGroup& group : DialogOf(spec_).groups)
        if (std::ranges::find(group.fields, field) != group.fields.end()) return &group;
    return nullptr;
}

const FormFields::Line* FormFields::LineOf(int field) const {
    for (const Line& line : lines_)
        if (field >= line.control->Field() &&
            field < line.control->Field() + line.control->FieldCount())
            return &line;
    return nullptr;
}

QString FormFields::LabelText(int field) const {
    return ToQt(spec_.fields[static_cast<std::size_t>(field)].label);
}

void FormFields::Update() {
    updating_ = true;
    UpdateFollowers();
    const std::vector<std::string> texts = Texts();
    UpdateRanges(texts);
    UpdateSwitched(texts);
    UpdateVisible(texts);
    UpdateNotes(texts);
    updating_ = false;
}

void FormFields::UpdateRanges(const std::vector<std::string>& texts) {
    for (const Line& line : lines_) {
        const script::FieldSpec& spec =
            spec_.fields[static_cast<std::size_t>(line.control->Field())];
        if (spec.whenField < 0) continue;
        if (texts[static_cast<std::size_t>(spec.whenField)] == spec.whenText)
            line.control->SetRange(spec.whenLow, spec.whenHigh);
        else
            line.control->SetRange(spec.low, spec.high);
    }
}

void FormFields::UpdateVisible(const std::vector<std::string>& texts) {
    for (const script::ShownWhen& rule : DialogOf(spec_).shownWhen) {
        const Line* line = LineOf(rule.field);
        if (!line) continue;
        const bool shown = texts[static_cast<std::size_t>(rule.whenField)] == rule.text;
        line->control->setVisible(shown);
        if (line->label) line->label->setVisible(shown);
    }
}

void FormFields::UpdateNotes(const std::vector<std::string>& texts) {
    if (noteLine_)
        noteLine_->setText(ToQt(
            DialogOf(spec_).line(script::ReadParams(spec_, script::WriteParams(spec_, texts)))));
    const script::ShownWhen& rule = DialogOf(spec_).notesWhen;
    if (rule.whenField < 0) return;
    for (QLabel* note : notes_)
        note->setVisible(texts[static_cast<std::size_t>(rule.whenField)] == rule.text);
}

void FormFields::UpdateFollowers() {
    const script::Follow& follow = DialogOf(spec_).follow;
    if (!follow_) return;
    auto* leader = dynamic_cast<NumberControl*>(Control(follow.leader));
    for (const int field : follow.followers) {
        auto* follower = dynamic_cast<NumberControl*>(Control(field));
        if (!leader || !follower) continue;
        follower->setEnabled(!follow_->isChecked());
        if (follow_->isChecked()) follower->Edit().SetValue(leader->Edit().Value());
    }
}

void FormFields::UpdateSwitched(const std::vector<std::string>& texts) {
    for (const script::FieldGroup& group : DialogOf(spec_).groups) {
        if (!group.switched || group.fields.empty()) continue;
        const auto lead = static_cast<std::size_t>(group.fields.front());
        for (const int field : group.fields.subspan(1)) {
            const Line* line = LineOf(field);
            if (!line) continue;
            const bool on = texts[lead] == spec_.fields[lead].on;
            line->control->setEnabled(on);
            if (line->label) line->label->setEnabled(on);
        }
    }
}

}  // namespace lumo::ui
