// Photo CD images by way of a stand-in for the external library, which records the calls.
#include "formats/reader.hpp"
#include "formats/standin/photo_cd.hpp"

#include <cstdlib>
#include <filesystem>

#ifndef _WIN32
#include <dlfcn.h>
#endif

using namespace kirvo_test;

namespace {

std::filesystem::path folder_of_this_program() {
#ifdef _WIN32
    char name[MAX_PATH];
    GetModuleFileNameA(nullptr, name, sizeof name);
    return std::filesystem::path(name).parent_path();
#else
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
#endif
}

#ifdef _WIN32
using Library = HMODULE;
Library load(const std::string& path) { return LoadLibraryA(path.c_str()); }
void unload(Library library) { FreeLibrary(library); }
void* function(Library library, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(library, name));
}
bool is_loaded(const std::string&) { return GetModuleHandleA("PCDLIB32.DLL") != nullptr; }
#else
using Library = void*;
Library load(const std::string& path) { return dlopen(path.c_str(), RTLD_NOW); }
void unload(Library library) { dlclose(library); }
void* function(Library library, const char* name) { return dlsym(library, name); }
bool is_loaded(const std::string& path) {
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (library != nullptr)
        dlclose(library);
    return library != nullptr;
}
#endif

std::string stand_in_path(const char* folder) {
    return (folder_of_this_program() / folder / "PCDLIB32.DLL").string();
}

// A library of that name loaded from elsewhere is the one that a search by name finds.
class PhotoCd : public testing::Test {
  protected:
    void SetUp() override { use("photo_cd"); }
    void TearDown() override {
        release();
        EXPECT_FALSE(is_loaded(path_)) << "PcdRead has left the library loaded";
    }

    void use(const char* folder) {
        release();
        path_ = stand_in_path(folder);
        library_ = load(path_);
        ASSERT_NE(library_, nullptr) << path_;
        state = reinterpret_cast<PhotoCdStandInFunction>(function(library_, "photo_cd_stand_in"))();
        *state = {};
        state->photo = reinterpret_cast<void*>(intptr_t{7});
        state->rotation = 3;
    }
    void release() {
        if (library_ != nullptr)
            unload(library_);
        library_ = nullptr;
    }

    // The library hands over an image of 5 x 4 unless the test has set one.
    Read read(const char* name = "photo.pcd", int32_t resolution = 2, uintptr_t progress = 0) {
        if (state->image == nullptr)
            state->image = make_dib({.width = 5, .height = 4, .bits = 24}).release();
        Read r;
        r.dib = Dib(PcdRead(name, resolution, progress, &r.width, &r.height, &r.status));
        return r;
    }
    bool image_is_freed() const { return GlobalLock(state->image) == nullptr; }

    PhotoCdStandIn* state = nullptr;

  private:
    std::string path_;
    Library library_ = nullptr;
};

constexpr char up_to_information[] = "PCDopen(photo.pcd) PCDreadImageInfo(7) ";
constexpr char up_to_resolution[] = "PCDopen(photo.pcd) PCDreadImageInfo(7) PCDgetRotation(7) "
                                    "PCDsetTransform(7 3) PCDsetResolution(7 2) ";
constexpr char up_to_image[] = "PCDopen(photo.pcd) PCDreadImageInfo(7) PCDgetRotation(7) "
                               "PCDsetTransform(7 3) PCDsetResolution(7 2) PCDloadImage(7 0) ";
constexpr char all_calls[] = "PCDopen(photo.pcd) PCDreadImageInfo(7) PCDgetRotation(7) "
                             "PCDsetTransform(7 3) PCDsetResolution(7 2) PCDloadImage(7 0) "
                             "PCDclose(7) ";

} // namespace

TEST(PcdRead, fails_without_the_library) {
    ASSERT_FALSE(is_loaded(stand_in_path("photo_cd")));
    for (const char* name : {"photo.pcd", "", static_cast<const char*>(nullptr)}) {
        Read r;
        r.dib = Dib(PcdRead(name, 3, 0, &r.width, &r.height, &r.status));
        expect_failure(r, KIRVO_BAD_PARAMETER);
        EXPECT_EQ(PcdRead(name, 3, 0, nullptr, nullptr, nullptr), nullptr);
    }
}

