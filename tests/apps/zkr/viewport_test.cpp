// Where a picture lies in a window of zkr view.
#include "apps/zkr/view/viewport.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace zkr::app;

namespace {

Viewport Of(const Size& window, const Size& picture) {
    Viewport viewport;
    viewport.SetWindow(window);
    viewport.SetPicture(picture);
    return viewport;
}

void ExpectRectangle(const Rectangle& area, int left, int top, int width, int height) {
    EXPECT_EQ(area.left, left);
    EXPECT_EQ(area.top, top);
    EXPECT_EQ(area.width, width);
    EXPECT_EQ(area.height, height);
}

} // namespace

TEST(ViewportTest, FitsAndStandsInTheMiddle) {
    const struct {
        Size window, picture;
        Rectangle place;
    } cases[] = {
        {{100, 80}, {200, 100}, {0, 15, 100, 50}}, {{100, 80}, {50, 160}, {37, 0, 25, 80}},
        {{100, 80}, {10, 20}, {45, 30, 10, 20}},   {{100, 80}, {100, 80}, {0, 0, 100, 80}},
        {{10, 10}, {30000, 1}, {0, 4, 10, 1}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.picture.width << " x " << c.picture.height);
        const Viewport viewport = Of(c.window, c.picture);
        ExpectRectangle(viewport.Destination(), c.place.left, c.place.top, c.place.width, c.place.height);
    }
}

TEST(ViewportTest, ZoomsAboutAPointAndBackWithoutDrift) {
    for (const Point about : {Point{500, 300}, Point{411, 377}, Point{620, 250}}) {
        SCOPED_TRACE(testing::Message() << about.x << ',' << about.y);
        Viewport viewport = Of({1000, 700}, {16000, 9000});
        viewport.SetScale(1, viewport.Middle());
        const Point before = *viewport.PictureAt(about);
        const Rectangle place = viewport.Destination();
        for (int step = 0; step < 8; ++step) {
            viewport.Zoom(1, about);
            const Point now = *viewport.PictureAt(about);
            EXPECT_LE(std::abs(now.x - before.x) + std::abs(now.y - before.y), 1) << viewport.Scale();
        }
        EXPECT_EQ(viewport.Scale(), 16);
        viewport.Zoom(-8, about);
        ExpectRectangle(viewport.Destination(), place.left, place.top, place.width, place.height);
    }
}

TEST(ViewportTest, KeepsScalesAndEdgesInBounds) {
    Viewport viewport = Of({100, 80}, {200, 100});
    viewport.Zoom(1, {0, 0});
    EXPECT_NEAR(viewport.Scale(), 2.0 / 3, 1e-12);
    viewport.Zoom(1000, {0, 0});
    EXPECT_EQ(viewport.Scale(), 64);
    viewport.Pan(1 << 20, 1 << 20);
    ExpectRectangle(viewport.Destination(), 0, 0, 12800, 6400);
    viewport.Pan(-(1 << 20), -(1 << 20));
    ExpectRectangle(viewport.Destination(), 100 - 12800, 80 - 6400, 12800, 6400);
    viewport.Zoom(-1000, {50, 40});
    EXPECT_EQ(viewport.Scale(), 1.0 / 64);
    EXPECT_FALSE(viewport.IsFitted());
    viewport.Fit();
    ExpectRectangle(viewport.Destination(), 0, 15, 100, 50);
    viewport.SetWindow({50, 50});
    ExpectRectangle(viewport.Destination(), 0, 12, 50, 25);
    viewport.Turned({100, 200});
    ExpectRectangle(viewport.Destination(), 12, 0, 25, 50);

    Viewport large = Of({100, 80}, {1 << 28, 10});
    large.Zoom(1000, {0, 0});
    EXPECT_LE(large.Destination().width, 1 << 30);
}

// Each pixel of the window shows the pixel of the picture that says that it is shown there.
TEST(ViewportTest, TellsPixelsBothWays) {
    for (const double scale : {0.3, 0.5, 1.0, 1.5, 7.0}) {
        Viewport viewport = Of({60, 50}, {40, 30});
        viewport.SetScale(scale, {13, 9});
        viewport.Pan(-5, -3);
        for (int y = 0; y < 50; ++y)
            for (int x = 0; x < 60; ++x) {
                const auto pixel = viewport.PictureAt({x, y});
                EXPECT_EQ(pixel.has_value(), Contains(viewport.Visible(), {x, y}));
                if (!pixel) continue;
                const Rectangle shown = viewport.InWindow({pixel->x, pixel->y, 1, 1});
                EXPECT_TRUE(Contains(shown, {x, y})) << scale << ": " << x << ',' << y;
            }
    }
    const Viewport viewport = Of({100, 80}, {10, 20});
    EXPECT_FALSE(viewport.PictureAt({44, 40}).has_value());
    EXPECT_EQ(viewport.NearestPictureAt({0, 79}).y, 19);
}
