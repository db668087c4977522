// OpenCV's conversions of the photograph into the memory that is painted into.
#include "../paint_work.h"
#include "../pictures.h"
#include "../work.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace bench {

namespace {

cv::Mat Source() {
    cv::setNumThreads(1);
    BitmapHandle* bitmap = PhotographBitmap(24, Z_ORDER_BGR);
    return cv::Mat(bitmap->Height, bitmap->Width, CV_8UC3, Data(bitmap), bitmap->BytesPerLine);
}
cv::Mat Target(int type) {
    return cv::Mat(PhotographHeight, PhotographWidth, type, PaintedMemory().data());
}

const Adds adds([] {
    AddPeer(PaintTo32, {"OpenCV", 0.6, [] {
                            cv::Mat target = Target(CV_8UC4);
                            cv::cvtColor(Source(), target, cv::COLOR_BGR2BGRA);
                            Touch(target.data);
                        }});
    AddPeer(PaintTo24, {"OpenCV copy", 0.6, [] {
                            cv::Mat target = Target(CV_8UC3);
                            Source().copyTo(target);
                            Touch(target.data);
                        }});
});

} // namespace

} // namespace bench
