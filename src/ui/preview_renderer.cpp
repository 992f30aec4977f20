#include "ui/preview_renderer.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "imaging/resample.h"
#include "io/input.h"
#include "platform/paths.h"
#include "ui/display_picture.h"

namespace lumo::ui {

using imaging::ConstImageView, imaging::Image, imaging::Size;

PreviewRenderer::PreviewRenderer(const engine::CLumoscriptView& view,
                                 const engine::Command& command, ConstImageView sample)
    : view_(view),
      command_(command),
      sample_(sample),
      thread_([this](const std::stop_token& stop) { Work(stop); }) {}

PreviewRenderer::~PreviewRenderer() = default;

void PreviewRenderer::Request(Size frame, script::Fields fields) {
    {
        const std::lock_guard lock(mutex_);
        next_ = Job{frame, std::move(fields)};
    }
    wake_.notify_one();
}

bool PreviewRenderer::CanShow(const engine::Command& command) {
    return command.preview != nullptr || command.overlayPreview != nullptr;
}

Size PreviewRenderer::Fit(Size sample, Size frame) {
    const std::int64_t width = sample.width, height = sample.height;
    // As wide as the frame, unless it would be too high then.
    Size fit{frame.width,
             static_cast<int>(frame.width * height / std::max<std::int64_t>(1, width))};
    if (fit.height > frame.height)
        fit = {static_cast<int>(frame.height * width / std::max<std::int64_t>(1, height)),
               frame.height};
    return {std::max(1, fit.width), std::max(1, fit.height)};
}

void PreviewRenderer::Work(const std::stop_token& stop) {
    for (;;) {
        Job job;
        {
            std::unique_lock lock(mutex_);
            if (!wake_.wait(lock, stop, [this] { return next_.has_value(); })) return;
            job = *std::exchange(next_, std::nullopt);
        }
        const PreviewPictures pictures = Render(job);
        if (stop.stop_requested()) return;
        QMetaObject::invokeMethod(
            this, [this, pictures] { Q_EMIT Ready(pictures); }, Qt::QueuedConnection);
    }
}

PreviewPictures PreviewRenderer::Render(const Job& job) {
    if (sample_.IsEmpty() || job.frame.IsEmpty() || !Reduce(job.frame)) return {};
    PreviewPictures pictures{.before = ToQImage(before_.View())};
    const ConstImageView before = std::as_const(before_).View();
    if (command_.overlayPreview) {
        const ConstImageView second = SecondPicture(job.fields);
        pictures.secondMissing = second.IsEmpty();
        pictures.after =
            ToQImage(command_.overlayPreview(before, sample_.Extent(), second, job.fields).View());
    } else if (command_.preview) {
        pictures.after = ToQImage(command_.preview(before, sample_.Extent(), job.fields).View());
    }
    return pictures;
}

bool PreviewRenderer::Reduce(Size frame) {
    const Size size = Fit(sample_.Extent(), frame);
    if (before_.Extent() == size) return true;
    before_.Reset();
    auto reduced = Image::TryCreate(size);
    if (!reduced ||
        !imaging::ResizeImage(sample_, reduced->View(), imaging::ResampleFilter::Bilinear))
        return false;
    before_ = std::move(*reduced);
    return true;
}

ConstImageView PreviewRenderer::SecondPicture(const script::Fields& fields) {
    std::string path =
        platform::ParsePath(fields.Text(command_.secondField), view_.settings.installFolder,
                            view_.settings.folders.temp);
    const auto version = platform::GetFileVersion(path);
    if (path != secondPath_ || version != secondVersion_) {
        second_.Reset();
        if (auto decoded = io::OpenImageFile(view_, path)) second_ = std::move(decoded->image);
        secondPath_ = std::move(path);
        secondVersion_ = version;
    }
    return std::as_const(second_).View();
}

}  // namespace lumo::ui
