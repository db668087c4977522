// OpenCV on the photograph, on one thread.
#include "../pictures.h"
#include "../work.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <sys/mman.h>

namespace bench {

namespace {

// The pixels of one of our bitmaps, in place.
cv::Mat View(BitmapHandle* bitmap, int type) {
    return {bitmap->Height, bitmap->Width, type, Data(bitmap), bitmap->BytesPerLine};
}

cv::Rect Rectangle() {
    return {CopiedLeft, CopiedTop, CopiedWidth, CopiedHeight};
}

void AddColour(int number, double ratio, int32_t fromBits, int32_t fromOrder, int fromType, int conversion) {
    AddPeer(number, {"OpenCV", ratio, [=] {
                         static cv::Mat target[64];
                         cv::setNumThreads(1);
                         cv::Mat& to = target[number];
                         cv::cvtColor(View(PhotographBitmap(fromBits, fromOrder), fromType), to, conversion);
                         Touch(to.data);
                     }});
}

// From the photograph, or from what a conversion of it gives.
void AddSpace(int number, double ratio, int conversion, int before = -1) {
    AddPeer(number, {"OpenCV", ratio, [=] {
                         static cv::Mat between, target;
                         cv::setNumThreads(1);
                         const cv::Mat photograph = View(PhotographBitmap(24, 1), CV_8UC3);
                         if (before >= 0 && between.empty()) cv::cvtColor(photograph, between, before);
                         cv::cvtColor(before >= 0 ? between : photograph, target, conversion);
                         Touch(target.data);
                     }});
}

const Adds adds([] {
    AddSpace(RgbToHsv, 1, cv::COLOR_BGR2HSV_FULL);
    AddSpace(HsvToRgb, 1, cv::COLOR_HSV2BGR_FULL, cv::COLOR_BGR2HSV_FULL);
    AddSpace(RgbToLuma, 0.7, cv::COLOR_BGR2YCrCb);
    AddColour(Swap24, 0.8, 24, 1, CV_8UC3, cv::COLOR_BGR2RGB);
    AddColour(From24To32, 0.8, 24, 1, CV_8UC3, cv::COLOR_BGR2BGRA);
    AddColour(From32To24, 0.8, 32, 1, CV_8UC4, cv::COLOR_BGRA2BGR);
    AddColour(From24ToGray, 0.9, 24, 1, CV_8UC3, cv::COLOR_BGR2GRAY);
    AddColour(From24To16, 0.9, 24, 1, CV_8UC3, cv::COLOR_BGR2BGR555);
    AddColour(From16To24, 0.9, 16, 1, CV_8UC2, cv::COLOR_BGR5552BGR);
    AddColour(FromGrayTo24, 0.8, 8, 0, CV_8UC1, cv::COLOR_GRAY2BGR);
    AddPeer(From24To48, {"OpenCV", 0.9, [] {
                             static cv::Mat target;
                             cv::setNumThreads(1);
                             View(PhotographBitmap(24, 1), CV_8UC3).convertTo(target, CV_16U, 257);
                             Touch(target.data);
                         }});
    AddPeer(CopyRect24, {"OpenCV copyTo", 0.8, [] {
                             static cv::Mat target;
                             cv::setNumThreads(1);
                             View(PhotographBitmap(24, 1), CV_8UC3)(Rectangle()).copyTo(target);
                             Touch(target.data);
                         }});
    AddPeer(CopyRect24, {"OpenCV, memory fresh", 0.8, [] {
                             constexpr size_t bytes = size_t{CopiedWidth} * CopiedHeight * 3;
                             cv::setNumThreads(1);
                             void* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                                                 MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
                             cv::Mat target(CopiedHeight, CopiedWidth, CV_8UC3, memory);
                             View(PhotographBitmap(24, 1), CV_8UC3)(Rectangle()).copyTo(target);
                             Touch(target.data);
                             munmap(memory, bytes);
                         }});
    AddPeer(FromPaletteTo24,
            {"OpenCV", 3, [] {
                 static cv::Mat target;
                 static cv::Mat colours(256, 1, CV_8UC3);
                 cv::setNumThreads(1);
                 for (int i = 0; i < 256; ++i) {
                     const RGBQUAD& entry = Palette256()[static_cast<size_t>(i)];
                     colours.at<cv::Vec3b>(i, 0) = {entry.rgbBlue, entry.rgbGreen, entry.rgbRed};
                 }
                 cv::applyColorMap(View(PhotographBitmap(8, 0), CV_8UC1), target, colours);
                 Touch(target.data);
             }});
});

} // namespace

} // namespace bench
