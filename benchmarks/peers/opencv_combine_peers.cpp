// OpenCV's arithmetic on the photograph and the page, on one thread, in place as ours.
#include "../combine_work.h"
#include "../region_work.h"
#include "../work.h"

#include <opencv2/core.hpp>

namespace bench {

namespace {

// Bits as bytes of 8 of them, samples as samples.
cv::Mat View(BitmapHandle* bitmap) {
    const int bits = bitmap->BitsPerPixel, bytes = static_cast<int>(bitmap->BytesPerLine);
    if (bits == 48) return {bitmap->Height, bitmap->Width, CV_16UC3, Data(bitmap), bitmap->BytesPerLine};
    if (bits == 24) return {bitmap->Height, bitmap->Width, CV_8UC3, Data(bitmap), bitmap->BytesPerLine};
    return {bitmap->Height, bytes, CV_8UC1, Data(bitmap), bitmap->BytesPerLine};
}

// combine(target, source)
template <typename Combine> void Add(int number, double ratio, int32_t bits, Combine combine) {
    AddPeer(number, {"OpenCV", ratio, [=] {
                         cv::setNumThreads(1);
                         cv::Mat target = View(Ground(bits));
                         combine(target, View(PictureOf(bits)));
                         Touch(target.data);
                     }});
}

void CopyThroughMask() {
    static cv::Mat mask, target;
    cv::setNumThreads(1);
    if (mask.empty()) {
        target.create(PhotographHeight, PhotographWidth, CV_8UC3);
        mask = View(TextPaper(8)) < 128; // the ink
    }
    View(PhotographBitmap(24, 1)).copyTo(target, mask);
    Touch(target.data);
}

const Adds adds([] {
    using Mat = cv::Mat;
    Add(PageOr, 0.8, 1, [](Mat& to, const Mat& from) { cv::bitwise_or(to, from, to); });
    Add(PageAnd, 0.8, 1, [](Mat& to, const Mat& from) { cv::bitwise_and(to, from, to); });
    Add(PageXor, 0.8, 1, [](Mat& to, const Mat& from) { cv::bitwise_xor(to, from, to); });
    Add(Add24, 0.8, 24, [](Mat& to, const Mat& from) { cv::add(to, from, to); });
    Add(Subtract24, 0.8, 24, [](Mat& to, const Mat& from) { cv::subtract(to, from, to); });
    Add(Minimum24, 0.8, 24, [](Mat& to, const Mat& from) { cv::min(to, from, to); });
    Add(Maximum24, 0.8, 24, [](Mat& to, const Mat& from) { cv::max(to, from, to); });
    Add(Average24, 0.8, 24, [](Mat& to, const Mat& from) { cv::addWeighted(to, 0.5, from, 0.5, 0, to); });
    Add(Multiply24, 0.6, 24, [](Mat& to, const Mat& from) { cv::multiply(to, from, to, 1.0 / 255); });
    Add(Multiply48, 0.6, 48, [](Mat& to, const Mat& from) { cv::multiply(to, from, to, 1.0 / 65535); });
    Add(Divide24, 0.6, 24, [](Mat& to, const Mat& from) { cv::divide(to, from, to, 255); });
    Add(Add8, 0.8, 8, [](Mat& to, const Mat& from) { cv::add(to, from, to); });
    AddPeer(CopyThroughText24, {"OpenCV copyTo, mask", 2, CopyThroughMask});
});

} // namespace

} // namespace bench
