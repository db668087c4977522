// Slow models of the rules by which rows of samples change their width, each in the steps in which the rule is told. The
// same rules between rows are told with these.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zkr::test {

using Samples = std::vector<int32_t>; // one channel of a row, or a column of it

// Spans on the target side: a value, and steps to the next one that carry their remainder.
inline Samples LinearModel(const Samples& source, int32_t newSize) {
    const auto oldSize = static_cast<int32_t>(source.size());
    const int32_t step = newSize / oldSize, remainder = newSize % oldSize;
    Samples target(static_cast<size_t>(std::min(step / 2, newSize)), source[0]);
    int32_t error = 0, current = source[0];
    size_t next = 1;
    while (static_cast<int32_t>(target.size()) < newSize) {
        int32_t span = step;
        error += remainder;
        if (error >= oldSize) error -= oldSize, ++span;
        const int32_t previous = current;
        if (next < source.size()) current = source[next++];
        int32_t delta = (current - previous) / span, rest = (current - previous) % span;
        if (rest < 0) rest += span, --delta;
        int32_t value = previous, sum = 0;
        for (int32_t i = 0; i < span && static_cast<int32_t>(target.size()) < newSize; ++i) {
            target.push_back(value);
            value += delta;
            sum += rest;
            if (sum >= span) sum -= span, ++value;
        }
    }
    return target;
}

inline Samples AverageModel(const Samples& source, int32_t newSize) {
    const auto oldSize = static_cast<int32_t>(source.size());
    const double ratio = static_cast<double>(oldSize) / newSize;
    Samples target;
    for (double begin = 0; static_cast<int32_t>(target.size()) < newSize;) {
        double end = begin + ratio;
        if (end >= oldSize) end = oldSize - 1;
        const int firstWhole = static_cast<int>(begin) + 1, last = static_cast<int>(end);
        double sum = source[static_cast<size_t>(firstWhole - 1)] * (firstWhole - begin);
        double total = firstWhole - begin;
        for (int i = firstWhole; i < last; ++i)
            sum += source[static_cast<size_t>(i)], total += 1.0;
        sum += source[static_cast<size_t>(last)] * (end - last);
        total += end - last;
        target.push_back(static_cast<int32_t>(sum / total));
        begin = end;
    }
    return target;
}

// Natural splines of interleaved samples. The window is the part of the row that they are made over, and the target is
// what comes of it from the pixel `first` on.
struct SplineModel {
    Samples Values; // of the window, interleaved
    size_t Channels;
    int32_t Largest;
    std::vector<float> M, U;

    SplineModel(Samples values, size_t channels, int32_t largest)
        : Values(std::move(values)), Channels(channels), Largest(largest), M(Values.size()),
          U(Values.size()) {
        const size_t n = Values.size() / channels;
        if (n < 3) return;
        for (size_t i = channels; i < (n - 1) * channels; ++i) {
            const int32_t d = (Values[i + channels] + Values[i - channels] - 2 * Values[i]) * 6;
            if (d == 0) continue;
            M[i] = -1.0f / (M[i - channels] + 4.0f);
            U[i] = (U[i - channels] - static_cast<float>(d)) * M[i];
        }
        size_t at = (n - 1) * channels - 1;
        M[at] = U[at];
        if (channels == 3) {
            M[at - 1] = U[at - 1], M[at - 2] = U[at - 2];
            at -= 2;
        }
        const auto bound = static_cast<int64_t>(largest == 255 ? channels : 1);
        for (int64_t count = static_cast<int64_t>((n - 3) * channels); count >= bound; --count) {
            --at;
            M[at] = M[at] * M[at + channels] + U[at];
        }
    }

    int32_t At(size_t pixel, size_t channel, float t) const {
        const size_t last = Values.size() / Channels - 1;
        const size_t i = std::min(pixel, last) * Channels + channel;
        const size_t j = std::min(pixel + 1, last) * Channels + channel;
        const float a = 1 - t;
        const float value = a * static_cast<float>(Values[i]) + t * static_cast<float>(Values[j]) +
                            (a * a * a - a) / 6 * M[i] + (t * t * t - t) / 6 * M[j] + 0.5f;
        return std::clamp(static_cast<int32_t>(value), 0, Largest);
    }
};

// A stretch of an enlarged row of interleaved samples.
inline Samples SplineRowModel(const Samples& row, size_t channels, int32_t largest, int32_t newWidth,
                              int32_t first, int32_t count) {
    const auto oldWidth = static_cast<int32_t>(row.size() / channels);
    const float ratio = static_cast<float>(oldWidth) / static_cast<float>(newWidth);
    const int32_t repeats = static_cast<int32_t>(0.5f / ratio), start = std::max(first - repeats, 0);
    const auto pixel = static_cast<int32_t>(static_cast<float>(start) * ratio);
    const int32_t begin = std::max(pixel - 5, 0);
    const auto end = static_cast<int32_t>(
        std::min<int64_t>(((int64_t{start} + count) * oldWidth + oldWidth - 1) / newWidth + 6, oldWidth));
    const auto place = [&](int32_t i) { return row.begin() + static_cast<ptrdiff_t>(channels) * i; };
    const SplineModel model(Samples(place(begin), place(end)), channels, largest);
    const size_t last = static_cast<size_t>(end - begin - 1);

    Samples target;
    size_t at = static_cast<size_t>(pixel - begin);
    float t = pixel == 0 ? 0.0f : static_cast<float>(start) * ratio - static_cast<float>(pixel);
    int32_t column = pixel == 0 ? 0 : first;
    const auto emit = [&] {
        for (size_t c = 0; column >= first && c < channels; ++c)
            target.push_back(model.At(at, c, t));
        ++column;
    };
    emit();
    for (int32_t i = 0; pixel == 0 && i < repeats && column < first + count; ++i)
        emit();
    while (column < first + count) {
        t += ratio;
        if (t >= 1.0f) t -= 1.0f, at = std::min(at + 1, last);
        emit();
    }
    return target;
}

// Between the two inner ones of four samples.
inline int32_t SplineBetweenRows(int32_t a, int32_t b, int32_t c, int32_t d, float t, int32_t largest) {
    if (t <= 0) return b;
    float m1 = static_cast<float>(a + c - 2 * b) * 1.5f;
    const float m2 = (static_cast<float>((d + b - 2 * c) * 6) - m1) * 0.266667f;
    m1 = m1 - m2 / 4.0f;
    const float s = 1 - t;
    const float value = s * static_cast<float>(b) + t * static_cast<float>(c) + (s * s * s - s) / 6 * m1 +
                        (t * t * t - t) / 6 * m2 + 0.5f;
    return std::clamp(static_cast<int32_t>(value), 0, largest);
}

} // namespace zkr::test
