#include "ui/command_form.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>
#include <ctime>
#include <utility>

#include "engine/editing.h"
#include "io/parse_line.h"
#include "script/catalogue.h"
#include "ui/dialog_placement.h"
#include "ui/text.h"

namespace lumo::ui {
namespace {

constexpr int kSettleMilliseconds = 1000;
constexpr int kPreviewMilliseconds = 60;  // joins what a key press or a drag changes at once
constexpr double kScreenShare = 0.8;

imaging::ConstImageView SampleOf(const engine::CLumoscriptView& view) {
    return view.run.batchRunning ? view.sample.left.View() : view.working.main.View();
}

/// What macros stand for on the sample. During a batch run names and counters belong to the worker.
io::MacroValues SampleMacros(const engine::CLumoscriptView& view) {
    io::MacroValues values{.dateFormat = view.settings.dateFormat,
                           .filePath = "$(filepath)",
                           .fileName = "$(filename)",
                           .fileTitle = "$(filetitle)",
                           .size = SampleOf(view).Extent(),
                           .now = std::time(nullptr)};
    if (view.run.batchRunning) return values;
    values.counters = view.counters;
    const std::string& path = view.sample.path;
    if (path.empty()) return values;
    values.filePath = path;
    values.fileName = path.substr(path.rfind('/') + 1);
    values.fileTitle = values.fileName.substr(0, values.fileName.rfind('.'));
    return values;
}

std::string_view WindowStateOf(const engine::Command& command) {
    return command.spec.dialog ? command.spec.dialog->windowState : std::string_view();
}

bool KeepsDefault(const engine::Command& command) {
    const script::CatalogueRow* row = script::FindByName(command.spec.name);
    return row && !row->defaultsKey.empty();
}

bool Confirms(QWidget& parent, std::string_view question) {
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Lumoscript"), ToQt(question),
                    QMessageBox::Yes | QMessageBox::No, &parent);
    box.setTextFormat(Qt::PlainText);
    return box.exec() == QMessageBox::Yes;
}

/// As large as its contents, up to most of the screen.
class FieldScroll : public QScrollArea {
  public:
    QSize sizeHint() const override {
        const QSize most = screen()->availableSize() * kScreenShare;
        return widget()->sizeHint().grownBy({0, 0, BarWidth(), 0}).boundedTo(most);
    }
    QSize minimumSizeHint() const override {
        return {widget()->minimumSizeHint().width() + BarWidth(),
                std::min(widget()->minimumSizeHint().height(), fontMetrics().lineSpacing() * 8)};
    }

  private:
    int BarWidth() const { return verticalScrollBar()->sizeHint().width(); }
};

}  // namespace

CommandForm::CommandForm(engine::CLumoscriptView& view, const engine::Command& command,
                         const std::string& params, QWidget* parent)
    : QDialog(parent), view_(view), command_(command) {
    const script::DialogSpec* dialog = command.spec.dialog;
    setWindowTitle(ToQt(dialog ? dialog->title : command.spec.name));
    setSizeGripEnabled(true);

    Mnemonics mnemonics(QStringLiteral("ocd"));
    fields_ = new FormFields(view, command.spec, ReadParams(command.spec, params), mnemonics);
    auto* lines = new QVBoxLayout(this);
    auto* body = new QHBoxLayout;
    lines->addLayout(body, 1);
    const imaging::ConstImageView sample = SampleOf(view);
    const bool hasPreview = PreviewRenderer::CanShow(command) && !sample.IsEmpty();
    body->addWidget(MakeScrolled(fields_), hasPreview ? 0 : 1);
    if (hasPreview) {
        preview_ = new PreviewArea(sample.Extent());
        body->addWidget(preview_, 1);
    }
    lines->addWidget(MakeButtons());

    settleTimer_.setSingleShot(true);
    settleTimer_.setInterval(kSettleMilliseconds);
    connect(&settleTimer_, &QTimer::timeout, fields_, &FormFields::Settle);
    connect(fields_, &FormFields::Changed, &settleTimer_, qOverload<>(&QTimer::start));
    if (hasPreview) StartPreview(sample);
    RestorePlacement(*this, view.settings, WindowStateOf(command));
}

