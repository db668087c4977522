// The book of open files: a hash by identity under one lock.
#include "platform/portable/open_file.h"

#include "platform/portable/files.h"

#include <mutex>
#include <unistd.h>

namespace zkr::platform {

namespace {

constexpr size_t BucketCount = 256;
constinit std::mutex mutex;
constinit OpenFile* buckets[BucketCount] = {};

OpenFile*& Bucket(const FileIdentity& identity) {
    return buckets[(identity.node ^ (identity.node >> 8)) % BucketCount];
}

bool Allows(const FileSharing& first, const FileSharing& second) {
    return (second.use & ~first.allowed) == 0 && (first.use & ~second.allowed) == 0;
}

// Under the lock.
bool AllAllow(const FileIdentity& identity, const FileSharing& sharing) {
    for (const OpenFile* open = Bucket(identity); open != nullptr; open = open->nextInBucket) {
        if (open->identity == identity && !Allows(open->sharing, sharing)) return false;
    }
    return true;
}

} // namespace

bool BookFile(OpenFile& file) {
    const std::scoped_lock lock(mutex);
    if (!AllAllow(file.identity, file.sharing)) return false;
    OpenFile*& bucket = Bucket(file.identity);
    file.nextInBucket = bucket;
    bucket = &file;
    file.booked = true;
    return true;
}

bool MayDelete(const FileIdentity& identity) {
    const std::scoped_lock lock(mutex);
    return AllAllow(identity, {FILE_SHARE_DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE});
}

void OpenFile::Release() {
    if (booked) {
        const std::scoped_lock lock(mutex);
        OpenFile** link = &Bucket(identity);
        while (*link != this)
            link = &(*link)->nextInBucket;
        *link = nextInBucket;
    }
    if (descriptor >= 0) close(descriptor);
    delete this;
}

} // namespace zkr::platform
