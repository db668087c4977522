// The defaults that the library keeps for each calling thread. The record of a thread is made when a function
// first needs it and released when the thread ends; a thread whose record cannot be made shares one static
// record of zeroes.
#pragma once

#include "zkr13n/files.h"
#include "zkr13n/frame.h"

#include <cstddef>
#include <cstdint>
#include <new>

namespace zkr {

// The functions through which bitmap files are reached.
struct FileVector {
    decltype(&Z_OsOpen) Open;
    decltype(&Z_OsRead) Read;
    decltype(&Z_OsWrite) Write;
    decltype(&Z_OsSeek) Seek;
    decltype(&Z_OsClose) Close;
};

// Things that other rooms keep for a thread, found by the address of what describes their kind.
struct AttachmentKind {
    size_t Bytes;
    void (*Make)(void* memory); // the memory is zeroed
    void (*Release)(void* data);
};
struct ThreadAttachment {
    const AttachmentKind* Kind; // null for none
    void* Data;
};
inline constexpr size_t MostAttachments = 8; // of a thread, one for each kind there is

// The row that is expected to be read after the one in a buffer.
struct RowAhead {
    const void* Buffer;
    uintptr_t Next;
};

struct ThreadSettings {
    uint32_t* MatchTable; // the thread's current colour match table, owned by whoever set it
    FileVector File;
    int32_t DefaultDithering;
    int32_t DefaultXResolution;
    int32_t DefaultYResolution;
    int32_t DefaultMemoryType;
    int32_t MaxConventionalSize;
    int32_t MemoryReserve;
    int32_t TileSize;
    int32_t ConventionalTiles;
    int32_t MappedTiles;
    char TempDirectory[260];
    ::StatusCallback StatusCallback;
    intptr_t StatusUserData;
    ::StatusCallback CopyStatusCallback;
    intptr_t CopyStatusUserData;
    uint32_t HotKeyState;
    ::SubstituteFontCallback SubstituteFontCallback;
    intptr_t SubstituteFontUserData;
    const uint8_t* CapabilityLocks;
    char* TokenRest; // where Z_Strtok goes on
    RowAhead Ahead;

    ThreadAttachment Attachments[MostAttachments];
};

// The record of the calling thread, or the static record; never fails.
ThreadSettings& CurrentThreadSettings();

// Whether the record is the shared static one, where nothing can be attached.
bool IsFallbackRecord(const ThreadSettings& settings);

// The calling thread's thing of a kind, made when it is first asked for and released when the thread ends; null where
// memory is short or the thread has no record of its own.
void* AttachmentOf(const AttachmentKind& kind);

// The calling thread's T, likewise. T is made without arguments and has members that are zero unless told otherwise.
template <typename T> T* OfThread() {
    static constexpr AttachmentKind kind = {sizeof(T), [](void* memory) { new (memory) T(); },
                                            [](void* data) { static_cast<T*>(data)->~T(); }};
    return static_cast<T*>(AttachmentOf(kind));
}

// The match table that colour resolution finds and leaves for the calling thread.
uint32_t* CurrentMatchTable();
uint32_t* SwapMatchTable(uint32_t* table); // returns the table that stood there before

// Releases the calling thread's record and stops the library. Whoever needs a record next starts it again.
void ShutDown();

} // namespace zkr
