// The book of open files: a hash by identity under one lock.
#include "platform/portable/open_file.h"

#include "platform/portable/files.h"
#include "platform/portable/fork.h"

#include <algorithm>
#include <mutex>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace zkr::platform {

namespace {

constexpr size_t BucketCount = 256;
constinit std::mutex mutex;
const ForkPart forkPart(
    ForkOrder::Inner, [] { mutex.lock(); }, [](bool) { mutex.unlock(); });
constinit OpenFile* buckets[BucketCount] = {};
constinit uint64_t promises = 0; // of all files in the book, whatever their disks
constinit std::atomic<uint64_t> temporaryDescriptors{0};

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

uint64_t Unfilled(const struct stat& status, uint64_t length) {
    const auto filled = static_cast<uint64_t>(status.st_blocks) * 512;
    return length - std::min(length, filled);
}

void SetPromise(OpenFile& file, uint64_t bytes) {
    promises += bytes - file.promised;
    file.promised = bytes;
}

// What the other files of a disk are still to fill, looked up again. Under the lock.
uint64_t PromisesBeside(const OpenFile& file) {
    uint64_t sum = 0;
    for (OpenFile* open : buckets) {
        for (; open != nullptr; open = open->nextInBucket) {
            struct stat status;
            if (open->promised == 0 || open == &file || open->identity.device != file.identity.device)
                continue;
            if (fstat(open->descriptor, &status) == 0)
                SetPromise(*open, Unfilled(status, static_cast<uint64_t>(status.st_size)));
            sum += open->promised;
        }
    }
    return sum;
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
        SetPromise(*this, 0);
    }
    if (descriptor >= 0) close(descriptor);
    if (temporary) GiveTemporaryDescriptor();
    delete this;
}

bool PromiseRoom(OpenFile& file, uint64_t length) {
    struct stat status;
    struct statvfs disk;
    if (fstat(file.descriptor, &status) != 0 || fstatvfs(file.descriptor, &disk) != 0) return true;
    if (disk.f_blocks == 0) return true; // of no known size
    const uint64_t room = uint64_t{disk.f_bavail} * disk.f_frsize;
    const uint64_t wanted = Unfilled(status, length);

    const std::scoped_lock lock(mutex);
    if (wanted > room || (promises - file.promised > room - wanted && PromisesBeside(file) > room - wanted))
        return false;
    SetPromise(file, wanted);
    return true;
}

bool TakeTemporaryDescriptor() {
    rlimit limit;
    const uint64_t count = temporaryDescriptors.fetch_add(1) + 1;
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || count <= limit.rlim_cur / 4 * 3) return true;
    GiveTemporaryDescriptor();
    return false;
}

void GiveTemporaryDescriptor() {
    temporaryDescriptors.fetch_sub(1);
}

} // namespace zkr::platform
