// Each effect of the menu with the values that its dialog begins with, against the same call made
// directly.
#include "driver.hpp"

#include "../../viewer/commands.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <string>

using namespace kirvo_test;

namespace {

constexpr int w = 40, h = 30;

struct Case {
    const char* option;
    bool asks;                                                 // for parameters, in a dialog
    std::function<HGLOBAL(HGLOBAL image, HGLOBAL other)> call; // which may change and answer image
};

int32_t status;

// A call that changes the image itself.
template<typename Call>
auto changes(Call call) {
    return [=](HGLOBAL image, HGLOBAL other) {
        EXPECT_EQ(call(image, other), KIRVO_OK);
        return image;
    };
}
template<typename Call>
auto makes(Call call) {
    return [=](HGLOBAL image, HGLOBAL other) { return call(image, other); };
}
HGLOBAL unchanged(HGLOBAL image, HGLOBAL) { return image; }

HGLOBAL posterised(HGLOBAL image, HGLOBAL) {
    uint8_t table[256];
    for (int v = 0; v < 256; ++v)
        table[v] = static_cast<uint8_t>(v / 64 * 85);
    return DibColorMapEx(image, 0, 0, w, h, table, &status);
}
HGLOBAL red_channel(HGLOBAL image, HGLOBAL) {
    HGLOBAL red = nullptr;
    EXPECT_EQ(Dib24Separate(image, 0, 0, w, h, &red, nullptr, nullptr), KIRVO_OK);
    return red;
}
HGLOBAL convolved(HGLOBAL image, HGLOBAL) {
    SetFilter3x3(-1, -1, -1, -1, 9, -1, -1, -1, -1, 1);
    return DibFilter3x3(image, 0, 0, w, h, &status);
}

#define MAKES(call) makes([](HGLOBAL i, HGLOBAL o) { return (void)o, call; })
#define CHANGES(call) changes([](HGLOBAL i, HGLOBAL o) { return (void)o, call; })

// clang-format off
const Case cases[] = {
    {"crop", true, unchanged},
    {"resize", true, MAKES(Dib24ZoomEx2(i, 0, 0, w, h, w / 2, h / 2, &status, 1))},
    {"fit", true, unchanged},
    {"rotate", true, MAKES(Dib24Rotate(i, 0, 0, w, h, 0, &status))},
    {"flip", false, CHANGES(Dib24Flip(i, 0, 0, w, h))},
    {"mirror", false, CHANGES(Dib24Mirror(i, 0, 0, w, h))},
    {"compose", true, CHANGES(Dib24Add(i, 0, 0, o, 0, 0, w, h, 0))},
    {"paste", true, CHANGES(Dib24CopyEx(i, 0, 0, o, 0, 0, w, h))},
    {"key", true, unchanged},
    {"interleave", true, MAKES(Dib24InterLeave(i, 0, 0, o, 0, 0, w, h, &status))},
    {"brightness", true, MAKES(Dib24Brightness(i, 0, 0, w, h, 30, &status))},
    {"contrast", true, MAKES(Dib24Contrast(i, 0, 0, w, h, 40, &status))},
    {"gamma", true, MAKES(DibGammaEx(i, 0, 0, w, h, 0.6, 0.6, 0.6, &status))},
    {"tone", true, MAKES(Dib24ToneCtrlEx(i, 0, 0, w, h, 1.2, 1.0, 0.7, &status))},
    {"posterise", true, posterised},
    {"negative", false, CHANGES(Dib24Negative(i, 0, 0, w, h))},
    {"mono", false, MAKES(Dib24Monochrome(i, 0, 0, w, h, &status))},
    {"halftone", false, MAKES(Dib24HalfTone(i, 0, 0, w, h, &status))},
    {"swap-channels", true, CHANGES(Dib24RGBChange(i, 5, 0, 0, w, h))},
    {"channel", true, red_channel},
    {"hue", true, MAKES(DibModifyHueEx(i, 0, 0, w, h, 2, 120, &status))},
    {"xor", true, CHANGES(Dib24XOR(i, 0, 0, w, h, 0x000080FF))},
    {"blur", false, MAKES(Dib24Gausian(i, 0, 0, w, h, &status))},
    {"sharpen", true, MAKES(Dib24Sharpen(i, 0, 0, w, h, 0, &status))},
    {"sharpen-more", true, MAKES(Dib24SharpenEx(i, 0, 0, w, h, 2, &status))},
    {"edges", true, MAKES(Dib24ColorEdge(i, 0, 0, w, h, 20, 0, &status))},
    {"kernel", true, convolved},
    {"keep", true, MAKES(Dib24FilterEx(i, 0, 0, w, h, 0x003C0202, 0x000100C8, 0, 0, 0, &status))},
    {"mosaic", true, MAKES(DibMosaicEx(i, 0, 0, w, h, 12, &status))},
    {"mosaic-average", true, MAKES(DibMosaicEx2(i, 0, 0, w, h, 12, &status))},
    {"dilate", true, MAKES(DibBlockMxM(i, 0, 0, w, h, 3, 1, 0, &status))},
    {"erode", true, MAKES(DibBlockMxM(i, 0, 0, w, h, 3, 0, 0, &status))},
    {"brush", true, CHANGES(Dib24Mix3X3(i, 0, 0))},
    {"palette", true, MAKES(DecreaseColor16(i, &status))},
    {"depth", true, MAKES(DibConvert16bit(i, &status))},
    {"bits", true, MAKES(DibCutDepth(i, 3, 3, 2, &status))},
};
// clang-format on

// "Sharpen more" of "sharpen-more"
std::string title_of(std::string option) {
    option[0] = static_cast<char>(option[0] - 'a' + 'A');
    for (char& character : option)
        character = character == '-' ? ' ' : character;
    return option;
}

bool wants_file(const std::string& option) {
    return option == "compose" || option == "paste" || option == "interleave";
}

void accept(const Viewer& viewer, const Case& wanted, const std::string& other) {
    constexpr int first_value = 100;
    HWND dialog = viewer.dialog(title_of(wanted.option));
    ASSERT_NE(dialog, nullptr) << wanted.option;
    if (wants_file(wanted.option))
        SendMessageA(GetDlgItem(dialog, first_value), WM_SETTEXT, 0,
                     reinterpret_cast<LPARAM>(other.c_str()));
    ASSERT_TRUE(IsWindowEnabled(GetDlgItem(dialog, IDOK))) << wanted.option;
    PostMessageA(dialog, WM_COMMAND, IDOK, 0);
}

} // namespace

