#include "calls/language.hpp"

#include <cstring>

namespace {

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : ", ") + word;
    return text;
}

// "dib2 = Dib24Mosaic(...)", with the language's sign for giving a value.
std::string plain(const Sentence& s, const std::string& prefix, const char* gives) {
    const std::string call = prefix + s.function + "(" + joined(s.arguments) + ")";
    return s.answer == calls::Answer::image ? s.result + gives + call : call;
}

// Text between quotes, with a sign before those that are not to be its end.
std::string quoted(const std::string& text, char quote, const char* special, char sign) {
    std::string result(1, quote);
    for (const char character : text) {
        if (std::strchr(special, character) != nullptr)
            result += sign;
        result += character;
    }
    return result + quote;
}
std::string as_c(const std::string& text) { return quoted(text, '"', "\"\\", '\\'); }

// A call whose status is checked: by a function around it, or behind it.
std::string checked(const Sentence& s, const std::string& call, const std::string& check,
                    const std::string& end) {
    if (s.answer == calls::Answer::status)
        return check + "(" + call + ")" + end + "\n";
    return call + end + "\n" +
           (s.answer == calls::Answer::image ? check + "(status)" + end + "\n" : "");
}

std::string nothing(const std::string&) { return ""; }

const Grammar c = {
    "// ",
    [](const std::vector<std::string>& images, bool) {
        return "int32_t status;\n" + (images.empty() ? "" : "HGLOBAL " + joined(images) + ";\n");
    },
    "",
    [](const Sentence& s) {
        const std::string call = plain(s, "", " = ");
        const std::string check =
            s.answer == calls::Answer::image ? "if (" + s.result + " == NULL)\n    return status;\n"
            : s.answer == calls::Answer::status ? "if (status != KIRVO_OK)\n    return status;\n"
                                                : "";
        return (s.answer == calls::Answer::status ? "status = " : "") + call + ";\n" + check;
    },
    [](const std::string& image, const std::string& file) {
        return "status = KirvoFilesOpen(" + as_c(file) + ", NULL, &" + image +
               ", NULL);\nif (status != KIRVO_FILES_OK)\n    return status;\n";
    },
    [](const std::string& image) { return "GlobalFree(" + image + ");\n"; },
    "",
    nothing,
    [](const std::string& image) { return "&" + image; },
    nothing,
    "&status",
    "0x",
    "",
    [](const std::string& name, const std::string& numbers) {
        return "static const uint8_t " + name + "[256] = {" + numbers + "};\n";
    },
    "",
    "",
};

const Grammar csharp = {
    "// ",
    [](const std::vector<std::string>& images, bool) {
        return "KirvoStatus status;\n" + (images.empty() ? "" : "IntPtr " + joined(images) + ";\n");
    },
    "",
    [](const Sentence& s) { return checked(s, plain(s, "Kirvo.", " = "), "Kirvo.Check", ";"); },
    [](const std::string& image, const std::string& file) {
        return "if (KirvoFiles.KirvoFilesOpenW(@" + quoted(file, '"', "\"", '"') +
               ", IntPtr.Zero, out " + image +
               ", IntPtr.Zero) != KirvoFilesStatus.KIRVO_FILES_OK)\n"
               "    throw new System.IO.IOException();\n";
    },
    [](const std::string& image) { return "Kirvo.GlobalFree(" + image + ");\n"; },
    "",
    nothing,
    [](const std::string& image) { return "out " + image; },
    nothing,
    "out status",
    "0x",
    "",
    [](const std::string& name, const std::string& numbers) {
        return "byte[] " + name + " = {" + numbers + "};\n";
    },
    "",
    "",
};

const Grammar delphi = {
    "// ",
    [](const std::vector<std::string>& images, bool) {
        return "var\n  status: LongInt;\n" +
               (images.empty() ? "" : "  " + joined(images) + ": HGLOBAL;\n") + "begin\n";
    },
    "end;\n",
    [](const Sentence& s) { return checked(s, plain(s, "", " := "), "KirvoCheck", ";"); },
    [](const std::string& image, const std::string& file) {
        return "KirvoFilesCheck(KirvoFilesOpenW(" + quoted(file, '\'', "'", '\'') + ", nil, " +
               image + ", nil));\n";
    },
    [](const std::string& image) { return "GlobalFree(" + image + ");\n"; },
    "",
    nothing,
    [](const std::string& image) { return "@" + image; },
    nothing,
    "status",
    "$",
    "",
    [](const std::string& name, const std::string& numbers) {
        return "const\n  " + name + ": array[0..255] of Byte = (" + numbers + ");\n";
    },
    "@",
    "[0]",
};

