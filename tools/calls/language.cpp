#include "calls/language.hpp"

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
    [](const std::vector<std::string>& images) {
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
    [](const std::string& image) { return "GlobalFree(" + image + ");\n"; },
    nullptr,
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
    [](const std::vector<std::string>& images) {
        return "KirvoStatus status;\n" + (images.empty() ? "" : "IntPtr " + joined(images) + ";\n");
    },
    "",
    [](const Sentence& s) { return checked(s, plain(s, "Kirvo.", " = "), "Kirvo.Check", ";"); },
    [](const std::string& image) { return "Kirvo.GlobalFree(" + image + ");\n"; },
    nullptr,
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
    [](const std::vector<std::string>& images) {
        return "var\n  status: LongInt;\n" +
               (images.empty() ? "" : "  " + joined(images) + ": HGLOBAL;\n") + "begin\n";
    },
    "end;\n",
    [](const Sentence& s) { return checked(s, plain(s, "", " := "), "KirvoCheck", ";"); },
    [](const std::string& image) { return "GlobalFree(" + image + ");\n"; },
    nullptr,
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
    [](const std::vector<std::string>& images) {
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
    [](const std::string& image) { return "GlobalFree " + image + "\n"; },
    nullptr,
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
    [](const std::vector<std::string>&) {
        return std::string("from ctypes import byref, c_int32, c_uint8, c_void_p\n"
                           "from kirvo import flat as kirvo\n\n"
                           "status = c_int32()\n");
    },
    "",
    [](const Sentence& s) { return checked(s, plain(s, "kirvo.", " = "), "kirvo.check", ""); },
    [](const std::string& image) { return "kirvo.GlobalFree(" + image + ")\n"; },
    nullptr,
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
    [](const std::vector<std::string>&) { return std::string("int32_t status = KIRVO_OK;\n"); },
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
    nothing,
    [](const std::string& image, const std::string& file) {
        return "kirvo::Image " + image + " = kirvo::Image::open(\"" + file + "\");\n";
    },
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
