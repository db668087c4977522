// zkr combine: a picture combined with another, pixel by pixel.
#include "apps/zkr/combine_work.h"
#include "apps/zkr/convert.h"
#include "apps/zkr/failure.h"
#include "apps/zkr/options.h"
#include "apps/zkr/picture_job.h"
#include "apps/zkr/progress.h"
#include "apps/zkr/warp_work.h"
#include "apps/zkr/write_png.h"

namespace zkr::app {

namespace {

struct CombineOptions {
    std::string picture, other, output;
    Combination combination;
    uint32_t inverted = 0;
};

const Words<uint32_t>& Operators() {
    static const Words<uint32_t> words = [] {
        Words<uint32_t> list;
        for (const CombineOperator& each : CombineOperators)
            list.emplace_back(each.word, each.flags);
        return list;
    }();
    return words;
}

const Words<uint32_t> Inverted = {
    {"a", COMBINE_DST_NOT}, {"b", COMBINE_SRC_NOT}, {"result", COMBINE_RES_NOT}};

void Describe(CLI::App& verb, CombineOptions& options) {
    AddInput(verb, "A", options.picture, "the picture that is changed");
    AddInput(verb, "B", options.other, "the picture that it is combined with");
    AddOutput(verb, options.output);
    AddWord(verb, "--op", options.combination.flags, Operators(),
            "what a pixel becomes, must be given; subtract is\nA - B, divide A / B, multiply darkens")
        ->required();
    AddPoint(verb, "--at", options.combination.at,
             "where the top left corner of B lies on A, 0,0 by default");
    AddWord(verb, "--invert", options.inverted, Inverted, "invert A or B before, or the result");
}

// Two bitonal pictures with the same colours stay so.
PixelFormat FormatFor(const Bitmap& picture, const Bitmap& other) {
    const PixelFormat &one = picture.Format(), &two = other.Format();
    const bool areBitonal = one.bits == 1 && two.bits == 1 && SamePalette(one.palette, two.palette);
    return areBitonal ? one : MeetingFormat(one, two);
}

void Run(const CombineOptions& options) {
    if (options.inverted == COMBINE_DST_NOT && (options.combination.flags & COMBINE_DST_ZERO) != 0)
        throw UsageFailure("--invert a: nothing of A is left by --op copy");
    CheckOutputName(options.output);
    Bitmap picture = ReadInput(options.picture), other = ReadInput(options.other);
    {
        const StatusBar bar("combining ");
        const PixelFormat format = FormatFor(picture, other);
        picture = Converted(picture, format, Storage{});
        other = Converted(other, format, Storage{});
        Combination combination = options.combination;
        combination.flags |= options.inverted;
        Combine(picture, other, combination);
    }
    const StatusBar bar("writing   ");
    WritePng(picture, options.output);
}

} // namespace

constexpr Verb CombineVerb =
    VerbOf<CombineOptions, Describe, Run>("combine", "Combine two pictures pixel by pixel",
                                          "combine photo.png photo.png both.png --op multiply --at 10,-5");

} // namespace zkr::app
