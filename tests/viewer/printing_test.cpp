// A real print job: from the menu through the system's spooler and its PostScript driver to a printer
// whose port is a file.
#include "driver.hpp"

#include "../../viewer/commands.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <optional>
#include <sstream>
#include <winspool.h>

using namespace kirvo_test;

namespace {

// A4 with margins of 18 points, 300 dots an inch.
constexpr char description[] = "*PPD-Adobe: \"4.3\"\n"
                               "*FormatVersion: \"4.3\"\n"
                               "*NickName: \"Kirvo's paper\"\n"
                               "*LanguageLevel: \"3\"\n"
                               "*ColorDevice: True\n"
                               "*DefaultResolution: 300dpi\n"
                               "*OpenUI *PageSize/Media Size: PickOne\n"
                               "*OrderDependency: 10 AnySetup *PageSize\n"
                               "*DefaultPageSize: A4\n"
                               "*PageSize A4/A4: \"<</PageSize[595 842]>>setpagedevice\"\n"
                               "*CloseUI: *PageSize\n"
                               "*DefaultImageableArea: A4\n"
                               "*ImageableArea A4/A4: \"18 18 577 824\"\n"
                               "*DefaultPaperDimension: A4\n"
                               "*PaperDimension A4/A4: \"595 842\"\n"
                               "*DefaultFont: Courier\n"
                               "*Font Courier: Standard \"(002.004S)\" Standard ROM\n";
constexpr char ports[] = "Software\\Microsoft\\Windows NT\\CurrentVersion\\Ports";
char name[] = "KirvoTestPrinter", driver[] = "KirvoTestDriver", module_name[] = "wineps.drv",
     processor[] = "winprint", raw[] = "RAW";

// The person's printer, for as long as it lives.
class Printer {
  public:
    explicit Printer(std::string file) : file_(std::move(file)) {
        char folder[MAX_PATH] = {};
        DWORD size = 0;
        GetPrinterDriverDirectoryA(nullptr, nullptr, 1, reinterpret_cast<BYTE*>(folder),
                                   sizeof folder, &size);
        std::string data = std::string(folder) + "\\kirvo_test.ppd";
        std::ofstream(data, std::ios::binary) << description;
        DRIVER_INFO_3A about = {};
        about.cVersion = 3;
        about.pName = driver;
        about.pDriverPath = about.pConfigFile = module_name;
        about.pDataFile = data.data();
        AddPrinterDriverExA(nullptr, 3, reinterpret_cast<BYTE*>(&about),
                            APD_COPY_NEW_FILES | 0x8000 /* from the drivers' folder */);
        RegCreateKeyA(HKEY_LOCAL_MACHINE, ports, &ports_);
        RegSetValueExA(ports_, file_.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(""), 1);
        PRINTER_INFO_2A printer = {};
        printer.pPrinterName = name;
        printer.pPortName = file_.data();
        printer.pDriverName = driver;
        printer.pPrintProcessor = processor;
        printer.pDatatype = raw;
        handle_ = AddPrinterA(nullptr, 2, reinterpret_cast<BYTE*>(&printer));
        DWORD length = sizeof before_;
        GetDefaultPrinterA(before_, &length);
        SetDefaultPrinterA(name);
    }
    ~Printer() {
        if (handle_ != nullptr) {
            PRINTER_DEFAULTSA all = {nullptr, nullptr, PRINTER_ALL_ACCESS};
            HANDLE printer = nullptr;
            if (OpenPrinterA(name, &printer, &all))
                DeletePrinter(printer);
            ClosePrinter(handle_);
        }
        if (before_[0] != '\0')
            SetDefaultPrinterA(before_);
        RegDeleteValueA(ports_, file_.c_str());
        RegCloseKey(ports_);
    }
    Printer(const Printer&) = delete;
    Printer& operator=(const Printer&) = delete;
    explicit operator bool() const { return handle_ != nullptr; }

  private:
    std::string file_;
    HKEY ports_ = nullptr;
    HANDLE handle_ = nullptr;
    char before_[256] = {};
};

std::string text_of(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

// The dialog of a print job stands open.
class ViewerPrints : public testing::Test {
  protected:
    ViewerPrints() : picture_(saved(folder_, "in.bmp", make_random_dib({31, 22, 24}, random_))) {}

    void SetUp() override {
        if (!printer_)
            GTEST_SKIP() << "no printer can be added here";
        viewer_.emplace(picture_);
        viewer_->command(command_print);
        dialog_ = viewer_->dialog("Print");
        ASSERT_NE(dialog_, nullptr);
    }

    TempFolder folder_;
    Random random_{3};
    const std::string picture_, paper_ = folder_.path("paper.ps");
    const Printer printer_{paper_};
    std::optional<Viewer> viewer_;
    HWND dialog_ = nullptr;
};

} // namespace

TEST_F(ViewerPrints, OnePageWithAllOfThePicture) {
    PostMessageA(dialog_, WM_COMMAND, IDOK, 0);
    ASSERT_TRUE(viewer_->wait_for("says: Print"));
    EXPECT_NE(viewer_->line().find("Printed"), std::string::npos) << viewer_->line();
    const std::string text = text_of(paper_);
    EXPECT_EQ(text.substr(0, 4), "%!PS");
    EXPECT_NE(text.find("%%Pages: 1"), std::string::npos);
    EXPECT_NE(text.find("/Width 31"), std::string::npos);
    EXPECT_NE(text.find("/Height 22"), std::string::npos);
    EXPECT_NE(text.find("in.bmp"), std::string::npos); // the job's name
    EXPECT_NE(text.find("%%EOF"), std::string::npos);
    EXPECT_TRUE(viewer_->ends());
}

TEST_F(ViewerPrints, NothingWhereThePersonCancels) {
    PostMessageA(dialog_, WM_COMMAND, IDCANCEL, 0);
    EXPECT_TRUE(viewer_->gone(dialog_));
    EXPECT_TRUE(viewer_->ends());
    EXPECT_EQ(text_of(paper_), "");
}
