// Finds a block by its address without reading what lies there: a hash of nodes that their owners embed, so
// that adding never fails. The hash is cut into shards with a lock each, by regions of the address space: what
// a thread allocates lies together, so that threads seldom meet at a shard.
#pragma once

#include "platform/portable/latch.h"

#include <cstddef>
#include <cstdint>
#include <mutex>

namespace zkr::platform {

struct AddressNode {
    const void* address = nullptr;
    AddressNode* nextInBucket = nullptr;
};

class AddressIndex {
  public:
    void Add(AddressNode& node) { ShardOf(node.address).Add(node); }
    void Remove(AddressNode& node) { ShardOf(node.address).Remove(node); }
    // Calls visit(node) under the lock for one node of this address; whether there was one.
    template <typename Visit> bool Find(const void* address, Visit visit) {
        Shard& shard = ShardOf(address);
        const std::scoped_lock lock(shard.Lock);
        AddressNode* node = shard.Look(address);
        if (node != nullptr) visit(*node);
        return node != nullptr;
    }
    // Finds and removes in one step, so that of two callers only one gets the node.
    AddressNode* Take(const void* address) { return ShardOf(address).Take(address); }

    // Holds off everybody, while the process is copied.
    void LockAll();
    void UnlockAll();

  private:
    static constexpr size_t ShardCount = 64;
    static constexpr size_t SmallCount = 16;

    class alignas(64) Shard {
      public:
        Latch Lock;

        void Add(AddressNode& node);
        void Remove(AddressNode& node);
        AddressNode* Take(const void* address);
        AddressNode* Look(const void* address); // under the lock

      private:
        AddressNode** Bucket(const void* address);
        void Unlink(AddressNode& node);
        void Spread(AddressNode** buckets, size_t count);

        size_t count_ = 0;
        size_t bucketCount_ = SmallCount;
        AddressNode** buckets_ = nullptr; // the larger array, while there is one
        AddressNode* small_[SmallCount] = {};
    };

    // The heaps of threads begin 64 MiB from each other, or a multiple; neighbours of them are told apart.
    Shard& ShardOf(const void* address) {
        const auto place = reinterpret_cast<uintptr_t>(address);
        return shards_[((place >> 20) + 7 * (place >> 26)) % ShardCount];
    }

    Shard shards_[ShardCount];
};

} // namespace zkr::platform
