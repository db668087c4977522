// OpenCV's resizing of the photograph, on one thread.
#include "../pictures.h"
#include "../resize_work.h"
#include "../work.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace bench {

namespace {

void AddResize(int number, double ratio, int32_t bits, int type, cv::Size size, int interpolation) {
    AddPeer(number, {"OpenCV", ratio, [=] {
                         static cv::Mat target[3]; // for 24 bits, 48 and 8
                         cv::setNumThreads(1);
                         BitmapHandle* photograph = PhotographBitmap(bits, 1);
                         const cv::Mat source(photograph->Height, photograph->Width, type, Data(photograph),
                                              photograph->BytesPerLine);
                         cv::Mat& to = target[bits == 24 ? 0 : bits == 48 ? 1 : 2];
                         cv::resize(source, to, size, 0, 0, interpolation);
                         Touch(to.data);
                     }});
}

const Adds adds([] {
    const cv::Size reduced(ReducedWidth, ReducedHeight), doubled(PhotographWidth * 2, PhotographHeight * 2);
    AddResize(NearestReduced, 1, 24, CV_8UC3, reduced, cv::INTER_NEAREST);
    AddResize(NearestDoubled, 1, 24, CV_8UC3, doubled, cv::INTER_NEAREST);
    AddResize(AreaReduced24, 1.5, 24, CV_8UC3, reduced, cv::INTER_AREA);
    AddResize(AreaReduced48, 1.5, 48, CV_16UC3, reduced, cv::INTER_AREA);
    AddResize(AreaEighth24, 0.5, 24, CV_8UC3, {PhotographWidth / 8, PhotographHeight / 8}, cv::INTER_AREA);
    AddResize(LinearDoubled24, 1.5, 24, CV_8UC3, doubled, cv::INTER_LINEAR);
    AddResize(LinearDoubled48, 2, 48, CV_16UC3, doubled, cv::INTER_LINEAR);
    AddResize(SplineDoubled24, 2, 24, CV_8UC3, doubled, cv::INTER_CUBIC);
    AddResize(SplineDoubled48, 1.5, 48, CV_16UC3, doubled, cv::INTER_CUBIC);
});

} // namespace

} // namespace bench
