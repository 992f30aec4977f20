#include "ui/text_controls.h"

#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "script/characters.h"
#include "ui/insert_info.h"

namespace lumo::ui {
namespace {

constexpr int kShownLines = 4;

}  // namespace

std::string Storable(const script::FieldSpec& spec, std::string text) {
    if (spec.quoted) {
        std::ranges::replace(text, '"', '\'');
    } else {
        std::erase_if(text, [](char c) { return c == '"' || c == ',' || c == '\r' || c == '\n'; });
    }
    return text;
}

std::string WithStoredBreaks(const script::FieldSpec& spec, std::string text) {
    if (spec.lineBreak.empty()) return text;
    std::string stored;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
        if (text[i] == '\r' || text[i] == '\n')
            stored += spec.lineBreak;
        else
            stored += text[i];
    }
    return stored;
}

TextControl::TextControl(const script::FieldSpec& spec, int field, QWidget* parent)
    : FieldControl(field, parent), spec_(spec), edit_(new QLineEdit) {
    auto* line = new QVBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(edit_);
    if (spec.takesMacros)
        line->addWidget(MakeInsertInfo([edit = edit_](const QString& macro) {
            edit->insert(macro);
            edit->setFocus();
        }));
    connect(edit_, &QLineEdit::textChanged, this, &FieldControl::Changed);
}

void TextControl::Load(const script::Fields& fields) {
    loaded_ = LoadedText(fields.Text(Field()));
    edit_->setText(loaded_.Shown());
    loaded_.SetShown(edit_->text());
    edit_->setCursorPosition(0);
    if (spec_.maxLength > 0) edit_->setMaxLength(loaded_.Limit(spec_.maxLength));
}

void TextControl::Store(std::span<std::string> texts) const {
    texts[static_cast<std::size_t>(Field())] = Storable(spec_, loaded_.Of(edit_->text()));
}

MultiLineControl::MultiLineControl(const script::FieldSpec& spec, int field, QWidget* parent)
    : FieldControl(field, parent), spec_(spec), edit_(new QPlainTextEdit) {
    auto* line = new QVBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(edit_);
    edit_->setTabChangesFocus(true);
    edit_->setMinimumHeight(edit_->fontMetrics().lineSpacing() * kShownLines);
    if (spec.takesMacros)
        line->addWidget(MakeInsertInfo([edit = edit_](const QString& macro) {
            edit->insertPlainText(macro);
            edit->setFocus();
        }));
    if (!spec.clearLabel.empty()) {
        auto* clear = new QPushButton(ToQt(spec.clearLabel));
        clear->setAutoDefault(false);
        line->addWidget(clear, 0, Qt::AlignLeft);
        // Not clear(): so that the user can undo it.
        connect(clear, &QPushButton::clicked, edit_, [this] {
            edit_->selectAll();
            edit_->insertPlainText({});
            edit_->setFocus();
        });
    }
    connect(edit_, &QPlainTextEdit::textChanged, this, &FieldControl::Changed);
}

void MultiLineControl::Load(const script::Fields& fields) {
    loaded_ = LoadedText(fields.Text(Field()));
    QString shown = loaded_.Shown();
    if (!spec_.lineBreak.empty()) shown.replace(ToQt(spec_.lineBreak), QString(QLatin1Char('\n')));
    edit_->setPlainText(shown);
    loaded_.SetShown(edit_->toPlainText());
}

void MultiLineControl::Store(std::span<std::string> texts) const {
    const QString now = edit_->toPlainText();
    std::string text = Storable(spec_, loaded_.Of(now));
    if (spec_.maxLength > 0 && now != loaded_.Shown())
        text = script::FirstCharacters(text, static_cast<std::size_t>(spec_.maxLength));
    texts[static_cast<std::size_t>(Field())] = WithStoredBreaks(spec_, std::move(text));
}

}  // namespace lumo::ui
