// A mask that OpenCV rotates and scales, on one thread, and pixman makes a region.
#include "../region_work.h"
#include "../turn_work.h"
#include "../work.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <pixman.h>

namespace bench {

namespace {

cv::Mat TextMat() {
    cv::setNumThreads(1);
    static const cv::Mat text = [] {
        cv::Mat mask(TextHeight, TextWidth, CV_8UC1);
        for (int32_t y = 0; y < TextHeight; ++y)
            for (int32_t x = 0; x < TextWidth; ++x)
                mask.at<uint8_t>(y, x) =
                    (Data(TextMask())[size_t(y) * TextMask()->BytesPerLine + size_t(x / 8)] >> (7 - x % 8) &
                     1) != 0
                        ? 255
                        : 0;
        return mask;
    }();
    return text;
}

// pixman makes regions of bits alone.
void MakeRegion(const cv::Mat& mask) {
    const int pitch = (mask.cols + 31) / 32 * 4;
    pixman_image_t* bits = pixman_image_create_bits(PIXMAN_a1, mask.cols, mask.rows, nullptr, pitch);
    pixman_image_t* bytes = pixman_image_create_bits(
        PIXMAN_a8, mask.cols, mask.rows, reinterpret_cast<uint32_t*>(mask.data), static_cast<int>(mask.step));
    pixman_image_composite32(PIXMAN_OP_SRC, bytes, nullptr, bits, 0, 0, 0, 0, 0, 0, mask.cols, mask.rows);
    pixman_region32_t region;
    pixman_region32_init_from_image(&region, bits);
    Touch(region.data);
    pixman_region32_fini(&region);
    pixman_image_unref(bits);
    pixman_image_unref(bytes);
}

void Rotate() {
    static cv::Mat rotated;
    const cv::Point2f centre(TextWidth / 2, TextHeight / 2);
    cv::warpAffine(TextMat(), rotated, cv::getRotationMatrix2D(centre, -RotationDegrees, 1), TextMat().size(),
                   cv::INTER_NEAREST);
    MakeRegion(rotated);
}

void Scale() {
    const cv::Size size(TextWidth * ScaledBy / 100, TextHeight * ScaledBy / 100);
    static cv::Mat padded(size.height, (size.width + 3) / 4 * 4, CV_8UC1); // rows of whole words, for pixman
    cv::Mat scaled = padded(cv::Rect(0, 0, size.width, size.height));
    cv::resize(TextMat(), scaled, size, 0, 0, cv::INTER_NEAREST);
    MakeRegion(scaled);
}

const Adds adds([] {
    AddPeer(RotateText, {"OpenCV and pixman", 1, Rotate});
    AddPeer(ScaleText, {"OpenCV and pixman", 1, Scale});
});

} // namespace

} // namespace bench
