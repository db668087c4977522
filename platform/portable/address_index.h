// Finds a block by its address without reading what lies there: a hash of nodes that their owners embed, so
// that adding never fails.
#pragma once

#include <cstddef>
#include <mutex>

namespace zkr::platform {

struct AddressNode {
    const void* address = nullptr;
    AddressNode* nextInBucket = nullptr;
};

class AddressIndex {
  public:
    void Add(AddressNode& node);
    void Remove(AddressNode& node);
    // Calls visit(node) under the lock for one node of this address; whether there was one.
    template <typename Visit> bool Find(const void* address, Visit visit) {
        const std::scoped_lock lock(mutex_);
        AddressNode* node = Look(address);
        if (node != nullptr) visit(*node);
        return node != nullptr;
    }
    // Finds and removes in one step, so that of two callers only one gets the node.
    AddressNode* Take(const void* address);

  private:
    static constexpr size_t SmallCount = 256;

    AddressNode** Bucket(const void* address);
    AddressNode* Look(const void* address);
    void Unlink(AddressNode& node);
    void Spread(AddressNode** buckets, size_t count);

    std::mutex mutex_;
    size_t count_ = 0;
    size_t bucketCount_ = SmallCount;
    AddressNode** buckets_ = nullptr; // the larger array, while there is one
    AddressNode* small_[SmallCount] = {};
};

} // namespace zkr::platform
