#include "ui/path_control.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>

#include "platform/paths.h"
#include "ui/desk.h"
#include "ui/list_editor.h"
#include "ui/text.h"

namespace lumo::ui {

PathControl::PathControl(const engine::CLumoscriptView& view, const script::FieldSpec& spec,
                         int field, QWidget* parent)
    : FieldControl(field, parent),
      view_(view),
      spec_(spec),
      edit_(new QLineEdit),
      button_(new QPushButton(QStringLiteral("Browse..."))) {
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(edit_, 1);
    line->addWidget(button_);
    button_->setAutoDefault(false);
    if (spec_.fileFilter.find("*.lst") != std::string_view::npos) {
        auto* edit = new QPushButton(QStringLiteral("Edit..."));
        edit->setAutoDefault(false);
        edit->setAccessibleName(QStringLiteral("Edit the Image list..."));
        line->addWidget(edit);
        connect(edit, &QPushButton::clicked, this, &PathControl::EditList);
    }
    edit_->setMinimumWidth(edit_->fontMetrics().averageCharWidth() * 24);
    connect(edit_, &QLineEdit::textChanged, this, [this](const QString& text) {
        edit_->setToolTip(text);  // it is often longer than the edit
        Q_EMIT Changed();
    });
    connect(button_, &QPushButton::clicked, this, &PathControl::Browse);
}

void PathControl::Load(const script::Fields& fields) {
    loaded_ = LoadedText(fields.Text(Field()));
    edit_->setText(loaded_.Shown());
    edit_->setCursorPosition(0);
    if (spec_.maxLength > 0) edit_->setMaxLength(loaded_.Limit(spec_.maxLength));
}

void PathControl::Store(std::span<std::string> texts) const {
    texts[static_cast<std::size_t>(Field())] = Storable(spec_, loaded_.Of(edit_->text()));
}

void PathControl::SetAccessibleLabel(const QString& name) {
    edit_->setAccessibleName(name);
    button_->setAccessibleName(name + QStringLiteral(": Browse..."));
}

void PathControl::Browse() {
    const QString title =
        spec_.browseTitle.empty() ? edit_->accessibleName() : ToQt(spec_.browseTitle);
    const QString chosen =
        spec_.kind == script::FieldKind::Folder
            ? QFileDialog::getExistingDirectory(this, title, StartPath())
            : QFileDialog::getOpenFileName(
                  this, title, StartPath(),
                  FileFilter(spec_.fileFilter.empty() ? kPictureFilter : spec_.fileFilter));
    if (!chosen.isEmpty()) edit_->setText(chosen);
}

std::string PathControl::NativePath() const {
    return platform::ParsePath(FromQt(edit_->text()), view_.settings.installFolder,
                               view_.settings.folders.temp);
}

/// A path that is stated with tokens, or in the other spelling, stays as it stands.
void PathControl::EditList() {
    const std::string before = NativePath();
    const auto edited = EditImageList(window(), view_, before);
    if (edited && *edited != before) edit_->setText(ToQt(*edited));
}

QString PathControl::StartPath() const {
    const std::string native = NativePath();
    if (!native.empty() && QFileInfo::exists(ToQt(native))) return ToQt(native);
    const std::string folder = platform::GetFolderPath(native);
    if (!folder.empty() && QFileInfo::exists(ToQt(folder))) return ToQt(folder);
    return ToQt(view_.settings.folders.photos);
}

}  // namespace lumo::ui
