// An open file, and the book of open files that share modes are held by.
#pragma once

#include "platform/portable/handle_table.h"

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
    OpenFile* nextInBucket = nullptr;

    bool Reads() const { return (sharing.use & 1) != 0; }
    bool Writes() const { return (sharing.use & 2) != 0; }
    void Release() override; // strikes it out of the book and closes it
};

// Enters a file whose identity and sharing are filled in; false where an earlier open stands against it.
bool BookFile(OpenFile& file);
// Whether every open of the file allows its deletion.
bool MayDelete(const FileIdentity& identity);

} // namespace zkr::platform
