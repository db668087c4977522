// OpenCV's masks: ranges of colours, flood, fill under a mask, on one thread.
#include "../region_work.h"
#include "../work.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace bench {

namespace {

cv::Mat MatOf(BitmapHandle* bitmap) {
    cv::setNumThreads(1);
    return cv::Mat(bitmap->Height, bitmap->Width, bitmap->BitsPerPixel == 24 ? CV_8UC3 : CV_8UC1,
                   Data(bitmap), bitmap->BytesPerLine);
}

cv::Scalar Bounds(uint32_t colour, bool swapped) {
    const int first = colour & 0xFF, second = colour >> 8 & 0xFF, third = colour >> 16 & 0xFF;
    return swapped ? cv::Scalar(third, second, first) : cv::Scalar(first, second, third);
}

void Range() {
    static cv::Mat mask;
    cv::inRange(MatOf(PhotographBitmap(24, Z_ORDER_BGR)), Bounds(LowerColour, true),
                Bounds(UpperColour, true), mask);
    Touch(mask.data);
}

void Hues() {
    static cv::Mat hsv, mask;
    cv::cvtColor(MatOf(PhotographBitmap(24, Z_ORDER_BGR)), hsv, cv::COLOR_BGR2HSV_FULL);
    cv::inRange(hsv, Bounds(LowerHsv & ~0xFFu, false), Bounds(UpperHsv, false), mask);
    Touch(mask.data);
}

void Flood(int32_t bits) {
    static cv::Mat mask;
    mask.create(TextHeight + 2, TextWidth + 2, CV_8UC1);
    mask.setTo(0);
    cv::floodFill(MatOf(TextPaper(bits)), mask, cv::Point(1, 1), cv::Scalar(), nullptr, cv::Scalar::all(30),
                  cv::Scalar::all(30), 4 | cv::FLOODFILL_FIXED_RANGE | cv::FLOODFILL_MASK_ONLY | 255 << 8);
    Touch(mask.data);
}

cv::Mat MaskOf(const RegionHandle* region) {
    BitmapHandle* sheet = SheetWith(region);
    BitmapHandle bits;
    Z_CreateMaskFromBitmapRgn(sheet, &bits);
    cv::Mat mask(TextHeight, TextWidth, CV_8UC1);
    for (int32_t y = 0; y < TextHeight; ++y)
        for (int32_t x = 0; x < TextWidth; ++x)
            mask.at<uint8_t>(y, x) =
                (Data(&bits)[size_t(y) * bits.BytesPerLine + size_t(x / 8)] >> (7 - x % 8) & 1) != 0 ? 255
                                                                                                     : 0;
    Z_FreeBitmap(&bits);
    Z_FreeBitmapRgn(sheet);
    delete sheet;
    return mask;
}

void Fill(const cv::Mat& mask) {
    static BitmapHandle* target = NewSheet(24);
    cv::Mat pixels = MatOf(target);
    pixels.setTo(Bounds(FillColour, true), mask);
    Touch(pixels.data);
}

const Adds adds([] {
    AddPeer(ColourRegion24, {"OpenCV without runs", 0.5, Range});
    AddPeer(HueRegion24, {"OpenCV without runs", 1, Hues});
    AddPeer(WandAroundText24, {"OpenCV", 1.5, [] { Flood(24); }});
    AddPeer(WandAroundText8, {"OpenCV", 1.5, [] { Flood(8); }});
    AddPeer(FillText24, {"OpenCV", 2, [] {
                             static const cv::Mat mask = MaskOf(TextRegion());
                             Fill(mask);
                         }});
    AddPeer(FillCheckerboard24, {"OpenCV", 1, [] {
                                     static const cv::Mat mask = MaskOf(Checkerboard());
                                     Fill(mask);
                                 }});
});

} // namespace

} // namespace bench