TEST_F(PhotoCd, calls_the_library_in_order_and_hands_over_its_image) {
    state->image = make_dib({.width = 5, .height = 4, .bits = 8}).release();
    const Read r = read();
    EXPECT_EQ(r.status, KIRVO_OK);
    EXPECT_EQ(static_cast<HGLOBAL>(r.dib), state->image);
    EXPECT_EQ(r.width, 5u);
    EXPECT_EQ(r.height, 4u);
    EXPECT_TRUE(is_unlocked(r.dib));
    EXPECT_STREQ(state->calls, all_calls);
}

TEST_F(PhotoCd, passes_the_name_on_as_it_is) {
    EXPECT_EQ(read("").status, KIRVO_OK);
    EXPECT_EQ(std::string(state->calls).rfind("PCDopen() ", 0), 0u);
    use("photo_cd");
    EXPECT_EQ(read(nullptr).status, KIRVO_OK);
    EXPECT_EQ(std::string(state->calls).rfind("PCDopen(null) ", 0), 0u);
    use("photo_cd");
    const std::string name(500, 'n');
    EXPECT_EQ(read(name.c_str()).status, KIRVO_OK);
    EXPECT_EQ(std::string(state->calls).rfind("PCDopen(" + name + ") ", 0), 0u);
}

TEST_F(PhotoCd, passes_the_progress_value_on_unless_it_is_0) {
    EXPECT_EQ(read("photo.pcd", 2, 1234).status, KIRVO_OK);
    EXPECT_STREQ(state->calls, "PCDopen(photo.pcd) PCDreadImageInfo(7) PCDsetProgress(7 1234 0) "
                               "PCDgetRotation(7) PCDsetTransform(7 3) PCDsetResolution(7 2) "
                               "PCDloadImage(7 0) PCDclose(7) ");
}

TEST_F(PhotoCd, takes_resolution_indexes_0_to_5_and_3_for_any_other) {
    for (const auto& [asked, used] :
         std::initializer_list<std::pair<int32_t, int>>{{0, 0},
                                                        {1, 1},
                                                        {2, 2},
                                                        {3, 3},
                                                        {4, 4},
                                                        {5, 5},
                                                        {6, 3},
                                                        {7, 3},
                                                        {-1, 3},
                                                        {INT32_MAX, 3},
                                                        {INT32_MIN, 3}}) {
        use("photo_cd");
        EXPECT_EQ(read("photo.pcd", asked).status, KIRVO_OK);
        const std::string wanted = "PCDsetResolution(7 " + std::to_string(used) + ") ";
        EXPECT_NE(std::string(state->calls).find(wanted), std::string::npos) << asked;
    }
}

TEST_F(PhotoCd, applies_the_rotation_of_the_photo) {
    for (const int32_t rotation : {0, 1, 270}) {
        use("photo_cd");
        state->rotation = rotation;
        EXPECT_EQ(read().status, KIRVO_OK);
        const std::string wanted = "PCDsetTransform(7 " + std::to_string(rotation) + ") ";
        EXPECT_NE(std::string(state->calls).find(wanted), std::string::npos);
    }
}

TEST_F(PhotoCd, does_not_ask_whether_the_rotation_could_be_had) {
    state->get_rotation = 1;
    EXPECT_EQ(read().status, KIRVO_OK);
    EXPECT_STREQ(state->calls, all_calls);
}

TEST_F(PhotoCd, stops_when_the_photo_cannot_be_opened) {
    state->open = 1;
    expect_failure(read(), -2);
    EXPECT_STREQ(state->calls, "PCDopen(photo.pcd) ");
    GlobalFree(state->image);
}

TEST_F(PhotoCd, stops_without_image_information) {
    state->read_image_info = 0x8000;
    expect_failure(read(), -4);
    EXPECT_STREQ(state->calls, up_to_information);
    GlobalFree(state->image);
}

TEST_F(PhotoCd, stops_when_progress_cannot_be_set) {
    state->set_progress = 1;
    expect_failure(read("photo.pcd", 2, 9), -1);
    EXPECT_STREQ(state->calls, "PCDopen(photo.pcd) PCDreadImageInfo(7) PCDsetProgress(7 9 0) ");
    GlobalFree(state->image);
    use("photo_cd");
    state->set_progress = 1;
    EXPECT_EQ(read().status, KIRVO_OK); // not called
}

