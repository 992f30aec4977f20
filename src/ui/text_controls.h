#pragma once

// Controls for texts, and what all controls with texts share.

#include <QLineEdit>
#include <QPlainTextEdit>
#include <algorithm>

#include "ui/field_control.h"
#include "ui/text.h"

namespace lumo::ui {

/// A stored text and what an edit shows of it. As long as the edit shows that, the field is the
/// stored text, also where its bytes are no UTF-8 or its line ends none of the edit's.
class LoadedText {
  public:
    LoadedText() = default;
    explicit LoadedText(std::string bytes) : bytes_(std::move(bytes)), shown_(ToQt(bytes_)) {}

    const QString& Shown() const { return shown_; }
    /// The edit may have changed the text when it took it over.
    void SetShown(const QString& shown) { shown_ = shown; }
    std::string Of(const QString& now) const { return now == shown_ ? bytes_ : FromQt(now); }
    /// The limit of an edit, never shorter than what it has to show.
    int Limit(int characters) const {
        return std::max(characters, static_cast<int>(shown_.size()));
    }

  private:
    std::string bytes_;
    QString shown_;
};

/// The text as a field can hold it. A quoted field holds no quotes: they become apostrophes, the
/// first and the last one too, which would swallow the fields behind. A field without quotes holds
/// no comma either.
std::string Storable(const script::FieldSpec& spec, std::string text);

class TextControl : public FieldControl {
    Q_OBJECT

  public:
    TextControl(const script::FieldSpec& spec, int field, QWidget* parent);

    void Load(const script::Fields& fields) override;
    void Store(std::span<std::string> texts) const override;
    QWidget* Buddy() override { return edit_; }
    void SetAccessibleLabel(const QString& name) override { edit_->setAccessibleName(name); }

    QLineEdit& Edit() { return *edit_; }

  private:
    const script::FieldSpec& spec_;
    QLineEdit* edit_;
    LoadedText loaded_;
};

/// The text with its line breaks, of whatever kind, as the field stores them; a field with a mark
/// of its own for them gets it also where nobody touched the text.
std::string WithStoredBreaks(const script::FieldSpec& spec, std::string text);

/// A text of several lines. Tab leaves it.
class MultiLineControl : public FieldControl {
    Q_OBJECT

  public:
    MultiLineControl(const script::FieldSpec& spec, int field, QWidget* parent);

    void Load(const script::Fields& fields) override;
    void Store(std::span<std::string> texts) const override;
    QWidget* Buddy() override { return edit_; }
    void SetAccessibleLabel(const QString& name) override { edit_->setAccessibleName(name); }

    QPlainTextEdit& Edit() { return *edit_; }

  private:
    const script::FieldSpec& spec_;
    QPlainTextEdit* edit_;
    LoadedText loaded_;
};

}  // namespace lumo::ui
