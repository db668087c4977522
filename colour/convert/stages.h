// A few row kernels one behind the other, with the working rows between them. The stages are chosen once; then rows run
// through them in pieces that stay in the cache.
#pragma once

#include "colour/kernels/row_kernel.h"
#include "core/assertion.h"
#include "core/depth.h"
#include "kernels/family.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace zkr {

class Stages {
  public:
    // A multiple of 8, so that every piece of a row begins on a byte.
    static constexpr size_t PiecePixels = 512;
    static constexpr size_t MostStages = 4;
    static constexpr size_t MostWorkBytes = 4; // of a pixel between two stages

    enum class Direction : uint8_t {
        Forwards,
        Backwards // so that a row that grows where it stands is read before it is written over
    };

    // Reads pixels of so many bits.
    explicit Stages(int32_t sourceBits) : sourceBits_(static_cast<size_t>(sourceBits)) {
        std::construct_at(&stages_[0]);
    }
    Stages(const Stages&) = delete;
    Stages& operator=(const Stages&) = delete;

    size_t Count() const { return count_; }

    // The parameters of the stage that is added next, which are filled where they stand: a copy would wait for each
    // field to reach memory.
    kernels::RowParameters& Next() { return stages_[count_].Parameters; }
    void Add(kernels::RowKernel kernel) {
        ZKR_ASSERT(count_ < MostStages && kernel != nullptr);
        stages_[count_++].Kernel = kernel;
        std::construct_at(&stages_[count_]);
    }

    void Add(kernels::RowKernel kernel, const kernels::RowParameters& parameters) {
        Next() = parameters;
        Add(kernel);
    }
    void Add(kernels::RowKernel kernel, const void* table) {
        Next().Table = table;
        Add(kernel);
    }
    void Add(kernels::Source source, kernels::Target target) { Add(PairOf(kernels_, source, target)); }
    void Add(kernels::Source source, kernels::Target target, const kernels::RowParameters& parameters) {
        Add(PairOf(kernels_, source, target), parameters);
    }

    // Packed pixels of a depth to bytes, through a map, or to words; and back. No stage where pixels are not packed.
    void AddUnpack(int32_t bits, const uint8_t* map = kernels::IdentityMap.data()) {
        const Packing packed = DepthOf(bits).Packed;
        if (packed == Packing::TopFirst && bits < MostIndexedBits) Add(kernels_.Unpack[bits], map);
        if (packed == Packing::Pairs) Add(kernels_.Unpack12);
    }
    void AddPack(int32_t bits) {
        const Packing packed = DepthOf(bits).Packed;
        if (packed == Packing::TopFirst && bits < MostIndexedBits) Add(kernels_.Pack[bits]);
        if (packed == Packing::Pairs) Add(kernels_.Pack12);
    }
    // Indices of up to 8 bits to bytes.
    void AddMap(int32_t bits, const uint8_t* map) {
        bits == MostIndexedBits ? Add(kernels_.MapBytes, map) : AddUnpack(bits, map);
    }

    // Has the first stage ask the cache for what lies so far from its source.
    void ReadAhead(ptrdiff_t distance) { stages_[0].Parameters.Ahead = distance; }

    // What the last stage makes of some pixels of a row, at most a piece, from one that is a multiple of 8 on: in a
    // working row, or without stages where they are.
    const uint8_t* Read(const uint8_t* row, size_t first, size_t pixels) {
        ZKR_ASSERT(count_ == 0 || pixels <= PiecePixels);
        const uint8_t* source = PixelsAt(row, first);
        for (size_t i = 0; i < count_; ++i)
            source = Run(i, source, work_[i & 1], pixels);
        return source;
    }

    // The same to a place of the caller's; there is at least one stage.
    void Read(const uint8_t* row, size_t first, size_t pixels, uint8_t* target) {
        RunAll(PixelsAt(row, first), target, pixels);
    }

    // A whole row to pixels of so many bits; there is at least one stage.
    void RunRow(const uint8_t* source, uint8_t* target, int32_t targetBits, size_t pixels,
                Direction direction = Direction::Forwards) {
        if (count_ == 1)
            return RunAll(source, target, pixels); // a single kernel walks in the right direction by itself
        const size_t pieces = (pixels + PiecePixels - 1) / PiecePixels;
        for (size_t i = 0; i < pieces; ++i) {
            const size_t first = (direction == Direction::Backwards ? pieces - 1 - i : i) * PiecePixels;
            RunAll(PixelsAt(source, first), target + first / 8 * static_cast<size_t>(targetBits),
                   std::min(PiecePixels, pixels - first));
        }
    }

  private:
    struct Stage {
        kernels::RowKernel Kernel = nullptr;
        kernels::RowParameters Parameters;
    };

    const uint8_t* PixelsAt(const uint8_t* row, size_t pixel) const {
        ZKR_ASSERT(pixel % 8 == 0);
        return row + pixel / 8 * sourceBits_;
    }

    const uint8_t* Run(size_t index, const uint8_t* source, uint8_t* target, size_t pixels) const {
        stages_[index].Kernel(source, target, pixels, stages_[index].Parameters);
        return target;
    }

    void RunAll(const uint8_t* source, uint8_t* target, size_t pixels) {
        ZKR_ASSERT(count_ > 0 && (count_ == 1 || pixels <= PiecePixels));
        for (size_t i = 0; i + 1 < count_; ++i)
            source = Run(i, source, work_[i & 1], pixels);
        Run(count_ - 1, source, target, pixels);
    }

    const kernels::ConvertKernels& kernels_ = kernels::Chosen<kernels::ConvertKernels>();
    size_t sourceBits_;
    size_t count_ = 0;
    // Begun one after the other, with one that stands ready behind the last: clearing all takes longer than making most
    // plans.
    union {
        Stage stages_[MostStages + 1];
    };
    alignas(8) uint8_t work_[2][PiecePixels * MostWorkBytes];
};

} // namespace zkr
