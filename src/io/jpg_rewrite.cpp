#include "io/jpg_rewrite.h"

#include <cerrno>

#include "imaging/last_error.h"
#include "platform/files.h"
#include "platform/system_error.h"

namespace lumo::io {
namespace {

using platform::AtomicFile;
using platform::Durability;
using platform::Result;
using platform::Status;

RewriteResult Failed(Rewrite outcome, const std::string& reason, int systemError = 0) {
    imaging::SetLastError(reason);
    return {outcome, systemError};
}

/// The whole copy beside the file, still under its temporary name.
Result<AtomicFile> WriteCopy(const std::string& path, const HeadChanges& changes) {
    const auto bytes = platform::ReadFile(path);
    if (!bytes) return platform::Error{bytes.Message()};
    const imaging::codecs::JpegHead head = imaging::codecs::ReadJpegHead(*bytes);
    if (!head.damage.empty()) return platform::PathError(path, head.damage);
    const auto newHead = SpliceJpegHead(head, changes(head));
    if (!newHead) return platform::PathError(path, newHead.Message());

    auto copy = AtomicFile::Create(path, platform::kRewriteName);
    if (!copy) return copy;
    copy->TakeAttributes(path);
    for (const auto part : {imaging::codecs::ByteView(*newHead), head.rest})
        if (Status written = copy->Write(part); !written) return platform::Error{written.Message()};
    if (Status finished = copy->Finish(Durability::Sync); !finished)
        return platform::Error{finished.Message()};
    return copy;
}

}  // namespace

RewriteResult RewriteJpegHeader(const std::string& path, const HeadChanges& changes) {
    if (!platform::GetFileStatus(path))
        return Failed(Rewrite::NotFound, platform::SystemError(path, ENOENT).message);
    if (Status replaceable = platform::CheckReplaceable(path); !replaceable)
        return Failed(Rewrite::NotReplaceable, replaceable.Message());
    auto copy = WriteCopy(path, changes);
    if (!copy) return Failed(Rewrite::NotCopied, copy.Message());
    if (const Status renamed = copy->Rename(Durability::Sync); !renamed)
        return Failed(Rewrite::NotRenamed, renamed.Message(), renamed.Reason().number);
    return {};
}

}  // namespace lumo::io
