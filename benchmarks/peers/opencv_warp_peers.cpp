// OpenCV's perspective warp of the photograph, on one thread.
#include "../pictures.h"
#include "../warp_work.h"
#include "../work.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace bench {

namespace {

void AddWarp(int number, double ratio, int interpolation) {
    AddPeer(number,
            {"OpenCV perspective", ratio, [interpolation] {
                 static cv::Mat scene;
                 cv::setNumThreads(1);
                 BitmapHandle* photograph = PhotographBitmap(24, 1);
                 const cv::Mat source(photograph->Height, photograph->Width, CV_8UC3, Data(photograph),
                                      photograph->BytesPerLine);
                 const auto w = static_cast<float>(PhotographWidth - 1),
                            h = static_cast<float>(PhotographHeight - 1);
                 const cv::Point2f from[] = {{0, 0}, {w, 0}, {w, h}, {0, h}};
                 cv::Point2f to[4];
                 for (int i = 0; i < 4; ++i)
                     to[i] = {static_cast<float>(WarpCorners[i].X), static_cast<float>(WarpCorners[i].Y)};
                 cv::warpPerspective(source, scene, cv::getPerspectiveTransform(from, to), source.size(),
                                     interpolation, cv::BORDER_TRANSPARENT);
                 Touch(scene.data);
             }});
}

const Adds adds([] {
    AddWarp(WarpNearest, 1.5, cv::INTER_NEAREST);
    AddWarp(WarpBilinear, 1.5, cv::INTER_LINEAR);
});

} // namespace

} // namespace bench
