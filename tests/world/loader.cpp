// Opens every file named in its input, by the classes of C++, and says what became of it.
#include <kirvo.hpp>

#include <iostream>

int main() {
    for (std::string name; std::getline(std::cin, name);) {
        std::cout << name << '\t';
        try {
            const kirvo::Image image = kirvo::Image::open(name).negative();
            std::cout << image.width() << ' ' << image.height() << '\n';
        } catch (const kirvo::Error& error) {
            std::cout << error.what() << '\n';
        }
    }
}
