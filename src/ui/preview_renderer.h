#pragma once

#include <QImage>
#include <QObject>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "engine/command.h"

namespace lumo::ui {

/// What a form shows beside its fields.
struct PreviewPictures {
    QImage before;               // the sample, reduced to the frame
    QImage after;                // null: the command has nothing to show for these fields
    bool secondMissing = false;  // the second picture cannot be opened
};

/// Calculates previews on a thread of its own, so that typing never waits for one. Requests that
/// come while one is calculated replace each other: the last one counts.
class PreviewRenderer : public QObject {
    Q_OBJECT

  public:
    /// `sample` must outlive the renderer and not change meanwhile.
    PreviewRenderer(const engine::CLumoscriptView& view, const engine::Command& command,
                    imaging::ConstImageView sample);
    /// Waits for the calculation in hand.
    ~PreviewRenderer() override;

    /// The pictures for these fields, the sample fitted into a frame of that many pixels.
    void Request(imaging::Size frame, script::Fields fields);

    /// True for a command that can show what it does.
    static bool CanShow(const engine::Command& command);
    /// The size of the sample in a frame, its proportions kept.
    static imaging::Size Fit(imaging::Size sample, imaging::Size frame);

  Q_SIGNALS:
    void Ready(const lumo::ui::PreviewPictures& pictures);

  private:
    struct Job {
        imaging::Size frame;
        script::Fields fields;
    };

    void Work(const std::stop_token& stop);
    PreviewPictures Render(const Job& job);
    bool Reduce(imaging::Size frame);
    imaging::ConstImageView SecondPicture(const script::Fields& fields);

    const engine::CLumoscriptView& view_;
    const engine::Command& command_;
    imaging::ConstImageView sample_;

    // Of the thread.
    imaging::Image before_;
    std::string secondPath_;
    std::optional<platform::FileVersion> secondVersion_;
    imaging::Image second_;

    std::mutex mutex_;
    std::condition_variable_any wake_;
    std::optional<Job> next_;  // guarded by the mutex
    std::jthread thread_;      // the last member: it ends before the others
};

}  // namespace lumo::ui
