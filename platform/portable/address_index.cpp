// The shards of the hash of addresses. A bucket array grows with the count of nodes; where memory for that is short the
// chains grow longer instead, and with the last node the array goes.
#include "platform/portable/address_index.h"

#include <bit>
#include <cstdint>
#include <cstdlib>

namespace zkr::platform {

AddressNode** AddressIndex::Shard::Bucket(const void* address) {
    const uint64_t mixed = reinterpret_cast<uintptr_t>(address) * 0x9E3779B97F4A7C15u;
    const int bits = std::countr_zero(bucketCount_);
    return (buckets_ != nullptr ? buckets_ : small_) + (mixed >> (64 - bits));
}

AddressNode* AddressIndex::Shard::Look(const void* address) {
    AddressNode* node = *Bucket(address);
    while (node != nullptr && node->address != address)
        node = node->nextInBucket;
    return node;
}

// Moves all nodes into an array of count empty buckets; null stands for the small one.
void AddressIndex::Shard::Spread(AddressNode** buckets, size_t count) {
    AddressNode** old = buckets_;
    const size_t oldCount = bucketCount_;
    buckets_ = buckets;
    bucketCount_ = count;
    for (size_t i = 0; i < oldCount; ++i) {
        AddressNode*& chain = (old != nullptr ? old : small_)[i];
        while (chain != nullptr) {
            AddressNode* node = chain;
            chain = node->nextInBucket;
            AddressNode** bucket = Bucket(node->address);
            node->nextInBucket = *bucket;
            *bucket = node;
        }
    }
    std::free(old);
}

void AddressIndex::Shard::Add(AddressNode& node) {
    const std::scoped_lock lock(Lock);
    if (++count_ > bucketCount_ * 2) {
        auto* larger = static_cast<AddressNode**>(std::calloc(bucketCount_ * 4, sizeof(AddressNode*)));
        if (larger != nullptr) Spread(larger, bucketCount_ * 4);
    }
    AddressNode** bucket = Bucket(node.address);
    node.nextInBucket = *bucket;
    *bucket = &node;
}

void AddressIndex::Shard::Unlink(AddressNode& node) {
    AddressNode** link = Bucket(node.address);
    while (*link != &node)
        link = &(*link)->nextInBucket;
    *link = node.nextInBucket;
    if (--count_ == 0 && buckets_ != nullptr) Spread(nullptr, SmallCount);
}

void AddressIndex::Shard::Remove(AddressNode& node) {
    const std::scoped_lock lock(Lock);
    Unlink(node);
}

AddressNode* AddressIndex::Shard::Take(const void* address) {
    const std::scoped_lock lock(Lock);
    AddressNode* node = Look(address);
    if (node != nullptr) Unlink(*node);
    return node;
}

void AddressIndex::LockAll() {
    for (Shard& shard : shards_)
        shard.Lock.lock();
}

void AddressIndex::UnlockAll() {
    for (Shard& shard : shards_)
        shard.Lock.unlock();
}

} // namespace zkr::platform
