// An open file, and the book of open files that share modes are held by. The book also knows what open files
// have been extended by without being filled: the system gives room on its disks only as bytes are written, and
// what has been promised to one file must not be promised to another.
#pragma once

#include "platform/portable/handle_table.h"

#include <atomic>
#include <sys/types.h>

namespace zkr::platform {

struct FileIdentity {
    dev_t device = 0;
    ino_t node = 0;
    bool operator==(const FileIdentity&) const = default;
};

// What an open wants to do and what it allows others meanwhile, both as FILE_SHARE_ bits.
struct FileSharing {
    DWORD use = 0;
    DWORD allowed = 0;
};

struct OpenFile final : Object {
    static constexpr ObjectKind kind = ObjectKind::File;

    int descriptor = -1;
    FileIdentity identity;
    FileSharing sharing;
    bool booked = false;
    bool temporary = false;  // counts among the descriptors of temporary files
    bool positioned = false; // a file that has positions, unlike a pipe
    // The position is not the descriptor's, which a copy of the process would share.
    std::atomic<int64_t> position{0};
    std::atomic<int64_t> reached{0}; // no write below this makes the file longer
    uint64_t promised = 0;           // bytes that it may still fill, guarded by the book
    OpenFile* nextInBucket = nullptr;

    bool Reads() const { return (sharing.use & 1) != 0; }
    bool Writes() const { return (sharing.use & 2) != 0; }
    void Release() override; // strikes it out of the book and closes it
};

// Enters a file whose identity and sharing are filled in; false where an earlier open stands against it.
bool BookFile(OpenFile& file);
// Whether every open of the file allows its deletion.
bool MayDelete(const FileIdentity& identity);

// Whether the file's disk has room for the file at a length, beside what other files are still to fill.
bool PromiseRoom(OpenFile& file, uint64_t length);

// Temporary files take at most three quarters of the descriptors that the process may have; false beyond.
bool TakeTemporaryDescriptor();
void GiveTemporaryDescriptor();

} // namespace zkr::platform
