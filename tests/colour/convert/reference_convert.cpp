#include "colour/convert/reference_convert.h"

#include "colour/pixels/pixel_model.h"
#include "support/pixel_bits.h"

#include <cstring>
#include <vector>

namespace zkr::test {
namespace {

constexpr ReturnCode Done = 1;
constexpr ReturnCode BadArgument = -13;

bool IsIndexed(int bits) {
    return bits >= 1 && bits <= 8;
}
bool IsDepth(int bits) {
    return bits == 0 || IsIndexed(bits) || bits == 12 || bits == 16 || bits == 24 || bits == 32 ||
           bits == 48 || bits == 64;
}
bool IsColourOrder(int order) {
    return order == 0 || order == 1;
}
// ---- the gray window

struct Window {
    int bits = 0;
    uint64_t mask = 0;
    int shift = 0;

    uint64_t ValueOf(uint64_t pixel) const { return (pixel >> shift) & mask; }
};

Window WindowOf(int depth, int maximumBits, int lowBit, int highBit) {
    const int high = highBit < 0 ? depth - 1 : highBit;
    const int low = lowBit < 0 ? 0 : lowBit;
    const int bits = high - low + 1 < maximumBits ? high - low + 1 : maximumBits;
    return {bits, Ones(bits), high - bits + 1};
}

// ---- a conversion with its arguments tested and its defaults filled in

struct Model : Conversion {
    explicit Model(const Conversion& c) : Conversion(c) {
        flags = (flags & ~3u) | (sourceOrder == 2 ? 1u : 0u) | (targetOrder == 2 ? 2u : 0u);
    }

    bool SourceGray() const { return flags & 1; }
    bool TargetGray() const { return flags & 2; }
    bool SourceWindow() const { return flags & 4; }
    bool TargetWindow() const { return flags & 8; }
    bool FromGrayWords() const { return sourceBits == 12 || (sourceBits == 16 && SourceGray()); }
    bool ToGrayWords() const { return targetBits == 12 || (targetBits == 16 && TargetGray()); }

    bool ArgumentsAreGood() const;
    void DropWholeWindow();
    void FillDefaults();
    bool LeavesRowAlone() const;

    Window ChooseWindow() const;
    Window Window12() const;
    Window Window16() const;

    uint64_t ConvertPixel(uint64_t pixel, uint64_t before) const;
    uint64_t FromGray(uint64_t pixel, uint64_t before) const;
    uint64_t GrayToGray12(uint64_t pixel) const;
    uint64_t GrayToGray16(uint64_t pixel) const;
    uint64_t FromColour(Colour c, uint64_t alpha) const;
    int Find(Colour c) const;