const Grammar vb = {
    "' ",
    [](const std::vector<std::string>& images, bool) {
        std::string text = "Dim status As Long\n";
        for (const std::string& image : images)
            text += "Dim " + image + " As Long ' LongPtr in 64-bit Office\n";
        return text;
    },
    "",
    [](const Sentence& s) -> std::string {
        const std::string arguments = joined(s.arguments);
        if (s.answer == calls::Answer::image)
            return s.result + " = " + s.function + "(" + arguments + ")\nKirvoCheck status\n";
        return s.answer == calls::Answer::status
                   ? "KirvoCheck " + s.function + "(" + arguments + ")\n"
                   : s.function + " " + arguments + "\n";
    },
    [](const std::string& image, const std::string& file) {
        return "KirvoFilesCheck KirvoFilesOpenW(StrPtr(" + quoted(file, '"', "\"", '"') +
               "), ByVal 0&, " + image + ", ByVal 0&)\n";
    },
    [](const std::string& image) { return "GlobalFree " + image + "\n"; },
    "",
    nothing,
    [](const std::string& image) { return image; },
    nothing,
    "status",
    "&H",
    "&",
    [](const std::string& name, const std::string& numbers) {
        std::string text = "Dim " + name + "(255) As Byte, " + name + "Text As String, " + name +
                           "Index As Long\n";
        text += name + "Text = \"" + numbers + "\"\nFor " + name + "Index = 0 To 255\n    " + name +
                "(" + name + "Index) = CByte(Split(" + name + "Text, \",\")(" + name +
                "Index))\nNext\n";
        return text;
    },
    "",
    "(0)",
};

const Grammar python = {
    "# ",
    [](const std::vector<std::string>&, bool opens) {
        return "from ctypes import byref, c_int32, c_uint8, c_void_p\n"
               "from kirvo import flat as kirvo" +
               std::string(opens ? ", flat_files as kirvo_files" : "") + "\n\nstatus = c_int32()\n";
    },
    "",
    [](const Sentence& s) { return checked(s, plain(s, "kirvo.", " = "), "kirvo.check", ""); },
    [](const std::string& image, const std::string& file) {
        return image + " = c_void_p()\nkirvo_files.check(kirvo_files.KirvoFilesOpen(" + as_c(file) +
               ", None, byref(" + image + "), None))\n";
    },
    [](const std::string& image) { return "kirvo.GlobalFree(" + image + ")\n"; },
    "",
    [](const std::string& image) { return image + " = c_void_p()\n"; },
    [](const std::string& image) { return "byref(" + image + ")"; },
    nothing,
    "byref(status)",
    "0x",
    "",
    [](const std::string& name, const std::string& numbers) {
        return name + " = (c_uint8 * 256)(" + numbers + ")\n";
    },
    "",
    "",
};

// The layer kirvo.hpp frees images and throws what fails.
const Grammar cpp = {
    "// ",
    [](const std::vector<std::string>&, bool) {
        return std::string("int32_t status = KIRVO_OK;\n");
    },
    "",
    [](const Sentence& s) {
        const std::string refused = "throw kirvo::Error(status, kirvo_status_text(status));\n";
        const std::string call = s.function + "(" + joined(s.arguments) + ")";
        if (s.answer == calls::Answer::image)
            return "kirvo::Image " + s.result + " = kirvo::Image::adopt(" + call + ");\nif (!" +
                   s.result + ")\n    " + refused;
        return s.answer == calls::Answer::status
                   ? "status = " + call + ";\nif (status != KIRVO_OK)\n    " + refused
                   : call + ";\n";
    },
    [](const std::string& image, const std::string& file) {
        return "kirvo::Image " + image + " = kirvo::Image::open(" + as_c(file) + ");\n";
    },
    nothing,
    ".handle()",
    [](const std::string& image) { return "HGLOBAL " + image + "_made = nullptr;\n"; },
    [](const std::string& image) { return "&" + image + "_made"; },
    [](const std::string& image) {
        return "kirvo::Image " + image + " = kirvo::Image::adopt(" + image + "_made);\n";
    },
    "&status",
    "0x",
    "",
    [](const std::string& name, const std::string& numbers) {
        return "static const uint8_t " + name + "[256] = {" + numbers + "};\n";
    },
    "",
    "",
};

} // namespace

const Grammar& grammar_of(Language language) {
    const Grammar* all[] = {&c, &csharp, &delphi, &vb, &python, &cpp};
    return *all[static_cast<int>(language)];
}

const char* language_name(Language language) {
    const char* names[] = {"C", "C#", "Delphi", "Visual Basic", "Python", "C++"};
    return names[static_cast<int>(language)];
}
