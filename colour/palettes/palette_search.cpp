// The cubes of a palette and their winners, made when they are asked for, and the one search that each thread
// keeps in its settings.
#include "colour/palettes/palette_search.h"

#include "core/assertion.h"
#include "core/depth.h"
#include "core/thread_settings.h"
#include "zkr13n/allocation.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace zkr {

namespace {

// A cube is made when more single searches than these have been asked for in it: they cost less than making
// it, so that little is lost on colours that never come again.
constexpr uint16_t UnknownCube = kernels::LastKnownCube + 1;
constexpr uint16_t SearchesBeforeMaking = 2;

constexpr int32_t FirstRoom = 512; // cubes, 256 KB

} // namespace

PaletteSearch::~PaletteSearch() {
    Z_Free(winners_);
}

void PaletteSearch::Prepare(const RGBQUAD* palette, int32_t entries, const kernels::MatchKernels& kernels) {
    ZKR_ASSERT(entries >= 1 && entries <= static_cast<int32_t>(MostEntries));
    kernels_ = &kernels;
    entries_ = entries;
    std::memcpy(palette_, palette, static_cast<size_t>(entries) * sizeof(RGBQUAD));
    cubes_ = 0;
    std::fill(std::begin(blocks_), std::end(blocks_), UnknownCube);
}

bool PaletteSearch::IsFor(const RGBQUAD* palette, int32_t entries) const {
    return entries == entries_ &&
           std::memcmp(palette, palette_, static_cast<size_t>(entries) * sizeof(RGBQUAD)) == 0;
}

bool PaletteSearch::MakeRoom() {
    ZKR_ASSERT(cubes_ < kernels::CubesInSpace);
    const int32_t room = std::max(FirstRoom, room_ * 2);
    void* winners = Z_Realloc(winners_, static_cast<size_t>(room) * kernels::CubeColours);
    if (winners == nullptr) return false;
    winners_ = static_cast<uint8_t*>(winners);
    room_ = room;
    return true;
}

bool PaletteSearch::MakeCube(int32_t cube) {
    if (cubes_ == room_ && !MakeRoom()) return false;
    const kernels::CubeCorner corner = {(cube >> 10) * kernels::CubeSide,
                                        (cube >> 5 & 31) * kernels::CubeSide, (cube & 31) * kernels::CubeSide,
                                        1};
    kernels_->FindForCube(palette_, entries_, corner,
                          winners_ + static_cast<size_t>(cubes_) * kernels::CubeColours);
    blocks_[cube] = static_cast<uint16_t>(cubes_++);
    return true;
}

int32_t PaletteSearch::Match(int32_t red, int32_t green, int32_t blue) {
    const int32_t cube = red >> 3 << 10 | green >> 3 << 5 | blue >> 3;
    uint16_t& block = blocks_[cube];
    if (block > kernels::LastKnownCube) {
        if (block < UnknownCube + SearchesBeforeMaking) {
            ++block;
            return kernels_->Find(palette_, entries_, red, green, blue);
        }
        if (!MakeCube(cube)) {
            block = UnknownCube; // memory may be there again later
            return kernels_->Find(palette_, entries_, red, green, blue);
        }
    }
    return winners_[static_cast<size_t>(block) * kernels::CubeColours +
                    static_cast<size_t>((red & 7) << 6 | (green & 7) << 3 | (blue & 7))];
}

void PaletteSearch::MatchRow(const uint8_t* quads, uint8_t* indices, size_t pixels) {
    constexpr size_t step = 8;
    size_t done = 0;
    while (done < pixels) {
        done += kernels_->LookUp(quads + done * 4, indices + done, pixels - done, blocks_, winners_);
        for (const size_t end = std::min(done + step, pixels); done < end; ++done) {
            const uint8_t* quad = quads + done * 4;
            indices[done] = static_cast<uint8_t>(Match(quad[2], quad[1], quad[0]));
        }
    }
}

PaletteSearch* PaletteSearchFor(const RGBQUAD* palette, int32_t entries) {
    if (entries < 1 || entries > 256) return nullptr;
    auto* search = OfThread<PaletteSearch>();
    if (search != nullptr && !search->IsFor(palette, entries)) search->Prepare(palette, entries);
    return search;
}

} // namespace zkr