    std::vector<RGBQUAD> sourceDefault, targetDefault;
    PaletteMap map{};
    Window window;
};

bool Model::ArgumentsAreGood() const {
    if (SourceWindow() && TargetWindow()) return false;
    if ((SourceWindow() && !SourceGray()) || (TargetWindow() && !TargetGray())) return false;
    if ((sourceBits == 12 && !SourceGray()) || (targetBits == 12 && !TargetGray())) return false;
    if (!IsDepth(sourceBits) || !IsDepth(targetBits)) return false;
    if (sourceBits >= 24 && !IsColourOrder(sourceOrder)) return false;
    if (sourceBits == 16 && !IsColourOrder(sourceOrder) && sourceOrder != 2) return false;
    if (targetBits >= 24 && !IsColourOrder(targetOrder)) return false;
    if (targetBits == 16 && !IsColourOrder(targetOrder) && targetOrder != 2) return false;
    return true;
}

void Model::DropWholeWindow() {
    const auto whole = [this](int bits) {
        return lowBit < 1 && (highBit < 0 || highBit == StoredBits(bits) - 1);
    };
    if (SourceWindow() && whole(sourceBits)) flags &= ~4u;
    if (TargetWindow() && whole(targetBits)) flags &= ~8u;
}

void Model::FillDefaults() {
    if (IsIndexed(targetBits) && targetPalette == nullptr) {
        targetDefault = ReferenceFixedPalette(targetBits);
        targetPalette = targetDefault.data();
    }
    if (IsIndexed(sourceBits) && sourcePalette == nullptr) {
        sourceDefault = ReferenceFixedPalette(sourceBits);
        sourcePalette = sourceDefault.data();
    }
    if (sourceBits == 0) sourcePalette = nullptr;
    if (sourceBits == 12 && ToGrayWords()) sourcePalette = nullptr;
    if (sourceBits <= 8 && IsIndexed(targetBits))
        map = ReferencePaletteMap(sourcePalette, sourceBits == 0 ? 256 : 1 << sourceBits, targetPalette,
                                  1 << targetBits);
    window = ChooseWindow();
}

bool Model::LeavesRowAlone() const {
    const bool anyWindow = SourceWindow() || TargetWindow();
    if (sourceBits != targetBits) return false;
    if (IsIndexed(sourceBits))
        return std::memcmp(sourcePalette, targetPalette, sizeof(RGBQUAD) << sourceBits) == 0;
    if (sourceBits == 12) return !anyWindow;
    if (sourceBits == 16 && SourceGray() && TargetGray()) return !anyWindow && sourcePalette == nullptr;
    return false;
}

// ---- which bits of a gray pixel count

// The value bits that a gray source without a table yields at most.
int Span(const Model& m) {
    const int bits = m.targetBits;
    if (bits == 0 || (bits >= 17 && bits <= 47)) return 8;
    if (bits == 16) return m.TargetGray() ? 16 : 8;
    return bits >= 48 ? 16 : bits;
}

Window Model::Window12() const {
    const int most = sourcePalette == nullptr ? Span(*this) : 12;
    if (SourceWindow()) return WindowOf(12, most, lowBit, highBit);
    if (TargetWindow()) return WindowOf(StoredBits(targetBits), 12, lowBit, highBit);
    return WindowOf(12, most, -1, -1);
}

Window Model::Window16() const {
    const int to = StoredBits(targetBits);
    const bool table = sourcePalette != nullptr;
    if (SourceGray() && SourceWindow()) return WindowOf(16, table ? 16 : Span(*this), lowBit, highBit);
    if (TargetGray() && TargetWindow()) return WindowOf(to, table ? 8 : to, lowBit, highBit);
    if (TargetGray() && (!SourceGray() || table)) return WindowOf(to, 8, -1, -1);
    if (SourceGray() && table) return WindowOf(16, 16, -1, -1);
    if (targetBits == 0) return WindowOf(16, 8, -1, -1);
    return WindowOf(16, targetBits >= 48 ? 16 : TargetGray() ? targetBits : 8, -1, -1);
}

Window Model::ChooseWindow() const {
    if (sourceBits == 12) return Window12();
    if (sourceBits == 16) return Window16();
    const int to = StoredBits(targetBits);
    if (TargetWindow()) return WindowOf(sourceBits >= 48 ? 16 : to, to, lowBit, highBit);
    return {to, to < 64 ? Ones(to) : 0, 0};
}

// An 8-bit gray in the value bits of a window.
uint64_t ScaleGray(uint64_t gray, int bits) {
    return bits < 8 ? gray >> (8 - bits) : ((gray << bits) - gray) / 255;
}

uint64_t AlphaOf(int from, int to, uint64_t alpha) {
    if (from == to) return alpha;
    if (from == 16) return alpha == 0 ? 0 : to == 32 ? 0xFF : 0xFFFF;
    if (from == 32 && to == 16) return alpha >= 128;
    if (from == 32 && to == 64) return alpha * 257;
    if (from == 64 && to == 32) return alpha >> 8;
    return 0;
}

unsigned ByteToWord(unsigned c) {
    return c * 257;
}

int Model::Find(Colour c) const {
    return ReferenceFindPaletteIndex(targetPalette, 1 << targetBits, static_cast<int>(c.red),
                                     static_cast<int>(c.green), static_cast<int>(c.blue));
}

// ---- sources of every kind but gray words. c is in the source's own channel width.

uint64_t Model::FromColour(Colour c, uint64_t alpha) const {
    const bool words = sourceBits >= 48;
    const Colour bytes = words ? ForEach(c, HighByte) : sourceBits == 16 ? ForEach(c, WidenFive) : c;
    if (targetBits == 0) return GrayOf(bytes);
    if (IsIndexed(targetBits)) return static_cast<uint64_t>(Find(bytes));
    if (ToGrayWords()) {
        const uint64_t value =
            words ? GrayOf(c) >> (16 - window.bits) : ScaleGray(GrayOf(bytes), window.bits);
        return (value << window.shift) & Ones(targetBits);
    }
    const uint64_t alphaOut = HasAlpha(sourceBits) ? AlphaOf(sourceBits, targetBits, alpha) : 0;
    Colour out = bytes;
    if (targetBits == 16)
        out = words ? ForEach(c, [](unsigned v) { return v >> 11; })
                    : ForEach(bytes, [](unsigned v) { return v >> 3; });
    if (targetBits >= 48) out = words ? c : ForEach(bytes, ByteToWord);
    return Pack(targetBits, targetOrder, out, alphaOut);
}

// ---- gray words of 12 and 16 bits, through a table of levels or without one

uint64_t Model::GrayToGray12(uint64_t pixel) const {
    const uint64_t value = window.ValueOf(pixel);
    if (sourceBits == 12)
        return SourceWindow() ? value : (pixel >> (12 - window.bits) << window.shift) & 0xFFF;
    if (SourceWindow()) {
        if (sourcePalette != nullptr) return uint64_t{GrayOf(ColourOf(sourcePalette[value]))} * 4095 / 255;
        return window.mask < 4095 ? value * 4095 / window.mask : value;
    }
    if (sourcePalette == nullptr)
        return TargetWindow() ? (pixel >> (16 - window.bits) << window.shift) & 0xFFF : pixel >> 4;
    const RGBQUAD& entry = sourcePalette[pixel];
    if (TargetWindow()) return ScaleGray(GrayOf(ColourOf(entry)), window.bits) << window.shift;
    // Here alone green and blue change places.
    const unsigned gray = (5u * entry.rgbBlue + 2u * entry.rgbRed + entry.rgbGreen + 4) >> 3;
    return gray * 273 / 17;
}

uint64_t Model::GrayToGray16(uint64_t pixel) const {
    const uint64_t value = window.ValueOf(pixel);
    if (sourceBits == 12)
        return TargetWindow() ? (pixel >> (12 - window.bits) << window.shift) : value * 65535 / window.mask;
    if (SourceWindow())
        return sourcePalette == nullptr ? value * 65535 / window.mask
                                        : uint64_t{GrayOf(ColourOf(sourcePalette[value]))} * 257;
    if (sourcePalette == nullptr) return pixel >> (16 - window.bits) << window.shift;
    const uint64_t gray = GrayOf(ColourOf(sourcePalette[pixel]));
    return ((gray << window.bits) - gray) / 255 << window.shift;
}

uint64_t Model::FromGray(uint64_t pixel, uint64_t before) const {
    if (ToGrayWords()) return targetBits == 12 ? GrayToGray12(pixel) : GrayToGray16(pixel);
    const uint64_t value = window.ValueOf(pixel);
    const bool table = sourcePalette != nullptr;
    const Colour colour = table ? ColourOf(sourcePalette[value]) : GrayColour(value);
    if (targetBits == 0)
        return table ? GrayOf(colour) : window.mask < 255 ? value * 255 / window.mask : value;
    if (IsIndexed(targetBits)) // without a table the values are a ramp from black to white
        return static_cast<uint64_t>(Find(table ? colour : GrayColour(value * 255 / window.mask)));
    Colour out = colour;
    if (targetBits == 16) out = ForEach(colour, [](unsigned v) { return v >> 3; });
    if (targetBits >= 48)
        out = table ? ForEach(colour, ByteToWord) : GrayColour(((value << 16) - value) / window.mask);
    // Alpha of 32 and 64 bits is not written; bit 15 of a 16-bit colour is 0.
    const uint64_t alpha = targetBits == 32 ? before >> 24 : targetBits == 64 ? before >> 48 : 0;
    return Pack(targetBits, targetOrder, out, alpha);
}

uint64_t Model::ConvertPixel(uint64_t pixel, uint64_t before) const {
    if (FromGrayWords()) return FromGray(pixel, before);
    if (sourceBits <= 8) {
        if (IsIndexed(targetBits)) return map[static_cast<size_t>(pixel)];
        return FromColour(sourceBits == 0 ? GrayColour(pixel) : ColourOf(sourcePalette[pixel]), 0);
    }
    const uint64_t alpha = HasAlpha(sourceBits) ? pixel >> 3 * ChannelBits(sourceBits) : 0;
    return FromColour(Unpack(sourceBits, sourceOrder, pixel), alpha);
}

} // namespace

std::string Describe(const Conversion& c) {
    const auto order = [](int o) { return o == 0 ? "rgb" : o == 1 ? "bgr" : o == 2 ? "gray" : "?"; };
    return std::to_string(c.sourceBits) + " " + order(c.sourceOrder) +
           (c.sourcePalette ? " palette" : " no palette") + " to " + std::to_string(c.targetBits) + " " +
           order(c.targetOrder) + (c.targetPalette ? " palette" : " no palette") + ", flags " +
           std::to_string(c.flags) + ", bits " + std::to_string(c.lowBit) + ".." + std::to_string(c.highBit);
}

ReturnCode Convert(void* row, int width, const Conversion& c) {
    return Z_ConvertBufferExt(row, width, c.sourceBits, c.targetBits, c.sourceOrder, c.targetOrder,
                              c.sourcePalette, c.targetPalette, c.flags, c.lowBit, c.highBit);
}

ReturnCode ReferenceConvert(uint8_t* row, int width, const Conversion& conversion) {
    if (row == nullptr || width == 0) return BadArgument;
    Model model(conversion);
    if (!model.ArgumentsAreGood()) return BadArgument;
    model.DropWholeWindow();
    model.FillDefaults();
    if (model.LeavesRowAlone()) return Done;
    std::vector<uint64_t> pixels;
    for (int i = 0; i < width; ++i)
        pixels.push_back(ReadPixel(row, model.sourceBits, i));
    for (int i = 0; i < width; ++i) {
        const uint64_t before = ReadPixel(row, model.targetBits, i);
        WritePixel(row, model.targetBits, i, model.ConvertPixel(pixels[static_cast<size_t>(i)], before));
    }
    return Done;
}

void ReferenceMirrorLine(uint8_t* row, int width, int bits) {
    if (bits == 0 || !IsDepth(bits)) return;
    std::vector<uint64_t> pixels;
    for (int i = 0; i < width; ++i)
        pixels.push_back(ReadPixel(row, bits, i));
    for (int i = 0; i < width; ++i)
        WritePixel(row, bits, i, pixels[static_cast<size_t>(width - 1 - i)]);
    if (bits != 1 && bits != 2 && bits != 4) return;
    for (int bit = width * bits; bit % 8 != 0; ++bit)
        WritePixel(row, 1, bit, 0);
}

} // namespace zkr::test
