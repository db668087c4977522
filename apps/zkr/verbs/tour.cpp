// zkr tour: one picture through all of the library, station by station.
#include "apps/zkr/tour/tour.h"

#include "apps/zkr/convert.h"
#include "apps/zkr/failure.h"
#include "apps/zkr/picture_reader.h"
#include "apps/zkr/progress.h"
#include "apps/zkr/verb.h"

#include <cstdio>
#include <filesystem>

namespace zkr::app {

namespace {

struct TourOptions {
    std::string picture = "/usr/share/palapeli/collection/european-honey-bee.jpg";
    std::string page = "/usr/share/jbigkit-testdata/ccitt1.jbg";
    std::string animation = "/usr/lib/python3/dist-packages/imageio/resources/images/newtonscradle.gif";
    std::string out = "out/tour";
};

void Describe(CLI::App& verb, TourOptions& options) {
    verb.add_option("PICTURE", options.picture, "the picture (default: a photograph of a honey bee)")
        ->type_name("");
    verb.add_option("--out", options.out,
                    "folder for the results, made where missing\n(default: " + options.out + ")")
        ->type_name("DIR");
}

constexpr const char* Decibels =
    "dB tells how close a result is to the photograph: its peak signal to noise ratio";

constexpr const Station* Stations[] = {
#define ZKR_STATION(Name) &Name##Station,
#include "apps/zkr/tour/stations.list"
#undef ZKR_STATION
};

Bitmap ReadPhoto(const std::string& path) {
    const StatusBar bar("reading");
    Bitmap picture = ReadUpright(*OpenPicture(path), path, Storage{});
    const PixelFormat colour = {.bits = 24, .order = Z_ORDER_RGB};
    return picture.Format().bits == 24 ? std::move(picture) : Converted(picture, colour, Storage{});
}

void Run(const TourOptions& options) {
    Bitmap photo = ReadPhoto(options.picture);
    if (std::error_code error; !std::filesystem::create_directories(options.out, error) && error) {
        throw Failure(options.out, error.message());
    }
    const std::string picture =
        std::filesystem::path(options.picture).filename().string() + ", " + SizeOf(photo);
    std::printf("%s\n%s\n", picture.c_str(), Decibels);

    Tour tour = {std::move(photo), options.page, options.animation, options.out,
                 ContactSheet("ZKR13N: what becomes of one picture", picture + ". " + Decibels)};
    for (const Station* station : Stations) {
        tour.PrintHead(station->title);
        station->run(tour);
    }
    std::printf("\nPictures are in %s; contact-sheet.png shows all of them\n", options.out.c_str());
    if (tour.wrongSteps > 0) {
        throw Failure(options.picture,
                      std::to_string(tour.wrongSteps) + " steps did not give back what went in");
    }
}

} // namespace

constexpr Verb TourVerb = VerbOf<TourOptions, Describe, Run>(
    "tour", "Take a picture through all that the library does", "tour photo.png --out pictures");

} // namespace zkr::app