CommandForm::~CommandForm() {
    // While it hides, the edit with the focus settles and starts the timers.
    hide();
}

std::string CommandForm::Params() const {
    return WriteParams(command_.spec, fields_->Texts());
}

void CommandForm::accept() {
    fields_->Settle();
    const script::DialogSpec* dialog = command_.spec.dialog;
    if (dialog && dialog->question) {
        const std::string_view question = dialog->question(ReadParams(command_.spec, Params()));
        if (!question.empty() && !Confirms(*this, question)) return;
    }
    SavePlacement(*this, view_.settings, WindowStateOf(command_));
    QDialog::accept();
}

QWidget* CommandForm::MakeScrolled(QWidget* fields) {
    auto* scroll = new FieldScroll;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidget(fields);
    scroll->setVisible(!fields_->IsEmpty());
    return scroll;
}

QWidget* CommandForm::MakeButtons() {
    auto* row = new QWidget;
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    default_ = new QCheckBox(QStringLiteral("&Default"));
    default_->setToolTip(QStringLiteral("New commands of this kind begin with these values"));
    default_->setVisible(KeepsDefault(command_));
    line->addWidget(default_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("&OK"));
    buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("&Cancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &CommandForm::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CommandForm::reject);
    line->addWidget(buttons, 1);
    return row;
}

void CommandForm::StartPreview(imaging::ConstImageView sample) {
    renderer_ = std::make_unique<PreviewRenderer>(view_, command_, sample);
    connect(renderer_.get(), &PreviewRenderer::Ready, this, &CommandForm::ShowPreview);
    previewTimer_.setSingleShot(true);
    previewTimer_.setInterval(kPreviewMilliseconds);
    connect(&previewTimer_, &QTimer::timeout, this, &CommandForm::RequestPreview);
    // Not started anew by each change: a slider that is dragged shows its way.
    const auto schedule = [this] {
        if (!previewTimer_.isActive()) previewTimer_.start();
    };
    connect(fields_, &FormFields::Changed, this, schedule);
    connect(preview_, &PreviewArea::FrameSizeChanged, this, schedule);
}

void CommandForm::RequestPreview() {
    script::Fields fields = ReadParams(command_.spec, Params());
    const auto specs = command_.spec.fields;
    for (std::size_t i = 0; i < specs.size(); ++i) {
        if (!specs[i].takesMacros) continue;
        const int field = static_cast<int>(i);
        fields.Set(field, io::ParseLine(fields.Text(field), SampleMacros(view_)));
    }
    renderer_->Request(preview_->Before().FrameSize(), std::move(fields));
}

void CommandForm::ShowPreview(const PreviewPictures& pictures) {
    preview_->Before().Show(pictures.before);
    if (pictures.secondMissing)
        preview_->After().Show(QStringLiteral("The second picture cannot be opened."));
    else
        preview_->After().Show(pictures.after);
}

bool EditParameters(QWidget* parent, engine::CLumoscriptView& view, const engine::Command& command,
                    std::string& params) {
    bool makeDefault = false;
    if (!EditParameters(parent, view, command, params, makeDefault)) return false;
    if (makeDefault) engine::SetDefaultParams(view, command.spec.name, params);
    return true;
}

bool EditParameters(QWidget* parent, engine::CLumoscriptView& view, const engine::Command& command,
                    std::string& params, bool& makeDefault) {
    CommandForm form(view, command, params, parent);
    if (form.exec() != QDialog::Accepted) return false;
    params = form.Params();
    makeDefault = form.MakesDefault();
    return true;
}

}  // namespace lumo::ui