TEST(ViewerEffects, AreThoseOfTheLibraryAndCanBeUndone) {
    Random random(17);
    TempFolder folder;
    const std::string name = folder.path("picture.bmp"), other_name = folder.path("other.bmp");
    const Dib picture = make_random_dib({w, h, 24}, random),
              other = make_random_dib({w, h, 24}, random);
    ASSERT_EQ(DibWriteEx(name.c_str(), picture, 0, 0, w, h), KIRVO_OK);
    ASSERT_EQ(DibWriteEx(other_name.c_str(), other, 0, 0, w, h), KIRVO_OK);

    Viewer viewer(name);
    const std::vector<uint8_t> before = viewer.copied();
    EXPECT_EQ(before, picture_bytes(picture));
    // The histogram is a window, tested by itself.
    EXPECT_EQ(viewer.effect_count(), static_cast<int>(std::size(cases)) + 1);
    for (const Case& wanted : cases) {
        SCOPED_TRACE(wanted.option);
        const int command = viewer.effect(wanted.option);
        ASSERT_NE(command, 0);
        viewer.command(command);
        if (wanted.asks)
            accept(viewer, wanted, other_name);
        ASSERT_TRUE(viewer.wait_for("says: " + title_of(wanted.option) + ": "));
        Dib mine = copy_of(picture);
        HGLOBAL result = wanted.call(mine, other);
        EXPECT_EQ(viewer.copied(), picture_bytes(result));
        if (result != mine)
            GlobalFree(result);
        viewer.command(command_undo);
        EXPECT_EQ(viewer.copied(), before);
    }
    viewer.command(command_quit);
    EXPECT_TRUE(viewer.ends());
}
