// Makes an image for the demo folder: bytes of every value, the same ones for the same seed on
// every machine. So an image at a wrong place, or one cut short, can't pass for the right one.

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <random>
#include <string>

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: demo_image FILE SIZE SEED\n";
        return EXIT_FAILURE;
    }
    std::mt19937 random(static_cast<std::mt19937::result_type>(std::stoul(argv[3])));
    std::string bytes(std::stoul(argv[2]), '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());

    std::ofstream out(argv[1], std::ios::binary);
    out << bytes << std::flush;
    return out ? EXIT_SUCCESS : EXIT_FAILURE;
}
