// OpenCV's quarter turns and rotation of the photograph, on one thread.
#include "../pictures.h"
#include "../turn_work.h"
#include "../work.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace bench {

namespace {

cv::Mat Source(int32_t bits) {
    cv::setNumThreads(1);
    BitmapHandle* bitmap = PhotographBitmap(bits, 1);
    return cv::Mat(bitmap->Height, bitmap->Width, bits == 48 ? CV_16UC3 : CV_8UC3, Data(bitmap),
                   bitmap->BytesPerLine);
}

void AddTurn(int number, double ratio, int32_t bits) {
    AddPeer(number, {"OpenCV", ratio, [bits] {
                         static cv::Mat turned;
                         cv::rotate(Source(bits), turned, cv::ROTATE_90_CLOCKWISE);
                         Touch(turned.data);
                     }});
}

void AddRotation(int number, double ratio, int32_t bits, int interpolation) {
    AddPeer(number, {"OpenCV affine", ratio, [bits, interpolation] {
                         static cv::Mat rotated;
                         const cv::Mat source = Source(bits);
                         const cv::Point2f centre(PhotographWidth / 2, PhotographHeight / 2);
                         cv::warpAffine(source, rotated, cv::getRotationMatrix2D(centre, -RotationDegrees, 1),
                                        source.size(), interpolation, cv::BORDER_CONSTANT,
                                        cv::Scalar::all(255));
                         Touch(rotated.data);
                     }});
}

const Adds adds([] {
    AddTurn(Turn24, 3, 24);
    AddTurn(Turn48, 3, 48);
    AddRotation(Rotate24Nearest, 1.5, 24, cv::INTER_NEAREST);
    AddRotation(Rotate24Linear, 1.5, 24, cv::INTER_LINEAR);
    AddRotation(Rotate24Cubic, 1, 24, cv::INTER_CUBIC);
    AddRotation(Rotate48Linear, 1, 48, cv::INTER_LINEAR);
});

} // namespace

} // namespace bench
