// The 32-bit form of a single colour, 0x00BBGGRR, and what its top byte can make of it.
#pragma once

#include "colour/gray/gray_of.h"
#include "core/flags.h"

#include <algorithm>

namespace zkr {

class ColourValue {
  public:
    // Top bytes of the two narrower forms.
    static constexpr uint32_t IndexForm = 1; // a palette index, or the value of a gray pixel
    static constexpr uint32_t WideGrayForm = 2;

    constexpr explicit ColourValue(uint32_t value) : value_(value) {}
    static constexpr ColourValue OfIndex(uint32_t index) {
        return ColourValue((index & 0xFFFF) | IndexForm << 24);
    }
    static constexpr ColourValue OfEntry(const RGBQUAD& entry) {
        return ColourValue(static_cast<uint32_t>(entry.rgbRed | entry.rgbGreen << 8 | entry.rgbBlue << 16));
    }

    constexpr uint32_t Value() const { return value_; }
    constexpr uint32_t Plain() const { return value_ & 0x00FFFFFF; } // without the top byte
    constexpr uint32_t TopByte() const { return value_ >> 24; }
    constexpr uint32_t Index() const { return value_ & 0xFFFF; }
    constexpr uint8_t Red() const { return static_cast<uint8_t>(value_); }
    constexpr uint8_t Green() const { return static_cast<uint8_t>(value_ >> 8); }
    constexpr uint8_t Blue() const { return static_cast<uint8_t>(value_ >> 16); }
    constexpr uint8_t Gray() const { return GrayOf(Red(), Green(), Blue()); }

    // A 16-bit gray value, marked by bit 26 whatever the other bits of the top byte are.
    constexpr bool IsExtendedGray() const { return (value_ & 0x04000000) != 0; }
    // The plain colour whose channels are the upper byte of that value.
    constexpr ColourValue PlainOfExtendedGray() const { return ColourValue((value_ >> 8 & 0xFF) * 0x010101); }

  private:
    uint32_t value_;
};

} // namespace zkr
