// The picture on a page: where it lies, and that all of it is there, the right way up.
#include "support/dib_builder.hpp"
#include "support/import_patch.hpp"

#include "page.hpp"

#include <gtest/gtest.h>

#include <cstring>

using namespace kirvo_test;

namespace {

void expect_place(const RECT& place, int left, int top, int right, int bottom) {
    EXPECT_EQ(place.left, left);
    EXPECT_EQ(place.top, top);
    EXPECT_EQ(place.right, right);
    EXPECT_EQ(place.bottom, bottom);
}

// A page of paper in memory, white, which a recording is played onto.
class Paper {
  public:
    Paper(int width, int height) : dc_(CreateCompatibleDC(nullptr)) {
        BITMAPINFO info = {};
        info.bmiHeader = {sizeof info.bmiHeader, width, height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        bitmap_ = CreateDIBSection(dc_, &info, DIB_RGB_COLORS, nullptr, nullptr, 0);
        before_ = SelectObject(dc_, bitmap_);
        PatBlt(dc_, 0, 0, width, height, WHITENESS);
    }
    ~Paper() {
        SelectObject(dc_, before_);
        DeleteObject(bitmap_);
        DeleteDC(dc_);
    }
    HDC dc() const { return dc_; }
    COLORREF at(int x, int y) const { return GetPixel(dc_, x, y); }

  private:
    HDC dc_;
    HBITMAP bitmap_;
    HGDIOBJ before_;
};

COLORREF colour(int x, int y) { return RGB(40 * x + 15, 60 * y + 15, 130); }

// 6 by 4 fields of 5 by 5 pixels: however a system smooths, the middle of a field has its colour.
Dib chequered(int bits) {
    Dib picture =
        make_dib({30, 20, bits, bits == 32 ? std::optional<Masks>(masks_888) : std::nullopt});
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 30; ++x) {
            const COLORREF wanted = colour(x / 5, y / 5);
            picture.set_pixel(x, y,
                              static_cast<uint32_t>(GetRValue(wanted)) << 16 |
                                  static_cast<uint32_t>(GetGValue(wanted)) << 8 |
                                  GetBValue(wanted));
        }
    return picture;
}

// A printer that refuses a page's beginning, its picture, its end, or nothing.
enum class Refused { beginning, picture, end, nothing };
Refused refused;

int WINAPI begin_page(HDC) { return refused == Refused::beginning ? SP_ERROR : 1; }
int WINAPI end_page(HDC) { return refused == Refused::end ? SP_ERROR : 1; }
int WINAPI draw_picture(HDC, int, int, int, int, int, int, int, int height, const void*,
                        const BITMAPINFO*, UINT, DWORD) {
    return refused == Refused::picture ? 0 : height;
}

} // namespace

TEST(Page, IsFilledAcrossOrDownInTheMiddle) {
    const Page page = {2000, 3000, 100, 100};
    expect_place(place_on(page, 400, 300), 0, 750, 2000, 2250);
    expect_place(place_on(page, 100, 600), 750, 0, 1250, 3000);
    expect_place(place_on(page, 2, 3), 0, 0, 2000, 3000);
    expect_place(place_on(page, 100000, 1), 0, 1499, 2000, 1500); // a line is seen at least
}

TEST(Page, KeepsThePictureSquareOnDotsThatAreNot) {
    // 8 by 10 inches; twice as many dots across.
    const Page page = {8 * 600, 10 * 300, 600, 300};
    expect_place(place_on(page, 50, 50), 0, 300, 4800, 2700);
}

TEST(Page, TellsWhatThePrinterSays) {
    const Paper paper(300, 200);
    const Page page = page_of(paper.dc());
    EXPECT_EQ(page.width, GetDeviceCaps(paper.dc(), HORZRES));
    EXPECT_EQ(page.height, GetDeviceCaps(paper.dc(), VERTRES));
    EXPECT_EQ(page.dots_across, GetDeviceCaps(paper.dc(), LOGPIXELSX));
    EXPECT_EQ(page.dots_down, GetDeviceCaps(paper.dc(), LOGPIXELSY));
}

// Printers are given a recording of calls. Played, it shows each field where it belongs.
TEST(Page, HasEveryPartOfThePictureInItsPlace) {
    for (const int bits : {24, 32}) {
        const Dib picture = chequered(bits);
        const Image image = Image::adopt(copy_of(picture).release());
        HDC recording = CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr);
        ASSERT_TRUE(draw_on(recording, {30, 20, 30 + 6 * 20, 20 + 4 * 20}, image));
        HENHMETAFILE file = CloseEnhMetaFile(recording);
        ENHMETAHEADER header;
        ASSERT_NE(GetEnhMetaFileHeader(file, sizeof header, &header), 0u);
        const Paper paper(200, 150);
        const RECT all = {header.rclBounds.left, header.rclBounds.top, header.rclBounds.right,
                          header.rclBounds.bottom};
        EXPECT_TRUE(PlayEnhMetaFile(paper.dc(), file, &all));
        DeleteEnhMetaFile(file);
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 6; ++x)
                EXPECT_EQ(paper.at(30 + 20 * x + 10, 20 + 20 * y + 10), colour(x, y))
                    << x << " " << y << " at " << bits;
        EXPECT_EQ(paper.at(10, 10), RGB(255, 255, 255));
        EXPECT_EQ(paper.at(190, 140), RGB(255, 255, 255));
    }
}

TEST(Page, IsPrintedWhereThePrinterTakesAllOfIt) {
    const ImportPatch begin(nullptr, "StartPage", reinterpret_cast<void*>(begin_page)),
        draw(nullptr, "StretchDIBits", reinterpret_cast<void*>(draw_picture)),
        end(nullptr, "EndPage", reinterpret_cast<void*>(end_page));
    ASSERT_TRUE(begin.in_place() && draw.in_place() && end.in_place());
    const Paper paper(300, 200);
    const Image image = Image::adopt(chequered(24).release());
    for (const Refused each :
         {Refused::beginning, Refused::picture, Refused::end, Refused::nothing}) {
        refused = each;
        EXPECT_EQ(print_page(paper.dc(), image), each == Refused::nothing);
    }
}
