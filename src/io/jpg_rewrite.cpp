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

RewriteResult Failed(Rewrite outcome, const platform::Error& reason) {
    imaging::SetLastError(reason.message);
    return {outcome, reason.number};
}

/// The whole copy beside the file, still under its temporary name.
Result<AtomicFile> WriteCopy(const std::string& path, const HeadChanges& changes) {
    const auto bytes = platform::ReadFile(path);
    if (!bytes) return bytes.Reason();
    const imaging::codecs::JpegHead head = imaging::codecs::ReadJpegHead(*bytes);
    if (!head.damage.empty()) return platform::PathError(path, head.damage);
    const auto newHead = SpliceJpegHead(head, changes(head));
    if (!newHead) return platform::PathError(path, newHead.Message());

    auto copy = AtomicFile::CreateAs(path, platform::kRewriteName);
    if (!copy) return copy;
    copy->TakeAttributes(path);
    for (const auto part : {imaging::codecs::ByteView(*newHead), head.rest})
        if (Status written = copy->Write(part); !written) return written.Reason();
    if (Status finished = copy->Finish(Durability::Sync); !finished) return finished.Reason();
    return copy;
}

}  // namespace

RewriteResult RewriteJpegHeader(const std::string& path, const HeadChanges& changes) {
    if (!platform::GetFileStatus(path))
        return Failed(Rewrite::NotFound, platform::SystemError(path, ENOENT));
    if (Status replaceable = platform::CheckReplaceable(path); !replaceable)
        return Failed(Rewrite::NotReplaceable, replaceable.Reason());
    auto copy = WriteCopy(path, changes);
    if (!copy) return Failed(Rewrite::NotCopied, copy.Reason());
    if (Status named = copy->GiveName(Durability::Sync); !named)
        return Failed(Rewrite::NotRenamed, named.Reason());
    return {};
}

}  // namespace lumo::io