TEST_F(PhotoCd, stops_after_the_resolution_when_it_or_the_transform_fails) {
    for (const uint32_t failure : {1u, 0x10000u, 0x80000000u}) { // all 32 bits count
        use("photo_cd");
        state->set_transform = failure;
        expect_failure(read(), -1);
        EXPECT_STREQ(state->calls, up_to_resolution);
        GlobalFree(state->image);
        use("photo_cd");
        state->set_resolution = failure;
        expect_failure(read(), -1);
        EXPECT_STREQ(state->calls, up_to_resolution);
        GlobalFree(state->image);
    }
}

TEST_F(PhotoCd, frees_an_image_that_came_with_a_failure) {
    for (const uint32_t failure : {1u, 0x10000u}) {
        use("photo_cd");
        state->load_image = failure;
        expect_failure(read(), -3);
        EXPECT_STREQ(state->calls, up_to_image);
        EXPECT_TRUE(image_is_freed());
    }
}

TEST_F(PhotoCd, frees_the_image_when_the_photo_cannot_be_closed) {
    state->close = 1;
    expect_failure(read(), -1);
    EXPECT_STREQ(state->calls, all_calls);
    EXPECT_TRUE(image_is_freed());
}

TEST_F(PhotoCd, looks_at_the_low_16_bits_of_short_answers) {
    state->open = state->read_image_info = state->set_progress = state->close = 0xABCD0000;
    EXPECT_EQ(read("photo.pcd", 2, 9).status, KIRVO_OK);
}

TEST_F(PhotoCd, tells_a_success_without_an_image) {
    const HGLOBAL freed = make_dib({.width = 1, .height = 1, .bits = 24}).release();
    GlobalFree(freed);
    state->image = freed;
    expect_failure(read(), -3);
    EXPECT_STREQ(state->calls, up_to_image);
    use("photo_cd");
    uint32_t width = untouched;
    int32_t status = 99;
    EXPECT_EQ(PcdRead("photo.pcd", 2, 0, &width, nullptr, &status), nullptr);
    EXPECT_EQ(status, -3);
    EXPECT_EQ(width, untouched);
}

TEST_F(PhotoCd, takes_an_image_smaller_than_a_header) {
    state->image = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, 3);
    const Read r = read();
    EXPECT_EQ(r.status, KIRVO_OK);
    EXPECT_EQ(r.width, 0u);
    EXPECT_EQ(r.height, 0u);
}

TEST_F(PhotoCd, takes_null_out_pointers) {
    state->image = make_dib({.width = 5, .height = 4, .bits = 24}).release();
    const Dib dib(PcdRead("photo.pcd", 2, 0, nullptr, nullptr, nullptr));
    EXPECT_EQ(static_cast<HGLOBAL>(dib), state->image);
    state->open = 1;
    EXPECT_EQ(PcdRead("photo.pcd", 2, 0, nullptr, nullptr, nullptr), nullptr);
}

TEST_F(PhotoCd, sends_no_progress_of_its_own) {
    ProgressRecorder recorder;
    recorder.watch();
    EXPECT_EQ(read().status, KIRVO_OK);
    EXPECT_TRUE(recorder.messages().empty());
}

TEST_F(PhotoCd, fails_at_a_function_that_the_library_lacks) {
    use("photo_cd_incomplete");
    expect_failure(read(), -4);
    EXPECT_STREQ(state->calls, "PCDopen(photo.pcd) ");
    GlobalFree(state->image);
}

namespace {

// Freshly loaded, the stand-in has no image to give.
void expect_found_and_unloaded() {
    Read r;
    r.dib = Dib(PcdRead("photo.pcd", 3, 0, &r.width, &r.height, &r.status));
    expect_failure(r, -3);
    EXPECT_FALSE(is_loaded(stand_in_path("photo_cd")));
}

} // namespace

TEST(PcdRead, finds_the_library_along_the_search_path) {
    const std::filesystem::path folder = folder_of_this_program() / "photo_cd";
#ifdef _WIN32
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    expect_found_and_unloaded();
    std::filesystem::current_path(before);
#else
    const char* search_path = std::getenv("LD_LIBRARY_PATH");
    if (search_path != nullptr && search_path == folder) {
        expect_found_and_unloaded();
        return;
    }
    // It counts from the start of a program on.
    const std::string command = "LD_LIBRARY_PATH='" + folder.string() + "' '" +
                                std::filesystem::read_symlink("/proc/self/exe").string() +
                                "' --gtest_brief=1 --gtest_filter=PcdRead.finds_* > /dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0);
#endif
}
